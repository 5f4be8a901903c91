#include "kaldo/dxf/ExtentsBox.h"

#include "kaldo/db/EntityPlane.h"
#include "kxdbents.h"
#include "kxdbmline.h"

#include <algorithm>

namespace kaldo::dxf {

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
        // pointAt's conversion, with the plane made once per polyline. The
        // vertices go to a box of their own, which stays in registers
        // between the calls for each vertex.
        const kaldo::EntityPlane plane(pline->normal());
        ExtentsBox vertices;
        for (int i = 0; i < pline->numVerts(); ++i) {
            const KxDbPolyline::Vertex v = pline->vertexAt(i);
            vertices.add(plane.toWorld(KxGePoint3d(v.x, v.y, pline->elevation())));
        }
        add(vertices);
    } else if (const auto* mline = KxDbMline::cast(&entity)) {
        ExtentsBox vertices;
        for (int i = 0; i < mline->numVertices(); ++i)
            vertices.add(mline->vertexAt(i));
        add(vertices);
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
