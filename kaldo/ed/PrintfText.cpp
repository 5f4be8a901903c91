#include "kaldo/ed/PrintfText.h"

#include "kaldo/ed/Units.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cwchar>
#include <cwctype>
#include <type_traits>
#include <vector>

namespace kaldo {

namespace {

// One conversion as the C library writes it; nothing when it refuses.
template <class Value>
std::optional<std::wstring> converted(const std::wstring& spec, Value value)
{
    constexpr std::size_t kLargest = std::size_t{1} << 20;
    // swprintf reports a short buffer only as failure: grow until it fits.
    for (std::size_t size = 64; size <= kLargest; size *= 4) {
        std::vector<wchar_t> buffer(size);
        const int n = std::swprintf(buffer.data(), buffer.size(), spec.c_str(), value);
        if (n >= 0)
            return std::wstring(buffer.data(), static_cast<std::size_t>(n));
    }
    return std::nullopt;
}

// A real with its conversion: fixed point turns scientific for values too
// large to read in full.
template <class Real>
std::optional<std::wstring> convertedReal(std::wstring spec, wchar_t conversion, Real value)
{
    if ((conversion == L'f' || conversion == L'F') && std::isfinite(value)
        && std::fabs(value) >= Real(kLargestPlainNumber))
        conversion = L'E';
    return converted(spec + conversion, value);
}

// Writes format into out, taking each conversion's value from args.
bool formatInto(std::wstring& out, const wchar_t* format, std::va_list& args)
{
    for (const wchar_t* p = format; *p;) {
        if (*p != L'%') {
            out += *p++;
            continue;
        }
        ++p;
        if (*p == L'%') {
            out += *p++;
            continue;
        }
        std::wstring spec = L"%";
        while (*p && std::wcschr(L"-+ #0'", *p))
            spec += *p++;
        if (*p == L'*') {
            spec += std::to_wstring(va_arg(args, int));  // a negative width reads as '-' and the width
            ++p;
        }
        while (std::iswdigit(static_cast<wint_t>(*p)))
            spec += *p++;
        if (*p == L'.') {
            ++p;
            if (*p == L'*') {
                // A negative precision counts as none given.
                if (const int precision = va_arg(args, int); precision >= 0)
                    spec += L"." + std::to_wstring(precision);
                ++p;
            } else {
                spec += L'.';
                while (std::iswdigit(static_cast<wint_t>(*p)))
                    spec += *p++;
            }
        }
        std::wstring length;
        while (*p && std::wcschr(L"hljztLq", *p))
            length += *p++;
        const wchar_t conversion = *p;
        if (!conversion)
            return false;
        ++p;
        const std::wstring whole = spec + length + conversion;
        const bool longLong = length == L"ll" || length == L"q";
        std::optional<std::wstring> piece;
        switch (conversion) {
        case L'd':
        case L'i':
            if (longLong)
                piece = converted(whole, va_arg(args, long long));
            else if (length == L"l")
                piece = converted(whole, va_arg(args, long));
            else if (length == L"j")
                piece = converted(whole, va_arg(args, std::intmax_t));
            else if (length == L"z")
                piece = converted(whole, va_arg(args, std::make_signed_t<std::size_t>));
            else if (length == L"t")
                piece = converted(whole, va_arg(args, std::ptrdiff_t));
            else
                piece = converted(whole, va_arg(args, int));
            break;
        case L'o':
        case L'u':
        case L'x':
        case L'X':
            if (longLong)
                piece = converted(whole, va_arg(args, unsigned long long));
            else if (length == L"l")
                piece = converted(whole, va_arg(args, unsigned long));
            else if (length == L"j")
                piece = converted(whole, va_arg(args, std::uintmax_t));
            else if (length == L"z")
                piece = converted(whole, va_arg(args, std::size_t));
            else if (length == L"t")
                piece = converted(whole, va_arg(args, std::make_unsigned_t<std::ptrdiff_t>));
            else
                piece = converted(whole, va_arg(args, unsigned));
            break;
        case L'c':
            piece = length == L"l" ? converted(whole, va_arg(args, wint_t)) : converted(whole, va_arg(args, int));
            break;
        case L's':
            piece = length == L"l" ? converted(whole, va_arg(args, const wchar_t*))
                                   : converted(whole, va_arg(args, const char*));
            break;
        case L'f':
        case L'F':
        case L'e':
        case L'E':
        case L'g':
        case L'G':
        case L'a':
        case L'A':
            piece = length == L"L" ? convertedReal(spec + length, conversion, va_arg(args, long double))
                                   : convertedReal(spec + length, conversion, va_arg(args, double));
            break;
        case L'p': piece = converted(whole, va_arg(args, void*)); break;
        default: return false;  // %n among them: nothing is written through a pointer
        }
        if (!piece)
            return false;
        out += *piece;
    }
    return true;
}

}  // namespace

std::optional<std::wstring> printfText(const wchar_t* format, std::va_list args)
{
    std::va_list own;
    va_copy(own, args);
    std::wstring out;
    const bool written = formatInto(out, format, own);
    va_end(own);
    return written ? std::optional(std::move(out)) : std::nullopt;
}

}  // namespace kaldo
