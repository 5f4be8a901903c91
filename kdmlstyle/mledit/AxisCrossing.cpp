#include "mledit/AxisCrossing.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numeric>
#include <utility>
#include <vector>

#include "KdCmdUtil.h"
#include "mledit/EditGeometry.h"
#include "mledit/PickProjection.h"

namespace kdml {

namespace {

// Sums of distances at or above this never win.
constexpr double kNoSum = 4294967295.0;

// The segments of one axis: (start, end) point indices.
struct Axis {
    const std::vector<KxGePoint3d>& points;
    int segments;
    int picked;
    const KxGePoint3d& start(int s) const { return points[std::size_t(s)]; }
    const KxGePoint3d& end(int s) const { return points[std::size_t(s + 1 < int(points.size()) ? s + 1 : 0)]; }
    bool inLineWithPick(int s) const { return segmentsCollinear(start(s), end(s), start(picked), end(picked)); }
};

struct Candidate {
    bool found = false;
    bool immediate = false;
    KxGePoint3d point;
};

class PairTest {
public:
    PairTest(const MlinePick& first, const MlinePick& second, bool anyCrossing)
        : a_{first.vertices, std::max(first.numVertices - 1, 0), first.hitSegment},
          b_{second.vertices, std::max(second.numVertices - (second.closed ? 0 : 1), 0), second.hitSegment},
          same_(sameEntity(first, second)), any_(anyCrossing)
    {
    }

    const Axis& a() const { return a_; }
    const Axis& b() const { return b_; }

    Candidate operator()(int i, int j) const
    {
        Candidate c;
        if (same_ && i == j)
            return c;
        const short r = LineXline(a_.start(i), a_.end(i), b_.start(j), b_.end(j), c.point);
        if (r < 1)
            return c;
        const int c1 = comparePoints(a_.start(i), c.point);
        const int c2 = comparePoints(c.point, a_.end(i));
        const int c3 = comparePoints(b_.start(j), c.point);
        const int c4 = comparePoints(c.point, b_.end(j));
        c.found = (c1 == c2 && c3 == c4) || r == 2 || (r == 3 && (c1 == 0 || c2 == 0)) || (any_ && (r == 1 || r == 3));
        c.immediate = c.found && r == 3
            && ((i == a_.picked && j == b_.picked) || (a_.inLineWithPick(i) && b_.inLineWithPick(j)));
        return c;
    }

private:
    Axis a_;
    Axis b_;
    bool same_;
    bool any_;
};

// The best candidate so far: least sum, then earliest in scan order.
struct Best {
    double sum = kNoSum;
    int i = -1;
    int j = -1;
    KxGePoint3d point;

    void offer(int ci, int cj, const KxGePoint3d& p, double s)
    {
        const bool earlier = i < 0 || ci < i || (ci == i && cj < j);
        if (s < sum || (s == sum && i >= 0 && earlier)) {
            sum = s;
            i = ci;
            j = cj;
            point = p;
        }
    }
    std::optional<AxisCrossing> result() const
    {
        if (i < 0)
            return std::nullopt;
        return AxisCrossing{i, j, point};
    }
};

// Lower bound of |X - p| + |X - q| for X in the segment's box, widened by
// margin (x and y only: the three-dimensional distance is never less).
double boxBound(const KxGePoint3d& s, const KxGePoint3d& e, const KxGePoint3d& p, const KxGePoint3d& q, double margin)
{
    const auto gap = [margin](double v, double lo, double hi) {
        return std::max({lo - margin - v, 0.0, v - hi - margin});
    };
    const double loX = std::min(s.x, e.x), hiX = std::max(s.x, e.x);
    const double loY = std::min(s.y, e.y), hiY = std::max(s.y, e.y);
    return std::hypot(gap(p.x, loX, hiX), gap(p.y, loY, hiY)) + std::hypot(gap(q.x, loX, hiX), gap(q.y, loY, hiY));
}

// Room for rounding in where a crossing is computed, for these axes.
double crossingMargin(const std::vector<KxGePoint3d>& a, const std::vector<KxGePoint3d>& b)
{
    double extent = 1.0;
    for (const auto* points : {&a, &b})
        for (const KxGePoint3d& p : *points)
            extent = std::max({extent, std::abs(p.x), std::abs(p.y)});
    return 1e-6 * extent;
}

std::vector<int> byBound(const Axis& axis, const KxGePoint3d& p, const KxGePoint3d& q, double margin,
                         std::vector<double>& bounds)
{
    bounds.resize(std::size_t(axis.segments));
    for (int s = 0; s < axis.segments; ++s)
        bounds[std::size_t(s)] = boxBound(axis.start(s), axis.end(s), p, q, margin);
    std::vector<int> order(std::size_t(axis.segments));
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(), [&](int x, int y) { return bounds[std::size_t(x)] < bounds[std::size_t(y)]; });
    return order;
}

// The span of segment s along x (alongX) or y.
std::pair<double, double> span(const Axis& axis, int s, bool alongX)
{
    const double a = alongX ? axis.start(s).x : axis.start(s).y;
    const double b = alongX ? axis.end(s).x : axis.end(s).y;
    return std::minmax(a, b);
}

// The first immediate choice in scan order. Only segments in line with the
// picked ones (the picked ones among them) can give one, and only pairs
// whose spans overlap, since the crossing lies on both segments.
std::optional<AxisCrossing> firstImmediate(const PairTest& test, double margin)
{
    const Axis& a = test.a();
    const Axis& b = test.b();
    std::vector<int> firstSegments, secondSegments;
    for (int i = 0; i < a.segments; ++i)
        if (i == a.picked || a.inLineWithPick(i))
            firstSegments.push_back(i);
    for (int j = 0; j < b.segments; ++j)
        if (j == b.picked || b.inLineWithPick(j))
            secondSegments.push_back(j);

    // The second's segments in line with its pick, by where they start along
    // the coordinate that line runs along most.
    const KxGeVector3d direction = b.end(b.picked) - b.start(b.picked);
    const bool alongX = std::abs(direction.x) >= std::abs(direction.y);
    std::vector<std::pair<double, int>> starts;
    double longest = 0;
    for (int j : secondSegments) {
        const auto [lo, hi] = span(b, j, alongX);
        starts.emplace_back(lo, j);
        longest = std::max(longest, hi - lo);
    }
    std::sort(starts.begin(), starts.end());

    std::vector<int> overlapping;
    for (int i : firstSegments) {
        const auto [lo, hi] = span(a, i, alongX);
        const auto from = std::lower_bound(starts.begin(), starts.end(), std::pair(lo - margin - longest, -1));
        const auto to = std::upper_bound(starts.begin(), starts.end(), std::pair(hi + margin, b.segments));
        overlapping.clear();
        for (auto it = from; it != to; ++it)
            if (span(b, it->second, alongX).second >= lo - margin)
                overlapping.push_back(it->second);
        std::sort(overlapping.begin(), overlapping.end());
        for (int j : overlapping)
            if (const Candidate c = test(i, j); c.immediate)
                return AxisCrossing{i, j, c.point};
    }
    return std::nullopt;
}

bool pickedSegmentsValid(const MlinePick& first, const MlinePick& second)
{
    return first.numVertices >= 2 && second.numVertices >= 2 && int(first.vertices.size()) == first.numVertices
        && int(second.vertices.size()) == second.numVertices && !first.elementLines.empty()
        && !second.elementLines.empty();
}

}  // namespace

bool picksOnNeighbouringSegments(const MlinePick& first, const MlinePick& second)
{
    return sameEntity(first, second) && std::abs(first.hitSegment - second.hitSegment) <= 1;
}

std::optional<AxisCrossing> scanAxisCrossing(const MlinePick& first, const MlinePick& second, bool anyCrossing)
{
    if (picksOnNeighbouringSegments(first, second) || !pickedSegmentsValid(first, second))
        return std::nullopt;
    const PairTest test(first, second, anyCrossing);
    struct Found {
        int i, j;
        KxGePoint3d point;
    };
    std::vector<Found> candidates;
    for (int i = 0; i < test.a().segments; ++i) {
        for (int j = 0; j < test.b().segments; ++j) {
            const Candidate c = test(i, j);
            if (c.immediate)
                return AxisCrossing{i, j, c.point};
            if (c.found)
                candidates.push_back({i, j, c.point});
        }
    }
    const KxGePoint3d p1 = projectPickToAxis(first);
    const KxGePoint3d p2 = projectPickToAxis(second);
    double least = kNoSum;
    std::optional<AxisCrossing> chosen;
    for (const Found& f : candidates) {
        const double sum = pointDistance(f.point, p1) + pointDistance(f.point, p2);
        if (sum < least) {
            least = sum;
            chosen = AxisCrossing{f.i, f.j, f.point};
        }
    }
    return chosen;
}

std::optional<AxisCrossing> searchAxisCrossing(const MlinePick& first, const MlinePick& second, bool anyCrossing)
{
    if (picksOnNeighbouringSegments(first, second) || !pickedSegmentsValid(first, second))
        return std::nullopt;
    const PairTest test(first, second, anyCrossing);
    const double margin = crossingMargin(first.vertices, second.vertices);
    if (auto immediate = firstImmediate(test, margin))
        return immediate;

    // Every candidate lies in the box of its segment of the first axis or of
    // its segment of the second; a pair whose both boxes lie too far from
    // the picks cannot beat the best sum found so far.
    const KxGePoint3d p1 = projectPickToAxis(first);
    const KxGePoint3d p2 = projectPickToAxis(second);
    std::vector<double> boundsA, boundsB;
    const std::vector<int> orderA = byBound(test.a(), p1, p2, margin, boundsA);
    const std::vector<int> orderB = byBound(test.b(), p1, p2, margin, boundsB);
    const auto beyond = [margin](double bound, double best) { return bound > best + margin; };

    Best best;
    const auto tryPair = [&](int i, int j) {
        if (const Candidate c = test(i, j); c.found)
            best.offer(i, j, c.point, pointDistance(c.point, p1) + pointDistance(c.point, p2));
    };
    std::vector<bool> firstDone(std::size_t(test.a().segments), false);
    for (int i : orderA) {
        if (beyond(boundsA[std::size_t(i)], best.sum))
            break;
        firstDone[std::size_t(i)] = true;
        for (int j = 0; j < test.b().segments; ++j)
            tryPair(i, j);
    }
    for (int j : orderB) {
        if (beyond(boundsB[std::size_t(j)], best.sum))
            break;
        for (int i = 0; i < test.a().segments; ++i)
            if (!firstDone[std::size_t(i)])
                tryPair(i, j);
    }
    return best.result();
}

std::optional<AxisCrossing> findAxisCrossing(MlinePick& first, MlinePick& second, bool anyCrossing)
{
    std::optional<AxisCrossing> crossing = searchAxisCrossing(first, second, anyCrossing);
    if (crossing) {
        first.hitSegment = first.markSegment = crossing->segFirst;
        second.hitSegment = second.markSegment = crossing->segSecond;
    }
    return crossing;
}

}  // namespace kdml
