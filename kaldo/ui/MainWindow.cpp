#include "kaldo/ui/MainWindow.h"

#include "kaldo/app/Session.h"
#include "kaldo/app/commands/HostCommands.h"
#include "kaldo/ed/FileDialog.h"
#include "kaldo/ed/Units.h"
#include "kaldo/ui/Canvas.h"
#include "kaldo/ui/CommandLine.h"
#include "kaldo/util/Profile.h"

#include <QAction>
#include <QCloseEvent>
#include <QDockWidget>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QMessageBox>
#include <QProgressDialog>
#include <QScreen>
#include <QStatusBar>
#include <QStyle>
#include <QToolBar>
#include <QTimer>
#include <QToolButton>

#include <algorithm>

namespace kaldo::ui {

namespace {

constexpr const wchar_t* kSection = L"Window";
constexpr int kRecentFiles = 6;
// The progress window's bar counts in thousandths.
constexpr int kProgressSteps = 1000;
// The window first opens on this share of the screen's width and height.
constexpr double kFirstShare = 0.8;
const QString kDxfFilter = QStringLiteral("Drawings (*.dxf);;All files (*)");

QByteArray toBytes(const std::optional<std::vector<unsigned char>>& value)
{
    return value ? QByteArray(reinterpret_cast<const char*>(value->data()), qsizetype(value->size())) : QByteArray();
}

std::vector<unsigned char> fromBytes(const QByteArray& bytes)
{
    return {bytes.begin(), bytes.end()};
}

}  // namespace

MainWindow::MainWindow(CommandRunner& runner)
    : runner_(runner),
      canvas_(new Canvas(this)),
      commandLine_(new CommandLine(this)),
      commandDock_(new QDockWidget(tr("Command Line"), this)),
      coordinates_(new QLabel(this)),
      sceneNote_(new QLabel(tr("Updating the picture..."), this))
{
    setObjectName("kaldoWindow");
    setCentralWidget(canvas_);
    commandDock_->setObjectName("commandLineDock");
    commandDock_->setWidget(commandLine_);
    addDockWidget(Qt::BottomDockWidgetArea, commandDock_);
    canvas_->setFocusProxy(commandLine_->input());
    coordinates_->setMinimumWidth(260);
    statusBar()->addWidget(coordinates_);
    sceneNote_->setObjectName("sceneNote");
    sceneNote_->hide();
    statusBar()->addWidget(sceneNote_);
    buildActions();
    connectRunner();
    restoreSettings();
    setWindowTitle(QStringLiteral("Drawing1.dxf[*] - kaldo"));
    runner_.start();
    commandLine_->input()->setFocus();
}

void MainWindow::buildActions()
{
    const auto command = [this](QMenu* menu, QToolBar* bar, const QString& text, const QString& name,
                                const QKeySequence& key = {}) {
        QAction* action = menu->addAction(text, this, [this, name] { runCommand(name); });
        action->setShortcut(key);
        if (bar)
            bar->addAction(action);
        return action;
    };
    QToolBar* bar = addToolBar(tr("Commands"));
    bar->setObjectName("commandsToolBar");

    QMenu* file = menuBar()->addMenu(tr("&File"));
    command(file, nullptr, tr("&New"), QStringLiteral("_NEW"), QKeySequence::New);
    QAction* open = file->addAction(tr("&Open..."), this, &MainWindow::chooseAndOpen);
    open->setShortcut(QKeySequence::Open);
    bar->addAction(open);
    QAction* saveAction = file->addAction(tr("&Save"), this, [this] { save(false); });
    saveAction->setShortcut(QKeySequence::Save);
    bar->addAction(saveAction);
    file->addAction(tr("Save &As..."), this, [this] { save(true); })->setShortcut(QKeySequence::SaveAs);
    file->addSeparator();
    command(file, nullptr, tr("&Plot..."), QStringLiteral("_PLOT"), QKeySequence::Print);
    recentMenu_ = file->addMenu(tr("Recent Files"));
    file->addSeparator();
    file->addAction(tr("E&xit"), this, &QWidget::close)->setShortcut(QKeySequence::Quit);
    bar->addSeparator();

    QMenu* edit = menuBar()->addMenu(tr("&Edit"));
    command(edit, bar, tr("&Undo"), QStringLiteral("_U"), QKeySequence::Undo);
    command(edit, bar, tr("&Redo"), QStringLiteral("_REDO"), QKeySequence::Redo);
    bar->addSeparator();

    QMenu* draw = menuBar()->addMenu(tr("&Draw"));
    command(draw, bar, tr("&Line"), QStringLiteral("_LINE"));
    command(draw, bar, tr("&Multiline"), QStringLiteral("_MLINE"));
    QMenu* modify = menuBar()->addMenu(tr("&Modify"));
    command(modify, bar, tr("&Erase"), QStringLiteral("_ERASE"));
    command(modify, nullptr, tr("&Move"), QStringLiteral("_MOVE"));
    command(modify, nullptr, tr("&Copy"), QStringLiteral("_COPY"));
    command(modify, nullptr, tr("&Rotate"), QStringLiteral("_ROTATE"));
    command(modify, nullptr, tr("S&cale"), QStringLiteral("_SCALE"));
    command(modify, nullptr, tr("M&irror"), QStringLiteral("_MIRROR"));
    command(modify, nullptr, tr("S&tretch"), QStringLiteral("_STRETCH"));
    command(modify, nullptr, tr("E&xplode"), QStringLiteral("_EXPLODE"));
    command(modify, bar, tr("Multiline &Edit..."), QStringLiteral("_MLEDIT"));
    command(modify, nullptr, tr("Multiline Edit (&Command Line)"), QStringLiteral("_-MLEDIT"));
    command(modify, nullptr, tr("L&ist"), QStringLiteral("_LIST"));
    QMenu* format = menuBar()->addMenu(tr("F&ormat"));
    command(format, bar, tr("Multiline &Style..."), QStringLiteral("_MLSTYLE"));
    command(format, nullptr, tr("&UCS"), QStringLiteral("_UCS"));
    bar->addSeparator();

    QMenu* view = menuBar()->addMenu(tr("&View"));
    view->addAction(tr("Zoom &Extents"), canvas_, &Canvas::zoomExtents);
    command(view, nullptr, tr("Zoom &Window"), QStringLiteral("_ZOOM _W"));
    command(view, nullptr, tr("Zoom &Previous"), QStringLiteral("_ZOOM _P"));
    bar->addAction(view->actions().front());
    view->addAction(commandDock_->toggleViewAction());
    QAction* textWindow =
        view->addAction(tr("&Text Window"), this, [this] { showTextWindow(!commandDock_->isFloating()); });
    textWindow->setShortcut(Qt::Key_F2);
    textWindow->setShortcutContext(Qt::ApplicationShortcut);
    view->addSeparator();
    snapAction_ = view->addAction(tr("Object &Snap"));
    snapAction_->setCheckable(true);
    snapAction_->setChecked(canvas_->snapsOn());
    snapAction_->setShortcut(Qt::Key_F3);
    connect(snapAction_, &QAction::toggled, canvas_, &Canvas::setSnapsOn);
    orthoAction_ = view->addAction(tr("&Ortho"));
    orthoAction_->setCheckable(true);
    orthoAction_->setShortcut(Qt::Key_F8);
    connect(orthoAction_, &QAction::toggled, canvas_, &Canvas::setOrthoOn);
    for (QAction* action : {snapAction_, orthoAction_}) {
        action->setShortcutContext(Qt::ApplicationShortcut);
        auto* toggle = new QToolButton(this);
        toggle->setDefaultAction(action);
        toggle->setText(action == snapAction_ ? QStringLiteral("SNAP") : QStringLiteral("ORTHO"));
        toggle->setAutoRaise(true);
        statusBar()->addPermanentWidget(toggle);
    }

    // F1 describes the command that runs, or lists every command at the
    // command prompt.
    QMenu* help = menuBar()->addMenu(tr("&Help"));
    QAction* commandsHelp = help->addAction(tr("&Commands"), this, [this] {
        if (input_.kind == Editor::InputRequest::Kind::Command) {
            runner_.push(InputEvent::typed(L"_HELP"));
            runner_.push(InputEvent::enter());
        } else {
            runner_.push(InputEvent::typed(L"'_HELP"));
        }
    });
    commandsHelp->setShortcut(Qt::Key_F1);
    commandsHelp->setShortcutContext(Qt::ApplicationShortcut);
}

void MainWindow::connectRunner()
{
    connect(&runner_, &CommandRunner::transcriptWritten, commandLine_, &CommandLine::appendTranscript);
    connect(&runner_, &CommandRunner::drawingPublished, this, &MainWindow::drawingPublished);
    connect(&runner_, &CommandRunner::dragSceneChanged, canvas_, &Canvas::showDragScene);
    connect(&runner_, &CommandRunner::highlightChanged, canvas_, &Canvas::showHighlight);
    connect(&runner_, &CommandRunner::hoverChanged, canvas_, &Canvas::showHover);
    connect(&runner_, &CommandRunner::viewPlaced, canvas_, &Canvas::setPlacement);
    connect(&runner_, &CommandRunner::textScreenRequested, this, [this] { showTextWindow(true); });
    connect(&runner_, &CommandRunner::progressed, this, &MainWindow::showProgress);
    connect(&runner_, &CommandRunner::inputRequested, this, [this](const InputState& state) {
        input_ = state;
        canvas_->setInputState(state);
        commandLine_->setPrompt(state.keywords, state.acceptBlanks);
    });
    connect(&runner_, &CommandRunner::loopEnded, this, [this] { commandLoopEnded(); });
    connect(canvas_, &Canvas::placementChanged, this, [this](const ViewPlacement& placement) {
        runner_.post([this, placement] { runner_.session().editor().view().place(placement); }, true);
    });
    connect(canvas_, &Canvas::pointPicked, this,
            [this](const view::Point2& p, bool removing) { runner_.push(InputEvent::picked({p.x, p.y, 0}, removing)); });
    connect(canvas_, &Canvas::cursorMoved, this,
            [this](const view::Point2& p) { runner_.push(InputEvent::moved({p.x, p.y, 0})); });
    connect(canvas_, &Canvas::cursorAt, this, &MainWindow::showCoordinates);
    connect(canvas_, &Canvas::paintFailed, this, [this](const QString& text) {
        runner_.post([this, line = L"\n" + text.toStdWString() + L"\n"] { runner_.session().editor().write(line); },
                     true);
    });
    connect(commandLine_, &CommandLine::answered, this, [this](const QString& text) {
        runner_.push(text.isEmpty() ? InputEvent::enter() : InputEvent::typed(text.toStdWString()));
    });
    connect(commandLine_, &CommandLine::cancelled, this, [this] { runner_.push(InputEvent::cancel()); });
}

void MainWindow::restoreSettings()
{
    const Profile& profile = runner_.session().profile();
    if (restoreGeometry(toBytes(profile.getBinary(kSection, L"Geometry")))) {
        fitIntoScreen();
    } else {
        const QRect available = screen()->availableGeometry();
        QRect first(QPoint(), (QSizeF(available.size()) * kFirstShare).toSize());
        first.moveCenter(available.center());
        setGeometry(first);
    }
    restoreState(toBytes(profile.getBinary(kSection, L"DockLayout")));
    for (int i = 1; i <= kRecentFiles; ++i)
        if (const auto path = profile.getString(kSection, L"Recent" + std::to_wstring(i)); path && !path->empty())
            recent_ << QString::fromStdWString(*path);
    rebuildRecentMenu();
}

void MainWindow::fitIntoScreen()
{
    if (windowState() & (Qt::WindowMaximized | Qt::WindowFullScreen))
        return;
    // The frame is known once the window shows (then it is fitted again);
    // before, a title bar's height is kept free above the window.
    const QRect outer = frameGeometry();
    QRect placed = geometry();
    const QMargins frame = outer == placed
        ? QMargins(0, style()->pixelMetric(QStyle::PM_TitleBarHeight), 0, 0)
        : QMargins(placed.left() - outer.left(), placed.top() - outer.top(), outer.right() - placed.right(),
                   outer.bottom() - placed.bottom());
    const QRect inside = screen()->availableGeometry().marginsRemoved(frame);
    placed.setSize(placed.size().boundedTo(inside.size()));
    placed.moveLeft(std::clamp(placed.left(), inside.left(), inside.right() + 1 - placed.width()));
    placed.moveTop(std::clamp(placed.top(), inside.top(), inside.bottom() + 1 - placed.height()));
    setGeometry(placed);
}

void MainWindow::showEvent(QShowEvent* event)
{
    QMainWindow::showEvent(event);
    if (!shownOnce_) {
        shownOnce_ = true;
        fitIntoScreen();
    }
}

void MainWindow::storeSettings()
{
    Profile& profile = runner_.session().profile();
    profile.setBinary(kSection, L"Geometry", fromBytes(saveGeometry()));
    profile.setBinary(kSection, L"DockLayout", fromBytes(saveState()));
    for (int i = 1; i <= kRecentFiles; ++i)
        profile.setString(kSection, L"Recent" + std::to_wstring(i),
                          i <= recent_.size() ? recent_[i - 1].toStdWString() : std::wstring());
}

void MainWindow::drawingPublished(const PublishedDrawing& drawing)
{
    if (!drawing.path.isEmpty() && drawing.path != drawing_.path)
        rememberRecent(drawing.path);
    drawing_ = drawing;
    canvas_->showDrawing(drawing);
    sceneNote_->setVisible(drawing.building);
    const QString name = drawing.path.isEmpty() ? QStringLiteral("Drawing1.dxf") : QFileInfo(drawing.path).fileName();
    setWindowTitle(name + QStringLiteral("[*] - kaldo"));
    setWindowModified(drawing.modified);
}

void MainWindow::showCoordinates(const view::Point2& world)
{
    const double dx = world.x - input_.ucsOrigin.x;
    const double dy = world.y - input_.ucsOrigin.y;
    const double x = dx * input_.ucsX.x + dy * input_.ucsX.y;
    const double y = dx * input_.ucsY.x + dy * input_.ucsY.y;
    const auto format = [this](double value) {
        return QString::fromStdWString(formatDistance(value, input_.linearUnits, input_.linearPrecision, 0));
    };
    coordinates_->setText(format(x) + QStringLiteral(", ") + format(y));
}

void MainWindow::showTextWindow(bool show)
{
    commandDock_->show();
    if (show == commandDock_->isFloating())
        return;
    commandDock_->setFloating(show);
    if (show)
        commandDock_->resize(900, 500);
    // Typing goes on in the command line, floating or docked.
    commandDock_->activateWindow();
    commandLine_->input()->setFocus();
}

void MainWindow::rememberRecent(const QString& path)
{
    recent_.removeAll(path);
    recent_.prepend(path);
    while (recent_.size() > kRecentFiles)
        recent_.removeLast();
    rebuildRecentMenu();
}

void MainWindow::rebuildRecentMenu()
{
    recentMenu_->clear();
    for (const QString& path : recent_)
        recentMenu_->addAction(QFileInfo(path).fileName(), this, [this, path] { openFile(path); })->setToolTip(path);
    recentMenu_->setEnabled(!recent_.isEmpty());
}

void MainWindow::runCommand(const QString& name)
{
    if (input_.kind != Editor::InputRequest::Kind::Command)
        runner_.push(InputEvent::cancel());
    runner_.push(InputEvent::typed(name.toStdWString()));
}

MainWindow::SaveFirst MainWindow::askToSave()
{
    if (!drawing_.modified)
        return SaveFirst::No;
    const QString question = QString::fromStdWString(saveChangesQuestion(drawing_.path.toStdWString()));
    const auto answer = QMessageBox::question(this, QStringLiteral("kaldo"), question,
                                              QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
    return answer == QMessageBox::Yes ? SaveFirst::Yes : answer == QMessageBox::No ? SaveFirst::No : SaveFirst::Cancel;
}

QString MainWindow::savePath(bool askAlways, SaveAsType* type)
{
    if (!askAlways && !drawing_.path.isEmpty())
        return drawing_.path;
    FileDialogRequest request;
    request.title = tr("Save Drawing As");
    request.start = drawing_.path.isEmpty() ? QStringLiteral("Drawing1.dxf") : drawing_.path;
    request.extension = QStringLiteral("dxf");
    request.forWriting = true;
    request.fileTypes = type ? QString::fromWCharArray(kSaveAsFileTypes) : kDxfFilter;
    const auto chosen = chooseFileInDialog(this, request);
    if (chosen && type)
        *type = SaveAsType(chosen->fileType);
    return chosen ? chosen->path : QString();
}

void MainWindow::saveThen(const QString& path, std::function<void(const dxf::ProgressReport&)> next,
                          const QString& busyText)
{
    if (input_.kind != Editor::InputRequest::Kind::Command)
        runner_.push(InputEvent::cancel());
    // A progress window shows when the work takes longer than half a
    // second. Its Cancel marks every run so far as cancelled; the reader or
    // writer reads the mark at its next report and stops, which leaves the
    // drawing and its file as they were.
    const int run = ++busyRuns_;
    QTimer::singleShot(500, this, [this, run, busyText] {
        if (finishedRuns_ >= run || busy_ || busyText.isEmpty())
            return;
        busy_ = new QProgressDialog(busyText, tr("Cancel"), 0, kProgressSteps, this);
        busy_->setWindowModality(Qt::WindowModal);
        busy_->setMinimumDuration(0);
        connect(busy_, &QProgressDialog::canceled, this, [this] { cancelledRuns_ = busyRuns_; });
        busy_->show();
    });
    runner_.postAtCommandPrompt([this, run, path, next = std::move(next)] {
        const dxf::ProgressReport report = [this, run](std::uint64_t done, std::uint64_t total) {
            runner_.reportProgress(done, total);
            return cancelledRuns_ < run;
        };
        Session& session = runner_.session();
        if (!path.isEmpty())
            saveDrawingReporting(session, path.toStdWString(), report);
        if (next && (path.isEmpty() || !session.modified()))
            next(report);
        QMetaObject::invokeMethod(this, [this, run] {
            finishedRuns_ = run;
            if (busy_ && finishedRuns_ == busyRuns_)
                busy_->deleteLater();
        });
    });
}

void MainWindow::showProgress(std::uint64_t done, std::uint64_t total)
{
    if (busy_ && !busy_->wasCanceled() && total > 0)
        busy_->setValue(int(done * kProgressSteps / total));
}

void MainWindow::save(bool saveAs)
{
    SaveAsType type = SaveAsType::Drawing;
    const QString path = savePath(saveAs, saveAs ? &type : nullptr);
    if (path.isEmpty())
        return;
    if (type == SaveAsType::Drawing) {
        saveThen(path, {}, tr("Saving %1...").arg(QFileInfo(path).fileName()));
        return;
    }
    // A copy takes no progress report: it shows no progress window.
    saveThen({}, [this, path, type](const dxf::ProgressReport&) {
        saveAsReporting(runner_.session(), path.toStdWString(), type);
    }, {});
}

void MainWindow::chooseAndOpen()
{
    FileDialogRequest request;
    request.title = tr("Open Drawing");
    request.start = drawing_.path.isEmpty() ? QString() : QFileInfo(drawing_.path).absolutePath();
    request.extension = QStringLiteral("dxf");
    request.fileTypes = kDxfFilter;
    if (const auto chosen = chooseFileInDialog(this, request))
        openFile(chosen->path);
}

void MainWindow::openFile(const QString& path)
{
    const SaveFirst first = askToSave();
    if (first == SaveFirst::Cancel)
        return;
    const QString saveTo = first == SaveFirst::Yes ? savePath(false) : QString();
    if (first == SaveFirst::Yes && saveTo.isEmpty())
        return;
    saveThen(saveTo,
             [this, path](const dxf::ProgressReport& report) {
                 openDrawingReporting(runner_.session(), path.toStdWString(), report);
             },
             tr("Opening %1...").arg(QFileInfo(path).fileName()));
}

void MainWindow::commandLoopEnded()
{
    loopEnded_ = true;
    // QUIT typed: the question comes now. No command runs any more, so the
    // drawing is saved from here; Cancel cannot bring the session back.
    Session& session = runner_.session();
    if (!closing_ && session.modified()) {
        drawing_.modified = true;
        if (askToSave() == SaveFirst::Yes) {
            const QString path = savePath(false);
            if (!path.isEmpty())
                saveDrawingReporting(session, path.toStdWString());
        }
    }
    close();
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    if (loopEnded_) {
        storeSettings();
        event->accept();
        return;
    }
    // The window closes once the command loop has ended (loopEnded).
    event->ignore();
    if (closing_)
        return;
    const SaveFirst first = askToSave();
    if (first == SaveFirst::Cancel)
        return;
    const QString saveTo = first == SaveFirst::Yes ? savePath(false) : QString();
    if (first == SaveFirst::Yes && saveTo.isEmpty())
        return;
    closing_ = first == SaveFirst::No;
    if (first == SaveFirst::No) {
        runner_.stop();
        return;
    }
    saveThen(saveTo, [this](const dxf::ProgressReport&) { runner_.stop(); },
             tr("Saving %1...").arg(QFileInfo(saveTo).fileName()));
}

}  // namespace kaldo::ui
