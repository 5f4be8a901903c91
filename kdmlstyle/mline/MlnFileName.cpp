#include "mline/MlnFileName.h"

#include <algorithm>

namespace kdml {

std::wstring typedMlnFileName(std::wstring text)
{
    if (text.find(L'.') == std::wstring::npos)
        text += L".mln";
    return barsToBlanks(std::move(text));
}

std::wstring barsToBlanks(std::wstring path)
{
    std::ranges::replace(path, L'|', L' ');
    return path;
}

}  // namespace kdml
