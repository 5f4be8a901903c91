// System variables as text, for the SETVAR command and for a variable's name
// typed as a command.
#pragma once

#include <string>
#include <string_view>

namespace kaldo {

bool isSystemVariable(std::wstring_view name);
// The current value as SETVAR shows it: integers as they are, reals and
// points (x,y,z) in the drawing's linear units, ANGBASE in its angular
// units, strings as they are. Empty for an unknown variable.
std::wstring variableAsText(std::wstring_view name);
// Sets a variable from text read as its type shows it. RTNORM, or RTERROR
// for an unknown or read-only variable or text that is no valid value.
int setVariableFromText(std::wstring_view name, std::wstring_view text);

}  // namespace kaldo
