#include "kaldo/dxf/BlockEnds.h"

#include "kaldo/db/UnopenedRecords.h"
#include "kxdbdatabase.h"

#include <algorithm>

namespace kaldo::dxf {

void BlockEnds::add(KxDbObjectId block, const Ends& ends)
{
    const Entry entry{block.asOldId(), ends.begin.asOldId(), ends.end.asOldId()};
    m_settled = m_settled && (m_entries.empty() || m_entries.back().block < entry.block);
    m_entries.push_back(entry);
}

void BlockEnds::settle()
{
    if (m_settled)
        return;
    std::stable_sort(m_entries.begin(), m_entries.end(),
                     [](const Entry& a, const Entry& b) { return a.block < b.block; });
    // The last one noted of a block gives those before way.
    std::vector<Entry> kept;
    kept.reserve(m_entries.size());
    for (const Entry& entry : m_entries) {
        if (!kept.empty() && kept.back().block == entry.block)
            kept.back() = entry;
        else
            kept.push_back(entry);
    }
    m_entries = std::move(kept);
    m_settled = true;
}

std::optional<BlockEnds::Ends> BlockEnds::find(KxDbObjectId block) const
{
    const std::uint64_t serial = block.asOldId();
    const Entry* found = nullptr;
    if (m_settled) {
        const auto it = std::lower_bound(m_entries.begin(), m_entries.end(), serial,
                                         [](const Entry& entry, std::uint64_t s) { return entry.block < s; });
        if (it != m_entries.end() && it->block == serial)
            found = &*it;
    } else {
        const auto it = std::find_if(m_entries.rbegin(), m_entries.rend(),
                                     [serial](const Entry& entry) { return entry.block == serial; });
        if (it != m_entries.rend())
            found = &*it;
    }
    if (!found)
        return std::nullopt;
    return Ends{KxDbObjectId::fromOldId(found->begin), KxDbObjectId::fromOldId(found->end)};
}

std::optional<BlockEndRecord> blockEndRecord(const KxDbDatabase& db, KxDbObjectId id)
{
    const kaldo::UnopenedRecords& unopened = db.unopenedRecords();
    if (const std::optional<kaldo::UnopenedRecords::Kept> kept = unopened.kept(id))
        return BlockEndRecord{kept->look->kind, kept->groups, unopened.handleOf(id)};
    if (const auto* record = KxDbUnmodelledObject::cast(db.peekObject(id)))
        return BlockEndRecord{record->dxfName(), record->packedGroups(), record->handle()};
    return std::nullopt;
}

}  // namespace kaldo::dxf
