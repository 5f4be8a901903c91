#include "kaldo/db/NameKey.h"

#include <algorithm>
#include <cwctype>

namespace kaldo {

wchar_t foldChar(wchar_t c)
{
    return static_cast<wchar_t>(std::towupper(c));
}

std::wstring foldName(std::wstring_view name)
{
    std::wstring key(name);
    std::transform(key.begin(), key.end(), key.begin(), foldChar);
    return key;
}

bool sameName(std::wstring_view a, std::wstring_view b)
{
    return foldName(a) == foldName(b);
}

}  // namespace kaldo
