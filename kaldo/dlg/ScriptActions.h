// One dialog action of a script (CLICK, TEXT, CHECK, SELECT, DBLCLICK,
// HEADER, SIZE, SHOW, GRAB) carried out on a modal window as a person would,
// so that the window's own notifications run. An action that names no item,
// an item that is disabled or hidden, or one the item cannot take is refused
// with a line on the command line and changes nothing.
#pragma once

#include <string>

namespace kaldo {
class Editor;
}

namespace kaldo::dlg {

struct ModalSubject;

void performScriptAction(const std::wstring& line, ModalSubject& subject, Editor& editor);

// What SHOW prints: the title line, then a line per item.
std::wstring describeDialog(const ModalSubject& subject);

}  // namespace kaldo::dlg
