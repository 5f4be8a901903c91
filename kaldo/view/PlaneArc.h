// Arcs that lie in the plane of an entity: scene arcs when that plane is
// the XY plane seen from either side, polylines along the projected curve
// otherwise.
#pragma once

#include "kaldo/db/EntityPlane.h"
#include "kaldo/view/Scene.h"

namespace kaldo::view {

// start and sweep are angles in the plane's coordinate system, sweep signed
// (positive counter-clockwise about the plane's normal) and taken as one
// turn at most; centre is a world point. Nothing is drawn for angles or a
// radius that are no finite numbers.
void addPlaneArc(Scene& scene, const EntityPlane& plane, const KxGePoint3d& centre, double radius, double start,
                 double sweep, int pen);


}  // namespace kaldo::view
