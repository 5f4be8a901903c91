#include "kaldo/dxf/BlockEnds.h"

#include "kaldo/db/UnopenedRecords.h"
#include "kaldo/db/VarNumber.h"
#include "kxdbdatabase.h"

#include <algorithm>

namespace kaldo::dxf {

namespace {

void appendStep(std::string& bytes, std::uint64_t from, std::uint64_t to)
{
    const auto step = static_cast<std::int64_t>(to - from);
    kaldo::appendVarNumber(bytes, (static_cast<std::uint64_t>(step) << 1) ^ static_cast<std::uint64_t>(step >> 63));
}

std::uint64_t takeStep(const char*& at, std::uint64_t from)
{
    const std::uint64_t zigzag = kaldo::takeVarNumber(at);
    return from + ((zigzag >> 1) ^ (~(zigzag & 1) + 1));
}

}  // namespace

void BlockEnds::append(const Entry& entry)
{
    std::uint64_t before = m_lastBlock;
    if (m_count % kMarkEvery == 0) {
        m_marks.push_back({entry.block, m_entries.size()});
        before = 0;
    }
    appendStep(m_entries, before, entry.block);
    appendStep(m_entries, entry.block, entry.begin);
    appendStep(m_entries, entry.begin, entry.end);
    m_lastBlock = entry.block;
    ++m_count;
}

template <class See>
void BlockEnds::forEachFrom(std::size_t index, See&& see) const
{
    if (index >= m_marks.size())
        return;
    const char* at = m_entries.data() + m_marks[index].at;
    const char* const end = m_entries.data() + m_entries.size();
    std::uint64_t block = 0;
    for (std::size_t i = index * kMarkEvery; at < end; ++i) {
        Entry entry;
        entry.block = takeStep(at, i % kMarkEvery == 0 ? 0 : block);
        entry.begin = takeStep(at, entry.block);
        entry.end = takeStep(at, entry.begin);
        block = entry.block;
        if (!see(entry))
            return;
    }
}

void BlockEnds::add(KxDbObjectId block, const Ends& ends)
{
    const Entry entry{block.asOldId(), ends.begin.asOldId(), ends.end.asOldId()};
    m_settled = m_settled && (m_count == 0 || m_lastBlock < entry.block);
    append(entry);
}

void BlockEnds::settle()
{
    if (m_settled)
        return;
    std::vector<Entry> entries;
    entries.reserve(m_count);
    forEachFrom(0, [&](const Entry& entry) {
        entries.push_back(entry);
        return true;
    });
    std::stable_sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) { return a.block < b.block; });
    m_entries.clear();
    m_marks.clear();
    m_count = 0;
    // The last one noted of a block gives those before way.
    for (std::size_t i = 0; i < entries.size(); ++i)
        if (i + 1 == entries.size() || entries[i + 1].block != entries[i].block)
            append(entries[i]);
    m_entries.shrink_to_fit();
    m_settled = true;
}

std::optional<BlockEnds::Ends> BlockEnds::find(KxDbObjectId block) const
{
    const std::uint64_t serial = block.asOldId();
    std::optional<Entry> found;
    std::size_t from = 0;
    if (m_settled) {
        const auto mark = std::upper_bound(m_marks.begin(), m_marks.end(), serial,
                                           [](std::uint64_t s, const Mark& m) { return s < m.block; });
        if (mark == m_marks.begin())
            return std::nullopt;
        from = std::size_t(mark - m_marks.begin()) - 1;
    }
    forEachFrom(from, [&](const Entry& entry) {
        if (entry.block == serial)
            found = entry;
        return !m_settled || entry.block < serial;
    });
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
