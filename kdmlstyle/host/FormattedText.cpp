#include "host/FormattedText.h"

#include "kxed.h"

#include <cstdarg>

namespace kdml {

std::wstring formattedText(const wchar_t* format, ...)
{
    std::va_list args;
    va_start(args, format);
    std::wstring text = kxutFormatV(format, args);
    va_end(args);
    return text;
}

}  // namespace kdml
