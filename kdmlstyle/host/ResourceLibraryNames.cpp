#include "host/ResourceLibraryNames.h"

#include "kxhost.h"

#include <array>

namespace kdml {

std::wstring entryResourceLibraryName(std::wstring_view modulePath)
{
    if (modulePath.size() <= 4)
        return std::wstring(modulePath);
    const std::size_t slash = modulePath.rfind(L'/');
    const std::size_t start = slash == std::wstring_view::npos ? 0 : slash + 1;
    std::size_t stop = modulePath.rfind(L'.');
    if (stop == std::wstring_view::npos || stop < start)
        stop = modulePath.size();
    return std::wstring(modulePath.substr(start, stop - start)) + L"Res" + L".so";
}

std::wstring commandResourceLibraryName()
{
    std::array<wchar_t, 1024> preName{};
    if (GetKaldProductPreName(preName.data(), static_cast<int>(preName.size())))
        return std::wstring(preName.data()) + kResourceLibrarySuffix;
    return kDefaultResourceLibrary;
}

}  // namespace kdml
