#include "kaldo/db/HandleTable.h"

#include <utility>

namespace kaldo {

std::size_t HandleTable::home(std::uint64_t handle) const
{
    // The finalizer of splitmix64.
    handle = (handle ^ (handle >> 30)) * 0xBF58476D1CE4E5B9ull;
    handle = (handle ^ (handle >> 27)) * 0x94D049BB133111EBull;
    handle ^= handle >> 31;
    return std::size_t(handle) & (m_slots.size() - 1);
}

KxDbObjectId HandleTable::find(std::uint64_t handle) const
{
    if (m_slots.empty() || handle == 0)
        return KxDbObjectId::kNull;
    for (std::size_t slot = home(handle);; slot = next(slot)) {
        if (m_slots[slot].handle == handle)
            return m_slots[slot].id;
        if (m_slots[slot].handle == 0)
            return KxDbObjectId::kNull;
    }
}

void HandleTable::insert(std::uint64_t handle, KxDbObjectId id)
{
    // At most three quarters full, so that searches stay short.
    if (4 * (m_used + 1) > 3 * m_slots.size())
        grow();
    std::size_t slot = home(handle);
    while (m_slots[slot].handle != 0 && m_slots[slot].handle != handle)
        slot = next(slot);
    if (m_slots[slot].handle == 0)
        ++m_used;
    m_slots[slot] = Slot{handle, id};
}

void HandleTable::erase(std::uint64_t handle)
{
    if (m_slots.empty() || handle == 0)
        return;
    std::size_t hole = home(handle);
    while (m_slots[hole].handle != handle) {
        if (m_slots[hole].handle == 0)
            return;
        hole = next(hole);
    }
    // Moves back each later entry of the run whose search passes the hole,
    // so that no search stops short at it.
    for (std::size_t slot = next(hole); m_slots[slot].handle != 0; slot = next(slot)) {
        const std::size_t start = home(m_slots[slot].handle);
        const bool passesHole = hole <= slot ? (start <= hole || start > slot) : (start <= hole && start > slot);
        if (passesHole) {
            m_slots[hole] = m_slots[slot];
            hole = slot;
        }
    }
    m_slots[hole] = Slot{};
    --m_used;
}

void HandleTable::grow()
{
    std::vector<Slot> old = std::exchange(m_slots, std::vector<Slot>(m_slots.empty() ? 64 : 2 * m_slots.size()));
    m_used = 0;
    for (const Slot& s : old)
        if (s.handle != 0)
            insert(s.handle, s.id);
}

}  // namespace kaldo
