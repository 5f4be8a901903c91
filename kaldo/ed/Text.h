// Small text helpers of the command line: trimming, splitting into words,
// comparison without case, locale-independent numbers.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kaldo {

std::wstring_view trimmed(std::wstring_view text);
// The blank-separated words of text (no empty words).
std::vector<std::wstring_view> splitWords(std::wstring_view text);
bool equalsNoCase(std::wstring_view a, std::wstring_view b);
std::wstring toUpper(std::wstring_view text);

// A real number written in the C locale ("1.5", "-2", ".5", "1e3", "+4"),
// the whole text (blanks around it allowed) and finite; nothing otherwise.
std::optional<double> parseReal(std::wstring_view text);
// The number at the start of text; count receives the characters it used.
std::optional<double> parseLeadingReal(std::wstring_view text, std::size_t& count);

// Copies text into a caller's buffer of size characters (size >= 1),
// cutting it to size - 1 characters.
void copyToBuffer(std::wstring_view text, wchar_t* out, std::size_t size);

}  // namespace kaldo
