// The main window of a kaldo session with a display: the canvas in the
// middle, the command line docked at the bottom, menus and a toolbar for
// the commands, the cursor's coordinates and the snap and ortho switches
// in the status bar. The window keeps its geometry, dock layout and recent
// files in the profile (section "Window"), read when it opens and written
// when it closes, while no command runs. It always opens inside the
// available part of its screen.
#pragma once

#include "kaldo/app/commands/HostCommands.h"
#include "kaldo/dxf/Progress.h"
#include "kaldo/ui/CommandRunner.h"

#include <QMainWindow>
#include <QPointer>
#include <QProgressDialog>

#include <atomic>
#include <cstdint>
#include <functional>
#include <optional>

class QAction;
class QDockWidget;
class QLabel;
class QMenu;

namespace kaldo::ui {

class Canvas;
class CommandLine;

class MainWindow : public QMainWindow {
    Q_OBJECT
public:
    // The runner must not have started; the window starts it.
    explicit MainWindow(CommandRunner& runner);

    Canvas* canvas() const { return canvas_; }
    CommandLine* commandLine() const { return commandLine_; }
    const InputState& inputState() const { return input_; }
    const PublishedDrawing& drawing() const { return drawing_; }
    QStringList recentFiles() const { return recent_; }

    // Runs a command as a menu does: whatever runs is cancelled first.
    void runCommand(const QString& name);
    // Opens path (after the unsaved-changes question), as File > Open does
    // once a file is chosen.
    void openFile(const QString& path);

protected:
    void closeEvent(QCloseEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    enum class SaveFirst { Yes, No, Cancel };

    void buildActions();
    void connectRunner();
    // Geometry, dock layout and recent files from the profile. The first
    // time, the window takes a share of the screen it opens on; a stored
    // geometry is fitted into that screen's available part.
    void restoreSettings();
    void fitIntoScreen();
    void storeSettings();
    void drawingPublished(const PublishedDrawing& drawing);
    void showCoordinates(const view::Point2& world);
    // The command line floats as a larger text window, or docks again.
    void showTextWindow(bool show);
    void rememberRecent(const QString& path);
    void rebuildRecentMenu();

    // The unsaved-changes question; No when nothing is unsaved.
    SaveFirst askToSave();
    // The file to save the drawing in: its own, else one chosen in a dialog
    // (empty when none was chosen). Given type, the dialog offers SAVEAS's
    // file types and type receives the one chosen.
    QString savePath(bool askAlways, SaveAsType* type = nullptr);
    // Cancels what runs and, at the command prompt, saves into path when
    // it is not empty; then runs next (on the command thread, given the
    // progress report to pass on) unless the drawing still holds unsaved
    // changes after a save. busyText names the work in the progress window
    // (none shows without it).
    void saveThen(const QString& path, std::function<void(const dxf::ProgressReport&)> next,
                  const QString& busyText);
    void showProgress(std::uint64_t done, std::uint64_t total);
    // Save, or Save As (SAVEAS's file types: the drawing or an exploded copy).
    void save(bool saveAs);
    void chooseAndOpen();
    void commandLoopEnded();

    CommandRunner& runner_;
    Canvas* canvas_;
    CommandLine* commandLine_;
    QDockWidget* commandDock_;
    QLabel* coordinates_;
    QLabel* sceneNote_;  // shows while the drawing's new scene is built
    QAction* snapAction_ = nullptr;
    QAction* orthoAction_ = nullptr;
    QMenu* recentMenu_ = nullptr;
    InputState input_;
    PublishedDrawing drawing_;
    QStringList recent_;
    QPointer<QProgressDialog> busy_;
    int busyRuns_ = 0;
    int finishedRuns_ = 0;
    // The runs up to this one were cancelled in the progress window; the
    // command thread reads it in the progress reports.
    std::atomic<int> cancelledRuns_ = 0;
    bool closing_ = false;
    bool loopEnded_ = false;
    bool shownOnce_ = false;
};

}  // namespace kaldo::ui
