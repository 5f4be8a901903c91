// One dialog action of a script (CLICK, TEXT, CHECK, SELECT, DBLCLICK,
// HEADER, SIZE, SHOW, GRAB) carried out on a modal window as a person would,
// so that the window's own notifications run. An action that names no item,
// an item that is disabled or hidden, or one the item cannot take is refused
// with a line on the command line and changes nothing.
#pragma once

#include <QtCore/qnamespace.h>

#include <string>

class QWidget;

namespace kaldo {
class Editor;
}

namespace kaldo::dlg {

struct ModalSubject;

void performScriptAction(const std::wstring& line, ModalSubject& subject, Editor& editor);

// A key pressed and released on receiver as a keyboard sends it: the
// dialog's key handling (PreTranslateMessage) sees it first.
void pressKey(QWidget& receiver, Qt::Key key);
// The Enter key pressed in the window (an empty script line): it goes to
// the focus widget and on as a pressed Enter does.
void pressEnter(ModalSubject& subject);

// What SHOW prints: the title line, then a line per item.
std::wstring describeDialog(const ModalSubject& subject);

}  // namespace kaldo::dlg
