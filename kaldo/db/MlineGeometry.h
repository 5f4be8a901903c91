// How a multiline's vertices turn into segment directions, miters and
// element distances, all in the plane of the multiline (plane coordinates,
// see EntityPlane). Angles are radians in [0, 2pi).
#pragma once

#include <vector>

#include "kxtypes.h"

namespace kaldo {

// The direction angle from one plane point to another (0 for equal points).
double planeAngle(const KxGePoint3d& from, const KxGePoint3d& to);

// The miter angle between the direction a to the next vertex and the
// direction b to the previous one: (a + b) / 2, plus pi when a > b, plus
// pi/2 when a == b.
double bisectorAngle(double a, double b);

// The distance along a miter at angle m from the vertex to an element at
// perpendicular offset o from a segment at angle a: o / sin(m - a + d),
// d = 0.005 when m - a is exactly 0.
double miterDistance(double offset, double miterAngle, double axisAngle);

struct VertexAngles {
    double axis = 0;   // direction of the segment that starts here
    double miter = 0;  // direction along which the elements cross
};

// Axis and miter angles of every vertex. Open: the start miter is the axis
// plus startAngle, the end miter the incoming axis plus endAngle, and the
// last vertex keeps the previous axis. Closed: every miter bisects.
std::vector<VertexAngles> vertexAngles(const std::vector<KxGePoint3d>& planePoints, bool closed, double startAngle,
                                       double endAngle);

}  // namespace kaldo
