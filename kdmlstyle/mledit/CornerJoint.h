// Corner joint: two open multilines, or one picked twice, end in a corner.
// Both are cut back or lengthened to the crossing of the picked segments'
// axes on the side where they were picked, their caps there go, and each
// element ends at a partner element of the other so that the element lines
// form nested corners.
#pragma once

#include "mledit/MlineEditContext.h"

namespace kdml {

// Where the axes of segment s1 of one pick and segment s2 of the other
// cross (their lines, wherever the crossing lies).
KxGePoint3d axisCrossingOfSegments(const MlinePick& one, int s1, const MlinePick& other, int s2);

// The element of the other multiline (m elements) at which element e of one
// (n elements) ends. sameOrder: element 0 of each lies on the same side of
// the corner; atEnd: the corner is at the end of this multiline.
int cornerPartner(int e, int n, int m, bool sameOrder, bool atEnd);

// The edit of one pass, with both picks open for write. False when it
// changed nothing and its undo copies should go: segments of one direction
// or element lines that do not meet (message 4007), one multiline picked on
// neighbouring segments, or joined with itself in a way that keeps no
// corner.
bool editCornerJoint(MlineEditContext& context);

int runCornerJoint(MlineEditContext& context);

}  // namespace kdml
