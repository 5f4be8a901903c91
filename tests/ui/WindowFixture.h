// The real main window on a real session (modules loaded from the staged
// build), offscreen, driven by QTest's mouse and key events. Helpers wait
// until the command thread has answered.
#pragma once

#include "kaldo/app/Session.h"
#include "kaldo/ui/Canvas.h"
#include "kaldo/ui/CommandLine.h"
#include "kaldo/ui/CommandRunner.h"
#include "kaldo/ui/MainWindow.h"
#include "kaldo/util/Profile.h"

#include <gtest/gtest.h>

#include <QJsonObject>
#include <QTemporaryDir>

#include <functional>
#include <memory>
#include <string>

class WindowFixture : public ::testing::Test {
public:
    // How long a helper waits for the command thread; generous, as tests
    // may share a busy machine.
    static constexpr int kWaitMs = 30000;

protected:
    using Kind = kaldo::Editor::InputRequest::Kind;

    WindowFixture();
    // Opens the window on a profile that prepare wrote first, at the size it
    // chooses itself.
    explicit WindowFixture(const std::function<void(kaldo::Profile&)>& prepare);
    ~WindowFixture() override;

    kaldo::ui::MainWindow& window() { return *window_; }
    kaldo::ui::Canvas& canvas() { return *window_->canvas(); }
    std::string dir() const { return temp_.path().toStdString(); }
    bool loopRunning() const { return runner_->running(); }
    kaldo::ui::CommandRunner& runner() { return *runner_; }

    // Types a line into the command line and presses Enter (an empty line
    // is Enter alone).
    void type(const QString& text);
    void press(Qt::Key key);
    // Waits until the transcript ends with prompt and the window knows the
    // command line waits for kind; false after kWaitMs.
    [[nodiscard]] bool waitForPrompt(const QString& prompt, Kind kind);
    QString transcript() const;
    // The canvas pixel of a drawing point.
    QPoint pixelOf(double x, double y);
    void clickAt(const QPoint& pixel, Qt::KeyboardModifiers modifiers = {});
    void moveTo(const QPoint& pixel);
    // Types a command and its answers, each waited for (prompt ends, any
    // kind), then waits for the command prompt.
    [[nodiscard]] bool runTyped(const QStringList& lines);
    // The menu bar's action of this text ("&" marks included); null when
    // there is none.
    QAction* menuAction(const QString& text);
    // Saves the drawing as path through SAVEAS on the command line.
    [[nodiscard]] bool saveAs(const std::string& path);
    // Saves the drawing as name in the test's folder and reads it back
    // with the independent reader: what it found (see EzdxfReport), empty
    // when the save or the reader failed; its audit must find nothing.
    QJsonObject savedAndRead(const std::string& name);
    // Ends the command loop (answering the unsaved-changes question with
    // No when it comes) and waits for the window to close.
    [[nodiscard]] bool closeWindow();

private:
    QTemporaryDir temp_;
    std::unique_ptr<kaldo::Session> session_;
    std::unique_ptr<kaldo::ui::CommandRunner> runner_;
    std::unique_ptr<kaldo::ui::MainWindow> window_;
};

// Offers each modal widget that shows, from a timer (so inside whatever
// event loop runs then, the dialog's own included), to takes until it takes
// one; gives up after WindowFixture::kWaitMs.
void actOnModalSoon(std::function<bool(QWidget*)> takes);

// Calls act on the first modal dialog of class Dialog that shows.
template <class Dialog>
void actOnDialogSoon(std::function<void(Dialog&)> act)
{
    actOnModalSoon([act = std::move(act)](QWidget* modal) {
        auto* dialog = qobject_cast<Dialog*>(modal);
        if (dialog)
            act(*dialog);
        return dialog != nullptr;
    });
}

// Clicks the button of a message box that is about to open (or is open)
// once it shows.
void answerMessageBoxSoon(int button);

// Pastes path into the file name of the file dialog about to open, under
// its file type at index type (chosen with the arrow keys), and presses
// Enter. Pasted whole, the path never names a folder on its way, which the
// dialog would select (and take) while its folder listing loads.
void chooseInFileDialogSoon(const QString& path, int type = 0);
