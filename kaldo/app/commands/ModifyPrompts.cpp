#include "kaldo/app/commands/ModifyPrompts.h"

#include "kaldo/ed/Coordinates.h"
#include "kxdb.h"
#include "kxed.h"
#include "kxedunits.h"

#include <cmath>

namespace kaldo {

bool selectForCommand(SelectionSet& set)
{
    Editor* editor = currentEditor();
    return editor && editor->selectObjects(set) == RTNORM && !set.empty();
}

int getWorldPoint(std::wstring_view prompt, const wchar_t* keywords, KxGePoint3d& world)
{
    Editor* editor = currentEditor();
    if (!editor)
        return RTCAN;
    editor->initGet(0, keywords ? keywords : L"");
    KxGePoint3d point;
    const int result = editor->getPoint(nullptr, prompt, point);
    if (result == RTNORM)
        world = ucsToWorld(currentUcs(), point);
    return result;
}

bool selectThenPoint(SelectionSet& set, std::wstring_view prompt, KxGePoint3d& world)
{
    return selectForCommand(set) && getWorldPoint(prompt, nullptr, world) == RTNORM;
}

Editor::DragInput askDragged(SelectionDrag& drag, std::wstring_view prompt, std::wstring_view keywords,
                             const KxGePoint3d& base, Editor::DragNumbers numbers, const SelectionDrag::Follow& follow)
{
    const bool acceptEnter = true;
    return drag.ask(prompt, keywords, acceptEnter, &base, numbers, follow);
}

std::optional<Displacement> askDisplacement(SelectionDrag& drag, const FollowOffset& follow)
{
    Editor* editor = currentEditor();
    if (!editor)
        return std::nullopt;
    const Ucs ucs = currentUcs();
    KxGePoint3d base;
    const int result = getWorldPoint(L"\nSpecify base point or [Displacement] <Displacement>: ",
                                     L"Displacement _Displacement", base);
    if (result == RTCAN)
        return std::nullopt;
    if (result != RTNORM) {
        editor->initGet(0, L"");
        KxGePoint3d typed;
        const int given = editor->getPoint(nullptr, L"\nSpecify displacement <0.0000, 0.0000, 0.0000>: ", typed);
        if (given == RTCAN)
            return std::nullopt;
        const KxGePoint3d offset = given == RTNORM ? ucsToWorld(ucs, typed, true) : KxGePoint3d();
        return Displacement{offset - KxGePoint3d(), std::nullopt};
    }
    const Editor::DragInput second =
        askDragged(drag, L"\nSpecify second point or <use first point as displacement>: ", L"", base,
                   Editor::DragNumbers::None, [&](const KxGePoint3d& world, std::size_t index, KxDbEntity& shown) {
                       follow(world - base, index, shown);
                   });
    switch (second.kind) {
    case Editor::DragInput::Kind::Point: return Displacement{second.world - base, base};
    case Editor::DragInput::Kind::Enter: return Displacement{ucsToWorld(ucs, worldToUcs(ucs, base), true) - KxGePoint3d(), base};
    default: return std::nullopt;
    }
}

SelectionDrag::Follow standingStill()
{
    return [](const KxGePoint3d&, std::size_t, KxDbEntity&) {};
}

SelectionDrag::Follow transformedBy(std::function<std::optional<KxGeMatrix3d>(const KxGePoint3d& world)> matrixAt)
{
    return [matrixAt = std::move(matrixAt)](const KxGePoint3d& world, std::size_t, KxDbEntity& shown) {
        if (const auto m = matrixAt(world))
            shown.transformBy(*m);
    };
}

KxGeVector3d ucsNormal()
{
    return normalized(currentUcs().zAxis());
}

double angleFrom(const KxGePoint3d& a, const KxGePoint3d& b)
{
    const KxGePoint3d d = worldToUcs(currentUcs(), KxGePoint3d() + (b - a), true);
    return std::atan2(d.y, d.x);
}

std::wstring decimalText(double value)
{
    wchar_t text[KXED_NUMBER_SIZE] = {};
    kxdbRToS(value, 2, -1, text);
    return text;
}

std::wstring angleText(double radians)
{
    wchar_t text[KXED_NUMBER_SIZE] = {};
    kxdbAngToS(radians, -1, -1, text);
    return text;
}

}  // namespace kaldo
