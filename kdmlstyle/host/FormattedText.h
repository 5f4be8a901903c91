// printf-style formatting of wide texts into a string, for prompts that
// carry a value: the host's formatting, as kxutPrintf writes.
#pragma once

#include <string>

namespace kdml {

// The text of format with the arguments filled in (wide printf: %ls for
// wide strings). An empty string when the format cannot be applied.
std::wstring formattedText(const wchar_t* format, ...);

}  // namespace kdml
