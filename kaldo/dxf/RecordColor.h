// Colours in records: 62 colour index, 420 true colour (red * 65536 +
// green * 256 + blue), 430 colour-book key "book$colour".
#pragma once

#include "kaldo/dxf/GroupReader.h"
#include "kxcmcolor.h"

namespace kaldo::dxf {

class GroupWriter;

// Takes group g into color when it is one of the colour codes.
bool readColorGroup(const Group& g, KxCmColor& color);
// 62 (for a true colour the nearest index, unless indexWithTrueColor is
// false), 420 and 430 when set.
void writeColor(GroupWriter& writer, const KxCmColor& color, bool indexWithTrueColor = true);

}  // namespace kaldo::dxf
