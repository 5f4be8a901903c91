#include "kaldo/ui/DrawingPicture.h"

#include "kaldo/view/PngExport.h"
#include "kaldo/view/SceneIndex.h"

#include <QPainter>
#include <QRegion>

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace kaldo::ui {

namespace {

// The window draws model space.
constexpr view::Background kBackground = view::windowBackground(true);
// The colour of items in a sketch.
const QColor kSketch(128, 128, 128);
constexpr int kMostBands = 4;

QColor backgroundColour()
{
    return QColor::fromRgb(QRgb(0xFF000000u | view::backgroundRgb(kBackground)));
}

QImage blankPicture(const view::PictureFrame& frame)
{
    QImage image(std::max(frame.width(), 1), std::max(frame.height(), 1), QImage::Format_RGB32);
    image.fill(backgroundColour());
    return image;
}

int bands()
{
    return std::clamp(int(std::thread::hardware_concurrency()), 1, kMostBands);
}

std::size_t itemCount(const view::Scene& scene)
{
    return scene.polylines().size() + scene.arcs().size() + scene.polygons().size() + scene.instances().size();
}

bool sameFrame(const view::PictureFrame& a, const view::PictureFrame& b)
{
    return a.width() == b.width() && a.height() == b.height() && a.scale() == b.scale() && a.x(0) == b.x(0)
        && a.y(0) == b.y(0);
}

// The drawing's items as the index knows them, in one colour, at the
// detail the frame shows: an item, or a group of items lying close
// together, within a few pixels fills them, a larger item's box is drawn.
// The work grows with the pixels the items fill, not with their number.
void sketch(QImage& image, const view::SceneIndex& index, const view::PictureFrame& frame)
{
    constexpr double kSpotPixels = 4;
    const Box view{frame.worldX(0), frame.worldY(frame.height()), frame.worldX(frame.width()), frame.worldY(0)};
    std::vector<QRectF> boxes;
    const QRgb ink = kSketch.rgb();
    const int width = image.width(), height = image.height();
    const qsizetype stride = image.bytesPerLine() / qsizetype(sizeof(QRgb));
    QRgb* const pixels = reinterpret_cast<QRgb*>(image.bits());
    index.queryBoxes(view, kSpotPixels / frame.scale(), [&](const Box& box) {
        const double left = frame.x(box.minX), right = frame.x(box.maxX);
        const double top = frame.y(box.maxY), bottom = frame.y(box.minY);
        if (right - left >= kSpotPixels || bottom - top >= kSpotPixels) {
            boxes.emplace_back(QPointF(left, top), QPointF(right, bottom));
            return;
        }
        const int firstX = std::max(0, int(std::floor(left))), endX = std::min(width, int(std::floor(right)) + 1);
        const int firstY = std::max(0, int(std::floor(top))), endY = std::min(height, int(std::floor(bottom)) + 1);
        for (int y = firstY; y < endY; ++y)
            std::fill(pixels + y * stride + firstX, pixels + y * stride + std::max(firstX, endX), ink);
    });
    QPainter painter(&image);
    painter.setPen(kSketch);
    painter.setBrush(Qt::NoBrush);
    painter.drawRects(boxes.data(), int(boxes.size()));
}

}  // namespace

// A painting on its own thread; stop ends it early.
struct DrawingPicture::Painting {
    unsigned serial = 0;
    std::atomic<bool> stop = false;
    std::thread thread;
};

DrawingPicture::DrawingPicture(QObject* parent) : QObject(parent) {}

DrawingPicture::~DrawingPicture()
{
    stopPainting();
}

const QImage& DrawingPicture::picture(const PublishedDrawing& drawing, const view::PictureFrame& frame)
{
    if (shows(drawing, frame))
        return m_picture;
    stopPainting();
    if (!drawing.scene) {
        m_picture = blankPicture(frame);
    } else if (m_finished && m_scene == drawing.scene.get() && m_frame.width() == frame.width()
               && m_frame.height() == frame.height() && m_frame.scale() == frame.scale()) {
        const double dx = frame.x(0) - m_frame.x(0);
        const double dy = frame.y(0) - m_frame.y(0);
        if (std::abs(dx - std::round(dx)) < 1e-6 && std::abs(dy - std::round(dy)) < 1e-6
            && std::abs(dx) < frame.width() && std::abs(dy) < frame.height())
            scroll(drawing, frame, QPoint(int(std::lround(dx)), int(std::lround(dy))));
        else
            paintNow(drawing, frame);
    } else if (itemCount(*drawing.scene) <= kPaintedAtOnce) {
        paintNow(drawing, frame);
    } else {
        preview(drawing, frame);
        startPainting(drawing, frame);
        return m_picture;
    }
    m_scene = drawing.scene.get();
    m_frame = frame;
    m_finished = true;
    return m_picture;
}

bool DrawingPicture::shows(const PublishedDrawing& drawing, const view::PictureFrame& frame) const
{
    return m_scene == drawing.scene.get() && sameFrame(m_frame, frame) && (m_finished || m_painting)
        && !m_picture.isNull();
}

void DrawingPicture::paintNow(const PublishedDrawing& drawing, const view::PictureFrame& frame)
{
    // A failure leaves the picture empty; the caller learns why.
    m_picture = blankPicture(frame);
    try {
        view::paintScene(m_picture, *drawing.scene, frame, kBackground, bands(), {drawing.index.get(), true, nullptr, drawing.fills.get()});
    } catch (...) {
        m_picture = blankPicture(frame);
        emit failed(std::current_exception());
    }
}

void DrawingPicture::scroll(const PublishedDrawing& drawing, const view::PictureFrame& frame, const QPoint& shift)
{
    QImage moved = blankPicture(frame);
    QPainter painter(&moved);
    painter.drawImage(shift, m_picture);
    painter.setRenderHint(QPainter::Antialiasing);
    QRegion uncovered(moved.rect());
    uncovered -= QRect(shift, m_picture.size());
    painter.setClipRegion(uncovered);
    try {
        view::paintScene(painter, *drawing.scene, frame, kBackground, uncovered, {drawing.index.get(), true, nullptr, drawing.fills.get()});
    } catch (...) {
        emit failed(std::current_exception());
    }
    painter.end();
    m_picture = std::move(moved);
}

void DrawingPicture::preview(const PublishedDrawing& drawing, const view::PictureFrame& frame)
{
    QImage next = blankPicture(frame);
    const bool same = m_scene == drawing.scene.get() && !m_picture.isNull();
    // Where the corners of the picture shown go in the new view.
    const double zoom = same ? frame.scale() / m_frame.scale() : 1;
    const QRectF target(frame.x(m_frame.worldX(0)), frame.y(m_frame.worldY(0)), m_picture.width() * zoom,
                        m_picture.height() * zoom);
    // What the picture shown does not cover (all of another drawing) is
    // sketched.
    if (drawing.index && !(same && target.contains(QRectF(next.rect()))))
        sketch(next, *drawing.index, frame);
    if (same) {
        QPainter painter(&next);
        painter.drawImage(target, m_picture);
    }
    m_picture = std::move(next);
    m_scene = drawing.scene.get();
    m_frame = frame;
    m_finished = false;
}

void DrawingPicture::startPainting(const PublishedDrawing& drawing, const view::PictureFrame& frame)
{
    m_painting = std::make_unique<Painting>();
    Painting* painting = m_painting.get();
    painting->serial = ++m_paintings;
    painting->thread = std::thread([this, painting, scene = drawing.scene, index = drawing.index,
                                    fills = drawing.fills, frame] {
        QImage image;
        std::exception_ptr failure;
        try {
            image = blankPicture(frame);
            view::paintScene(image, *scene, frame, kBackground, bands(), {index.get(), true, &painting->stop, fills.get()});
        } catch (...) {
            failure = std::current_exception();
        }
        if (painting->stop.load())
            return;
        QMetaObject::invokeMethod(
            this,
            [this, serial = painting->serial, image = std::move(image), failure] { land(serial, image, failure); },
            Qt::QueuedConnection);
    });
}

void DrawingPicture::stopPainting()
{
    if (!m_painting)
        return;
    m_painting->stop = true;
    m_painting->thread.join();
    m_painting.reset();
}

void DrawingPicture::land(unsigned serial, QImage image, std::exception_ptr failure)
{
    if (!m_painting || m_painting->serial != serial)
        return;
    m_painting->thread.join();
    m_painting.reset();
    m_finished = true;
    if (failure) {
        m_picture = blankPicture(m_frame);
        emit failed(failure);
    } else {
        m_picture = std::move(image);
    }
    emit refined();
}

}  // namespace kaldo::ui
