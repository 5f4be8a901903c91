#include "kaldo/view/PlaneArc.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace kaldo::view {

namespace {

// Direction of a plane angle, in world coordinates.
KxGeVector3d worldDirection(const EntityPlane& plane, double angle)
{
    return plane.toWorld(KxGeVector3d(std::cos(angle), std::sin(angle)));
}

bool facesAlongZ(const KxGeVector3d& normal)
{
    return std::abs(normal.x) < 1e-12 && std::abs(normal.y) < 1e-12;
}

}  // namespace

void addPlaneArc(Scene& scene, const EntityPlane& plane, const KxGePoint3d& centre, double radius, double start,
                 double sweep, int pen)
{
    if (!(radius > 0) || !std::isfinite(radius) || !std::isfinite(start) || !std::isfinite(sweep) || sweep == 0)
        return;
    const double full = 2 * std::numbers::pi;
    sweep = std::clamp(sweep, -full, full);
    if (facesAlongZ(plane.normal())) {
        const KxGeVector3d d = worldDirection(plane, start);
        const double turn = plane.normal().z > 0 ? 1.0 : -1.0;
        scene.addArc({{centre.x, centre.y}, radius, std::atan2(d.y, d.x), sweep * turn, pen});
        return;
    }
    const int steps = std::max(8, int(std::ceil(std::abs(sweep) / full * 96)));
    scene.beginPolyline(pen);
    for (int i = 0; i <= steps; ++i) {
        const KxGePoint3d p = centre + worldDirection(plane, start + sweep * i / steps) * radius;
        scene.addPoint({p.x, p.y});
    }
    scene.endPolyline(std::abs(sweep) >= full);
}

}  // namespace kaldo::view
