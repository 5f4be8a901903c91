// The main window driven by mouse and keys as a user would: points by
// clicks with snaps, picks for the editing tools and what they would take,
// the command line's keys and text window, zoom, zoom window and pan, recent
// files and the progress window, the unsaved-changes question, drawings
// that would break the renderer, and the Plot dialog's preview.
#include "TreePaths.h"
#include "WindowFixture.h"

#include "FileText.h"

#include "../dxf/AllocationMeter.h"
#include "../scenarios/Gestures.h"
#include "kaldo/dlg/DialogItems.h"
#include "kaldo/ui/ViewGeometry.h"
#include "kaldo/util/Profile.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QDockWidget>
#include <QJsonArray>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QProgressBar>
#include <QProgressDialog>
#include <QPushButton>
#include <QRegularExpression>
#include <QTest>
#include <QTimer>
#include <QToolButton>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <fstream>
#include <functional>
#include <thread>

namespace {

constexpr double kTol = 1e-10;
const QRgb kBackground = qRgb(0x1E, 0x23, 0x29);

QJsonArray location(const QJsonObject& mline, int vertex)
{
    return mline["vertices"].toArray()[vertex].toObject()["location"].toArray();
}

// Whether any pixel within radius of at differs from the background.
bool drawnNear(const QImage& image, const QPoint& at, int radius)
{
    for (int y = at.y() - radius; y <= at.y() + radius; ++y)
        for (int x = at.x() - radius; x <= at.x() + radius; ++x)
            if (image.valid(x, y) && image.pixel(x, y) != kBackground)
                return true;
    return false;
}

// The largest difference of a colour channel between two pictures of the
// same size.
int largestDifference(const QImage& a, const QImage& b)
{
    int largest = a.size() == b.size() ? 0 : 255;
    for (int y = 0; y < std::min(a.height(), b.height()); ++y)
        for (int x = 0; x < std::min(a.width(), b.width()); ++x) {
            const QRgb p = a.pixel(x, y), q = b.pixel(x, y);
            largest = std::max({largest, std::abs(qRed(p) - qRed(q)), std::abs(qGreen(p) - qGreen(q)),
                                std::abs(qBlue(p) - qBlue(q))});
        }
    return largest;
}

// The lines a saved drawing holds.
qsizetype linesIn(const std::string& path)
{
    return QByteArray::fromStdString(fileText(path)).count("\nLINE\n");
}

// Pixels within radius of at whose colour passes test.
int pixelsNear(const QImage& image, const QPoint& at, int radius, const std::function<bool(const QColor&)>& test)
{
    int found = 0;
    for (int y = at.y() - radius; y <= at.y() + radius; ++y)
        for (int x = at.x() - radius; x <= at.x() + radius; ++x)
            found += image.valid(x, y) && test(QColor(image.pixel(x, y))) ? 1 : 0;
    return found;
}

}  // namespace

class Window : public WindowFixture {};

TEST_F(Window, MlineByClicksSnapsToAnEndpointDrawsItsRubberBandAndIsSaved)
{
    ASSERT_TRUE(runTyped({"LINE", "0,0", "100,0", ""}));
    ASSERT_TRUE(runTyped({"ZOOM", "E"}));
    ASSERT_TRUE(runTyped({"ZOOM", "0.4x"}));
    const double unitsPerPixel = canvas().placement().unitsPerPixel;

    type("MLINE");
    ASSERT_TRUE(waitForPrompt("Specify start point or [Justification/Scale/STyle]: ", Kind::Point));
    // A few pixels off the line's end: the endpoint snap takes its exact point.
    clickAt(pixelOf(100, 0) + QPoint(4, -3));
    ASSERT_TRUE(waitForPrompt("Next point :", Kind::Drag));
    clickAt(pixelOf(100, 30));
    ASSERT_TRUE(waitForPrompt("Specify next point or [Undo]:", Kind::Drag));

    // The rubber band follows the cursor from the last point.
    const QPoint halfway = pixelOf(80, 20);
    EXPECT_FALSE(drawnNear(canvas().grab().toImage(), halfway, 3));
    moveTo(pixelOf(60, 10));
    EXPECT_TRUE(QTest::qWaitFor([&] { return drawnNear(canvas().grab().toImage(), halfway, 3); }, kWaitMs));

    clickAt(pixelOf(60, 10));
    ASSERT_TRUE(waitForPrompt("Specify next point or [Close/Undo]: ", Kind::Drag));
    type("");
    ASSERT_TRUE(waitForPrompt("Command: ", Kind::Command));

    const QJsonArray mlines = savedAndRead("clicked.dxf")["mlines"].toArray();
    ASSERT_EQ(mlines.size(), 1);
    const QJsonObject mline = mlines[0].toObject();
    ASSERT_EQ(mline["vertices"].toArray().size(), 3);
    EXPECT_NEAR(location(mline, 0)[0].toDouble(), 100, kTol);
    EXPECT_NEAR(location(mline, 0)[1].toDouble(), 0, kTol);
    // Clicked points land within a pixel of where they were aimed.
    EXPECT_NEAR(location(mline, 1)[0].toDouble(), 100, unitsPerPixel);
    EXPECT_NEAR(location(mline, 1)[1].toDouble(), 30, unitsPerPixel);
    EXPECT_NEAR(location(mline, 2)[0].toDouble(), 60, unitsPerPixel);
    EXPECT_NEAR(location(mline, 2)[1].toDouble(), 10, unitsPerPixel);
}

TEST_F(Window, MultilinesPickedByClicksForTheClosedCrossAreHighlighted)
{
    ASSERT_TRUE(runTyped({"MLINE", "J", "Z", "S", "10", "0,0", "100,0", ""}));
    ASSERT_TRUE(runTyped({"MLINE", "50,-50", "50,50", ""}));
    ASSERT_TRUE(runTyped({"ZOOM", "E"}));

    type("-MLEDIT");
    type("CC");
    ASSERT_TRUE(waitForPrompt("Select first mline: ", Kind::Entity));
    clickAt(pixelOf(20, 5));
    ASSERT_TRUE(waitForPrompt("Select second mline: ", Kind::Entity));
    // The picked multiline is highlighted along its element line.
    EXPECT_TRUE(QTest::qWaitFor(
        [&] {
            const QImage image = canvas().grab().toImage();
            const QPoint from = pixelOf(25, 5);
            for (int x = from.x(); x < from.x() + 30; ++x)
                for (int dy = -2; dy <= 2; ++dy)
                    if (QColor(image.pixel(x, from.y() + dy)).blue() > 200
                        && QColor(image.pixel(x, from.y() + dy)).red() < 150)
                        return true;
            return false;
        },
        5000));
    clickAt(pixelOf(45, 30));
    ASSERT_TRUE(waitForPrompt("Select first mline or [Undo]: ", Kind::Entity));
    type("");
    ASSERT_TRUE(waitForPrompt("Command: ", Kind::Command));
    EXPECT_FALSE(transcript().contains("No object found"));

    const QJsonArray mlines = savedAndRead("crossed.dxf")["mlines"].toArray();
    ASSERT_EQ(mlines.size(), 2);
    // The first multiline opens between the second's element lines.
    const QJsonArray runs =
        mlines[0].toObject()["vertices"].toArray()[0].toObject()["element"].toArray()[0].toArray();
    ASSERT_EQ(runs.size(), 4);
    EXPECT_NEAR(runs[2].toDouble(), 45, kTol);
    EXPECT_NEAR(runs[3].toDouble(), 55, kTol);
}

// While a pick is asked for, the multiline a click would take shows under
// the cursor, by the pick's own rule: inside a wide wall, between its
// element lines, nothing does, and a click there says so. Clicked points are
// echoed as typed coordinates.
TEST_F(Window, PicksShowWhatAClickTakesAndSayWhenTheyMiss)
{
    ASSERT_TRUE(runTyped({"MLINE", "J", "Z", "S", "40", "0,0", "200,0", ""}));
    ASSERT_TRUE(runTyped({"ZOOM", "E"}));
    type("-MLEDIT");
    type("CC");
    ASSERT_TRUE(waitForPrompt("Select first mline: ", Kind::Entity));

    const auto hoverShown = [&] {
        const auto hover = [](const QColor& c) { return c.red() > 120 && c.green() > 190 && c.blue() > 235 && c.red() < 200; };
        return pixelsNear(canvas().grab().toImage(), pixelOf(60, 20), 3, hover) > 0;
    };
    EXPECT_FALSE(hoverShown());
    moveTo(pixelOf(100, 20));
    EXPECT_TRUE(QTest::qWaitFor(hoverShown, kWaitMs));
    moveTo(pixelOf(100, 0));
    EXPECT_TRUE(QTest::qWaitFor([&] { return !hoverShown(); }, kWaitMs));

    clickAt(pixelOf(100, 0));
    static const QRegularExpression missed(
        "Select first mline: -?[0-9]+\\.[0-9]{4},-?[0-9]+\\.[0-9]{4}\nNo object found\\.\nSelect first mline: $");
    EXPECT_TRUE(QTest::qWaitFor([&] { return missed.match(transcript()).hasMatch(); }, kWaitMs))
        << transcript().right(120).toStdString();
    clickAt(pixelOf(100, 20));
    ASSERT_TRUE(waitForPrompt("Select second mline: ", Kind::Entity));
    EXPECT_TRUE(QTest::qWaitFor(hoverShown, kWaitMs));
    press(Qt::Key_Escape);
    ASSERT_TRUE(waitForPrompt("Command: ", Kind::Command));
    EXPECT_TRUE(QTest::qWaitFor([&] { return !hoverShown(); }, kWaitMs));
}

// The opposite corner of Zoom Window drags the box it will show, not a
// line to the first corner.
TEST_F(Window, ZoomWindowDrawsTheBoxBeingDragged)
{
    type("ZOOM");
    type("W");
    ASSERT_TRUE(waitForPrompt("Specify first corner: ", Kind::Point));
    const QPoint first(200, 150);
    const QPoint opposite(400, 300);
    clickAt(first);
    ASSERT_TRUE(waitForPrompt("Specify opposite corner: ", Kind::Point));
    moveTo(opposite);
    // The box's left and top edges, away from the crosshair at the cursor.
    const auto lit = [](const QColor& c) { return c.rgb() != kBackground; };
    const auto edgeDrawn = [&] {
        const QImage image = canvas().grab().toImage();
        return pixelsNear(image, {first.x(), 225}, 1, lit) > 0 && pixelsNear(image, {300, first.y()}, 1, lit) > 0;
    };
    EXPECT_TRUE(QTest::qWaitFor(edgeDrawn, kWaitMs));
    const kaldo::view::Point2 a = kaldo::ui::worldAt(canvas().placement(), first);
    const kaldo::view::Point2 b = kaldo::ui::worldAt(canvas().placement(), opposite);
    clickAt(opposite);
    ASSERT_TRUE(waitForPrompt("Command: ", Kind::Command));
    EXPECT_NEAR(canvas().placement().centre.x, (a.x + b.x) / 2, std::abs(b.x - a.x) / 100);
    EXPECT_NEAR(canvas().placement().centre.y, (a.y + b.y) / 2, std::abs(b.y - a.y) / 100);
}

TEST_F(Window, DraggedWindowsSelectAndAPickBeforeMoveIsTakenByIt)
{
    ASSERT_TRUE(runTyped({"MLINE", "0,0", "40,0", ""}));
    ASSERT_TRUE(runTyped({"MLINE", "0,30", "40,30", ""}));
    ASSERT_TRUE(runTyped({"ZOOM", "E"}));
    ASSERT_TRUE(runTyped({"ZOOM", "0.5x"}));

    // Dragged from left to right: a window, holding the lower wall only.
    type("ERASE");
    ASSERT_TRUE(waitForPrompt("Select objects: ", Kind::Entity));
    QTest::mousePress(&canvas(), Qt::LeftButton, {}, pixelOf(-10, -10));
    ASSERT_TRUE(waitForPrompt("Specify opposite corner: ", Kind::Point));
    moveTo(pixelOf(50, 10));
    QTest::mouseRelease(&canvas(), Qt::LeftButton, {}, pixelOf(50, 10));
    ASSERT_TRUE(waitForPrompt("Select objects: ", Kind::Entity));
    EXPECT_TRUE(transcript().endsWith("\n1 found\nSelect objects: ")) << transcript().toStdString();

    // Dragged from right to left: a crossing, drawn dashed in its own
    // colour, taking both walls.
    QTest::mousePress(&canvas(), Qt::LeftButton, {}, pixelOf(20, 35));
    ASSERT_TRUE(waitForPrompt("Specify opposite corner: ", Kind::Point));
    moveTo(pixelOf(-5, -5));
    const auto crossingColour = [](const QColor& c) { return c.green() > 150 && c.red() < 150 && c.blue() < 180; };
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return pixelsNear(canvas().grab().toImage(), pixelOf(-5, 15), 8, crossingColour) > 0; }, kWaitMs));
    QTest::mouseRelease(&canvas(), Qt::LeftButton, {}, pixelOf(-5, -5));
    ASSERT_TRUE(waitForPrompt("Select objects: ", Kind::Entity));
    EXPECT_TRUE(transcript().endsWith("\n2 found (1 duplicate), 2 total\nSelect objects: "));
    // Shift+click takes the upper wall out again: ERASE erases the lower.
    clickAt(pixelOf(20, 30), Qt::ShiftModifier);
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return transcript().endsWith("\n1 found, 1 removed, 1 total\nSelect objects: "); }, kWaitMs))
        << transcript().toStdString();
    type("");
    ASSERT_TRUE(waitForPrompt("Command: ", Kind::Command));
    // (Away from the crosshair, which stands at the upper wall.)
    EXPECT_TRUE(QTest::qWaitFor([&] { return !drawnNear(canvas().grab().toImage(), pixelOf(30, 0), 4); }, kWaitMs));
    EXPECT_TRUE(drawnNear(canvas().grab().toImage(), pixelOf(30, 30), 4));
    ASSERT_TRUE(runTyped({"U"}));

    // Clicks at the command prompt select both walls for the next command,
    // Shift+click takes the lower one out; MOVE takes the upper without
    // asking.
    clickAt(pixelOf(20, 30));
    ASSERT_TRUE(waitForPrompt("Command: ", Kind::Command));
    clickAt(pixelOf(20, 0));
    ASSERT_TRUE(waitForPrompt("Command: ", Kind::Command));
    clickAt(pixelOf(20, 0), Qt::ShiftModifier);
    ASSERT_TRUE(waitForPrompt("Command: ", Kind::Command));
    QAction* move = menuAction("&Move");
    ASSERT_NE(move, nullptr);
    move->trigger();
    ASSERT_TRUE(waitForPrompt("Specify base point or [Displacement] <Displacement>: ", Kind::Point));
    EXPECT_TRUE(transcript().contains("Command: _MOVE\n1 found\n")) << transcript().right(200).toStdString();
    ASSERT_TRUE(runTyped({"0,0", "5,5"}));

    const QJsonArray mlines = savedAndRead("moved.dxf")["mlines"].toArray();
    ASSERT_EQ(mlines.size(), 2);
    EXPECT_NEAR(location(mlines[0].toObject(), 0)[1].toDouble(), 0, kTol);
    EXPECT_NEAR(location(mlines[1].toObject(), 0)[0].toDouble(), 5, kTol);
    EXPECT_NEAR(location(mlines[1].toObject(), 1)[1].toDouble(), 35, kTol);
}

// A multiline selected at the command prompt shows its vertices as grips;
// a click on one drags it with the multiline following, the next click puts
// it there (one step U takes back), and Esc takes the grips away.
TEST_F(Window, AGripDragMovesOneVertexOfASelectedMultiline)
{
    ASSERT_TRUE(runTyped({"MLINE", "0,0", "40,0", "40,30", ""}));
    ASSERT_TRUE(runTyped({"ZOOM", "E"}));
    ASSERT_TRUE(runTyped({"ZOOM", "0.5x"}));
    const double unitsPerPixel = canvas().placement().unitsPerPixel;
    const auto grip = [](const QColor& c) { return c.blue() > 200 && c.red() < 60 && c.green() < 120; };
    const auto gripShown = [&] { return pixelsNear(canvas().grab().toImage(), pixelOf(40, 0), 2, grip) > 0; };

    clickAt(pixelOf(20, 0));
    EXPECT_TRUE(QTest::qWaitFor(gripShown, kWaitMs));
    clickAt(pixelOf(40, 0));
    ASSERT_TRUE(waitForPrompt("Specify stretch point: ", Kind::Drag));
    // The multiline follows the cursor before the click.
    const auto lit = [](const QColor& c) { return c.rgb() != kBackground; };
    EXPECT_EQ(pixelsNear(canvas().grab().toImage(), pixelOf(50, 10), 2, lit), 0);
    moveTo(pixelOf(60, -10));
    EXPECT_TRUE(QTest::qWaitFor([&] { return pixelsNear(canvas().grab().toImage(), pixelOf(50, 10), 2, lit) > 0; },
                                kWaitMs));
    clickAt(pixelOf(60, -10));
    ASSERT_TRUE(waitForPrompt("Command: ", Kind::Command));
    press(Qt::Key_Escape);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !gripShown(); }, kWaitMs));

    const QJsonObject mline = savedAndRead("dragged.dxf")["mlines"].toArray()[0].toObject();
    EXPECT_NEAR(location(mline, 0)[0].toDouble(), 0, kTol);
    EXPECT_NEAR(location(mline, 1)[0].toDouble(), 60, unitsPerPixel);
    EXPECT_NEAR(location(mline, 1)[1].toDouble(), -10, unitsPerPixel);
    EXPECT_NEAR(location(mline, 2)[1].toDouble(), 30, kTol);

    ASSERT_TRUE(runTyped({"U"}));
    EXPECT_NEAR(location(savedAndRead("undone.dxf")["mlines"].toArray()[0].toObject(), 1)[0].toDouble(), 40, kTol);
}

TEST_F(Window, CommandLineKeysCancelRecallRepeatAndAnswer)
{
    QLineEdit* input = window().commandLine()->input();
    type("LINE");
    ASSERT_TRUE(waitForPrompt("Specify first point: ", Kind::Point));
    press(Qt::Key_Escape);
    ASSERT_TRUE(waitForPrompt("Command: ", Kind::Command));
    EXPECT_TRUE(transcript().contains("Specify first point: *Cancel*\n"));

    // Up recalls the line typed before; Down goes past it to an empty line.
    press(Qt::Key_Up);
    EXPECT_EQ(input->text(), "LINE");
    press(Qt::Key_Down);
    EXPECT_EQ(input->text(), "");
    press(Qt::Key_Up);
    press(Qt::Key_Return);
    ASSERT_TRUE(waitForPrompt("Specify first point: ", Kind::Point));
    press(Qt::Key_Escape);
    ASSERT_TRUE(waitForPrompt("Command: ", Kind::Command));

    // Enter at the command prompt repeats the last command; Space answers
    // like Enter.
    type("");
    ASSERT_TRUE(waitForPrompt("Specify first point: ", Kind::Point));
    QTest::keyClicks(input, "1,2 ");
    ASSERT_TRUE(waitForPrompt("Specify next point or [Undo]: ", Kind::Point));
    EXPECT_TRUE(transcript().endsWith("Specify first point: 1,2\nSpecify next point or [Undo]: "));
    // The prompt's keywords are buttons that answer with their word.
    QToolButton* undo = nullptr;
    for (QToolButton* button : window().commandLine()->findChildren<QToolButton*>())
        if (button->text() == "Undo")
            undo = button;
    ASSERT_NE(undo, nullptr);
    const QString before = transcript();
    undo->click();
    ASSERT_TRUE(QTest::qWaitFor([&] { return transcript().startsWith(before + "Undo\n"); }, kWaitMs));
    press(Qt::Key_Escape);
    ASSERT_TRUE(waitForPrompt("Command: ", Kind::Command));

    // F2 floats the command line as the larger text window and docks it
    // again; MLINE's style listing opens the text window itself.
    auto* dock = window().findChild<QDockWidget*>("commandLineDock");
    ASSERT_NE(dock, nullptr);
    press(Qt::Key_F2);
    EXPECT_TRUE(dock->isFloating());
    press(Qt::Key_F2);
    EXPECT_FALSE(dock->isFloating());
    // F1 lists the commands at the command prompt, and describes the
    // command that asks without ending it.
    press(Qt::Key_F1);
    ASSERT_TRUE(QTest::qWaitFor([&] { return transcript().contains("  MLINE"); }, kWaitMs));
    ASSERT_TRUE(waitForPrompt("Command: ", Kind::Command));
    EXPECT_TRUE(transcript().contains("  MOVE        Moves the selected objects by a displacement.\n"));
    type("MLINE");
    ASSERT_TRUE(waitForPrompt("Specify start point or [Justification/Scale/STyle]: ", Kind::Point));
    press(Qt::Key_F1);
    ASSERT_TRUE(QTest::qWaitFor([&] { return transcript().contains("\nMLINE: Draws a multiline"); }, kWaitMs)) << transcript().toStdString();
    ASSERT_TRUE(waitForPrompt("Specify start point or [Justification/Scale/STyle]: ", Kind::Point));
    type("ST");
    ASSERT_TRUE(waitForPrompt("Enter mline style name or [?]: ", Kind::Text));
    EXPECT_FALSE(dock->isFloating());
    type("?");
    ASSERT_TRUE(QTest::qWaitFor([&] { return dock->isFloating(); }, kWaitMs));
    EXPECT_TRUE(transcript().contains("\nSTANDARD"));
    // Escape ends the style option, then the command.
    press(Qt::Key_Escape);
    ASSERT_TRUE(waitForPrompt("Specify start point or [Justification/Scale/STyle]: ", Kind::Point));
    press(Qt::Key_Escape);
    ASSERT_TRUE(waitForPrompt("Command: ", Kind::Command));

    // With nothing typed, the undo and redo keys take back and restore whole
    // commands; with text typed they edit the line.
    ASSERT_TRUE(runTyped({"LINE", "0,0", "10,0", ""}));
    QTest::keySequence(input, QKeySequence::Undo);
    ASSERT_TRUE(QTest::qWaitFor([&] { return transcript().endsWith("LINE undone.\nCommand: "); }, kWaitMs));
    QTest::keySequence(input, QKeySequence::Redo);
    ASSERT_TRUE(QTest::qWaitFor([&] { return transcript().endsWith("LINE redone.\nCommand: "); }, kWaitMs));
    QTest::keyClicks(input, "ZOOM");
    QTest::keySequence(input, QKeySequence::Undo);
    EXPECT_NE(input->text(), "ZOOM");
    EXPECT_EQ(transcript().count("undone."), 1);
    input->clear();
}

TEST_F(Window, ZoomAtTheCursorKeepsItsPointPanFollowsTheMouseAndZoomPreviousGoesBack)
{
    ASSERT_TRUE(runTyped({"LINE", "-2000,-900", "2000,1000", "-2000,0", "2000,-60", ""}));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !window().drawing().scene->polylines().empty(); }, kWaitMs));
    canvas().grab();
    const kaldo::ViewPlacement start = canvas().placement();
    const QPointF cursor(200, 150);
    const kaldo::view::Point2 under = kaldo::ui::worldAt(start, cursor);
    QWheelEvent wheel(cursor, canvas().mapToGlobal(cursor), {}, {0, 240}, Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(&canvas(), &wheel);
    const kaldo::ViewPlacement zoomed = canvas().placement();
    EXPECT_NEAR(zoomed.unitsPerPixel, start.unitsPerPixel / (1.25 * 1.25), kTol);
    const kaldo::view::Point2 after = kaldo::ui::worldAt(zoomed, cursor);
    EXPECT_NEAR(after.x, under.x, kTol);
    EXPECT_NEAR(after.y, under.y, kTol);

    // A middle drag carries the point under the cursor along.
    canvas().grab();
    const QPointF to = cursor + QPointF(30, -20);
    const kaldo::view::Point2 grabbed = kaldo::ui::worldAt(zoomed, cursor);
    QMouseEvent press(QEvent::MouseButtonPress, cursor, canvas().mapToGlobal(cursor), Qt::MiddleButton,
                      Qt::MiddleButton, Qt::NoModifier);
    QApplication::sendEvent(&canvas(), &press);
    QMouseEvent move(QEvent::MouseMove, to, canvas().mapToGlobal(to), Qt::NoButton, Qt::MiddleButton, Qt::NoModifier);
    QApplication::sendEvent(&canvas(), &move);
    QMouseEvent release(QEvent::MouseButtonRelease, to, canvas().mapToGlobal(to), Qt::MiddleButton, Qt::NoButton,
                        Qt::NoModifier);
    QApplication::sendEvent(&canvas(), &release);
    const kaldo::view::Point2 carried = kaldo::ui::worldAt(canvas().placement(), to);
    EXPECT_NEAR(carried.x, grabbed.x, kTol);
    EXPECT_NEAR(carried.y, grabbed.y, kTol);
    // The pan moved the picture and painted the strips it uncovered: the
    // same picture as one painted whole.
    const QImage moved = canvas().grab().toImage();
    kaldo::ui::PublishedDrawing copy = window().drawing();
    copy.scene = std::make_shared<const kaldo::view::Scene>(*copy.scene);
    canvas().showDrawing(copy);
    // Long lines clipped at other edges may shade a pixel a few levels
    // differently; a strip left unpainted differs by far more.
    EXPECT_LE(largestDifference(canvas().grab().toImage(), moved), 8);

    // The command thread saw both views: ZOOM Previous goes back twice.
    ASSERT_TRUE(runTyped({"ZOOM", "P"}));
    EXPECT_NEAR(canvas().placement().centre.x, zoomed.centre.x, kTol);
    ASSERT_TRUE(runTyped({"ZOOM", "P"}));
    EXPECT_NEAR(canvas().placement().unitsPerPixel, start.unitsPerPixel, kTol);
    EXPECT_NEAR(canvas().placement().centre.x, start.centre.x, kTol);
    EXPECT_NEAR(canvas().placement().centre.y, start.centre.y, kTol);
}

// Closing the window, OPEN typed (once the file is chosen in the file
// dialog) and File > New ask in a message box whether to save the
// drawing's changes: Cancel keeps the drawing with its changes, No drops
// them, Yes saves them into the drawing's file first. A new drawing is
// empty and has no file.
TEST_F(Window, CloseOpenAndNewAskToSaveChangesInAMessageBox)
{
    const std::string path = dir() + "/kept.dxf";
    ASSERT_TRUE(runTyped({"LINE", "0,0", "10,0", ""}));
    ASSERT_TRUE(QTest::qWaitFor([&] { return window().drawing().modified; }, kWaitMs));
    EXPECT_TRUE(window().isWindowModified());
    answerMessageBoxSoon(QMessageBox::Cancel);
    window().close();
    QTest::qWait(200);
    EXPECT_TRUE(loopRunning());
    EXPECT_TRUE(window().isVisible());

    ASSERT_TRUE(saveAs(path));
    ASSERT_TRUE(runTyped({"FILEDIA", "1", "LINE", "0,5", "10,5", ""}));
    ASSERT_TRUE(QTest::qWaitFor([&] { return window().drawing().modified; }, kWaitMs));
    QAction* newDrawing = menuAction("&New");
    ASSERT_NE(newDrawing, nullptr);
    EXPECT_EQ(newDrawing->shortcut(), QKeySequence(QKeySequence::New));
    // Starts OPEN or New, answers the message box with button and returns
    // its question.
    const auto answering = [&](bool open, QMessageBox::StandardButton button) {
        QString asked;
        if (open)
            chooseInFileDialogSoon(QString::fromStdString(path));
        actOnDialogSoon<QMessageBox>([&asked, button](QMessageBox& box) {
            asked = box.text();
            QTest::mouseClick(box.button(button), Qt::LeftButton);
        });
        const qsizetype before = transcript().size();
        if (open)
            type("OPEN");
        else
            newDrawing->trigger();
        EXPECT_TRUE(QTest::qWaitFor(
            [&] { return transcript().indexOf("Command: ", before + 1) >= 0 && !asked.isEmpty(); }, kWaitMs));
        return asked;
    };
    const auto changed = [&](bool open, QMessageBox::StandardButton button) {
        const unsigned serial = window().drawing().serial;
        const QString asked = answering(open, button);
        EXPECT_TRUE(QTest::qWaitFor([&] { return window().drawing().serial != serial; }, kWaitMs));
        EXPECT_FALSE(window().drawing().modified);
        return asked;
    };
    EXPECT_EQ(answering(true, QMessageBox::Cancel), "Save changes to kept.dxf?");
    EXPECT_TRUE(transcript().endsWith("Open cancelled.\nCommand: ")) << transcript().toStdString();
    EXPECT_EQ(answering(false, QMessageBox::Cancel), "Save changes to kept.dxf?");
    EXPECT_TRUE(transcript().endsWith("New drawing cancelled.\nCommand: ")) << transcript().toStdString();
    EXPECT_TRUE(window().drawing().modified);

    EXPECT_EQ(changed(true, QMessageBox::No), "Save changes to kept.dxf?");
    EXPECT_TRUE(transcript().contains("Opened \"" + QString::fromStdString(path) + "\"."));
    EXPECT_EQ(linesIn(path), 1) << "the second line was not saved";
    ASSERT_TRUE(runTyped({"LINE", "0,5", "10,5", ""}));
    ASSERT_TRUE(QTest::qWaitFor([&] { return window().drawing().modified; }, kWaitMs));
    EXPECT_EQ(changed(false, QMessageBox::Yes), "Save changes to kept.dxf?");
    EXPECT_TRUE(window().drawing().path.isEmpty());
    EXPECT_EQ(window().windowTitle(), "Drawing1.dxf[*] - kaldo");
    EXPECT_EQ(linesIn(path), 2);

    ASSERT_TRUE(runTyped({"LINE", "0,0", "10,10", ""}));
    ASSERT_TRUE(QTest::qWaitFor([&] { return window().drawing().modified; }, kWaitMs));
    EXPECT_EQ(changed(false, QMessageBox::No), "Save changes to Drawing1.dxf?");
    const std::string empty = dir() + "/empty.dxf";
    ASSERT_TRUE(saveAs(empty));
    EXPECT_EQ(linesIn(empty), 0);

    // Yes on closing saves into the drawing's own file, then the window
    // closes; the profile keeps the file among the recent ones, and the
    // layout.
    ASSERT_TRUE(runTyped({"LINE", "0,5", "10,5", ""}));
    ASSERT_TRUE(QTest::qWaitFor([&] { return window().drawing().modified; }, kWaitMs));
    answerMessageBoxSoon(QMessageBox::Yes);
    window().close();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !loopRunning() && !window().isVisible(); }, kWaitMs));
    EXPECT_EQ(linesIn(empty), 1);
    const kaldo::Profile profile(dir() + "/kaldo.ini");
    EXPECT_EQ(profile.getString(L"Window", L"Recent1"), std::optional(std::filesystem::path(empty).wstring()));
    EXPECT_TRUE(profile.getBinary(L"Window", L"Geometry").has_value());
}

// Files opened or saved are listed latest first under File > Recent Files,
// and one is opened by clicking it there. Opening or saving that lasts
// longer than half a second shows a progress bar with Cancel; a held
// command thread makes the work last, and Cancel pressed while it is held
// stops the reader or writer at its first report. A cancelled opening
// keeps the drawing that was open, a cancelled save the file as it was.
TEST_F(Window, RecentFilesOpenFromTheMenuWithAProgressBarWhoseCancelKeepsDrawingAndFile)
{
    const QString first = QString::fromStdString(dir() + "/first.dxf");
    const QString second = QString::fromStdString(dir() + "/second.dxf");
    ASSERT_TRUE(runTyped({"LINE", "0,0", "10,0", ""}));
    ASSERT_TRUE(saveAs(first.toStdString()));
    ASSERT_TRUE(runTyped({"LINE", "0,5", "10,5", ""}));
    ASSERT_TRUE(saveAs(second.toStdString()));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !window().drawing().modified && window().recentFiles().size() == 2; }, kWaitMs));
    EXPECT_EQ(window().recentFiles(), QStringList({second, first}));

    QMenu* recent = nullptr;
    for (QMenu* menu : window().menuBar()->findChildren<QMenu*>())
        if (menu->title() == "Recent Files")
            recent = menu;
    ASSERT_NE(recent, nullptr);
    ASSERT_EQ(recent->actions().size(), 2);
    EXPECT_EQ(recent->actions()[0]->text(), "second.dxf");
    QAction* firstEntry = recent->actions()[1];
    EXPECT_EQ(firstEntry->text(), "first.dxf");

    std::atomic<bool> held = false;
    const auto hold = [&] {
        held = true;
        runner().post([&held] {
            while (held)
                std::this_thread::sleep_for(std::chrono::milliseconds(5));
        });
    };
    const auto openFirstFromTheMenu = [&] {
        answerMessageBoxSoon(QMessageBox::No);
        recent->popup(window().mapToGlobal(QPoint(20, 20)));
        ASSERT_TRUE(QTest::qWaitForWindowExposed(recent));
        QTest::mouseClick(recent, Qt::LeftButton, {}, recent->actionGeometry(firstEntry).center());
    };
    const auto shownProgress = [&]() -> QProgressDialog* {
        QProgressDialog* progress = nullptr;
        const bool shown = QTest::qWaitFor(
            [&] {
                progress = window().findChild<QProgressDialog*>();
                return progress && progress->isVisible();
            },
            5000);
        return shown ? progress : nullptr;
    };
    const auto pressCancel = [](QProgressDialog& progress) {
        auto* cancel = progress.findChild<QPushButton*>();
        ASSERT_NE(cancel, nullptr);
        EXPECT_EQ(cancel->text(), "Cancel");
        cancel->click();
    };

    // Cancel while opening: the unsaved line, the file and the title stay.
    ASSERT_TRUE(runTyped({"LINE", "0,10", "10,10", ""}));
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return window().drawing().modified && !window().drawing().building; }, kWaitMs));
    const kaldo::ui::PublishedDrawing before = window().drawing();
    hold();
    openFirstFromTheMenu();
    QProgressDialog* progress = shownProgress();
    ASSERT_NE(progress, nullptr);
    EXPECT_EQ(progress->labelText(), "Opening first.dxf...");
    pressCancel(*progress);
    held = false;
    ASSERT_TRUE(QTest::qWaitFor([&] { return transcript().contains("Open cancelled."); }, kWaitMs));
    EXPECT_TRUE(QTest::qWaitFor([&] { return !window().findChild<QProgressDialog*>(); }, kWaitMs));
    EXPECT_FALSE(transcript().contains("Opened"));
    EXPECT_EQ(window().drawing().serial, before.serial);
    EXPECT_EQ(window().drawing().scene, before.scene);
    EXPECT_EQ(window().drawing().path, second);
    EXPECT_TRUE(window().drawing().modified);
    EXPECT_EQ(window().windowTitle(), "second.dxf[*] - kaldo");
    EXPECT_TRUE(window().isWindowModified());

    // Without Cancel the bar runs to its end and the drawing opens.
    hold();
    openFirstFromTheMenu();
    progress = shownProgress();
    ASSERT_NE(progress, nullptr);
    const int steps = progress->maximum();
    int furthest = -1;
    QObject::connect(progress->findChild<QProgressBar*>(), &QProgressBar::valueChanged,
                     [&furthest](int value) { furthest = std::max(furthest, value); });
    EXPECT_EQ(window().drawing().serial, before.serial);
    held = false;
    ASSERT_TRUE(QTest::qWaitFor([&] { return window().drawing().serial != before.serial; }, kWaitMs));
    EXPECT_EQ(window().drawing().path, first);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !window().findChild<QProgressDialog*>(); }, kWaitMs));
    EXPECT_EQ(furthest, steps);
    EXPECT_EQ(window().recentFiles(), QStringList({first, second}));
    EXPECT_EQ(recent->actions()[0]->text(), "first.dxf");

    // Cancel while saving: the file keeps its bytes, no temporary is left
    // beside it, and the drawing stays modified.
    ASSERT_TRUE(runTyped({"LINE", "0,20", "10,20", ""}));
    ASSERT_TRUE(QTest::qWaitFor([&] { return window().drawing().modified; }, kWaitMs));
    const std::string bytes = fileText(first.toStdString());
    ASSERT_FALSE(bytes.empty());
    QAction* save = menuAction("&Save");
    ASSERT_NE(save, nullptr);
    hold();
    save->trigger();
    progress = shownProgress();
    ASSERT_NE(progress, nullptr);
    EXPECT_EQ(progress->labelText(), "Saving first.dxf...");
    pressCancel(*progress);
    held = false;
    ASSERT_TRUE(QTest::qWaitFor([&] { return transcript().contains("Save cancelled."); }, kWaitMs));
    EXPECT_TRUE(QTest::qWaitFor([&] { return !window().findChild<QProgressDialog*>(); }, kWaitMs));
    EXPECT_EQ(fileText(first.toStdString()), bytes);
    EXPECT_TRUE(QDir(QString::fromStdString(dir())).entryList({".first.dxf.*"}, QDir::Files | QDir::Hidden).isEmpty());
    EXPECT_TRUE(window().drawing().modified);
    EXPECT_TRUE(window().isWindowModified());
}

TEST_F(Window, QuitTypedWithUnsavedChangesAsksAndSaves)
{
    const std::string path = dir() + "/quit.dxf";
    ASSERT_TRUE(runTyped({"LINE", "0,0", "10,0", ""}));
    ASSERT_TRUE(saveAs(path));
    ASSERT_TRUE(runTyped({"LINE", "0,5", "10,5", ""}));
    answerMessageBoxSoon(QMessageBox::Yes);
    type("QUIT");
    ASSERT_TRUE(QTest::qWaitFor([&] { return !loopRunning() && !window().isVisible(); }, kWaitMs));
    EXPECT_EQ(linesIn(path), 2);
}

// A module dialog opened by a command on the command thread shows over the
// window, modal, on the window's thread; its choice reaches the waiting
// command, and Escape leaves it without a tool. The dialog's own event loop
// runs inside the test's waiting, so the test acts on it from a timer.
TEST_F(Window, ModuleDialogsOpenOverTheWindowAndTheirChoiceReachesTheCommand)
{
    const auto actOnToolDialog = [this](const std::function<void(QDialog&)>& act) {
        actOnDialogSoon<QDialog>([this, act](QDialog& dialog) {
            EXPECT_EQ(dialog.thread(), window().thread());
            act(dialog);
        });
    };

    // The command's echo is awaited before its prompt, so the prompt that
    // was there before the command cannot be taken for the one after it.
    actOnToolDialog([](QDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
    ASSERT_TRUE(runTyped({"MLEDIT"}));
    EXPECT_FALSE(transcript().contains("Select mline"));

    actOnToolDialog([](QDialog& dialog) {
        for (QAbstractButton* button : dialog.findChildren<QAbstractButton*>())
            if (button->property("itemId").toInt() == 5767)
                QTest::mouseClick(button, Qt::LeftButton);
    });
    type("MLEDIT");
    ASSERT_TRUE(waitForPrompt("Select mline: ", Kind::Entity));
    press(Qt::Key_Escape);
    ASSERT_TRUE(waitForPrompt("Command: ", Kind::Command));

    // The style manager draws its preview on the window's thread too.
    bool managerShown = false;
    actOnToolDialog([&managerShown](QDialog& dialog) {
        managerShown = !dialog.grab().isNull();
        QTest::keyClick(&dialog, Qt::Key_Escape);
    });
    type("MLSTYLE");
    ASSERT_TRUE(QTest::qWaitFor([&] { return managerShown; }, kWaitMs));
    ASSERT_TRUE(waitForPrompt("Command: ", Kind::Command));
    // The lines a script's transcript gets for dialogs are not the window's.
    EXPECT_FALSE(transcript().contains("Dialog"));
}

// Drawings made to break the renderer (tests/data/render) open in the
// window: the command thread draws each with bounded work, names what it
// drew once or coarsely or left out, and the canvas shows the rest. Memory
// that runs out while the canvas paints in bands, or while the command
// thread draws, is said once and the session goes on.
TEST_F(Window, DrawingsMadeToBreakTheRendererAreShownAndMemoryThatRunsOutIsSaid)
{
    const auto drawnPixels = [&] {
        const QImage image = canvas().grab().toImage();
        int drawn = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                drawn += image.pixel(x, y) != kBackground;
        return drawn;
    };
    const auto open = [&](const QString& path) {
        const unsigned serial = window().drawing().serial;
        type("OPEN");
        if (!QTest::qWaitFor([&] { return window().inputState().kind != Kind::Command; }, kWaitMs))
            return false;
        type(path);
        return QTest::qWaitFor([&] { return window().drawing().serial != serial; }, kWaitMs);
    };
    ASSERT_TRUE(runTyped({"FILEDIA", "0"}));
    struct Drawing {
        const char* name;
        const char* said;
    };
    const Drawing drawings[] = {
        {"block-inserts-itself", "Blocks that contain themselves, drawn once in the window: LOOP.\n"},
        {"nested-insert-fan",
         "Drawn as boxes in the window beyond 4194304 points: copies of blocks and lines of text.\n"},
        {"ellipse-huge-sweep", "Not drawn in the window: ELLIPSE.\n"},
        {"spline-degree-1200", "Opened"},
        {"hatch-claims-huge-counts", "Opened"},
    };
    for (const Drawing& drawing : drawings) {
        const char* name = drawing.name;
        const char* said = drawing.said;
        const QString path = sourceFile("tests/data/render/%1.dxf").arg(name);
        const qsizetype before = transcript().size();
        ASSERT_TRUE(open(path)) << name;
        EXPECT_TRUE(QTest::qWaitFor([&] { return transcript().indexOf(said, before) >= 0; }, kWaitMs)) << name;
        EXPECT_TRUE(QTest::qWaitFor([&] { return drawnPixels() > 100; }, kWaitMs)) << name;
    }

    // A polyline of 100 000 vertices, dashed: each band of the canvas
    // gathers its pixels (1.6 MB) before it paints them, and drawing it
    // needs more than a megabyte of points.
    std::string dxf = "  0\nSECTION\n  2\nTABLES\n  0\nTABLE\n  2\nLTYPE\n 70\n1\n  0\nLTYPE\n  2\nLONGDASH\n 70\n0\n"
                      "  3\n\n 72\n65\n 73\n2\n 40\n40000\n 49\n20000\n 49\n-20000\n  0\nENDTAB\n  0\nENDSEC\n"
                      "  0\nSECTION\n  2\nENTITIES\n  0\nLWPOLYLINE\n  8\n0\n  6\nLONGDASH\n 90\n100000\n 70\n0\n";
    for (int i = 0; i < 100000; ++i)
        dxf += " 10\n" + std::to_string(i) + "\n 20\n" + std::to_string(i % 2 * 100) + "\n";
    dxf += "  0\nENDSEC\n  0\nEOF\n";
    const std::string path = dir() + "/dashed.dxf";
    {
        std::ofstream out(path);
        out << dxf;
    }
    ASSERT_TRUE(open(QString::fromStdString(path)));
    ASSERT_TRUE(QTest::qWaitFor([&] { return drawnPixels() > 100; }, kWaitMs));
    const QPointF cursor(200, 150);
    QWheelEvent wheel(cursor, canvas().mapToGlobal(cursor), {}, {0, 120}, Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    {
        const AllocationCap cap(1 << 20);
        QApplication::sendEvent(&canvas(), &wheel);
        EXPECT_EQ(drawnPixels(), 0);
        ASSERT_TRUE(QTest::qWaitFor(
            [&] { return transcript().contains("\nThe drawing cannot be painted: the memory ran out.\n"); }, kWaitMs));
        const qsizetype before = transcript().size();
        type("LINE");
        type("0,0");
        type("10,0");
        type("");
        ASSERT_TRUE(QTest::qWaitFor(
            [&] {
                return transcript().indexOf("\nThe drawing cannot be shown in the window: the memory ran out.\n",
                                            before) >= 0;
            },
            kWaitMs));
        EXPECT_TRUE(window().drawing().scene->polylines().empty());
    }
    ASSERT_TRUE(runTyped({"LINE", "0,50", "10,50", ""}));
    EXPECT_TRUE(QTest::qWaitFor([&] { return window().drawing().scene->polylines().size() == 3; }, kWaitMs));
    EXPECT_TRUE(QTest::qWaitFor([&] { return drawnPixels() > 100; }, kWaitMs));
    EXPECT_EQ(transcript().count("the memory ran out"), 2);
}

// File > Plot... opens the Plot dialog over the window. Its preview shows
// the sheet lying as the orientation says, with the drawing on it; the
// dialog's items answer the mouse, and Escape leaves it.
TEST_F(Window, PlotFromTheFileMenuPreviewsTheSheet)
{
    ASSERT_TRUE(runTyped({"LINE", "0,0", "100,0", "100,60", ""}));
    QAction* plot = menuAction("&Plot...");
    ASSERT_TRUE(plot);
    // The white sheet's box in the preview, and how many pixels the
    // drawing darkens on it.
    struct Sheet {
        QRect box;
        int dark = 0;
    };
    const auto sheetOf = [](QWidget& preview) {
        const QImage image = preview.grab().toImage();
        Sheet sheet;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x) {
                const QRgb p = image.pixel(x, y);
                if (p == qRgb(255, 255, 255))
                    sheet.box |= QRect(x, y, 1, 1);
            }
        // Grey or black, not the blue outline of the printable area.
        for (int y = sheet.box.top(); y <= sheet.box.bottom(); ++y)
            for (int x = sheet.box.left(); x <= sheet.box.right(); ++x) {
                const QRgb p = image.pixel(x, y);
                sheet.dark += qRed(p) == qBlue(p) && qRed(p) < 220 ? 1 : 0;
            }
        return sheet;
    };
    Sheet landscape, portrait;
    bool left = false;
    actOnDialogSoon<QDialog>([&](QDialog& dialog) {
        QWidget* preview = kaldo::dlg::findItem(&dialog, 7015);
        QWidget* portraitButton = kaldo::dlg::findItem(&dialog, 7004);
        QWidget* landscapeButton = kaldo::dlg::findItem(&dialog, 7005);
        ASSERT_TRUE(preview && portraitButton && landscapeButton);
        QTest::mouseClick(landscapeButton, Qt::LeftButton, {}, gesture::clickPoint(*landscapeButton));
        landscape = sheetOf(*preview);
        QTest::mouseClick(portraitButton, Qt::LeftButton, {}, gesture::clickPoint(*portraitButton));
        portrait = sheetOf(*preview);
        QTest::keyClick(&dialog, Qt::Key_Escape);
        left = true;
    });
    plot->trigger();
    ASSERT_TRUE(QTest::qWaitFor([&] { return left && !QApplication::activeModalWidget(); }, kWaitMs));
    ASSERT_TRUE(waitForPrompt("Command: ", Kind::Command));
    EXPECT_NEAR(double(landscape.box.width()) / landscape.box.height(), 297.0 / 210, 0.03);
    EXPECT_NEAR(double(portrait.box.height()) / portrait.box.width(), 297.0 / 210, 0.03);
    EXPECT_GT(landscape.dark, 50);
    EXPECT_GT(portrait.dark, 50);
}
