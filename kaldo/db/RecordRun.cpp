#include "kaldo/db/RecordRun.h"

#include "kaldo/db/UndoHistory.h"
#include "kxdbdatabase.h"
#include "kxdbsymtb.h"

#include <cstring>

namespace kaldo {

KX_RX_DEFINE_MEMBERS(RecordRun, KxDbUnmodelledEntity)

RecordRun::RecordRun(std::string_view kind, KxDbPackedGroupsView first, std::string_view further,
                     std::size_t furtherCount)
    : KxDbUnmodelledEntity(kind, first), m_furtherBytes(std::uint32_t(further.size())),
      m_furtherCount(std::uint32_t(furtherCount))
{
    m_further = std::make_unique_for_overwrite<char[]>(further.size());
    std::memcpy(m_further.get(), further.data(), further.size());
}

void RecordRun::appendRecord(std::string& further, KxDbPackedGroupsView groups)
{
    const auto length = std::uint32_t(groups.bytes().size());
    further.append(reinterpret_cast<const char*>(&length), sizeof length);
    further.append(groups.bytes());
}

KxDbPackedGroupsView RecordRun::takeRecord(const char*& at)
{
    std::uint32_t length = 0;
    std::memcpy(&length, at, sizeof length);
    const KxDbPackedGroupsView groups(std::string_view(at + sizeof length, length));
    at += sizeof length + length;
    return groups;
}

KxDbPackedGroupsView RecordRun::lastRecord() const
{
    KxDbPackedGroupsView last;
    forEachRecord([&](std::size_t, KxDbPackedGroupsView groups) { last = groups; });
    return last;
}

void RecordRun::dropLastRecord()
{
    if (m_furtherCount == 0)
        return;
    const KxDbPackedGroupsView last = lastRecord();
    m_furtherBytes -= std::uint32_t(sizeof(std::uint32_t) + last.bytes().size());
    --m_furtherCount;
}

Kald::ErrorStatus RecordRun::copyFrom(const KxDbObject* other)
{
    if (const Kald::ErrorStatus es = KxDbUnmodelledEntity::copyFrom(other); es != Kald::eOk)
        return es;
    const auto& run = *static_cast<const RecordRun*>(other);
    m_further = std::make_unique_for_overwrite<char[]>(run.m_furtherBytes);
    std::memcpy(m_further.get(), run.m_further.get(), run.m_furtherBytes);
    m_furtherBytes = run.m_furtherBytes;
    m_furtherCount = run.m_furtherCount;
    return Kald::eOk;
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
    auto last = std::make_unique<KxDbUnmodelledEntity>(run->dxfName(), run->lastRecord());
    last->setLayer(run->layerId());
    last->setLinetype(run->linetypeId());
    last->setColor(run->color());
    const std::uint64_t handle = run->handle() + run->numRecords() - 1;
    run->dropLastRecord();
    return db.undoHistory().insertUnrecorded(*block, id, std::move(last), handle);
}

}  // namespace kaldo
