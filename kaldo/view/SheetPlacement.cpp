#include "kaldo/view/SheetPlacement.h"

#include <QRegularExpression>
#include <QString>

#include <algorithm>
#include <cmath>

namespace kaldo::view {

namespace {

constexpr double kTolerance = 1e-9;

}  // namespace

Bounds SheetPlacement::plotted() const
{
    Bounds paper;
    if (area.empty)
        return paper;
    paper.add(toPaper({area.minX, area.minY}));
    paper.add(toPaper({area.maxX, area.maxY}));
    return paper;
}

bool SheetPlacement::fits() const
{
    const Bounds paper = plotted();
    return paper.empty
        || (paper.minX >= printable.minX - kTolerance && paper.maxX <= printable.maxX + kTolerance
            && paper.minY >= printable.minY - kTolerance && paper.maxY <= printable.maxY + kTolerance);
}

Bounds plotArea(const PlotSettings& settings, const PlotSource& source)
{
    switch (settings.area) {
    case PlotArea::Display: return source.display;
    case PlotArea::Window: return settings.window;
    default: return source.extents;
    }
}

SheetPlacement placeOnSheet(const PlotSettings& settings, const PlotSource& source)
{
    const Bounds area = plotArea(settings, source);
    SheetPlacement placement;
    const bool landscape = settings.orientation == Orientation::Landscape;
    placement.width = landscape ? settings.paper.height : settings.paper.width;
    placement.height = landscape ? settings.paper.width : settings.paper.height;
    placement.printable.add({kPrintableMargin, kPrintableMargin});
    placement.printable.add({placement.width - kPrintableMargin, placement.height - kPrintableMargin});
    placement.area = area;
    placement.cutAtArea = settings.area != PlotArea::Extents;
    if (area.empty)
        placement.area.add({0, 0});
    const double areaWidth = placement.area.maxX - placement.area.minX;
    const double areaHeight = placement.area.maxY - placement.area.minY;
    const double printableWidth = placement.printable.maxX - placement.printable.minX;
    const double printableHeight = placement.printable.maxY - placement.printable.minY;
    if (!settings.scale.fit) {
        placement.millimetresPerUnit = settings.scale.millimetresPerUnit(source.unitMillimetres);
    } else if (areaWidth > 0 || areaHeight > 0) {
        placement.millimetresPerUnit = std::min(areaWidth > 0 ? printableWidth / areaWidth : INFINITY,
                                                areaHeight > 0 ? printableHeight / areaHeight : INFINITY);
    } else {
        placement.millimetresPerUnit = source.unitMillimetres;
    }
    if (settings.centred) {
        placement.origin = {placement.printable.minX + (printableWidth - areaWidth * placement.millimetresPerUnit) / 2,
                            placement.printable.minY
                                + (printableHeight - areaHeight * placement.millimetresPerUnit) / 2};
    } else {
        placement.origin = {placement.printable.minX + settings.offset.x,
                            placement.printable.minY + settings.offset.y};
    }
    return placement;
}

std::wstring placedScaleText(const SheetPlacement& placement, double unitMillimetres)
{
    const double ratio = placement.millimetresPerUnit / unitMillimetres;
    // Four decimals, the zeros at the end left out.
    const auto number = [](double value) {
        static const QRegularExpression trailingZeros(QStringLiteral("\\.?0+$"));
        return QString::number(value, 'f', 4).remove(trailingZeros);
    };
    const QString text = ratio >= 1 ? number(ratio) + QStringLiteral(":1") : QStringLiteral("1:") + number(1 / ratio);
    return text.toStdWString();
}

}  // namespace kaldo::view
