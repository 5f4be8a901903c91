// The preview record of the style manager: what its preview draws of the
// selected style, and what the new/modify dialog rewrites while the user
// edits so that the preview follows the edit.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "kxcmcolor.h"
#include "kxdbid.h"

class KxDbMlineStyle;

namespace kdml {

struct StylePreviewElement {
    double offset = 0.0;
    KxCmColor color;
    KxDbObjectId linetype;
};

struct StylePreviewData {
    std::wstring text;         // not drawn
    std::uint32_t flags = 0;   // the bits of a .mln flag word
    double startAngle = 0.0;   // radians
    double endAngle = 0.0;     // radians
    std::vector<StylePreviewElement> elements;  // in the style's element order
};

// Angles, elements (in order) and flag word of style.
void fillPreviewRecord(StylePreviewData& record, const KxDbMlineStyle& style);

}  // namespace kdml
