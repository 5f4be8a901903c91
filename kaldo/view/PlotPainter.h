// Paints a scene on a sheet as a plot: the fills first, then the lines in
// the widths of their lineweights (millimetres on paper, whatever the
// scale), then the texts as text, all clipped to the printable area; in
// their colours on white, or all black when monochrome. The PDF and the
// plot's preview paint with it.
#pragma once

#include "kaldo/view/PlotSettings.h"
#include "kaldo/view/Scene.h"
#include "kaldo/view/SheetPlacement.h"

#include <QRectF>

class QPainter;

namespace kaldo::view {

// What of a plot to paint: a plot painted in pieces paints the fills of
// all pieces under the lines of all, and the texts over both.
struct PlotLayers {
    bool fills = true;
    bool lines = true;
    bool texts = true;
};

// sheet is where the sheet lies on the painter's device (its top-left
// corner at the paper's top-left corner).
void paintPlot(QPainter& painter, const Scene& scene, const SheetPlacement& placement, const QRectF& sheet,
               const PlotLook& look, const PlotLayers& layers = {});
// Where the printable area lies on the device.
QRectF printableRect(const SheetPlacement& placement, const QRectF& sheet);

}  // namespace kaldo::view
