#include "kaldo/db/RecordRun.h"

#include "kaldo/db/UndoHistory.h"
#include "kxdbdatabase.h"
#include "kxdbsymtb.h"

#include <cstring>

namespace kaldo {

KX_RX_DEFINE_MEMBERS(RecordRun, KxDbUnmodelledEntity)
KX_RX_DEFINE_MEMBERS(ObjectRecordRun, KxDbUnmodelledObject)

KeptRecordTail::KeptRecordTail(std::string_view bytes, std::size_t count)
    : m_records(std::make_unique_for_overwrite<char[]>(bytes.size())), m_bytes(std::uint32_t(bytes.size())),
      m_count(std::uint32_t(count))
{
    std::memcpy(m_records.get(), bytes.data(), bytes.size());
}

KeptRecordTail& KeptRecordTail::operator=(const KeptRecordTail& other)
{
    if (this != &other)
        *this = KeptRecordTail(other.bytes(), other.m_count);
    return *this;
}

void KeptRecordTail::append(std::string& bytes, KxDbPackedGroupsView groups)
{
    const auto length = std::uint32_t(groups.bytes().size());
    bytes.append(reinterpret_cast<const char*>(&length), sizeof length);
    bytes.append(groups.bytes());
}

KxDbPackedGroupsView KeptRecordTail::take(const char*& at)
{
    std::uint32_t length = 0;
    std::memcpy(&length, at, sizeof length);
    const KxDbPackedGroupsView groups(std::string_view(at + sizeof length, length));
    at += sizeof length + length;
    return groups;
}

KxDbPackedGroupsView KeptRecordTail::last() const
{
    KxDbPackedGroupsView last;
    forEach([&](KxDbPackedGroupsView groups) { last = groups; });
    return last;
}

void KeptRecordTail::dropLast()
{
    if (m_count == 0)
        return;
    m_bytes -= std::uint32_t(sizeof(std::uint32_t) + last().bytes().size());
    --m_count;
}

std::size_t keptRecordCount(const KxDbEntity& entity)
{
    const auto* run = RecordRun::cast(&entity);
    return run ? run->numRecords() : 1;
}

KxDbObjectId splitOffLastRecord(KxDbDatabase& db, KxDbObjectId id)
{
    auto* run = RecordRun::cast(db.peekObject(id));
    if (!run || run->numRecords() < 2)
        return id;
    auto* block = KxDbBlockTableRecord::cast(db.peekObject(run->ownerId()));
    if (!block)
        return id;
    auto last = std::make_unique<KxDbUnmodelledEntity>(run->dxfName(), run->tail().last());
    last->setLayer(run->layerId());
    last->setLinetype(run->linetypeId());
    last->setColor(run->color());
    const std::uint64_t handle = run->handle() + run->numRecords() - 1;
    run->dropLastRecord();
    return db.undoHistory().insertUnrecorded(*block, id, std::move(last), handle);
}

}  // namespace kaldo
