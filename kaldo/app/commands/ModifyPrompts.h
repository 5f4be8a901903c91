// Prompts the modify commands share: the selection, the base and second
// point of a displacement, and numbers or points read with a rubber band.
#pragma once

#include "kaldo/ed/Editor.h"
#include "kaldo/ed/SelectionDrag.h"
#include "kaldo/ed/SelectionSet.h"
#include "kxgematrix.h"

#include <functional>
#include <optional>
#include <string_view>

namespace kaldo {

// "Select objects:" until Enter; false when cancelled or nothing was
// selected.
bool selectForCommand(SelectionSet& set);

// A point typed or picked at prompt (getPoint), in world coordinates, with
// the RTNORM, RTNONE, RTKWORD or RTCAN of getPoint.
int getWorldPoint(std::wstring_view prompt, const wchar_t* keywords, KxGePoint3d& world);

// "Select objects:", then a point at prompt (world): the base point of
// ROTATE and SCALE, the first point of MIRROR's line. False when cancelled
// or nothing was selected.
bool selectThenPoint(SelectionSet& set, std::wstring_view prompt, KxGePoint3d& world);

// How the shown entities follow an offset (world).
using FollowOffset = std::function<void(const KxGeVector3d& offset, std::size_t index, KxDbEntity& shown)>;

// "Specify base point or [Displacement] <Displacement>:", then either
// "Specify second point or <use first point as displacement>:" with the
// entities following the cursor, or "Specify displacement <0,0,0>:". The
// displacement in world coordinates, and the base point (world) when one
// was given; nothing when cancelled.
struct Displacement {
    KxGeVector3d offset;
    std::optional<KxGePoint3d> base;
};
std::optional<Displacement> askDisplacement(SelectionDrag& drag, const FollowOffset& follow);

// Reads prompt with the rubber band from base until a point, a number, a
// keyword, Enter or cancel; while the cursor moves the entities follow it.
Editor::DragInput askDragged(SelectionDrag& drag, std::wstring_view prompt, std::wstring_view keywords,
                             const KxGePoint3d& base, Editor::DragNumbers numbers, const SelectionDrag::Follow& follow);

// A follow that leaves the shown entities as they are.
SelectionDrag::Follow standingStill();
// A follow that transforms the shown entity by what matrixAt gives for the
// cursor (nothing: the entity stays as it is).
SelectionDrag::Follow transformedBy(std::function<std::optional<KxGeMatrix3d>(const KxGePoint3d& world)> matrixAt);

// The user coordinate system's Z axis in the world: what ROTATE turns
// about and MIRROR's plane holds.
KxGeVector3d ucsNormal();
// The angle of the direction from a to b (world points) in the user
// coordinate system, counter-clockwise from its X axis.
double angleFrom(const KxGePoint3d& a, const KxGePoint3d& b);
// A number as the command line writes it: distances in decimals, angles
// in the angular units.
std::wstring decimalText(double value);
std::wstring angleText(double radians);

}  // namespace kaldo
