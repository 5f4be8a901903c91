#include "kaldo/ui/ViewGeometry.h"

#include <algorithm>
#include <cmath>

namespace kaldo::ui {

namespace {
// A twentieth more room than the drawing needs on each side.
constexpr double kFitMargin = 1.1;
}

view::Point2 worldAt(const ViewPlacement& view, const QPointF& pixel)
{
    return {view.centre.x + (pixel.x() - view.widthPixels / 2.0) * view.unitsPerPixel,
            view.centre.y - (pixel.y() - view.heightPixels / 2.0) * view.unitsPerPixel};
}

QPointF pixelAt(const ViewPlacement& view, const view::Point2& world)
{
    return {view.widthPixels / 2.0 + (world.x - view.centre.x) / view.unitsPerPixel,
            view.heightPixels / 2.0 - (world.y - view.centre.y) / view.unitsPerPixel};
}

view::PictureFrame frameOf(const ViewPlacement& view)
{
    return view::PictureFrame(view.widthPixels, view.heightPixels, 1.0 / view.unitsPerPixel,
                              {view.centre.x, view.centre.y});
}

ViewPlacement zoomedAt(const ViewPlacement& view, const QPointF& pixel, double factor)
{
    const view::Point2 fixed = worldAt(view, pixel);
    ViewPlacement result = view;
    result.unitsPerPixel = view.unitsPerPixel / factor;
    // The centre moves so that fixed stays under pixel at the new scale.
    result.centre.x = fixed.x - (pixel.x() - view.widthPixels / 2.0) * result.unitsPerPixel;
    result.centre.y = fixed.y + (pixel.y() - view.heightPixels / 2.0) * result.unitsPerPixel;
    return result;
}

ViewPlacement panned(const ViewPlacement& view, const QPointF& delta)
{
    ViewPlacement result = view;
    result.centre.x -= delta.x() * view.unitsPerPixel;
    result.centre.y += delta.y() * view.unitsPerPixel;
    return result;
}

ViewPlacement fitted(const ViewPlacement& view, const view::Bounds& bounds)
{
    if (bounds.empty)
        return view;
    ViewPlacement result = view;
    result.centre = {(bounds.minX + bounds.maxX) / 2, (bounds.minY + bounds.maxY) / 2, 0};
    const double fit = std::max((bounds.maxX - bounds.minX) / std::max(1, view.widthPixels),
                                (bounds.maxY - bounds.minY) / std::max(1, view.heightPixels));
    if (fit > 0 && std::isfinite(fit))
        result.unitsPerPixel = fit * kFitMargin;
    return result;
}

}  // namespace kaldo::ui
