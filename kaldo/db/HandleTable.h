// The handles of a drawing's objects and the ids they name, in one flat
// table of open addressing (linear probing): sixteen bytes a slot and no
// allocation per handle, where a node per handle took about three times
// that and most of a large drawing's reading time went to its rehashes.
// Handle 0 is no object's, so it marks a free slot.
//
// A drawing's handles are mostly consecutive, and files hold them in that
// order, so a handle's slot is first the handle itself (modulo the size):
// neighbouring handles share cache lines and reading a drawing walks the
// table in order. Once a handle lies more than kMostDisplacement slots from
// there (handles far apart that meet in their low bits), the table mixes
// the handles' bits instead, until it grows.
//
// Most handles need no slot at all: a file's objects are added in handle
// order and get consecutive ids, so a run of handles naming a run of ids is
// kept as its first handle, first id and length. Only handles that start no
// run, or fall out of one, stay in the slots; a handle is in one of the
// two, never in both.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "kxdbid.h"

namespace kaldo {

class HandleTable {
public:
    // The id the handle names, or null.
    KxDbObjectId find(std::uint64_t handle) const;
    bool contains(std::uint64_t handle) const { return !find(handle).isNull(); }
    // Names id by handle (not 0), in place of what it named before.
    void insert(std::uint64_t handle, KxDbObjectId id);
    void erase(std::uint64_t handle);

private:
    static constexpr std::size_t kMostDisplacement = 16;
    // Handles go to the slots until this many in a row name consecutive
    // ids: a run costs about as much as that many slots.
    static constexpr std::uint64_t kShortestRun = 4;
    // A new run goes before at most this many others.
    static constexpr std::ptrdiff_t kMostRunsMoved = 16;
    struct Run {
        std::uint64_t firstHandle = 0;
        std::uint64_t firstSerial = 0;
        std::uint64_t count = 0;
    };
    // The first run that starts beyond handle, or end.
    std::vector<Run>::const_iterator firstRunAfter(std::uint64_t handle) const;
    // The run that holds handle, or end.
    std::vector<Run>::iterator runOf(std::uint64_t handle);
    std::vector<Run>::const_iterator runOf(std::uint64_t handle) const;
    // Takes handle out of its run, splitting the run when it lies inside.
    void cutFromRun(std::vector<Run>::iterator run, std::uint64_t handle);
    // Adds handle (in neither runs nor slots) to the run it continues, or
    // starts a run with the slots' handles before it; false when it must
    // go to the slots.
    bool addToRuns(std::uint64_t handle, KxDbObjectId id);

    KxDbObjectId findInSlots(std::uint64_t handle) const;
    void insertInSlots(std::uint64_t handle, KxDbObjectId id);
    // False when handle has no slot.
    bool eraseFromSlots(std::uint64_t handle);
    struct Slot {
        std::uint64_t handle = 0;
        KxDbObjectId id;
    };
    // The slot where the search for handle starts.
    std::size_t home(std::uint64_t handle) const;
    std::size_t next(std::size_t slot) const { return (slot + 1) & (m_slots.size() - 1); }
    // The table anew with size slots, the handles mixed when mixed is set.
    void rebuild(std::size_t size, bool mixed);

    // In handle order, none overlapping.
    std::vector<Run> m_runs;
    // The run that grew last, where the next handle is looked for first.
    static constexpr std::size_t kNoRun = std::size_t(-1);
    std::size_t m_growing = kNoRun;
    std::vector<Slot> m_slots;
    std::size_t m_used = 0;
    bool m_mixed = false;
    // Unmixed, the farthest any handle lies from its home: a search that
    // goes farther finds nothing.
    std::size_t m_farthest = 0;
};

}  // namespace kaldo
