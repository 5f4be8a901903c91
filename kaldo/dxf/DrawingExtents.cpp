#include "kaldo/dxf/DrawingExtents.h"

#include "kaldo/db/EntityPlane.h"
#include "kaldo/dxf/SpaceEntities.h"
#include "kxdbdatabase.h"
#include "kxdbents.h"
#include "kxdbmline.h"
#include "kxdbsymtb.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>

namespace kaldo::dxf {

namespace {

struct Box {
    KxGePoint3d min{1e20, 1e20, 1e20};
    KxGePoint3d max{-1e20, -1e20, -1e20};
    // Extents stay finite: a point beyond the largest number (a circle that
    // reaches further) counts as lying at it, and one that is no number
    // counts not at all; the writer names the entity that holds one.
    void add(const KxGePoint3d& p)
    {
        if (std::isnan(p.x) || std::isnan(p.y) || std::isnan(p.z))
            return;
        constexpr double kLargest = std::numeric_limits<double>::max();
        const KxGePoint3d q(std::clamp(p.x, -kLargest, kLargest), std::clamp(p.y, -kLargest, kLargest),
                            std::clamp(p.z, -kLargest, kLargest));
        min = {std::min(min.x, q.x), std::min(min.y, q.y), std::min(min.z, q.z)};
        max = {std::max(max.x, q.x), std::max(max.y, q.y), std::max(max.z, q.z)};
    }
    void add(const KxGePoint3d& center, double radius)
    {
        add(center + KxGeVector3d(radius, radius, radius));
        add(center - KxGeVector3d(radius, radius, radius));
    }
};

void addEntity(Box& box, const KxDbObject* obj)
{
    if (const auto* line = KxDbLine::cast(obj)) {
        box.add(line->startPoint());
        box.add(line->endPoint());
    } else if (const auto* arc = KxDbArc::cast(obj)) {
        box.add(arc->center(), arc->radius());
    } else if (const auto* circle = KxDbCircle::cast(obj)) {
        box.add(circle->center(), circle->radius());
    } else if (const auto* pline = KxDbPolyline::cast(obj)) {
        // pointAt's conversion, with the plane made once per polyline.
        const kaldo::EntityPlane plane(pline->normal());
        for (int i = 0; i < pline->numVerts(); ++i) {
            const KxDbPolyline::Vertex v = pline->vertexAt(i);
            box.add(plane.toWorld(KxGePoint3d(v.x, v.y, pline->elevation())));
        }
    } else if (const auto* mline = KxDbMline::cast(obj)) {
        for (int i = 0; i < mline->numVertices(); ++i)
            box.add(mline->vertexAt(i));
    }
}

}  // namespace

Extents drawingExtents(const KxDbDatabase& db)
{
    Box box;
    const auto* space = KxDbBlockTableRecord::cast(db.peekObject(db.modelSpaceId()));
    if (space) {
        std::unique_ptr<KxDbEntity> aside;
        for (auto it = space->newIterator(); !it->done(); it->step())
            addEntity(box, entityToWrite(db, it->getEntityId(), aside));
    }
    return {box.min, box.max};
}

}  // namespace kaldo::dxf
