#include "kaldo/dxf/EntityWalk.h"

#include "kaldo/db/RecordRun.h"
#include "kaldo/db/UnopenedRecords.h"
#include "kxdbdatabase.h"

namespace kaldo::dxf {

const KxDbEntity* entityToWrite(const KxDbDatabase& db, KxDbObjectId id, std::unique_ptr<KxDbEntity>& aside)
{
    std::unique_ptr<KxDbObject> made = db.unopenedRecords().makeAside(id);
    if (!made)
        return KxDbEntity::cast(db.peekObject(id));
    aside.reset(KxDbEntity::cast(made.get()));
    if (aside)
        made.release();
    return aside.get();
}

EntityWalk::EntityWalk(const KxDbDatabase& db, std::vector<KxDbObjectId> blocks, std::size_t size)
    : db_(db), blocks_(std::move(blocks)), size_(size)
{
}

void EntityWalk::next(Chunk& chunk)
{
    chunk.entities.clear();
    chunk.aside.clear();
    chunk.records = 0;
    while (chunk.records < size_) {
        if (!walk_ || walk_->done()) {
            if (block_ == blocks_.size())
                return;
            const auto* block = KxDbBlockTableRecord::cast(db_.peekObject(blocks_[block_++]));
            walk_ = block ? block->newIterator() : nullptr;
            continue;
        }
        std::unique_ptr<KxDbEntity> aside;
        if (const KxDbEntity* entity = entityToWrite(db_, walk_->getEntityId(), aside)) {
            chunk.entities.push_back(entity);
            chunk.records += kaldo::keptRecordCount(*entity);
            if (aside)
                chunk.aside.push_back(std::move(aside));
        }
        walk_->step();
    }
}

}  // namespace kaldo::dxf
