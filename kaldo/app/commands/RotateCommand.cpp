// ROTATE: a selection turned about a base point (about the Z axis of the
// user coordinate system) by an angle typed, shown with the cursor, or
// given as a new angle against a reference; Copy turns copies instead.
#include "kaldo/app/EntityEdits.h"
#include "kaldo/app/commands/HostCommands.h"
#include "kaldo/app/commands/ModifyPrompts.h"
#include "kxed.h"

namespace kaldo {

namespace {

using Kind = Editor::DragInput::Kind;

// Absolute angles typed count from ANGBASE.
double angleBase()
{
    const Editor* editor = currentEditor();
    return editor ? editor->angleConvention().base : 0.0;
}

// The rotation that turns a reference angle into a new one; nothing when
// cancelled.
std::optional<double> referenceRotation(SelectionDrag& drag, const KxGePoint3d& base,
                                        const std::function<KxGeMatrix3d(double)>& turnedBy)
{
    const std::wstring zero = angleText(0);
    const Editor::DragInput reference = askDragged(drag, L"\nSpecify the reference angle <" + zero + L">: ", L"", base,
                                                   Editor::DragNumbers::Angle, standingStill());
    double from = 0;
    switch (reference.kind) {
    case Kind::Point: from = angleFrom(base, reference.world); break;
    case Kind::Number: from = reference.number + angleBase(); break;
    case Kind::Enter: from = angleBase(); break;
    default: return std::nullopt;
    }
    const Editor::DragInput next =
        askDragged(drag, L"\nSpecify the new angle <" + zero + L">: ", L"", base, Editor::DragNumbers::Angle,
                   transformedBy([&](const KxGePoint3d& world) -> std::optional<KxGeMatrix3d> {
                       return turnedBy(angleFrom(base, world) - from);
                   }));
    switch (next.kind) {
    case Kind::Point: return angleFrom(base, next.world) - from;
    case Kind::Number: return next.number + angleBase() - from;
    case Kind::Enter: return angleBase() - from;
    default: return std::nullopt;
    }
}

}  // namespace

void rotateCommand()
{
    SelectionSet set;
    KxGePoint3d base;
    if (!selectThenPoint(set, L"\nSpecify base point: ", base))
        return;
    SelectionDrag drag(set.ids());
    const KxGeVector3d axis = ucsNormal();
    const auto turnedBy = [&](double angle) { return KxGeMatrix3d::rotation(angle, axis, base); };
    bool copies = false;
    std::optional<double> angle;
    while (!angle) {
        const Editor::DragInput input =
            askDragged(drag, L"\nSpecify rotation angle or [Copy/Reference] <" + angleText(0) + L">: ",
                       L"Copy Reference _Copy Reference", base, Editor::DragNumbers::Angle,
                       transformedBy([&](const KxGePoint3d& world) -> std::optional<KxGeMatrix3d> {
                           return turnedBy(angleFrom(base, world));
                       }));
        switch (input.kind) {
        case Kind::Point: angle = angleFrom(base, input.world); break;
        case Kind::Number: angle = input.number; break;
        case Kind::Enter: angle = 0.0; break;
        case Kind::Keyword:
            if (input.keyword == 1) {
                copies = true;
                kxutPrintf(L"\nRotating a copy of the selected objects.\n");
            } else if (!(angle = referenceRotation(drag, base, turnedBy))) {
                return;
            }
            break;
        default: return;
        }
    }
    reportUnchanged(transformEntities(set.ids(), turnedBy(*angle), copies));
}

}  // namespace kaldo
