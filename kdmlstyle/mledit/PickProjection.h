// Finding the segment of an element line that holds a point, and carrying
// a pick across its segment onto another element line or the axis.
#pragma once

#include "mledit/MlineEditContext.h"

namespace kdml {

// Finds a segment of element line `element` that holds point, trying
// segment, segment+1, ... to the last, then segment-1, ... down to 0, then
// the closing segment of a closed multiline. False (segment unchanged) when
// none holds it or the starting segment is negative.
bool locateSegmentOfPoint(const MlinePick& pick, const KxGePoint3d& point, int element, int& segment);

// Where the line across the hit element line at the hit point meets the
// multiline's axis on the hit segment (the hit point when the lines do
// not meet).
KxGePoint3d projectPickToAxis(const MlinePick& pick);

// Carries the hit across its segment onto element line k: the mark takes
// the crossing, clamped onto the segment. For k = hitElement the mark
// becomes the hit. k = -1 means the axis: out receives the crossing and
// the mark stays.
void projectPickToElement(MlinePick& pick, int k, KxGePoint3d* out);

}  // namespace kdml
