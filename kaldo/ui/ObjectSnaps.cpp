#include "kaldo/ui/ObjectSnaps.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace kaldo::ui {

namespace {

using view::Point2;

double distance(const Point2& a, const Point2& b)
{
    return std::hypot(a.x - b.x, a.y - b.y);
}

Point2 along(const Point2& a, const Point2& b, double t)
{
    return {a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t};
}

// The parameter of the foot of p on the line a-b (0 at a, 1 at b).
double footParameter(const Point2& a, const Point2& b, const Point2& p)
{
    const double dx = b.x - a.x;
    const double dy = b.y - a.y;
    const double length2 = dx * dx + dy * dy;
    return length2 > 0 ? ((p.x - a.x) * dx + (p.y - a.y) * dy) / length2 : 0.0;
}

std::optional<Point2> crossing(const Point2& a, const Point2& b, const Point2& c, const Point2& d)
{
    const double rx = b.x - a.x, ry = b.y - a.y;
    const double sx = d.x - c.x, sy = d.y - c.y;
    const double denominator = rx * sy - ry * sx;
    if (denominator == 0)
        return std::nullopt;
    const double t = ((c.x - a.x) * sy - (c.y - a.y) * sx) / denominator;
    const double u = ((c.x - a.x) * ry - (c.y - a.y) * rx) / denominator;
    if (t < 0 || t > 1 || u < 0 || u > 1)
        return std::nullopt;
    return along(a, b, t);
}

Point2 arcPoint(const view::Arc& arc, double angle)
{
    return {arc.centre.x + arc.radius * std::cos(angle), arc.centre.y + arc.radius * std::sin(angle)};
}

bool fullCircle(const view::Arc& arc)
{
    return std::abs(arc.sweep) >= 2 * std::numbers::pi - 1e-12;
}

// The point of the arc nearest to p.
Point2 nearestOnArc(const view::Arc& arc, const Point2& p)
{
    const double angle = std::atan2(p.y - arc.centre.y, p.x - arc.centre.x);
    if (fullCircle(arc))
        return arcPoint(arc, angle);
    // Where angle lies past the start, in the arc's own direction.
    const double direction = arc.sweep < 0 ? -1.0 : 1.0;
    double into = std::fmod(direction * (angle - arc.start), 2 * std::numbers::pi);
    if (into < 0)
        into += 2 * std::numbers::pi;
    if (into <= std::abs(arc.sweep))
        return arcPoint(arc, arc.start + direction * into);
    const Point2 first = arcPoint(arc, arc.start);
    const Point2 last = arcPoint(arc, arc.start + arc.sweep);
    return distance(first, p) <= distance(last, p) ? first : last;
}

Box boxOf(const Point2& a, const Point2& b)
{
    return {std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x), std::max(a.y, b.y)};
}

// Keeps the candidate nearest to the cursor.
class Best {
public:
    explicit Best(const Point2& cursor, double aperture) : m_cursor(cursor), m_limit(aperture) {}

    void offer(const Point2& point, SnapKind kind)
    {
        const double d = distance(point, m_cursor);
        if (!std::isfinite(d) || d > m_limit || (m_snap && d >= m_distance))
            return;
        m_snap = Snap{point, kind};
        m_distance = d;
    }
    const std::optional<Snap>& snap() const { return m_snap; }

private:
    Point2 m_cursor;
    double m_limit;
    double m_distance = 0;
    std::optional<Snap> m_snap;
};

}  // namespace

SnapGeometry::SnapGeometry(const view::Scene& scene)
{
    const std::vector<Point2>& points = scene.points();
    for (const view::Polyline& polyline : scene.polylines()) {
        const std::uint32_t segments = polyline.closed ? polyline.count : polyline.count - 1;
        for (std::uint32_t i = 0; i < segments; ++i)
            m_segments.push_back({points[polyline.first + i], points[polyline.first + (i + 1) % polyline.count]});
    }
    m_arcs = scene.arcs();
    std::vector<Box> boxes;
    boxes.reserve(m_segments.size() + m_arcs.size());
    for (const Segment& segment : m_segments)
        boxes.push_back(boxOf(segment.a, segment.b));
    for (const view::Arc& arc : m_arcs) {
        view::Bounds bounds;
        view::addArcBounds(bounds, arc);
        boxes.push_back({bounds.minX, bounds.minY, bounds.maxX, bounds.maxY});
    }
    m_index = BoxIndex(boxes);
}

std::optional<Snap> SnapGeometry::find(const Point2& cursor, double aperture, const Point2* base) const
{
    // The items that pass within the aperture, nearest first; crossings are
    // looked for among the nearest few only, so that a dense, zoomed-out
    // view costs no more than a sparse one.
    constexpr std::size_t kCrossingCandidates = 48;
    std::vector<std::pair<double, std::uint32_t>> near;
    m_index.query({cursor.x - aperture, cursor.y - aperture, cursor.x + aperture, cursor.y + aperture},
                  [&](std::uint32_t item) {
                      const double d = distance(cursor, nearestPoint(item, cursor));
                      if (d <= aperture)
                          near.emplace_back(d, item);
                  });
    std::sort(near.begin(), near.end());
    Best best(cursor, aperture);
    for (std::size_t i = 0; i < near.size(); ++i) {
        const std::uint32_t item = near[i].second;
        if (item >= m_segments.size()) {
            const view::Arc& arc = m_arcs[item - m_segments.size()];
            if (!fullCircle(arc)) {
                best.offer(arcPoint(arc, arc.start), SnapKind::Endpoint);
                best.offer(arcPoint(arc, arc.start + arc.sweep), SnapKind::Endpoint);
                best.offer(arcPoint(arc, arc.start + arc.sweep / 2), SnapKind::Midpoint);
            }
            continue;
        }
        const Segment& s = m_segments[item];
        best.offer(s.a, SnapKind::Endpoint);
        best.offer(s.b, SnapKind::Endpoint);
        best.offer(along(s.a, s.b, 0.5), SnapKind::Midpoint);
        if (base) {
            const double t = footParameter(s.a, s.b, *base);
            if (t >= 0 && t <= 1)
                best.offer(along(s.a, s.b, t), SnapKind::Perpendicular);
        }
        for (std::size_t j = i + 1; j < std::min(near.size(), kCrossingCandidates); ++j) {
            if (near[j].second >= m_segments.size())
                continue;
            const Segment& other = m_segments[near[j].second];
            if (const auto point = crossing(s.a, s.b, other.a, other.b))
                best.offer(*point, SnapKind::Intersection);
        }
    }
    if (best.snap())
        return best.snap();
    if (near.empty())
        return std::nullopt;
    return Snap{nearestPoint(near.front().second, cursor), SnapKind::Nearest};
}

Point2 SnapGeometry::nearestPoint(std::uint32_t item, const Point2& p) const
{
    if (item >= m_segments.size())
        return nearestOnArc(m_arcs[item - m_segments.size()], p);
    const Segment& s = m_segments[item];
    return along(s.a, s.b, std::clamp(footParameter(s.a, s.b, p), 0.0, 1.0));
}

}  // namespace kaldo::ui
