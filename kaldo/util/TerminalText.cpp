#include "kaldo/util/TerminalText.h"

#include "kxstring.h"

namespace kaldo {

std::wstring withControlsShown(std::wstring_view text)
{
    std::wstring shown;
    shown.reserve(text.size());
    for (const wchar_t c : text) {
        const bool c0 = (c >= 0 && c < 0x20 && c != L'\n' && c != L'\t') || c == 0x7F;
        const bool c1 = c >= 0x80 && c <= 0x9F;
        if (c1)
            shown += L"M-";
        if (c0 || c1)
            shown += {L'^', static_cast<wchar_t>((c & 0x7F) ^ 0x40)};
        else
            shown += c;
    }
    return shown;
}

std::string terminalText(std::wstring_view text)
{
    return kxutToMultiByte(withControlsShown(text));
}

std::string terminalText(std::string_view multibyte)
{
    return terminalText(kxutFromMultiByte(std::string(multibyte)));
}

}  // namespace kaldo
