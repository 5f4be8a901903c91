// Consecutive entity records of one kind that nothing in the host reads by
// name, read from a file that gave them no handles, held as one entity: a
// file can spend four bytes on such a record, where an object per record
// costs far more. The records keep consecutive handles from the run's own
// (the database gives out none of them again) and are written back one by
// one, as the objects they stand for would be. A selection that takes the
// run's last record by itself (Last) splits it off into an entity of its
// own first (splitOffLastRecord), so that no command ever acts on a run.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "kxdbunmodelled.h"

class KxDbDatabase;

namespace kaldo {

class RecordRun : public KxDbUnmodelledEntity {
public:
    KX_RX_DECLARE_MEMBERS(RecordRun)
    RecordRun() = default;
    // first is the first record's groups; further holds the others, each
    // its groups' length (seven bits a byte) then its packed groups.
    RecordRun(std::string_view kind, KxDbPackedGroupsView first, std::string_view further, std::size_t furtherCount);

    std::size_t numRecords() const { return 1 + m_furtherCount; }
    // Calls visit(index, groups) for every record, the first one first.
    template <class Visit>
    void forEachRecord(Visit&& visit) const
    {
        visit(std::size_t(0), packedGroups());
        const char* at = m_further.get();
        for (std::size_t index = 1; index < numRecords(); ++index) {
            const KxDbPackedGroupsView groups = takeRecord(at);
            visit(index, groups);
        }
    }
    // The groups of the last record, and the run without it.
    KxDbPackedGroupsView lastRecord() const;
    void dropLastRecord();
    std::size_t byteSize() const { return KxDbUnmodelledRecord::byteSize() + m_furtherBytes; }

    Kald::ErrorStatus copyFrom(const KxDbObject* other) override;
    std::unique_ptr<KxDbObject> clone() const override { return kxdbCloneOf(*this); }

    // Appends a record's groups as further takes them.
    static void appendRecord(std::string& further, KxDbPackedGroupsView groups);

private:
    // The record at, and at moved past it.
    static KxDbPackedGroupsView takeRecord(const char*& at);

    std::unique_ptr<char[]> m_further;
    std::uint32_t m_furtherBytes = 0;
    std::uint32_t m_furtherCount = 0;
};

// Calls visit(groups, handle) for every record an unmodelled entity holds:
// its own, or each of a run's with the handles that follow the run's.
template <class Visit>
void forEachKeptRecord(const KxDbUnmodelledEntity& entity, std::uint64_t handle, Visit&& visit)
{
    if (const auto* run = RecordRun::cast(&entity))
        run->forEachRecord([&](std::size_t index, KxDbPackedGroupsView groups) { visit(groups, handle + index); });
    else
        visit(entity.packedGroups(), handle);
}

// How many file records the entity stands for.
std::size_t keptRecordCount(const KxDbEntity& entity);

// When id names a run of more than one record, splits its last record off
// into an entity of its own (its handle, layer and look), placed right after
// the run in its block, and returns that entity's id; else returns id. Only
// how the records are held changes: nothing is recorded for undo, the
// drawing is not changed and saves the same bytes.
KxDbObjectId splitOffLastRecord(KxDbDatabase& db, KxDbObjectId id);

}  // namespace kaldo
