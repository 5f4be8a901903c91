#include "kaldo/view/MlineRenderer.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "kaldo/db/EntityPlane.h"
#include "kaldo/view/ColorPalette.h"
#include "kaldo/view/PlaneArc.h"
#include "kxdbmlstyle.h"

namespace kaldo::view {

namespace {

Point2 flat(const KxGePoint3d& p)
{
    return {p.x, p.y};
}

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

Run runAt(const std::vector<double>& list, std::size_t i, double length, bool freeStart = false,
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

void MlineRenderer::draw(const KxDbMline& mline, const KxDbMlineStyle* style, const LayerLook& layer)
{
    const int n = mline.numVertices();
    if (n < 2)
        return;
    m_mline = &mline;
    m_params.clear();
    m_positions.clear();
    m_axes.clear();
    m_miters.clear();
    for (int v = 0; v < n; ++v) {
        m_params.push_back(mline.parametersAt(v));
        if (!m_params.back()) {
            m_params.clear();
            return;
        }
        m_positions.push_back(mline.vertexAt(v));
        m_axes.push_back(mline.axisAt(v));
        m_miters.push_back(mline.miterAt(v));
    }
    m_elements = static_cast<int>(m_params.front()->elements.size());
    for (const KxDbMlineVertexParams* record : m_params)
        m_elements = std::min(m_elements, static_cast<int>(record->elements.size()));
    m_elementPoints.clear();
    for (int v = 0; v < n; ++v) {
        for (int e = 0; e < m_elements; ++e) {
            const std::vector<double>& list = m_params[std::size_t(v)]->elements[std::size_t(e)].element;
            const double along = list.empty() ? 0.0 : list.front();
            m_elementPoints.push_back(m_positions[std::size_t(v)] + m_miters[std::size_t(v)] * along);
        }
    }

    const Look look{style, &layer, mline.color(), mline.linetypeId(), m_elements};
    if (!(look == m_penLook)) {
        m_penLook = look;
        m_elementPens.clear();
        const int stylePens = style ? style->numElements() : 0;
        for (int e = 0; e < m_elements; ++e) {
            double offset = 0;
            KxCmColor color = mline.color();
            KxDbObjectId linetype = mline.linetypeId();
            if (e < stylePens)
                style->getElementAt(e, offset, color, linetype);
            m_elementPens.push_back({m_pens.pen(color, linetype, layer), m_pens.continuousPen(color, layer)});
        }
    }

    const bool closed = mline.closedMline() && n > 2;
    if (style && style->filled() && m_elements > 1)
        drawFill(drawColor(style->fillColor(), layer.color), closed);
    for (int e = 0; e < m_elements; ++e)
        drawElement(e, closed);
    if (style && m_elements > 1) {
        if (style->showMiters())
            drawJoints(closed);
        if (!closed && !mline.supressStartCaps()) {
            if (style->startSquareCap())
                drawLineCap(0);
            drawArcCaps(0, -m_axes.front(), style->startRoundCap(), style->startInnerArcs());
        }
        if (!closed && !mline.supressEndCaps()) {
            if (style->endSquareCap())
                drawLineCap(n - 1);
            drawArcCaps(n - 1, m_axes.back(), style->endRoundCap(), style->endInnerArcs());
        }
    }
    m_params.clear();
    m_mline = nullptr;
}

const KxGePoint3d& MlineRenderer::elementPoint(int vertex, int element) const
{
    return m_elementPoints[std::size_t(vertex * m_elements + element)];
}

// Runs that go on across a vertex continue one polyline, so that joins and
// linetype patterns carry on; a closed multiline drawn all round is one
// closed polyline.
void MlineRenderer::drawElement(int element, bool closed)
{
    Scene& scene = m_pens.scene();
    const int pen = m_elementPens[std::size_t(element)].line;
    const int n = static_cast<int>(m_positions.size());
    const int segments = closed ? n : n - 1;
    bool open = false;
    bool startsAtOrigin = false;
    for (int s = 0; s < segments; ++s) {
        const KxGePoint3d a = elementPoint(s, element);
        const KxGePoint3d b = elementPoint((s + 1) % n, element);
        const KxGeVector3d& dir = m_axes[std::size_t(s)];
        const double length = std::max(0.0, dot(b - a, dir));
        const std::vector<double>& list = m_params[std::size_t(s)]->elements[std::size_t(element)].element;
        bool reachedEnd = false;
        for (std::size_t i = 1; i < list.size(); i += 2) {
            const Run run = runAt(list, i, length, !closed && s == 0, !closed && s == segments - 1);
            if (run.to <= run.from && !(run.fromStart && run.toEnd))
                continue;
            const KxGePoint3d to = alongSegment(a, b, dir, run.to, false, run.toEnd);
            if (open && run.fromStart) {
                scene.addPoint(flat(to));
            } else {
                if (open)
                    scene.endPolyline();
                scene.beginPolyline(pen);
                scene.addPoint(flat(alongSegment(a, b, dir, run.from, run.fromStart, false)));
                scene.addPoint(flat(to));
                startsAtOrigin = s == 0 && run.fromStart;
            }
            open = true;
            reachedEnd = run.toEnd;
            if (!run.toEnd) {
                scene.endPolyline();
                open = false;
            }
        }
        if (open && !reachedEnd) {
            scene.endPolyline();
            open = false;
        }
    }
    if (open)
        scene.endPolyline(closed && startsAtOrigin);
}

// The fill covers each segment between the first and the last element,
// along the runs of the first element's fill list; a list without runs
// (files often leave it empty) fills the whole segment.
void MlineRenderer::drawFill(const DrawColor& color, bool closed)
{
    Scene& scene = m_pens.scene();
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
            scene.beginPolygon();
            scene.addPoint(flat(alongSegment(a0, b0, dir, r0.from, r0.fromStart, false)));
            scene.addPoint(flat(alongSegment(a0, b0, dir, r0.to, false, r0.toEnd)));
            scene.addPoint(flat(alongSegment(aL, bL, dir, rL.to, false, rL.toEnd)));
            scene.addPoint(flat(alongSegment(aL, bL, dir, rL.from, rL.fromStart, false)));
            scene.endPolygon(color);
        };
        const std::vector<double>& list = m_params[std::size_t(s)]->elements[0].areaFill;
        if (list.size() < 2)
            fill({0, length0, true, true}, {0, lengthL, true, true});
        for (std::size_t i = 1; i < list.size(); i += 2)
            fill(runAt(list, i, length0), runAt(list, i, lengthL));
    }
}

// A joint crosses the multiline along the miter: its half on the first
// element's side in that element's colour, the other half in the last's.
void MlineRenderer::drawJoints(bool closed)
{
    const int n = static_cast<int>(m_positions.size());
    for (int v = closed ? 0 : 1; v < (closed ? n : n - 1); ++v)
        drawLineCap(v);
}

void MlineRenderer::drawLineCap(int vertex)
{
    Scene& scene = m_pens.scene();
    const KxGePoint3d top = elementPoint(vertex, 0);
    const KxGePoint3d bottom = elementPoint(vertex, m_elements - 1);
    const KxGePoint3d middle = midpoint(top, bottom);
    scene.addLine(flat(top), flat(middle), m_elementPens.front().continuous);
    scene.addLine(flat(bottom), flat(middle), m_elementPens.back().continuous);
}

// The outer arc joins the first and the last element, inner arcs the pairs
// inside them (an odd middle element gets none).
void MlineRenderer::drawArcCaps(int vertex, const KxGeVector3d& outward, bool outer, bool inner)
{
    if (outer)
        drawArcPair(vertex, 0, m_elements - 1, outward);
    if (inner) {
        for (int k = 1; k < m_elements / 2; ++k)
            drawArcPair(vertex, k, m_elements - 1 - k, outward);
    }
}

// A half circle over the two element ends, bulging outward, in two arcs
// that meet where the outward direction leaves the centre: the first in
// the first element's colour, the second in the other's.
void MlineRenderer::drawArcPair(int vertex, int first, int second, const KxGeVector3d& outward)
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
    Scene& scene = m_pens.scene();
    addPlaneArc(scene, plane, centre, radius, firstAngle, sweep, m_elementPens[std::size_t(first)].continuous);
    addPlaneArc(scene, plane, centre, radius, outAngle, turn * (std::numbers::pi - std::abs(sweep)),
                m_elementPens[std::size_t(second)].continuous);
}

}  // namespace kaldo::view
