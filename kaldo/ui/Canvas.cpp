#include "kaldo/ui/Canvas.h"

#include "kaldo/ui/ViewGeometry.h"
#include "kaldo/view/DrawingRenderer.h"
#include "kaldo/view/PngExport.h"

#include <QMouseEvent>
#include <QPainter>
#include <QRegion>
#include <QWheelEvent>

#include <cmath>
#include <numbers>
#include <span>
#include <thread>

namespace kaldo::ui {

namespace {

// The window draws model space.
constexpr view::Background kBackground = view::windowBackground(true);
// Half the side of the snap aperture and of the snap marker, in pixels.
constexpr double kSnapAperture = 10;
constexpr double kMarker = 6;
// One wheel step (120 eighths of a degree) zooms by this factor.
constexpr double kWheelZoom = 1.25;

const QColor kHighlight(80, 160, 255);
const QColor kHover(150, 220, 255);
const QColor kCursor(220, 220, 220);
const QColor kSnapMark(255, 200, 0);

using Kind = Editor::InputRequest::Kind;

// Strokes every line and arc of scene with one pen (highlights).
void strokeScene(QPainter& painter, const view::Scene& scene, const ViewPlacement& placement)
{
    scene.visitPolylines([&](int, bool closed, std::span<const view::Point2> polyline) {
        QPolygonF points;
        for (const view::Point2& p : polyline)
            points << pixelAt(placement, p);
        if (closed)
            painter.drawPolygon(points);
        else
            painter.drawPolyline(points);
    });
    for (const view::Arc& arc : scene.arcs()) {
        const QPointF centre = pixelAt(placement, arc.centre);
        const double radius = arc.radius / placement.unitsPerPixel;
        const QRectF box(centre.x() - radius, centre.y() - radius, 2 * radius, 2 * radius);
        const double toSixteenths = 16 * 180 / std::numbers::pi;
        painter.drawArc(box, int(std::lround(arc.start * toSixteenths)), int(std::lround(arc.sweep * toSixteenths)));
    }
}

void drawSnapMarker(QPainter& painter, const QPointF& at, SnapKind kind)
{
    painter.setPen(QPen(kSnapMark, 2));
    painter.setBrush(Qt::NoBrush);
    const double m = kMarker;
    switch (kind) {
    case SnapKind::Endpoint: painter.drawRect(QRectF(at.x() - m, at.y() - m, 2 * m, 2 * m)); break;
    case SnapKind::Midpoint:
        painter.drawPolygon(QPolygonF({{at.x(), at.y() - m}, {at.x() + m, at.y() + m}, {at.x() - m, at.y() + m}}));
        break;
    case SnapKind::Intersection:
        painter.drawLine(QPointF(at.x() - m, at.y() - m), QPointF(at.x() + m, at.y() + m));
        painter.drawLine(QPointF(at.x() - m, at.y() + m), QPointF(at.x() + m, at.y() - m));
        break;
    case SnapKind::Perpendicular:
        painter.drawPolyline(QPolygonF({{at.x() - m, at.y() - m}, {at.x() - m, at.y() + m}, {at.x() + m, at.y() + m}}));
        painter.drawPolyline(QPolygonF({{at.x() - m, at.y()}, {at.x(), at.y()}, {at.x(), at.y() + m}}));
        break;
    case SnapKind::Nearest:
        painter.drawPolygon(QPolygonF({{at.x() - m, at.y() - m}, {at.x() + m, at.y() - m}, {at.x() - m, at.y() + m},
                                       {at.x() + m, at.y() + m}}));
        break;
    }
}

}  // namespace

Canvas::Canvas(QWidget* parent) : QWidget(parent)
{
    setMouseTracking(true);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setCursor(Qt::BlankCursor);
    setMinimumSize(200, 150);
}

void Canvas::setPlacement(const ViewPlacement& placement)
{
    placement_ = placement;
    placement_.widthPixels = width();
    placement_.heightPixels = height();
    pictureValid_ = false;
    aim();
    update();
}

void Canvas::place(const ViewPlacement& placement)
{
    placement_ = placement;
    pictureValid_ = false;
    aim();
    update();
    emit placementChanged(placement_);
}

void Canvas::showDrawing(const PublishedDrawing& drawing)
{
    const bool another = !fittedOnce_ || drawing.serial != drawing_.serial;
    if (drawing.scene != drawing_.scene)
        pictureValid_ = false;
    drawing_ = drawing;
    aim();
    if (another) {
        fittedOnce_ = true;
        zoomExtents();
    }
    update();
}

void Canvas::showDragScene(std::shared_ptr<const view::Scene> scene)
{
    dragScene_ = std::move(scene);
    update();
}

void Canvas::showHighlight(std::shared_ptr<const view::Scene> scene)
{
    highlight_ = std::move(scene);
    update();
}

void Canvas::showHover(std::shared_ptr<const view::Scene> scene)
{
    hover_ = std::move(scene);
    update();
}

void Canvas::setInputState(const InputState& state)
{
    input_ = state;
    aim();
    // A pick shows what it would take before the cursor moves.
    if (input_.kind == Kind::Entity && cursor_)
        emit cursorMoved(aim_);
    update();
}

void Canvas::zoomExtents()
{
    if (drawing_.scene)
        place(fitted(placement_, drawing_.scene->bounds()));
}

bool Canvas::wantsPoint() const
{
    return input_.kind == Kind::Point || input_.kind == Kind::Drag;
}

view::Point2 Canvas::pointAt(const QPointF& pixel, std::optional<Snap>* snap) const
{
    const view::Point2 raw = worldAt(placement_, pixel);
    if (snap)
        snap->reset();
    if (!wantsPoint())
        return raw;
    if (snapsOn_ && drawing_.snaps) {
        const auto found =
            drawing_.snaps->find(raw, kSnapAperture * placement_.unitsPerPixel, input_.hasBase ? &input_.base : nullptr);
        if (found) {
            if (snap)
                *snap = found;
            return found->point;
        }
    }
    if (orthoOn_ && input_.hasBase) {
        // The larger of the moves along the user X and Y axes is kept.
        const double dx = raw.x - input_.base.x;
        const double dy = raw.y - input_.base.y;
        const double alongX = dx * input_.ucsX.x + dy * input_.ucsX.y;
        const double alongY = dx * input_.ucsY.x + dy * input_.ucsY.y;
        const KxGeVector3d& axis = std::abs(alongX) >= std::abs(alongY) ? input_.ucsX : input_.ucsY;
        const double along = std::abs(alongX) >= std::abs(alongY) ? alongX : alongY;
        return {input_.base.x + axis.x * along, input_.base.y + axis.y * along};
    }
    return raw;
}

const QImage& Canvas::drawingPicture()
{
    const qreal ratio = devicePixelRatioF();
    const QSize pixels(int(width() * ratio), int(height() * ratio));
    if (pictureValid_ && picture_.size() == pixels)
        return picture_;
    const QColor background = QColor::fromRgb(QRgb(0xFF000000u | view::backgroundRgb(kBackground)));
    ViewPlacement scaled = placement_;
    scaled.unitsPerPixel /= ratio;
    scaled.widthPixels = pixels.width();
    scaled.heightPixels = pixels.height();
    const view::PictureFrame frame = frameOf(scaled);
    // A pan by whole pixels moves the picture and paints the strips it
    // uncovers only.
    const double shiftX = (pictureFor_.centre.x - placement_.centre.x) / scaled.unitsPerPixel;
    const double shiftY = (placement_.centre.y - pictureFor_.centre.y) / scaled.unitsPerPixel;
    const bool scroll = picture_.size() == pixels && pictureScene_ == drawing_.scene.get() && drawing_.scene
        && pictureFor_.unitsPerPixel == placement_.unitsPerPixel && std::abs(shiftX - std::round(shiftX)) < 1e-6
        && std::abs(shiftY - std::round(shiftY)) < 1e-6 && std::abs(shiftX) < pixels.width()
        && std::abs(shiftY) < pixels.height();
    try {
        paintPicture(pixels, background, frame, scroll ? std::optional<QPoint>(QPoint(int(std::lround(shiftX)),
                                                                                    int(std::lround(shiftY))))
                                                      : std::nullopt);
    } catch (...) {
        // The picture stays empty; why is said once for each scene.
        picture_ = QImage(pixels, QImage::Format_RGB32);
        picture_.fill(background);
        reportFailure(std::current_exception());
    }
    picture_.setDevicePixelRatio(ratio);
    pictureFor_ = placement_;
    pictureScene_ = drawing_.scene.get();
    pictureValid_ = true;
    return picture_;
}

void Canvas::paintPicture(const QSize& pixels, const QColor& background, const view::PictureFrame& frame,
                          const std::optional<QPoint>& shift)
{
    const view::PaintDetail detail{drawing_.index.get(), true};
    if (shift) {
        const int dx = shift->x();
        const int dy = shift->y();
        QImage moved(pixels, QImage::Format_RGB32);
        moved.fill(background);
        QPainter painter(&moved);
        painter.drawImage(dx, dy, picture_);
        painter.setRenderHint(QPainter::Antialiasing);
        QRegion uncovered(QRect(QPoint(0, 0), pixels));
        uncovered -= QRect(QPoint(dx, dy), pixels);
        painter.setClipRegion(uncovered);
        view::paintScene(painter, *drawing_.scene, frame, kBackground, uncovered, detail);
        painter.end();
        picture_ = std::move(moved);
    } else {
        if (picture_.size() != pixels)
            picture_ = QImage(pixels, QImage::Format_RGB32);
        picture_.fill(background);
        constexpr int kMostBands = 4;
        if (drawing_.scene)
            view::paintScene(picture_, *drawing_.scene, frame, kBackground,
                             std::clamp(int(std::thread::hardware_concurrency()), 1, kMostBands), detail);
    }
}

void Canvas::reportFailure(const std::exception_ptr& failure)
{
    if (failedScene_ == drawing_.scene.get())
        return;
    failedScene_ = drawing_.scene.get();
    emit paintFailed(QStringLiteral("The drawing cannot be painted: %1.")
                         .arg(QString::fromStdString(view::failureReason(failure))));
}

void Canvas::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.drawImage(QPointF(0, 0), drawingPicture());
    painter.setRenderHint(QPainter::Antialiasing);
    try {
        paintOverlays(painter);
    } catch (...) {
        reportFailure(std::current_exception());
    }
}

void Canvas::paintOverlays(QPainter& painter)
{
    if (highlight_) {
        QPen pen(kHighlight, 3);
        pen.setStyle(Qt::DashLine);
        painter.setPen(pen);
        painter.setBrush(Qt::NoBrush);
        strokeScene(painter, *highlight_, placement_);
    }
    if (hover_ && cursor_ && input_.kind == Kind::Entity) {
        painter.setPen(QPen(kHover, 2));
        painter.setBrush(Qt::NoBrush);
        strokeScene(painter, *hover_, placement_);
    }
    if (dragScene_ && input_.kind == Kind::Drag)
        view::paintScene(painter, *dragScene_, frameOf(placement_), kBackground, 0, height());
    if (!cursor_)
        return;
    const QPointF at = pixelAt(placement_, aim_);
    if (input_.kind == Kind::Point && input_.hasBase) {
        painter.setPen(QPen(kCursor, 1, Qt::DashLine));
        painter.setBrush(Qt::NoBrush);
        const QPointF base = pixelAt(placement_, input_.base);
        if (input_.corner)
            painter.drawRect(QRectF(base, at).normalized());
        else
            painter.drawLine(base, at);
    }
    painter.setPen(QPen(kCursor, 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawLine(QPointF(0, cursor_->y()), QPointF(width(), cursor_->y()));
    painter.drawLine(QPointF(cursor_->x(), 0), QPointF(cursor_->x(), height()));
    if (!wantsPoint()) {
        const double half = input_.pickbox;
        painter.drawRect(QRectF(cursor_->x() - half, cursor_->y() - half, 2 * half, 2 * half));
    }
    if (aimSnap_)
        drawSnapMarker(painter, at, aimSnap_->kind);
}

void Canvas::aim()
{
    if (cursor_)
        aim_ = pointAt(*cursor_, &aimSnap_);
}

void Canvas::resizeEvent(QResizeEvent*)
{
    ViewPlacement placement = placement_;
    placement.widthPixels = width();
    placement.heightPixels = height();
    place(placement);
}

void Canvas::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::MiddleButton) {
        panFrom_ = event->position();
        return;
    }
    if (event->button() != Qt::LeftButton)
        return;
    if (wantsPoint() || input_.kind == Kind::Entity)
        emit pointPicked(pointAt(event->position()));
}

void Canvas::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::MiddleButton)
        panFrom_.reset();
}

void Canvas::mouseMoveEvent(QMouseEvent* event)
{
    cursor_ = event->position();
    if (panFrom_ && (event->buttons() & Qt::MiddleButton)) {
        const QPointF delta = event->position() - *panFrom_;
        panFrom_ = event->position();
        place(panned(placement_, delta));
    }
    aim();
    emit cursorAt(worldAt(placement_, event->position()));
    if (input_.kind == Kind::Drag || input_.kind == Kind::Entity)
        emit cursorMoved(aim_);
    update();
}

void Canvas::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() == Qt::MiddleButton)
        zoomExtents();
    else
        mousePressEvent(event);
}

void Canvas::wheelEvent(QWheelEvent* event)
{
    const double steps = event->angleDelta().y() / 120.0;
    if (steps == 0)
        return;
    place(zoomedAt(placement_, event->position(), std::pow(kWheelZoom, steps)));
}

void Canvas::leaveEvent(QEvent*)
{
    cursor_.reset();
    aimSnap_.reset();
    update();
}

}  // namespace kaldo::ui
