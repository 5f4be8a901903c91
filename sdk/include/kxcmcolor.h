// Colours of entities and style elements. A colour is one 32-bit value:
// the colour method in the top byte and, below it, either a colour index
// (methods by layer, by block, by index) or red * 65536 + green * 256 + blue
// (true colour, method 0xC2). A colour may also carry colour-book names,
// written as a dictionary key "book$colour"; those are rare and held
// apart, so that a colour without them costs its value and a null pointer.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "kxtypes.h"

class KxCmColor {
public:
    enum ColorMethod : std::uint8_t {
        kByLayer = 0xC0,
        kByBlock = 0xC1,
        kByColor = 0xC2,  // true colour
        kByACI = 0xC3,    // colour index 1..255
        kNone = 0xC8,
    };
    static constexpr int kIndexByBlock = 0;
    static constexpr int kIndexByLayer = 256;

    KxCmColor() = default;  // by layer
    KxCmColor(const KxCmColor& other) : m_value(other.m_value), m_names(other.copyOfNames()) {}
    KxCmColor& operator=(const KxCmColor& other)
    {
        if (this != &other) {
            m_value = other.m_value;
            m_names = other.copyOfNames();
        }
        return *this;
    }
    KxCmColor(KxCmColor&&) noexcept = default;
    KxCmColor& operator=(KxCmColor&&) noexcept = default;

    ColorMethod colorMethod() const { return static_cast<ColorMethod>(m_value >> 24); }
    // Switches the method; the index or rgb part is kept when it fits the
    // new method and reset otherwise (index 7 for by index, 0 for true colour).
    Kald::ErrorStatus setColorMethod(ColorMethod method);

    // The whole value. setColor takes a value whose top byte is a known
    // method as is; any other value is taken as a colour index (an index
    // out of 0..256 becomes by layer).
    std::uint32_t color() const { return m_value; }
    Kald::ErrorStatus setColor(std::uint32_t value);

    bool isByLayer() const { return colorMethod() == kByLayer; }
    bool isByBlock() const { return colorMethod() == kByBlock; }
    bool isByACI() const { return colorMethod() == kByACI; }
    bool isByColor() const { return colorMethod() == kByColor; }

    // 0 by block, 256 by layer, 1..255 an index. For a true colour the
    // nearest of the seven basic colours 1..7.
    int colorIndex() const;
    // 0 by block, 256 by layer, 1..255 by index; other values eOutOfRange.
    Kald::ErrorStatus setColorIndex(int index);

    Kald::ErrorStatus setRGB(std::uint8_t red, std::uint8_t green, std::uint8_t blue);
    // For a true colour its parts; for an indexed colour those of the
    // basic colours (white for others).
    std::uint8_t red() const;
    std::uint8_t green() const;
    std::uint8_t blue() const;

    // Colour-book names; both empty when the colour has none.
    Kald::ErrorStatus setNames(const wchar_t* colorName, const wchar_t* bookName = nullptr);
    const wchar_t* colorName() const { return m_names ? m_names->colorName.c_str() : L""; }
    const wchar_t* bookName() const { return m_names ? m_names->bookName.c_str() : L""; }
    bool hasColorBookNames() const { return m_names && !m_names->key.empty(); }
    // "book$colour", or an empty text when the colour has no book names.
    const wchar_t* getDictionaryKey() const { return m_names ? m_names->key.c_str() : L""; }
    int dictionaryKeyLength() const { return m_names ? static_cast<int>(m_names->key.size()) : 0; }
    // Splits "book$colour" into the two names; an empty or null text clears
    // them; a text without "$" is a colour name without a book. Returns false
    // when the text has more than one "$".
    bool setNamesFromDictionaryKey(const wchar_t* key);

    // "ByLayer", "ByBlock", "red" .. "white" for 1..7, "Color 8" etc.,
    // "R,G,B" (decimal parts) for a true colour; a colour with book names
    // shows its colour name.
    std::wstring colorNameForDisplay() const;

    friend bool operator==(const KxCmColor& a, const KxCmColor& b)
    {
        return a.m_value == b.m_value && (a.m_names && b.m_names ? *a.m_names == *b.m_names : a.m_names == b.m_names);
    }

private:
    // Held only while at least one name is set.
    struct Names {
        std::wstring colorName;
        std::wstring bookName;
        std::wstring key;  // "book$colour" when both are set
        friend bool operator==(const Names&, const Names&) = default;
    };
    std::unique_ptr<Names> copyOfNames() const { return m_names ? std::make_unique<Names>(*m_names) : nullptr; }

    std::uint32_t m_value = std::uint32_t(kByLayer) << 24 | kIndexByLayer;
    std::unique_ptr<Names> m_names;
};
