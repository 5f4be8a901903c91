#include "kaldo/view/MlineRenderer.h"

#include <algorithm>
#include <cmath>

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

// The number of elements a multiline draws: the fewest any vertex holds.
int elementCount(const KxDbMline& mline)
{
    int elements = -1;
    for (int v = 0; v < mline.numVertices(); ++v) {
        const int here = mline.parametersAt(v).numElements();
        elements = elements < 0 ? here : std::min(elements, here);
    }
    return std::max(elements, 0);
}

}  // namespace

void MlineRenderer::draw(const KxDbMline& mline, const KxDbMlineStyle* style, const LayerLook& layer)
{
    if (mline.numVertices() < 2)
        return;
    choosePens(mline, style, layer);
    if (style)
        m_fillColor = drawColor(style->fillColor(), layer.color);
    m_mline = &mline;
    const auto first = static_cast<std::uint32_t>(m_pens.scene().polylines().size());
    m_pieces.collect(mline, style, *this);
    endOpenPolyline(false);
    m_mline = nullptr;
    if (style && style->numElements() > 0) {
        double lowest = 0, highest = 0;
        for (int e = 0; e < style->numElements(); ++e) {
            double offset = 0;
            KxCmColor color;
            KxDbObjectId linetype;
            style->getElementAt(e, offset, color, linetype);
            lowest = e == 0 ? offset : std::min(lowest, offset);
            highest = e == 0 ? offset : std::max(highest, offset);
        }
        m_pens.scene().groupPolylines(first, (highest - lowest) * std::abs(mline.scale()));
    }
}

void MlineRenderer::choosePens(const KxDbMline& mline, const KxDbMlineStyle* style, const LayerLook& layer)
{
    const Look look{style, &layer, mline.color(), mline.linetypeId(), elementCount(mline)};
    if (look == m_penLook)
        return;
    m_penLook = look;
    m_elementPens.clear();
    const int stylePens = style ? style->numElements() : 0;
    for (int e = 0; e < look.elements; ++e) {
        double offset = 0;
        KxCmColor color = mline.color();
        KxDbObjectId linetype = mline.linetypeId();
        if (e < stylePens)
            style->getElementAt(e, offset, color, linetype);
        const int line = m_pens.pen(color, linetype, layer);
        m_elementPens.push_back({line, m_pens.continuousPen(color, layer),
                                 m_pens.scene().pens()[std::size_t(line)].pattern != 0});
    }
}

void MlineRenderer::fill(const MlineFill& fill)
{
    Scene& scene = m_pens.scene();
    scene.beginPolygon();
    for (const KxGePoint3d& corner : fill.corners)
        scene.addPoint(flat(corner));
    scene.endPolygon(m_fillColor);
}

void MlineRenderer::run(const MlineRun& run)
{
    Scene& scene = m_pens.scene();
    const ElementPens& pens = m_elementPens[std::size_t(run.element)];
    if (run.continues && m_polylineOpen && !pens.dashed) {
        scene.addPoint(flat(run.to));
    } else {
        endOpenPolyline(false);
        scene.beginPolyline(pens.line);
        scene.addPoint(flat(run.from));
        scene.addPoint(flat(run.to));
        m_polylineOpen = true;
    }
    if (pens.dashed || run.closes)
        endOpenPolyline(run.closes && !pens.dashed);
}

void MlineRenderer::endOpenPolyline(bool closed)
{
    if (m_polylineOpen)
        m_pens.scene().endPolyline(closed);
    m_polylineOpen = false;
}

void MlineRenderer::capLine(const MlineCapLine& line)
{
    endOpenPolyline(false);
    m_pens.scene().addLine(flat(line.from), flat(line.to), m_elementPens[std::size_t(line.element)].continuous);
}

void MlineRenderer::capArc(const MlineCapArc& arc)
{
    endOpenPolyline(false);
    addPlaneArc(m_pens.scene(), EntityPlane(m_mline->normal()), arc.centre, arc.radius, arc.start, arc.sweep,
                m_elementPens[std::size_t(arc.element)].continuous);
}

}  // namespace kaldo::view
