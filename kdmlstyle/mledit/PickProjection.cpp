#include "mledit/PickProjection.h"

#include <algorithm>
#include <cmath>

#include "KdCmdUtil.h"
#include "mledit/EditGeometry.h"

namespace kdml {

namespace {

bool holds(const KxGePoint3d& a, const KxGePoint3d& b, const KxGePoint3d& point)
{
    const auto within = [](double v, double p, double q) {
        return std::min(p, q) - kEditTolerance <= v && v <= std::max(p, q) + kEditTolerance;
    };
    if (!within(point.x, a.x, b.x) || !within(point.y, a.y, b.y) || !within(point.z, a.z, b.z))
        return false;
    double dist = 0;
    PtLnDist(point, a, b, &dist, nullptr);
    return dist <= kEditTolerance;
}

// The end of the hit segment: the next vertex, or vertex 0 for the closing
// segment of a closed multiline.
int segmentEnd(const MlinePick& pick, int s)
{
    return pick.closed && s == pick.numVertices - 1 ? 0 : s + 1;
}

// A point 10 units away from the hit point, across the hit element line.
KxGePoint3d acrossHit(const MlinePick& pick)
{
    const KxGePoint3d& start = pick.elementLines[std::size_t(pick.hitElement)][std::size_t(pick.hitSegment)];
    const double a = directionAngle(pick.hitPoint, start);
    return pick.hitPoint + KxGeVector3d(10 * std::sin(a), -10 * std::cos(a), 0);
}

// Which end a coordinate lies beyond by more than the tolerance, along
// a coordinate that runs from a to b: -1 beyond a, 1 beyond b, else 0.
int beyondEnd(double v, double a, double b)
{
    const double sense = a < b ? 1.0 : -1.0;
    if ((v - a) * sense < -kEditTolerance)
        return -1;
    if ((v - b) * sense > kEditTolerance)
        return 1;
    return 0;
}

}  // namespace

bool locateSegmentOfPoint(const MlinePick& pick, const KxGePoint3d& point, int element, int& segment)
{
    if (element < 0 || element >= static_cast<int>(pick.elementLines.size()) || segment < 0)
        return false;
    const ElementLine& line = pick.elementLines[std::size_t(element)];
    const auto holdsAt = [&](int s) {
        return holds(line[std::size_t(s)], line[std::size_t(segmentEnd(pick, s))], point);
    };
    const int last = pick.numVertices - 2;
    int found = -1;
    if (segment <= last) {
        for (int s = segment; s <= last && found < 0; ++s)
            found = holdsAt(s) ? s : -1;
        for (int s = segment - 1; s >= 0 && found < 0; --s)
            found = holdsAt(s) ? s : -1;
    }
    if (found < 0 && pick.closed && pick.numVertices > 1 && holdsAt(pick.numVertices - 1))
        found = pick.numVertices - 1;
    if (found < 0)
        return false;
    segment = found;
    return true;
}

KxGePoint3d projectPickToAxis(const MlinePick& pick)
{
    const int s = pick.hitSegment;
    KxGePoint3d crossing = pick.hitPoint;
    LineXline(pick.hitPoint, acrossHit(pick), pick.vertices[std::size_t(s)],
              pick.vertices[std::size_t(segmentEnd(pick, s))], crossing);
    return crossing;
}

void projectPickToElement(MlinePick& pick, int k, KxGePoint3d* out)
{
    if (k == pick.hitElement) {
        pick.markHit();
        return;
    }
    if (k == -1) {
        if (out)
            *out = projectPickToAxis(pick);
        return;
    }
    const int s = pick.hitSegment;
    const KxGePoint3d& a = pick.elementLines[std::size_t(k)][std::size_t(s)];
    const KxGePoint3d& b = pick.elementLines[std::size_t(k)][std::size_t(segmentEnd(pick, s))];
    KxGePoint3d x = pick.hitPoint;
    LineXline(pick.hitPoint, acrossHit(pick), a, b, x);
    // Clamped along x, or along y when the segment's ends share x.
    const bool byX = std::abs(a.x - b.x) > kEditTolerance;
    const int beyond = byX ? beyondEnd(x.x, a.x, b.x) : beyondEnd(x.y, a.y, b.y);
    if (beyond != 0)
        x = beyond < 0 ? a : b;
    pick.markPoint = x;
    pick.markElement = k;
    pick.markDistance = pointDistance(pick.markPoint, a);
}

}  // namespace kdml
