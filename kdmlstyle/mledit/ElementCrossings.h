// The crossings of every element line of one multiline with every element
// line of another, at one pair of axis segments.
#pragma once

#include "mledit/MlineEditContext.h"

namespace kdml {

// Fills table (rows: elements of first; columns: elements of second) with
// the crossings of the element lines on segments segFirst and segSecond and
// the segments each crossing lies on (searched along the element lines when
// it lies beyond the given segment). False, table unchanged, when the two
// segments run in the same direction; false too when no pair crossed.
bool computeElementCrossings(const MlinePick& first, int segFirst, const MlinePick& second, int segSecond,
                             CrossingTable& table);

}  // namespace kdml
