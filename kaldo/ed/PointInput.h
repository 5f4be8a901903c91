// Points typed on the command line, in user coordinates:
//   "x,y" or "x,y,z"        absolute (z 0 when left out)
//   "@dx,dy" or "@dx,dy,dz" relative to the reference point
//   "@dist<angle"           polar, relative to the reference point
//   "dist<angle"            polar from the origin
//   "@"                     the reference point itself
#pragma once

#include "kxtypes.h"

#include <optional>
#include <string_view>

namespace kaldo {

// How typed angles are read: the angular unit (AUNITS), the direction of
// angle 0 (ANGBASE, radians) and whether angles run clockwise (ANGDIR 1).
struct AngleConvention {
    int unit = 0;
    double base = 0;
    bool clockwise = false;
};

// The point text stands for, or nothing when it is no point.
std::optional<KxGePoint3d> parsePointInput(std::wstring_view text, const KxGePoint3d& reference,
                                           const AngleConvention& angles);

}  // namespace kaldo
