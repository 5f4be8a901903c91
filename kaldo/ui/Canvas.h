// The drawing canvas: shows the published drawing as the renderer draws
// it, with the drag's entity, highlights, the entity a pick would take, the
// crosshair, the pick box and the snap marker on top. The drawing is painted once per view into a
// picture that each frame only copies, so that a frame costs the same for
// any drawing; a pan moves the picture and paints what it uncovers, and a
// large drawing is painted on a thread of its own behind a preview
// (DrawingPicture). Middle drag pans, the wheel zooms at the cursor, a middle
// double click shows everything. Left clicks give points: snapped and
// ortho-constrained where the command line asks for a point. While an
// entity pick waits, the cursor's motion goes to the command thread, which
// answers with the entity under it. Where it picks objects (and at the
// command prompt, selecting for the next command), a click on empty ground
// starts a selection window, drawn solid to the right (window) and dashed
// to the left (crossing), which a second click or the release of a drag
// ends; with Shift held what the click or window takes leaves the
// selection. At the command prompt the selected entities show their grips
// (stretch points); a click on one drags it (the command thread decides).
#pragma once

#include "kaldo/ed/View.h"
#include "kaldo/ui/CommandRunner.h"
#include "kaldo/ui/DrawingPicture.h"
#include "kaldo/view/Picture.h"

#include <QImage>
#include <QWidget>

#include <exception>
#include <memory>
#include <optional>

namespace kaldo::ui {

class Canvas : public QWidget {
    Q_OBJECT
public:
    explicit Canvas(QWidget* parent = nullptr);

    const ViewPlacement& placement() const { return placement_; }
    // A view placed by a command: taken as it is, not announced back.
    void setPlacement(const ViewPlacement& placement);
    void showDrawing(const PublishedDrawing& drawing);
    void showDragScene(std::shared_ptr<const view::Scene> scene);
    // The highlighted entities; their grips show at the command prompt.
    void showHighlight(std::shared_ptr<const view::Scene> scene,
                       std::shared_ptr<const std::vector<view::Point2>> grips);
    // The entity an entity pick would take at the cursor (null for none).
    void showHover(std::shared_ptr<const view::Scene> scene);
    void setInputState(const InputState& state);
    // Shows the whole drawing.
    void zoomExtents();
    // Whether the drawing shows as a preview while its picture is painted.
    bool refining() const { return picture_.refining(); }

    bool snapsOn() const { return snapsOn_; }
    void setSnapsOn(bool on) { snapsOn_ = on; }
    bool orthoOn() const { return orthoOn_; }
    void setOrthoOn(bool on) { orthoOn_ = on; }

    // The drawing point a click at pixel gives under the current request
    // (snapped, constrained), and the snap that placed it if any.
    view::Point2 pointAt(const QPointF& pixel, std::optional<Snap>* snap = nullptr) const;

signals:
    // A click's point; removing when it picks objects with Shift held,
    // taking them out of the selection.
    void pointPicked(const kaldo::view::Point2& world, bool removing = false);
    void cursorMoved(const kaldo::view::Point2& world);
    // The cursor's drawing point as it is, for the status bar.
    void cursorAt(const kaldo::view::Point2& world);
    void placementChanged(const kaldo::ViewPlacement& placement);
    // Painting stopped (memory ran out): said once for each scene.
    void paintFailed(const QString& text);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    void place(const ViewPlacement& placement);
    // The drawing's picture for the current view (a preview while a large
    // drawing is painted).
    QImage drawingPicture();
    void reportFailure(const std::exception_ptr& failure);
    bool wantsPoint() const;
    // Whether a click picks objects (or starts a selection window): at
    // "Select objects:" and at the command prompt, which selects for the
    // next command.
    bool picksObjects() const;
    void paintOverlays(QPainter& painter);
    // Works out where the cursor aims (snapped, constrained) after it or
    // what it aims at changed.
    void aim();

    ViewPlacement placement_;
    PublishedDrawing drawing_;
    std::optional<unsigned> fittedSerial_;  // the drawing last fitted
    DrawingPicture picture_;
    const view::Scene* failedScene_ = nullptr;  // the scene whose failure was said
    std::shared_ptr<const view::Scene> dragScene_;
    std::shared_ptr<const view::Scene> highlight_;
    std::shared_ptr<const std::vector<view::Point2>> grips_;
    std::shared_ptr<const view::Scene> hover_;
    InputState input_;
    bool snapsOn_ = true;
    bool orthoOn_ = false;
    std::optional<QPointF> cursor_;
    view::Point2 aim_;
    std::optional<Snap> aimSnap_;
    std::optional<QPointF> panFrom_;
    std::optional<QPointF> pressedAt_;   // a left press that picked objects
    std::optional<QPointF> releasedAt_;  // its release, a drag away
};

}  // namespace kaldo::ui
