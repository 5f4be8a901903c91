#include "kaldo/db/RunMap.h"

#include "kaldo/db/MixedBits.h"

#include <algorithm>
#include <utility>

namespace kaldo {

std::size_t RunMap::home(std::uint64_t key) const
{
    if (m_mixed)
        key = mixedBits(key);
    return std::size_t(key) & (m_slots.size() - 1);
}

std::vector<RunMap::Run>::const_iterator RunMap::firstRunAfter(std::uint64_t key) const
{
    // Reading a file, the key is almost always the one after the run
    // that grew last.
    if (m_growing < m_runs.size() && m_runs[m_growing].firstKey <= key
        && (m_growing + 1 == m_runs.size() || key < m_runs[m_growing + 1].firstKey))
        return m_runs.begin() + std::ptrdiff_t(m_growing + 1);
    return std::upper_bound(m_runs.begin(), m_runs.end(), key,
                            [](std::uint64_t h, const Run& r) { return h < r.firstKey; });
}

std::vector<RunMap::Run>::const_iterator RunMap::runOf(std::uint64_t key) const
{
    auto run = firstRunAfter(key);
    if (run == m_runs.begin())
        return m_runs.end();
    --run;
    return key - run->firstKey < run->count ? run : m_runs.end();
}

std::vector<RunMap::Run>::iterator RunMap::runOf(std::uint64_t key)
{
    return m_runs.begin() + (std::as_const(*this).runOf(key) - m_runs.cbegin());
}

RunMap::Run RunMap::runHolding(std::uint64_t key) const
{
    const auto run = runOf(key);
    return run != m_runs.end() ? *run : Run{};
}

std::uint64_t RunMap::find(std::uint64_t key) const
{
    if (key == 0)
        return 0;
    if (const auto run = runOf(key); run != m_runs.end())
        return run->firstValue + (key - run->firstKey);
    return findInSlots(key);
}

bool RunMap::growLastRun(std::uint64_t key, std::uint64_t value)
{
    if (m_growing >= m_runs.size())
        return false;
    Run& run = m_runs[m_growing];
    if (key - run.firstKey != run.count || value - run.firstValue != run.count
        || (m_growing + 1 < m_runs.size() && key >= m_runs[m_growing + 1].firstKey)
        || (m_used != 0 && key >= m_growingClearTo && findInSlots(key) != 0))
        return false;
    ++run.count;
    return true;
}

void RunMap::growRun(std::size_t run)
{
    m_growing = run;
    const std::uint64_t end = m_runs[run].firstKey + m_runs[run].count;
    m_growingClearTo = end;
    if (m_slots.size() > kScannedSlots)
        return;
    std::uint64_t clear = ~std::uint64_t(0);
    for (const Slot& slot : m_slots)
        if (slot.key >= end)
            clear = std::min(clear, slot.key);
    m_growingClearTo = clear;
}

std::uint64_t RunMap::exchange(std::uint64_t key, std::uint64_t value)
{
    if (key == 0 || growLastRun(key, value))
        return 0;
    std::uint64_t previous = 0;
    if (const auto run = runOf(key); run != m_runs.end()) {
        previous = run->firstValue + (key - run->firstKey);
        if (previous == value)
            return previous;
        cutFromRun(run, key);
    } else {
        previous = findInSlots(key);
        if (previous == 0 && addToRuns(key, value))
            return previous;
    }
    insertInSlots(key, value);
    return previous;
}

bool RunMap::insertNew(std::uint64_t key, std::uint64_t value)
{
    if (key == 0)
        return false;
    if (growLastRun(key, value))
        return true;
    if (runOf(key) != m_runs.end() || findInSlots(key) != 0)
        return false;
    if (!addToRuns(key, value))
        insertInSlots(key, value);
    return true;
}

void RunMap::erase(std::uint64_t key)
{
    if (key == 0)
        return;
    if (const auto run = runOf(key); run != m_runs.end())
        cutFromRun(run, key);
    else
        eraseFromSlots(key);
}

std::uint64_t RunMap::greatestKey() const
{
    std::uint64_t greatest = m_runs.empty() ? 0 : m_runs.back().firstKey + (m_runs.back().count - 1);
    for (const Slot& slot : m_slots)
        greatest = std::max(greatest, slot.key);
    return greatest;
}

bool RunMap::addToRuns(std::uint64_t key, std::uint64_t value)
{
    const auto place = m_runs.begin() + (firstRunAfter(key) - m_runs.cbegin());
    if (place != m_runs.begin()) {
        Run& before = *std::prev(place);
        if (key - before.firstKey == before.count && value - before.firstValue == before.count) {
            ++before.count;
            if (const std::size_t grown = std::size_t(place - m_runs.begin()) - 1; grown != m_growing)
                growRun(grown);
            return true;
        }
    }
    // A run begins once the slots hold the keys just before this one
    // mapping to the values just before its value; runs are added only near
    // the end, so that a file of keys in any order never moves many of them.
    if (key < kShortestRun || value < kShortestRun || m_runs.end() - place > kMostRunsMoved)
        return false;
    for (std::uint64_t back = 1; back < kShortestRun; ++back)
        if (findInSlots(key - back) != value - back)
            return false;
    for (std::uint64_t back = 1; back < kShortestRun; ++back)
        eraseFromSlots(key - back);
    const std::size_t started = std::size_t(place - m_runs.begin());
    m_runs.insert(place, Run{key - (kShortestRun - 1), value - (kShortestRun - 1), kShortestRun});
    growRun(started);
    return true;
}

void RunMap::cutFromRun(std::vector<Run>::iterator run, std::uint64_t key)
{
    const std::uint64_t before = key - run->firstKey;
    const std::uint64_t after = run->count - before - 1;
    m_growing = kNoRun;
    if (before == 0 && after == 0) {
        m_runs.erase(run);
    } else if (before == 0) {
        ++run->firstKey;
        ++run->firstValue;
        --run->count;
    } else if (after == 0) {
        --run->count;
    } else {
        const Run tail{key + 1, run->firstValue + before + 1, after};
        run->count = before;
        m_runs.insert(std::next(run), tail);
    }
}

std::uint64_t RunMap::findInSlots(std::uint64_t key) const
{
    if (m_slots.empty() || key > m_slotKeysUpTo)
        return 0;
    const std::size_t farthest = m_mixed ? m_slots.size() : m_farthest;
    std::size_t slot = home(key);
    for (std::size_t distance = 0; distance <= farthest; ++distance, slot = next(slot)) {
        if (m_slots[slot].key == key)
            return m_slots[slot].value;
        if (m_slots[slot].key == 0)
            break;
    }
    return 0;
}

void RunMap::insertInSlots(std::uint64_t key, std::uint64_t value)
{
    // At most three quarters full, so that searches stay short. A larger
    // table tries the keys unmixed again: those that met in a small one
    // often do not in twice its size.
    if (4 * (m_used + 1) > 3 * m_slots.size())
        rebuild(m_slots.empty() ? 64 : 2 * m_slots.size(), false);
    std::size_t slot = home(key);
    std::size_t distance = 0;
    while (m_slots[slot].key != 0 && m_slots[slot].key != key) {
        slot = next(slot);
        ++distance;
    }
    if (!m_mixed && distance > kMostDisplacement) {
        rebuild(m_slots.size(), true);
        insertInSlots(key, value);
        return;
    }
    m_farthest = std::max(m_farthest, distance);
    m_slotKeysUpTo = std::max(m_slotKeysUpTo, key);
    if (m_growing < m_runs.size() && key < m_growingClearTo
        && key >= m_runs[m_growing].firstKey + m_runs[m_growing].count)
        m_growingClearTo = key;
    if (m_slots[slot].key == 0)
        ++m_used;
    m_slots[slot] = Slot{key, value};
}

bool RunMap::eraseFromSlots(std::uint64_t key)
{
    if (m_slots.empty() || key > m_slotKeysUpTo)
        return false;
    std::size_t hole = home(key);
    while (m_slots[hole].key != key) {
        if (m_slots[hole].key == 0)
            return false;
        hole = next(hole);
    }
    // Moves back each later entry of the run whose search passes the hole,
    // so that no search stops short at it; entries only come nearer home.
    for (std::size_t slot = next(hole); m_slots[slot].key != 0; slot = next(slot)) {
        const std::size_t start = home(m_slots[slot].key);
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

void RunMap::rebuild(std::size_t size, bool mixed)
{
    std::vector<Slot> old = std::exchange(m_slots, std::vector<Slot>(size));
    m_used = 0;
    m_mixed = mixed;
    m_farthest = 0;
    m_slotKeysUpTo = 0;
    for (const Slot& s : old)
        if (s.key != 0)
            insertInSlots(s.key, s.value);
}

}  // namespace kaldo
