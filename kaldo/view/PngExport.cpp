#include "kaldo/view/PngExport.h"

#include <QImageWriter>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <numeric>
#include <tuple>
#include <thread>
#include <vector>

#include "kaldo/view/HugePages.h"
#include "kaldo/view/SaveFile.h"

namespace kaldo::view {

namespace {

QColor qtColor(std::uint32_t rgb)
{
    return QColor::fromRgb(QRgb(0xFF000000u | rgb));
}

// A part of the picture to paint, in pixels.
struct Band {
    double top = 0;
    double bottom = 0;
    double left = -std::numeric_limits<double>::infinity();
    double right = std::numeric_limits<double>::infinity();
};

// Paints the part of a scene that falls in some areas of the picture;
// only items reaching one of them are drawn, in scene order.
class ScenePainter {
public:
    ScenePainter(const Scene& scene, Background background, QPainter& painter, const PictureFrame& frame,
                 std::vector<Band> bands)
        : m_scene(scene), m_background(background), m_frame(frame), m_bands(std::move(bands)), m_painter(painter)
    {
        m_lines.reserve(kBatch);
    }

    void paint()
    {
        paintFills();
        const PenGroups polylines = groupByPen(m_scene.polylines(), m_scene.pens().size());
        const PenGroups arcs = groupByPen(m_scene.arcs(), m_scene.pens().size());
        for (const std::size_t p : penOrder()) {
            const bool dashed = choosePen(m_scene.pens()[p]);
            for (std::uint32_t i = polylines.starts[p]; i < polylines.starts[p + 1]; ++i) {
                const Polyline& polyline = m_scene.polylines()[polylines.order[i]];
                if (reachesBand(polyline.first, polyline.count))
                    dashed ? paintDashed(polyline) : addSegments(polyline);
            }
            flushSegments();
            for (std::uint32_t i = arcs.starts[p]; i < arcs.starts[p + 1]; ++i)
                if (const Arc& arc = m_scene.arcs()[arcs.order[i]]; reachesBand(arc))
                    paintArc(arc);
        }
    }

private:
    static constexpr std::size_t kBatch = 4096;
    // How far past its points an antialiased line with its caps may colour
    // pixels, with room to spare.
    static constexpr double kReach = 2.0;

    QPointF pixel(const Point2& p) const { return {m_frame.x(p.x), m_frame.y(p.y)}; }

    bool reachesBand(double top, double bottom, double left, double right) const
    {
        return std::any_of(m_bands.begin(), m_bands.end(), [&](const Band& band) {
            return bottom >= band.top - kReach && top < band.bottom + kReach && right >= band.left - kReach
                && left < band.right + kReach;
        });
    }

    // Points that are not numbers leave the rows they span alone: the
    // painter draws nothing for them.
    bool reachesBand(std::uint32_t first, std::uint32_t count) const
    {
        double top = std::numeric_limits<double>::infinity();
        double bottom = -top;
        double left = top;
        double right = -top;
        for (const Point2* p = m_scene.points().data() + first; p != m_scene.points().data() + first + count; ++p) {
            const double y = m_frame.y(p->y);
            top = std::min(top, y);
            bottom = std::max(bottom, y);
            const double x = m_frame.x(p->x);
            left = std::min(left, x);
            right = std::max(right, x);
        }
        return reachesBand(top, bottom, left, right);
    }

    bool reachesBand(const Arc& arc) const
    {
        const double x = m_frame.x(arc.centre.x);
        const double y = m_frame.y(arc.centre.y);
        const double radius = std::abs(arc.radius * m_frame.scale());
        return reachesBand(y - radius, y + radius, x - radius, x + radius);
    }

    void paintFills()
    {
        for (const DrawColor& color : fillColors(m_scene)) {
            QPainterPath path;
            path.setFillRule(Qt::WindingFill);
            for (const Polygon& polygon : m_scene.polygons()) {
                if (!(polygon.color == color) || !reachesBand(polygon.first, polygon.count))
                    continue;
                path.moveTo(pixel(m_scene.points()[polygon.first]));
                for (std::uint32_t i = 1; i < polygon.count; ++i)
                    path.lineTo(pixel(m_scene.points()[polygon.first + i]));
                path.closeSubpath();
            }
            if (!path.isEmpty())
                m_painter.fillPath(path, qtColor(pictureRgb(color, m_background)));
        }
    }

    // Pens are painted in the order of their colours and patterns, so that
    // where lines of two pens cross, the picture does not depend on which
    // pen the scene met first.
    std::vector<std::size_t> penOrder() const
    {
        const std::vector<Pen>& pens = m_scene.pens();
        std::vector<std::size_t> order(pens.size());
        std::iota(order.begin(), order.end(), std::size_t(0));
        const auto key = [&](std::size_t p) {
            return std::tie(pens[p].color.foreground, pens[p].color.rgb, m_scene.patterns()[std::size_t(pens[p].pattern)]);
        };
        std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return key(a) < key(b); });
        return order;
    }

    // Sets the painter's pen; true when it has a dash pattern.
    bool choosePen(const Pen& pen)
    {
        QPen qpen(qtColor(pictureRgb(pen.color, m_background)));
        qpen.setWidthF(1.0);
        qpen.setCosmetic(true);
        qpen.setJoinStyle(Qt::RoundJoin);
        const PixelDashes dashes = pixelDashes(m_scene.patterns()[std::size_t(pen.pattern)], m_frame.scale());
        if (!dashes.lengths.empty()) {
            qpen.setCapStyle(Qt::FlatCap);
            qpen.setDashPattern(QList<qreal>(dashes.lengths.begin(), dashes.lengths.end()));
            qpen.setDashOffset(dashes.offset);
        }
        m_painter.setPen(qpen);
        m_painter.setBrush(Qt::NoBrush);
        return !dashes.lengths.empty();
    }

    // Continuous lines go to the painter as batches of separate segments.
    void addSegments(const Polyline& polyline)
    {
        const Point2* points = m_scene.points().data() + polyline.first;
        QPointF from = pixel(points[0]);
        for (std::uint32_t i = 1; i <= polyline.count; ++i) {
            if (i == polyline.count && !polyline.closed)
                break;
            const QPointF to = pixel(points[i % polyline.count]);
            m_lines.emplace_back(from, to);
            from = to;
            if (m_lines.size() == kBatch)
                flushSegments();
        }
    }

    void flushSegments()
    {
        if (!m_lines.empty())
            m_painter.drawLines(m_lines.data(), int(m_lines.size()));
        m_lines.clear();
    }

    // Dashed lines go whole, so that the pattern runs on across vertices.
    void paintDashed(const Polyline& polyline)
    {
        m_points.clear();
        for (std::uint32_t i = 0; i < polyline.count; ++i)
            m_points.push_back(pixel(m_scene.points()[polyline.first + i]));
        if (polyline.closed)
            m_painter.drawPolygon(m_points.data(), int(m_points.size()));
        else
            m_painter.drawPolyline(m_points.data(), int(m_points.size()));
    }

    void paintArc(const Arc& arc)
    {
        const double radius = arc.radius * m_frame.scale();
        const QRectF box(m_frame.x(arc.centre.x) - radius, m_frame.y(arc.centre.y) - radius, 2 * radius, 2 * radius);
        const double toSixteenths = 16 * 180 / std::numbers::pi;
        if (std::abs(arc.sweep) >= 2 * std::numbers::pi - 1e-12)
            m_painter.drawEllipse(box);
        else
            m_painter.drawArc(box, int(std::lround(arc.start * toSixteenths)), int(std::lround(arc.sweep * toSixteenths)));
    }

    const Scene& m_scene;
    Background m_background;
    const PictureFrame& m_frame;
    std::vector<Band> m_bands;
    QPainter& m_painter;
    std::vector<QLineF> m_lines;
    std::vector<QPointF> m_points;
};

}  // namespace

void paintScene(QPainter& painter, const Scene& scene, const PictureFrame& frame, Background background, int top,
                int bottom)
{
    ScenePainter(scene, background, painter, frame, {Band{double(top), double(bottom)}}).paint();
}

void paintScene(QPainter& painter, const Scene& scene, const PictureFrame& frame, Background background,
                const QRegion& area)
{
    std::vector<Band> bands;
    for (const QRect& rect : area)
        bands.push_back({double(rect.top()), double(rect.bottom() + 1), double(rect.left()), double(rect.right() + 1)});
    ScenePainter(scene, background, painter, frame, std::move(bands)).paint();
}

void paintScene(QImage& image, const Scene& scene, const PictureFrame& frame, Background background, int bands)
{
    bands = std::clamp(bands, 1, std::max(1, image.height()));
    // Each band's painter works on its own image over the same pixels. It
    // is clipped to the band but draws on the whole image, so that lines
    // are not cut at band edges and every pixel comes out as it would from
    // one painter.
    uchar* const pixels = image.bits();
    const auto paintBand = [&](int b) {
        QImage view(pixels, image.width(), image.height(), image.bytesPerLine(), image.format());
        const int top = image.height() * b / bands;
        const int bottom = image.height() * (b + 1) / bands;
        QPainter painter(&view);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setClipRect(QRect(0, top, image.width(), bottom - top));
        paintScene(painter, scene, frame, background, top, bottom);
    };
    std::vector<std::jthread> others;
    for (int b = 1; b < bands; ++b)
        others.emplace_back(paintBand, b);
    paintBand(0);
}

QImage paintScene(const Scene& scene, const PictureOptions& options, int bands)
{
    const PictureFrame frame(scene.bounds(), options.size);
    QImage image(frame.width(), frame.height(), QImage::Format_RGB32);
    adviseHugePages(image.constBits(), std::size_t(image.sizeInBytes()));
    image.fill(qtColor(backgroundRgb(options.background)));
    paintScene(image, scene, frame, options.background, bands);
    return image;
}

QImage paintScene(const Scene& scene, const PictureOptions& options)
{
    constexpr int kMostBands = 4;
    return paintScene(scene, options, std::clamp(int(std::thread::hardware_concurrency()), 1, kMostBands));
}

std::string writePng(const Scene& scene, const std::filesystem::path& file, const PictureOptions& options)
{
    const QImage image = paintScene(scene, options);
    return saveAtomically(file, [&](QIODevice& device, std::string& reason) {
        QImageWriter writer(&device, "png");
        // Quality 85 asks for the fastest level that still compresses: line
        // art on a plain background packs almost as well in a third of the
        // time of the default level.
        writer.setQuality(85);
        if (writer.write(image))
            return true;
        reason = writer.errorString().toStdString();
        return false;
    });
}

}  // namespace kaldo::view
