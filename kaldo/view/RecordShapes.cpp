#include "kaldo/view/RecordShapes.h"

#include "kaldo/db/EntityPlane.h"
#include "kaldo/view/HatchPattern.h"
#include "kaldo/view/PlaneArc.h"

#include <QStringList>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>
#include <optional>

namespace kaldo::view {

namespace {

constexpr int kEllipseSegments = 96;
// Splines of a higher degree are drawn as their control polygon: each
// point of the curve costs the square of the degree.
constexpr int kHighestSplineDegree = 11;
// Points of a spline's curve for each control point.
constexpr std::size_t kSplinePointsPerControlPoint = 16;
// A pattern hatch of more lines than this across its extents is drawn
// solid: at any scale that shows it whole, its lines run together.
constexpr std::size_t kMostPatternLines = 20000;

// value without its fraction when that lies in the range of int, else
// fallback.
int wholeNumber(double value, int fallback)
{
    return value >= std::numeric_limits<int>::min() && value <= std::numeric_limits<int>::max() ? int(value)
                                                                                                   : fallback;
}

double degrees(double value)
{
    return value * std::numbers::pi / 180;
}

// The text of MTEXT without its formatting: "\\P" breaks the line, "\\~"
// is a space, "\\\\", "\\{" and "\\}" stand for themselves, codes with an
// argument (font, height, colour, ...) run to their ';', other codes and
// the braces that group formatting are left out.
QString stripMtextCodes(const QString& text)
{
    const QString withArgument = QStringLiteral("ACFfHQTWp");
    QString plain;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar ch = text[i];
        if (ch == '{' || ch == '}')
            continue;
        if (ch != '\\' || i + 1 == text.size()) {
            plain += ch;
            continue;
        }
        const QChar code = text[++i];
        if (code == 'P') {
            plain += '\n';
        } else if (code == '~') {
            plain += ' ';
        } else if (code == '\\' || code == '{' || code == '}') {
            plain += code;
        } else if (withArgument.contains(code)) {
            const qsizetype end = text.indexOf(';', i);
            i = end < 0 ? text.size() : end;
        }
    }
    return plain;
}

// Reads a record's groups in their order: each value is the next group
// of its code after the one read last. A count is at most the number of
// groups left, as each thing counted takes at least one.
class GroupCursor {
public:
    explicit GroupCursor(const std::vector<KxDbFileGroup>& groups) : m_groups(groups) {}

    // Nothing when no group of code follows (the cursor is then at the end).
    std::optional<double> find(int code)
    {
        while (m_at < m_groups.size() && m_groups[m_at].code != code)
            ++m_at;
        if (m_at == m_groups.size())
            return std::nullopt;
        return numberIn(m_groups[m_at++], 0);
    }
    double next(int code) { return find(code).value_or(0); }
    std::size_t nextCount(int code)
    {
        const double count = next(code);
        const double left = double(m_groups.size() - m_at);
        return count > 0 ? std::size_t(std::min(count, left)) : 0;
    }

private:
    const std::vector<KxDbFileGroup>& m_groups;
    std::size_t m_at = 0;
};

}  // namespace

const KxDbFileGroup* findGroup(const std::vector<KxDbFileGroup>& groups, int code)
{
    for (const KxDbFileGroup& g : groups)
        if (g.code == code)
            return &g;
    return nullptr;
}

double numberIn(const KxDbFileGroup& group, double fallback)
{
    bool ok = false;
    const double value = QString::fromStdString(group.value).trimmed().toDouble(&ok);
    return ok && std::isfinite(value) ? value : fallback;
}

double groupNumber(const std::vector<KxDbFileGroup>& groups, int code, double fallback)
{
    const KxDbFileGroup* g = findGroup(groups, code);
    return g ? numberIn(*g, fallback) : fallback;
}

int groupInteger(const std::vector<KxDbFileGroup>& groups, int code, int fallback)
{
    return wholeNumber(groupNumber(groups, code, fallback), fallback);
}

bool drawTextRecord(const std::vector<KxDbFileGroup>& groups, int pen, TextShapes& text)
{
    const KxDbFileGroup* value = findGroup(groups, 1);
    if (!value)
        return false;
    TextPlacement place;
    place.height = groupNumber(groups, 40, 1);
    place.angle = degrees(groupNumber(groups, 50, 0));
    place.widthFactor = groupNumber(groups, 41, 1);
    const int horizontal = groupInteger(groups, 72, 0);
    const int vertical = groupInteger(groups, 73, 0);
    const bool aligned = horizontal != 0 || vertical != 0;
    place.anchor = aligned && findGroup(groups, 11) ? Point2{groupNumber(groups, 11, 0), groupNumber(groups, 21, 0)}
                                                    : Point2{groupNumber(groups, 10, 0), groupNumber(groups, 20, 0)};
    place.horizontal = horizontal == 1 || horizontal == 4 ? 0.5 : horizontal == 2 ? 1.0 : 0.0;
    place.vertical = horizontal == 4 ? TextPlacement::Vertical::Middle
                                     : static_cast<TextPlacement::Vertical>(std::clamp(vertical, 0, 3));
    return text.drawLines({QString::fromStdString(value->value)}, place, pen);
}

bool drawMtextRecord(const std::vector<KxDbFileGroup>& groups, int pen, TextShapes& text)
{
    QString value;
    for (const KxDbFileGroup& g : groups)
        if (g.code == 3 || g.code == 1)
            value += QString::fromStdString(g.value);
    TextPlacement place;
    place.anchor = {groupNumber(groups, 10, 0), groupNumber(groups, 20, 0)};
    place.height = groupNumber(groups, 40, 1);
    place.angle = findGroup(groups, 11) ? std::atan2(groupNumber(groups, 21, 0), groupNumber(groups, 11, 1))
                                        : degrees(groupNumber(groups, 50, 0));
    // Attachment 1..9: top, middle, bottom rows of left, centre, right.
    const int attachment = std::clamp(groupInteger(groups, 71, 1), 1, 9) - 1;
    place.horizontal = (attachment % 3) / 2.0;
    constexpr TextPlacement::Vertical rows[] = {TextPlacement::Vertical::Top, TextPlacement::Vertical::Middle,
                                                TextPlacement::Vertical::Bottom};
    place.vertical = rows[attachment / 3];
    return text.drawLines(stripMtextCodes(value).split('\n'), place, pen);
}

bool drawSolidRecord(const std::vector<KxDbFileGroup>& groups, const DrawColor& color, Scene& scene)
{
    // Corners in the order 1, 2, 4, 3 go round the outline; a triangle
    // repeats its third corner as the fourth. They lie in the solid's own
    // plane (extrusion 210-230), at the first corner's elevation.
    const EntityPlane plane({groupNumber(groups, 210, 0), groupNumber(groups, 220, 0), groupNumber(groups, 230, 1)});
    const double elevation = groupNumber(groups, 30, 0);
    scene.beginPolygon();
    for (const int corner : {0, 1, 3, 2}) {
        const KxGePoint3d p = plane.toWorld(
            KxGePoint3d(groupNumber(groups, 10 + corner, 0), groupNumber(groups, 20 + corner, 0), elevation));
        scene.addPoint({p.x, p.y});
    }
    scene.endPolygon(color);
    return true;
}

bool drawHatchRecord(const std::vector<KxDbFileGroup>& groups, int pen, Scene& scene, PointBudget& budget)
{
    // Boundaries are in the hatch's own plane (extrusion 210-230, elevation 30).
    const EntityPlane plane({groupNumber(groups, 210, 0), groupNumber(groups, 220, 0), groupNumber(groups, 230, 1)});
    const double elevation = groupNumber(groups, 30, 0);
    const auto world = [&](const Point2& p) {
        const KxGePoint3d w = plane.toWorld(KxGePoint3d(p.x, p.y, elevation));
        return Point2{w.x, w.y};
    };
    // The boundary paths follow group 91; each starts with its flags (92).
    std::vector<std::vector<Point2>> loops;
    GroupCursor cursor(groups);
    const std::size_t paths = cursor.nextCount(91);
    for (std::size_t path = 0; path < paths; ++path) {
        const std::optional<double> flags = cursor.find(92);
        if (!flags)
            break;
        std::vector<Point2>& loop = loops.emplace_back();
        const auto add = [&](double x, double y) { loop.push_back({x, y}); };
        if (wholeNumber(*flags, 0) & 2) {
            // A polyline path: its vertices (bulges are drawn as chords).
            const std::size_t vertices = cursor.nextCount(93);
            for (std::size_t v = 0; v < vertices; ++v) {
                const std::optional<double> x = cursor.find(10), y = cursor.find(20);
                if (!x || !y)
                    break;
                add(*x, *y);
            }
        } else {
            // Edges: lines and arcs (other edges by their end points).
            const std::size_t edges = cursor.nextCount(93);
            for (std::size_t e = 0; e < edges; ++e) {
                const std::optional<double> type = cursor.find(72);
                if (!type)
                    break;
                const double x = cursor.next(10), y = cursor.next(20);
                if (*type == 2) {
                    // Arcs run counter-clockwise from start to end; a
                    // clockwise one (73 = 0) gives its angles negated.
                    const double radius = cursor.next(40);
                    const double start = degrees(cursor.next(50));
                    const double sweep = sweepWithinTurn(start, degrees(cursor.next(51)));
                    const double turn = cursor.next(73) != 0 ? 1.0 : -1.0;
                    constexpr int kSteps = 32;
                    for (int i = 0; i <= kSteps; ++i) {
                        const double a = turn * (start + sweep * i / kSteps);
                        add(x + radius * std::cos(a), y + radius * std::sin(a));
                    }
                } else {
                    add(x, y);
                }
            }
        }
    }
    // A pattern (70 = 0) draws its line families (78 of them, after the
    // paths); one without them, or too fine to draw line by line, is
    // drawn solid.
    if (groupNumber(groups, 70, 1) == 0) {
        std::vector<PatternFamily> families;
        const std::size_t count = cursor.nextCount(78);
        for (std::size_t f = 0; f < count; ++f) {
            PatternFamily& family = families.emplace_back();
            family.angle = degrees(cursor.next(53));
            family.base = {cursor.next(43), cursor.next(44)};
            family.offset = {cursor.next(45), cursor.next(46)};
            const std::size_t dashes = cursor.nextCount(79);
            for (std::size_t d = 0; d < dashes; ++d)
                family.dashes.push_back(cursor.next(49));
        }
        bool withinBudget = true;
        if (patternPieces(loops, families, kMostPatternLines, [&](const Point2& from, const Point2& to) {
                withinBudget = withinBudget && budget.take(2);
                if (withinBudget)
                    scene.addLine(world(from), world(to), pen);
            }))
            return true;
    }
    const DrawColor color = scene.pens()[std::size_t(pen)].color;
    for (const std::vector<Point2>& loop : loops) {
        scene.beginPolygon();
        for (const Point2& p : loop)
            scene.addPoint(world(p));
        scene.endPolygon(color);
    }
    return true;
}

bool drawSplineRecord(const std::vector<KxDbFileGroup>& groups, int pen, Scene& scene)
{
    std::vector<double> knots, weights;
    std::vector<Point2> control, fit;
    for (std::size_t i = 0; i < groups.size(); ++i) {
        const int code = groups[i].code;
        const bool pair = i + 1 < groups.size() && groups[i + 1].code == code + 10;
        if (code == 40)
            knots.push_back(numberIn(groups[i], 0));
        else if (code == 41)
            weights.push_back(numberIn(groups[i], 1));
        else if ((code == 10 || code == 11) && pair)
            (code == 10 ? control : fit).push_back({numberIn(groups[i], 0), numberIn(groups[i + 1], 0)});
    }
    const auto joined = [&](const std::vector<Point2>& points) {
        if (points.size() < 2)
            return false;
        scene.beginPolyline(pen);
        for (const Point2& p : points)
            scene.addPoint(p);
        scene.endPolyline();
        return true;
    };
    // The degree counts only as far as the control points and knots read
    // bear it out.
    const int degree = groupInteger(groups, 71, 3);
    const std::size_t n = control.size();
    const bool valid = degree >= 1 && n > std::size_t(degree) && knots.size() == n + std::size_t(degree) + 1
        && (weights.empty() || weights.size() == n) && std::is_sorted(knots.begin(), knots.end());
    // Without a usable control net the fit points are joined; a degree
    // too high to evaluate shows the control polygon.
    if (!valid)
        return joined(fit);
    if (degree > kHighestSplineDegree)
        return joined(control);
    // De Boor's algorithm on homogeneous points (x w, y w, w).
    const std::size_t p = std::size_t(degree);
    const auto at = [&](double t) {
        const std::size_t span =
            std::size_t(std::upper_bound(knots.begin() + std::ptrdiff_t(p) + 1, knots.begin() + std::ptrdiff_t(n), t)
                        - knots.begin())
            - 1;
        std::array<std::array<double, 3>, kHighestSplineDegree + 1> d;
        for (std::size_t j = 0; j <= p; ++j) {
            const Point2& c = control[span - p + j];
            const double w = weights.empty() ? 1.0 : weights[span - p + j];
            d[j] = {c.x * w, c.y * w, w};
        }
        for (std::size_t r = 1; r <= p; ++r)
            for (std::size_t j = p; j >= r; --j) {
                const std::size_t k = span - p + j;
                const double length = knots[k + p + 1 - r] - knots[k];
                const double a = length > 0 ? (t - knots[k]) / length : 0.0;
                for (std::size_t c = 0; c < 3; ++c)
                    d[j][c] = (1 - a) * d[j - 1][c] + a * d[j][c];
            }
        const auto& h = d[p];
        return h[2] != 0 ? Point2{h[0] / h[2], h[1] / h[2]} : Point2{h[0], h[1]};
    };
    const double first = knots[p], last = knots[n];
    const std::size_t steps = kSplinePointsPerControlPoint * n;
    scene.beginPolyline(pen);
    for (std::size_t i = 0; i <= steps; ++i)
        scene.addPoint(at(first + (last - first) * double(i) / double(steps)));
    scene.endPolyline();
    return true;
}

bool drawEllipseRecord(const std::vector<KxDbFileGroup>& groups, int pen, Scene& scene)
{
    const Point2 centre{groupNumber(groups, 10, 0), groupNumber(groups, 20, 0)};
    const Point2 major{groupNumber(groups, 11, 1), groupNumber(groups, 21, 0)};
    const double ratio = groupNumber(groups, 40, 1);
    const double minorX = -major.y * ratio, minorY = major.x * ratio;
    if (!std::isfinite(minorX) || !std::isfinite(minorY))
        return false;
    // The parameters run from start to end, counter-clockwise, one turn at
    // most: an end before the start goes on into the next turn, an end a
    // turn or more after it closes the ellipse.
    const double full = 2 * std::numbers::pi;
    const double first = groupNumber(groups, 41, 0), last = groupNumber(groups, 42, full);
    double sweep = last - first;
    if (!(sweep > 0))
        sweep = sweepWithinTurn(first, last);
    const bool closed = !(sweep < full - 1e-12);
    if (closed)
        sweep = full;
    const double start = std::fmod(first, full);
    const int steps = std::max(2, int(std::ceil(kEllipseSegments * sweep / full)));
    scene.beginPolyline(pen);
    for (int i = 0; i <= (closed ? steps - 1 : steps); ++i) {
        const double t = start + sweep * i / steps;
        scene.addPoint({centre.x + major.x * std::cos(t) + minorX * std::sin(t),
                        centre.y + major.y * std::cos(t) + minorY * std::sin(t)});
    }
    scene.endPolyline(closed);
    return true;
}

}  // namespace kaldo::view
