#include "mledit/ElementCrossings.h"

#include <array>
#include <cmath>
#include <set>
#include <utility>
#include <vector>

#include "KdCmdUtil.h"
#include "mledit/EditGeometry.h"
#include "mledit/PickProjection.h"

namespace kdml {

namespace {

// How many vertices away from the chosen segments a crossing is looked for.
constexpr int kMostSteps = 3;

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

// One element line of a pick as a polyline, limited to the segments its
// reach allows; the end segments of an open polyline reach on without end.
class ElementPath {
public:
    ElementPath(const MlinePick& pick, int element, int segment, ElementReach reach)
        : pick_(pick), line_(pick.elementLines[std::size_t(element)])
    {
        const int last = pick.closed ? pick.numVertices - 1 : pick.numVertices - 2;
        first_ = reach == ElementReach::FromSegment ? segment : 0;
        last_ = reach == ElementReach::UpToSegment ? segment : last;
    }

    const KxGePoint3d& start(int s) const { return line_[std::size_t(s)]; }
    const KxGePoint3d& end(int s) const { return line_[std::size_t(nextVertex(pick_, s))]; }

    // Where a point of segment s's line lies: -1 before its start, 1 beyond
    // its end, 0 on it (or on the reach of an open polyline's end segment).
    int offSegment(int s, const KxGePoint3d& point) const
    {
        const KxGeVector3d along = end(s) - start(s);
        const double length = along.length();
        const double at = length > 0 ? dot(point - start(s), along) / length : 0.0;
        if (at < -kEditTolerance)
            return !pick_.closed && s == first_ ? 0 : -1;
        if (at > length + kEditTolerance)
            return !pick_.closed && s == last_ ? 0 : 1;
        return 0;
    }

    // The next segment in a direction (-1 or 1), round a closed polyline;
    // -1 beyond the reach.
    int step(int s, int direction) const
    {
        if (pick_.closed)
            return (s + direction + pick_.numVertices) % pick_.numVertices;
        const int next = s + direction;
        return next < first_ || next > last_ ? -1 : next;
    }

private:
    const MlinePick& pick_;
    const ElementLine& line_;
    int first_ = 0;
    int last_ = 0;
};

struct DrawnCrossing {
    KxGePoint3d point;
    CrossingTable::Segments segments;
};

// The crossing of two element polylines nearest to reference, searched
// breadth first from the segments (a, b): from a pair whose lines cross off
// one of the segments, the search goes on with the next segment on that
// side.
std::optional<DrawnCrossing> crossingAsDrawn(const ElementPath& one, int a, const ElementPath& other, int b,
                                             const KxGePoint3d& reference)
{
    std::vector<std::array<int, 3>> queue{{a, b, 0}};
    std::set<std::pair<int, int>> seen{{a, b}};
    std::optional<DrawnCrossing> best;
    double bestDistance = 0;
    for (std::size_t next = 0; next < queue.size(); ++next) {
        const auto [i, j, steps] = queue[next];
        KxGePoint3d point;
        if (LineXline3d(one.start(i), one.end(i), other.start(j), other.end(j), point) < 0)
            continue;
        const int offOne = one.offSegment(i, point);
        const int offOther = other.offSegment(j, point);
        if (offOne == 0 && offOther == 0) {
            const double distance = pointDistance(point, reference);
            if (!best || distance < bestDistance) {
                best = DrawnCrossing{point, {i, j}};
                bestDistance = distance;
            }
            continue;
        }
        if (steps == kMostSteps)
            continue;
        const int i2 = offOne == 0 ? i : one.step(i, offOne);
        const int j2 = offOther == 0 ? j : other.step(j, offOther);
        for (const auto& [ni, nj] : {std::pair(i2, j), std::pair(i, j2), std::pair(i2, j2)})
            if (ni >= 0 && nj >= 0 && seen.insert({ni, nj}).second)
                queue.push_back({ni, nj, steps + 1});
    }
    return best;
}

}  // namespace

std::optional<KxGePoint3d> elementLineCrossing(const MlinePick& first, int segFirst, int a, const MlinePick& second,
                                               int segSecond, int b)
{
    const ElementLine& la = first.elementLines[std::size_t(a)];
    const ElementLine& lb = second.elementLines[std::size_t(b)];
    KxGePoint3d point;
    if (LineXline3d(la[std::size_t(segFirst)], la[std::size_t(nextVertex(first, segFirst))],
                    lb[std::size_t(segSecond)], lb[std::size_t(nextVertex(second, segSecond))], point)
        < 0)
        return std::nullopt;
    return point;
}

bool keepsStartBefore(const MlinePick& pick, int s, const KxGePoint3d& mark, const MlinePick& other, int otherSegment)
{
    const std::optional<KxGePoint3d> crossing = elementLineCrossing(pick, s, 0, other, otherSegment, 0);
    return crossing
        && comparePoints(pick.elementLines.front()[std::size_t(s)], mark) == comparePoints(mark, *crossing);
}

bool computeElementCrossings(const MlinePick& first, int segFirst, const MlinePick& second, int segSecond,
                             CrossingTable& table, ElementReach firstReach, ElementReach secondReach)
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
        const ElementPath pathA(first, int(a), segFirst, firstReach);
        for (std::size_t b = 0; b < columns; ++b) {
            const std::optional<KxGePoint3d> lines = elementLineCrossing(first, segFirst, int(a), second, segSecond, int(b));
            if (!lines)
                continue;
            crossed = true;
            const ElementPath pathB(second, int(b), segSecond, secondReach);
            if (const std::optional<DrawnCrossing> drawn = crossingAsDrawn(pathA, segFirst, pathB, segSecond, *lines)) {
                table.points[a][b] = drawn->point;
                table.segments[a][b] = drawn->segments;
                continue;
            }
            table.points[a][b] = *lines;
            table.segments[a][b] = {searchSegment(first, *lines, int(a), segFirst),
                                    searchSegment(second, *lines, int(b), segSecond)};
        }
    }
    return crossed;
}

}  // namespace kdml
