// A hash index of values whose keys lie elsewhere (a table's records by
// name, a file's tables by name): a slot is eight bytes, the value and the
// top sixteen bits of its key's hash, so the index costs ten to twenty bytes
// a value and asks the caller to compare keys only where those bits agree.
// Values are not 0 and below 2^48 (serials and offsets: the object registry
// holds a pointer per 4096 serials, so serials stay far below). Slots are
// probed one after another from the hash's own, and fill to four fifths
// before they double: a probe past a slot of other hash bits is one load.
// A value goes in the first empty slot, so values of one key are found in
// the order they were put in.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace kaldo {

class HashSlots {
public:
    // The first value put in under hash for which match(value) is true, or 0.
    template <class Match>
    std::uint64_t find(std::uint64_t hash, Match&& match) const
    {
        if (m_slots.empty())
            return 0;
        const std::size_t mask = m_slots.size() - 1;
        for (std::size_t at = std::size_t(hash) & mask;; at = (at + 1) & mask) {
            const std::uint64_t slot = m_slots[at];
            if (slot == kEmpty)
                return 0;
            if (slot != kTaken && (slot >> kValueBits) == (hash >> kValueBits) && match(slot & kValueMask))
                return slot & kValueMask;
        }
    }
    // Puts value in under hash; hashOf(v) gives the hash of a value put in
    // before, to lay the slots out anew when they fill.
    template <class HashOf>
    void insert(std::uint64_t hash, std::uint64_t value, HashOf&& hashOf)
    {
        if ((m_used + 1) * 5 > m_slots.size() * 4) {
            const std::vector<std::uint64_t> old = emptied();
            // From an empty slot on, each run of full slots is met from its
            // start, so the values of a key go in again in the order of its
            // probes.
            const std::size_t start = firstEmpty(old);
            for (std::size_t i = 0; i < old.size(); ++i)
                if (const std::uint64_t slot = old[(start + i) & (old.size() - 1)]; slot != kEmpty && slot != kTaken)
                    place(hashOf(slot & kValueMask), slot & kValueMask);
        }
        place(hash, value);
        ++m_live;
    }
    // Takes value (put in under hash) out; false when it is not in.
    bool erase(std::uint64_t hash, std::uint64_t value);
    std::size_t size() const { return m_live; }

private:
    static constexpr int kValueBits = 48;
    static constexpr std::uint64_t kValueMask = (std::uint64_t(1) << kValueBits) - 1;
    static constexpr std::uint64_t kEmpty = 0;
    // A slot whose value was taken out: probes go on past it.
    static constexpr std::uint64_t kTaken = ~std::uint64_t(0);

    // Gives new slots, twice as many as the values need, and returns the
    // old ones.
    std::vector<std::uint64_t> emptied();
    static std::size_t firstEmpty(const std::vector<std::uint64_t>& slots);
    void place(std::uint64_t hash, std::uint64_t value);

    std::vector<std::uint64_t> m_slots;
    std::size_t m_live = 0;
    // Slots not empty: values and those taken out.
    std::size_t m_used = 0;
};

}  // namespace kaldo
