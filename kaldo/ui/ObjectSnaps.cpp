#include "kaldo/ui/ObjectSnaps.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <span>
#include <tuple>

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

// Segments and arcs within the aperture of the cursor, each with its
// distance from it.
class NearGeometry {
public:
    struct Segment {
        Point2 a, b;
    };
    // An item: a segment (index into segments) or an arc (into arcs).
    struct Item {
        double distance = 0;
        bool arc = false;
        std::uint32_t index = 0;
        friend bool operator<(const Item& x, const Item& y)
        {
            return std::tie(x.distance, x.arc, x.index) < std::tie(y.distance, y.arc, y.index);
        }
    };

    NearGeometry(const Point2& cursor, double aperture)
        : m_cursor(cursor), m_aperture(aperture),
          m_box{cursor.x - aperture, cursor.y - aperture, cursor.x + aperture, cursor.y + aperture}
    {
    }

    const Box& box() const { return m_box; }

    void addPolyline(std::span<const Point2> points, bool closed)
    {
        const std::size_t segments = closed ? points.size() : points.size() - 1;
        for (std::size_t i = 0; i < segments; ++i) {
            const Segment segment{points[i], points[(i + 1) % points.size()]};
            if (!boxOf(segment.a, segment.b).meets(m_box))
                continue;
            const double d = distance(m_cursor, nearestOnSegment(segment, m_cursor));
            if (d <= m_aperture) {
                m_items.push_back({d, false, std::uint32_t(m_segments.size())});
                m_segments.push_back(segment);
            }
        }
    }

    void addArc(const view::Arc& arc)
    {
        const double d = distance(m_cursor, nearestOnArc(arc, m_cursor));
        if (d <= m_aperture) {
            m_items.push_back({d, true, std::uint32_t(m_arcs.size())});
            m_arcs.push_back(arc);
        }
    }

    // The items, nearest first.
    std::vector<Item> sorted() const
    {
        std::vector<Item> items = m_items;
        std::sort(items.begin(), items.end());
        return items;
    }
    const Segment& segment(std::uint32_t i) const { return m_segments[i]; }
    const view::Arc& arc(std::uint32_t i) const { return m_arcs[i]; }
    Point2 nearestPoint(const Item& item) const
    {
        return item.arc ? nearestOnArc(m_arcs[item.index], m_cursor) : nearestOnSegment(m_segments[item.index], m_cursor);
    }

private:
    static Point2 nearestOnSegment(const Segment& s, const Point2& p)
    {
        return along(s.a, s.b, std::clamp(footParameter(s.a, s.b, p), 0.0, 1.0));
    }

    Point2 m_cursor;
    double m_aperture;
    Box m_box;
    std::vector<Segment> m_segments;
    std::vector<view::Arc> m_arcs;
    std::vector<Item> m_items;
};

}  // namespace

SnapGeometry::SnapGeometry(std::shared_ptr<const view::Scene> scene, std::shared_ptr<const view::SceneIndex> index)
    : m_scene(std::move(scene)), m_index(std::move(index))
{
}

std::optional<Snap> SnapGeometry::find(const Point2& cursor, double aperture, const Point2* base) const
{
    // The items that pass within the aperture, nearest first; crossings are
    // looked for among the nearest few only, so that a dense, zoomed-out
    // view costs no more than a sparse one.
    constexpr std::size_t kCrossingCandidates = 48;
    NearGeometry geometry(cursor, aperture);
    const view::Scene& scene = *m_scene;
    m_index->query(geometry.box(), [&](view::SceneIndex::Kind kind, std::uint32_t i) {
        switch (kind) {
        case view::SceneIndex::Kind::Polyline: {
            const view::Polyline& polyline = scene.polylines()[i];
            geometry.addPolyline({scene.points().data() + polyline.first, polyline.count}, polyline.closed);
            break;
        }
        case view::SceneIndex::Kind::Arc: geometry.addArc(scene.arcs()[i]); break;
        case view::SceneIndex::Kind::Instance:
            scene.visitPolylines(scene.instances()[i], [&](int, bool closed, std::span<const Point2> points) {
                geometry.addPolyline(points, closed);
            });
            break;
        case view::SceneIndex::Kind::Polygon: break;
        }
    });
    const std::vector<NearGeometry::Item> near = geometry.sorted();
    Best best(cursor, aperture);
    for (std::size_t i = 0; i < near.size(); ++i) {
        if (near[i].arc) {
            const view::Arc& arc = geometry.arc(near[i].index);
            if (!fullCircle(arc)) {
                best.offer(arcPoint(arc, arc.start), SnapKind::Endpoint);
                best.offer(arcPoint(arc, arc.start + arc.sweep), SnapKind::Endpoint);
                best.offer(arcPoint(arc, arc.start + arc.sweep / 2), SnapKind::Midpoint);
            }
            continue;
        }
        const NearGeometry::Segment& s = geometry.segment(near[i].index);
        best.offer(s.a, SnapKind::Endpoint);
        best.offer(s.b, SnapKind::Endpoint);
        best.offer(along(s.a, s.b, 0.5), SnapKind::Midpoint);
        if (base) {
            const double t = footParameter(s.a, s.b, *base);
            if (t >= 0 && t <= 1)
                best.offer(along(s.a, s.b, t), SnapKind::Perpendicular);
        }
        for (std::size_t j = i + 1; j < std::min(near.size(), kCrossingCandidates); ++j) {
            if (near[j].arc)
                continue;
            const NearGeometry::Segment& other = geometry.segment(near[j].index);
            if (const auto point = crossing(s.a, s.b, other.a, other.b))
                best.offer(*point, SnapKind::Intersection);
        }
    }
    if (best.snap())
        return best.snap();
    if (near.empty())
        return std::nullopt;
    return Snap{geometry.nearestPoint(near.front()), SnapKind::Nearest};
}

}  // namespace kaldo::ui
