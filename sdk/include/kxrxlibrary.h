// Loading a module's own libraries (resource libraries) and reading their
// strings.
//
// The loader functions are defined here, with internal linkage, so that the
// dlopen runs from the module's own code: a bare name is then searched in the
// module's RUNPATH ($ORIGIN, the module's folder) first.
#pragma once

#include "kxstring.h"

#include <dlfcn.h>

#include <algorithm>
#include <cwchar>

// A resource library exports its string table as this C function: the text
// of id, or null when it has none.
using KxResStringFn = const wchar_t* (*)(unsigned id);
inline constexpr const char* kxResStringSymbol = "kxresString";
// A resource library that holds dialog templates and images exports the root
// of its Qt resources as this C function (e.g. ":/KdMLStyleRes"): templates
// lie in its folder "dialogs" as ID.ui, images in "bitmaps" as NAME.png.
using KxResRootFn = const char* (*)();
inline constexpr const char* kxResRootSymbol = "kxresQtRoot";

// Loads a library by bare name (or path); null when it cannot be loaded.
static inline void* kxLoadLibrary(const wchar_t* name)
{
    if (!name || !*name)
        return nullptr;
    return dlopen(kxutToMultiByte(name).c_str(), RTLD_NOW | RTLD_LOCAL);
}

static inline void kxFreeLibrary(void* handle)
{
    if (handle)
        dlclose(handle);
}

// The text of id in the resource library handle, or null.
static inline const wchar_t* kxResourceText(void* handle, unsigned id)
{
    if (!handle)
        return nullptr;
    const auto table = reinterpret_cast<KxResStringFn>(dlsym(handle, kxResStringSymbol));
    return table ? table(id) : nullptr;
}

// Copies the text of id into buffer (size characters, always terminated).
// Returns the number of characters copied, 0 when there is no such text.
static inline int kxLoadString(void* handle, unsigned id, wchar_t* buffer, int size)
{
    if (!buffer || size <= 0)
        return 0;
    buffer[0] = L'\0';
    const wchar_t* text = kxResourceText(handle, id);
    if (!text)
        return 0;
    const std::size_t n = std::min(std::wcslen(text), static_cast<std::size_t>(size - 1));
    std::wmemcpy(buffer, text, n);
    buffer[n] = L'\0';
    return static_cast<int>(n);
}
