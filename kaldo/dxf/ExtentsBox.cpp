#include "kaldo/dxf/ExtentsBox.h"

#include "kaldo/db/EntityKinds.h"
#include "kaldo/db/EntityPlane.h"
#include "kxdbents.h"
#include "kxdbmline.h"

#include <emmintrin.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace kaldo::dxf {

void ExtentsBox::add(const KxDbEntity& entity)
{
    add(entity, kaldo::entityKind(entity));
}

void ExtentsBox::add(const KxDbEntity& entity, kaldo::EntityKind kind)
{
    switch (kind) {
    case kaldo::EntityKind::Line: {
        const auto& line = static_cast<const KxDbLine&>(entity);
        add(line.startPoint());
        add(line.endPoint());
        return;
    }
    case kaldo::EntityKind::Arc: {
        const auto& arc = static_cast<const KxDbArc&>(entity);
        add(arc.center(), arc.radius());
        return;
    }
    case kaldo::EntityKind::Circle: {
        const auto& circle = static_cast<const KxDbCircle&>(entity);
        add(circle.center(), circle.radius());
        return;
    }
    case kaldo::EntityKind::Polyline: {
        // pointAt's conversion, with the plane made once per polyline: in
        // the world's own plane a finite vertex at a finite elevation
        // converts to itself, zeros made positive (EntityPlane::toWorld),
        // and is taken so, one test per coordinate. The vertices go to a box
        // of their own, joined once. Such vertices are taken in a loop of
        // their own, which calls nothing, so that the box stays in registers,
        // their elevation once; the others from the first that is not such a
        // vertex on.
        const auto& pline = static_cast<const KxDbPolyline&>(entity);
        const kaldo::EntityPlane plane(pline.normal());
        const double elevation = pline.elevation();
        constexpr double kLargest = std::numeric_limits<double>::max();
        const bool world = plane.isWorld() && std::abs(elevation) <= kLargest;
        const int count = pline.numVerts();
        ExtentsBox vertices;
        int i = 0;
        if (world && count > 0) {
            // x and y side by side, one register for the smallest and one
            // for the largest: the pair's min and max take what std::min
            // and std::max take of each (the vertex's coordinate only where
            // it is below, or above, the box's), in half the instructions.
            const __m128d magnitude = _mm_castsi128_pd(_mm_set1_epi64x(0x7FFF'FFFF'FFFF'FFFF));
            const __m128d largest = _mm_set1_pd(kLargest);
            __m128d smallest = _mm_set_pd(vertices.m_min.y, vertices.m_min.x);
            __m128d greatest = _mm_set_pd(vertices.m_max.y, vertices.m_max.x);
            for (; i < count; ++i) {
                const KxDbPolyline::Vertex v = pline.vertexAt(i);
                const __m128d p = _mm_set_pd(v.y, v.x);
                if (_mm_movemask_pd(_mm_cmple_pd(_mm_and_pd(p, magnitude), largest)) != 3)
                    break;
                // Zeros made positive, as EntityPlane::toWorld gives them.
                const __m128d q = _mm_add_pd(p, _mm_setzero_pd());
                smallest = _mm_min_pd(q, smallest);
                greatest = _mm_max_pd(q, greatest);
            }
            _mm_storel_pd(&vertices.m_min.x, smallest);
            _mm_storeh_pd(&vertices.m_min.y, smallest);
            _mm_storel_pd(&vertices.m_max.x, greatest);
            _mm_storeh_pd(&vertices.m_max.y, greatest);
        }
        if (i > 0)
            vertices.takeInZ(elevation + 0.0);
        for (; i < count; ++i) {
            const KxDbPolyline::Vertex v = pline.vertexAt(i);
            if (world && std::abs(v.x) <= kLargest && std::abs(v.y) <= kLargest)
                vertices.takeIn({v.x + 0.0, v.y + 0.0, elevation + 0.0});
            else
                vertices.add(plane.toWorld(KxGePoint3d(v.x, v.y, elevation)));
        }
        add(vertices);
        return;
    }
    case kaldo::EntityKind::Mline: {
        const auto& mline = static_cast<const KxDbMline&>(entity);
        ExtentsBox vertices;
        for (int i = 0; i < mline.numVertices(); ++i)
            vertices.add(mline.vertexAt(i));
        add(vertices);
        return;
    }
    case kaldo::EntityKind::Unmodelled:
    case kaldo::EntityKind::Other:
        return;
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
