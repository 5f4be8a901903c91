#include "kaldo/db/RecordRun.h"

#include "kaldo/db/UndoHistory.h"
#include "kaldo/db/VarNumber.h"
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


void KeptRecordTail::append(std::string& bytes, std::uint64_t previous, std::uint64_t handle,
                            KxDbPackedGroupsView groups)
{
    // The distance from the next handle, its sign in the lowest bit.
    const std::uint64_t step = handle == 0 ? 0 : handle - (previous + 1);
    appendVarNumber(bytes, (step << 1) ^ (std::int64_t(step) < 0 ? ~std::uint64_t(0) : 0));
    appendVarNumber(bytes, groups.bytes().size());
    bytes.append(groups.bytes());
}

KeptRecord KeptRecordTail::take(const char*& at, std::uint64_t previous)
{
    const std::uint64_t zigzag = takeVarNumber(at);
    const std::uint64_t step = (zigzag >> 1) ^ (zigzag & 1 ? ~std::uint64_t(0) : 0);
    const std::uint64_t length = takeVarNumber(at);
    const KxDbPackedGroupsView groups(std::string_view(at, length));
    at += length;
    return {groups, previous + 1 + step};
}

KeptRecord KeptRecordTail::last(std::uint64_t handle) const
{
    KeptRecord last;
    forEach(handle, [&](const KeptRecord& record) { last = record; });
    return last;
}

void KeptRecordTail::dropLast()
{
    if (m_count == 0)
        return;
    const char* at = m_records.get();
    const char* lastAt = at;
    for (std::size_t index = 0; index < m_count; ++index) {
        lastAt = at;
        take(at, 0);
    }
    m_bytes = std::uint32_t(lastAt - m_records.get());
    --m_count;
}

std::size_t keptRecordCount(const KxDbEntity& entity)
{
    // A run's class has no children: compared at once, where a cast walks
    // the entity's class up to its root (saving asks every entity).
    if (entity.isA() != RecordRun::desc())
        return 1;
    return static_cast<const RecordRun&>(entity).numRecords();
}

namespace {

// A record of an entity run as an entity of its own, in the run's look.
std::unique_ptr<KxDbUnmodelledEntity> entityOfRecord(const RecordRun& run, KxDbPackedGroupsView groups)
{
    auto entity = KxDbUnmodelledEntity::make(run.dxfName(), groups);
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
    const KeptRecord record = run->tail().last(run->handle());
    std::unique_ptr<KxDbObject> last = entityOfRecord(*run, record.groups);
    const KxDbObject* split = last.get();
    run->dropLastRecord();
    std::vector<UndoHistory::UnrecordedInsert> inserts(1);
    inserts[0].after = id;
    inserts[0].objects.emplace_back(std::move(last), record.handle);
    db.undoHistory().insertUnrecorded(std::move(inserts));
    return split->objectId();
}

void separateRecords(KxDbDatabase& db, const std::vector<KxDbObjectId>& runs)
{
    std::vector<UndoHistory::UnrecordedInsert> inserts;
    for (const KxDbObjectId id : runs) {
        KxDbObject* object = db.peekObject(id);
        UndoHistory::UnrecordedInsert insert{id, {}};
        const std::uint64_t handle = object ? object->handle() : 0;
        if (auto* run = RecordRun::cast(object)) {
            const KeptRecordTail tail = run->takeTail();
            tail.forEach(handle, [&](const KeptRecord& record) {
                insert.objects.emplace_back(entityOfRecord(*run, record.groups), record.handle);
            });
        } else if (auto* objectRun = ObjectRecordRun::cast(object)) {
            const KeptRecordTail tail = objectRun->takeTail();
            tail.forEach(handle, [&](const KeptRecord& record) {
                insert.objects.emplace_back(
                    KxDbUnmodelledObject::make(objectRun->dxfName(), record.groups), record.handle);
            });
        }
        inserts.push_back(std::move(insert));
    }
    db.undoHistory().insertUnrecorded(std::move(inserts));
}

}  // namespace kaldo
