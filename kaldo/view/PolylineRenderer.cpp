#include "kaldo/view/PolylineRenderer.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "kaldo/db/EntityPlane.h"
#include "kxdbents.h"

namespace kaldo::view {

namespace {

// Points after from along a segment of the plane, up to and with to; a
// bulge b turns it into an arc of included angle 4 atan(b), counter-
// clockwise for positive b. A segment whose arc has no finite centre is
// left out: the polyline breaks there and goes on from to (false).
bool addSegment(const KxDbPolyline::Vertex& from, const KxDbPolyline::Vertex& to, double elevation,
                const EntityPlane& plane, int pen, Scene& scene)
{
    const auto add = [&](double x, double y) {
        const KxGePoint3d p = plane.toWorld(KxGePoint3d(x, y, elevation));
        scene.addPoint({p.x, p.y});
    };
    // Straight segments, the most, need no chord.
    const double chord = from.bulge == 0 ? 0 : std::hypot(to.x - from.x, to.y - from.y);
    if (chord == 0) {
        add(to.x, to.y);
        return true;
    }
    const double included = 4 * std::atan(from.bulge);
    const double radius = chord / (2 * std::sin(std::abs(included) / 2));
    // The centre lies off the chord's midpoint, to the left for a
    // counter-clockwise arc of less than half a turn.
    const double midX = (from.x + to.x) / 2, midY = (from.y + to.y) / 2;
    const double offset = (1 - from.bulge * from.bulge) / (4 * from.bulge) * chord;
    const double cx = midX - (to.y - from.y) / chord * offset;
    const double cy = midY + (to.x - from.x) / chord * offset;
    if (!std::isfinite(cx) || !std::isfinite(cy) || !std::isfinite(radius)) {
        scene.endPolyline(false);
        scene.beginPolyline(pen);
        add(to.x, to.y);
        return false;
    }
    const double start = std::atan2(from.y - cy, from.x - cx);
    const int steps = std::max(2, int(std::ceil(std::abs(included) / (2 * std::numbers::pi) * 64)));
    for (int i = 1; i < steps; ++i) {
        const double a = start + included * i / steps;
        add(cx + radius * std::cos(a), cy + radius * std::sin(a));
    }
    add(to.x, to.y);
    return true;
}

}  // namespace

void drawPolyline(const KxDbPolyline& polyline, int pen, Scene& scene)
{
    // Vertices are read one by one: a copy of them all would cost an
    // allocation per polyline.
    const int count = polyline.numVerts();
    if (count == 0)
        return;
    const EntityPlane plane(polyline.normal());
    scene.beginPolyline(pen);
    const KxDbPolyline::Vertex front = polyline.vertexAt(0);
    const KxGePoint3d first = plane.toWorld(KxGePoint3d(front.x, front.y, polyline.elevation()));
    scene.addPoint({first.x, first.y});
    bool whole = true;
    KxDbPolyline::Vertex from = front;
    for (int i = 1; i < count; ++i) {
        const KxDbPolyline::Vertex to = polyline.vertexAt(i);
        whole &= addSegment(from, to, polyline.elevation(), plane, pen, scene);
        from = to;
    }
    if (polyline.isClosed() && count > 1)
        whole &= addSegment(from, front, polyline.elevation(), plane, pen, scene);
    scene.endPolyline(polyline.isClosed() && whole);
}

}  // namespace kaldo::view
