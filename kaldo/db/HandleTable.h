// The handles of a drawing's objects and the ids they name, in one flat
// table of open addressing (linear probing): sixteen bytes a slot and no
// allocation per handle, where a node per handle took about three times
// that and most of a large drawing's reading time went to its rehashes.
// Handle 0 is no object's, so it marks a free slot.
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
    struct Slot {
        std::uint64_t handle = 0;
        KxDbObjectId id;
    };
    // The slot where the search for handle starts: the handle's bits mixed,
    // so that neither a file's consecutive handles nor chosen ones crowd.
    std::size_t home(std::uint64_t handle) const;
    std::size_t next(std::size_t slot) const { return (slot + 1) & (m_slots.size() - 1); }
    void grow();

    std::vector<Slot> m_slots;
    std::size_t m_used = 0;
};

}  // namespace kaldo
