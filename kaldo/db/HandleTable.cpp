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

std::vector<HandleTable::Run>::const_iterator HandleTable::firstRunAfter(std::uint64_t handle) const
{
    // Reading a file, the handle is almost always the one after the run
    // that grew last.
    if (m_growing < m_runs.size() && m_runs[m_growing].firstHandle <= handle
        && (m_growing + 1 == m_runs.size() || handle < m_runs[m_growing + 1].firstHandle))
        return m_runs.begin() + std::ptrdiff_t(m_growing + 1);
    return std::upper_bound(m_runs.begin(), m_runs.end(), handle,
                            [](std::uint64_t h, const Run& r) { return h < r.firstHandle; });
}

std::vector<HandleTable::Run>::const_iterator HandleTable::runOf(std::uint64_t handle) const
{
    auto run = firstRunAfter(handle);
    if (run == m_runs.begin())
        return m_runs.end();
    --run;
    return handle - run->firstHandle < run->count ? run : m_runs.end();
}

std::vector<HandleTable::Run>::iterator HandleTable::runOf(std::uint64_t handle)
{
    return m_runs.begin() + (std::as_const(*this).runOf(handle) - m_runs.cbegin());
}

KxDbObjectId HandleTable::find(std::uint64_t handle) const
{
    if (handle == 0)
        return KxDbObjectId::kNull;
    if (const auto run = runOf(handle); run != m_runs.end())
        return KxDbObjectId::fromOldId(run->firstSerial + (handle - run->firstHandle));
    return findInSlots(handle);
}

void HandleTable::insert(std::uint64_t handle, KxDbObjectId id)
{
    if (handle == 0)
        return;
    if (const auto run = runOf(handle); run != m_runs.end()) {
        if (run->firstSerial + (handle - run->firstHandle) == id.asOldId())
            return;
        cutFromRun(run, handle);
    } else if (findInSlots(handle).isNull() && addToRuns(handle, id)) {
        return;
    }
    insertInSlots(handle, id);
}

void HandleTable::erase(std::uint64_t handle)
{
    if (handle == 0)
        return;
    if (const auto run = runOf(handle); run != m_runs.end())
        cutFromRun(run, handle);
    else
        eraseFromSlots(handle);
}

bool HandleTable::addToRuns(std::uint64_t handle, KxDbObjectId id)
{
    const auto place = m_runs.begin() + (firstRunAfter(handle) - m_runs.cbegin());
    if (place != m_runs.begin()) {
        Run& before = *std::prev(place);
        if (handle - before.firstHandle == before.count && id.asOldId() - before.firstSerial == before.count) {
            ++before.count;
            m_growing = std::size_t(place - m_runs.begin()) - 1;
            return true;
        }
    }
    // A run begins once the slots hold the handles just before this one
    // naming the ids just before its id; runs are added only near the end,
    // so that a file of handles in any order never moves many of them.
    if (handle < kShortestRun || id.asOldId() < kShortestRun || m_runs.end() - place > kMostRunsMoved)
        return false;
    for (std::uint64_t back = 1; back < kShortestRun; ++back)
        if (findInSlots(handle - back).asOldId() != id.asOldId() - back)
            return false;
    for (std::uint64_t back = 1; back < kShortestRun; ++back)
        eraseFromSlots(handle - back);
    m_growing = std::size_t(place - m_runs.begin());
    m_runs.insert(place, Run{handle - (kShortestRun - 1), id.asOldId() - (kShortestRun - 1), kShortestRun});
    return true;
}

void HandleTable::cutFromRun(std::vector<Run>::iterator run, std::uint64_t handle)
{
    const std::uint64_t before = handle - run->firstHandle;
    const std::uint64_t after = run->count - before - 1;
    m_growing = kNoRun;
    if (before == 0 && after == 0) {
        m_runs.erase(run);
    } else if (before == 0) {
        ++run->firstHandle;
        ++run->firstSerial;
        --run->count;
    } else if (after == 0) {
        --run->count;
    } else {
        const Run tail{handle + 1, run->firstSerial + before + 1, after};
        run->count = before;
        m_runs.insert(std::next(run), tail);
    }
}

KxDbObjectId HandleTable::findInSlots(std::uint64_t handle) const
{
    if (m_slots.empty())
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

void HandleTable::insertInSlots(std::uint64_t handle, KxDbObjectId id)
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
        insertInSlots(handle, id);
        return;
    }
    m_farthest = std::max(m_farthest, distance);
    if (m_slots[slot].handle == 0)
        ++m_used;
    m_slots[slot] = Slot{handle, id};
}

bool HandleTable::eraseFromSlots(std::uint64_t handle)
{
    if (m_slots.empty())
        return false;
    std::size_t hole = home(handle);
    while (m_slots[hole].handle != handle) {
        if (m_slots[hole].handle == 0)
            return false;
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
    return true;
}

void HandleTable::rebuild(std::size_t size, bool mixed)
{
    std::vector<Slot> old = std::exchange(m_slots, std::vector<Slot>(size));
    m_used = 0;
    m_mixed = mixed;
    m_farthest = 0;
    for (const Slot& s : old)
        if (s.handle != 0)
            insertInSlots(s.handle, s.id);
}

}  // namespace kaldo
