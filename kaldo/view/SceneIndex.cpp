#include "kaldo/view/SceneIndex.h"

#include "kaldo/util/TwoThreads.h"

#include <algorithm>
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
    // Items are marked, then listed in scene order.
    std::vector<bool> found(m_index.size());
    for (const std::uint32_t item : m_unbounded)
        found[item] = true;
    for (const Box& box : boxes)
        m_index.query(box, [&](std::uint32_t item) { found[item] = true; });
    SceneItems items;
    for (std::uint32_t item = 0; item < found.size(); ++item) {
        if (!found[item])
            continue;
        if (item < m_polylines)
            items.polylines.push_back(item);
        else if (item < m_polylines + m_arcs)
            items.arcs.push_back(std::uint32_t(item - m_polylines));
        else if (item < m_polylines + m_arcs + m_polygons)
            items.polygons.push_back(std::uint32_t(item - m_polylines - m_arcs));
        else
            items.instances.push_back(std::uint32_t(item - m_polylines - m_arcs - m_polygons));
    }
    return items;
}

}  // namespace kaldo::view
