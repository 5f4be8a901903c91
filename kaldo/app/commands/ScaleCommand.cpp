// SCALE: a selection scaled about a base point by a factor typed, shown
// as the cursor's distance from the base point, or given as a new length
// against a reference length; Copy scales copies instead. Factors must be
// above zero (a negative factor is refused: it would turn the selection
// half round, which ROTATE does).
#include "kaldo/app/EntityEdits.h"
#include "kaldo/app/commands/HostCommands.h"
#include "kaldo/app/commands/ModifyPrompts.h"
#include "kxed.h"

namespace kaldo {

namespace {

using Kind = Editor::DragInput::Kind;

// A length from input: a number, or the distance of a point from base;
// nothing for other input. 1 for Enter.
std::optional<double> lengthOf(const Editor::DragInput& input, const KxGePoint3d& base)
{
    switch (input.kind) {
    case Kind::Point: return distance(base, input.world);
    case Kind::Number: return input.number;
    case Kind::Enter: return 1.0;
    default: return std::nullopt;
    }
}

// Asks until the length is above zero; nothing when cancelled.
std::optional<double> positiveLength(SelectionDrag& drag, const std::wstring& prompt, const KxGePoint3d& base,
                                     const SelectionDrag::Follow& follow)
{
    for (;;) {
        const Editor::DragInput input = askDragged(drag, prompt, L"", base, Editor::DragNumbers::Real, follow);
        const auto length = lengthOf(input, base);
        if (!length)
            return std::nullopt;
        if (*length > kxGeTolerance)
            return length;
        kxutPrintf(L"\nValue must be positive and nonzero.\n");
    }
}

}  // namespace

void scaleCommand()
{
    SelectionSet set;
    KxGePoint3d base;
    if (!selectThenPoint(set, L"\nSpecify base point: ", base))
        return;
    SelectionDrag drag(set.ids());
    const auto scaledBy = [&](double factor) { return KxGeMatrix3d::scaling(factor, base); };
    const auto followDistance = [&](double reference) {
        return transformedBy([&, reference](const KxGePoint3d& world) -> std::optional<KxGeMatrix3d> {
            const double length = distance(base, world);
            return length > kxGeTolerance ? std::optional(scaledBy(length / reference)) : std::nullopt;
        });
    };
    const std::wstring one = decimalText(1);
    bool copies = false;
    std::optional<double> factor;
    while (!factor) {
        const Editor::DragInput input =
            askDragged(drag, L"\nSpecify scale factor or [Copy/Reference] <" + one + L">: ",
                       L"Copy Reference _Copy Reference", base, Editor::DragNumbers::Real, followDistance(1));
        if (input.kind == Kind::Keyword && input.keyword == 1) {
            copies = true;
            kxutPrintf(L"\nScaling a copy of the selected objects.\n");
            continue;
        }
        if (input.kind == Kind::Keyword) {
            const auto reference = positiveLength(drag, L"\nSpecify reference length <" + one + L">: ", base, standingStill());
            const auto length =
                reference ? positiveLength(drag, L"\nSpecify new length <" + one + L">: ", base, followDistance(*reference))
                          : std::nullopt;
            if (!length)
                return;
            factor = *length / *reference;
            continue;
        }
        const auto length = lengthOf(input, base);
        if (!length)
            return;
        if (*length > kxGeTolerance)
            factor = length;
        else
            kxutPrintf(L"\nValue must be positive and nonzero.\n");
    }
    reportUnchanged(transformEntities(set.ids(), scaledBy(*factor), copies));
}

}  // namespace kaldo
