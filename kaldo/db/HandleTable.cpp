#include "kaldo/db/HandleTable.h"

#include <algorithm>
#include <utility>

namespace kaldo {

std::size_t HandleTable::home(std::uint64_t handle) const
{
    if (m_mixed) {
        // The finalizer of splitmix64.
        handle = (handle ^ (handle >> 30)) * 0xBF58476D1CE4E5B9ull;
        handle = (handle ^ (handle >> 27)) * 0x94D049BB133111EBull;
        handle ^= handle >> 31;
    }
    return std::size_t(handle) & (m_slots.size() - 1);
}

KxDbObjectId HandleTable::find(std::uint64_t handle) const
{
    if (m_slots.empty() || handle == 0)
        return KxDbObjectId::kNull;
    const std::size_t farthest = m_mixed ? m_slots.size() : m_farthest;
    std::size_t slot = home(handle);
    for (std::size_t distance = 0; distance <= farthest; ++distance, slot = next(slot)) {
        if (m_slots[slot].handle == handle)
            return m_slots[slot].id;
        if (m_slots[slot].handle == 0)
            break;
    }
    return KxDbObjectId::kNull;
}

void HandleTable::insert(std::uint64_t handle, KxDbObjectId id)
{
    // At most three quarters full, so that searches stay short. A larger
    // table tries the handles unmixed again: those that met in a small one
    // often do not in twice its size.
    if (4 * (m_used + 1) > 3 * m_slots.size())
        rebuild(m_slots.empty() ? 64 : 2 * m_slots.size(), false);
    std::size_t slot = home(handle);
    std::size_t distance = 0;
    while (m_slots[slot].handle != 0 && m_slots[slot].handle != handle) {
        slot = next(slot);
        ++distance;
    }
    if (!m_mixed && distance > kMostDisplacement) {
        rebuild(m_slots.size(), true);
        insert(handle, id);
        return;
    }
    m_farthest = std::max(m_farthest, distance);
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
    // so that no search stops short at it; entries only come nearer home.
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

void HandleTable::rebuild(std::size_t size, bool mixed)
{
    std::vector<Slot> old = std::exchange(m_slots, std::vector<Slot>(size));
    m_used = 0;
    m_mixed = mixed;
    m_farthest = 0;
    for (const Slot& s : old)
        if (s.handle != 0)
            insert(s.handle, s.id);
}

}  // namespace kaldo
