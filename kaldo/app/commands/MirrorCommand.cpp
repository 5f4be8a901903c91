// MIRROR: a selection reflected in a line of two points (the plane through
// it along the Z axis of the user coordinate system), as copies or, when
// the source objects are erased, in place.
#include "kaldo/app/EntityEdits.h"
#include "kaldo/app/commands/HostCommands.h"
#include "kaldo/app/commands/ModifyPrompts.h"
#include "kxed.h"

namespace kaldo {

namespace {

// The reflection in the line from a to b; nothing for a line of no length.
std::optional<KxGeMatrix3d> mirrorIn(const KxGePoint3d& a, const KxGePoint3d& b)
{
    const KxGeVector3d normal = cross(b - a, ucsNormal());
    if (normal.length() <= kxGeTolerance)
        return std::nullopt;
    return KxGeMatrix3d::mirroring(a, normal);
}

}  // namespace

void mirrorCommand()
{
    SelectionSet set;
    KxGePoint3d first;
    if (!selectThenPoint(set, L"\nSpecify first point of mirror line: ", first))
        return;
    SelectionDrag drag(set.ids());
    std::optional<KxGeMatrix3d> mirror;
    while (!mirror) {
        const Editor::DragInput second =
            askDragged(drag, L"\nSpecify second point of mirror line: ", L"", first, Editor::DragNumbers::None,
                       transformedBy([&](const KxGePoint3d& world) { return mirrorIn(first, world); }));
        if (second.kind == Editor::DragInput::Kind::Enter)
            continue;
        if (second.kind != Editor::DragInput::Kind::Point)
            return;
        if (!(mirror = mirrorIn(first, second.world)))
            kxutPrintf(L"\nThe mirror line needs two different points.\n");
    }
    kxedInitGet(0, L"Yes No _Yes No");
    wchar_t answer[KXED_TEXT_SIZE] = {};
    const int result = kxedGetKword(L"\nErase source objects? [Yes/No] <No>: ", answer);
    if (result == RTCAN)
        return;
    const bool eraseSource = result == RTNORM && std::wstring_view(answer) == L"Yes";
    reportUnchanged(transformEntities(set.ids(), *mirror, !eraseSource));
}

}  // namespace kaldo
