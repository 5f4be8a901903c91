// Choosing where the axes of two picked multilines cross, relative to the
// picks. Every segment of the first axis is tried against every segment of
// the second (its closing segment too when it is closed); a crossing on
// both picked segments, or on segments in line with both, is taken at
// once; otherwise the candidate nearest to both picks, the earliest of
// equal ones, wins.
#pragma once

#include <optional>

#include "mledit/MlineEditContext.h"

namespace kdml {

struct AxisCrossing {
    int segFirst = 0;
    int segSecond = 0;
    KxGePoint3d point;
};

// Picks on one multiline on the same or neighbouring segments: there is no
// crossing to look for.
bool picksOnNeighbouringSegments(const MlinePick& first, const MlinePick& second);

// The plain search over every pair of segments in order. anyCrossing: a
// crossing within either segment counts (cross tools); otherwise it must lie
// within the second's segment or at an end of the first's (tee tools).
std::optional<AxisCrossing> scanAxisCrossing(const MlinePick& first, const MlinePick& second, bool anyCrossing);

// The same choice as scanAxisCrossing, found without trying pairs of
// segments that lie too far from the picks to win.
std::optional<AxisCrossing> searchAxisCrossing(const MlinePick& first, const MlinePick& second, bool anyCrossing);

// searchAxisCrossing; on a choice the hit and mark segments of the picks
// become the chosen segments.
std::optional<AxisCrossing> findAxisCrossing(MlinePick& first, MlinePick& second, bool anyCrossing);

}  // namespace kdml
