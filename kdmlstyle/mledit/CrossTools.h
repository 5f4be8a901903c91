// Closed, open and merged cross: two crossing multilines drawn as if one
// passes under the other, as if they cross openly, or as if they merge.
// Each only hides element runs at the crossing of the picked segments.
#pragma once

#include "mledit/MlineEditContext.h"

namespace kdml {

enum class CrossKind { Closed, Open, Merged };

// The edit of one pass, with both picks open for write: finds the crossing
// of the picked segments and cuts the element lines there. False when the
// axes do not cross (message 4007 unless the picks lie on neighbouring
// segments of one multiline).
bool editCrossing(MlineEditContext& context, CrossKind kind);

int runClosedCross(MlineEditContext& context);
int runOpenCross(MlineEditContext& context);
int runMergedCross(MlineEditContext& context);

}  // namespace kdml
