#include "kxedjig.h"

#include "kaldo/core/Host.h"
#include "kaldo/ed/Coordinates.h"
#include "kaldo/ed/Editor.h"
#include "kxdb.h"

KxEdJig::DragStatus KxEdJig::drag()
{
    if (!kaldo::currentEditor())
        return kCancel;
    m_promptShown = false;
    while (true) {
        const DragStatus status = sampler();
        if (status != kNormal)
            return status;
        update();
        if (!m_moving)
            return kNormal;
        const KxDbEntity* const shown = entity();
        kaldo::currentEditor()->dragged(std::span(&shown, 1));
    }
}

KxEdJig::DragStatus KxEdJig::acquirePoint(KxGePoint3d& point)
{
    return acquire(point, nullptr);
}

KxEdJig::DragStatus KxEdJig::acquirePoint(KxGePoint3d& point, const KxGePoint3d& base)
{
    return acquire(point, &base);
}

KxEdJig::DragStatus KxEdJig::acquire(KxGePoint3d& point, const KxGePoint3d* base)
{
    kaldo::Editor* editor = kaldo::currentEditor();
    if (!editor)
        return kCancel;
    using Kind = kaldo::Editor::DragInput::Kind;
    const auto input = editor->readDragInput(m_prompt, !m_promptShown, m_keywords,
                                             (m_controls & kNullResponseAccepted) != 0, base);
    m_promptShown = true;
    m_moving = input.kind == Kind::Motion;
    switch (input.kind) {
    case Kind::Point:
        if (!(m_controls & kDontUpdateLastPoint))
            editor->variables().set(L"LASTPOINT", kaldo::worldToUcs(kaldo::currentUcs(), input.world));
        [[fallthrough]];
    case Kind::Motion:
        point = input.world;
        return kNormal;
    case Kind::Keyword: return static_cast<DragStatus>(input.keyword);
    case Kind::Enter: return kNull;
    default: return kCancel;
    }
}

KxDbObjectId KxEdJig::append()
{
    KxDbEntity* e = entity();
    KxDbDatabase* db = kaldo::host().database;
    KxDbObjectId id;
    if (!e || !db || db->addToCurrentSpace(e, id) != Kald::eOk)
        return {};
    e->close();
    return id;
}
