// Object snaps: points of what the window shows that a picked point jumps
// to - ends, middles and crossings of lines and arcs, the foot of the
// perpendicular from the base point, the nearest point. They work on the
// published scene, so the window finds them without the drawing.
#pragma once

#include "kaldo/view/Scene.h"
#include "kaldo/view/SceneIndex.h"

#include <memory>
#include <optional>
#include <vector>

namespace kaldo::ui {

enum class SnapKind { Endpoint, Midpoint, Intersection, Perpendicular, Nearest };

struct Snap {
    view::Point2 point;
    SnapKind kind = SnapKind::Nearest;
};

// The line segments (of every polyline, those of instances placed) and
// arcs of a scene, found near the cursor through the scene's index: only
// what lies within the aperture is looked at, so that snapping costs no
// memory of its own and the same on any drawing.
class SnapGeometry {
public:
    SnapGeometry(std::shared_ptr<const view::Scene> scene, std::shared_ptr<const view::SceneIndex> index);

    // Of the ends, middles, crossings of two segments and (with a base
    // point) feet of perpendiculars within aperture of cursor, the one
    // nearest to it; else the nearest point of a segment or arc within
    // aperture; else nothing. Crossings are sought among the segments
    // nearest to the cursor.
    std::optional<Snap> find(const view::Point2& cursor, double aperture, const view::Point2* base) const;

private:
    std::shared_ptr<const view::Scene> m_scene;
    std::shared_ptr<const view::SceneIndex> m_index;
};

}  // namespace kaldo::ui
