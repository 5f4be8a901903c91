#include "kaldo/view/MlinePieces.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "kaldo/db/EntityPlane.h"
#include "kxdbmlstyle.h"

namespace kaldo::view {

namespace {

KxGePoint3d midpoint(const KxGePoint3d& a, const KxGePoint3d& b)
{
    return a + (b - a) * 0.5;
}

// One drawn stretch of a segment, from the list entries that start and end
// it, clamped to the segment's length; fromStart and toEnd tell whether it
// touches the segment's ends. At a free end (the start of the first or the
// end of the last segment of an open multiline) a run may reach beyond the
// end's miter: the editing tools end elements on the element lines of
// another multiline there, in corners and tees.
struct Run {
    double from = 0;
    double to = 0;
    bool fromStart = false;
    bool toEnd = false;
};

Run runAt(std::span<const double> list, std::size_t i, double length, bool freeStart = false,
          bool freeEnd = false)
{
    const double eps = 1e-9 * std::max(1.0, length);
    Run run;
    run.from = freeStart ? std::min(list[i], length) : std::clamp(list[i], 0.0, length);
    if (i + 1 >= list.size())
        run.to = length;
    else
        run.to = freeEnd ? std::max(list[i + 1], 0.0) : std::clamp(list[i + 1], 0.0, length);
    run.fromStart = std::abs(run.from) <= eps;
    run.toEnd = std::abs(run.to - length) <= eps;
    return run;
}

// A point of a run on the line from a (along dir) to b: the ends themselves
// where the run touches them, so that runs meet exactly at vertices.
KxGePoint3d alongSegment(const KxGePoint3d& a, const KxGePoint3d& b, const KxGeVector3d& dir, double t,
                         bool atStart, bool atEnd)
{
    return atStart ? a : atEnd ? b : a + dir * t;
}

}  // namespace

int MlinePieces::collect(const KxDbMline& mline, const KxDbMlineStyle* style, MlinePieceSink& sink)
{
    const int n = mline.numVertices();
    if (n < 2)
        return 0;
    m_mline = &mline;
    m_params.clear();
    m_positions.clear();
    m_axes.clear();
    m_miters.clear();
    for (int v = 0; v < n; ++v) {
        m_params.push_back(mline.parametersAt(v));
        m_positions.push_back(mline.vertexAt(v));
        m_axes.push_back(mline.axisAt(v));
        m_miters.push_back(mline.miterAt(v));
    }
    m_elements = m_params.front().numElements();
    for (const KxDbMlineVertexLists& lists : m_params)
        m_elements = std::min(m_elements, lists.numElements());
    m_elementPoints.clear();
    for (int v = 0; v < n; ++v) {
        for (int e = 0; e < m_elements; ++e) {
            const std::span<const double> list = m_params[std::size_t(v)].element(e);
            const double along = list.empty() ? 0.0 : list.front();
            m_elementPoints.push_back(m_positions[std::size_t(v)] + m_miters[std::size_t(v)] * along);
        }
    }

    const bool closed = mline.closedMline() && n > 2;
    if (style && style->filled() && m_elements > 1)
        collectFill(closed, sink);
    for (int e = 0; e < m_elements; ++e)
        collectElement(e, closed, sink);
    if (style && m_elements > 1) {
        if (style->showMiters()) {
            for (int v = closed ? 0 : 1; v < (closed ? n : n - 1); ++v)
                collectLineCap(v, sink);
        }
        if (!closed && !mline.supressStartCaps()) {
            if (style->startSquareCap())
                collectLineCap(0, sink);
            collectArcCaps(0, -m_axes.front(), style->startRoundCap(), style->startInnerArcs(), sink);
        }
        if (!closed && !mline.supressEndCaps()) {
            if (style->endSquareCap())
                collectLineCap(n - 1, sink);
            collectArcCaps(n - 1, m_axes.back(), style->endRoundCap(), style->endInnerArcs(), sink);
        }
    }
    m_params.clear();
    m_mline = nullptr;
    return m_elements;
}

const KxGePoint3d& MlinePieces::elementPoint(int vertex, int element) const
{
    return m_elementPoints[std::size_t(vertex * m_elements + element)];
}

void MlinePieces::collectElement(int element, bool closed, MlinePieceSink& sink) const
{
    const int n = static_cast<int>(m_positions.size());
    const int segments = closed ? n : n - 1;
    bool open = false;      // the previous run reached its segment's end
    bool unbroken = false;  // every run so far went on from the origin
    for (int s = 0; s < segments; ++s) {
        const KxGePoint3d a = elementPoint(s, element);
        const KxGePoint3d b = elementPoint((s + 1) % n, element);
        const KxGeVector3d& dir = m_axes[std::size_t(s)];
        const double length = std::max(0.0, dot(b - a, dir));
        const std::span<const double> list = m_params[std::size_t(s)].element(element);
        bool reachedEnd = false;
        for (std::size_t i = 1; i < list.size(); i += 2) {
            const Run run = runAt(list, i, length, !closed && s == 0, !closed && s == segments - 1);
            if (run.to <= run.from && !(run.fromStart && run.toEnd))
                continue;
            MlineRun piece;
            piece.element = element;
            piece.from = alongSegment(a, b, dir, run.from, run.fromStart, false);
            piece.to = alongSegment(a, b, dir, run.to, false, run.toEnd);
            piece.continues = open && run.fromStart;
            unbroken = piece.continues ? unbroken : s == 0 && run.fromStart;
            piece.closes = closed && unbroken && s == segments - 1 && run.toEnd;
            sink.run(piece);
            open = run.toEnd;
            reachedEnd = run.toEnd;
        }
        if (!reachedEnd)
            open = false;
    }
}

// The fill covers each segment between the first and the last element,
// along the runs of the first element's fill list; a list without runs
// (files often leave it empty) fills the whole segment.
void MlinePieces::collectFill(bool closed, MlinePieceSink& sink) const
{
    const int n = static_cast<int>(m_positions.size());
    const int last = m_elements - 1;
    const int segments = closed ? n : n - 1;
    for (int s = 0; s < segments; ++s) {
        const int next = (s + 1) % n;
        const KxGePoint3d a0 = elementPoint(s, 0), b0 = elementPoint(next, 0);
        const KxGePoint3d aL = elementPoint(s, last), bL = elementPoint(next, last);
        const KxGeVector3d& dir = m_axes[std::size_t(s)];
        const double length0 = std::max(0.0, dot(b0 - a0, dir));
        const double lengthL = std::max(0.0, dot(bL - aL, dir));
        const auto fill = [&](const Run& r0, const Run& rL) {
            sink.fill({{alongSegment(a0, b0, dir, r0.from, r0.fromStart, false),
                        alongSegment(a0, b0, dir, r0.to, false, r0.toEnd),
                        alongSegment(aL, bL, dir, rL.to, false, rL.toEnd),
                        alongSegment(aL, bL, dir, rL.from, rL.fromStart, false)}});
        };
        const std::span<const double> list = m_params[std::size_t(s)].areaFill(0);
        if (list.size() < 2)
            fill({0, length0, true, true}, {0, lengthL, true, true});
        for (std::size_t i = 1; i < list.size(); i += 2)
            fill(runAt(list, i, length0), runAt(list, i, lengthL));
    }
}

// A line cap or joint crosses the multiline along the miter: its half on
// the first element's side in that element's colour, the other half in
// the last's.
void MlinePieces::collectLineCap(int vertex, MlinePieceSink& sink) const
{
    const KxGePoint3d top = elementPoint(vertex, 0);
    const KxGePoint3d bottom = elementPoint(vertex, m_elements - 1);
    const KxGePoint3d middle = midpoint(top, bottom);
    sink.capLine({0, top, middle});
    sink.capLine({m_elements - 1, bottom, middle});
}

// The outer arc joins the first and the last element, inner arcs the pairs
// inside them (an odd middle element gets none).
void MlinePieces::collectArcCaps(int vertex, const KxGeVector3d& outward, bool outer, bool inner,
                                 MlinePieceSink& sink) const
{
    if (outer)
        collectArcPair(vertex, 0, m_elements - 1, outward, sink);
    if (inner) {
        for (int k = 1; k < m_elements / 2; ++k)
            collectArcPair(vertex, k, m_elements - 1 - k, outward, sink);
    }
}

// A half circle over the two element ends, bulging outward, in two arcs
// that meet where the outward direction leaves the centre: the first in
// the first element's colour, the second in the other's.
void MlinePieces::collectArcPair(int vertex, int first, int second, const KxGeVector3d& outward,
                                 MlinePieceSink& sink) const
{
    const KxGePoint3d p = elementPoint(vertex, first);
    const KxGePoint3d q = elementPoint(vertex, second);
    const KxGePoint3d centre = midpoint(p, q);
    const double radius = distance(p, q) / 2;
    if (radius <= kxGeTolerance)
        return;
    const EntityPlane plane(m_mline->normal());
    const KxGeVector3d toFirst = plane.toPlane(p - centre);
    const KxGeVector3d out = plane.toPlane(outward);
    const double firstAngle = std::atan2(toFirst.y, toFirst.x);
    const double outAngle = std::atan2(out.y, out.x);
    const double sweep = std::remainder(outAngle - firstAngle, 2 * std::numbers::pi);
    const double turn = sweep < 0 ? -1.0 : 1.0;
    sink.capArc({first, centre, radius, firstAngle, sweep});
    sink.capArc({second, centre, radius, outAngle, turn * (std::numbers::pi - std::abs(sweep))});
}

}  // namespace kaldo::view
