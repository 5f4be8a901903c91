// The 255 indexed colours as red, green and blue, and how an entity's or a
// style element's colour turns into the colour it is drawn in.
#pragma once

#include <cstdint>

#include "kaldo/view/Scene.h"
#include "kxcmcolor.h"

namespace kaldo::view {

// 0xRRGGBB of colour index 1..255 (7 as white); others give white.
std::uint32_t colorIndexRgb(int index);

// The index 1..255 whose colour is nearest to 0xRRGGBB (least sum of
// squared differences of the parts). Index 7 is left out: it is drawn in
// the foreground colour, not in white.
int nearestColorIndex(std::uint32_t rgb);

// The colour drawn for color: by layer takes layerColor, by block and
// index 7 are the foreground, a true colour keeps its parts.
DrawColor drawColor(const KxCmColor& color, const DrawColor& layerColor);

}  // namespace kaldo::view
