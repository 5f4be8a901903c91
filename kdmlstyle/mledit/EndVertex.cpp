#include "mledit/EndVertex.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "mledit/EditGeometry.h"
#include "mledit/MlineAccess.h"

namespace kdml {

namespace {

// Two direction angles within the tolerance of each other, across 0 too.
bool sameAngle(double a, double b)
{
    const double d = std::abs(a - b);
    return std::min(d, 2 * std::numbers::pi - d) <= kEditTolerance;
}

// The vertices of a shape cut to a range of a longer multiline: the new
// ends get end directions; the runs of a new first segment keep their
// places, a new last vertex gets the lists of an end.
void settleCutEnds(MlineShape& shape, bool frontCut, bool backCut)
{
    if (frontCut) {
        const std::vector<KxGePoint3d> before = shape.elementPoints(0);
        shape.refreshDirections(0);
        shape.followElementPoints(0, before);
    }
    if (backCut) {
        shape.refreshDirections(shape.size() - 1);
        shape.drawWholeSegment(shape.size() - 1);
    }
}

}  // namespace

void moveVertex(MlineShape& shape, int k, const KxGePoint3d& point)
{
    const int n = shape.size();
    if (k < 0 || k >= n || n < 2)
        return;
    const bool hasPrev = k > 0 || shape.closed;
    const bool hasNext = k < n - 1 || shape.closed;
    const int prev = (k + n - 1) % n;
    const int next = (k + 1) % n;
    const bool nextIsLast = !shape.closed && next == n - 1;
    const KxGePoint3d old = shape.vertices[std::size_t(k)].position;
    const std::vector<KxGePoint3d> atK = shape.elementPoints(k);
    const std::vector<KxGePoint3d> atNext = hasNext ? shape.elementPoints(next) : std::vector<KxGePoint3d>();
    const KxGePoint3d& prevPoint = shape.vertices[std::size_t(prev)].position;
    const KxGePoint3d& nextPoint = shape.vertices[std::size_t(next)].position;
    const bool sameOutgoing =
        hasNext && sameAngle(shape.planeAngle(point, nextPoint), shape.planeAngle(old, nextPoint));
    const bool sameIncoming =
        hasPrev && sameAngle(shape.planeAngle(prevPoint, point), shape.planeAngle(prevPoint, old));
    const bool ontoPrev = hasPrev && pointsEqual(point, prevPoint);
    const bool fromPrev = hasPrev && pointsEqual(old, prevPoint);

    shape.vertices[std::size_t(k)].position = point;
    if (hasPrev)
        shape.refreshDirections(prev);
    shape.refreshDirections(k);
    if (hasNext)
        shape.refreshDirections(next);

    if (hasNext && sameOutgoing)
        shape.followElementPoints(k, atK);
    else
        shape.drawWholeSegment(k);
    if (hasPrev) {
        for (int e = 0; e < shape.elementCount(); ++e) {
            if (ontoPrev) {
                shape.editRuns(prev, e, [](std::vector<double>& runs) { runs.resize(1); });
            } else if (sameIncoming && !fromPrev) {
                const double end = dot(point - shape.elementPoint(prev, e), shape.segmentDirection(prev, e));
                shape.setRuns(prev, e, runsBefore(shape.runs(prev, e), end));
            }
        }
        if (!ontoPrev && (!sameIncoming || fromPrev))
            shape.drawWholeSegment(prev);
    }
    if (hasNext && !nextIsLast)
        shape.followElementPoints(next, atNext);
}

void keepVertices(MlineShape& shape, int first, int count)
{
    const int n = shape.size();
    if (shape.closed || first < 0 || count < 2 || first + count > n)
        return;
    shape.vertices.erase(shape.vertices.begin() + first + count, shape.vertices.end());
    shape.vertices.erase(shape.vertices.begin(), shape.vertices.begin() + first);
    settleCutEnds(shape, first > 0, first + count < n);
}

std::optional<MlineShape> cutBackTo(const KxDbMline* mline, int s, bool keepStart, const KxGePoint3d& point)
{
    const int n = mline ? mline->numVertices() : 0;
    if (s < 0 || s + 1 >= n)
        return std::nullopt;
    const int first = keepStart ? 0 : s;
    const int count = keepStart ? s + 2 : n - s;
    std::optional<MlineShape> shape = readMlineShape(mline, first, count);
    if (!shape || shape->closed)
        return std::nullopt;
    settleCutEnds(*shape, first > 0, first + count < n);
    moveVertex(*shape, keepStart ? shape->size() - 1 : 0, point);
    return shape;
}

int segmentAfterCut(const MlineShape& shape, int g, int s, bool keepStart)
{
    return keepStart ? std::clamp(g, 0, s) : std::clamp(g - s, 0, std::max(shape.size() - 2, 0));
}

void trimRuns(std::vector<double>& list, double d, bool atEnd)
{
    if (list.empty())
        return;
    if (atEnd) {
        list = runsBefore(list, d);
        if (list.size() % 2 == 0)
            list.push_back(d);
        return;
    }
    if (d < -kEditTolerance && list.size() > 1 && std::abs(list[1]) <= kEditTolerance) {
        list[1] = d;
        return;
    }
    std::size_t behind = 1;
    while (behind < list.size() && list[behind] <= d + kEditTolerance)
        ++behind;
    const std::size_t removed = behind - 1;
    list.erase(list.begin() + 1, list.begin() + std::ptrdiff_t(behind));
    if (removed % 2 == 1)
        list.insert(list.begin() + 1, d);
}

void trimElementTo(MlineShape& shape, int e, int s, const KxGePoint3d& target, bool atEnd)
{
    if (s < 0 || s >= shape.size() || e < 0 || e >= shape.elementCount())
        return;
    const double d = dot(target - shape.elementPoint(s, e), shape.segmentDirection(s, e));
    shape.editRuns(s, e, [&](std::vector<double>& runs) { trimRuns(runs, d, atEnd); });
    const int from = atEnd ? s + 1 : 0;
    const int to = atEnd ? shape.size() - 1 : s;
    for (int v = from; v < to; ++v)
        shape.editRuns(v, e, [](std::vector<double>& runs) { runs.resize(1); });
}

void suppressCaps(KxDbMline* mline, bool atEnd, bool atStart)
{
    int flags = 0;
    if (!readMlineFlags(mline, flags))
        return;
    flags |= kHasVertices;
    if (atEnd)
        flags |= kEndCapsSuppressed;
    if (atStart)
        flags |= kStartCapsSuppressed;
    applyMlineFlags(mline, flags);
}

}  // namespace kdml
