#include "kaldo/dxf/RecordColor.h"

#include "kaldo/dxf/GroupWriter.h"
#include "kaldo/util/Utf8.h"

#include <cstdlib>

namespace kaldo::dxf {

bool readColorGroup(const Group& g, KxCmColor& color)
{
    switch (g.code) {
    case 62: {
        // A layer that is off stores its colour negative.
        const auto index = std::abs(toInteger(g));
        if (color.isByColor())
            return true;
        if (color.setColorIndex(int(index)) != Kald::eOk)
            color.setColorIndex(KxCmColor::kIndexByLayer);
        return true;
    }
    case 420: {
        const auto rgb = std::uint32_t(toInteger(g)) & 0xFFFFFFu;
        color.setRGB(std::uint8_t(rgb >> 16), std::uint8_t(rgb >> 8), std::uint8_t(rgb));
        return true;
    }
    case 430:
        color.setNamesFromDictionaryKey(wideFromUtf8(g.value).c_str());
        return true;
    default:
        return false;
    }
}

void writeColor(GroupWriter& w, const KxCmColor& color, bool indexWithTrueColor)
{
    if (indexWithTrueColor || !color.isByColor())
        w.integer(62, color.colorIndex());
    if (color.isByColor())
        w.integer(420, color.color() & 0xFFFFFFu);
    // A colour name without its book has no key: it is written alone, as a
    // key without "$" reads back, when it holds no "$" itself.
    const std::wstring key = color.getDictionaryKey();
    const std::wstring name = color.colorName();
    if (!key.empty())
        w.wide(430, key);
    else if (!name.empty() && name.find(L'$') == std::wstring::npos)
        w.wide(430, name);
}

}  // namespace kaldo::dxf
