// How a multiline's vertices turn into segment directions, miters and
// element distances, all in the plane of the multiline (plane coordinates,
// see EntityPlane). Angles are radians in [0, 2pi).
#pragma once

#include <cstddef>

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

// Axis and miter angles of vertex v of n; point(i) is vertex i in plane
// coordinates, and only v and its neighbours are read. Open: the start
// miter is the axis plus startAngle, the last vertex keeps the incoming
// axis and its miter is that axis plus endAngle. Closed: every miter
// bisects.
template <class PointAt>
VertexAngles vertexAnglesAt(const PointAt& point, std::size_t n, std::size_t v, bool closed, double startAngle,
                            double endAngle)
{
    VertexAngles va;
    const bool hasNext = v + 1 < n || (closed && n > 1);
    if (hasNext)
        va.axis = planeAngle(point(v), point((v + 1) % n));
    else if (v > 0)
        va.axis = planeAngle(point(v - 1), point(v));
    if (!closed && v == 0)
        va.miter = va.axis + startAngle;
    else if (!closed && v + 1 == n)
        va.miter = va.axis + endAngle;
    else
        va.miter = bisectorAngle(va.axis, planeAngle(point(v), point((v + n - 1) % n)));
    return va;
}

}  // namespace kaldo
