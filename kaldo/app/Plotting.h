// A plot of the working drawing: its scene with texts kept as text, the
// areas a plot can take (the extents, the view shown, a window), the
// drawing's unit from $INSUNITS, and the PDF written from it with the
// transcript's report. The settings of the last plot are kept in the
// profile (section "Plot") and offered as the next plot's defaults.
#pragma once

#include "kaldo/view/DrawingRenderer.h"
#include "kaldo/view/PlotSettings.h"
#include "kaldo/view/SheetPlacement.h"

#include <filesystem>
#include <string>

namespace kaldo {

class Profile;
class Session;

class DrawingPlot {
public:
    // Draws the working drawing (on the command thread); throws what the
    // renderer throws (std::bad_alloc).
    explicit DrawingPlot(Session& session);

    const view::Scene& scene() const { return scene_; }
    const view::PlotSource& source() const { return source_; }
    // Writes the plot as a PDF file; returns why it could not be written,
    // empty on success, when report receives the transcript's lines about
    // it (what was plotted and how, what was cut or left out), each ended
    // by a line feed.
    std::string write(const view::PlotSettings& settings, const std::filesystem::path& file,
                      std::wstring& report) const;

private:
    view::RenderNotes notes_;
    view::Scene scene_;
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
