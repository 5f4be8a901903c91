// Selecting an entity with a point: the nearest entity of the current space
// within the pick box (PICKBOX pixels of the current view), found through
// the editor's pick index. A point that hits nothing is said so. While the
// pick waits, the cursor's motion is looked up by the same rule, so that a
// window can show what a click would take.
#include "kaldo/core/Host.h"
#include "kaldo/ed/Coordinates.h"
#include "kaldo/ed/Editor.h"
#include "kaldo/ed/Text.h"
#include "kxdb.h"
#include "kxed.h"

namespace kaldo {

KxDbObjectId Editor::entityAt(const KxGePoint3d& world)
{
    const double tolerance = variables_.shortValue(L"PICKBOX", 3) * view_.unitSquarePerPixel();
    const KxDbDatabase* db = host().database;
    return db ? pickIndex_.nearest(*db, world, tolerance) : KxDbObjectId();
}

int Editor::entSel(std::wstring_view prompt, std::int64_t name[2], KxGePoint3d& point)
{
    const Controls controls = takeControls();
    name[0] = name[1] = 0;
    const KxGePoint3d reference = variables_.pointValue(L"LASTPOINT");
    const InputRequest request{InputRequest::Kind::Entity, false, {}, false, controls.keywords};
    const int result = ask(prompt, controls.flags & ~RSG_NONULL, request, [&](const InputEvent& event) -> std::optional<int> {
        if (event.kind == InputEvent::Kind::Motion) {
            if (hoverListener_)
                hoverListener_(entityAt(event.point));
            return std::nullopt;
        }
        KxGePoint3d world = event.point;
        if (event.kind == InputEvent::Kind::Point) {
            point = worldToUcs(currentUcs(), world);
        } else if (const auto typed = parsePointInput(event.text, reference, angleConvention())) {
            point = *typed;
            world = ucsToWorld(currentUcs(), point);
        } else if (takeKeyword(controls, trimmed(event.text))) {
            return RTKWORD;
        } else {
            complain(L"Invalid point.", prompt);
            return std::nullopt;
        }
        const KxDbObjectId id = entityAt(world);
        if (id.isNull()) {
            variables_.set(L"ERRNO", short(OL_ENTSELPICK));
            write(L"\nNo object found.\n");
            return RTERROR;
        }
        kxdbGetEntityName(name, id);
        variables_.set(L"ERRNO", short(0));
        redraw(name, 3);
        return RTNORM;
    });
    if (hoverListener_)
        hoverListener_(KxDbObjectId());
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
