// Upper- and lower-case copies of multiline style names. MLINE looks a
// typed name up and loads it in lower case, and stores the current style in
// upper case.
#pragma once

#include <string>
#include <string_view>

namespace kdml {

// Should the conversion fail, the failure is handed to the host's crash
// recorder and the name comes back unchanged.
std::wstring upperCaseStyleName(std::wstring_view name);
std::wstring lowerCaseStyleName(std::wstring_view name);

}  // namespace kdml
