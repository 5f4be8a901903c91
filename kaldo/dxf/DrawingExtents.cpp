#include "kaldo/dxf/DrawingExtents.h"

#include "kxdbdatabase.h"
#include "kxdbents.h"
#include "kxdbmline.h"
#include "kxdbsymtb.h"

#include <algorithm>

namespace kaldo::dxf {

namespace {

struct Box {
    KxGePoint3d min{1e20, 1e20, 1e20};
    KxGePoint3d max{-1e20, -1e20, -1e20};
    void add(const KxGePoint3d& p)
    {
        min = {std::min(min.x, p.x), std::min(min.y, p.y), std::min(min.z, p.z)};
        max = {std::max(max.x, p.x), std::max(max.y, p.y), std::max(max.z, p.z)};
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
        for (int i = 0; i < pline->numVerts(); ++i)
            box.add(pline->pointAt(i));
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
        for (auto it = space->newIterator(); !it->done(); it->step())
            addEntity(box, db.peekObject(it->getEntityId()));
    }
    return {box.min, box.max};
}

}  // namespace kaldo::dxf
