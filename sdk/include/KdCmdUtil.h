// Geometry utilities of the host's utility library.
#pragma once

#include "kxtypes.h"

// Distance from pt to the infinite line through s and e, and the foot of the
// perpendicular (when foot is given). Returns 1, or 0 when s and e coincide
// (the distance and foot are then taken to s).
short PtLnDist(const KxGePoint3d& pt, const KxGePoint3d& s, const KxGePoint3d& e,
               double* dist, KxGePoint3d* foot);

// Crossing of the lines p1p2 and p3p4 in the XY plane (z taken from p1p2 at
// the crossing). Below 1: no crossing (parallel or degenerate lines).
// Otherwise out holds the crossing and the result tells where it lies:
// 1 within segment p1p2 only, 2 within segment p3p4 only, 3 within both,
// 4 within neither. Segment ends count as within.
short LineXline(const KxGePoint3d& p1, const KxGePoint3d& p2, const KxGePoint3d& p3,
                const KxGePoint3d& p4, KxGePoint3d& out);

// The same in space: negative when the lines do not meet (parallel, or skew
// by more than the tolerance), 0 for a crossing within neither segment, 1 to
// 3 as for LineXline.
short LineXline3d(const KxGePoint3d& p1, const KxGePoint3d& p2, const KxGePoint3d& p3,
                  const KxGePoint3d& p4, KxGePoint3d& out);

// Angle of the direction from a to b in the XY plane, in [0, 2*pi).
double kxutAngle(const KxGePoint3d& a, const KxGePoint3d& b);
// Three-dimensional distance from a to b.
double kxutDistance(const KxGePoint3d& a, const KxGePoint3d& b);
