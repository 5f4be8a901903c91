// A plot of the working drawing: the areas a plot can take (the extents,
// the view shown, a window), the drawing's unit from $INSUNITS, and the
// PDF written with the transcript's report. The drawing is drawn with texts
// kept as text, in pieces of a few thousand entities, each painted and
// dropped before the next is drawn, so that plotting a large drawing holds
// no more than a piece; its extents come from such a pass before. The
// whole drawing as one scene is made only for a preview. The settings of the last plot are kept in the
// profile (section "Plot") and offered as the next plot's defaults.
#pragma once

#include "kaldo/view/DrawingRenderer.h"
#include "kaldo/view/PlotSettings.h"
#include "kaldo/view/SheetPlacement.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace kaldo {

class Profile;
class Session;

class DrawingPlot {
public:
    // Measures the working drawing's extents (on the command thread);
    // throws what the renderer throws (std::bad_alloc).
    explicit DrawingPlot(Session& session);

    // The whole drawing in one scene, drawn at the first call.
    const view::Scene& scene() const;
    const view::PlotSource& source() const { return source_; }
    // Writes the plot as a PDF file; returns why it could not be written,
    // empty on success, when report receives the transcript's lines about
    // it (what was plotted and how, what was cut or left out), each ended
    // by a line feed.
    std::string write(const view::PlotSettings& settings, const std::filesystem::path& file,
                      std::wstring& report) const;

private:
    // Calls piece with each piece of the drawing in turn.
    void drawPieces(const std::function<void(const view::Scene&)>& piece, view::RenderNotes* notes) const;

    Session& session_;
    view::RenderNotes notes_;
    mutable std::optional<view::Scene> scene_;
    view::PlotSource source_;
    std::wstring title_;
};

// "A4 landscape (297 x 210 mm)".
std::wstring sheetText(const view::PlotSettings& settings);

// The last plot's settings (a window's corners are not kept); the
// defaults where the profile holds none or an unreadable value.
view::PlotSettings loadPlotSettings(const Profile& profile);
void storePlotSettings(Profile& profile, const view::PlotSettings& settings);

}  // namespace kaldo
