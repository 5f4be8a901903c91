// Object snaps: points of what the window shows that a picked point jumps
// to - ends, middles and crossings of lines and arcs, the foot of the
// perpendicular from the base point, the nearest point. They work on the
// published scene, so the window finds them without the drawing.
#pragma once

#include "kaldo/util/BoxIndex.h"
#include "kaldo/view/Scene.h"

#include <optional>
#include <vector>

namespace kaldo::ui {

enum class SnapKind { Endpoint, Midpoint, Intersection, Perpendicular, Nearest };

struct Snap {
    view::Point2 point;
    SnapKind kind = SnapKind::Nearest;
};

// The line segments (of every polyline) and arcs of a scene, indexed by
// their boxes.
class SnapGeometry {
public:
    explicit SnapGeometry(const view::Scene& scene);

    // Of the ends, middles, crossings of two segments and (with a base
    // point) feet of perpendiculars within aperture of cursor, the one
    // nearest to it; else the nearest point of a segment or arc within
    // aperture; else nothing. Crossings are sought among the segments
    // nearest to the cursor.
    std::optional<Snap> find(const view::Point2& cursor, double aperture, const view::Point2* base) const;

private:
    // The point of a segment or arc (an item of the index) nearest to p.
    view::Point2 nearestPoint(std::uint32_t item, const view::Point2& p) const;

    struct Segment {
        view::Point2 a, b;
    };

    std::vector<Segment> m_segments;
    std::vector<view::Arc> m_arcs;
    BoxIndex m_index;  // items: the segments, then the arcs
};

}  // namespace kaldo::ui
