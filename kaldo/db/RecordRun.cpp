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

namespace {

// A record of an entity run as an entity of its own, in the run's look.
std::unique_ptr<KxDbUnmodelledEntity> entityOfRecord(const RecordRun& run, KxDbPackedGroupsView groups)
{
    auto entity = std::make_unique<KxDbUnmodelledEntity>(run.dxfName(), groups);
    entity->setLayer(run.layerId());
    entity->setLinetype(run.linetypeId());
    entity->setColor(run.color());
    return entity;
}

}  // namespace

KxDbObjectId splitOffLastRecord(KxDbDatabase& db, KxDbObjectId id)
{
    auto* run = RecordRun::cast(db.peekObject(id));
    if (!run || run->numRecords() < 2 || !KxDbBlockTableRecord::cast(db.peekObject(run->ownerId())))
        return id;
    std::unique_ptr<KxDbObject> last = entityOfRecord(*run, run->tail().last());
    const KxDbObject* split = last.get();
    const std::uint64_t handle = run->handle() + run->numRecords() - 1;
    run->dropLastRecord();
    std::vector<UndoHistory::UnrecordedInsert> inserts(1);
    inserts[0].after = id;
    inserts[0].objects.emplace_back(std::move(last), handle);
    db.undoHistory().insertUnrecorded(std::move(inserts));
    return split->objectId();
}

void separateRecords(KxDbDatabase& db, const std::vector<KxDbObjectId>& runs)
{
    std::vector<UndoHistory::UnrecordedInsert> inserts;
    for (const KxDbObjectId id : runs) {
        KxDbObject* object = db.peekObject(id);
        UndoHistory::UnrecordedInsert insert{id, {}};
        std::uint64_t handle = object ? object->handle() : 0;
        if (auto* run = RecordRun::cast(object)) {
            const KeptRecordTail tail = run->takeTail();
            tail.forEach([&](KxDbPackedGroupsView groups) {
                insert.objects.emplace_back(entityOfRecord(*run, groups), ++handle);
            });
        } else if (auto* objectRun = ObjectRecordRun::cast(object)) {
            const KeptRecordTail tail = objectRun->takeTail();
            tail.forEach([&](KxDbPackedGroupsView groups) {
                insert.objects.emplace_back(std::make_unique<KxDbUnmodelledObject>(objectRun->dxfName(), groups),
                                            ++handle);
            });
        }
        inserts.push_back(std::move(insert));
    }
    db.undoHistory().insertUnrecorded(std::move(inserts));
}

}  // namespace kaldo
