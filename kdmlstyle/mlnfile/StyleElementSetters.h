// Operations that write one property into every element of a multiline
// style, the style's flag word, and the offsets read back. Each setter
// returns false only for a null style.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

class KxDbDatabase;
class KxDbMlineStyle;

namespace kdml {

// Bits of the .mln flag word (group 70) and of the style preview.
enum MlnStyleFlag : int {
    kMlnFill = 0x1,
    kMlnShowJoints = 0x2,
    kMlnStartLineCap = 0x10,
    kMlnStartInnerArcs = 0x20,
    kMlnStartOuterArc = 0x40,
    kMlnEndLineCap = 0x100,
    kMlnEndInnerArcs = 0x200,
    kMlnEndOuterArc = 0x400,
};

// The colour method of a true colour (0xC2) in the top byte of a colour
// value, as a .mln true colour (red * 65536 + green * 256 + blue) is ORed
// with it.
inline constexpr std::uint32_t kMlnTrueColorMethodBits = 0xC2000000u;

// Makes the style hold count elements: missing ones are appended (offset
// 0.5, a placeholder colour, no linetype), surplus ones are removed from the
// front so that the last ones remain.
bool setStyleElementCount(KxDbMlineStyle* style, int count);

// Element i gets the linetype names[i] resolves to in database; a null
// name, a name that resolves to nothing, or an element beyond the table
// keeps its linetype.
bool setStyleElementLinetypes(KxDbMlineStyle* style, std::span<const std::optional<std::wstring>> names,
                              KxDbDatabase* database);

// Element i gets offsets[i], elements beyond the table 0.0. A table without
// data (a default span) changes nothing.
bool setStyleElementOffsets(KxDbMlineStyle* style, std::span<const double> offsets);

// Element i gets colour index indices[i], elements beyond the table 256 (by
// layer). An entry above 256 (taken as unsigned, so negative ones too) is
// clamped to 256 in the table itself. A table without data changes nothing.
bool setStyleElementColorIndices(KxDbMlineStyle* style, std::span<std::int32_t> indices);

// Element i becomes the true colour trueColors[i] (red * 65536 + green *
// 256 + blue) when that entry is from 0 to 0xFFFFFF; other entries (-1:
// none) and elements beyond the table keep their colour.
bool setStyleElementTrueColors(KxDbMlineStyle* style, std::span<const std::int32_t> trueColors);

// Only when the table has data and its first entry is not null: element i
// (within the table) takes the colour-book names of keys[i] when that is a
// colour-book key, else its colour-book names are cleared.
bool setStyleElementColorBookKeys(KxDbMlineStyle* style, std::span<const std::optional<std::wstring>> keys);

// The fill, joint and cap flags from the bits of a .mln flag word; other
// bits are ignored.
bool setStyleFlags(KxDbMlineStyle* style, int flags);
// The flag word of a style, as the .mln writer and the preview use it.
int styleFlags(const KxDbMlineStyle& style);

// offsets[i] = the offset of element i, or 0.0 beyond the style's elements.
bool getStyleElementOffsets(const KxDbMlineStyle* style, std::span<double> offsets);

// A text usable as a colour-book key: not empty, not starting or ending
// with "$", and at most one "$" (a text without "$" is accepted).
bool isColorBookKey(const wchar_t* text);

}  // namespace kdml
