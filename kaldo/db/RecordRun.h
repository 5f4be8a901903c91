// Consecutive records of one kind that nothing in the host reads by name,
// held as one entity (in one block) or one object: a file can spend four
// bytes on such a record, where an object per record costs far more. Each
// record keeps its handle: the file's, in any order, or, for records the
// file gave none, the one after the record before (the first record's is
// the run's own); the database gives out none of them again. They are
// written back one by one, as the objects they stand for would be.
// A selection that takes an entity run's last record by itself (Last)
// splits it off into an entity of its own first (splitOffLastRecord), so
// that no command ever acts on a run; objects are never selected.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "kxdbunmodelled.h"

class KxDbDatabase;

namespace kaldo {

// A record of a run and its handle.
struct KeptRecord {
    KxDbPackedGroupsView groups;
    std::uint64_t handle = 0;
};

// The records of a run after its first: each how far its handle lies from
// the one after the record before's (zigzag, seven bits a byte: one byte
// for the next handle or one a few further), its groups' length (seven
// bits a byte) and its packed groups.
class KeptRecordTail {
public:
    KeptRecordTail() = default;
    KeptRecordTail(std::string_view bytes, std::size_t count);
    KeptRecordTail(const KeptRecordTail& other) : KeptRecordTail(other.bytes(), other.m_count) {}
    KeptRecordTail(KeptRecordTail&&) noexcept = default;
    KeptRecordTail& operator=(const KeptRecordTail& other);
    KeptRecordTail& operator=(KeptRecordTail&&) noexcept = default;

    std::size_t count() const { return m_count; }
    std::size_t byteSize() const { return m_bytes; }
    // Calls visit(record) for every record, in order; handle is the one of
    // the record before the first (the run's).
    template <class Visit>
    void forEach(std::uint64_t handle, Visit&& visit) const
    {
        const char* at = m_records.get();
        for (std::size_t index = 0; index < m_count; ++index) {
            const KeptRecord record = take(at, handle);
            handle = record.handle;
            visit(record);
        }
    }
    KeptRecord last(std::uint64_t handle) const;
    void dropLast();

    // Appends a record as the bytes of a tail hold it: its handle (0 for
    // the one after previous, the handle of the record before) and groups.
    static void append(std::string& bytes, std::uint64_t previous, std::uint64_t handle, KxDbPackedGroupsView groups);

private:
    std::string_view bytes() const { return {m_records.get(), m_bytes}; }
    // The record at, after the one of handle previous, and at moved past it.
    static KeptRecord take(const char*& at, std::uint64_t previous);

    std::unique_ptr<char[]> m_records;
    std::uint32_t m_bytes = 0;
    std::uint32_t m_count = 0;
};

// What a run adds to the record it starts with, over either kind of kept
// record (entity or object).
template <class Kept>
class KeptRecordRun : public Kept {
public:
    KeptRecordRun() = default;
    KeptRecordRun(std::string_view kind, KxDbPackedGroupsView first, KeptRecordTail tail)
        : Kept(kind, first), m_tail(std::move(tail))
    {
    }

    const KeptRecordTail& tail() const { return m_tail; }
    // The records after the first, which the run no longer holds.
    KeptRecordTail takeTail() { return std::exchange(m_tail, {}); }
    std::size_t byteSize() const { return KxDbUnmodelledRecord::byteSize() + m_tail.byteSize(); }

    Kald::ErrorStatus copyFrom(const KxDbObject* other) override
    {
        if (const Kald::ErrorStatus es = Kept::copyFrom(other); es != Kald::eOk)
            return es;
        m_tail = static_cast<const KeptRecordRun*>(other)->m_tail;
        return Kald::eOk;
    }

protected:
    KeptRecordTail m_tail;
};

class RecordRun : public KeptRecordRun<KxDbUnmodelledEntity> {
public:
    KX_RX_DECLARE_MEMBERS(RecordRun)
    using KeptRecordRun::KeptRecordRun;

    std::size_t numRecords() const { return 1 + m_tail.count(); }
    void dropLastRecord() { m_tail.dropLast(); }
    std::unique_ptr<KxDbObject> clone() const override { return kxdbCloneOf(*this); }
};

class ObjectRecordRun : public KeptRecordRun<KxDbUnmodelledObject> {
public:
    KX_RX_DECLARE_MEMBERS(ObjectRecordRun)
    using KeptRecordRun::KeptRecordRun;

    std::unique_ptr<KxDbObject> clone() const override { return kxdbCloneOf(*this); }
};

// Calls visit(groups, handle) for every record an unmodelled entity or
// object holds: its own, or each of a run's.
template <class Record, class Run, class Visit>
void forEachKeptRecordOf(const Record& record, std::uint64_t handle, Visit&& visit)
{
    visit(record.packedGroups(), handle);
    if (const auto* run = Run::cast(&record))
        run->tail().forEach(handle, [&](const KeptRecord& kept) { visit(kept.groups, kept.handle); });
}
template <class Visit>
void forEachKeptRecord(const KxDbUnmodelledEntity& entity, std::uint64_t handle, Visit&& visit)
{
    forEachKeptRecordOf<KxDbUnmodelledEntity, RecordRun>(entity, handle, visit);
}
template <class Visit>
void forEachKeptRecord(const KxDbUnmodelledObject& object, std::uint64_t handle, Visit&& visit)
{
    forEachKeptRecordOf<KxDbUnmodelledObject, ObjectRecordRun>(object, handle, visit);
}

// How many file records the entity stands for.
std::size_t keptRecordCount(const KxDbEntity& entity);

// When id names a run of more than one record, splits its last record off
// into an entity of its own (its handle, layer and look), placed right after
// the run in its block, and returns that entity's id; else returns id. Only
// how the records are held changes: nothing is recorded for undo, the
// drawing is not changed and saves the same bytes.
KxDbObjectId splitOffLastRecord(KxDbDatabase& db, KxDbObjectId id);

// Makes every record of the runs named (entities or objects) one of its
// own, under the handle it had in the run, in the run's place: a reference
// read by handle (a dictionary's entry, an owner) then finds it. As with
// splitOffLastRecord, only how the records are held changes.
void separateRecords(KxDbDatabase& db, const std::vector<KxDbObjectId>& runs);

}  // namespace kaldo
