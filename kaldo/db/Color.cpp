#include "kxcmcolor.h"

#include <array>
#include <string>

namespace {

constexpr std::uint32_t kRgbMask = 0x00FFFFFF;

struct BasicColor {
    const wchar_t* name;
    std::uint8_t r, g, b;
};

// Colour indices 1..7.
constexpr std::array<BasicColor, 7> kBasicColors{{
    {L"red", 255, 0, 0},
    {L"yellow", 255, 255, 0},
    {L"green", 0, 255, 0},
    {L"cyan", 0, 255, 255},
    {L"blue", 0, 0, 255},
    {L"magenta", 255, 0, 255},
    {L"white", 255, 255, 255},
}};

std::uint32_t withMethod(KxCmColor::ColorMethod method, std::uint32_t low)
{
    return std::uint32_t(method) << 24 | (low & kRgbMask);
}

bool isKnownMethod(std::uint32_t method)
{
    switch (method) {
    case KxCmColor::kByLayer:
    case KxCmColor::kByBlock:
    case KxCmColor::kByColor:
    case KxCmColor::kByACI:
    case KxCmColor::kNone:
        return true;
    default:
        return false;
    }
}

}  // namespace

Kald::ErrorStatus KxCmColor::setColorMethod(ColorMethod method)
{
    if (!isKnownMethod(method))
        return Kald::eInvalidInput;
    if (method == colorMethod())
        return Kald::eOk;
    switch (method) {
    case kByLayer:
        m_value = withMethod(kByLayer, kIndexByLayer);
        break;
    case kByBlock:
        m_value = withMethod(kByBlock, kIndexByBlock);
        break;
    case kByACI:
        m_value = withMethod(kByACI, 7);
        break;
    case kByColor:
    case kNone:
        m_value = withMethod(method, 0);
        break;
    }
    return Kald::eOk;
}

Kald::ErrorStatus KxCmColor::setColor(std::uint32_t value)
{
    if (isKnownMethod(value >> 24)) {
        m_value = value;
        return Kald::eOk;
    }
    if (setColorIndex(static_cast<int>(value)) != Kald::eOk)
        setColorIndex(kIndexByLayer);
    return Kald::eOk;
}

int KxCmColor::colorIndex() const
{
    switch (colorMethod()) {
    case kByLayer:
        return kIndexByLayer;
    case kByBlock:
        return kIndexByBlock;
    case kByACI:
        return static_cast<int>(m_value & 0xFF);
    case kByColor: {
        int best = 7;
        long bestDistance = -1;
        for (std::size_t i = 0; i < kBasicColors.size(); ++i) {
            const long dr = long(red()) - kBasicColors[i].r;
            const long dg = long(green()) - kBasicColors[i].g;
            const long db = long(blue()) - kBasicColors[i].b;
            const long d = dr * dr + dg * dg + db * db;
            if (bestDistance < 0 || d < bestDistance) {
                bestDistance = d;
                best = static_cast<int>(i) + 1;
            }
        }
        return best;
    }
    default:
        return kIndexByLayer;
    }
}

Kald::ErrorStatus KxCmColor::setColorIndex(int index)
{
    if (index == kIndexByBlock)
        m_value = withMethod(kByBlock, kIndexByBlock);
    else if (index == kIndexByLayer)
        m_value = withMethod(kByLayer, kIndexByLayer);
    else if (index >= 1 && index <= 255)
        m_value = withMethod(kByACI, static_cast<std::uint32_t>(index));
    else
        return Kald::eOutOfRange;
    return Kald::eOk;
}

Kald::ErrorStatus KxCmColor::setRGB(std::uint8_t r, std::uint8_t g, std::uint8_t b)
{
    m_value = withMethod(kByColor, std::uint32_t(r) << 16 | std::uint32_t(g) << 8 | b);
    return Kald::eOk;
}

std::uint8_t KxCmColor::red() const
{
    if (isByColor())
        return static_cast<std::uint8_t>(m_value >> 16);
    const int i = colorIndex();
    return i >= 1 && i <= 7 ? kBasicColors[std::size_t(i - 1)].r : 255;
}

std::uint8_t KxCmColor::green() const
{
    if (isByColor())
        return static_cast<std::uint8_t>(m_value >> 8);
    const int i = colorIndex();
    return i >= 1 && i <= 7 ? kBasicColors[std::size_t(i - 1)].g : 255;
}

std::uint8_t KxCmColor::blue() const
{
    if (isByColor())
        return static_cast<std::uint8_t>(m_value);
    const int i = colorIndex();
    return i >= 1 && i <= 7 ? kBasicColors[std::size_t(i - 1)].b : 255;
}

Kald::ErrorStatus KxCmColor::setNames(const wchar_t* colorName, const wchar_t* bookName)
{
    std::wstring color = colorName ? colorName : L"";
    std::wstring book = bookName ? bookName : L"";
    if (color.empty() && book.empty()) {
        m_names.reset();
        return Kald::eOk;
    }
    std::wstring key = color.empty() || book.empty() ? std::wstring() : book + L"$" + color;
    m_names = std::make_unique<Names>(Names{std::move(color), std::move(book), std::move(key)});
    return Kald::eOk;
}

bool KxCmColor::setNamesFromDictionaryKey(const wchar_t* key)
{
    const std::wstring text = key ? key : L"";
    const std::size_t dollar = text.find(L'$');
    if (dollar == std::wstring::npos) {
        setNames(text.c_str(), nullptr);
        return true;
    }
    if (text.find(L'$', dollar + 1) != std::wstring::npos)
        return false;
    setNames(text.substr(dollar + 1).c_str(), text.substr(0, dollar).c_str());
    return true;
}

std::wstring KxCmColor::colorNameForDisplay() const
{
    if (m_names && !m_names->colorName.empty())
        return m_names->colorName;
    switch (colorMethod()) {
    case kByLayer:
        return L"ByLayer";
    case kByBlock:
        return L"ByBlock";
    case kByColor:
        return std::to_wstring(red()) + L"," + std::to_wstring(green()) + L"," + std::to_wstring(blue());
    case kNone:
        return L"None";
    case kByACI: {
        const int i = colorIndex();
        if (i >= 1 && i <= 7)
            return kBasicColors[std::size_t(i - 1)].name;
        return L"Color " + std::to_wstring(i);
    }
    }
    return L"ByLayer";
}
