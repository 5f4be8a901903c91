// Names of dictionary entries and table records compare without case.
#pragma once

#include <string>
#include <string_view>

namespace kaldo {

// A character of a name as its key holds it: in upper case.
wchar_t foldChar(wchar_t c);
// The name in upper case: the key under which it is stored and found.
std::wstring foldName(std::wstring_view name);
bool sameName(std::wstring_view a, std::wstring_view b);

}  // namespace kaldo
