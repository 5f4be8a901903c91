// The host's drawable previewer: shows entities that need not belong to the
// drawing (lines, arcs, multilines ...) in a control, fitted to it, on a
// background colour, drawn by the host's renderer. Made, used and destroyed
// on the GUI thread (inside a dialog's modal run).
#pragma once

#include <QList>
#include <QPointer>
#include <QWidget>

#include <cstdint>
#include <memory>

class KxDbDatabase;
class KxDbEntity;

// What a previewer draws.
using KxGiDrawable = KxDbEntity;
// The host's reference-counted vector, copied on write.
template <class T>
using KdVector = QList<T>;

struct KxGePoint2d {
    double x = 0;
    double y = 0;
    static const KxGePoint2d kOrigin;
};

class KaldGiDrawablePreviewer {
public:
    // Shows drawables in window (their layers, linetypes and styles are
    // looked up in database). The view is always fitted to the drawables:
    // the corner points and flags are accepted as callers pass them.
    KaldGiDrawablePreviewer(QWidget* window, KxDbDatabase* database, const KdVector<KxGiDrawable*>& drawables,
                            const KxGePoint2d& lowerLeft, const KxGePoint2d& upperRight, int flags);
    ~KaldGiDrawablePreviewer();
    KaldGiDrawablePreviewer(const KaldGiDrawablePreviewer&) = delete;
    KaldGiDrawablePreviewer& operator=(const KaldGiDrawablePreviewer&) = delete;

    // 0xRRGGBB.
    void setBackground(std::uint32_t rgb);
    // Draws the drawables again (after they changed) and repaints.
    void update();
    // Repaints what was drawn last.
    void invalidate(bool erase);
    // The control changed size.
    void onSize(int cx, int cy);
    // The area in square drawing units that one pixel of the view covers
    // (0 before anything was drawn).
    double unitSquarePerPixel() const;

private:
    class Canvas;
    Canvas* canvas() const;
    // A child of window: deleted with the previewer, or earlier with window.
    QPointer<QWidget> m_canvas;
};

// The background colour (0xRRGGBB) the drawing window shows behind model
// space or behind a layout; the document context and view may be null.
std::uint32_t getBKGColor(bool modelSpace, void* documentContext, void* view);
