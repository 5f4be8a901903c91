// A large drawing in the window: the canvas shows a preview at once and
// paints the picture on a thread of its own, while the command line takes
// what is typed; the picture that lands is the one painting the drawing
// whole gives, after opening and after a wheel step alike.
#include "WindowFixture.h"

#include "kaldo/ui/ViewGeometry.h"
#include "kaldo/view/PngExport.h"
#include "kaldo/view/SceneIndex.h"

#include <QLineEdit>
#include <QTest>
#include <QWheelEvent>

namespace {

// A grid of short lines of two colours, more than the canvas paints at once.
std::shared_ptr<const kaldo::view::Scene> gridOfLines()
{
    auto scene = std::make_shared<kaldo::view::Scene>();
    const int pens[] = {scene->pen({}), scene->pen({kaldo::view::DrawColor::fixed(0xFF4000)})};
    const int side = 400;
    for (int i = 0; i < side * side; ++i) {
        const double x = (i % side) * 10.0, y = (i / side) * 10.0;
        scene->addLine({x, y}, {x + 7, y + 3 + (i % 7)}, pens[i % 2]);
    }
    return scene;
}

// The canvas's drawing painted whole in its current view, as the canvas
// paints it.
QImage paintedWhole(const kaldo::ui::Canvas& canvas, const kaldo::ui::PublishedDrawing& drawing)
{
    const kaldo::view::PictureFrame frame = kaldo::ui::frameOf(canvas.placement());
    QImage image(frame.width(), frame.height(), QImage::Format_RGB32);
    image.fill(QColor::fromRgb(QRgb(0xFF000000u | kaldo::view::backgroundRgb(kaldo::view::windowBackground(true)))));
    kaldo::view::paintScene(image, *drawing.scene, frame, kaldo::view::windowBackground(true), 2,
                            {drawing.index.get(), true});
    return image;
}

QImage grabbed(kaldo::ui::Canvas& canvas)
{
    return canvas.grab().toImage().convertToFormat(QImage::Format_RGB32);
}

}  // namespace

using LargeDrawing = WindowFixture;

TEST_F(LargeDrawing, ShowsAPreviewAtOnceTakesTypingAndLandsThePictureOfTheWholeDrawing)
{
    kaldo::ui::PublishedDrawing drawing;
    drawing.scene = gridOfLines();
    drawing.index = std::make_shared<const kaldo::view::SceneIndex>(*drawing.scene);
    drawing.snaps = std::make_shared<const kaldo::ui::SnapGeometry>(drawing.scene, drawing.index);
    drawing.serial = window().drawing().serial + 1;
    ASSERT_GT(drawing.scene->polylines().size(), kaldo::ui::DrawingPicture::kPaintedAtOnce);
    canvas().showDrawing(drawing);

    // The first frame comes at once, with a preview: its picture is still
    // being painted, and only the event loop can bring it.
    const QImage preview = grabbed(canvas());
    EXPECT_TRUE(canvas().refining());
    const QImage whole = paintedWhole(canvas(), drawing);
    EXPECT_NE(preview, whole);

    // The command line takes keys while the picture is painted.
    QLineEdit& input = *window().commandLine()->input();
    input.setFocus();
    QTest::keyClicks(&input, "LINE");
    EXPECT_EQ(input.text(), "LINE");
    ASSERT_TRUE(QTest::qWaitFor([&] { return !canvas().refining(); }, kWaitMs));
    EXPECT_EQ(grabbed(canvas()), whole);

    // A wheel step shows the picture scaled at once, then the new view's.
    const QPointF at(canvas().width() / 3.0, canvas().height() / 2.0);
    QWheelEvent wheel(at, canvas().mapToGlobal(at), {}, {0, 120}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase,
                      false);
    QApplication::sendEvent(&canvas(), &wheel);
    const QImage scaled = grabbed(canvas());
    EXPECT_TRUE(canvas().refining());
    const QImage zoomed = paintedWhole(canvas(), drawing);
    EXPECT_NE(scaled, zoomed);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !canvas().refining(); }, kWaitMs));
    EXPECT_EQ(grabbed(canvas()), zoomed);

    // A pan by whole pixels of the finished picture paints only what it
    // uncovers, at once, and comes out as painting the view whole.
    QTest::mousePress(&canvas(), Qt::MiddleButton, {}, QPoint(200, 200));
    QMouseEvent move(QEvent::MouseMove, QPointF(237, 181), canvas().mapToGlobal(QPointF(237, 181)), Qt::NoButton,
                     Qt::MiddleButton, Qt::NoModifier);
    QApplication::sendEvent(&canvas(), &move);
    QTest::mouseRelease(&canvas(), Qt::MiddleButton, {}, QPoint(237, 181));
    QEvent leave(QEvent::Leave);  // no crosshair over the picture
    QApplication::sendEvent(&canvas(), &leave);
    const QImage panned = grabbed(canvas());
    EXPECT_FALSE(canvas().refining());
    EXPECT_EQ(panned, paintedWhole(canvas(), drawing));
    input.clear();
}
