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

// The entity id names, to be written or measured: the drawing's, or for
// one kept unopened an entity made from its record that aside holds until
// it is used, so that saving makes no entity the drawing's. Null for no
// entity.
const KxDbEntity* entityToWrite(const KxDbDatabase& db, KxDbObjectId id, std::unique_ptr<KxDbEntity>& aside);

class EntityWalk {
public:
    // Entities and how many file records they stand for (a run of kept
    // records stands for each of its own), with those made aside for the
    // chunk from their kept records (entityToWrite), dropped with it.
    struct Chunk {
        std::vector<const KxDbEntity*> entities;
        std::vector<std::unique_ptr<KxDbEntity>> aside;
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
