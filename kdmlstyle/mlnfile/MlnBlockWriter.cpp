#include "mlnfile/MlnBlockWriter.h"

#include <array>
#include <charconv>

#include "host/ShortVariableScope.h"
#include "kxdb.h"
#include "kxedunits.h"
#include "mlnfile/MlnLineSource.h"
#include "mlnfile/StyleElementSetters.h"

namespace kdml {

namespace {

std::wstring valueLine(const std::wstring& text)
{
    return L" " + text;
}

std::wstring integerLine(long long value)
{
    return valueLine(std::to_wstring(value));
}

// The offset with 14 decimals and "." whatever the process's locale.
std::wstring offsetLine(double offset)
{
    std::array<char, kMlnLineBufferSize> text{};
    const auto [end, error] = std::to_chars(text.data(), text.data() + text.size() - 1, offset,
                                            std::chars_format::fixed, 14);
    return valueLine(error == std::errc() ? std::wstring(text.data(), end) : std::wstring(L"0"));
}

std::wstring angleLine(double radians)
{
    std::array<wchar_t, KXED_NUMBER_SIZE> text{};
    kxdbAngToS(radians, 0, 14, text.data());
    return valueLine(text.data());
}

// The colour-book key of a colour when it has one of a length the format
// takes; empty otherwise.
std::wstring colorBookKey(const KxCmColor& color)
{
    const int length = color.dictionaryKeyLength();
    return length >= 1 && length < static_cast<int>(kMlnLineBufferSize) ? color.getDictionaryKey() : L"";
}

std::uint32_t rgbOf(const KxCmColor& color)
{
    return color.color() & 0xFFFFFFu;
}

}  // namespace

std::vector<std::wstring> mlnStyleBlock(const KxDbMlineStyle& style)
{
    std::vector<std::wstring> lines = {L"MLSTYLE", L"2", valueLine(style.name()), L"70", integerLine(styleFlags(style)),
                                       L"3", valueLine(style.description()), L"62",
                                       integerLine(style.fillColor().colorIndex())};
    if (style.fillColor().isByColor()) {
        lines.push_back(L"420");
        lines.push_back(integerLine(rgbOf(style.fillColor())));
    }
    if (const std::wstring key = colorBookKey(style.fillColor()); !key.empty()) {
        lines.push_back(L"430");
        lines.push_back(valueLine(key));
    }
    {
        const ShortVariableScope noZeroSuppression(L"DIMZIN", 0);
        lines.insert(lines.end(), {L"51", angleLine(style.startAngle()), L"52", angleLine(style.endAngle())});
    }
    lines.push_back(L"71");
    lines.push_back(integerLine(style.numElements()));
    for (int i = 0; i < style.numElements(); ++i) {
        double offset = 0.0;
        KxCmColor color;
        KxDbObjectId linetype;
        style.getElementAt(i, offset, color, linetype);
        lines.insert(lines.end(), {L"49", offsetLine(offset), L"62", integerLine(color.colorIndex())});
        if (color.isByColor()) {
            lines.push_back(L"420");
            lines.push_back(integerLine(rgbOf(color)));
        }
        if (*color.colorName()) {
            if (const std::wstring key = colorBookKey(color); !key.empty()) {
                lines.push_back(L"430");
                lines.push_back(valueLine(key));
            }
        }
        if (KxDbObjectPtr<KxDbLinetypeTableRecord> record(linetype, KxDb::kForRead); record) {
            lines.push_back(L"6");
            lines.push_back(valueLine(record->name()));
        }
    }
    lines.push_back(L"0");
    return lines;
}

}  // namespace kdml
