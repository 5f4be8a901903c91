// Closed, open and merged tee: the end of one multiline (the stem, picked
// first) meets the side of another (the bar). The stem is cut back or
// lengthened to the bar's axis on the side where it was picked, its caps
// there go and its elements end at the bar's element lines; the open tee
// opens the bar's near element between the stem's outer elements, the
// merged tee opens the bar's elements from the near side by depth.
#pragma once

#include "mledit/MlineEditContext.h"

namespace kdml {

enum class TeeKind { Closed, Open, Merged };

// The bar element at which each stem element ends and the bar elements
// opened, for a stem of nA and a bar of nB elements; near is the bar's
// element on the stem's side (0 or nB - 1).
struct TeePlan {
    std::vector<int> stemEnds;  // per stem element: the bar element
    std::vector<int> opened;    // bar elements opened, outermost first
};
// The plan of the open and merged tee (the closed tee chooses per element).
TeePlan planTee(TeeKind kind, int nA, int nB, int near);

// The edit of one pass, with both picks open for write. False when it
// changed nothing and its undo copies should go: no crossing of the axes
// within the bar's segment (message 4007 unless the picks lie on
// neighbouring segments of one multiline), or a stem and bar on one
// multiline picked so that the bar would be cut off (message 4017).
bool editTee(MlineEditContext& context, TeeKind kind);

int runClosedTee(MlineEditContext& context);
int runOpenTee(MlineEditContext& context);
int runMergedTee(MlineEditContext& context);

}  // namespace kdml
