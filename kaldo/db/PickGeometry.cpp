#include "kaldo/db/PickGeometry.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>

#include "kaldo/db/ArcAngles.h"
#include "kaldo/db/EntityPlane.h"
#include "kxdbents.h"
#include "kxdbmline.h"
#include "kxdbmlstyle.h"

namespace kaldo {
namespace {

constexpr double kNothing = std::numeric_limits<double>::infinity();
constexpr double kTurn = 2 * std::numbers::pi;
// Pieces of arcs in tilted planes per whole turn.
constexpr int kStepsPerTurn = 720;

double segmentDistanceXY(const KxGePoint3d& p, const KxGePoint3d& a, const KxGePoint3d& b)
{
    const double dx = b.x - a.x;
    const double dy = b.y - a.y;
    const double len2 = dx * dx + dy * dy;
    double t = len2 > 0 ? ((p.x - a.x) * dx + (p.y - a.y) * dy) / len2 : 0.0;
    t = std::clamp(t, 0.0, 1.0);
    return std::hypot(p.x - (a.x + t * dx), p.y - (a.y + t * dy));
}

KxGePoint3d arcPoint(const PlanArc& arc, double angle)
{
    return {arc.centre.x + arc.radius * std::cos(angle), arc.centre.y + arc.radius * std::sin(angle), arc.centre.z};
}

// Whether the XY angle lies on the arc.
bool onArc(const PlanArc& arc, double angle)
{
    return arc.sweep >= 0 ? wrappedAngle(angle - arc.start) <= arc.sweep
                          : wrappedAngle(arc.start - angle) <= -arc.sweep;
}

double arcDistance(const PlanArc& arc, const KxGePoint3d& p)
{
    const double dx = p.x - arc.centre.x;
    const double dy = p.y - arc.centre.y;
    const double fromCentre = std::hypot(dx, dy);
    if (fromCentre == 0 || onArc(arc, std::atan2(dy, dx)))
        return std::abs(fromCentre - arc.radius);
    const KxGePoint3d a = arcPoint(arc, arc.start);
    const KxGePoint3d b = arcPoint(arc, arc.start + arc.sweep);
    return std::min(std::hypot(p.x - a.x, p.y - a.y), std::hypot(p.x - b.x, p.y - b.y));
}

// An arc of a plane (start and sweep in the plane's angles, centre a world
// point) as it shows in plan.
void addPlaneArc(PlanPieces& pieces, const EntityPlane& plane, const KxGePoint3d& centre, double radius, double start,
                 double sweep)
{
    const auto direction = [&](double angle) { return plane.toWorld(KxGeVector3d(std::cos(angle), std::sin(angle))); };
    if (std::abs(std::abs(plane.normal().z) - 1.0) < 1e-12) {
        const KxGeVector3d d = direction(start);
        pieces.arcs.push_back({centre, radius, std::atan2(d.y, d.x), plane.normal().z > 0 ? sweep : -sweep});
        return;
    }
    const int steps = std::max(8, int(std::ceil(std::abs(sweep) / kTurn * kStepsPerTurn)));
    KxGePoint3d previous = centre + direction(start) * radius;
    for (int i = 1; i <= steps; ++i) {
        const KxGePoint3d next = centre + direction(start + sweep * i / steps) * radius;
        pieces.segments.push_back({previous, next});
        previous = next;
    }
}

void collectPolyline(const KxDbPolyline& polyline, PlanPieces& pieces)
{
    const EntityPlane plane(polyline.normal());
    const int n = polyline.numVerts();
    const int segments = polyline.isClosed() ? n : n - 1;
    for (int i = 0; i < segments && n > 1; ++i) {
        const KxDbPolyline::Vertex v = polyline.vertexAt(i);
        const KxDbPolyline::Vertex w = polyline.vertexAt((i + 1) % n);
        const KxGePoint3d from = polyline.pointAt(i);
        const KxGePoint3d to = polyline.pointAt((i + 1) % n);
        const double chord = std::hypot(w.x - v.x, w.y - v.y);
        if (v.bulge == 0 || chord == 0 || !std::isfinite(v.bulge)) {
            pieces.segments.push_back({from, to});
            continue;
        }
        // In the plane: the included angle is 4 atan(bulge), positive
        // counter-clockwise; the centre lies off the chord's middle.
        const double included = 4 * std::atan(v.bulge);
        const double radius = chord / (2 * std::sin(std::abs(included) / 2));
        const double toCentre = radius * std::cos(included / 2) * (v.bulge > 0 ? 1 : -1);
        const double mx = (v.x + w.x) / 2 - (w.y - v.y) / chord * toCentre;
        const double my = (v.y + w.y) / 2 + (w.x - v.x) / chord * toCentre;
        const double start = std::atan2(v.y - my, v.x - mx);
        addPlaneArc(pieces, plane, plane.toWorld(KxGePoint3d(mx, my, polyline.elevation())), radius, start, included);
    }
}

// Every drawn run of every element line, as the parameter lists place it;
// with the style, the line caps, joints and arc caps.
void collectMline(const KxDbMline& mline, PlanPieces& pieces)
{
    const int n = mline.numVertices();
    if (n < 2)
        return;
    std::size_t elements = std::numeric_limits<std::size_t>::max();
    for (int v = 0; v < n; ++v)
        elements = std::min(elements, std::size_t(mline.parametersAt(v).numElements()));
    const auto elementPoint = [&](int v, std::size_t e) {
        const std::span<const double> list = mline.parametersAt(v).element(int(e));
        return mline.vertexAt(v) + mline.miterAt(v) * (list.empty() ? 0.0 : list.front());
    };
    const bool closed = mline.closedMline() && n > 2;
    for (int v = 0; v < (closed ? n : n - 1); ++v) {
        const int next = (v + 1) % n;
        const KxGeVector3d axis = mline.axisAt(v);
        for (std::size_t e = 0; e < elements; ++e) {
            const std::span<const double> list = mline.parametersAt(v).element(int(e));
            const KxGePoint3d a = elementPoint(v, e);
            const double length = dot(elementPoint(next, e) - a, axis);
            for (std::size_t i = 1; i < list.size(); i += 2) {
                const double to = i + 1 < list.size() ? list[i + 1] : length;
                pieces.segments.push_back({a + axis * list[i], a + axis * to});
            }
        }
    }
    const KxDbObjectPtr<KxDbMlineStyle> style(mline.style(), KxDb::kForRead);
    if (!style || elements < 2 || elements == std::numeric_limits<std::size_t>::max())
        return;
    const std::size_t last = elements - 1;
    const auto across = [&](int v) { pieces.segments.push_back({elementPoint(v, 0), elementPoint(v, last)}); };
    const EntityPlane plane(mline.normal());
    const auto arcPair = [&](int v, std::size_t first, std::size_t second, const KxGeVector3d& outward) {
        const KxGePoint3d p = elementPoint(v, first);
        const KxGePoint3d q = elementPoint(v, second);
        const KxGePoint3d centre = p + (q - p) * 0.5;
        const double radius = distance(p, q) / 2;
        if (radius <= kxGeTolerance)
            return;
        const KxGeVector3d toFirst = plane.toPlane(p - centre);
        const KxGeVector3d out = plane.toPlane(outward);
        const double firstAngle = std::atan2(toFirst.y, toFirst.x);
        const double sweep = std::remainder(std::atan2(out.y, out.x) - firstAngle, kTurn);
        addPlaneArc(pieces, plane, centre, radius, firstAngle, sweep < 0 ? -std::numbers::pi : std::numbers::pi);
    };
    const auto caps = [&](int v, bool line, bool outer, bool inner, const KxGeVector3d& outward) {
        if (line)
            across(v);
        if (outer)
            arcPair(v, 0, last, outward);
        for (std::size_t k = 1; inner && k < elements / 2; ++k)
            arcPair(v, k, last - k, outward);
    };
    if (style->showMiters()) {
        for (int v = closed ? 0 : 1; v < (closed ? n : n - 1); ++v)
            across(v);
    }
    if (!closed && !mline.supressStartCaps())
        caps(0, style->startSquareCap(), style->startRoundCap(), style->startInnerArcs(), -mline.axisAt(0));
    if (!closed && !mline.supressEndCaps())
        caps(n - 1, style->endSquareCap(), style->endRoundCap(), style->endInnerArcs(), mline.axisAt(n - 1));
}

void addToBox(Box& box, bool& empty, const KxGePoint3d& p)
{
    if (empty) {
        box = {p.x, p.y, p.x, p.y};
        empty = false;
        return;
    }
    box.minX = std::min(box.minX, p.x);
    box.minY = std::min(box.minY, p.y);
    box.maxX = std::max(box.maxX, p.x);
    box.maxY = std::max(box.maxY, p.y);
}

bool inside(const Box& box, const KxGePoint3d& p)
{
    return p.x >= box.minX && p.x <= box.maxX && p.y >= box.minY && p.y <= box.maxY;
}

// Whether the segment meets the box (Liang-Barsky clipping).
bool segmentMeets(const PlanSegment& s, const Box& box)
{
    const double dx = s.to.x - s.from.x;
    const double dy = s.to.y - s.from.y;
    double enter = 0;
    double leave = 1;
    const std::array<std::pair<double, double>, 4> sides{{
        {-dx, s.from.x - box.minX}, {dx, box.maxX - s.from.x}, {-dy, s.from.y - box.minY}, {dy, box.maxY - s.from.y}}};
    for (const auto& [p, q] : sides) {
        if (p == 0) {
            if (q < 0)
                return false;
            continue;
        }
        const double t = q / p;
        if (p < 0)
            enter = std::max(enter, t);
        else
            leave = std::min(leave, t);
        if (enter > leave)
            return false;
    }
    return true;
}

// Whether the arc meets the box: an end inside it, or a crossing of an edge.
bool arcMeets(const PlanArc& arc, const Box& box)
{
    if (inside(box, arcPoint(arc, arc.start)) || inside(box, arcPoint(arc, arc.start + arc.sweep)))
        return true;
    const auto crossesAt = [&](double x, double y) {
        return inside(box, {x, y}) && onArc(arc, std::atan2(y - arc.centre.y, x - arc.centre.x));
    };
    // Where an edge's line (x = edge when vertical, else y = edge) meets the
    // circle: the centre's other coordinate plus or minus h.
    const auto edgeCrossed = [&](double edge, bool vertical) {
        const double d = edge - (vertical ? arc.centre.x : arc.centre.y);
        const double h2 = arc.radius * arc.radius - d * d;
        if (h2 < 0)
            return false;
        const double h = std::sqrt(h2);
        const double across = vertical ? arc.centre.y : arc.centre.x;
        return vertical ? crossesAt(edge, across + h) || crossesAt(edge, across - h)
                        : crossesAt(across + h, edge) || crossesAt(across - h, edge);
    };
    return edgeCrossed(box.minX, true) || edgeCrossed(box.maxX, true) || edgeCrossed(box.minY, false)
        || edgeCrossed(box.maxY, false);
}

}  // namespace

void collectPlanPieces(const KxDbEntity& entity, PlanPieces& pieces)
{
    pieces.segments.clear();
    pieces.arcs.clear();
    if (const auto* line = KxDbLine::cast(&entity)) {
        pieces.segments.push_back({line->startPoint(), line->endPoint()});
    } else if (const auto* arc = KxDbArc::cast(&entity)) {
        addPlaneArc(pieces, EntityPlane(arc->normal()), arc->center(), arc->radius(), arc->startAngle(),
                    arcSweep(arc->startAngle(), arc->endAngle()));
    } else if (const auto* circle = KxDbCircle::cast(&entity)) {
        addPlaneArc(pieces, EntityPlane(circle->normal()), circle->center(), circle->radius(), 0, kTurn);
    } else if (const auto* polyline = KxDbPolyline::cast(&entity)) {
        collectPolyline(*polyline, pieces);
    } else if (const auto* mline = KxDbMline::cast(&entity)) {
        collectMline(*mline, pieces);
    }
}

double pickDistance(const KxDbEntity& entity, const KxGePoint3d& worldPoint)
{
    PlanPieces pieces;
    collectPlanPieces(entity, pieces);
    double best = kNothing;
    for (const PlanSegment& s : pieces.segments)
        best = std::min(best, segmentDistanceXY(worldPoint, s.from, s.to));
    for (const PlanArc& a : pieces.arcs)
        best = std::min(best, arcDistance(a, worldPoint));
    return best;
}

bool pickExtents(const KxDbEntity& entity, Box& box)
{
    PlanPieces pieces;
    collectPlanPieces(entity, pieces);
    bool empty = true;
    for (const PlanSegment& s : pieces.segments) {
        addToBox(box, empty, s.from);
        addToBox(box, empty, s.to);
    }
    for (const PlanArc& a : pieces.arcs) {
        addToBox(box, empty, arcPoint(a, a.start));
        addToBox(box, empty, arcPoint(a, a.start + a.sweep));
        for (int quarter = 0; quarter < 4; ++quarter)
            if (onArc(a, quarter * std::numbers::pi / 2))
                addToBox(box, empty, arcPoint(a, quarter * std::numbers::pi / 2));
    }
    return !empty;
}

bool meetsWindow(const PlanPieces& pieces, const Box& window)
{
    return std::ranges::any_of(pieces.segments, [&](const PlanSegment& s) { return segmentMeets(s, window); })
        || std::ranges::any_of(pieces.arcs, [&](const PlanArc& a) { return arcMeets(a, window); });
}

}  // namespace kaldo
