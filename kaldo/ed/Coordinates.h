// The user coordinate system of the working drawing and the transforms
// between it and the world.
#pragma once

#include "kxtypes.h"

namespace kaldo {

struct Ucs {
    KxGePoint3d origin;
    KxGeVector3d xAxis{1, 0, 0};
    KxGeVector3d yAxis{0, 1, 0};
    KxGeVector3d zAxis() const { return cross(xAxis, yAxis); }
};

// The working drawing's UCS; the world system without a drawing.
Ucs currentUcs();

// With displacement true the origin is left out (for vectors).
KxGePoint3d ucsToWorld(const Ucs& ucs, const KxGePoint3d& p, bool displacement = false);
KxGePoint3d worldToUcs(const Ucs& ucs, const KxGePoint3d& p, bool displacement = false);

}  // namespace kaldo
