// What laying a multiline's vertices out in its style takes and gives, for
// the multiline and for a file reader that checks a record's layout before
// any multiline is made of it.
#pragma once

#include <cmath>
#include <cstddef>
#include <numbers>
#include <vector>

#include "kaldo/db/EntityPlane.h"
#include "kaldo/db/MlineGeometry.h"
#include "kxtypes.h"

class KxDbMlineStyle;

namespace kaldo {

// What laying a multiline's vertices out takes from its style and plane.
struct MlineLayout {
    EntityPlane plane;
    std::vector<double> offsets;
    double startAngle = std::numbers::pi / 2;
    double endAngle = std::numbers::pi / 2;
};

// The layout in style (no elements when null) at scale and justification,
// in the plane of normal.
MlineLayout mlineLayout(const KxDbMlineStyle* style, double scale, int justification, const KxGeVector3d& normal);

// A vertex's axis and miter as laid out, with their plane angles.
struct VertexFrame {
    KxGeVector3d axis;
    KxGeVector3d miter;
    VertexAngles angles;

    double entry0(const MlineLayout& layout, std::size_t element) const
    {
        return miterDistance(layout.offsets[element], angles.miter, angles.axis);
    }
};

// The frame of vertex v of n, position(i) giving vertex i in world
// coordinates (only v and its neighbours are asked for).
template <class PositionAt>
VertexFrame frameAt(const MlineLayout& layout, const PositionAt& position, std::size_t n, bool closed, std::size_t v)
{
    const auto point = [&](std::size_t i) { return layout.plane.toPlane(position(i)); };
    const VertexAngles a = vertexAnglesAt(point, n, v, closed, layout.startAngle, layout.endAngle);
    return {layout.plane.toWorld(KxGeVector3d(std::cos(a.axis), std::sin(a.axis))),
            layout.plane.toWorld(KxGeVector3d(std::cos(a.miter), std::sin(a.miter))), a};
}

// Whether the frame laid out gives numbers only: its axis, its miter and
// entry 0 of each element (the other entries of fresh lists are 0).
bool frameFinite(const MlineLayout& layout, const VertexFrame& frame);

}  // namespace kaldo
