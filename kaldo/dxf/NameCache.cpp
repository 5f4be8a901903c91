#include "kaldo/dxf/NameCache.h"

#include "kaldo/db/TableRecords.h"
#include "kaldo/dxf/RecordWriting.h"
#include "kaldo/util/Utf8.h"

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

}  // namespace kaldo::dxf
