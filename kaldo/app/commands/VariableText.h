// System-variable values as SETVAR shows and reads them: integers as they
// are, reals in their shortest exact form, points as "x,y,z", strings as
// they are.
#pragma once

#include "kaldo/ed/SystemVariables.h"

#include <optional>
#include <string>
#include <string_view>

namespace kaldo {

std::wstring variableText(const VariableValue& value);

// text read as a value of the same type as current; nothing when it is not
// one (a fraction for an integer, a word for a real, no point for a point).
std::optional<VariableValue> parseVariableText(const VariableValue& current, std::wstring_view text);

}  // namespace kaldo
