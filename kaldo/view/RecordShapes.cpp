#include "kaldo/view/RecordShapes.h"

#include "kaldo/db/EntityPlane.h"

#include <QCoreApplication>
#include <QFont>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPainterPath>
#include <QStringList>

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace kaldo::view {

namespace {

// Letters are laid out at this size and then scaled, so that their
// outlines keep their detail.
constexpr int kLayoutPixels = 200;
// Distance between MTEXT lines, in text heights.
constexpr double kLineSpacing = 5.0 / 3.0;
constexpr int kEllipseSegments = 96;

double degrees(double value)
{
    return value * std::numbers::pi / 180;
}

// Where lines of text go: anchor point, direction, height, and how the
// block of lines sits on the anchor (0, 0.5 or 1 of its width to the left;
// the anchor on the first line's top, the middle, the last baseline or the
// last line's bottom).
struct TextPlacement {
    Point2 anchor;
    double angle = 0;
    double height = 1;
    double widthFactor = 1;
    double horizontal = 0;
    enum class Vertical { Baseline, Bottom, Middle, Top } vertical = Vertical::Baseline;
};

void drawLines(const QStringList& lines, const TextPlacement& place, int pen, Scene& scene)
{
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setStyleHint(QFont::SansSerif);
    font.setPixelSize(kLayoutPixels);
    const QFontMetricsF metrics(font);
    const double cap = metrics.capHeight() > 0 ? metrics.capHeight() : metrics.ascent();
    const double scale = place.height / cap;
    const double spacing = kLineSpacing * cap;
    const double blockHeight = cap + spacing * double(lines.size() - 1);
    // Vertical shift of the first baseline above the anchor, in layout units.
    double firstBaseline = 0;
    switch (place.vertical) {
    case TextPlacement::Vertical::Baseline: firstBaseline = spacing * double(lines.size() - 1); break;
    case TextPlacement::Vertical::Bottom: firstBaseline = spacing * double(lines.size() - 1) + metrics.descent(); break;
    case TextPlacement::Vertical::Middle: firstBaseline = blockHeight / 2 - cap; break;
    case TextPlacement::Vertical::Top: firstBaseline = -cap; break;
    }
    const double c = std::cos(place.angle), s = std::sin(place.angle);
    for (qsizetype i = 0; i < lines.size(); ++i) {
        QPainterPath path;
        const double width = metrics.horizontalAdvance(lines[i]);
        path.addText(-place.horizontal * width, 0, font, lines[i]);
        const double up = firstBaseline - spacing * double(i);
        for (const QPolygonF& outline : path.toSubpathPolygons()) {
            scene.beginPolyline(pen);
            for (const QPointF& p : outline) {
                const double x = p.x() * scale * place.widthFactor;
                const double y = (up - p.y()) * scale;
                scene.addPoint({place.anchor.x + x * c - y * s, place.anchor.y + x * s + y * c});
            }
            scene.endPolyline(true);
        }
    }
}

bool haveFonts()
{
    return qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr;
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

}  // namespace

const KxDbFileGroup* findGroup(const std::vector<KxDbFileGroup>& groups, int code)
{
    for (const KxDbFileGroup& g : groups)
        if (g.code == code)
            return &g;
    return nullptr;
}

double groupNumber(const std::vector<KxDbFileGroup>& groups, int code, double fallback)
{
    const KxDbFileGroup* g = findGroup(groups, code);
    if (!g)
        return fallback;
    bool ok = false;
    const double value = QString::fromStdString(g->value).trimmed().toDouble(&ok);
    return ok && std::isfinite(value) ? value : fallback;
}

bool drawTextRecord(const std::vector<KxDbFileGroup>& groups, int pen, Scene& scene)
{
    const KxDbFileGroup* value = findGroup(groups, 1);
    if (!value || !haveFonts())
        return false;
    TextPlacement place;
    place.height = groupNumber(groups, 40, 1);
    place.angle = degrees(groupNumber(groups, 50, 0));
    place.widthFactor = groupNumber(groups, 41, 1);
    const int horizontal = int(groupNumber(groups, 72, 0));
    const int vertical = int(groupNumber(groups, 73, 0));
    const bool aligned = horizontal != 0 || vertical != 0;
    place.anchor = aligned && findGroup(groups, 11) ? Point2{groupNumber(groups, 11, 0), groupNumber(groups, 21, 0)}
                                                    : Point2{groupNumber(groups, 10, 0), groupNumber(groups, 20, 0)};
    place.horizontal = horizontal == 1 || horizontal == 4 ? 0.5 : horizontal == 2 ? 1.0 : 0.0;
    place.vertical = horizontal == 4 ? TextPlacement::Vertical::Middle
                                     : static_cast<TextPlacement::Vertical>(std::clamp(vertical, 0, 3));
    drawLines({QString::fromStdString(value->value)}, place, pen, scene);
    return true;
}

bool drawMtextRecord(const std::vector<KxDbFileGroup>& groups, int pen, Scene& scene)
{
    if (!haveFonts())
        return false;
    QString text;
    for (const KxDbFileGroup& g : groups)
        if (g.code == 3 || g.code == 1)
            text += QString::fromStdString(g.value);
    TextPlacement place;
    place.anchor = {groupNumber(groups, 10, 0), groupNumber(groups, 20, 0)};
    place.height = groupNumber(groups, 40, 1);
    place.angle = findGroup(groups, 11) ? std::atan2(groupNumber(groups, 21, 0), groupNumber(groups, 11, 1))
                                        : degrees(groupNumber(groups, 50, 0));
    // Attachment 1..9: top, middle, bottom rows of left, centre, right.
    const int attachment = std::clamp(int(groupNumber(groups, 71, 1)), 1, 9) - 1;
    place.horizontal = (attachment % 3) / 2.0;
    constexpr TextPlacement::Vertical rows[] = {TextPlacement::Vertical::Top, TextPlacement::Vertical::Middle,
                                                TextPlacement::Vertical::Bottom};
    place.vertical = rows[attachment / 3];
    drawLines(stripMtextCodes(text).split('\n'), place, pen, scene);
    return true;
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

bool drawHatchRecord(const std::vector<KxDbFileGroup>& groups, const DrawColor& color, Scene& scene)
{
    if (groupNumber(groups, 70, 0) != 1)
        return false;  // patterns are not drawn, solid fills are
    // The boundary paths follow group 91; each starts with its flags (92).
    auto g = std::find_if(groups.begin(), groups.end(), [](const KxDbFileGroup& x) { return x.code == 91; });
    if (g == groups.end())
        return false;
    const auto number = [](const KxDbFileGroup& x) { return QString::fromStdString(x.value).trimmed().toDouble(); };
    const auto next = [&](int code) {
        g = std::find_if(g, groups.end(), [code](const KxDbFileGroup& x) { return x.code == code; });
        return g == groups.end() ? 0.0 : number(*g++);
    };
    // Boundaries are in the hatch's own plane (extrusion 210-230, elevation 30).
    const EntityPlane plane({groupNumber(groups, 210, 0), groupNumber(groups, 220, 0), groupNumber(groups, 230, 1)});
    const double elevation = groupNumber(groups, 30, 0);
    const auto add = [&](double x, double y) {
        const KxGePoint3d p = plane.toWorld(KxGePoint3d(x, y, elevation));
        scene.addPoint({p.x, p.y});
    };
    const int paths = int(number(*g++));
    for (int path = 0; path < paths; ++path) {
        const int flags = int(next(92));
        scene.beginPolygon();
        if (flags & 2) {
            // A polyline path: its vertices (bulges are drawn as chords).
            const int vertices = int(next(93));
            for (int v = 0; v < vertices; ++v) {
                const double x = next(10);
                add(x, next(20));
            }
        } else {
            // Edges: lines and arcs (other edges by their end points).
            const int edges = int(next(93));
            for (int e = 0; e < edges; ++e) {
                const int type = int(next(72));
                const double x = next(10), y = next(20);
                if (type == 2) {
                    // Arcs run counter-clockwise from start to end; a
                    // clockwise one (73 = 0) gives its angles negated.
                    const double radius = next(40), start = degrees(next(50)), end = degrees(next(51));
                    const double turn = next(73) != 0 ? 1.0 : -1.0;
                    double sweep = std::fmod(end - start, 2 * std::numbers::pi);
                    if (sweep <= 0)
                        sweep += 2 * std::numbers::pi;
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
        scene.endPolygon(color);
    }
    return true;
}

bool drawSplineRecord(const std::vector<KxDbFileGroup>& groups, int pen, Scene& scene)
{
    const auto number = [](const KxDbFileGroup& x) { return QString::fromStdString(x.value).trimmed().toDouble(); };
    std::vector<double> knots, weights;
    std::vector<Point2> control, fit;
    for (std::size_t i = 0; i < groups.size(); ++i) {
        const int code = groups[i].code;
        const bool pair = i + 1 < groups.size() && groups[i + 1].code == code + 10;
        if (code == 40)
            knots.push_back(number(groups[i]));
        else if (code == 41)
            weights.push_back(number(groups[i]));
        else if ((code == 10 || code == 11) && pair)
            (code == 10 ? control : fit).push_back({number(groups[i]), number(groups[i + 1])});
    }
    const int degree = int(groupNumber(groups, 71, 3));
    const std::size_t n = control.size();
    const bool valid = degree >= 1 && n > std::size_t(degree) && knots.size() == n + std::size_t(degree) + 1
        && (weights.empty() || weights.size() == n);
    if (!valid) {
        // Without a usable control net the fit points are joined.
        if (fit.size() < 2)
            return false;
        scene.beginPolyline(pen);
        for (const Point2& p : fit)
            scene.addPoint(p);
        scene.endPolyline();
        return true;
    }
    // De Boor's algorithm on homogeneous points (x w, y w, w).
    const auto at = [&](double t) {
        std::size_t span = std::size_t(degree);
        while (span + 1 < n && t >= knots[span + 1])
            ++span;
        std::vector<std::array<double, 3>> d;
        for (std::size_t j = span - std::size_t(degree); j <= span; ++j) {
            const double w = weights.empty() ? 1.0 : weights[j];
            d.push_back({control[j].x * w, control[j].y * w, w});
        }
        for (int r = 1; r <= degree; ++r)
            for (int j = degree; j >= r; --j) {
                const std::size_t k = span - std::size_t(degree) + std::size_t(j);
                const double span_ = knots[k + std::size_t(degree) + 1 - std::size_t(r)] - knots[k];
                const double a = span_ > 0 ? (t - knots[k]) / span_ : 0.0;
                for (int c = 0; c < 3; ++c)
                    d[std::size_t(j)][std::size_t(c)] =
                        (1 - a) * d[std::size_t(j) - 1][std::size_t(c)] + a * d[std::size_t(j)][std::size_t(c)];
            }
        const auto& h = d[std::size_t(degree)];
        return h[2] != 0 ? Point2{h[0] / h[2], h[1] / h[2]} : Point2{h[0], h[1]};
    };
    const double first = knots[std::size_t(degree)], last = knots[n];
    const int steps = int(16 * n);
    scene.beginPolyline(pen);
    for (int i = 0; i <= steps; ++i)
        scene.addPoint(at(first + (last - first) * i / steps));
    scene.endPolyline();
    return true;
}

bool drawEllipseRecord(const std::vector<KxDbFileGroup>& groups, int pen, Scene& scene)
{
    const Point2 centre{groupNumber(groups, 10, 0), groupNumber(groups, 20, 0)};
    const Point2 major{groupNumber(groups, 11, 1), groupNumber(groups, 21, 0)};
    const double ratio = groupNumber(groups, 40, 1);
    const double minorX = -major.y * ratio, minorY = major.x * ratio;
    const double start = groupNumber(groups, 41, 0);
    double end = groupNumber(groups, 42, 2 * std::numbers::pi);
    if (end <= start)
        end += 2 * std::numbers::pi;
    const bool full = end - start >= 2 * std::numbers::pi - 1e-12;
    const int steps = std::max(2, int(std::ceil(kEllipseSegments * (end - start) / (2 * std::numbers::pi))));
    scene.beginPolyline(pen);
    for (int i = 0; i <= (full ? steps - 1 : steps); ++i) {
        const double t = start + (end - start) * i / steps;
        scene.addPoint({centre.x + major.x * std::cos(t) + minorX * std::sin(t),
                        centre.y + major.y * std::cos(t) + minorY * std::sin(t)});
    }
    scene.endPolyline(full);
    return true;
}

}  // namespace kaldo::view
