#include "kaldo/util/BoxIndex.h"

#include "kaldo/util/TwoThreads.h"

#include <algorithm>
#include <cmath>

namespace kaldo {

namespace {

double centreX(const Box& b)
{
    return b.minX + (b.maxX - b.minX) / 2;
}

double centreY(const Box& b)
{
    return b.minY + (b.maxY - b.minY) / 2;
}

// An entry's place along one axis, and the entry; sorting these pairs
// reads memory in order, where sorting entries by their boxes jumps about.
struct Keyed {
    double key;
    std::uint32_t item;
    friend bool operator<(const Keyed& a, const Keyed& b) { return a.key < b.key || (a.key == b.key && a.item < b.item); }
};

// Below this many boxes a second thread costs more than it saves.
constexpr std::size_t kBoxesForTwoThreads = 1 << 16;

// Orders the boxes' indices in slices: sorted by x, cut into about
// sqrt(n / fanout) slices, each sorted by y, so that runs of fanout
// consecutive entries lie close together. The order is total (ties by
// index), so the two threads' halves join into the one order.
std::vector<std::uint32_t> sortTiles(const std::vector<Box>& boxes, std::uint32_t fanout)
{
    std::vector<Keyed> keyed(boxes.size());
    const auto middle = keyed.begin() + std::ptrdiff_t(keyed.size() / 2);
    onTwoThreads(boxes.size() >= kBoxesForTwoThreads, [&](int half) {
        const auto begin = half == 0 ? keyed.begin() : middle;
        const auto end = half == 0 ? middle : keyed.end();
        for (auto entry = begin; entry != end; ++entry) {
            const auto item = std::uint32_t(entry - keyed.begin());
            *entry = {centreX(boxes[item]), item};
        }
        std::sort(begin, end);
    });
    std::inplace_merge(keyed.begin(), middle, keyed.end());
    const std::size_t nodes = (keyed.size() + fanout - 1) / fanout;
    const std::size_t slices = std::max<std::size_t>(1, std::size_t(std::ceil(std::sqrt(double(nodes)))));
    const std::size_t perSlice = ((nodes + slices - 1) / slices) * fanout;
    onTwoThreads(boxes.size() >= kBoxesForTwoThreads, [&](int half) {
        for (std::size_t slice = std::size_t(half); slice * perSlice < keyed.size(); slice += 2) {
            const auto begin = keyed.begin() + std::ptrdiff_t(slice * perSlice);
            const auto end = keyed.begin() + std::ptrdiff_t(std::min(keyed.size(), (slice + 1) * perSlice));
            for (auto entry = begin; entry != end; ++entry)
                entry->key = centreY(boxes[entry->item]);
            std::sort(begin, end);
        }
    });
    std::vector<std::uint32_t> order(keyed.size());
    std::transform(keyed.begin(), keyed.end(), order.begin(), [](const Keyed& entry) { return entry.item; });
    return order;
}

// The boxes around each run of fanout consecutive boxes.
std::vector<Box> parents(const std::vector<Box>& level, std::uint32_t fanout)
{
    std::vector<Box> result;
    result.reserve((level.size() + fanout - 1) / fanout);
    for (std::size_t first = 0; first < level.size(); first += fanout) {
        Box box = level[first];
        for (std::size_t i = first + 1; i < std::min(level.size(), first + fanout); ++i) {
            box.minX = std::min(box.minX, level[i].minX);
            box.minY = std::min(box.minY, level[i].minY);
            box.maxX = std::max(box.maxX, level[i].maxX);
            box.maxY = std::max(box.maxY, level[i].maxY);
        }
        result.push_back(box);
    }
    return result;
}

// Rearranges boxes in place so that leaf i holds the box of items[i]
// (a permutation), one cycle of the permutation at a time, so that no
// second copy of the boxes is made.
void putInOrder(std::vector<Box>& boxes, const std::vector<std::uint32_t>& items)
{
    std::vector<bool> placed(boxes.size());
    for (std::size_t start = 0; start < boxes.size(); ++start) {
        if (placed[start])
            continue;
        const Box first = boxes[start];
        std::size_t leaf = start;
        while (items[leaf] != start) {
            boxes[leaf] = boxes[items[leaf]];
            placed[leaf] = true;
            leaf = items[leaf];
        }
        boxes[leaf] = first;
        placed[leaf] = true;
    }
}

}  // namespace

BoxIndex::BoxIndex(std::vector<Box> boxes) : m_count(boxes.size())
{
    if (boxes.empty())
        return;
    m_items = sortTiles(boxes, kFanout);
    putInOrder(boxes, m_items);
    m_levels.push_back(std::move(boxes));
    // Each level above groups fanout nodes of the one below, in order, so
    // the children of node n are nodes n * fanout onwards.
    while (m_levels.back().size() > kFanout)
        m_levels.push_back(parents(m_levels.back(), kFanout));
}

void BoxIndex::refit(const std::vector<Box>& boxes)
{
    if (boxes.size() != m_count) {
        *this = BoxIndex(boxes);
        return;
    }
    if (m_levels.empty())
        return;
    for (std::size_t leaf = 0; leaf < m_items.size(); ++leaf)
        m_levels.front()[leaf] = boxes[m_items[leaf]];
    for (std::size_t level = 1; level < m_levels.size(); ++level)
        m_levels[level] = parents(m_levels[level - 1], kFanout);
}

}  // namespace kaldo
