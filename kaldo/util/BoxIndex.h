// A static spatial index over axis-aligned boxes in the plane (a packed
// R-tree: leaves of boxes sorted into slices by x, then by y within each
// slice; parents built the same way). A query for the boxes that meet a
// box visits O(log n + k) nodes. Built once; rebuilt when the boxes change.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

namespace kaldo {

struct Box {
    double minX = 0, minY = 0, maxX = 0, maxY = 0;
    bool meets(const Box& other) const
    {
        return minX <= other.maxX && other.minX <= maxX && minY <= other.maxY && other.minY <= maxY;
    }
};

class BoxIndex {
public:
    BoxIndex() = default;
    // The boxes' positions in this vector are the items the queries give;
    // the tree keeps the only copy of them, in its own order.
    explicit BoxIndex(std::vector<Box> boxes);

    std::size_t size() const { return m_count; }

    // Takes the items' changed boxes (as many as before; else builds anew):
    // the tree keeps its order and each node is fitted round its children
    // again, without sorting. Queries stay exact; the tree stays tight as
    // long as changed boxes lie near their old neighbours.
    void refit(const std::vector<Box>& boxes);

    // Calls visit(item) for every box that meets query, in no set order.
    template <class Visit>
    void query(const Box& query, Visit&& visit) const
    {
        queryCoarse(query, 0, [&](std::uint32_t item, const Box&) { visit(item); }, [](const Box&) {});
    }

    // Calls visit(item, its box) for every box that meets query, in no set
    // order, except that where a node of the tree that meets query is
    // narrower and lower than detail, group(the node's box) is called for
    // all the boxes below it instead: the boxes at the size a view shows
    // them, in as many calls as there are places they fill.
    template <class Visit, class Group>
    void queryCoarse(const Box& query, double detail, Visit&& visit, Group&& group) const
    {
        if (m_levels.empty())
            return;
        // Nodes of the top level are all searched; a node's children are
        // the nodes (or items) [node * kFanout, node * kFanout + kFanout).
        std::vector<std::pair<int, std::uint32_t>> stack;
        const int top = int(m_levels.size()) - 1;
        for (std::uint32_t n = 0; n < m_levels[std::size_t(top)].size(); ++n)
            stack.emplace_back(top, n);
        while (!stack.empty()) {
            const auto [level, node] = stack.back();
            stack.pop_back();
            const std::vector<Box>& boxes = m_levels[std::size_t(level)];
            const Box& box = boxes[node];
            if (!box.meets(query))
                continue;
            if (level == 0) {
                visit(m_items[node], box);
                continue;
            }
            if (box.maxX - box.minX < detail && box.maxY - box.minY < detail) {
                group(box);
                continue;
            }
            const std::vector<Box>& below = m_levels[std::size_t(level) - 1];
            const std::uint32_t end = std::min<std::uint32_t>(std::uint32_t(below.size()), (node + 1) * kFanout);
            for (std::uint32_t child = node * kFanout; child < end; ++child)
                stack.emplace_back(level - 1, child);
        }
    }

private:
    static constexpr std::uint32_t kFanout = 16;

    std::size_t m_count = 0;
    std::vector<std::uint32_t> m_items;      // item of each leaf, in leaf order
    std::vector<std::vector<Box>> m_levels;  // level 0: the leaves
};

}  // namespace kaldo
