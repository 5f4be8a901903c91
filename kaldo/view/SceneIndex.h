// Where a scene's items lie: a packed R-tree over the drawing-unit boxes of
// its polylines, arcs, fills and instances, so that painting a part of a
// large scene looks only at the items near that part. Built once per scene.
#pragma once

#include "kaldo/util/BoxIndex.h"
#include "kaldo/view/Scene.h"

#include <cstdint>
#include <vector>

namespace kaldo::view {

// Indices of a scene's items, each list in scene order.
struct SceneItems {
    std::vector<std::uint32_t> polylines;
    std::vector<std::uint32_t> arcs;
    std::vector<std::uint32_t> polygons;
    std::vector<std::uint32_t> instances;
};

class SceneIndex {
public:
    explicit SceneIndex(const Scene& scene);

    // The items whose boxes meet one of boxes, and those with a coordinate
    // that is not a finite number (their extent is unknown).
    SceneItems near(const std::vector<Box>& boxes) const;

    enum class Kind { Polyline, Arc, Polygon, Instance };
    // Calls visit(kind, index) for each item whose box meets box, in no set
    // order (items of unknown extent may come too).
    template <class Visit>
    void query(const Box& box, Visit&& visit) const
    {
        m_index.query(box, [&](std::uint32_t item) {
            if (item < m_polylines)
                visit(Kind::Polyline, item);
            else if (item < m_polylines + m_arcs)
                visit(Kind::Arc, std::uint32_t(item - m_polylines));
            else if (item < m_polylines + m_arcs + m_polygons)
                visit(Kind::Polygon, std::uint32_t(item - m_polylines - m_arcs));
            else
                visit(Kind::Instance, std::uint32_t(item - m_polylines - m_arcs - m_polygons));
        });
    }

    // Calls visit(box) for each item of known extent whose box meets box,
    // in no set order; where items lie close together, once for a group of
    // them whose box (given instead) is narrower and lower than detail.
    template <class Visit>
    void queryBoxes(const Box& box, double detail, Visit&& visit) const
    {
        m_index.queryCoarse(
            box, detail,
            [&](std::uint32_t item, const Box& itemBox) {
                if (m_finite[item])
                    visit(itemBox);
            },
            visit);
    }

private:
    std::size_t m_polylines = 0;
    std::size_t m_arcs = 0;
    std::size_t m_polygons = 0;
    // Items: the polylines, then the arcs, the polygons and the instances;
    // the tree keeps their boxes.
    std::vector<bool> m_finite;
    BoxIndex m_index;
    std::vector<std::uint32_t> m_unbounded;
};

}  // namespace kaldo::view
