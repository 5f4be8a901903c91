#include "host/FormattedText.h"

#include <cstdarg>
#include <cwchar>
#include <vector>

namespace kdml {

std::wstring formattedText(const wchar_t* format, ...)
{
    // vswprintf reports a short buffer only as failure: grow until it fits.
    constexpr std::size_t kLargest = std::size_t{1} << 20;
    for (std::size_t size = 256; size <= kLargest; size *= 4) {
        std::vector<wchar_t> buffer(size);
        std::va_list args;
        va_start(args, format);
        const int n = std::vswprintf(buffer.data(), buffer.size(), format, args);
        va_end(args);
        if (n >= 0)
            return {buffer.data(), static_cast<std::size_t>(n)};
    }
    return {};
}

}  // namespace kdml
