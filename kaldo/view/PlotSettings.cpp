#include "kaldo/view/PlotSettings.h"

#include <QString>
#include <QStringList>

#include <array>
#include <cmath>

namespace kaldo::view {

namespace {

constexpr double kInch = 25.4;
constexpr double kLargestPaper = 10000;

// The text without blanks, in capitals.
QString squeezed(std::wstring_view text)
{
    QString word = QString::fromWCharArray(text.data(), qsizetype(text.size())).toUpper();
    word.remove(QLatin1Char(' '));
    word.remove(QLatin1Char('\t'));
    return word;
}

// A paper's name as typed or stored, without hyphens too.
QString paperKey(std::wstring_view text)
{
    return squeezed(text).remove(QLatin1Char('-'));
}

// A finite number above 0.
std::optional<double> positiveNumber(const QString& text)
{
    bool ok = false;
    const double value = text.trimmed().toDouble(&ok);
    return ok && std::isfinite(value) && value > 0 ? std::optional(value) : std::nullopt;
}

}  // namespace

const std::vector<Paper>& namedPapers()
{
    static const std::vector<Paper> papers = {
        {L"A0", 841, 1189},
        {L"A1", 594, 841},
        {L"A2", 420, 594},
        {L"A3", 297, 420},
        {L"A4", 210, 297},
        {L"ANSI A", 8.5 * kInch, 11 * kInch},
        {L"ANSI B", 11 * kInch, 17 * kInch},
        {L"ANSI C", 17 * kInch, 22 * kInch},
        {L"ANSI D", 22 * kInch, 34 * kInch},
        {L"ANSI E", 34 * kInch, 44 * kInch},
    };
    return papers;
}

std::optional<Paper> parsePaper(std::wstring_view text)
{
    const QString word = squeezed(text);
    for (const Paper& paper : namedPapers())
        if (paperKey(paper.name) == paperKey(text))
            return paper;
    QStringList sides = word.split(QLatin1Char('X'));
    if (sides.size() != 2)
        sides = word.split(QLatin1Char(','));
    if (sides.size() != 2)
        return std::nullopt;
    const auto first = positiveNumber(sides[0]);
    const auto second = positiveNumber(sides[1]);
    if (!first || !second || std::min(*first, *second) < 1 || std::max(*first, *second) > kLargestPaper)
        return std::nullopt;
    return Paper{{}, std::min(*first, *second), std::max(*first, *second)};
}

std::wstring paperText(const Paper& paper)
{
    if (!paper.name.empty())
        return paper.name;
    return numberText(paper.width) + L" x " + numberText(paper.height);
}

double PlotScale::millimetresPerUnit(double unitMillimetres) const
{
    return paper / drawing * (inDrawingUnits ? 1.0 : unitMillimetres);
}

std::optional<PlotScale> parsePlotScale(std::wstring_view text)
{
    const QString word = squeezed(text);
    if (word == QLatin1String("FIT"))
        return PlotScale{};
    for (const QChar separator : {QLatin1Char(':'), QLatin1Char('=')}) {
        const QStringList sides = word.split(separator);
        if (sides.size() != 2)
            continue;
        const auto paper = positiveNumber(sides[0]);
        const auto drawing = positiveNumber(sides[1]);
        if (!paper || !drawing)
            return std::nullopt;
        return PlotScale{false, *paper, *drawing, separator == QLatin1Char('=')};
    }
    return std::nullopt;
}

std::wstring plotScaleText(const PlotScale& scale)
{
    if (scale.fit)
        return L"Fit";
    return numberText(scale.paper) + (scale.inDrawingUnits ? L"=" : L":") + numberText(scale.drawing);
}

std::optional<Point2> parseOffset(std::wstring_view text)
{
    const QStringList parts = QString::fromWCharArray(text.data(), qsizetype(text.size())).split(QLatin1Char(','));
    if (parts.size() != 2)
        return std::nullopt;
    bool okX = false, okY = false;
    const Point2 offset{parts[0].trimmed().toDouble(&okX), parts[1].trimmed().toDouble(&okY)};
    return okX && okY && std::isfinite(offset.x) && std::isfinite(offset.y) ? std::optional(offset) : std::nullopt;
}

std::wstring offsetText(const Point2& offset)
{
    return numberText(offset.x) + L"," + numberText(offset.y);
}

std::wstring numberText(double value)
{
    return QString::number(value, 'g', 10).toStdWString();
}

double unitMillimetres(int insunits)
{
    // Codes 0 to 20, from unitless (taken as millimetres) to parsecs.
    constexpr std::array<double, 21> millimetres = {
        1,    kInch, 12 * kInch, 1609344, 1,   10,  1000, 1e6,     kInch * 1e-6, kInch * 1e-3, 914.4,
        1e-7, 1e-6,  1e-3,       100,     1e4, 1e5, 1e12, 1.495978707e14, 9.4607304725808e18, 3.0856775814913673e19};
    return insunits >= 0 && insunits < int(millimetres.size()) ? millimetres[std::size_t(insunits)] : 1.0;
}

}  // namespace kaldo::view
