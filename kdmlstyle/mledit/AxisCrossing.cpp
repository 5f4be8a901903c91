#include "mledit/AxisCrossing.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <functional>
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
    const auto length = [](double x, double y) { return std::sqrt(x * x + y * y); };
    return length(gap(p.x, loX, hiX), gap(p.y, loY, hiY)) + length(gap(q.x, loX, hiX), gap(q.y, loY, hiY));
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

// The segments of an axis with their bounds, handed out least bound first
// (then lowest index). A heap: the search stops after the first few.
class NearestSegments {
public:
    NearestSegments(const Axis& axis, const KxGePoint3d& p, const KxGePoint3d& q, double margin)
    {
        bounds_.resize(std::size_t(axis.segments));
        heap_.reserve(bounds_.size());
        for (int s = 0; s < axis.segments; ++s) {
            bounds_[std::size_t(s)] = boxBound(axis.start(s), axis.end(s), p, q, margin);
            heap_.emplace_back(bounds_[std::size_t(s)], s);
        }
        std::make_heap(heap_.begin(), heap_.end(), std::greater<>());
    }

    double bound(int s) const { return bounds_[std::size_t(s)]; }
    bool empty() const { return heap_.empty(); }
    // The next segment; its bound is bound(next()).
    int next()
    {
        std::pop_heap(heap_.begin(), heap_.end(), std::greater<>());
        const int s = heap_.back().second;
        heap_.pop_back();
        return s;
    }

private:
    std::vector<double> bounds_;
    std::vector<std::pair<double, int>> heap_;
};

// Whether the line through segment s of one axis passes within margin of
// segment t of the other (x and y only, as the crossing is computed): when
// it does not, the lines cross off segment t.
bool lineReaches(const Axis& line, int s, const Axis& other, int t, double margin)
{
    const KxGePoint3d& a = line.start(s);
    const double dx = line.end(s).x - a.x;
    const double dy = line.end(s).y - a.y;
    const auto side = [&](const KxGePoint3d& p) { return dx * (p.y - a.y) - dy * (p.x - a.x); };
    const double f0 = side(other.start(t));
    const double f1 = side(other.end(t));
    const double reach = margin * margin * (dx * dx + dy * dy);
    const bool oneSide = (f0 > 0 && f1 > 0) || (f0 < 0 && f1 < 0);
    return !(oneSide && f0 * f0 > reach && f1 * f1 > reach);
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
    // the picks cannot beat the best sum found so far. Nor can a pair with
    // one box too far unless its crossing counts off that segment: on the
    // first's segment with any crossing, on the second's always; the line
    // through the far segment must then reach the near one.
    const KxGePoint3d p1 = projectPickToAxis(first);
    const KxGePoint3d p2 = projectPickToAxis(second);
    NearestSegments nearA(test.a(), p1, p2, margin);
    NearestSegments nearB(test.b(), p1, p2, margin);
    Best best;
    const auto beyond = [margin, &best](double bound) { return bound > best.sum + margin; };
    const auto tryPair = [&](int i, int j) {
        if (const Candidate c = test(i, j); c.found)
            best.offer(i, j, c.point, pointDistance(c.point, p1) + pointDistance(c.point, p2));
    };
    std::vector<bool> firstDone(std::size_t(test.a().segments), false);
    while (!nearA.empty()) {
        const int i = nearA.next();
        if (beyond(nearA.bound(i)))
            break;
        firstDone[std::size_t(i)] = true;
        for (int j = 0; j < test.b().segments; ++j)
            if (!beyond(nearB.bound(j)) || (anyCrossing && lineReaches(test.b(), j, test.a(), i, margin)))
                tryPair(i, j);
    }
    while (!nearB.empty()) {
        const int j = nearB.next();
        if (beyond(nearB.bound(j)))
            break;
        for (int i = 0; i < test.a().segments; ++i)
            if (!firstDone[std::size_t(i)] && lineReaches(test.a(), i, test.b(), j, margin))
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
