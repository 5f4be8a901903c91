#include "kxstring.h"

#include <climits>
#include <cstdlib>
#include <cstring>
#include <cwchar>

void kald_free(void* p)
{
    std::free(p);
}

wchar_t* kxutNewString(const wchar_t* text)
{
    const std::size_t n = text ? std::wcslen(text) : 0;
    auto* copy = static_cast<wchar_t*>(std::malloc((n + 1) * sizeof(wchar_t)));
    if (!copy)
        return nullptr;
    if (n)
        std::wmemcpy(copy, text, n);
    copy[n] = L'\0';
    return copy;
}

void kxutUpdString(const wchar_t* text, wchar_t*& buffer)
{
    wchar_t* copy = kxutNewString(text);
    std::free(buffer);
    buffer = copy;
}

void kxutDelBuffer(wchar_t*& buffer)
{
    std::free(buffer);
    buffer = nullptr;
}

std::string kxutToMultiByte(const std::wstring& text)
{
    std::string out;
    std::mbstate_t state{};
    char buf[MB_LEN_MAX];
    for (wchar_t c : text) {
        const std::size_t n = std::wcrtomb(buf, c, &state);
        if (n == static_cast<std::size_t>(-1)) {
            out.push_back('?');
            state = std::mbstate_t{};
        } else {
            out.append(buf, n);
        }
    }
    return out;
}

std::wstring kxutFromMultiByte(const std::string& text)
{
    std::wstring out;
    std::mbstate_t state{};
    const char* p = text.data();
    std::size_t left = text.size();
    while (left > 0) {
        wchar_t c = 0;
        const std::size_t n = std::mbrtowc(&c, p, left, &state);
        if (n == static_cast<std::size_t>(-1) || n == static_cast<std::size_t>(-2)) {
            out.push_back(L'?');
            state = std::mbstate_t{};
            ++p;
            --left;
            continue;
        }
        const std::size_t used = n == 0 ? 1 : n;
        out.push_back(c);
        p += used;
        left -= used;
    }
    return out;
}
