// The text of one multiline style as a .mln style block.
#pragma once

#include <string>
#include <vector>

class KxDbMlineStyle;

namespace kdml {

// The block's lines (without line ends): MLSTYLE, name, flags, description,
// fill colour (62, and 420 / 430 when the colour has them), cap angles in
// decimal degrees with 14 decimals (DIMZIN is 0 while they are formatted and
// has its old value afterwards), the element count and per element 49
// (offset, "%.14f" with a decimal point), 62, 420 / 430 when present and 6
// when its linetype record opens, then 0. Value lines start with a blank.
std::vector<std::wstring> mlnStyleBlock(const KxDbMlineStyle& style);

}  // namespace kdml
