#include "kaldo/view/PlotPainter.h"

#include "kaldo/view/Picture.h"
#include "kaldo/view/TextShapes.h"

#include <QFont>
#include <QPainter>
#include <QPainterPath>
#include <QTransform>

#include <cmath>
#include <map>
#include <numbers>
#include <span>
#include <vector>

namespace kaldo::view {

namespace {

constexpr double kHundredthsPerMillimetre = 100;

class PlotPainter {
public:
    PlotPainter(QPainter& painter, const Scene& scene, const SheetPlacement& placement, const QRectF& sheet,
                const PlotLook& look)
        : m_painter(painter),
          m_scene(scene),
          m_look(look),
          m_devicePerMillimetre(sheet.width() / placement.width),
          m_scale(m_devicePerMillimetre * placement.millimetresPerUnit),
          m_originX(sheet.left()
                    + m_devicePerMillimetre * (placement.origin.x - placement.area.minX * placement.millimetresPerUnit)),
          m_originY(sheet.top()
                    + m_devicePerMillimetre
                        * (placement.height - placement.origin.y + placement.area.minY * placement.millimetresPerUnit)),
          m_clip(printableRect(placement, sheet))
    {
        if (placement.cutAtArea) {
            const Bounds plotted = placement.plotted();
            m_clip &= QRectF(QPointF(sheet.left() + plotted.minX * m_devicePerMillimetre,
                                     sheet.top() + (placement.height - plotted.maxY) * m_devicePerMillimetre),
                             QPointF(sheet.left() + plotted.maxX * m_devicePerMillimetre,
                                     sheet.top() + (placement.height - plotted.minY) * m_devicePerMillimetre));
        }
    }

    void paint(const PlotLayers& layers)
    {
        m_painter.save();
        m_painter.setRenderHint(QPainter::Antialiasing);
        m_painter.setClipRect(m_clip);
        if (layers.fills)
            paintFills();
        if (layers.lines)
            paintLines();
        if (layers.texts)
            paintTexts();
        m_painter.restore();
    }

private:
    QPointF device(const Point2& p) const { return {m_originX + p.x * m_scale, m_originY - p.y * m_scale}; }

    QColor color(const DrawColor& color) const
    {
        return QColor::fromRgb(QRgb(0xFF000000u | (m_look.monochrome ? 0u : pictureRgb(color, Background::White))));
    }

    // All fills of a colour in one path, so that neighbouring pieces show
    // no seams; those of instances placed.
    void paintFills()
    {
        const FillGroups fills = groupFills(m_scene);
        for (std::size_t c = 0; c < fills.colors.size(); ++c) {
            QPainterPath path;
            path.setFillRule(Qt::WindingFill);
            const auto addPolygon = [&](std::span<const Point2> corners) {
                path.moveTo(device(corners[0]));
                for (std::size_t i = 1; i < corners.size(); ++i)
                    path.lineTo(device(corners[i]));
                path.closeSubpath();
            };
            for (std::uint32_t f = fills.starts[c]; f < fills.starts[c + 1]; ++f) {
                const SceneItem item = fills.order[f];
                if (!item.instance) {
                    const Polygon& polygon = m_scene.polygons()[item.index];
                    addPolygon({m_scene.points().data() + polygon.first, polygon.count});
                    continue;
                }
                m_scene.visitPolygons(m_scene.instances()[item.index],
                                      [&](const DrawColor& each, std::span<const Point2> corners) {
                                          if (each == fills.colors[c])
                                              addPolygon(corners);
                                      });
            }
            m_painter.fillPath(path, color(fills.colors[c]));
        }
    }

    // Pen by pen: the scene's polylines and arcs, and the polylines of
    // instances drawn in the pen, placed.
    void paintLines()
    {
        const LineGroups lines = groupLines(m_scene);
        const PenGroups arcs = groupByPen(m_scene.arcs(), m_scene.pens().size());
        m_painter.setBrush(Qt::NoBrush);
        for (std::size_t p = 0; p < m_scene.pens().size(); ++p) {
            if (lines.starts[p] == lines.starts[p + 1] && arcs.starts[p] == arcs.starts[p + 1])
                continue;
            m_painter.setPen(qtPen(m_scene.pens()[p]));
            for (std::uint32_t i = lines.starts[p]; i < lines.starts[p + 1]; ++i) {
                const SceneItem item = lines.order[i];
                if (!item.instance) {
                    const Polyline& polyline = m_scene.polylines()[item.index];
                    paintPolyline({m_scene.points().data() + polyline.first, polyline.count}, polyline.closed);
                    continue;
                }
                m_scene.visitPolylines(m_scene.instances()[item.index],
                                       [&](int pen, bool closed, std::span<const Point2> points) {
                                           if (pen == int(p))
                                               paintPolyline(points, closed);
                                       });
            }
            for (std::uint32_t i = arcs.starts[p]; i < arcs.starts[p + 1]; ++i)
                paintArc(m_scene.arcs()[arcs.order[i]]);
        }
    }

    // A lineweight of 0 is the thinnest line the device draws. Dashes are
    // given to Qt in widths of the pen.
    QPen qtPen(const Pen& pen) const
    {
        const int weight = m_look.lineWeights ? pen.lineWeight : kDefaultLineWeight;
        const double millimetres =
            weight == kDefaultLineWeight ? m_look.defaultLineWeight : weight / kHundredthsPerMillimetre;
        QPen qpen(color(pen.color));
        qpen.setWidthF(millimetres * m_devicePerMillimetre);
        qpen.setJoinStyle(Qt::RoundJoin);
        qpen.setCapStyle(Qt::RoundCap);
        const PixelDashes dashes = pixelDashes(m_scene.patterns()[std::size_t(pen.pattern)], m_scale);
        if (!dashes.lengths.empty()) {
            const double width = qpen.widthF() > 0 ? qpen.widthF() : 1.0;
            QList<qreal> lengths;
            for (const double length : dashes.lengths)
                lengths.push_back(length / width);
            qpen.setCapStyle(Qt::FlatCap);
            qpen.setDashPattern(lengths);
            qpen.setDashOffset(dashes.offset / width);
        }
        return qpen;
    }

    void paintPolyline(std::span<const Point2> points, bool closed)
    {
        m_points.clear();
        for (const Point2& point : points)
            m_points.push_back(device(point));
        if (closed)
            m_painter.drawPolygon(m_points.data(), int(m_points.size()));
        else
            m_painter.drawPolyline(m_points.data(), int(m_points.size()));
    }

    // Angles as the scene holds them, not rounded to Qt's sixteenths of a
    // degree: a large radius at scale would show the rounding.
    void paintArc(const Arc& arc)
    {
        const double radius = arc.radius * m_scale;
        const QPointF centre = device(arc.centre);
        const QRectF box(centre.x() - radius, centre.y() - radius, 2 * radius, 2 * radius);
        if (std::abs(arc.sweep) >= 2 * std::numbers::pi - 1e-12) {
            m_painter.drawEllipse(box);
            return;
        }
        const double toDegrees = 180 / std::numbers::pi;
        QPainterPath path;
        path.arcMoveTo(box, arc.start * toDegrees);
        path.arcTo(box, arc.start * toDegrees, arc.sweep * toDegrees);
        m_painter.drawPath(path);
    }

    // Each line in its own placement, so that its letters stay letters.
    void paintTexts()
    {
        const QTransform drawingToDevice =
            QTransform(m_scale, 0, 0, -m_scale, m_originX, m_originY) * m_painter.transform();
        std::map<std::string, QFont> fonts;
        m_scene.visitTexts([&](const TextLine& text) {
            auto font = fonts.find(text.fontFile);
            if (font == fonts.end())
                font = fonts.emplace(text.fontFile, fontForFile(text.fontFile)).first;
            m_painter.setFont(font->second);
            const Affine& place = text.place;
            m_painter.setPen(color(m_scene.pens()[std::size_t(text.pen)].color));
            m_painter.setTransform(QTransform(place.xx, place.yx, place.xy, place.yy, place.dx, place.dy)
                                   * drawingToDevice);
            m_painter.drawText(QPointF(text.left, 0), QString::fromStdString(text.text));
        });
    }

    QPainter& m_painter;
    const Scene& m_scene;
    const PlotLook& m_look;
    double m_devicePerMillimetre;
    double m_scale;  // device units per drawing unit
    double m_originX;
    double m_originY;
    QRectF m_clip;  // the printable area, and the plotted area when cut there
    std::vector<QPointF> m_points;
};

}  // namespace

void paintPlot(QPainter& painter, const Scene& scene, const SheetPlacement& placement, const QRectF& sheet,
               const PlotLook& look, const PlotLayers& layers)
{
    PlotPainter(painter, scene, placement, sheet, look).paint(layers);
}

QRectF printableRect(const SheetPlacement& placement, const QRectF& sheet)
{
    const double perMillimetre = sheet.width() / placement.width;
    const Bounds& printable = placement.printable;
    return {sheet.left() + printable.minX * perMillimetre, sheet.top() + (placement.height - printable.maxY) * perMillimetre,
            (printable.maxX - printable.minX) * perMillimetre, (printable.maxY - printable.minY) * perMillimetre};
}

}  // namespace kaldo::view
