#include "kaldo/ed/Text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cwctype>

namespace kaldo {

namespace {
bool isBlank(wchar_t c)
{
    return std::iswspace(static_cast<wint_t>(c)) != 0;
}
}  // namespace

std::wstring_view trimmed(std::wstring_view text)
{
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

std::vector<std::wstring_view> splitWords(std::wstring_view text)
{
    std::vector<std::wstring_view> words;
    std::size_t i = 0;
    while (i < text.size()) {
        while (i < text.size() && isBlank(text[i]))
            ++i;
        const std::size_t start = i;
        while (i < text.size() && !isBlank(text[i]))
            ++i;
        if (i > start)
            words.push_back(text.substr(start, i - start));
    }
    return words;
}

bool equalsNoCase(std::wstring_view a, std::wstring_view b)
{
    return std::ranges::equal(a, b, [](wchar_t x, wchar_t y) {
        return std::towupper(static_cast<wint_t>(x)) == std::towupper(static_cast<wint_t>(y));
    });
}

std::wstring toUpper(std::wstring_view text)
{
    std::wstring upper(text);
    for (wchar_t& c : upper)
        c = static_cast<wchar_t>(std::towupper(static_cast<wint_t>(c)));
    return upper;
}

std::optional<double> parseLeadingReal(std::wstring_view text, std::size_t& count)
{
    std::string ascii;
    for (wchar_t c : text) {
        if (c < 0 || c > 0x7f)
            break;
        ascii.push_back(static_cast<char>(c));
    }
    std::size_t skip = 0;
    if (!ascii.empty() && ascii.front() == '+' && (ascii.size() < 2 || ascii[1] != '-'))
        skip = 1;
    double value = 0;
    const char* begin = ascii.data() + skip;
    const auto [end, error] = std::from_chars(begin, ascii.data() + ascii.size(), value);
    if (error != std::errc() || !std::isfinite(value))
        return std::nullopt;
    count = static_cast<std::size_t>(end - ascii.data());
    return value;
}

std::optional<double> parseReal(std::wstring_view text)
{
    text = trimmed(text);
    std::size_t count = 0;
    const auto value = parseLeadingReal(text, count);
    if (!value || count != text.size())
        return std::nullopt;
    return value;
}

void copyToBuffer(std::wstring_view text, wchar_t* out, std::size_t size)
{
    if (!out || size == 0)
        return;
    const std::size_t n = std::min(text.size(), size - 1);
    std::copy_n(text.begin(), n, out);
    out[n] = L'\0';
}

}  // namespace kaldo
