// Where drawing points land in the canvas and how pan and zoom move the
// view. Pixels: origin at the top left, y down; drawing: y up.
#pragma once

#include "kaldo/ed/View.h"
#include "kaldo/view/Picture.h"

#include <QPointF>

namespace kaldo::ui {

view::Point2 worldAt(const ViewPlacement& view, const QPointF& pixel);
QPointF pixelAt(const ViewPlacement& view, const view::Point2& world);
view::PictureFrame frameOf(const ViewPlacement& view);

// Zooms by factor (above 1 shows things larger) keeping the drawing point
// under pixel where it is.
ViewPlacement zoomedAt(const ViewPlacement& view, const QPointF& pixel, double factor);
// Moves the drawing along with the mouse by delta pixels.
ViewPlacement panned(const ViewPlacement& view, const QPointF& delta);
// Shows all of bounds with a small margin; the view as it was for empty
// bounds.
ViewPlacement fitted(const ViewPlacement& view, const view::Bounds& bounds);

}  // namespace kaldo::ui
