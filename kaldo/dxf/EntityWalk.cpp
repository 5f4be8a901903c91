#include "kaldo/dxf/EntityWalk.h"

#include "kaldo/db/RecordRun.h"
#include "kxdbdatabase.h"

namespace kaldo::dxf {

EntityWalk::EntityWalk(const KxDbDatabase& db, std::vector<KxDbObjectId> blocks, std::size_t size)
    : db_(db), blocks_(std::move(blocks)), size_(size)
{
}

void EntityWalk::next(Chunk& chunk)
{
    chunk.entities.clear();
    chunk.records = 0;
    while (chunk.records < size_) {
        if (!walk_ || walk_->done()) {
            if (block_ == blocks_.size())
                return;
            const auto* block = KxDbBlockTableRecord::cast(db_.peekObject(blocks_[block_++]));
            walk_ = block ? block->newIterator() : nullptr;
            continue;
        }
        if (const auto* entity = KxDbEntity::cast(db_.peekObject(walk_->getEntityId()))) {
            chunk.entities.push_back(entity);
            chunk.records += kaldo::keptRecordCount(*entity);
        }
        walk_->step();
    }
}

}  // namespace kaldo::dxf
