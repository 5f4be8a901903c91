#include "kaldo/db/PickGeometry.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "kaldo/db/EntityPlane.h"
#include "kxdbents.h"
#include "kxdbmline.h"

namespace kaldo {
namespace {

constexpr double kNothing = std::numeric_limits<double>::infinity();

double segmentDistanceXY(const KxGePoint3d& p, const KxGePoint3d& a, const KxGePoint3d& b)
{
    const double dx = b.x - a.x;
    const double dy = b.y - a.y;
    const double len2 = dx * dx + dy * dy;
    double t = len2 > 0 ? ((p.x - a.x) * dx + (p.y - a.y) * dy) / len2 : 0.0;
    t = std::clamp(t, 0.0, 1.0);
    return std::hypot(p.x - (a.x + t * dx), p.y - (a.y + t * dy));
}

// Sweep of an arc from start to end angle, counter-clockwise, in (0, 2pi].
double arcSweep(double startAngle, double endAngle)
{
    const double twoPi = 2 * std::numbers::pi;
    double sweep = std::fmod(endAngle - startAngle, twoPi);
    if (sweep <= 0)
        sweep += twoPi;
    return sweep;
}

double arcDistance(const KxDbArc& arc, const KxGePoint3d& p)
{
    const EntityPlane plane(arc.normal());
    const double sweep = arcSweep(arc.startAngle(), arc.endAngle());
    if (std::abs(std::abs(plane.normal().z) - 1.0) < 1e-12) {
        // The arc's plane is parallel to XY: measure exactly in it.
        const KxGePoint3d c = plane.toPlane(arc.center());
        const KxGePoint3d q = plane.toPlane(p);
        const double angle = std::atan2(q.y - c.y, q.x - c.x);
        if (arcSweep(arc.startAngle(), angle) <= sweep || std::hypot(q.x - c.x, q.y - c.y) == 0)
            return std::abs(std::hypot(q.x - c.x, q.y - c.y) - arc.radius());
        return std::min(segmentDistanceXY(p, arc.startPoint(), arc.startPoint()),
                        segmentDistanceXY(p, arc.endPoint(), arc.endPoint()));
    }
    constexpr int kSteps = 720;
    double best = kNothing;
    KxGePoint3d previous = arc.startPoint();
    for (int i = 1; i <= kSteps; ++i) {
        const double a = arc.startAngle() + sweep * i / kSteps;
        const KxGePoint3d next = arc.center() + plane.toWorld(KxGeVector3d(std::cos(a), std::sin(a))) * arc.radius();
        best = std::min(best, segmentDistanceXY(p, previous, next));
        previous = next;
    }
    return best;
}

// Calls visit(from, to) for every drawn run of every element line, as the
// parameter lists place it.
template <class Visit>
void forEachRun(const KxDbMline& mline, Visit&& visit)
{
    const int n = mline.numVertices();
    const int segments = mline.closedMline() ? n : n - 1;
    KxArray here;
    KxArray there;
    for (int v = 0; v < segments; ++v) {
        const int next = (v + 1) % n;
        mline.getParametersAt(v, here);
        mline.getParametersAt(next, there);
        const auto start = KxDbMlineParamsPtr::adopt(KxDbMlineVertexParams::fromArray(here));
        const auto end = KxDbMlineParamsPtr::adopt(KxDbMlineVertexParams::fromArray(there));
        const KxGeVector3d axis = mline.axisAt(v);
        const std::size_t elements = std::min(start->elements.size(), end->elements.size());
        for (std::size_t e = 0; e < elements; ++e) {
            const std::vector<double>& list = start->elements[e].element;
            const std::vector<double>& endList = end->elements[e].element;
            if (list.size() < 2 || endList.empty())
                continue;
            const KxGePoint3d a = mline.vertexAt(v) + mline.miterAt(v) * list[0];
            const KxGePoint3d b = mline.vertexAt(next) + mline.miterAt(next) * endList[0];
            const double length = dot(b - a, axis);
            for (std::size_t i = 1; i < list.size(); i += 2) {
                const double from = list[i];
                const double to = i + 1 < list.size() ? list[i + 1] : length;
                visit(a + axis * from, a + axis * to);
            }
        }
    }
}

double mlineDistance(const KxDbMline& mline, const KxGePoint3d& p)
{
    double best = kNothing;
    forEachRun(mline, [&](const KxGePoint3d& a, const KxGePoint3d& b) { best = std::min(best, segmentDistanceXY(p, a, b)); });
    return best;
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

}  // namespace

double pickDistance(const KxDbEntity& entity, const KxGePoint3d& worldPoint)
{
    if (const auto* line = KxDbLine::cast(&entity))
        return segmentDistanceXY(worldPoint, line->startPoint(), line->endPoint());
    if (const auto* arc = KxDbArc::cast(&entity))
        return arcDistance(*arc, worldPoint);
    if (const auto* mline = KxDbMline::cast(&entity))
        return mlineDistance(*mline, worldPoint);
    return kNothing;
}

bool pickExtents(const KxDbEntity& entity, Box& box)
{
    bool empty = true;
    if (const auto* line = KxDbLine::cast(&entity)) {
        addToBox(box, empty, line->startPoint());
        addToBox(box, empty, line->endPoint());
    } else if (const auto* arc = KxDbArc::cast(&entity)) {
        // The sphere round the arc's circle holds it in any plane.
        const KxGeVector3d reach(arc->radius(), arc->radius(), 0);
        addToBox(box, empty, arc->center() - reach);
        addToBox(box, empty, arc->center() + reach);
    } else if (const auto* mline = KxDbMline::cast(&entity)) {
        forEachRun(*mline, [&](const KxGePoint3d& a, const KxGePoint3d& b) {
            addToBox(box, empty, a);
            addToBox(box, empty, b);
        });
    }
    return !empty;
}

}  // namespace kaldo
