#include "kaldo/dxf/NameCache.h"

#include "kaldo/db/TableRecords.h"
#include "kaldo/db/UnopenedRecords.h"
#include "kaldo/dxf/RecordWriting.h"
#include "kaldo/util/Utf8.h"
#include "kxdbdatabase.h"

namespace kaldo::dxf {

const std::string& NameCache::operator()(KxDbObjectId id, const char* fallback)
{
    if (const auto known = names_.find(id.asOldId()); known != names_.end())
        return known->second;
    const std::optional<std::wstring> name = kaldo::TableRecords::nameIn(db_, id);
    std::string& kept = names_.size() < kCached ? names_[id.asOldId()] : uncached_;
    kept = name ? utf8FromWide(*name) : fallback;
    return kept;
}

std::uint64_t NameCache::ownerHandle(KxDbObjectId block)
{
    if (block != lastOwner_) {
        lastOwner_ = block;
        lastOwnerHandle_ = handleOf(db_, block);
    }
    return lastOwnerHandle_;
}

std::uint64_t NameCache::handle(KxDbObjectId id)
{
    const std::uint64_t serial = id.asOldId();
    if (serial - handles_.firstKey >= handles_.count) {
        handles_ = db_.unopenedRecords().handleRunOf(id);
        if (serial - handles_.firstKey >= handles_.count)
            return db_.unopenedRecords().handleOf(id);
    }
    return handles_.firstValue + (serial - handles_.firstKey);
}

}  // namespace kaldo::dxf
