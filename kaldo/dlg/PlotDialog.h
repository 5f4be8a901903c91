// The Plot dialog of the host (template id 7000, made in code): the paper
// and the way it lies, the area, the scale, the offset or centring, colours
// and lineweights, and a preview of the sheet that follows every change.
// Its items carry dialog item ids, so that scripts act on it as on every
// dialog. "Window <" closes it so that the command can ask for the
// window's corners in the drawing; the command then opens it again.
#pragma once

#include "kaldo/view/PlotSettings.h"
#include "kaldo/view/Scene.h"
#include "kaldo/view/SheetPlacement.h"

#include <filesystem>

namespace kaldo::dlg {

enum PlotItem : int {
    kPlotDialog = 7000,
    kPlotPaper = 7001,
    kPlotPaperWidth = 7002,
    kPlotPaperHeight = 7003,
    kPlotPortrait = 7004,
    kPlotLandscape = 7005,
    kPlotArea = 7006,
    kPlotPickWindow = 7007,
    kPlotScale = 7008,
    kPlotCentre = 7009,
    kPlotOffsetX = 7010,
    kPlotOffsetY = 7011,
    kPlotMonochrome = 7012,
    kPlotLineWeights = 7013,
    kPlotDefaultLineWeight = 7014,
    kPlotPreview = 7015,
    kPlotSummary = 7016,
};

enum class PlotChoice { Plot, Cancel, PickWindow };

// Runs the dialog modally on the GUI thread, showing scene as placed by
// source and settings; settings take what was chosen unless it ends as
// cancelled. Its Plot button asks for the PDF file (file suggests one and
// takes the choice) while the dialog stays open; a choice of none leaves
// it open. Without an application that shows windows it ends as
// cancelled at once.
PlotChoice runPlotDialog(const view::Scene& scene, const view::PlotSource& source, view::PlotSettings& settings,
                         std::filesystem::path& file);

}  // namespace kaldo::dlg
