#include "kaldo/view/SceneIndex.h"

#include "kaldo/util/TwoThreads.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

namespace kaldo::view {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
// Below this many items a second thread costs more than it saves.
constexpr std::size_t kItemsForTwoThreads = 1 << 16;

bool finite(const Box& box)
{
    return std::isfinite(box.minX) && std::isfinite(box.minY) && std::isfinite(box.maxX) && std::isfinite(box.maxY);
}

Box boxOfPoints(const Scene& scene, std::uint32_t first, std::uint32_t count)
{
    Box box{kInfinity, kInfinity, -kInfinity, -kInfinity};
    for (const Point2* p = scene.points().data() + first; p != scene.points().data() + first + count; ++p) {
        if (!std::isfinite(p->x) || !std::isfinite(p->y))
            return {kInfinity, kInfinity, kInfinity, kInfinity};
        box.minX = std::min(box.minX, p->x);
        box.minY = std::min(box.minY, p->y);
        box.maxX = std::max(box.maxX, p->x);
        box.maxY = std::max(box.maxY, p->y);
    }
    return box;
}

// The box of the whole circle, as painting tests arcs.
Box boxOfArc(const Arc& arc)
{
    const double radius = std::abs(arc.radius);
    return {arc.centre.x - radius, arc.centre.y - radius, arc.centre.x + radius, arc.centre.y + radius};
}

}  // namespace

SceneIndex::SceneIndex(const Scene& scene)
    : m_polylines(scene.polylines().size()), m_arcs(scene.arcs().size()), m_polygons(scene.polygons().size())
{
    // The polylines' boxes, which read the most points, on one thread;
    // the other items' on another.
    std::vector<Box> boxes(m_polylines + m_arcs + m_polygons + scene.instances().size());
    onTwoThreads(boxes.size() >= kItemsForTwoThreads, [&](int half) {
        Box* box = boxes.data();
        if (half == 0) {
            for (const Polyline& polyline : scene.polylines())
                *box++ = boxOfPoints(scene, polyline.first, polyline.count);
            return;
        }
        box += m_polylines;
        for (const Arc& arc : scene.arcs())
            *box++ = boxOfArc(arc);
        for (const Polygon& polygon : scene.polygons())
            *box++ = boxOfPoints(scene, polygon.first, polygon.count);
        for (const Instance& instance : scene.instances())
            *box++ = instance.box;
    });
    // Items of unknown extent are always found; in the tree, whose order
    // needs numbers, a point at the origin stands in for them.
    m_finite.resize(boxes.size());
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        m_finite[i] = finite(boxes[i]);
        if (!m_finite[i]) {
            m_unbounded.push_back(std::uint32_t(i));
            boxes[i] = Box{};
        }
    }
    m_index = BoxIndex(std::move(boxes));
}

SceneItems SceneIndex::near(const std::vector<Box>& boxes) const
{
    // Items are marked in words of 64, then listed in scene order a word
    // at a time.
    std::vector<std::uint64_t> found((m_index.size() + 63) / 64);
    const auto mark = [&](std::uint32_t item) { found[item / 64] |= std::uint64_t(1) << (item % 64); };
    for (const std::uint32_t item : m_unbounded)
        mark(item);
    for (const Box& box : boxes)
        m_index.query(box, mark);
    // The items begin to end - 1 that are marked, less begin.
    const auto list = [&](std::size_t begin, std::size_t end, std::vector<std::uint32_t>& into) {
        const auto bitsOf = [&](std::size_t word) {
            std::uint64_t bits = found[word];
            if (word == begin / 64)
                bits &= ~std::uint64_t(0) << (begin % 64);
            if (word == end / 64)
                bits &= (std::uint64_t(1) << (end % 64)) - 1;
            return bits;
        };
        std::size_t count = 0;
        for (std::size_t word = begin / 64; word * 64 < end; ++word)
            count += std::size_t(std::popcount(bitsOf(word)));
        into.reserve(count);
        for (std::size_t word = begin / 64; word * 64 < end; ++word)
            for (std::uint64_t bits = bitsOf(word); bits != 0; bits &= bits - 1)
                into.push_back(std::uint32_t(word * 64 + std::size_t(std::countr_zero(bits)) - begin));
    };
    SceneItems items;
    const std::size_t arcs = m_polylines, polygons = arcs + m_arcs, instances = polygons + m_polygons;
    list(0, arcs, items.polylines);
    list(arcs, polygons, items.arcs);
    list(polygons, instances, items.polygons);
    list(instances, m_index.size(), items.instances);
    return items;
}

}  // namespace kaldo::view
