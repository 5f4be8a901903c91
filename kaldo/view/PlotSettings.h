// What a plot puts on paper and how: the paper and the way it lies, the
// part of the drawing, the scale, where the drawing goes on the sheet, and
// how its lines look. The texts that name papers and scales are read here
// for the prompts, the dialog, the profile and the executable's options.
#pragma once

#include "kaldo/view/Scene.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kaldo::view {

// A sheet of paper in millimetres, its shorter side first.
struct Paper {
    std::wstring name = L"A4";  // "A4", "ANSI A"; empty for a size given in millimetres
    double width = 210;
    double height = 297;
};

// The named papers: ISO A0 to A4 and ANSI A to E.
const std::vector<Paper>& namedPapers();
// A paper by name, case and blanks or hyphens ignored ("a4", "ANSI-B",
// "ansib"), or as width by height in millimetres ("420x297", "420 x 297",
// "420,297"); nothing when the text names none or a side is not a number
// from 1 to 10 000 mm.
std::optional<Paper> parsePaper(std::wstring_view text);
// The name, or "420 x 297" for a paper without one.
std::wstring paperText(const Paper& paper);

enum class Orientation { Portrait, Landscape };
// What part of the drawing is plotted: everything drawn, the view the
// window shows, or a window between two corners.
enum class PlotArea { Extents, Display, Window };

// The plot's scale: Fit, "a:b" (a length on paper to the same length in
// the drawing, whose units are those of its $INSUNITS) or "a=b" (a
// millimetres on paper for b drawing units).
struct PlotScale {
    bool fit = true;
    double paper = 1;
    double drawing = 1;
    bool inDrawingUnits = false;  // "a=b"
    // Paper millimetres for a drawing unit of unitMillimetres.
    double millimetresPerUnit(double unitMillimetres) const;
};
// "Fit" (any case), "1:100", "1=50", "2:1"; both numbers finite and above
// 0, else nothing.
std::optional<PlotScale> parsePlotScale(std::wstring_view text);
std::wstring plotScaleText(const PlotScale& scale);

// An offset on paper as "x,y" in millimetres (finite numbers), else nothing.
std::optional<Point2> parseOffset(std::wstring_view text);
std::wstring offsetText(const Point2& offset);

// A number as the plot's texts write it, to ten significant digits:
// "100", "2.5", "215.9".
std::wstring numberText(double value);

// Millimetres in a drawing unit as $INSUNITS names it; millimetres for 0
// (unitless) and for codes beyond the 20 it knows.
double unitMillimetres(int insunits);

// How the lines of a plot look: colours or all black, lineweights from the
// entities and layers or the default for all, the default in millimetres.
struct PlotLook {
    bool monochrome = false;
    bool lineWeights = true;
    double defaultLineWeight = 0.25;
};

// The thickest lineweight, in millimetres.
inline constexpr double kThickestLineWeight = 2.11;

struct PlotSettings {
    Paper paper;
    Orientation orientation = Orientation::Landscape;
    PlotArea area = PlotArea::Extents;
    Bounds window;  // the corners of a Window area, in drawing units
    PlotScale scale;
    bool centred = true;
    Point2 offset;  // millimetres from the printable area's lower-left corner
    PlotLook look;
};

}  // namespace kaldo::view
