// The current view of the drawing: a plan view of the world XY plane with a
// centre, a scale and a size in pixels. Without a window it covers 1 drawing
// unit per pixel around the origin; the window sets it as the user zooms.
#pragma once

#include "kxgs.h"

namespace kaldo {

class View : public KxGsView {
public:
    KxGePoint3d centre;
    double unitsPerPixel = 1.0;
    int widthPixels = 800;
    int heightPixels = 600;

    double unitSquarePerPixel() const override { return unitsPerPixel; }
    KxGePoint3d worldToDisplay(const KxGePoint3d& world) const override
    {
        return {world.x - centre.x, world.y - centre.y, 0.0};
    }
};

}  // namespace kaldo
