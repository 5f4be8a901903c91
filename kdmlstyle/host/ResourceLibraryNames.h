// File names of the module's resource library.
#pragma once

#include <string>
#include <string_view>

namespace kdml {

// The library suffix behind the host's product pre-name, and the whole name
// when the host reports none.
inline constexpr const wchar_t* kResourceLibrarySuffix = L"MLStyleRes.so";
inline constexpr const wchar_t* kDefaultResourceLibrary = L"KdMLStyleRes.so";

// The entry-time library name from the module's own path: the file name
// without its extension, followed by "Res" and ".so" ("/x/KdMLStyle.krx"
// gives "KdMLStyleRes.so"). A path of 4 characters or fewer is returned
// unchanged.
std::wstring entryResourceLibraryName(std::wstring_view modulePath);

// The command-time library name: the host's product pre-name followed by
// kResourceLibrarySuffix, or kDefaultResourceLibrary when the host reports
// no pre-name.
std::wstring commandResourceLibraryName();

}  // namespace kdml
