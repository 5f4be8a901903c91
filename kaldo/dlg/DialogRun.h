// One modal run of a dialog object on its loaded window: every key for the
// window or its items goes first to the dialog's PreTranslateMessage, then
// Enter and Escape to the dialog's OK and Cancel; the items' notifications
// and the window's closing and sizing go to the dialog's handlers; an
// exception a handler throws is kept, ends the dialog, and is handed back
// to the caller once the window is gone.
#pragma once

#include "kaldo/dlg/ModalLoop.h"

#include <QObject>
#include <QRect>

#include <exception>
#include <functional>
#include <memory>

class CDialog;
class QDialog;

namespace kaldo::dlg {

class DialogRun : public QObject {
public:
    DialogRun(CDialog& dialog, QDialog& window);

    // Runs OnInitDialog and then the modal loop; returns the modal result.
    int run();
    // Runs a handler; what it throws is kept and ends the dialog.
    void guard(const std::function<void()>& handler);
    std::exception_ptr failure() const { return failure_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void command(int id, int code);
    void notify(int id, int code, int index);
    // A key for the window or one of its items; true when the dialog
    // handled it.
    bool preTranslate(QObject* receiver, QEvent* event);
    bool dialogKey(int key);
    // A size the user dragged the window to, limited by OnSizing.
    void limitSizing(const QRect& previous);

    CDialog& dialog_;
    QDialog& window_;
    std::unique_ptr<QObject> keyHook_;
    ModalSubject subject_;
    std::exception_ptr failure_;
    QRect geometry_;  // the window's frame before the latest size change
    bool limiting_ = false;
};

}  // namespace kaldo::dlg
