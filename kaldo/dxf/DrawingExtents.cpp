#include "kaldo/dxf/DrawingExtents.h"

#include "kaldo/db/EntityPlane.h"
#include "kaldo/dxf/EntityWalk.h"
#include "kxdbdatabase.h"
#include "kxdbents.h"
#include "kxdbmline.h"
#include "kxdbsymtb.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

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
    // Takes in the box of entities that come after this box's: of equal
    // coordinates (0 and -0) the first stays, as when they are added one by
    // one.
    void add(const Box& later)
    {
        min = {std::min(min.x, later.min.x), std::min(min.y, later.min.y), std::min(min.z, later.min.z)};
        max = {std::max(max.x, later.max.x), std::max(max.y, later.max.y), std::max(max.z, later.max.z)};
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

// The box of a chunk, apart from the walk's lock, so that the box stays in
// registers.
Box chunkBox(const EntityWalk::Chunk& chunk)
{
    Box box;
    for (const KxDbEntity* entity : chunk.entities)
        addEntity(box, entity);
    return box;
}

}  // namespace

Extents drawingExtents(const KxDbDatabase& db, const EntityChunks& chunks)
{
    // Chunk by chunk, on two threads when a first full chunk shows that
    // more may follow; each chunk's box is kept in its place and the boxes
    // are joined in the drawing's order.
    EntityWalk walk(db, {db.modelSpaceId()}, chunks.records);
    std::mutex mutex;
    std::vector<Box> boxes;
    const auto take = [&](EntityWalk::Chunk& chunk, std::size_t& number) {
        const std::lock_guard lock(mutex);
        walk.next(chunk);
        number = boxes.size();
        if (!chunk.entities.empty())
            boxes.emplace_back();
        return !chunk.entities.empty();
    };
    const auto measure = [&](EntityWalk::Chunk& chunk, std::size_t number) {
        do {
            const Box box = chunkBox(chunk);
            const std::lock_guard lock(mutex);
            boxes[number] = box;
        } while (take(chunk, number));
    };
    EntityWalk::Chunk chunk;
    std::size_t number = 0;
    if (take(chunk, number)) {
        std::optional<std::jthread> other;
        if (!chunks.oneThread && chunk.records >= chunks.records)
            other.emplace([&] {
                EntityWalk::Chunk otherChunk;
                std::size_t otherNumber = 0;
                if (take(otherChunk, otherNumber))
                    measure(otherChunk, otherNumber);
            });
        measure(chunk, number);
    }
    Box all;
    for (const Box& box : boxes)
        all.add(box);
    return {all.min, all.max};
}

}  // namespace kaldo::dxf
