#include "kaldo/view/PngExport.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>
#include <exception>
#include <limits>
#include <numbers>
#include <numeric>
#include <optional>
#include <span>
#include <tuple>
#include <thread>
#include <vector>

#include "kaldo/util/FileAccess.h"
#include "kaldo/util/FileWriting.h"
#include "kaldo/util/TwoThreads.h"
#include "kaldo/view/HugePages.h"
#include "kaldo/view/PngEncoding.h"
#include "kaldo/view/SceneIndex.h"

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

// The extent of some points in pixels.
struct PixelBox {
    double top = std::numeric_limits<double>::infinity();
    double bottom = -std::numeric_limits<double>::infinity();
    double left = std::numeric_limits<double>::infinity();
    double right = -std::numeric_limits<double>::infinity();
    bool underAPixel() const { return bottom - top < 1 && right - left < 1; }
};

// An image of 32-bit pixels that a painter draws on, clipped to a
// rectangle: dots are set in it directly, as the painter would set them
// (the pixel a dot rounds to, when it lies within the clip, takes the pen's
// opaque colour), without the painter's work per point.
struct DotTarget {
    QRgb* pixels = nullptr;
    qsizetype stride = 0;  // pixels per row
    QRect clip;
};

// The items to paint by colour of fill and by pen, in scene order: all of
// them, or those near is given.
struct PaintOrder {
    // The lines on a second thread, the fills and arcs on this one, when
    // all the items of a large scene are ordered.
    PaintOrder(const Scene& scene, const SceneItems* near, const FillColors* colors = nullptr)
    {
        constexpr std::size_t kItemsForTwoThreads = 1 << 16;
        onTwoThreads(!near && scene.polylines().size() + scene.arcs().size() >= kItemsForTwoThreads, [&](int half) {
            if (half == 0) {
                lines = groupLines(scene, near ? &near->polylines : nullptr, near ? &near->instances : nullptr);
                return;
            }
            fills = groupFills(scene, near ? &near->polygons : nullptr, near ? &near->instances : nullptr, colors);
            arcs = groupByPen(scene.arcs(), scene.pens().size(), near ? &near->arcs : nullptr);
        });
    }
    FillGroups fills;
    LineGroups lines;
    PenGroups arcs;
};

// Paints the part of a scene that falls in some areas of the picture;
// only items reaching one of them are drawn, in scene order. With the
// scene's index only the items it finds near the areas are looked at;
// without it, the painters of the bands of one picture share the order of
// all items (given), which they would each make alike.
// Whatever is smaller than a pixel is a dot.
class ScenePainter {
public:
    ScenePainter(const Scene& scene, Background background, QPainter& painter, const PictureFrame& frame,
                 std::vector<Band> bands, const PaintDetail& detail, const PaintOrder* allItems = nullptr,
                 const DotTarget& dots = {})
        : m_scene(scene),
          m_background(background),
          m_frame(frame),
          m_toPixels(frame.pixels()),
          m_bands(std::move(bands)),
          m_painter(painter),
          m_coarse(detail.coarse),
          m_stop(detail.stop),
          m_dotTarget(dots)
    {
        m_lines.reserve(kBatch);
        if (detail.index)
            m_near = detail.index->near(bandBoxes());
        if (detail.index || !allItems)
            m_ownOrder.emplace(m_scene, m_near ? &*m_near : nullptr, detail.fillColors);
        m_order = m_ownOrder ? &*m_ownOrder : allItems;
    }

    void paint()
    {
        paintFills();
        const LineGroups& lines = m_order->lines;
        const PenGroups& arcs = m_order->arcs;
        const std::vector<std::size_t> order = penOrder();
        const std::vector<bool> hidden = m_coarse ? hiddenInNarrowGroups(order) : std::vector<bool>();
        for (const std::size_t p : order) {
            const bool dashed = choosePen(m_scene.pens()[p]);
            const std::uint32_t linesEnd = lines.starts[p + 1];
            for (std::uint32_t i = lines.starts[p]; i < linesEnd && !stopped(); ++i) {
                // (A function of prefetches alone would be dropped as
                // doing nothing.)
                if (i + 2 * kAhead < linesEnd && !lines.order[i + 2 * kAhead].instance)
                    __builtin_prefetch(&m_scene.polylines()[lines.order[i + 2 * kAhead].index]);
                const Polyline* const ahead = i + kAhead < linesEnd && !lines.order[i + kAhead].instance
                    ? &m_scene.polylines()[lines.order[i + kAhead].index]
                    : nullptr;
                if (ahead && ahead->count > 0) {
                    const Point2* const points = m_scene.points().data() + ahead->first;
                    const char* const first = reinterpret_cast<const char*>(points);
                    const char* const last = reinterpret_cast<const char*>(points + ahead->count) - 1;
                    for (const char* line = first; line < std::min(last, first + kAheadBytes); line += kCacheLine)
                        __builtin_prefetch(line);
                    __builtin_prefetch(last);
                }
                const SceneItem item = lines.order[i];
                if (item.instance)
                    paintInstance(m_scene.instances()[item.index], int(p), dashed);
                else if (hidden.empty() || !hidden[item.index])
                    paintPolyline(item.index, dashed);
            }
            flushSegments();
            const std::uint32_t arcsEnd = arcs.starts[p + 1];
            for (std::uint32_t i = arcs.starts[p]; i < arcsEnd && !stopped(); ++i) {
                if (i + kAhead < arcsEnd)
                    __builtin_prefetch(&m_scene.arcs()[arcs.order[i + kAhead]]);
                const Arc& arc = m_scene.arcs()[arcs.order[i]];
                const PixelBox box = pixelBox(arc);
                if (!reachesBand(box))
                    continue;
                if (box.underAPixel())
                    addDot(pixel(arc.centre));
                else
                    paintArc(arc);
            }
            flushSegments();
        }
    }

private:
    static constexpr std::size_t kBatch = 4096;
    // How far past its points an antialiased line with its caps may colour
    // pixels, with room to spare.
    static constexpr double kReach = 2.0;
    // A line of text whose box is lower than this is drawn as its box in a
    // coarse picture: its letters would be a smudge.
    static constexpr double kSmallTextPixels = 4.0;

    // How many items ahead of the one painted the memory of an item is
    // asked for, so that reading it does not wait: items of one pen lie
    // apart in the scene, and a polyline's points apart from its record
    // (asked for 2 kAhead items ahead, its points kAhead ahead, up to
    // kAheadBytes of them and the last).
    static constexpr std::uint32_t kAhead = 8;
    static constexpr std::ptrdiff_t kCacheLine = 64;
    static constexpr std::ptrdiff_t kAheadBytes = 8 * kCacheLine;

    bool stopped() const { return m_stop && m_stop->load(std::memory_order_relaxed); }

    QPointF pixel(const Point2& p) const { return {m_frame.x(p.x), m_frame.y(p.y)}; }

    // The bands within the picture, widened by the reach and a pixel more,
    // in drawing units.
    std::vector<Box> bandBoxes() const
    {
        constexpr double kMargin = kReach + 1;
        std::vector<Box> boxes;
        for (const Band& band : m_bands) {
            const double left = m_frame.worldX(std::max(band.left, 0.0) - kMargin);
            const double right = m_frame.worldX(std::min(band.right, double(m_frame.width())) + kMargin);
            const double top = m_frame.worldY(band.top - kMargin);
            const double bottom = m_frame.worldY(band.bottom + kMargin);
            boxes.push_back({std::min(left, right), std::min(top, bottom), std::max(left, right), std::max(top, bottom)});
        }
        return boxes;
    }

    bool reachesBand(const PixelBox& box) const
    {
        return std::any_of(m_bands.begin(), m_bands.end(), [&](const Band& band) {
            return box.bottom >= band.top - kReach && box.top < band.bottom + kReach
                && box.right >= band.left - kReach && box.left < band.right + kReach;
        });
    }

    // Points that are not numbers leave the rows they span alone: the
    // painter draws nothing for them.
    PixelBox pixelBox(std::uint32_t first, std::uint32_t count) const
    {
        PixelBox box;
        for (const Point2* p = m_scene.points().data() + first; p != m_scene.points().data() + first + count; ++p) {
            const double y = m_frame.y(p->y);
            box.top = std::min(box.top, y);
            box.bottom = std::max(box.bottom, y);
            const double x = m_frame.x(p->x);
            box.left = std::min(box.left, x);
            box.right = std::max(box.right, x);
        }
        return box;
    }

    PixelBox pixelBox(const Box& box) const
    {
        return {m_frame.y(box.maxY), m_frame.y(box.minY), m_frame.x(box.minX), m_frame.x(box.maxX)};
    }

    PixelBox pixelBox(const Arc& arc) const
    {
        const double x = m_frame.x(arc.centre.x);
        const double y = m_frame.y(arc.centre.y);
        const double radius = std::abs(arc.radius * m_frame.scale());
        return {y - radius, y + radius, x - radius, x + radius};
    }

    void paintFills()
    {
        const FillGroups& fills = m_order->fills;
        for (std::size_t c = 0; c < fills.colors.size(); ++c) {
            QPainterPath path;
            path.setFillRule(Qt::WindingFill);
            const auto addPolygon = [&](std::span<const Point2> corners) {
                path.moveTo(pixel(corners[0]));
                for (std::size_t p = 1; p < corners.size(); ++p)
                    path.lineTo(pixel(corners[p]));
                path.closeSubpath();
            };
            for (std::uint32_t i = fills.starts[c]; i < fills.starts[c + 1] && !stopped(); ++i) {
                const SceneItem item = fills.order[i];
                if (!item.instance) {
                    const Polygon& polygon = m_scene.polygons()[item.index];
                    if (reachesBand(pixelBox(polygon.first, polygon.count)))
                        addPolygon({m_scene.points().data() + polygon.first, polygon.count});
                    continue;
                }
                const Instance& instance = m_scene.instances()[item.index];
                const PixelBox box = pixelBox(instance.box);
                if (!reachesBand(box) || !drawnInFull(instance, box))
                    continue;
                m_scene.visitPolygons(instance, [&](const DrawColor& color, std::span<const Point2> corners) {
                    if (color == fills.colors[c])
                        addPolygon(corners);
                });
            }
            if (!path.isEmpty())
                m_painter.fillPath(path, qtColor(pictureRgb(fills.colors[c], m_background)));
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

    // Polylines of groups narrower than a pixel other than those of the
    // group's pen painted last, which would cover them.
    std::vector<bool> hiddenInNarrowGroups(const std::vector<std::size_t>& order) const
    {
        std::vector<bool> hidden;
        std::vector<std::size_t> rank(order.size());
        for (std::size_t r = 0; r < order.size(); ++r)
            rank[order[r]] = r;
        const std::vector<Polyline>& polylines = m_scene.polylines();
        for (const PolylineGroup& group : m_scene.groups()) {
            if (group.width * m_frame.scale() >= 1)
                continue;
            if (hidden.empty())
                hidden.resize(polylines.size());
            int top = polylines[group.first].pen;
            for (std::uint32_t i = group.first + 1; i < group.end; ++i)
                if (rank[std::size_t(polylines[i].pen)] > rank[std::size_t(top)])
                    top = polylines[i].pen;
            for (std::uint32_t i = group.first; i < group.end; ++i)
                hidden[i] = polylines[i].pen != top;
        }
        return hidden;
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
        m_dotColour = qpen.color().rgba();
        return !dashes.lengths.empty();
    }

    void paintPolyline(std::uint32_t index, bool dashed)
    {
        // The box from the points, which are read in scene order and drawn
        // next, rather than from the index, whose boxes lie in its own order.
        const Polyline& polyline = m_scene.polylines()[index];
        const PixelBox box = pixelBox(polyline.first, polyline.count);
        if (!reachesBand(box))
            return;
        const Point2* points = m_scene.points().data() + polyline.first;
        const auto at = [&](std::uint32_t i) { return pixel(points[i]); };
        if (box.underAPixel())
            addDot(at(0));
        else if (dashed)
            paintDashed(polyline.count, polyline.closed, at);
        else
            addSegments(polyline.count, polyline.closed, at);
    }

    // The polylines of pen of an instance, placed; the instance smaller
    // than a pixel is a dot (drawn with the first of its pens), a line of
    // text too small to read in a coarse picture its box.
    void paintInstance(const Instance& instance, int pen, bool dashed)
    {
        const PixelBox box = pixelBox(instance.box);
        if (!reachesBand(box))
            return;
        if (box.underAPixel()) {
            int first = -1;
            m_scene.visitPens(instance, [&](int each) {
                if (first < 0)
                    first = each;
            });
            if (pen == first)
                addDot({(box.left + box.right) / 2, (box.top + box.bottom) / 2});
            return;
        }
        const Shape& shape = m_scene.shapes()[instance.shape];
        const Affine toPixels = m_toPixels.after(instance.place);
        if (!drawnInFull(instance, box)) {
            const Bounds& b = shape.box;
            const Point2 corners[] = {{b.minX, b.minY}, {b.maxX, b.minY}, {b.maxX, b.maxY}, {b.minX, b.maxY}};
            addSegments(4, true, [&](std::uint32_t i) { return qtPoint(toPixels(corners[i])); });
            return;
        }
        for (std::uint32_t r = shape.firstRun; r < shape.endRun; ++r) {
            const ShapeRun& run = m_scene.runs()[r];
            const Part& part = m_scene.parts()[run.part];
            const Affine place = toPixels.shiftedAlongX(run.shift);
            for (std::uint32_t i = part.firstPolyline; i < part.endPolyline; ++i) {
                const Polyline& polyline = m_scene.partPolylines()[i];
                if ((polyline.pen == kInstancePen ? instance.pen : polyline.pen) != pen)
                    continue;
                const Point2* points = m_scene.partPoints().data() + polyline.first;
                const auto at = [&](std::uint32_t p) { return qtPoint(place(points[p])); };
                if (dashed)
                    paintDashed(polyline.count, polyline.closed, at);
                else
                    addSegments(polyline.count, polyline.closed, at);
            }
        }
    }

    // False for an instance smaller than a pixel, drawn as a dot, and for a
    // line of text too small to read in a coarse picture, drawn as its box.
    bool drawnInFull(const Instance& instance, const PixelBox& box) const
    {
        if (box.underAPixel())
            return false;
        const Shape& shape = m_scene.shapes()[instance.shape];
        const Affine toPixels = m_toPixels.after(instance.place);
        return !(m_coarse && shape.text
                 && (shape.box.maxY - shape.box.minY) * std::hypot(toPixels.xy, toPixels.yy) < kSmallTextPixels);
    }

    static QPointF qtPoint(const Point2& p) { return {p.x, p.y}; }

    // Continuous lines go to the painter as batches of separate segments;
    // coarse, a point that lies within a pixel of the last one drawn to is
    // passed over, unless it ends the line. at(i) is the pixel of point i.
    template <class PixelOf>
    void addSegments(std::uint32_t count, bool closed, const PixelOf& at)
    {
        const std::uint32_t end = closed ? count + 1 : count;
        QPointF from = at(0);
        for (std::uint32_t i = 1; i < end; ++i) {
            const QPointF to = at(i % count);
            if (m_coarse && i + 1 < end && std::abs(to.x() - from.x()) < 1 && std::abs(to.y() - from.y()) < 1)
                continue;
            m_lines.emplace_back(from, to);
            from = to;
            if (m_lines.size() == kBatch)
                flushSegments();
        }
    }

    void addDot(const QPointF& at)
    {
        m_dots.push_back(at);
        if (m_dots.size() == kBatch)
            flushSegments();
    }

    void flushSegments()
    {
        if (!m_lines.empty())
            m_painter.drawLines(m_lines.data(), int(m_lines.size()));
        m_lines.clear();
        if (!m_dots.empty() && m_dotTarget.pixels)
            setDots();
        else if (!m_dots.empty())
            m_painter.drawPoints(m_dots.data(), int(m_dots.size()));
        m_dots.clear();
    }

    // The dots as the painter's one-pixel pen sets them on the target.
    void setDots() const
    {
        const QRect& clip = m_dotTarget.clip;
        for (const QPointF& dot : m_dots) {
            const int x = qRound(dot.x()), y = qRound(dot.y());
            if (x >= clip.left() && x <= clip.right() && y >= clip.top() && y <= clip.bottom())
                m_dotTarget.pixels[qsizetype(y) * m_dotTarget.stride + x] = m_dotColour;
        }
    }

    // Dashed lines go whole, so that the pattern runs on across vertices.
    template <class PixelOf>
    void paintDashed(std::uint32_t count, bool closed, const PixelOf& at)
    {
        m_points.clear();
        for (std::uint32_t i = 0; i < count; ++i)
            m_points.push_back(at(i));
        if (closed)
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
    Affine m_toPixels;
    std::vector<Band> m_bands;
    QPainter& m_painter;
    std::vector<QLineF> m_lines;
    std::vector<QPointF> m_points;
    std::vector<QPointF> m_dots;
    bool m_coarse;
    const std::atomic<bool>* m_stop;
    DotTarget m_dotTarget;
    QRgb m_dotColour = 0;
    std::optional<SceneItems> m_near;
    std::optional<PaintOrder> m_ownOrder;
    const PaintOrder* m_order = nullptr;
};

// Dots are set directly on images of 32-bit opaque pixels, whose painter
// draws them as one pixel each; other formats leave them to the painter.
DotTarget dots(QImage& image, const QRect& clip)
{
    if (image.format() != QImage::Format_RGB32)
        return {};
    return {reinterpret_cast<QRgb*>(image.bits()), image.bytesPerLine() / qsizetype(sizeof(QRgb)), clip};
}

}  // namespace

void paintScene(QPainter& painter, const Scene& scene, const PictureFrame& frame, Background background, int top,
                int bottom, const PaintDetail& detail)
{
    ScenePainter(scene, background, painter, frame, {Band{double(top), double(bottom)}}, detail).paint();
}

void paintScene(QPainter& painter, const Scene& scene, const PictureFrame& frame, Background background,
                const QRegion& area, const PaintDetail& detail)
{
    std::vector<Band> bands;
    for (const QRect& rect : area)
        bands.push_back({double(rect.top()), double(rect.bottom() + 1), double(rect.left()), double(rect.right() + 1)});
    ScenePainter(scene, background, painter, frame, std::move(bands), detail).paint();
}

namespace {

// Paints a scene over image in bands, as paintScene does; each band's
// thread then calls painted(band, top, bottom) with the band's rows, which
// no other band changes.
template <class Painted>
void paintBands(QImage& image, const Scene& scene, const PictureFrame& frame, Background background, int bands,
                const PaintDetail& detail, const Painted& painted)
{
    // Each band's painter works on its own image over the same pixels. It
    // is clipped to the band but draws on the whole image, so that lines
    // are not cut at band edges and every pixel comes out as it would from
    // one painter.
    // What a band's thread throws is thrown again here, once all have
    // ended, so that nothing leaves a thread.
    uchar* const pixels = image.bits();
    std::vector<std::exception_ptr> failures(std::size_t(bands), nullptr);
    std::optional<PaintOrder> allItems;
    if (!detail.index && bands > 1)
        allItems.emplace(scene, nullptr, detail.fillColors);
    const auto paintBand = [&](int b) {
        try {
            const int top = image.height() * b / bands;
            const int bottom = image.height() * (b + 1) / bands;
            {
                QImage view(pixels, image.width(), image.height(), image.bytesPerLine(), image.format());
                QPainter painter(&view);
                painter.setRenderHint(QPainter::Antialiasing);
                const QRect clip(0, top, image.width(), bottom - top);
                painter.setClipRect(clip);
                ScenePainter(scene, background, painter, frame, {Band{double(top), double(bottom)}}, detail,
                             allItems ? &*allItems : nullptr, dots(view, clip))
                    .paint();
            }
            painted(b, top, bottom);
        } catch (...) {
            failures[std::size_t(b)] = std::current_exception();
        }
    };
    {
        std::vector<std::jthread> others;
        for (int b = 1; b < bands; ++b)
            others.emplace_back(paintBand, b);
        paintBand(0);
    }
    for (const std::exception_ptr& failure : failures)
        if (failure)
            std::rethrow_exception(failure);
}

// A white or dark picture of the size options give, to paint the scene on.
QImage blankPicture(const PictureFrame& frame, const PictureOptions& options)
{
    QImage image(frame.width(), frame.height(), QImage::Format_RGB32);
    adviseHugePages(image.constBits(), std::size_t(image.sizeInBytes()));
    image.fill(qtColor(backgroundRgb(options.background)));
    return image;
}

// As many bands as the machine has processors, up to four.
int machineBands()
{
    constexpr int kMostBands = 4;
    return std::clamp(int(std::thread::hardware_concurrency()), 1, kMostBands);
}

}  // namespace

void paintScene(QImage& image, const Scene& scene, const PictureFrame& frame, Background background, int bands,
                const PaintDetail& detail)
{
    paintBands(image, scene, frame, background, std::clamp(bands, 1, std::max(1, image.height())), detail,
               [](int, int, int) {});
}

QImage paintScene(const Scene& scene, const PictureOptions& options, int bands)
{
    const PictureFrame frame(scene.bounds(), options.size);
    QImage image = blankPicture(frame, options);
    paintScene(image, scene, frame, options.background, bands);
    return image;
}

QImage paintScene(const Scene& scene, const PictureOptions& options)
{
    return paintScene(scene, options, machineBands());
}

QByteArray paintPng(const Scene& scene, const PictureOptions& options, int bands)
{
    const PictureFrame frame(scene.bounds(), options.size);
    QImage image = blankPicture(frame, options);
    bands = std::clamp(bands, 1, std::max(1, image.height()));
    std::vector<PngPart> parts(static_cast<std::size_t>(bands));
    paintBands(image, scene, frame, options.background, bands, {}, [&](int band, int top, int bottom) {
        parts[std::size_t(band)] = deflatePngRows(image, top, bottom, band + 1 == bands);
    });
    return assemblePng(image.width(), image.height(), parts);
}

std::string writePng(const Scene& scene, const std::filesystem::path& file, const PictureOptions& options)
{
    const QByteArray bytes = paintPng(scene, options, machineBands());
    try {
        replaceFile(file, std::string_view(bytes.constData(), std::size_t(bytes.size())));
    } catch (const FileError& e) {
        return e.what();
    }
    return {};
}

}  // namespace kaldo::view
