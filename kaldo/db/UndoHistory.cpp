#include "kaldo/db/UndoHistory.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "kaldo/db/HandleTable.h"
#include "kaldo/db/ObjectRegistry.h"
#include "kaldo/db/StateBytes.h"
#include "kaldo/db/TableRecords.h"
#include "kaldo/db/UnopenedRecords.h"
#include "kxdbmline.h"
#include "kxdbsymtb.h"

namespace kaldo {

UndoHistory::UndoHistory(KxDbDatabase& db, std::size_t byteBudget) : m_db(db), m_budget(byteBudget) {}

UndoHistory::~UndoHistory() = default;

void UndoHistory::setByteBudget(std::size_t bytes)
{
    m_budget = bytes;
    dropOverBudget();
}

void UndoHistory::beginStep(const std::wstring& name)
{
    if (m_depth++ == 0) {
        m_open = Step{};
        m_open.name = name;
    }
}

void UndoHistory::endStep()
{
    if (m_depth == 0 || --m_depth > 0)
        return;
    m_recorded.clear();
    if (m_open.objects.empty() && !m_open.header) {
        m_open = Step{};
        return;
    }
    keepOpenStep();
}

bool UndoHistory::firstRecordOf(const KxDbObject& obj)
{
    if (!recording() || obj.database() != &m_db)
        return false;
    const auto [recorded, first] = m_recorded.try_emplace(obj.objectId().asOldId(), false);
    if (first)
        return true;
    // Recorded by its positions alone: the whole state goes after them.
    return std::exchange(recorded->second, false);
}

bool UndoHistory::recordPositions(const KxDbEntity& entity)
{
    const KxDbMline* mline = KxDbMline::cast(&entity);
    if (!mline || !recording() || entity.database() != &m_db)
        return false;
    // Recorded before in this step, in whatever way: that covers a move.
    if (!m_recorded.try_emplace(entity.objectId().asOldId(), true).second)
        return true;
    ObjectRecord record;
    record.id = entity.objectId();
    record.kind = ObjectRecord::Kind::Positions;
    record.firstPosition = m_open.positions.size();
    record.positionCount = std::size_t(mline->numVertices());
    for (int v = 0; v < mline->numVertices(); ++v)
        m_open.positions.push_back(mline->vertexAt(v));
    m_open.objects.push_back(std::move(record));
    return true;
}

Kald::ErrorStatus UndoHistory::upgradeOpenToTranslate(KxDbEntity& entity)
{
    KxDbObject& object = entity;
    if (object.isWriteEnabled())
        return Kald::eOk;
    if (object.m_readers != 1)
        return Kald::eWasOpenForRead;
    object.m_readers = 0;
    object.m_openForWrite = true;
    if (!recordPositions(entity))
        recordBefore(entity);
    m_db.noteChange();
    return Kald::eOk;
}

void UndoHistory::insertUnrecorded(std::vector<UnrecordedInsert> inserts)
{
    // The inserts by the block whose list they go into, or by the object
    // they follow in the database's list.
    std::unordered_map<std::uint64_t, std::vector<UnrecordedInsert*>> byBlock;
    std::unordered_map<std::uint64_t, UnrecordedInsert*> byObject;
    for (UnrecordedInsert& insert : inserts) {
        const KxDbObject* after = m_db.peekObject(insert.after);
        if (!after || insert.objects.empty())
            continue;
        for (auto& [object, handle] : insert.objects) {
            object->putId(registerObject(object.get(), &m_db));
            object->putOwner(after->ownerId());
            m_db.m_handles->insert(handle, object->objectId());
            m_handleFloor = std::max(m_handleFloor, handle + 1);
        }
        if (KxDbEntity::cast(after))
            byBlock[after->ownerId().asOldId()].push_back(&insert);
        else
            byObject.emplace(insert.after.asOldId(), &insert);
    }
    // A list cut back to its length before a step keeps what was put in.
    const auto countIn = [&](KxDbObjectId block, std::size_t at, std::size_t count) {
        const auto countInStep = [&](Step& step) {
            for (ObjectRecord& record : step.objects)
                if (record.id == block && record.listed && *record.listed >= at)
                    *record.listed += count;
        };
        countInStep(m_open);
        for (Step& step : m_undo)
            countInStep(step);
        for (std::vector<Step>& group : m_redo)
            for (Step& step : group)
                countInStep(step);
    };
    for (auto& [blockId, blockInserts] : byBlock) {
        auto* block = KxDbBlockTableRecord::cast(m_db.peekObject(KxDbObjectId::fromOldId(blockId)));
        std::unordered_map<std::uint64_t, UnrecordedInsert*> after;
        for (UnrecordedInsert* insert : blockInserts)
            after.emplace(insert->after.asOldId(), insert);
        KxDbIdRuns entities;
        for (const KxDbObjectId id : block->m_entities) {
            entities.push_back(id);
            const auto found = after.find(id.asOldId());
            if (found == after.end())
                continue;
            countIn(block->objectId(), entities.size(), found->second->objects.size());
            for (auto& [entity, handle] : found->second->objects) {
                entities.push_back(entity->objectId());
                m_db.m_objectIds.push_back(entity.release()->objectId());
            }
        }
        block->m_entities = std::move(entities);
    }
    if (byObject.empty())
        return;
    std::unordered_map<std::uint64_t, KxDbObjectId> lastInsertedAfter;
    for (const auto& [after, insert] : byObject)
        lastInsertedAfter.emplace(after, insert->objects.back().first->objectId());
    m_db.m_unopened->followInserted(lastInsertedAfter);
    KxDbIdRuns objects;
    for (const KxDbObjectId object : m_db.m_objectIds) {
        objects.push_back(object);
        const auto found = byObject.find(object.asOldId());
        if (found == byObject.end())
            continue;
        for (auto& [inserted, handle] : found->second->objects)
            objects.push_back(inserted.release()->objectId());
    }
    m_db.m_objectIds = std::move(objects);
}

std::optional<std::size_t> UndoHistory::listedCount(const KxDbObject& obj)
{
    if (const auto* table = KxDbSymbolTable::cast(&obj))
        return table->m_records->ids.size();
    if (const auto* block = KxDbBlockTableRecord::cast(&obj))
        return block->m_entities.size();
    return std::nullopt;
}

void UndoHistory::exchangeListedTail(KxDbObject& obj, std::size_t keep, std::vector<KxDbObjectId>& tail)
{
    if (auto* table = KxDbSymbolTable::cast(&obj))
        table->exchangeTail(keep, tail);
    else if (auto* block = KxDbBlockTableRecord::cast(&obj))
        block->exchangeTail(keep, tail);
}

std::size_t UndoHistory::bytesOf(const ObjectRecord& record)
{
    return (record.object ? stateBytes(*record.object) : 0) + record.listedTail.capacity() * sizeof(KxDbObjectId);
}

std::size_t UndoHistory::Step::ownBytes() const
{
    return sizeof(Step) + name.capacity() * sizeof(wchar_t) + objects.capacity() * sizeof(ObjectRecord)
        + positions.capacity() * sizeof(KxGePoint3d);
}

void UndoHistory::addBytes(std::size_t bytes)
{
    m_open.bytes += bytes;
    m_bytes += bytes;
}

void UndoHistory::recordBefore(KxDbObject& obj)
{
    if (!firstRecordOf(obj))
        return;
    ObjectRecord record;
    record.id = obj.objectId();
    record.kind = ObjectRecord::Kind::Copy;
    record.object = obj.clone();
    record.owner = obj.ownerId();
    record.erased = obj.isErased();
    record.listed = listedCount(obj);
    record.bytes = bytesOf(record);
    addBytes(record.bytes);
    m_open.objects.push_back(std::move(record));
}

void UndoHistory::recordAdded(KxDbObject& obj, std::uint64_t handle)
{
    // Called by the database as it adds obj.
    if (!recording())
        m_handleFloor = std::max(m_handleFloor, handle + 1);
    if (!firstRecordOf(obj))
        return;
    ObjectRecord record;
    record.id = obj.objectId();
    m_open.objects.push_back(std::move(record));
}

bool UndoHistory::addedUnrecorded(std::uint64_t handle)
{
    if (recording())
        return false;
    m_handleFloor = std::max(m_handleFloor, handle + 1);
    return true;
}

void UndoHistory::recordHeader()
{
    if (!recording() || m_open.header)
        return;
    m_open.header = m_db.m_header;
}

void UndoHistory::keepOpenStep()
{
    clearRedo();
    m_open.objects.shrink_to_fit();
    m_open.positions.shrink_to_fit();
    addBytes(m_open.ownBytes());
    m_undo.push_back(std::move(m_open));
    m_open = Step{};
    dropOverBudget();
}

void UndoHistory::dropOverBudget()
{
    std::size_t drop = 0;
    std::size_t bytes = m_bytes;
    // The newest step (marks after it aside) stays, whatever it holds.
    std::size_t newest = m_undo.size();
    while (newest > 0 && m_undo[newest - 1].mark)
        --newest;
    while (bytes > m_budget && drop + 1 < newest)
        bytes -= m_undo[drop++].bytes;
    m_undo.erase(m_undo.begin(), m_undo.begin() + std::ptrdiff_t(drop));
    m_bytes = bytes;
}

void UndoHistory::clearRedo()
{
    for (const std::vector<Step>& group : m_redo)
        for (const Step& step : group)
            m_bytes -= step.bytes;
    m_redo.clear();
}

void UndoHistory::mark()
{
    if (m_undo.empty() || !m_undo.back().mark) {
        Step step;
        step.mark = true;
        m_undo.push_back(std::move(step));
    }
}

void UndoHistory::exchange(ObjectRecord& record, std::span<KxGePoint3d> positions)
{
    using Kind = ObjectRecord::Kind;
    switch (record.kind) {
    case Kind::Absent:
        record.object = m_db.detachObject(record.id, record.handle);
        if (record.object)
            record.kind = Kind::Detached;
        break;
    case Kind::Detached:
        m_db.reattachObject(std::move(record.object), record.handle);
        record.kind = Kind::Absent;
        break;
    case Kind::Copy: {
        KxDbObject* live = lookupObject(record.id);
        // Steps are exchanged in order, so a recorded object is always in
        // the database here; should it not be, its record is left alone.
        if (!live)
            return;
        std::unique_ptr<KxDbObject> current = live->clone();
        live->copyFrom(record.object.get());
        const KxDbObjectId owner = live->ownerId();
        live->putOwner(record.owner);
        record.owner = owner;
        const bool wasErased = live->m_erased;
        live->m_erased = record.erased;
        record.erased = wasErased;
        // Walks over ids read the erased flag from the id table.
        setErased(record.id, live->m_erased);
        record.object = std::move(current);
        if (record.listed)
            exchangeListedTail(*live, *record.listed, record.listedTail);
        break;
    }
    case Kind::Positions: {
        KxDbObject* live = lookupObject(record.id);
        const KxDbMline* mline = KxDbMline::cast(live);
        if (!mline || std::size_t(mline->numVertices()) != record.positionCount)
            return;
        const std::span<KxGePoint3d> recorded = positions.subspan(record.firstPosition, record.positionCount);
        KxGePoint3dArray current;
        current.reserve(recorded.size());
        for (int v = 0; v < mline->numVertices(); ++v)
            current.push_back(mline->vertexAt(v));
        KxDbSystemInternals::getImpObject(live)->appendSegments(KxGePoint3dArray(recorded.begin(), recorded.end()));
        std::ranges::copy(current, recorded.begin());
        break;
    }
    }
    record.bytes = bytesOf(record);
}

void UndoHistory::exchange(Step& step, bool backwards)
{
    m_bytes -= step.bytes;
    step.bytes = step.ownBytes();
    // States first and added objects after when going back, the other way
    // round when going forward: added objects are present while the states
    // are exchanged.
    const auto isState = [](const ObjectRecord& record) {
        return record.kind == ObjectRecord::Kind::Copy || record.kind == ObjectRecord::Kind::Positions;
    };
    const auto exchangeWhere = [&](bool states) {
        const auto exchangeOne = [&](ObjectRecord& record) {
            if (isState(record) != states)
                return;
            exchange(record, step.positions);
            step.bytes += record.bytes;
        };
        if (backwards)
            std::for_each(step.objects.rbegin(), step.objects.rend(), exchangeOne);
        else
            std::for_each(step.objects.begin(), step.objects.end(), exchangeOne);
    };
    exchangeWhere(backwards);
    exchangeWhere(!backwards);
    if (step.header) {
        std::swap(*step.header, m_db.m_header);
        m_db.m_header.handseed = std::max(m_db.m_header.handseed, m_handleFloor);
    }
    m_bytes += step.bytes;
    m_db.noteChange();
}

std::vector<std::wstring> UndoHistory::undo(int count)
{
    return takeBack(count, false);
}

std::vector<std::wstring> UndoHistory::undoToMark()
{
    return takeBack(std::numeric_limits<int>::max(), true);
}

std::vector<std::wstring> UndoHistory::takeBack(int count, bool stopAtMark)
{
    std::vector<std::wstring> names;
    std::vector<Step> taken;
    while (count > 0 && !m_undo.empty()) {
        Step step = std::move(m_undo.back());
        m_undo.pop_back();
        if (step.mark) {
            if (stopAtMark)
                break;
            continue;
        }
        exchange(step, true);
        names.push_back(step.name);
        taken.push_back(std::move(step));
        --count;
    }
    if (!taken.empty())
        m_redo.push_back(std::move(taken));
    return names;
}

std::vector<std::wstring> UndoHistory::redo()
{
    std::vector<std::wstring> names;
    if (m_redo.empty())
        return names;
    std::vector<Step> group = std::move(m_redo.back());
    m_redo.pop_back();
    for (auto it = group.rbegin(); it != group.rend(); ++it) {
        exchange(*it, false);
        names.push_back(it->name);
        m_undo.push_back(std::move(*it));
    }
    return names;
}

std::size_t UndoHistory::undoableSteps() const
{
    return std::size_t(std::count_if(m_undo.begin(), m_undo.end(), [](const Step& step) { return !step.mark; }));
}

void recordBeforeChange(KxDbObject& obj)
{
    if (KxDbDatabase* db = obj.database())
        db->undoHistory().recordBefore(obj);
}

Kald::ErrorStatus upgradeOpenToTranslate(KxDbEntity& entity)
{
    if (KxDbDatabase* db = entity.database())
        return db->undoHistory().upgradeOpenToTranslate(entity);
    return entity.upgradeOpen();
}

}  // namespace kaldo
