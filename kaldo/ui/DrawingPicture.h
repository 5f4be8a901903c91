// The picture of the drawing that the canvas copies into each frame, one
// per view. A drawing of few items is painted at once. A large one is
// painted on a thread of its own, so that the window and its command line
// keep answering: until that picture lands, the view shows a preview at
// once (the last picture moved and scaled into the new view, or, for
// another drawing, its items' boxes from the scene index). A pan by whole
// pixels moves a finished picture and paints only the strips it uncovers.
#pragma once

#include "kaldo/ui/CommandRunner.h"
#include "kaldo/view/Picture.h"

#include <QImage>
#include <QObject>

#include <atomic>
#include <exception>
#include <memory>
#include <thread>

namespace kaldo::ui {

class DrawingPicture : public QObject {
    Q_OBJECT
public:
    explicit DrawingPicture(QObject* parent = nullptr);
    // Stops a painting under way and waits for its thread.
    ~DrawingPicture() override;

    // The picture of drawing in frame (its pixels, y downwards), painted
    // now or, for a large drawing, a preview while its painting runs.
    const QImage& picture(const PublishedDrawing& drawing, const view::PictureFrame& frame);
    // Whether the picture shown is a preview whose painting still runs.
    bool refining() const { return m_painting != nullptr; }

    // Drawings of up to this many items (polylines, arcs, fills and
    // instances) are painted at once.
    static constexpr std::size_t kPaintedAtOnce = 50000;

signals:
    // A painting landed: the picture changed.
    void refined();
    // Painting stopped (memory ran out); the picture stays as it was.
    void failed(std::exception_ptr failure);

private:
    struct Painting;

    bool shows(const PublishedDrawing& drawing, const view::PictureFrame& frame) const;
    // Paints the whole picture now.
    void paintNow(const PublishedDrawing& drawing, const view::PictureFrame& frame);
    // Moves the picture by whole pixels and paints the strips uncovered.
    void scroll(const PublishedDrawing& drawing, const view::PictureFrame& frame, const QPoint& shift);
    // The picture shown moved and scaled into frame, or the drawing's
    // sketch when it shows another drawing.
    void preview(const PublishedDrawing& drawing, const view::PictureFrame& frame);
    void startPainting(const PublishedDrawing& drawing, const view::PictureFrame& frame);
    void stopPainting();
    // Takes the picture of the painting of serial, when it is still wanted.
    void land(unsigned serial, QImage image, std::exception_ptr failure);

    QImage m_picture;
    // What m_picture shows: the scene in a frame, finished or a preview.
    const view::Scene* m_scene = nullptr;
    view::PictureFrame m_frame{0, 0, 1, {}};
    bool m_finished = false;
    std::unique_ptr<Painting> m_painting;
    unsigned m_paintings = 0;  // serials given
};

}  // namespace kaldo::ui
