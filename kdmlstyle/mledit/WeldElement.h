// Drawing one element line of a multiline through again between two marks.
#pragma once

#include "mledit/ElementRuns.h"
#include "mledit/MlineEditContext.h"

namespace kdml {

// Carries the weld pick onto element line k: the mark takes the crossing of
// the line across the hit point with segment hitSegment of line k, snapped
// to the segment's start, or to its end when it lies at or beyond it.
void projectMarkForWeld(MlinePick& pick, int k);

// Whether distance d along a segment lies in a gap (gap set) or on a drawn
// run (gap clear) of an element list; entries within t of d count as
// before it.
bool runStateAt(const std::vector<double>& list, double d, bool gap, double t);
// runStateAt on the list of the pick's mark; false without a multiline.
bool markRunState(const MlinePick& pick, bool gap, double t);

// One end of a weld on an element line.
struct WeldMark {
    KxGePoint3d point;
    double distance = 0;
    int segment = 0;
};

// Rewrites runs so that the element is drawn from the earlier mark to the
// later one; t is the pick tolerance the marks were found with.
void weldElementRuns(const ElementLine& line, ElementRuns& runs, WeldMark a, WeldMark b, double t);

// weldElementRuns on the marked element of a's multiline between the marks
// of a and b (open for write).
void weldElement(MlineEditContext& context, const MlinePick& a, const MlinePick& b);

}  // namespace kdml
