// Opens the window on a drawing, draws a wall with MLINE by mouse clicks and
// stops halfway, with the rubber band following the cursor, then writes a
// picture of the window. Usage: window_screenshot DRAWING.dxf OUT.png
#include "kaldo/app/Session.h"
#include "kaldo/ui/Canvas.h"
#include "kaldo/ui/CommandLine.h"
#include "kaldo/ui/CommandRunner.h"
#include "kaldo/ui/MainWindow.h"
#include "kaldo/ui/ViewGeometry.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDeadlineTimer>
#include <QLineEdit>
#include <QMessageBox>
#include <QMouseEvent>
#include <QTemporaryDir>
#include <QTimer>

#include <iostream>

namespace {

using Kind = kaldo::Editor::InputRequest::Kind;

// Lets the window work until ready() holds; false after ten seconds.
template <class Ready>
bool waitUntil(Ready ready)
{
    const QDeadlineTimer deadline(10000);
    while (!ready()) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }
    return true;
}

void type(kaldo::ui::MainWindow& window, const QString& text)
{
    window.commandLine()->input()->setText(text);
    emit window.commandLine()->input()->returnPressed();
}

void mouse(kaldo::ui::Canvas& canvas, QEvent::Type type, double x, double y)
{
    const QPointF at = kaldo::ui::pixelAt(canvas.placement(), {x, y});
    const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(type, at, canvas.mapToGlobal(at), button, button, Qt::NoModifier);
    QApplication::sendEvent(&canvas, &event);
}

void click(kaldo::ui::Canvas& canvas, double x, double y)
{
    mouse(canvas, QEvent::MouseMove, x, y);
    mouse(canvas, QEvent::MouseButtonPress, x, y);
    mouse(canvas, QEvent::MouseButtonRelease, x, y);
}

}  // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    if (argc != 3) {
        std::cerr << "usage: window_screenshot DRAWING.dxf OUT.png\n";
        return 64;
    }
    QTemporaryDir temp;
    kaldo::SessionPaths paths = kaldo::defaultSessionPaths(QCoreApplication::applicationDirPath().toStdString());
    paths.profile = temp.filePath("kaldo.ini").toStdString();
    paths.crashDir = temp.filePath("crash").toStdString();
    kaldo::Session session(paths);
    session.openDrawing(argv[1]);
    session.loadModulesFolder();
    kaldo::ui::CommandRunner runner(session);
    kaldo::ui::MainWindow window(runner);
    window.resize(1280, 860);
    window.show();
    kaldo::ui::Canvas& canvas = *window.canvas();
    const auto waitFor = [&](Kind kind) { return waitUntil([&] { return window.inputState().kind == kind; }); };
    const auto drawn = [&] { return window.drawing().scene != nullptr; };
    bool ok = waitUntil(drawn) && waitFor(Kind::Command);
    // Closer to the room; then a new wall from its corner, two points
    // clicked, the third on its way to a snap at the room's far corner.
    for (const char* line : {"ZOOM", "W", "0,-12", "62,42"})
        type(window, QString::fromLatin1(line));
    ok = ok && waitUntil([&] { return window.commandLine()->transcript().count("Command: ") >= 2; });
    ok = ok && waitFor(Kind::Command);
    type(window, QStringLiteral("MLINE"));
    ok = ok && waitFor(Kind::Point);
    click(canvas, 35, 22);
    ok = ok && waitFor(Kind::Drag);
    click(canvas, 50, 22);
    ok = ok && waitUntil([&] { return window.commandLine()->transcript().endsWith("[Undo]:"); });
    mouse(canvas, QEvent::MouseMove, 35.6, 10.4);
    ok = ok && waitUntil([&] { return window.commandLine()->transcript().endsWith("[Undo]:"); });
    QCoreApplication::processEvents(QEventLoop::AllEvents, 200);
    if (!ok || !window.grab().save(QString::fromLocal8Bit(argv[2]))) {
        std::cerr << "window_screenshot: the picture was not taken\n";
        return 1;
    }
    // The wall drawn so far is not saved: the question on closing is
    // answered No.
    QTimer answer;
    QObject::connect(&answer, &QTimer::timeout, [] {
        if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget()))
            box->button(QMessageBox::No)->click();
    });
    answer.start(20);
    window.close();
    return waitUntil([&] { return !window.isVisible(); }) ? 0 : 1;
}
