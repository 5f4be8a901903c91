// Where a plot puts the drawing on its sheet. Paper millimetres have their
// origin at the sheet's lower-left corner as it lies (portrait or
// landscape), y upwards. The printable area is the sheet less a margin of
// kPrintableMargin all round. The plotted area's lower-left corner goes to
// the offset from the printable area's lower-left corner, or the area's
// centre to the printable area's centre; a length of L drawing units
// measures L times millimetresPerUnit on paper: the scale's, or for Fit
// the largest with which the area fits the printable area. A plot is cut
// at the printable area's edges, and a window's or the display's plot at
// the area's edges too (the extents hold everything anyway; their outer
// lines keep the half of their width that lies beyond).
#pragma once

#include "kaldo/view/PlotSettings.h"
#include "kaldo/view/Scene.h"

namespace kaldo::view {

inline constexpr double kPrintableMargin = 5.0;

struct SheetPlacement {
    double width = 0;  // the sheet as it lies, in millimetres
    double height = 0;
    Bounds printable;  // paper millimetres
    Bounds area;       // drawing units
    double millimetresPerUnit = 1;
    Point2 origin;  // where the area's lower-left corner goes, paper millimetres
    bool cutAtArea = false;

    Point2 toPaper(const Point2& p) const
    {
        return {origin.x + (p.x - area.minX) * millimetresPerUnit, origin.y + (p.y - area.minY) * millimetresPerUnit};
    }
    // The area on paper.
    Bounds plotted() const;
    // Whether the plotted area lies within the printable area.
    bool fits() const;
};

// What a plot's area is chosen from: the extents of the drawing and the
// view shown (Window takes the settings' corners), and the millimetres
// in a drawing unit.
struct PlotSource {
    Bounds extents;
    Bounds display;
    double unitMillimetres = 1;
};

Bounds plotArea(const PlotSettings& settings, const PlotSource& source);
// An empty area stands for a point at the origin.
SheetPlacement placeOnSheet(const PlotSettings& settings, const PlotSource& source);

// The scale as "1:N" (or "N:1" above full size) of lengths on paper to
// the same lengths in the drawing, N with at most four decimals.
std::wstring placedScaleText(const SheetPlacement& placement, double unitMillimetres);

}  // namespace kaldo::view
