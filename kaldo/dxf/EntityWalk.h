// The entities of some blocks in their drawing order, handed out a chunk
// at a time, so that two threads can share the work of a long list and no
// list of them all is held.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "kxdbsymtb.h"

class KxDbDatabase;
class KxDbEntity;

namespace kaldo::dxf {

class EntityWalk {
public:
    // Entities and how many file records they stand for (a run of kept
    // records stands for each of its own).
    struct Chunk {
        std::vector<const KxDbEntity*> entities;
        std::size_t records = 0;
    };

    // The entities of blocks, one block after the other, as many as stand
    // for size records at a time.
    EntityWalk(const KxDbDatabase& db, std::vector<KxDbObjectId> blocks, std::size_t size);

    // Fills chunk with the next entities; empty once all were given.
    void next(Chunk& chunk);

private:
    const KxDbDatabase& db_;
    const std::vector<KxDbObjectId> blocks_;
    const std::size_t size_;
    std::size_t block_ = 0;
    std::unique_ptr<KxDbBlockTableRecordIterator> walk_;
};

}  // namespace kaldo::dxf
