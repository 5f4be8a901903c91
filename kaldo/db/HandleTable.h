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
#pragma once

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
    struct Slot {
        std::uint64_t handle = 0;
        KxDbObjectId id;
    };
    // The slot where the search for handle starts.
    std::size_t home(std::uint64_t handle) const;
    std::size_t next(std::size_t slot) const { return (slot + 1) & (m_slots.size() - 1); }
    // The table anew with size slots, the handles mixed when mixed is set.
    void rebuild(std::size_t size, bool mixed);

    std::vector<Slot> m_slots;
    std::size_t m_used = 0;
    bool m_mixed = false;
    // Unmixed, the farthest any handle lies from its home: a search that
    // goes farther finds nothing.
    std::size_t m_farthest = 0;
};

}  // namespace kaldo
