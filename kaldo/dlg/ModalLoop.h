// The modal run of every dialog and message box: a real event loop of the
// window; and, while a script feeds input, the transcript lines when it
// opens and closes and the script's dialog actions, one line each time the
// window is waiting for input, until it closes.
#pragma once

#include <QRect>

#include <functional>
#include <string>

class QDialog;

namespace kaldo::dlg {

// A window in its modal run and what scripts can do with it beside acting
// on its items.
struct ModalSubject {
    QDialog* window = nullptr;
    // The opening line ("Dialog 5758: caption", "Message: text"), also the
    // first line of SHOW; the closing line's start ("Dialog 5758 closed: ").
    std::wstring title;
    std::wstring closedPrefix;
    // CLICK of an id that names no item of the window (1 and 2 of a
    // dialog); false when the window takes no such action.
    std::function<bool(int id)> standardButton;
    // Escape: ^C and the end of the script.
    std::function<void()> escape;
    // Adjusts a proposed window rectangle (screen coordinates) before SIZE
    // applies it; may be empty.
    std::function<void(QRect& proposed)> sizing;
    // The modal result from exec's value; may be empty (exec's value).
    std::function<int(int execResult)> result;
    // True when the window was ended before its loop could start.
    bool ended = false;
};

// Runs the subject's window modally and returns its modal result.
int runModalLoop(ModalSubject& subject);

// The name of a modal result in the transcript: OK, Cancel, Yes, No or the
// number.
std::wstring resultName(int result);

}  // namespace kaldo::dlg
