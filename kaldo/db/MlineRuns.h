// How an element's runs along one segment follow a stretch of the
// multiline. A parameter list holds entry 0 (the distance along the miter)
// and then the distances along the segment at which runs start and stop in
// turn; the element is drawn at a distance when an odd number of entries
// lie at or before it.
#pragma once

#include <span>
#include <vector>

namespace kaldo {

// What a stretch did to one element along one segment.
struct SegmentChange {
    // New distances are old ones less shift: where the element's point at
    // the segment's start moved along the segment (a move along it, or a
    // miter that turned), or how much the segment grew at a start that moved.
    double shift = 0;
    double oldLength = 0;  // from the element's point at the start to the one at the end
    double newLength = 0;
    // Whether the element's point at that end moved other than with the
    // whole segment: entries beyond such an end are dropped, and a stretch
    // the segment gained there is drawn as the element was at that end.
    bool startChanged = false;
    bool endChanged = false;
};

// The list after the change: entry 0 as it was, the runs refit.
std::vector<double> refitRuns(std::span<const double> list, const SegmentChange& change);

}  // namespace kaldo
