#include "kaldo/db/HashSlots.h"

#include <algorithm>
#include <bit>

namespace kaldo {

bool HashSlots::erase(std::uint64_t hash, std::uint64_t value)
{
    if (m_slots.empty())
        return false;
    const std::uint64_t wanted = (hash >> kValueBits) << kValueBits | value;
    const std::size_t mask = m_slots.size() - 1;
    for (std::size_t at = std::size_t(hash) & mask;; at = (at + 1) & mask) {
        if (m_slots[at] == kEmpty)
            return false;
        if (m_slots[at] == wanted) {
            m_slots[at] = kTaken;
            --m_live;
            return true;
        }
    }
}

std::vector<std::uint64_t> HashSlots::emptied()
{
    std::vector<std::uint64_t> old(std::bit_ceil(std::max<std::size_t>(16, (m_live + 1) * 2)), kEmpty);
    m_slots.swap(old);
    m_used = 0;
    return old;
}

std::size_t HashSlots::firstEmpty(const std::vector<std::uint64_t>& slots)
{
    std::size_t at = 0;
    while (at < slots.size() && slots[at] != kEmpty)
        ++at;
    return at;
}

void HashSlots::place(std::uint64_t hash, std::uint64_t value)
{
    const std::size_t mask = m_slots.size() - 1;
    std::size_t at = std::size_t(hash) & mask;
    while (m_slots[at] != kEmpty)
        at = (at + 1) & mask;
    m_slots[at] = (hash >> kValueBits) << kValueBits | value;
    ++m_used;
}

}  // namespace kaldo
