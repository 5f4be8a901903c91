#include "kaldo/dlg/DialogRun.h"

#include "kaldo/dlg/ItemNotifications.h"
#include "kxuidialog.h"

#include <QCoreApplication>
#include <QDialog>
#include <QKeyEvent>
#include <QPushButton>

namespace kaldo::dlg {

namespace {

CRect toRect(const QRect& r)
{
    return {r.left(), r.top(), r.left() + r.width(), r.top() + r.height()};
}

QRect toQRect(const CRect& r)
{
    return QRect(r.left, r.top, r.Width(), r.Height());
}

// The edge a user dragged, from the frame before and after.
int draggedEdge(const QRect& before, const QRect& after)
{
    const bool left = after.left() != before.left();
    const bool top = after.top() != before.top();
    if (left)
        return top ? WMSZ_TOPLEFT : (after.bottom() != before.bottom() ? WMSZ_BOTTOMLEFT : WMSZ_LEFT);
    if (top)
        return after.right() != before.right() ? WMSZ_TOPRIGHT : WMSZ_TOP;
    if (after.right() != before.right())
        return after.bottom() != before.bottom() ? WMSZ_BOTTOMRIGHT : WMSZ_RIGHT;
    return WMSZ_BOTTOM;
}

// The virtual-key code of a Qt key; 0 for a key without one.
unsigned virtualKey(int key)
{
    switch (key) {
    case Qt::Key_Backspace: return VK_BACK;
    case Qt::Key_Tab: return VK_TAB;
    case Qt::Key_Return:
    case Qt::Key_Enter: return VK_RETURN;
    case Qt::Key_Escape: return VK_ESCAPE;
    case Qt::Key_Space: return VK_SPACE;
    case Qt::Key_Left: return VK_LEFT;
    case Qt::Key_Up: return VK_UP;
    case Qt::Key_Right: return VK_RIGHT;
    case Qt::Key_Down: return VK_DOWN;
    default: break;
    }
    const bool letterOrDigit = (key >= Qt::Key_0 && key <= Qt::Key_9) || (key >= Qt::Key_A && key <= Qt::Key_Z);
    return letterOrDigit ? unsigned(key) : 0;
}

// Hands the events of the whole application to a function before their
// receivers see them: keys go to whichever widget has the focus, so only
// an application-wide filter sees them before the dialog's items do.
class ApplicationFilter : public QObject {
public:
    explicit ApplicationFilter(std::function<bool(QObject*, QEvent*)> filter) : filter_(std::move(filter))
    {
        QCoreApplication::instance()->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override { return filter_(watched, event); }

private:
    std::function<bool(QObject*, QEvent*)> filter_;
};

}  // namespace

DialogRun::DialogRun(CDialog& dialog, QDialog& window)
    : dialog_(dialog), window_(window),
      keyHook_(std::make_unique<ApplicationFilter>(
          [this](QObject* receiver, QEvent* event) { return preTranslate(receiver, event); }))
{
    connect(&window_, &QDialog::finished, this, [this] { subject_.ended = true; });
    window_.installEventFilter(this);
    connectItemNotifications(window_, *this,
                             {[this](int id, int code) { command(id, code); },
                              [this](int id, int code, int index) { notify(id, code, index); }});
}

void DialogRun::guard(const std::function<void()>& handler)
{
    try {
        handler();
    } catch (...) {
        if (!failure_)
            failure_ = std::current_exception();
        window_.done(IDCANCEL);
    }
}

// Notifications come only while the window is shown: hiding it when the
// dialog ends moves the focus, which the dialog no longer hears of.
void DialogRun::command(int id, int code)
{
    if (window_.isVisible())
        guard([&] { dialog_.OnCommand(id, code); });
}

void DialogRun::notify(int id, int code, int index)
{
    if (window_.isVisible())
        guard([&] { dialog_.OnNotify(id, code, index); });
}

bool DialogRun::preTranslate(QObject* receiver, QEvent* event)
{
    const bool keyDown = event->type() == QEvent::KeyPress;
    if ((!keyDown && event->type() != QEvent::KeyRelease) || !receiver->isWidgetType() || !window_.isVisible()
        || !window_.isAncestorOf(static_cast<QWidget*>(receiver)))
        return false;
    const int key = static_cast<QKeyEvent*>(event)->key();
    MSG message{keyDown ? WM_KEYDOWN : WM_KEYUP, virtualKey(key)};
    bool handled = false;
    guard([&] { handled = dialog_.PreTranslateMessage(&message); });
    return handled || (keyDown && dialogKey(key));
}

// The keys of the dialog itself, before any item sees them: Escape is
// Cancel; Enter is OK, unless the focus is on a push button that can be
// the default button, which clicks itself (an image button never is). So
// no item keeps Enter to itself (an editable combo box would).
bool DialogRun::dialogKey(int key)
{
    if (key == Qt::Key_Escape) {
        command(IDCANCEL, BN_CLICKED);
        return true;
    }
    if (key != Qt::Key_Return && key != Qt::Key_Enter)
        return false;
    if (auto* button = qobject_cast<QPushButton*>(window_.focusWidget()); button && button->autoDefault())
        return false;
    command(IDOK, BN_CLICKED);
    return true;
}

bool DialogRun::eventFilter(QObject*, QEvent* event)
{
    switch (event->type()) {
    case QEvent::Close:
        event->ignore();
        command(IDCANCEL, BN_CLICKED);
        return true;
    case QEvent::Resize: {
        const QRect previous = std::exchange(geometry_, window_.frameGeometry());
        if (event->spontaneous() && previous.isValid())
            limitSizing(previous);
        guard([&] {
            dialog_.OnSize(window_.isMinimized() ? SIZE_MINIMIZED : SIZE_RESTORED, window_.width(), window_.height());
        });
        return false;
    }
    case QEvent::WindowStateChange:
        if (window_.isMinimized())
            guard([&] { dialog_.OnSize(SIZE_MINIMIZED, 0, 0); });
        return false;
    default: return false;
    }
}

void DialogRun::limitSizing(const QRect& previous)
{
    if (limiting_)
        return;
    const QRect dragged = window_.frameGeometry();
    CRect proposed = toRect(dragged);
    guard([&] { dialog_.OnSizing(draggedEdge(previous, dragged), &proposed); });
    if (toQRect(proposed) == dragged)
        return;
    limiting_ = true;
    const QSize frame = dragged.size() - window_.size();
    window_.move(proposed.left, proposed.top);
    window_.resize(proposed.Width() - frame.width(), proposed.Height() - frame.height());
    limiting_ = false;
}

int DialogRun::run()
{
    geometry_ = window_.frameGeometry();
    guard([this] { dialog_.OnInitDialog(); });
    subject_.window = &window_;
    subject_.title = L"Dialog " + std::to_wstring(dialog_.templateId()) + L": " + window_.windowTitle().toStdWString();
    subject_.closedPrefix = L"Dialog " + std::to_wstring(dialog_.templateId()) + L" closed: ";
    subject_.standardButton = [this](int id) {
        if (id != IDOK && id != IDCANCEL)
            return false;
        command(id, BN_CLICKED);
        return true;
    };
    subject_.escape = [this] {
        command(IDCANCEL, BN_CLICKED);
        if (window_.isVisible() || !subject_.ended)
            window_.done(IDCANCEL);
    };
    subject_.sizing = [this](QRect& proposed) {
        CRect rect = toRect(proposed);
        guard([&] { dialog_.OnSizing(WMSZ_BOTTOMRIGHT, &rect); });
        proposed = toQRect(rect);
    };
    return runModalLoop(subject_);
}

}  // namespace kaldo::dlg
