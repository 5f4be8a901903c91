// The current view of the drawing: a plan view of the world XY plane with a
// centre, a scale and a size in pixels. Without a window it covers 1 drawing
// unit per pixel around the origin; the window and ZOOM change it.
#pragma once

#include "kxgs.h"

#include <deque>
#include <functional>

namespace kaldo {

struct ViewPlacement {
    KxGePoint3d centre;
    double unitsPerPixel = 1.0;
    int widthPixels = 800;
    int heightPixels = 600;
};

class View : public KxGsView, public ViewPlacement {
public:
    // Called when a command (ZOOM) changes the view, so that a window follows.
    using Listener = std::function<void(const ViewPlacement&)>;

    double unitSquarePerPixel() const override { return unitsPerPixel; }
    KxGePoint3d worldToDisplay(const KxGePoint3d& world) const override
    {
        return {world.x - centre.x, world.y - centre.y, 0.0};
    }

    const ViewPlacement& placement() const { return *this; }
    // Takes a new placement; the old one is remembered for previous() when
    // the centre or the scale changes (the last ten are kept).
    void place(const ViewPlacement& placement);
    // Goes back to the last remembered placement (keeping today's size);
    // false when there is none.
    bool previous();

    void setListener(Listener listener) { listener_ = std::move(listener); }
    // Tells the listener about the current placement.
    void announce() const;

private:
    std::deque<ViewPlacement> history_;
    Listener listener_;
};

}  // namespace kaldo
