// A map of 64-bit keys to 64-bit values, made for numbers that mostly come
// in runs: a drawing's handles and the serials of its objects' ids, either
// way round. Key 0 and value 0 are no entry's.
//
// Keys outside runs lie in one flat table of open addressing (linear
// probing): sixteen bytes a slot and no allocation per key, where a node per
// key took about three times that and most of a large drawing's reading
// time went to its rehashes. Key 0 marks a free slot.
//
// The keys are mostly consecutive, and files hold them in that order, so a
// key's slot is first the key itself (modulo the size): neighbouring keys
// share cache lines and reading a drawing walks the table in order. Once a
// key lies more than kMostDisplacement slots from there (keys far apart
// that meet in their low bits), the table mixes the keys' bits instead,
// until it grows.
//
// Most keys need no slot at all: a file's objects are added in handle
// order and get consecutive ids, so a run of keys naming a run of values is
// kept as its first key, first value and length. Only keys that start no
// run, or fall out of one, stay in the slots; a key is in one of the two,
// never in both.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace kaldo {

class RunMap {
public:
    // The value of key, or 0.
    std::uint64_t find(std::uint64_t key) const;
    // Maps key (not 0) to value (not 0), in place of what it mapped to
    // before; returns that (0 for nothing).
    std::uint64_t exchange(std::uint64_t key, std::uint64_t value);
    // Maps key (not 0) to value (not 0) when key maps to nothing; false,
    // with nothing changed, when it does.
    bool insertNew(std::uint64_t key, std::uint64_t value);
    void erase(std::uint64_t key);
    // The greatest key mapped, or 0.
    std::uint64_t greatestKey() const;
    // Keys from firstKey on mapped to values from firstValue on, count of
    // them; count 0 for none.
    struct Run {
        std::uint64_t firstKey = 0;
        std::uint64_t firstValue = 0;
        std::uint64_t count = 0;
    };
    // The run that maps key, or one of count 0 when a slot maps it or
    // nothing does.
    Run runHolding(std::uint64_t key) const;

private:
    static constexpr std::size_t kMostDisplacement = 16;
    // Keys go to the slots until this many in a row map to consecutive
    // values: a run costs about as much as that many slots.
    static constexpr std::uint64_t kShortestRun = 4;
    // A new run goes before at most this many others.
    static constexpr std::ptrdiff_t kMostRunsMoved = 16;
    // Grows the run that grew last by key, when key and value continue it
    // and key lies before the next run and in no slot (reading a file, the
    // usual case): as addToRuns would have grown it, without its search.
    bool growLastRun(std::uint64_t key, std::uint64_t value);
    // The first run that starts beyond key, or end.
    std::vector<Run>::const_iterator firstRunAfter(std::uint64_t key) const;
    // The run that holds key, or end.
    std::vector<Run>::iterator runOf(std::uint64_t key);
    std::vector<Run>::const_iterator runOf(std::uint64_t key) const;
    // Takes key out of its run, splitting the run when it lies inside.
    void cutFromRun(std::vector<Run>::iterator run, std::uint64_t key);
    // Adds key (in neither runs nor slots) to the run it continues, or
    // starts a run with the slots' keys before it; false when it must go
    // to the slots.
    bool addToRuns(std::uint64_t key, std::uint64_t value);

    std::uint64_t findInSlots(std::uint64_t key) const;
    void insertInSlots(std::uint64_t key, std::uint64_t value);
    // False when key has no slot.
    bool eraseFromSlots(std::uint64_t key);
    struct Slot {
        std::uint64_t key = 0;
        std::uint64_t value = 0;
    };
    // The slot where the search for key starts.
    std::size_t home(std::uint64_t key) const;
    std::size_t next(std::size_t slot) const { return (slot + 1) & (m_slots.size() - 1); }
    // The table anew with size slots, the keys mixed when mixed is set.
    void rebuild(std::size_t size, bool mixed);

    // In key order, none overlapping.
    std::vector<Run> m_runs;
    // The run that grew last, where the next key is looked for first.
    static constexpr std::size_t kNoRun = std::size_t(-1);
    std::size_t m_growing = kNoRun;
    // No key in the slots lies from the end of the run that grows up to
    // this key, so that the run's next keys are not searched for there
    // (in a drawing read, a record made at the handle seed before the
    // entities lies above all their handles). Found when another run
    // starts to grow, in a table of at most kScannedSlots slots; else the
    // run's end at that time (nothing known).
    static constexpr std::size_t kScannedSlots = 64;
    std::uint64_t m_growingClearTo = 0;
    // Makes run the one that grows, and finds how far its keys are clear.
    void growRun(std::size_t run);
    std::vector<Slot> m_slots;
    std::size_t m_used = 0;
    bool m_mixed = false;
    // Unmixed, the farthest any key lies from its home: a search that
    // goes farther finds nothing.
    std::size_t m_farthest = 0;
    // No key in the slots is greater (keys erased may have been): a file's
    // keys mostly come in rising order, above every slot, and are not
    // searched for there.
    std::uint64_t m_slotKeysUpTo = 0;
};

}  // namespace kaldo
