#include "mledit/ElementCrossings.h"

#include <cmath>

#include "KdCmdUtil.h"
#include "mledit/EditGeometry.h"
#include "mledit/PickProjection.h"

namespace kdml {

namespace {

int nextVertex(const MlinePick& pick, int segment)
{
    return segment >= pick.numVertices - 1 ? 0 : segment + 1;
}

// The segment of the pick's element line that holds point, searched from
// segment; segment itself when none does.
int searchSegment(const MlinePick& pick, const KxGePoint3d& point, int element, int segment)
{
    int found = segment;
    return locateSegmentOfPoint(pick, point, element, found) ? found : segment;
}

}  // namespace

bool computeElementCrossings(const MlinePick& first, int segFirst, const MlinePick& second, int segSecond,
                             CrossingTable& table)
{
    if (first.elementLines.empty() || second.elementLines.empty() || segFirst < 0 || segSecond < 0
        || segFirst >= first.numVertices || segSecond >= second.numVertices)
        return false;
    const int i2 = nextVertex(first, segFirst);
    const int j2 = nextVertex(second, segSecond);
    const ElementLine& a0 = first.elementLines.front();
    const ElementLine& b0 = second.elementLines.front();
    const double angleSecond = directionAngle(b0[std::size_t(segSecond)], b0[std::size_t(j2)]);
    const double angleFirst = directionAngle(a0[std::size_t(segFirst)], a0[std::size_t(i2)]);
    if (std::abs(angleSecond - angleFirst) <= kEditTolerance)
        return false;

    const std::size_t rows = first.elementLines.size();
    const std::size_t columns = second.elementLines.size();
    table.points.assign(rows, std::vector<KxGePoint3d>(columns));
    table.segments.assign(rows, std::vector<CrossingTable::Segments>(columns));
    bool crossed = false;
    for (std::size_t a = 0; a < rows; ++a) {
        const ElementLine& la = first.elementLines[a];
        for (std::size_t b = 0; b < columns; ++b) {
            const ElementLine& lb = second.elementLines[b];
            KxGePoint3d& point = table.points[a][b];
            const short r = LineXline3d(la[std::size_t(segFirst)], la[std::size_t(i2)], lb[std::size_t(segSecond)],
                                        lb[std::size_t(j2)], point);
            if (r < 0)
                continue;
            crossed = true;
            CrossingTable::Segments& segments = table.segments[a][b];
            const bool onFirst = r == 1 || r == 3;
            const bool onSecond = r == 2 || r == 3;
            segments.first = onFirst ? segFirst : searchSegment(first, point, int(a), segFirst);
            segments.second = onSecond ? segSecond : searchSegment(second, point, int(b), segSecond);
        }
    }
    return crossed;
}

}  // namespace kdml
