#include "kaldo/view/RecordShapes.h"

#include "kaldo/db/ArcAngles.h"
#include "kaldo/db/EntityPlane.h"
#include "kaldo/util/Numbers.h"
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

// The text style a record names (7), STANDARD when it names none.
std::string textStyle(const std::vector<KxDbFileGroup>& groups)
{
    const KxDbFileGroup* style = findGroup(groups, 7);
    return style ? QString::fromStdString(style->value).trimmed().toStdString() : std::string("STANDARD");
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
        return numberIn(m_groups[m_at++].value, 0);
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

double numberIn(std::string_view text, double fallback)
{
    const std::optional<double> value = parseNumber(text);
    return value && std::isfinite(*value) ? *value : fallback;
}

int integerIn(std::string_view text, int fallback)
{
    return wholeNumber(numberIn(text, fallback), fallback);
}

double groupNumber(const std::vector<KxDbFileGroup>& groups, int code, double fallback)
{
    const KxDbFileGroup* g = findGroup(groups, code);
    return g ? numberIn(g->value, fallback) : fallback;
}

int groupInteger(const std::vector<KxDbFileGroup>& groups, int code, int fallback)
{
    const KxDbFileGroup* g = findGroup(groups, code);
    return g ? integerIn(g->value, fallback) : fallback;
}

void unpackGroups(const KxDbUnmodelledRecord& record, std::vector<KxDbFileGroup>& groups)
{
    std::size_t count = 0;
    record.packedGroups().forEach([&](std::int16_t code, std::uint8_t part, std::string_view value) {
        if (count == groups.size())
            groups.emplace_back();
        KxDbFileGroup& group = groups[count++];
        group.code = code;
        group.part = part;
        group.value.assign(value);
    });
    groups.resize(count);
}

namespace {

// A line of text of TEXT, ATTRIB or ATTDEF, whose vertical alignment is
// group vertical.
bool drawTextLine(const std::vector<KxDbFileGroup>& groups, const KxDbFileGroup* value, int verticalCode, int pen,
                  TextShapes& text)
{
    if (!value)
        return false;
    TextPlacement place;
    place.style = textStyle(groups);
    place.height = groupNumber(groups, 40, 1);
    place.angle = degrees(groupNumber(groups, 50, 0));
    place.widthFactor = groupNumber(groups, 41, 1);
    place.oblique = degrees(groupNumber(groups, 51, 0));
    const int horizontal = groupInteger(groups, 72, 0);
    const int vertical = groupInteger(groups, verticalCode, 0);
    const bool aligned = horizontal != 0 || vertical != 0;
    const Point2 first{groupNumber(groups, 10, 0), groupNumber(groups, 20, 0)};
    const Point2 second{groupNumber(groups, 11, 0), groupNumber(groups, 21, 0)};
    const bool hasSecond = findGroup(groups, 11) != nullptr;
    // Aligned (3) and fitted (5) text runs from the first point to the
    // second, along the line between them.
    if ((horizontal == 3 || horizontal == 5) && hasSecond) {
        place.anchor = first;
        place.angle = std::atan2(second.y - first.y, second.x - first.x);
        place.fitLength = std::hypot(second.x - first.x, second.y - first.y);
        place.keepProportions = horizontal == 3;
        return text.drawLines({QString::fromStdString(value->value)}, place, pen);
    }
    place.anchor = aligned && hasSecond ? second : first;
    place.horizontal = horizontal == 1 || horizontal == 4 ? 0.5 : horizontal == 2 ? 1.0 : 0.0;
    place.vertical = horizontal == 4 ? TextPlacement::Vertical::Middle
                                     : static_cast<TextPlacement::Vertical>(std::clamp(vertical, 0, 3));
    return text.drawLines({QString::fromStdString(value->value)}, place, pen);
}

}  // namespace

bool drawTextRecord(const std::vector<KxDbFileGroup>& groups, int pen, TextShapes& text)
{
    return drawTextLine(groups, findGroup(groups, 1), 73, pen, text);
}

bool drawAttributeRecord(const std::vector<KxDbFileGroup>& groups, bool definition, int pen, TextShapes& text)
{
    if (groupInteger(groups, 70, 0) & 1)
        return true;
    return drawTextLine(groups, findGroup(groups, definition ? 2 : 1), 74, pen, text);
}

bool drawMtextRecord(const std::vector<KxDbFileGroup>& groups, int pen, TextShapes& text)
{
    QString value;
    for (const KxDbFileGroup& g : groups)
        if (g.code == 3 || g.code == 1)
            value += QString::fromStdString(g.value);
    TextPlacement place;
    place.style = textStyle(groups);
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

bool drawFaceRecord(const std::vector<KxDbFileGroup>& groups, int pen, Scene& scene)
{
    // Corners 10..13 in order; bit e of 70 hides the edge from corner e.
    const int hidden = groupInteger(groups, 70, 0);
    for (int edge = 0; edge < 4; ++edge) {
        if (hidden & (1 << edge))
            continue;
        const int next = (edge + 1) % 4;
        scene.addLine({groupNumber(groups, 10 + edge, 0), groupNumber(groups, 20 + edge, 0)},
                      {groupNumber(groups, 10 + next, 0), groupNumber(groups, 20 + next, 0)}, pen);
    }
    return true;
}

bool drawLeaderRecord(const std::vector<KxDbFileGroup>& groups, int pen, Scene& scene)
{
    GroupCursor cursor(groups);
    const std::size_t vertices = cursor.nextCount(76);
    scene.beginPolyline(pen);
    for (std::size_t v = 0; v < vertices; ++v) {
        const std::optional<double> x = cursor.find(10), y = cursor.find(20);
        if (!x || !y)
            break;
        scene.addPoint({*x, *y});
    }
    scene.endPolyline();
    return true;
}

bool drawMeshRecord(const std::vector<KxDbFileGroup>& groups, int pen, Scene& scene)
{
    // The vertices follow 92; the faces follow 93 as 90 groups, each
    // face its corner count and then its vertex numbers from 0.
    GroupCursor cursor(groups);
    std::vector<Point2> vertices;
    const std::size_t count = cursor.nextCount(92);
    for (std::size_t v = 0; v < count; ++v) {
        const std::optional<double> x = cursor.find(10), y = cursor.find(20);
        if (!x || !y)
            return false;
        vertices.push_back({*x, *y});
    }
    std::size_t left = cursor.nextCount(93);
    const auto vertex = [&]() -> const Point2* {
        const double number = cursor.next(90);
        return number >= 0 && number < double(vertices.size()) ? &vertices[std::size_t(number)] : nullptr;
    };
    while (left > 0) {
        const std::size_t corners = std::min(std::size_t(std::max(0.0, cursor.next(90))), left - 1);
        left -= corners + 1;
        scene.beginPolyline(pen);
        for (std::size_t c = 0; c < corners; ++c)
            if (const Point2* p = vertex())
                scene.addPoint(*p);
        scene.endPolyline(true);
    }
    return true;
}

bool drawFrameRecord(const std::vector<KxDbFileGroup>& groups, int pen, Scene& scene)
{
    // Boundary vertices (14, 24) are in pixels from the picture's top left
    // corner; pixel (0, 0) is centred half a pixel along u and v from the
    // insertion point. Two vertices are opposite corners of a rectangle.
    const Point2 insert{groupNumber(groups, 10, 0), groupNumber(groups, 20, 0)};
    const Point2 u{groupNumber(groups, 11, 1), groupNumber(groups, 21, 0)};
    const Point2 v{groupNumber(groups, 12, 0), groupNumber(groups, 22, 1)};
    const double height = groupNumber(groups, 23, 1);
    std::vector<Point2> boundary;
    for (std::size_t i = 0; i + 1 < groups.size(); ++i)
        if (groups[i].code == 14 && groups[i + 1].code == 24)
            boundary.push_back({numberIn(groups[i].value, 0), numberIn(groups[i + 1].value, 0)});
    if (boundary.empty())
        boundary = {{-0.5, -0.5}, {groupNumber(groups, 13, 1) - 0.5, height - 0.5}};
    if (boundary.size() == 2)
        boundary = {boundary[0], {boundary[1].x, boundary[0].y}, boundary[1], {boundary[0].x, boundary[1].y}};
    scene.beginPolyline(pen);
    for (const Point2& p : boundary) {
        const double along = p.x + 0.5, up = height - p.y - 0.5;
        scene.addPoint({insert.x + u.x * along + v.x * up, insert.y + u.y * along + v.y * up});
    }
    scene.endPolyline(true);
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
                    const double sweep = arcSweep(start, degrees(cursor.next(51)));
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
            knots.push_back(numberIn(groups[i].value, 0));
        else if (code == 41)
            weights.push_back(numberIn(groups[i].value, 1));
        else if ((code == 10 || code == 11) && pair)
            (code == 10 ? control : fit).push_back({numberIn(groups[i].value, 0), numberIn(groups[i + 1].value, 0)});
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
        sweep = arcSweep(first, last);
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
