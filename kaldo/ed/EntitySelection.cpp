// Selecting an entity with a point: the nearest entity of the current space
// within the pick box (PICKBOX pixels of the current view).
#include "kaldo/core/Host.h"
#include "kaldo/db/PickGeometry.h"
#include "kaldo/ed/Coordinates.h"
#include "kaldo/ed/Editor.h"
#include "kaldo/ed/Text.h"
#include "kxdb.h"
#include "kxed.h"

#include <limits>

namespace kaldo {

namespace {

// The entity of the current space nearest to world within tolerance.
KxDbObjectId nearestEntity(const KxGePoint3d& world, double tolerance)
{
    const KxDbDatabase* db = host().database;
    if (!db)
        return {};
    KxDbObjectPtr<KxDbBlockTableRecord> space(db->currentSpaceId(), KxDb::kForRead);
    if (!space)
        return {};
    KxDbObjectId best;
    double bestDistance = std::numeric_limits<double>::infinity();
    const auto it = space->newIterator();
    for (it->start(); !it->done(); it->step()) {
        KxDbObjectPtr<KxDbEntity> entity(it->getEntityId(), KxDb::kForRead);
        if (!entity)
            continue;
        const double d = pickDistance(*entity, world);
        if (d <= tolerance && d < bestDistance) {
            bestDistance = d;
            best = entity->objectId();
        }
    }
    return best;
}

}  // namespace

int Editor::entSel(std::wstring_view prompt, std::int64_t name[2], KxGePoint3d& point)
{
    const Controls controls = takeControls();
    name[0] = name[1] = 0;
    const KxGePoint3d reference = variables_.pointValue(L"LASTPOINT");
    const InputRequest request{InputRequest::Kind::Entity, false, {}, false, controls.keywords};
    const int result = ask(prompt, controls.flags & ~RSG_NONULL, request, [&](const InputEvent& event) -> std::optional<int> {
        if (event.kind == InputEvent::Kind::Point) {
            point = worldToUcs(currentUcs(), event.point);
        } else if (const auto typed = parsePointInput(event.text, reference, angleConvention())) {
            point = *typed;
        } else if (takeKeyword(controls, trimmed(event.text))) {
            return RTKWORD;
        } else {
            complain(L"Invalid point.", prompt);
            return std::nullopt;
        }
        const double tolerance = variables_.shortValue(L"PICKBOX", 3) * view_.unitSquarePerPixel();
        const KxDbObjectId id = nearestEntity(ucsToWorld(currentUcs(), point), tolerance);
        if (id.isNull()) {
            variables_.set(L"ERRNO", short(OL_ENTSELPICK));
            return RTERROR;
        }
        kxdbGetEntityName(name, id);
        variables_.set(L"ERRNO", short(0));
        redraw(name, 3);
        return RTNORM;
    });
    if (result == RTNONE) {
        variables_.set(L"ERRNO", short(OL_ENTSELNULL));
        return RTERROR;
    }
    return result;
}

}  // namespace kaldo

int kxedEntSel(const wchar_t* prompt, kxds_name out, double outPoint[3])
{
    kaldo::Editor* editor = kaldo::currentEditor();
    if (!editor || !out)
        return RTERROR;
    KxGePoint3d point;
    const int result = editor->entSel(prompt ? prompt : L"", out, point);
    if (outPoint && (result == RTNORM || result == RTERROR)) {
        outPoint[0] = point.x;
        outPoint[1] = point.y;
        outPoint[2] = point.z;
    }
    return result;
}
