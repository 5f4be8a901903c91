// The crossings of every element line of one multiline with every element
// line of another, at one pair of axis segments.
#pragma once

#include <optional>

#include "mledit/MlineEditContext.h"

namespace kdml {

// Which segments of a pick's element lines a crossing may lie on.
enum class ElementReach {
    // Every segment as drawn; the free ends of an open multiline reach on
    // beyond its end vertices.
    Whole,
    // The segments up to the chosen one, which reaches on beyond its end:
    // the multiline is to end in it.
    UpToSegment,
    // The segments from the chosen one on, which reaches back before its
    // start: the multiline is to start in it.
    FromSegment,
};

// The crossing of element line a of first on segment segFirst with element
// line b of second on segment segSecond, both segments taken as whole
// lines; none when the lines do not meet.
std::optional<KxGePoint3d> elementLineCrossing(const MlinePick& first, int segFirst, int a, const MlinePick& second,
                                               int segSecond, int b);

// Whether a multiline cut back or lengthened to its crossing with another
// keeps its start: mark lies between the start of its segment s on element
// line 0 and that line's crossing with element line 0 of the other on its
// segment otherSegment. False when those lines do not meet.
bool keepsStartBefore(const MlinePick& pick, int s, const KxGePoint3d& mark, const MlinePick& other,
                      int otherSegment);

// Fills table (rows: elements of first; columns: elements of second) with
// the crossings of the element lines as they are drawn near the segments
// segFirst and segSecond, and the segments each crossing lies on. Each
// element line is a polyline with its own point at every vertex (its own
// miter), so a crossing next to a vertex may lie on a neighbouring segment
// of either: from the chosen pair of segments the search steps to the next
// segment on the side where the crossing of the two lines falls off a
// segment, up to three vertices away, and takes of the crossings that lie
// on both polylines the one nearest to the crossing of the chosen
// segments' lines (elementLineCrossing). When there is none, that crossing
// is kept, with the segments that hold it (or the chosen ones). The reach
// says which segments of each multiline may hold a crossing. False, table
// unchanged, when the two chosen segments run in the same direction; false
// too when no pair crossed.
bool computeElementCrossings(const MlinePick& first, int segFirst, const MlinePick& second, int segSecond,
                             CrossingTable& table, ElementReach firstReach = ElementReach::Whole,
                             ElementReach secondReach = ElementReach::Whole);

}  // namespace kdml
