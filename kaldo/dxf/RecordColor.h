// Colours in records: 62 colour index, 420 true colour (red * 65536 +
// green * 256 + blue), 430 colour-book key "book$colour".
#pragma once

#include "kaldo/dxf/GroupReader.h"
#include "kxcmcolor.h"

namespace kaldo::dxf {

class GroupWriter;

// Takes group g into color when it is one of the colour codes.
bool readColorGroup(const Group& g, KxCmColor& color);
// 62 always (the nearest index for a true colour), 420 and 430 when set.
void writeColor(GroupWriter& writer, const KxCmColor& color);

}  // namespace kaldo::dxf
