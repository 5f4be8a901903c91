#include "kaldo/dxf/ExtentsBox.h"

#include "kaldo/db/EntityPlane.h"
#include "kxdbents.h"
#include "kxdbmline.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace kaldo::dxf {

void ExtentsBox::add(const KxGePoint3d& p)
{
    if (std::isnan(p.x) || std::isnan(p.y) || std::isnan(p.z))
        return;
    constexpr double kLargest = std::numeric_limits<double>::max();
    const KxGePoint3d q(std::clamp(p.x, -kLargest, kLargest), std::clamp(p.y, -kLargest, kLargest),
                        std::clamp(p.z, -kLargest, kLargest));
    m_min = {std::min(m_min.x, q.x), std::min(m_min.y, q.y), std::min(m_min.z, q.z)};
    m_max = {std::max(m_max.x, q.x), std::max(m_max.y, q.y), std::max(m_max.z, q.z)};
}

void ExtentsBox::add(const KxGePoint3d& center, double radius)
{
    add(center + KxGeVector3d(radius, radius, radius));
    add(center - KxGeVector3d(radius, radius, radius));
}

void ExtentsBox::add(const ExtentsBox& later)
{
    m_min = {std::min(m_min.x, later.m_min.x), std::min(m_min.y, later.m_min.y), std::min(m_min.z, later.m_min.z)};
    m_max = {std::max(m_max.x, later.m_max.x), std::max(m_max.y, later.m_max.y), std::max(m_max.z, later.m_max.z)};
}

void ExtentsBox::add(const KxDbEntity& entity)
{
    if (const auto* line = KxDbLine::cast(&entity)) {
        add(line->startPoint());
        add(line->endPoint());
    } else if (const auto* arc = KxDbArc::cast(&entity)) {
        add(arc->center(), arc->radius());
    } else if (const auto* circle = KxDbCircle::cast(&entity)) {
        add(circle->center(), circle->radius());
    } else if (const auto* pline = KxDbPolyline::cast(&entity)) {
        // pointAt's conversion, with the plane made once per polyline.
        const kaldo::EntityPlane plane(pline->normal());
        for (int i = 0; i < pline->numVerts(); ++i) {
            const KxDbPolyline::Vertex v = pline->vertexAt(i);
            add(plane.toWorld(KxGePoint3d(v.x, v.y, pline->elevation())));
        }
    } else if (const auto* mline = KxDbMline::cast(&entity)) {
        for (int i = 0; i < mline->numVertices(); ++i)
            add(mline->vertexAt(i));
    }
}

ExtentsBox ExtentsBox::of(std::span<const KxDbEntity* const> entities)
{
    ExtentsBox box;
    for (const KxDbEntity* entity : entities)
        box.add(*entity);
    return box;
}

}  // namespace kaldo::dxf
