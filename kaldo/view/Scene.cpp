#include "kaldo/view/Scene.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <limits>
#include <numbers>
#include <type_traits>

#include "kaldo/util/TwoThreads.h"
#include "kaldo/view/HugePages.h"
#include "kaldo/view/LineLetters.h"

namespace kaldo::view {

namespace {

// Lists of this many items or more are worked through on two threads.
constexpr std::size_t kItemsForTwoThreads = 1 << 16;

// Points of the polyline that stands for an arc of a part: a part may be
// placed scaled differently along x and y, which turns arcs into ellipses.
constexpr int kPartArcSegments = 64;

int partArcSteps(const Arc& arc)
{
    return std::max(2, int(std::ceil(kPartArcSegments * std::abs(arc.sweep) / (2 * std::numbers::pi))));
}

Point2 arcPoint(const Arc& arc, int step, int steps)
{
    const double a = arc.start + arc.sweep * step / steps;
    return {arc.centre.x + arc.radius * std::cos(a), arc.centre.y + arc.radius * std::sin(a)};
}

}  // namespace

// Andrew's monotone chain.
std::vector<Point2> convexHull(std::vector<Point2> points)
{
    std::erase_if(points, [](const Point2& p) { return !std::isfinite(p.x) || !std::isfinite(p.y); });
    std::sort(points.begin(), points.end(),
              [](const Point2& a, const Point2& b) { return a.x < b.x || (a.x == b.x && a.y < b.y); });
    if (points.size() < 3)
        return points;
    const auto turn = [](const Point2& o, const Point2& a, const Point2& b) {
        return (a.x - o.x) * (b.y - o.y) - (a.y - o.y) * (b.x - o.x);
    };
    std::vector<Point2> hull(2 * points.size());
    std::size_t k = 0;
    for (const Point2& p : points) {
        while (k >= 2 && turn(hull[k - 2], hull[k - 1], p) <= 0)
            --k;
        hull[k++] = p;
    }
    const std::size_t lower = k + 1;
    for (auto p = points.rbegin() + 1; p != points.rend(); ++p) {
        while (k >= lower && turn(hull[k - 2], hull[k - 1], *p) <= 0)
            --k;
        hull[k++] = *p;
    }
    hull.resize(k - 1);
    return hull;
}

namespace {

// The corners of a kept text line's box, placed.
std::array<Point2, 4> textCorners(const TextLine& text)
{
    const Box& box = text.box;
    return {text.place({box.minX, box.minY}), text.place({box.maxX, box.minY}), text.place({box.maxX, box.maxY}),
            text.place({box.minX, box.maxY})};
}

}  // namespace

void Bounds::add(const Point2& p)
{
    if (!std::isfinite(p.x) || !std::isfinite(p.y))
        return;
    if (empty) {
        minX = maxX = p.x;
        minY = maxY = p.y;
        empty = false;
        return;
    }
    minX = std::min(minX, p.x);
    maxX = std::max(maxX, p.x);
    minY = std::min(minY, p.y);
    maxY = std::max(maxY, p.y);
}

Bounds pointBounds(std::span<const Point2> points)
{
    // Without a branch per point, in registers: as Bounds::add gives,
    // from infinite extremes that the first finite point replaces.
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    double minX = kInfinity, minY = kInfinity, maxX = -kInfinity, maxY = -kInfinity;
    for (const Point2& p : points) {
        const bool finite = std::isfinite(p.x) && std::isfinite(p.y);
        minX = finite && p.x < minX ? p.x : minX;
        maxX = finite && maxX < p.x ? p.x : maxX;
        minY = finite && p.y < minY ? p.y : minY;
        maxY = finite && maxY < p.y ? p.y : maxY;
    }
    if (minX > maxX)
        return {};
    return {minX, minY, maxX, maxY, false};
}

Affine Affine::after(const Affine& first) const
{
    return {xx * first.xx + xy * first.yx, xx * first.xy + xy * first.yy,
            yx * first.xx + yy * first.yx, yx * first.xy + yy * first.yy,
            xx * first.dx + xy * first.dy + dx, yx * first.dx + yy * first.dy + dy};
}

Scene::Scene() : m_patterns(1) {}

int Scene::pen(const Pen& pen)
{
    const auto [it, added] = m_penIndex.try_emplace(
        {pen.color.foreground, pen.color.rgb, pen.pattern, pen.lineWeight}, static_cast<int>(m_pens.size()));
    if (added)
        m_pens.push_back(pen);
    return it->second;
}

int Scene::addPattern(LinePattern pattern)
{
    if (pattern.empty())
        return 0;
    const auto [it, added] = m_patternIndex.try_emplace(pattern, static_cast<int>(m_patterns.size()));
    if (added)
        m_patterns.push_back(std::move(pattern));
    return it->second;
}

void Scene::beginPolyline(int pen)
{
    m_openFirst = m_points.size();
    m_openPen = pen;
}

void Scene::addPoint(const Point2& p)
{
    m_points.push_back(p);
}

void Scene::endPolyline(bool closed)
{
    if (closed && m_points.size() - m_openFirst > 2) {
        const Point2& first = m_points[m_openFirst];
        if (m_points.back().x == first.x && m_points.back().y == first.y)
            m_points.pop_back();
    }
    const std::size_t count = m_points.size() - m_openFirst;
    if (count < 2) {
        m_points.resize(m_openFirst);
        return;
    }
    m_polylines.push_back({static_cast<std::uint32_t>(m_openFirst), static_cast<std::uint32_t>(count), m_openPen,
                           closed});
}

void Scene::addLine(const Point2& from, const Point2& to, int pen)
{
    beginPolyline(pen);
    addPoint(from);
    addPoint(to);
    endPolyline();
}

void Scene::endPolygon(const DrawColor& color)
{
    const std::size_t count = m_points.size() - m_openFirst;
    if (count < 3) {
        m_points.resize(m_openFirst);
        return;
    }
    m_polygons.push_back({static_cast<std::uint32_t>(m_openFirst), static_cast<std::uint32_t>(count), color});
}

int Scene::takePen(const Scene& from, int pen, std::vector<int>& pens, std::vector<int>& patterns)
{
    if (patterns.empty()) {
        patterns.assign(from.patterns().size(), 0);
        for (std::size_t p = 1; p < patterns.size(); ++p)
            patterns[p] = addPattern(from.patterns()[p]);
        for (const Pen& each : from.pens())
            pens.push_back(this->pen({each.color, patterns[std::size_t(each.pattern)], each.lineWeight}));
    }
    return pens[std::size_t(pen)];
}

std::uint32_t Scene::addPart(const Scene& scene)
{
    const auto firstPoint = std::uint32_t(m_partPoints.size());
    const auto firstPolyline = std::uint32_t(m_partPolylines.size());
    const auto firstPolygon = std::uint32_t(m_partPolygons.size());
    const auto firstText = std::uint32_t(m_partTexts.size());
    std::vector<int> pens, patterns;
    const auto addPolyline = [&](int pen, bool closed, std::span<const Point2> points) {
        m_partPolylines.push_back(
            {std::uint32_t(m_partPoints.size()), std::uint32_t(points.size()), takePen(scene, pen, pens, patterns), closed});
        m_partPoints.insert(m_partPoints.end(), points.begin(), points.end());
    };
    scene.visitPolylines(addPolyline);
    std::vector<Point2> points;
    for (const Arc& arc : scene.arcs()) {
        const int steps = partArcSteps(arc);
        points.clear();
        for (int i = 0; i <= steps; ++i)
            points.push_back(arcPoint(arc, i, steps));
        addPolyline(arc.pen, false, points);
    }
    const auto addPolygon = [&](const DrawColor& color, std::span<const Point2> corners) {
        m_partPolygons.push_back({std::uint32_t(m_partPoints.size()), std::uint32_t(corners.size()), color});
        m_partPoints.insert(m_partPoints.end(), corners.begin(), corners.end());
    };
    scene.visitPolygons(addPolygon);
    scene.visitTexts([&](const TextLine& text) {
        m_partTexts.push_back(text);
        m_partTexts.back().pen = takePen(scene, text.pen, pens, patterns);
    });
    return endPart(firstPoint, firstPolyline, firstPolygon, firstText);
}

std::uint32_t Scene::endPart(std::uint32_t firstPoint, std::uint32_t firstPolyline, std::uint32_t firstPolygon,
                             std::uint32_t firstText)
{
    std::vector<Point2> outline(m_partPoints.begin() + firstPoint, m_partPoints.end());
    for (auto text = m_partTexts.begin() + firstText; text != m_partTexts.end(); ++text)
        for (const Point2& corner : textCorners(*text))
            outline.push_back(corner);
    const std::vector<Point2> hull = convexHull(std::move(outline));
    const auto firstHull = std::uint32_t(m_hulls.size());
    m_hulls.insert(m_hulls.end(), hull.begin(), hull.end());
    m_parts.push_back({firstPolyline, std::uint32_t(m_partPolylines.size()), firstPolygon,
                       std::uint32_t(m_partPolygons.size()), firstText, std::uint32_t(m_partTexts.size()), firstHull,
                       std::uint32_t(m_hulls.size())});
    return std::uint32_t(m_parts.size() - 1);
}

std::uint32_t Scene::addShape(std::span<const ShapeRun> runs, const Bounds& box, bool text)
{
    Shape shape;
    shape.firstRun = std::uint32_t(m_runs.size());
    m_runs.insert(m_runs.end(), runs.begin(), runs.end());
    shape.endRun = std::uint32_t(m_runs.size());
    std::vector<int> pens;
    for (const ShapeRun& run : runs) {
        const Part& part = m_parts[run.part];
        for (std::uint32_t i = part.firstPolyline; i < part.endPolyline; ++i)
            pens.push_back(m_partPolylines[i].pen);
        for (std::uint32_t i = part.firstPolygon; i < part.endPolygon; ++i)
            if (m_partPolygons[i].instanceColor)
                pens.push_back(kInstancePen);
    }
    std::sort(pens.begin(), pens.end());
    pens.erase(std::unique(pens.begin(), pens.end()), pens.end());
    shape.firstPen = std::uint32_t(m_shapePens.size());
    m_shapePens.insert(m_shapePens.end(), pens.begin(), pens.end());
    shape.endPen = std::uint32_t(m_shapePens.size());
    shape.box = box;
    shape.text = text;
    shape.fills = std::any_of(runs.begin(), runs.end(), [&](const ShapeRun& run) {
        return m_parts[run.part].endPolygon > m_parts[run.part].firstPolygon;
    });
    m_shapes.push_back(shape);
    return std::uint32_t(m_shapes.size() - 1);
}

LineLetters& Scene::lineLetters()
{
    if (!m_lineLetters)
        m_lineLetters = std::make_shared<LineLetters>();
    return *m_lineLetters;
}

std::uint32_t Scene::addLineShape(std::uint32_t line, const Bounds& box)
{
    Shape shape;
    shape.firstRun = shape.endRun = std::uint32_t(m_runs.size());
    shape.firstPen = std::uint32_t(m_shapePens.size());
    m_shapePens.push_back(kInstancePen);
    shape.endPen = std::uint32_t(m_shapePens.size());
    shape.box = box;
    shape.text = true;
    shape.fills = true;
    shape.line = line;
    m_shapes.push_back(shape);
    return std::uint32_t(m_shapes.size() - 1);
}

std::span<const LaidOutLetter> Scene::letters(const Shape& shape) const
{
    return m_lineLetters->letters(shape.line);
}

bool Scene::addInstance(std::uint32_t shapeIndex, const Affine& place, int pen)
{
    const Shape& shape = m_shapes[shapeIndex];
    Bounds bounds;
    for (std::uint32_t r = shape.firstRun; r < shape.endRun; ++r) {
        const Part& part = m_parts[m_runs[r].part];
        const Affine shifted = place.shiftedAlongX(m_runs[r].shift);
        for (std::uint32_t h = part.firstHull; h < part.endHull; ++h)
            bounds.add(shifted(m_hulls[h]));
    }
    if (bounds.empty)
        return false;
    m_instances.push_back({place, Box{bounds.minX, bounds.minY, bounds.maxX, bounds.maxY}, shapeIndex, pen,
                           std::uint32_t(m_polylines.size()), std::uint32_t(m_polygons.size())});
    return true;
}

void Scene::addInstance(std::uint32_t shape, const Affine& place, int pen, const Box& box)
{
    m_instances.push_back(
        {place, box, shape, pen, std::uint32_t(m_polylines.size()), std::uint32_t(m_polygons.size())});
}

std::size_t Scene::shapePoints(std::uint32_t shapeIndex) const
{
    const Shape& shape = m_shapes[shapeIndex];
    std::size_t points = 0;
    for (std::uint32_t r = shape.firstRun; r < shape.endRun; ++r) {
        const Part& part = m_parts[m_runs[r].part];
        for (std::uint32_t i = part.firstPolyline; i < part.endPolyline; ++i)
            points += m_partPolylines[i].count;
        for (std::uint32_t i = part.firstPolygon; i < part.endPolygon; ++i)
            points += m_partPolygons[i].count;
    }
    return points;
}

namespace {

// A pen of another scene by its number here (kInstancePen stays).
int penIn(const std::vector<int>& pens, int pen)
{
    return pen == kInstancePen ? pen : pens[std::size_t(pen)];
}

// Moves the items of from after those of to, each changed by adjust, and
// frees from. A list of plain items is copied a few megabytes at a time,
// each piece's pages given back once copied, so that joining two large
// scenes holds little more than the two.
template <class Item, class Adjust>
void moveAppend(std::vector<Item>& to, std::vector<Item>& from, const Adjust& adjust)
{
    constexpr std::size_t kPiece = (std::size_t(4) << 20) / sizeof(Item);
    to.reserve(to.size() + from.size());
    for (std::size_t first = 0; first < from.size(); first += kPiece) {
        const std::size_t end = std::min(from.size(), first + kPiece);
        const std::size_t at = to.size();
        to.insert(to.end(), std::make_move_iterator(from.begin() + std::ptrdiff_t(first)),
                  std::make_move_iterator(from.begin() + std::ptrdiff_t(end)));
        for (std::size_t i = at; i < to.size(); ++i)
            adjust(to[i]);
        if constexpr (std::is_trivially_copyable_v<Item>)
            releasePages(from.data() + first, (end - first) * sizeof(Item));
    }
    std::vector<Item>().swap(from);
}

}  // namespace

void Scene::append(Scene&& later, const std::unordered_map<std::uint32_t, std::uint32_t>& sameShapes)
{
    std::vector<int> patterns(later.m_patterns.size(), 0);
    for (std::size_t p = 1; p < patterns.size(); ++p)
        patterns[p] = addPattern(later.m_patterns[p]);
    std::vector<int> pens;
    pens.reserve(later.m_pens.size());
    for (const Pen& each : later.m_pens)
        pens.push_back(pen({each.color, patterns[std::size_t(each.pattern)], each.lineWeight}));

    const auto firstPoint = std::uint32_t(m_points.size());
    const auto firstPolyline = std::uint32_t(m_polylines.size());
    const auto firstPolygon = std::uint32_t(m_polygons.size());
    // The points, the largest list, on a second thread; the other lists,
    // which do not touch them, here (what is joined is the halves of a
    // large drawing).
    onTwoThreads(true, [&](int half) {
        if (half == 0) {
            moveAppend(m_points, later.m_points, [](Point2&) {});
            return;
        }
        moveAppend(m_polylines, later.m_polylines, [&](Polyline& polyline) {
            polyline.first += firstPoint;
            polyline.pen = penIn(pens, polyline.pen);
        });
        moveAppend(m_arcs, later.m_arcs, [&](Arc& arc) { arc.pen = penIn(pens, arc.pen); });
        moveAppend(m_polygons, later.m_polygons, [&](Polygon& polygon) { polygon.first += firstPoint; });
        moveAppend(m_groups, later.m_groups, [&](PolylineGroup& group) {
            group.first += firstPolyline;
            group.end += firstPolyline;
        });
        moveAppend(m_texts, later.m_texts, [&](TextLine& text) { text.pen = penIn(pens, text.pen); });

        const std::uint32_t firstLine = later.m_lineLetters ? lineLetters().append(*later.m_lineLetters) : 0;
        std::vector<std::uint32_t> shapes(later.m_shapes.size());
        std::vector<ShapeRun> runs;
        for (std::uint32_t s = 0; s < shapes.size(); ++s) {
            const Shape& shape = later.m_shapes[s];
            if (const auto same = sameShapes.find(s); same != sameShapes.end())
                shapes[s] = same->second;
            else if (shape.line != kNoLine)
                shapes[s] = addLineShape(firstLine + shape.line, shape.box);
            else {
                runs.clear();
                for (std::uint32_t r = shape.firstRun; r < shape.endRun; ++r)
                    runs.push_back(
                        {appendPart(later, later.m_parts[later.m_runs[r].part], pens), later.m_runs[r].shift});
                shapes[s] = addShape(runs, shape.box, shape.text);
            }
        }
        moveAppend(m_instances, later.m_instances, [&](Instance& instance) {
            instance.shape = shapes[instance.shape];
            instance.pen = penIn(pens, instance.pen);
            instance.polylinesBefore += firstPolyline;
            instance.polygonsBefore += firstPolygon;
        });
    });
}

std::uint32_t Scene::appendPart(const Scene& later, const Part& part, const std::vector<int>& pens)
{
    const auto firstPolyline = std::uint32_t(m_partPolylines.size());
    const auto firstPolygon = std::uint32_t(m_partPolygons.size());
    const auto firstText = std::uint32_t(m_partTexts.size());
    const auto firstHull = std::uint32_t(m_hulls.size());
    const auto takePoints = [&](std::uint32_t& first, std::uint32_t count) {
        const auto from = later.m_partPoints.begin() + first;
        first = std::uint32_t(m_partPoints.size());
        m_partPoints.insert(m_partPoints.end(), from, from + count);
    };
    for (std::uint32_t i = part.firstPolyline; i < part.endPolyline; ++i) {
        Polyline polyline = later.m_partPolylines[i];
        takePoints(polyline.first, polyline.count);
        polyline.pen = penIn(pens, polyline.pen);
        m_partPolylines.push_back(polyline);
    }
    for (std::uint32_t i = part.firstPolygon; i < part.endPolygon; ++i) {
        Polygon polygon = later.m_partPolygons[i];
        takePoints(polygon.first, polygon.count);
        m_partPolygons.push_back(polygon);
    }
    for (std::uint32_t i = part.firstText; i < part.endText; ++i) {
        m_partTexts.push_back(later.m_partTexts[i]);
        m_partTexts.back().pen = penIn(pens, m_partTexts.back().pen);
    }
    m_hulls.insert(m_hulls.end(), later.m_hulls.begin() + part.firstHull, later.m_hulls.begin() + part.endHull);
    m_parts.push_back({firstPolyline, std::uint32_t(m_partPolylines.size()), firstPolygon,
                       std::uint32_t(m_partPolygons.size()), firstText, std::uint32_t(m_partTexts.size()), firstHull,
                       std::uint32_t(m_hulls.size())});
    return std::uint32_t(m_parts.size() - 1);
}

void Scene::groupPolylines(std::uint32_t first, double width)
{
    const auto end = static_cast<std::uint32_t>(m_polylines.size());
    if (end - first > 1)
        m_groups.push_back({first, end, width});
}

Bounds Scene::bounds() const
{
    // The points and some of the arcs (which take sines and cosines) on
    // one thread, the other arcs, texts and instances on another, for a
    // large scene, so that both take about as long; minima and maxima come
    // out the same either way.
    constexpr std::size_t kPointsPerArc = 64;  // bounded in the time of an arc
    const std::size_t pointArcs = m_points.size() / kPointsPerArc;
    const std::size_t arcsWithPoints = m_arcs.size() > pointArcs ? (m_arcs.size() - pointArcs) / 2 : 0;
    std::array<Bounds, 2> halves;
    onTwoThreads(m_points.size() + m_arcs.size() >= kItemsForTwoThreads, [&](int half) {
        Bounds& b = halves[std::size_t(half)];
        const auto addArcs = [&](std::size_t first, std::size_t end) {
            for (std::size_t a = first; a < end; ++a)
                addArcBounds(b, m_arcs[a]);
        };
        if (half == 0) {
            b = pointBounds(m_points);
            addArcs(0, arcsWithPoints);
            return;
        }
        addArcs(arcsWithPoints, m_arcs.size());
        for (const TextLine& text : m_texts)
            for (const Point2& corner : textCorners(text))
                b.add(corner);
        for (const Instance& instance : m_instances) {
            b.add(Point2{instance.box.minX, instance.box.minY});
            b.add(Point2{instance.box.maxX, instance.box.maxY});
        }
    });
    Bounds b = halves[0];
    if (!halves[1].empty) {
        b.add(Point2{halves[1].minX, halves[1].minY});
        b.add(Point2{halves[1].maxX, halves[1].maxY});
    }
    return b;
}

void Scene::reserve(std::size_t points, std::size_t polylines, std::size_t arcs)
{
    m_points.reserve(points);
    m_polylines.reserve(polylines);
    adviseHugePages(m_points.data(), m_points.capacity() * sizeof(Point2));
    adviseHugePages(m_polylines.data(), m_polylines.capacity() * sizeof(Polyline));
    // Arcs are few beside points: huge pages would mostly hold unused room.
    m_arcs.reserve(arcs);
}

void addArcBounds(Bounds& bounds, const Arc& arc)
{
    const auto at = [&](double angle) {
        return Point2{arc.centre.x + arc.radius * std::cos(angle), arc.centre.y + arc.radius * std::sin(angle)};
    };
    const double sweep = std::clamp(arc.sweep, -2 * std::numbers::pi, 2 * std::numbers::pi);
    // A whole turn from a start angle of a few turns meets angles within a
    // rounding of each quadrant point, where sine and cosine are exactly 1
    // and -1: its box is the centre give or take the radius, the same
    // numbers without taking sines and cosines, unless a side is beyond
    // the largest number (other points then still count).
    constexpr double kFewTurns = 64;
    if (std::abs(sweep) == 2 * std::numbers::pi && std::abs(arc.start) <= kFewTurns) {
        const double r = std::abs(arc.radius);
        const Point2 low{arc.centre.x - r, arc.centre.y - r};
        const Point2 high{arc.centre.x + r, arc.centre.y + r};
        if (std::isfinite(low.x) && std::isfinite(low.y) && std::isfinite(high.x) && std::isfinite(high.y)) {
            bounds.add(low);
            bounds.add(high);
            return;
        }
    }
    const double lo = std::min(arc.start, arc.start + sweep);
    const double hi = std::max(arc.start, arc.start + sweep);
    bounds.add(at(lo));
    bounds.add(at(hi));
    const double quarter = std::numbers::pi / 2;
    for (double q = std::ceil(lo / quarter) * quarter; q < hi; q += quarter)
        bounds.add(at(q));
}

}  // namespace kaldo::view
