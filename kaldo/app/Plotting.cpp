#include "kaldo/app/Plotting.h"

#include "kaldo/app/Session.h"
#include "kaldo/ed/Editor.h"
#include "kaldo/util/Profile.h"
#include "kaldo/view/PdfExport.h"

#include <QString>

#include <algorithm>

namespace kaldo {

namespace {

constexpr const wchar_t* kSection = L"Plot";
constexpr int kUnitsGroup = 70;

// $INSUNITS as the drawing file held it; 0 (unitless) when it held none.
int drawingUnits(const Session& session)
{
    bool inUnits = false;
    int units = 0;
    session.keptSections().header.view().forEach([&](std::int16_t code, std::uint8_t, std::string_view value) {
        if (code == 9) {
            inUnits = value == "$INSUNITS";
            return true;
        }
        bool ok = false;
        const int read = QString::fromUtf8(value.data(), qsizetype(value.size())).trimmed().toInt(&ok);
        if (inUnits && code == kUnitsGroup && ok) {
            units = read;
            return false;
        }
        return true;
    });
    return units;
}

view::Bounds displayed(const ViewPlacement& view)
{
    const double halfWidth = view.unitsPerPixel * view.widthPixels / 2;
    const double halfHeight = view.unitsPerPixel * view.heightPixels / 2;
    view::Bounds box;
    box.add({view.centre.x - halfWidth, view.centre.y - halfHeight});
    box.add({view.centre.x + halfWidth, view.centre.y + halfHeight});
    return box;
}

std::wstring quoted(const std::filesystem::path& file)
{
    return L"\"" + file.wstring() + L"\"";
}

}  // namespace

DrawingPlot::DrawingPlot(Session& session)
    : session_(session),
      source_{view::piecesExtents([&](const auto& piece) { drawPieces(piece, &notes_); }),
              displayed(session.editor().view().placement()), view::unitMillimetres(drawingUnits(session))},
      title_(session.drawingPath().empty() ? L"Drawing1.dxf" : session.drawingPath().filename().wstring())
{
}

const view::Scene& DrawingPlot::scene() const
{
    if (!scene_)
        scene_ = view::renderDrawing(session_.database(), nullptr, view::PointBudget::kPicture,
                                     session_.textStyleFonts(), true);
    return *scene_;
}

void DrawingPlot::drawPieces(const std::function<void(const view::Scene&)>& piece, view::RenderNotes* notes) const
{
    view::renderDrawingInPieces(session_.database(), view::kPlotPieceEntities, piece, notes,
                                view::PointBudget::kPicture, session_.textStyleFonts(), true);
}

std::string DrawingPlot::write(const view::PlotSettings& settings, const std::filesystem::path& file,
                               std::wstring& report) const
{
    const view::SheetPlacement placement = view::placeOnSheet(settings, source_);
    const view::ScenePieces pieces = [&](const auto& piece) { drawPieces(piece, nullptr); };
    if (std::string problem = view::writePdf(pieces, placement, settings.look, file, title_); !problem.empty())
        return problem;
    report = L"Plotted " + quoted(file) + L": " + sheetText(settings) + L", scale "
        + view::placedScaleText(placement, source_.unitMillimetres) + (settings.scale.fit ? L" (Fit)" : L"")
        + (settings.look.monochrome ? L", monochrome" : L"") + L".\n";
    if (!placement.fits())
        report += L"Parts of the drawing lie beyond the printable area and are cut off.\n";
    report += view::describeNotes(notes_, L"the plot");
    return {};
}

std::wstring sheetText(const view::PlotSettings& settings)
{
    const bool landscape = settings.orientation == view::Orientation::Landscape;
    const double across = landscape ? settings.paper.height : settings.paper.width;
    const double up = landscape ? settings.paper.width : settings.paper.height;
    const std::wstring size = view::numberText(across) + L" x " + view::numberText(up) + L" mm";
    const std::wstring lying = landscape ? L"landscape" : L"portrait";
    if (settings.paper.name.empty())
        return size + L" " + lying;
    return settings.paper.name + L" " + lying + L" (" + size + L")";
}

view::PlotSettings loadPlotSettings(const Profile& profile)
{
    view::PlotSettings settings;
    const auto text = [&](const wchar_t* key) { return profile.getString(kSection, key).value_or(L""); };
    if (const auto paper = view::parsePaper(text(L"Paper")))
        settings.paper = *paper;
    if (text(L"Orientation") == L"Portrait")
        settings.orientation = view::Orientation::Portrait;
    if (text(L"Area") == L"Display")
        settings.area = view::PlotArea::Display;
    else if (text(L"Area") == L"Window")
        settings.area = view::PlotArea::Window;
    if (const auto scale = view::parsePlotScale(text(L"Scale")))
        settings.scale = *scale;
    if (const auto offset = view::parseOffset(text(L"Offset"))) {
        settings.centred = false;
        settings.offset = *offset;
    }
    settings.look.monochrome = text(L"Style") == L"Monochrome";
    settings.look.lineWeights = text(L"Lineweights") != L"No";
    bool okWeight = false;
    const double weight = QString::fromStdWString(text(L"DefaultLineweight")).toDouble(&okWeight);
    if (okWeight && weight >= 0 && weight <= view::kThickestLineWeight)
        settings.look.defaultLineWeight = weight;
    return settings;
}

void storePlotSettings(Profile& profile, const view::PlotSettings& settings)
{
    const auto area = settings.area == view::PlotArea::Display  ? L"Display"
                    : settings.area == view::PlotArea::Window ? L"Window"
                                                              : L"Extents";
    profile.setString(kSection, L"Paper", view::paperText(settings.paper));
    profile.setString(kSection, L"Orientation",
                      settings.orientation == view::Orientation::Portrait ? L"Portrait" : L"Landscape");
    profile.setString(kSection, L"Area", area);
    profile.setString(kSection, L"Scale", view::plotScaleText(settings.scale));
    profile.setString(kSection, L"Offset",
                      settings.centred ? L"Center" : view::offsetText(settings.offset));
    profile.setString(kSection, L"Style", settings.look.monochrome ? L"Monochrome" : L"Color");
    profile.setString(kSection, L"Lineweights", settings.look.lineWeights ? L"Yes" : L"No");
    profile.setString(kSection, L"DefaultLineweight", view::numberText(settings.look.defaultLineWeight));
}

}  // namespace kaldo
