// Wide printf formatting as the host writes it on the command line: every
// conversion as the C library writes it, except fixed-point reals (%f, %F)
// of magnitude kLargestPlainNumber or more, which come out in scientific
// form with the same precision ("%.4f" of 1e308 gives "1.0000E+308"), as
// linear units write such numbers.
#pragma once

#include <cstdarg>
#include <optional>
#include <string>

namespace kaldo {

// The text of format with args filled in; nothing for a format the C
// library would refuse.
std::optional<std::wstring> printfText(const wchar_t* format, std::va_list args);

}  // namespace kaldo
