// PLOT and -PLOT: plot the drawing to a PDF file at a scale on a paper
// size. PLOT opens the Plot dialog (its "Window <" asks for the corners on
// the command line and opens it again); -PLOT asks on the command line,
// each prompt offering the last plot's choice as its default, which Enter
// takes. Both then ask for the PDF file and keep their settings in the
// profile for the next plot.
#include "kaldo/app/Plotting.h"
#include "kaldo/app/Session.h"
#include "kaldo/app/commands/HostCommands.h"
#include "kaldo/dlg/PlotDialog.h"
#include "kaldo/ed/Coordinates.h"
#include "kaldo/ed/Editor.h"
#include "kaldo/ed/Text.h"
#include "kaldo/util/Profile.h"
#include "kxed.h"
#include "kxstring.h"

#include <QApplication>

#include <memory>
#include <optional>

namespace kaldo {

namespace {

using view::PlotArea;
using view::PlotSettings;

// Asks until the answer reads as a value: RTNORM with it, RTNONE for Enter
// (value stays), else how the input ended. Keywords come back as their
// global words, other text (with RSG_OTHER) as typed.
template <class Value, class Read>
int askFor(Editor& editor, int flags, std::wstring_view keywords, const std::wstring& prompt, Value& value,
           const Read& read, std::wstring_view complaint)
{
    for (;;) {
        editor.initGet(flags, keywords);
        std::wstring answer;
        const int result = editor.getKeyword(prompt, answer);
        if (result != RTNORM)
            return result;
        if (const std::optional<Value> read_ = read(answer)) {
            value = *read_;
            return RTNORM;
        }
        editor.write(L"\n" + std::wstring(complaint) + L"\n");
    }
}

bool answered(int result)
{
    return result == RTNORM || result == RTNONE;
}

// Two corners picked or typed in the user's coordinates, in the drawing's.
bool askWindow(Editor& editor, view::Bounds& window)
{
    KxGePoint3d first, second;
    if (editor.getPoint(nullptr, L"\nSpecify first corner: ", first) != RTNORM
        || editor.getPoint(&first, L"\nSpecify opposite corner: ", second) != RTNORM)
        return false;
    const Ucs ucs = currentUcs();
    window = {};
    for (const KxGePoint3d& corner : {ucsToWorld(ucs, first), ucsToWorld(ucs, second)})
        window.add({corner.x, corner.y});
    return true;
}

bool askSettings(Editor& editor, PlotSettings& settings)
{
    const auto yesNo = [](const std::wstring& word) { return std::optional(word == L"Yes"); };
    const auto word = [](const std::wstring& text) { return std::optional(text); };
    std::wstring area = settings.area == PlotArea::Display ? L"Display"
                      : settings.area == PlotArea::Window ? L"Window"
                                                           : L"Extents";
    std::wstring orientation = settings.orientation == view::Orientation::Portrait ? L"Portrait" : L"Landscape";
    std::optional<view::Point2> offset =
        settings.centred ? std::nullopt : std::optional(settings.offset);
    const auto readOffset = [](const std::wstring& text) -> std::optional<std::optional<view::Point2>> {
        if (text == L"Center")
            return std::optional<view::Point2>();
        if (const auto typed = view::parseOffset(text))
            return std::optional(typed);
        return std::nullopt;
    };
    const auto readWeight = [](const std::wstring& text) -> std::optional<double> {
        const auto weight = parseReal(trimmed(text));
        return weight && *weight >= 0 && *weight <= view::kThickestLineWeight ? weight : std::nullopt;
    };
    if (!answered(askFor(editor, RSG_OTHER, L"A0 A1 A2 A3 A4 ANSI-A ANSI-B ANSI-C ANSI-D ANSI-E",
                         L"\nPaper [A0/A1/A2/A3/A4/ANSI-A/ANSI-B/ANSI-C/ANSI-D/ANSI-E] or WxH in mm <"
                             + view::paperText(settings.paper) + L">: ",
                         settings.paper, [](const std::wstring& text) { return view::parsePaper(text); },
                         L"Requires a paper name or its width and height in millimetres, as 420x297.")))
        return false;
    if (!answered(askFor(editor, 0, L"Portrait Landscape _Portrait Landscape",
                         L"\nOrientation [Portrait/Landscape] <" + orientation + L">: ", orientation, word, L"")))
        return false;
    settings.orientation = orientation == L"Portrait" ? view::Orientation::Portrait : view::Orientation::Landscape;
    if (!answered(askFor(editor, 0, L"Display Extents Window _Display Extents Window",
                         L"\nPlot area [Display/Extents/Window] <" + area + L">: ", area, word, L"")))
        return false;
    settings.area = area == L"Display" ? PlotArea::Display : area == L"Window" ? PlotArea::Window : PlotArea::Extents;
    if (settings.area == PlotArea::Window && !askWindow(editor, settings.window))
        return false;
    if (!answered(askFor(editor, RSG_OTHER, L"Fit _Fit",
                         L"\nPlot scale (1:N, or mm=units) or [Fit] <" + view::plotScaleText(settings.scale) + L">: ",
                         settings.scale, [](const std::wstring& text) { return view::parsePlotScale(text); },
                         L"Requires a scale such as 1:100 or 1=50, or Fit.")))
        return false;
    if (!answered(askFor(editor, RSG_OTHER, L"Center _Center",
                         L"\nPlot offset in mm (x,y) or [Center] <" + (offset ? view::offsetText(*offset) : L"Center")
                             + L">: ",
                         offset, readOffset, L"Requires an offset as x,y in millimetres, or Center.")))
        return false;
    settings.centred = !offset;
    settings.offset = offset.value_or(view::Point2{});
    if (!answered(askFor(editor, 0, L"Color Monochrome _Color Monochrome",
                         L"\nPlot style [Color/Monochrome] <" + std::wstring(settings.look.monochrome ? L"Monochrome" : L"Color")
                             + L">: ",
                         settings.look.monochrome,
                         [](const std::wstring& text) { return std::optional(text == L"Monochrome"); }, L"")))
        return false;
    if (!answered(askFor(editor, 0, L"Yes No _Yes No",
                         L"\nPlot lineweights? [Yes/No] <" + std::wstring(settings.look.lineWeights ? L"Yes" : L"No")
                             + L">: ",
                         settings.look.lineWeights, yesNo, L"")))
        return false;
    return answered(askFor(editor, RSG_OTHER, L"",
                           L"\nDefault lineweight in mm <" + view::numberText(settings.look.defaultLineWeight) + L">: ",
                           settings.look.defaultLineWeight, readWeight,
                           L"Requires a lineweight from 0 to 2.11 millimetres."));
}

// The PDF file the drawing's own suggests.
std::filesystem::path suggestedPlotFile(const Session& session)
{
    std::filesystem::path file = session.drawingPath().empty() ? L"Drawing1.dxf" : session.drawingPath();
    return file.replace_extension(L".pdf");
}

// The PDF file, chosen in a file dialog or on the command line; empty when
// none was.
std::filesystem::path choosePlotFile(const Session& session)
{
    wchar_t* name = nullptr;
    if (getFileNameByFileDialog(L"Plot to File", suggestedPlotFile(session).wstring().c_str(), L"pdf", 1, name) != 0
        || !name)
        return {};
    const std::unique_ptr<wchar_t, decltype(&kald_free)> owned(name, kald_free);
    return name;
}

// The drawing drawn for the plot; nothing (said why) when it cannot be.
std::unique_ptr<DrawingPlot> drawForPlot(Session& session, Editor& editor)
{
    try {
        return std::make_unique<DrawingPlot>(session);
    } catch (...) {
        editor.write(L"\nThe drawing cannot be plotted: "
                     + kxutFromMultiByte(view::failureReason(std::current_exception())) + L".\n");
        return nullptr;
    }
}

void plotToFile(Session& session, Editor& editor, const DrawingPlot& plot, const PlotSettings& settings,
                const std::filesystem::path& file)
{
    storePlotSettings(session.profile(), settings);
    std::wstring report;
    if (const std::string problem = plot.write(settings, file, report); !problem.empty())
        report = L"The plot was not written: " + kxutFromMultiByte(problem) + L"\n";
    editor.write(L"\n" + report);
}

}  // namespace

void plotCommandLine()
{
    Session* session = Session::current();
    Editor* editor = currentEditor();
    if (!session || !editor)
        return;
    PlotSettings settings = loadPlotSettings(session->profile());
    if (!askSettings(*editor, settings))
        return;
    const auto plot = drawForPlot(*session, *editor);
    if (!plot)
        return;
    if (const std::filesystem::path file = choosePlotFile(*session); !file.empty())
        plotToFile(*session, *editor, *plot, settings, file);
}

void plotCommand()
{
    Session* session = Session::current();
    Editor* editor = currentEditor();
    if (!session || !editor)
        return;
    if (!qobject_cast<QApplication*>(QCoreApplication::instance())) {
        plotCommandLine();
        return;
    }
    PlotSettings settings = loadPlotSettings(session->profile());
    const auto plot = drawForPlot(*session, *editor);
    if (!plot)
        return;
    std::filesystem::path file = suggestedPlotFile(*session);
    for (;;) {
        const dlg::PlotChoice choice = dlg::runPlotDialog(plot->scene(), plot->source(), settings, file);
        if (choice == dlg::PlotChoice::Cancel)
            return;
        if (choice == dlg::PlotChoice::Plot)
            break;
        if (askWindow(*editor, settings.window))
            settings.area = PlotArea::Window;
    }
    plotToFile(*session, *editor, *plot, settings, file);
}

}  // namespace kaldo
