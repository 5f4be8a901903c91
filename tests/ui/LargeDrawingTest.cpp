// A large drawing in the window: its scene is built, and the canvas paints
// the picture, on threads of their own, while the command line takes and
// runs commands. The canvas shows a sketch at once; the picture that lands
// is the one painting the drawing whole gives, after opening, after a
// wheel step and after a middle-button pan alike, with a known line where
// the view places it.
#include "WindowFixture.h"

#include "kaldo/dxf/DxfFile.h"
#include "kaldo/ui/ViewGeometry.h"
#include "kaldo/view/DrawingRenderer.h"
#include "kaldo/view/PngExport.h"

#include <QLabel>
#include <QLineEdit>
#include <QTest>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <string>

namespace {

constexpr QRgb kMarkRgb = 0x00FF00;
// The start of the green line, and how far along it the line goes.
const kaldo::view::Point2 kMarked{0, 2005};
constexpr double kMarkedLength = 4000;

// A grid of short lines of two colours, more than the canvas paints at once,
// with a long green line along the middle, where three rows are left out.
std::shared_ptr<const kaldo::view::Scene> gridOfLines()
{
    auto scene = std::make_shared<kaldo::view::Scene>();
    const int pens[] = {scene->pen({}), scene->pen({kaldo::view::DrawColor::fixed(0xFF4000)})};
    const int side = 400;
    for (int i = 0; i < side * side; ++i) {
        const double x = (i % side) * 10.0, y = (i / side) * 10.0;
        if (std::abs(y - kMarked.y) > 20)
            scene->addLine({x, y}, {x + 7, y + 3 + (i % 7)}, pens[i % 2]);
    }
    scene->addLine(kMarked, {kMarked.x + kMarkedLength, kMarked.y}, scene->pen({kaldo::view::DrawColor::fixed(kMarkRgb)}));
    return scene;
}

// Whether the pixels at the middle of the green line, where the canvas's view
// places it, show it (a pixel above or below, as antialiasing shares it).
bool showsMarkedLine(const QImage& image, const kaldo::ui::Canvas& canvas)
{
    const QPoint at =
        kaldo::ui::pixelAt(canvas.placement(), {kMarked.x + kMarkedLength / 2, kMarked.y}).toPoint();
    int green = 0;
    for (const int dy : {-1, 0, 1}) {
        const QPoint pixel = at + QPoint(0, dy);
        if (image.rect().contains(pixel) && qRed(image.pixel(pixel)) < 80 && qBlue(image.pixel(pixel)) < 80)
            green += qGreen(image.pixel(pixel));
    }
    return green >= 200;
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

// A drawing file of lines in a fan of colours, many more than the scene's
// builder reads between two looks at whether it must pause or stop.
std::string writeLines(const std::string& path, int count)
{
    std::ofstream out(path);
    out << "  0\nSECTION\n  2\nENTITIES\n";
    for (int i = 0; i < count; ++i)
        out << "  0\nLINE\n  8\n0\n 62\n" << 1 + i % 7 << "\n 10\n" << i % 100 * 3 << "\n 20\n" << i / 100 * 3
            << "\n 11\n" << i % 100 * 3 + 2 << "\n 21\n" << i / 100 * 3 + 1 + i % 3 << "\n";
    out << "  0\nENDSEC\n  0\nEOF\n";
    return path;
}

}  // namespace

using LargeDrawing = WindowFixture;

TEST_F(LargeDrawing, ShowsAPreviewAtOnceTakesTypingAndLandsThePictureOfTheWholeDrawing)
{
    kaldo::ui::PublishedDrawing drawing = kaldo::ui::publishedScene(gridOfLines());
    drawing.serial = window().drawing().serial + 1;
    ASSERT_GT(drawing.scene->polylines().size(), kaldo::ui::DrawingPicture::kPaintedAtOnce);
    canvas().showDrawing(drawing);

    // The first frame comes at once, with a sketch of where things are:
    // its picture is still being painted, and only the event loop can
    // bring it.
    QEvent leave(QEvent::Leave);  // no crosshair over the picture
    QApplication::sendEvent(&canvas(), &leave);
    const QImage preview = grabbed(canvas());
    EXPECT_TRUE(canvas().refining());
    const QImage whole = paintedWhole(canvas(), drawing);
    EXPECT_NE(preview, whole);
    const QPoint gridMiddle = kaldo::ui::pixelAt(canvas().placement(), {2000, 1000}).toPoint();
    EXPECT_NE(preview.pixel(gridMiddle), preview.pixel(2, 2));

    // The command line runs a command while the picture is painted.
    QLineEdit& input = *window().commandLine()->input();
    input.setFocus();
    QTest::keyClicks(&input, "LINE");
    EXPECT_EQ(input.text(), "LINE");
    input.clear();
    EXPECT_TRUE(canvas().refining());
    type("LINE");
    ASSERT_TRUE(waitForPrompt("Specify first point: ", Kind::Point));
    press(Qt::Key_Escape);
    ASSERT_TRUE(waitForPrompt("Command: ", Kind::Command));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !canvas().refining(); }, kWaitMs));
    EXPECT_EQ(grabbed(canvas()), whole);
    EXPECT_TRUE(showsMarkedLine(whole, canvas()));

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
    EXPECT_TRUE(showsMarkedLine(zoomed, canvas()));

    // A middle-button drag moves the drawing with the mouse.
    const auto drag = [&](const QPoint& from, const QPoint& to) {
        QTest::mousePress(&canvas(), Qt::MiddleButton, {}, from);
        QMouseEvent move(QEvent::MouseMove, to, canvas().mapToGlobal(QPointF(to)), Qt::NoButton, Qt::MiddleButton,
                         Qt::NoModifier);
        QApplication::sendEvent(&canvas(), &move);
        QTest::mouseRelease(&canvas(), Qt::MiddleButton, {}, to);
        QApplication::sendEvent(&canvas(), &leave);
    };
    // A pan by whole pixels of the finished picture paints only what it
    // uncovers, at once, and comes out as painting the view whole.
    const kaldo::ViewPlacement before = canvas().placement();
    drag({200, 200}, {237, 181});
    const QImage panned = grabbed(canvas());
    EXPECT_FALSE(canvas().refining());
    EXPECT_EQ(kaldo::ui::pixelAt(canvas().placement(), kMarked), kaldo::ui::pixelAt(before, kMarked) + QPointF(37, -19));
    EXPECT_EQ(panned, paintedWhole(canvas(), drawing));
    EXPECT_TRUE(showsMarkedLine(panned, canvas()));

    // A pan while the picture of a wheel step is painted: the painting of
    // the view left behind never lands, that of the view reached does.
    QApplication::sendEvent(&canvas(), &wheel);
    grabbed(canvas());
    EXPECT_TRUE(canvas().refining());
    drag({300, 200}, {260, 250});
    grabbed(canvas());
    EXPECT_TRUE(canvas().refining());
    ASSERT_TRUE(QTest::qWaitFor([&] { return !canvas().refining(); }, kWaitMs));
    const QImage landed = grabbed(canvas());
    EXPECT_EQ(landed, paintedWhole(canvas(), drawing));
    EXPECT_TRUE(showsMarkedLine(landed, canvas()));
}

// While the scene of an opened drawing is being built (held by the test
// after its first entities), the command line takes commands: one that
// changes nothing, and one that draws a line. The window shows the drawing
// empty (or, after a change, the scene it showed), with a note, until the
// scene lands; then the view fits it and the picture is the one of the
// drawing read and drawn at once, and the line drawn meanwhile is in the
// scene that follows.
TEST_F(LargeDrawing, TheCommandLineTakesCommandsWhileTheSceneIsBuiltAndThePictureLandsUnchanged)
{
    constexpr int kLines = 6000;
    const std::string path = writeLines(dir() + "/lines.dxf", kLines);
    const kaldo::ui::PublishedDrawing drawnAtOnce = kaldo::ui::publishedScene(std::make_shared<const kaldo::view::Scene>(
        kaldo::view::renderDrawing(*kaldo::dxf::readDxfFile(path).database)));
    ASSERT_EQ(drawnAtOnce.scene->polylines().size(), std::size_t(kLines));
    kaldo::ui::SceneBuilder& builder = runner().sceneBuilder();
    const QLabel* note = window().findChild<QLabel*>("sceneNote");
    ASSERT_NE(note, nullptr);
    EXPECT_FALSE(note->isVisible());
    ASSERT_TRUE(runTyped({"FILEDIA", "0"}));
    const kaldo::ui::PublishedDrawing before = window().drawing();
    builder.holdBuildsAfter(2 * kaldo::view::kEntitiesBetween);
    ASSERT_TRUE(runTyped({"OPEN", QString::fromStdString(path)}));
    ASSERT_TRUE(QTest::qWaitFor([&] { return builder.holding(); }, kWaitMs));
    // The drawing opened shows empty, with a note, until its scene lands.
    ASSERT_TRUE(QTest::qWaitFor([&] { return window().drawing().serial != before.serial; }, kWaitMs));
    EXPECT_TRUE(window().drawing().scene->polylines().empty());
    EXPECT_TRUE(window().drawing().building);
    EXPECT_TRUE(note->isVisible());

    // A command that changes nothing, taken while the build waits.
    type("LINE");
    ASSERT_TRUE(waitForPrompt("Specify first point: ", Kind::Point));
    press(Qt::Key_Escape);
    ASSERT_TRUE(waitForPrompt("Command: ", Kind::Command));
    ASSERT_TRUE(QTest::qWaitFor([&] { return builder.holding(); }, kWaitMs));
    EXPECT_TRUE(window().drawing().building);
    EXPECT_TRUE(window().drawing().scene->polylines().empty());

    builder.releaseHeldBuilds();
    ASSERT_TRUE(QTest::qWaitFor(
        [&] { return window().drawing().serial != before.serial && !window().drawing().building; }, kWaitMs));
    EXPECT_FALSE(note->isVisible());
    EXPECT_EQ(window().drawing().scene->polylines().size(), std::size_t(kLines));
    const kaldo::view::Bounds& bounds = drawnAtOnce.bounds;
    const QPointF low = kaldo::ui::pixelAt(canvas().placement(), {bounds.minX, bounds.minY});
    const QPointF high = kaldo::ui::pixelAt(canvas().placement(), {bounds.maxX, bounds.maxY});
    EXPECT_TRUE(canvas().rect().contains(low.toPoint()) && canvas().rect().contains(high.toPoint()));
    EXPECT_GT(std::max((high.x() - low.x()) / canvas().width(), (low.y() - high.y()) / canvas().height()), 0.8);
    QEvent leave(QEvent::Leave);  // no crosshair over the picture
    QApplication::sendEvent(&canvas(), &leave);
    EXPECT_EQ(grabbed(canvas()), paintedWhole(canvas(), drawnAtOnce));

    // A line drawn while the next scene waits is in the scene that lands.
    const kaldo::ui::PublishedDrawing opened = window().drawing();
    builder.holdBuildsAfter(2 * kaldo::view::kEntitiesBetween);
    ASSERT_TRUE(runTyped({"LINE", "0,0", "300,300", ""}));
    ASSERT_TRUE(QTest::qWaitFor([&] { return builder.holding(); }, kWaitMs));
    // The title tells of the change at once.
    ASSERT_TRUE(QTest::qWaitFor([&] { return window().drawing().modified; }, kWaitMs));
    EXPECT_EQ(window().drawing().scene, opened.scene);
    EXPECT_TRUE(window().drawing().building);
    EXPECT_TRUE(note->isVisible());
    builder.releaseHeldBuilds();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !window().drawing().building; }, kWaitMs));
    EXPECT_EQ(window().drawing().scene->polylines().size(), std::size_t(kLines + 1));
    EXPECT_FALSE(note->isVisible());
}
