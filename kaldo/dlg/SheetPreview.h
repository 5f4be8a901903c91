// The preview of a plot: the sheet as it lies, fitted into the widget on a
// grey desk, its printable area outlined, and the drawing painted on it as
// the plot paints it (placed at the scale, lineweights, colours or black).
#pragma once

#include "kaldo/view/PlotSettings.h"
#include "kaldo/view/Scene.h"
#include "kaldo/view/SheetPlacement.h"

#include <QWidget>

namespace kaldo::dlg {

class SheetPreview : public QWidget {
public:
    SheetPreview(const view::Scene& scene, QWidget* parent = nullptr);

    void showPlot(const view::SheetPlacement& placement, const view::PlotLook& look);
    // Where the sheet lies in the widget.
    QRectF sheetRect() const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const view::Scene& m_scene;
    view::SheetPlacement m_placement;
    view::PlotLook m_look;
};

}  // namespace kaldo::dlg
