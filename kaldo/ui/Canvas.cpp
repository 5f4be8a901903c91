#include "kaldo/ui/Canvas.h"

#include "kaldo/ui/ViewGeometry.h"
#include "kaldo/view/DrawingRenderer.h"
#include "kaldo/view/PngExport.h"

#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include <cmath>
#include <numbers>
#include <span>
#include <utility>

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
const QColor kWindow(80, 120, 255);
const QColor kCrossing(80, 200, 120);
const QColor kGrip(40, 90, 255);
// A button released this many pixels or more from where it was pressed
// ends a dragged selection window there.
constexpr double kDragPixels = 4;

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
    connect(&picture_, &DrawingPicture::refined, this, qOverload<>(&QWidget::update));
    connect(&picture_, &DrawingPicture::failed, this, &Canvas::reportFailure);
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
    aim();
    update();
}

void Canvas::place(const ViewPlacement& placement)
{
    placement_ = placement;
    aim();
    update();
    emit placementChanged(placement_);
}

void Canvas::showDrawing(const PublishedDrawing& drawing)
{
    // Fitted once for each drawing, when its scene is built.
    const bool another = !fittedSerial_ || drawing.serial != *fittedSerial_;
    drawing_ = drawing;
    aim();
    if (another && !drawing.building) {
        fittedSerial_ = drawing.serial;
        zoomExtents();
    }
    update();
}

void Canvas::showDragScene(std::shared_ptr<const view::Scene> scene)
{
    dragScene_ = std::move(scene);
    update();
}

void Canvas::showHighlight(std::shared_ptr<const view::Scene> scene,
                           std::shared_ptr<const std::vector<view::Point2>> grips)
{
    highlight_ = std::move(scene);
    grips_ = std::move(grips);
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
    // A drag released before the command line asked for the opposite
    // corner gives it now.
    if (input_.selectionWindow && releasedAt_)
        emit pointPicked(pointAt(*std::exchange(releasedAt_, std::nullopt)));
    releasedAt_.reset();
    aim();
    // A pick shows what it would take before the cursor moves.
    if (input_.kind == Kind::Entity && cursor_)
        emit cursorMoved(aim_);
    update();
}

void Canvas::zoomExtents()
{
    if (drawing_.scene)
        place(fitted(placement_, drawing_.bounds));
}

bool Canvas::wantsPoint() const
{
    return input_.kind == Kind::Point || input_.kind == Kind::Drag;
}

bool Canvas::picksObjects() const
{
    return input_.kind == Kind::Entity || input_.kind == Kind::Command;
}

view::Point2 Canvas::pointAt(const QPointF& pixel, std::optional<Snap>* snap) const
{
    const view::Point2 raw = worldAt(placement_, pixel);
    if (snap)
        snap->reset();
    if (!wantsPoint() || input_.selectionWindow)
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

QImage Canvas::drawingPicture()
{
    const qreal ratio = devicePixelRatioF();
    ViewPlacement scaled = placement_;
    scaled.unitsPerPixel /= ratio;
    scaled.widthPixels = int(width() * ratio);
    scaled.heightPixels = int(height() * ratio);
    QImage picture = picture_.picture(drawing_, frameOf(scaled));
    picture.setDevicePixelRatio(ratio);
    return picture;
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
    if (grips_ && input_.kind == Kind::Command) {
        // A grip is as large as the pick box that takes it.
        const double half = input_.pickbox;
        painter.setPen(Qt::NoPen);
        painter.setBrush(kGrip);
        for (const view::Point2& grip : *grips_) {
            const QPointF at = pixelAt(placement_, grip);
            painter.drawRect(QRectF(at.x() - half, at.y() - half, 2 * half, 2 * half));
        }
    }
    if (dragScene_ && input_.kind == Kind::Drag)
        view::paintScene(painter, *dragScene_, frameOf(placement_), kBackground, 0, height());
    if (!cursor_)
        return;
    const QPointF at = pixelAt(placement_, aim_);
    if (input_.selectionWindow && input_.hasBase) {
        // A window (to the right of its first corner) is drawn solid, a
        // crossing (to the left) dashed.
        const bool crossing = aim_.x < input_.base.x;
        const QColor& colour = crossing ? kCrossing : kWindow;
        painter.setPen(QPen(colour, 1, crossing ? Qt::DashLine : Qt::SolidLine));
        QColor fill = colour;
        fill.setAlpha(40);
        painter.setBrush(fill);
        painter.drawRect(QRectF(pixelAt(placement_, input_.base), at).normalized());
    } else if (input_.kind == Kind::Point && input_.hasBase) {
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
    // A press that picks objects may start a selection window, which its
    // release ends when the mouse moved.
    pressedAt_ = picksObjects() ? std::optional(event->position()) : std::nullopt;
    releasedAt_.reset();
    if (wantsPoint() || picksObjects())
        emit pointPicked(pointAt(event->position()), picksObjects() && event->modifiers().testFlag(Qt::ShiftModifier));
}

void Canvas::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::MiddleButton)
        panFrom_.reset();
    if (event->button() != Qt::LeftButton || !pressedAt_)
        return;
    const QPointF delta = event->position() - *std::exchange(pressedAt_, std::nullopt);
    if (std::hypot(delta.x(), delta.y()) < kDragPixels)
        return;
    if (input_.selectionWindow)
        emit pointPicked(pointAt(event->position()));
    else
        releasedAt_ = event->position();
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
