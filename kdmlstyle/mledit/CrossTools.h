// Closed, open and merged cross: two crossing multilines drawn as if one
// passes under the other, as if they cross openly, or as if they merge.
// Each only hides element runs at the crossing of the picked segments.
#pragma once

#include "mledit/MlineEditContext.h"

namespace kdml {

int runClosedCross(MlineEditContext& context);
int runOpenCross(MlineEditContext& context);
int runMergedCross(MlineEditContext& context);

}  // namespace kdml
