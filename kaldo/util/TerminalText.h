// Text on its way to a terminal (standard output and standard error). A
// drawing, a script or a style file may hold any character; control
// characters are shown, never sent, so that none of them can drive the
// user's terminal: C0 controls (other than line ends and tabs) and DEL as
// ^X, C1 controls (U+0080 to U+009F) as M-^X, the forms `cat -v` gives.
#pragma once

#include <string>
#include <string_view>

namespace kaldo {

std::wstring withControlsShown(std::wstring_view text);

// The text with its controls shown, in the locale's multibyte form. A
// multibyte message is read in the locale first; bytes that start no
// character there show as '?'.
std::string terminalText(std::wstring_view text);
std::string terminalText(std::string_view multibyte);

}  // namespace kaldo
