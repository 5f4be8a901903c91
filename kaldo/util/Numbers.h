// Reading a number written as text, as files and records hold them.
#pragma once

#include <optional>
#include <string_view>

namespace kaldo {

// The number that text is as a whole, blanks around it allowed and a
// leading '+' too; nothing for anything else.
std::optional<double> parseNumber(std::string_view text);

}  // namespace kaldo
