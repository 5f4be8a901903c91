#include "WindowFixture.h"

#include "TestApplication.h"
#include "TreePaths.h"
#include "../e2e/EzdxfReport.h"
#include "kaldo/ui/ViewGeometry.h"

#include <QAbstractButton>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QDeadlineTimer>
#include <QFileDialog>
#include <QLineEdit>
#include <QMenuBar>
#include <QMessageBox>
#include <QTest>
#include <QTimer>


WindowFixture::WindowFixture() : WindowFixture(nullptr) {}

WindowFixture::WindowFixture(const std::function<void(kaldo::Profile&)>& prepare)
{
    testApplication();
    if (prepare) {
        kaldo::Profile profile(temp_.filePath("kaldo.ini").toStdString());
        prepare(profile);
    }
    kaldo::SessionPaths paths;
    paths.profile = temp_.filePath("kaldo.ini").toStdString();
    paths.supportDir = stagedPaths().supportDir;
    paths.modulesDir = stagedPaths().modulesDir;
    paths.crashDir = temp_.filePath("crash").toStdString();
    session_ = std::make_unique<kaldo::Session>(paths);
    for (const std::wstring& failure : session_->loadModulesFolder())
        ADD_FAILURE() << "module not loaded: " << std::string(failure.begin(), failure.end());
    runner_ = std::make_unique<kaldo::ui::CommandRunner>(*session_);
    window_ = std::make_unique<kaldo::ui::MainWindow>(*runner_);
    if (!prepare)
        window_->resize(1000, 700);
    window_->show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(window_.get()));
    EXPECT_TRUE(waitForPrompt("Command: ", Kind::Command));
    // The empty drawing's scene, built beside the command line.
    EXPECT_TRUE(QTest::qWaitFor([&] { return window_->drawing().scene && !window_->drawing().building; }, kWaitMs));
}

WindowFixture::~WindowFixture()
{
    if (runner_->running()) {
        EXPECT_TRUE(closeWindow());
    }
    window_.reset();
    runner_.reset();
    session_.reset();
}

void WindowFixture::type(const QString& text)
{
    QLineEdit* input = window_->commandLine()->input();
    QTest::keyClicks(input, text);
    QTest::keyClick(input, Qt::Key_Return);
}

void WindowFixture::press(Qt::Key key)
{
    QTest::keyClick(window_->commandLine()->input(), key);
}

bool WindowFixture::waitForPrompt(const QString& prompt, Kind kind)
{
    return QTest::qWaitFor(
        [&] { return transcript().endsWith(prompt) && window_->inputState().kind == kind; }, kWaitMs);
}

bool WindowFixture::runTyped(const QStringList& lines)
{
    for (const QString& line : lines) {
        const QString before = transcript();
        type(line);
        // Each answer is echoed; the next prompt follows it.
        if (!QTest::qWaitFor([&] { return transcript().size() > before.size() + line.size() + 1; }, kWaitMs))
            return false;
    }
    return waitForPrompt("Command: ", Kind::Command);
}

bool WindowFixture::saveAs(const std::string& path)
{
    return runTyped({"FILEDIA", "0", "SAVEAS", QString::fromStdString(path)})
        && transcript().contains("Saved \"" + QString::fromStdString(path) + "\"");
}

QJsonObject WindowFixture::savedAndRead(const std::string& name)
{
    const std::string path = dir() + "/" + name;
    if (!saveAs(path)) {
        ADD_FAILURE() << "not saved: " << path;
        return {};
    }
    const EzdxfReport report = readWithEzdxf(path);
    EXPECT_TRUE(report.ran) << report.problem;
    EXPECT_EQ(auditFindings(report), "") << path;
    return report.file;
}

QAction* WindowFixture::menuAction(const QString& text)
{
    for (QAction* action : window_->menuBar()->findChildren<QAction*>())
        if (action->text() == text)
            return action;
    return nullptr;
}

QString WindowFixture::transcript() const
{
    return window_->commandLine()->transcript();
}

QPoint WindowFixture::pixelOf(double x, double y)
{
    return kaldo::ui::pixelAt(canvas().placement(), {x, y}).toPoint();
}

void WindowFixture::clickAt(const QPoint& pixel, Qt::KeyboardModifiers modifiers)
{
    QTest::mouseMove(&canvas(), pixel);
    QTest::mouseClick(&canvas(), Qt::LeftButton, modifiers, pixel);
}

void WindowFixture::moveTo(const QPoint& pixel)
{
    QTest::mouseMove(&canvas(), pixel);
}

bool WindowFixture::closeWindow()
{
    if (window_->drawing().modified)
        answerMessageBoxSoon(QMessageBox::No);
    window_->close();
    return QTest::qWaitFor([&] { return !runner_->running() && !window_->isVisible(); }, kWaitMs);
}

void actOnModalSoon(std::function<bool(QWidget*)> takes)
{
    auto* timer = new QTimer;
    timer->setInterval(10);
    auto* deadline = new QDeadlineTimer(WindowFixture::kWaitMs);
    QObject::connect(timer, &QTimer::timeout, [timer, deadline, takes = std::move(takes)] {
        QWidget* modal = QApplication::activeModalWidget();
        if (!(modal && takes(modal)) && !deadline->hasExpired())
            return;
        timer->stop();
        timer->deleteLater();
        delete deadline;
    });
    timer->start();
}

void answerMessageBoxSoon(int button)
{
    actOnDialogSoon<QMessageBox>(
        [button](QMessageBox& box) { box.button(QMessageBox::StandardButton(button))->click(); });
}

void chooseInFileDialogSoon(const QString& path, int type)
{
    actOnDialogSoon<QFileDialog>([path, type](QFileDialog& dialog) {
        auto* types = dialog.findChild<QComboBox*>("fileTypeCombo");
        auto* edit = dialog.findChild<QLineEdit*>("fileNameEdit");
        ASSERT_TRUE(types && edit);
        for (int i = types->currentIndex(); i < type; ++i)
            QTest::keyClick(types, Qt::Key_Down);
        // The name field holds the focus as the user types, so that the
        // typed name replaces the file the dialog selected at first.
        dialog.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
        QTest::mouseClick(edit, Qt::LeftButton);
        QApplication::clipboard()->setText(path);
        QTest::keySequence(edit, QKeySequence::SelectAll);
        QTest::keySequence(edit, QKeySequence::Paste);
        QTest::keyClick(edit, Qt::Key_Return);
    });
}
