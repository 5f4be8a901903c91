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

    if (!hasNext)
        shape.drawWholeSegment(k);
    else if (sameOutgoing)
        shape.followElementPoints(k, atK);
    else
        shape.drawWholeSegment(k);
    if (hasPrev) {
        MlineVertexData& before = shape.vertices[std::size_t(prev)];
        for (int e = 0; e < shape.elementCount(); ++e) {
            std::vector<double>& runs = before.elements[std::size_t(e)].elementParams;
            if (ontoPrev)
                runs.resize(1);
            else if (sameIncoming && !fromPrev)
                runs = runsBefore(runs, dot(point - shape.elementPoint(prev, e), shape.segmentDirection(prev, e)));
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
    const std::vector<KxGePoint3d> atFirst = shape.elementPoints(first);
    shape.vertices.erase(shape.vertices.begin() + first + count, shape.vertices.end());
    shape.vertices.erase(shape.vertices.begin(), shape.vertices.begin() + first);
    if (first > 0) {
        shape.refreshDirections(0);
        shape.followElementPoints(0, atFirst);
    }
    if (first + count < n) {
        shape.refreshDirections(count - 1);
        shape.drawWholeSegment(count - 1);
    }
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
    trimRuns(shape.vertices[std::size_t(s)].elements[std::size_t(e)].elementParams, d, atEnd);
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
