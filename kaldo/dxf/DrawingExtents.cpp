#include "kaldo/dxf/DrawingExtents.h"

#include "kaldo/dxf/EntityWalk.h"
#include "kaldo/dxf/ExtentsBox.h"
#include "kxdbdatabase.h"

#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace kaldo::dxf {

bool KnownExtents::holdFor(const KxDbDatabase& db) const
{
    return database == &db && changes == db.changeCount();
}

Extents drawingExtents(const KxDbDatabase& db, const EntityChunks& chunks)
{
    // Chunk by chunk, on two threads when a first full chunk shows that
    // more may follow; each chunk's box is kept in its place and the boxes
    // are joined in the drawing's order.
    EntityWalk walk(db, {db.modelSpaceId()}, chunks.records);
    std::mutex mutex;
    std::vector<ExtentsBox> boxes;
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
            const ExtentsBox box = ExtentsBox::of(chunk.entities);
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
    ExtentsBox all;
    for (const ExtentsBox& box : boxes)
        all.add(box);
    return all.extents();
}

Extents drawingExtents(const KxDbDatabase& db, const KnownExtents& known, const EntityChunks& chunks)
{
    return known.holdFor(db) ? known.extents : drawingExtents(db, chunks);
}

}  // namespace kaldo::dxf
