// The editor's coordinate systems and view as the editing tools need them.
#pragma once

#include "kxtypes.h"

namespace kdml {

// The pick aperture in display units: sqrt(2) * PICKBOX * units per pixel
// of the active view. Without a view, out keeps its value.
void getPickTolerance(double& out);
// A point from the user to the world coordinate system; false when the
// editor refuses.
bool ucsToWcs(const KxGePoint3d& point, KxGePoint3d& out);
// A world point in the active view's display coordinates (z 0); -1 without
// a view, else 0.
int wcsToDisplay(const KxGePoint3d& point, KxGePoint3d& out);
// Distance of two world points as the view shows them; the world distance
// without a view.
double displayDistance(const KxGePoint3d& a, const KxGePoint3d& b);

}  // namespace kdml
