#include "mledit/EditGeometry.h"

#include <cmath>
#include <numbers>

namespace kdml {

namespace {

constexpr double kTurn = 2 * std::numbers::pi;

bool coordinateEqual(double a, double b)
{
    if (std::abs(b) > kEditTolerance)
        return std::abs(a / b - 1.0) < kEditTolerance;
    return std::abs(a) <= kEditTolerance;
}

// -1, 0 or 1: a below, within the tolerance of, or above b; 2 for NaN.
int order(double a, double b)
{
    const double d = a - b;
    if (std::abs(d) <= kEditTolerance)
        return 0;
    if (d < -kEditTolerance)
        return -1;
    if (d > kEditTolerance)
        return 1;
    return 2;
}

double intoOneTurn(double angle)
{
    double a = std::abs(angle);
    while (a >= kTurn)
        a -= kTurn;
    return angle < 0 ? kTurn - a : a;
}

}  // namespace

bool pointsEqual(const KxGePoint3d& a, const KxGePoint3d& b)
{
    return coordinateEqual(a.x, b.x) && coordinateEqual(a.y, b.y) && coordinateEqual(a.z, b.z);
}

double pointDistance(const KxGePoint3d& a, const KxGePoint3d& b)
{
    return distance(a, b);
}

double directionAngle(const KxGePoint3d& from, const KxGePoint3d& to)
{
    const double dx = to.x - from.x;
    const double dy = to.y - from.y;
    if (std::abs(dx) <= kEditTolerance && std::abs(dy) <= kEditTolerance)
        return 0.0;
    const double angle = std::atan2(dy, dx);
    return angle < 0 ? angle + kTurn : angle;
}

KxGeVector3d crossProduct(const KxGeVector3d& a, const KxGeVector3d& b)
{
    return cross(a, b);
}

int comparePoints(const KxGePoint3d& a, const KxGePoint3d& b)
{
    const int x = order(a.x, b.x);
    const int y = order(a.y, b.y);
    if (x == 2 || y == 2)
        return kNoOctant;
    // Indexed by x + 1 and y + 1.
    constexpr int codes[3][3] = {
        {kLeftBelow, kLeft, kLeftAbove},
        {kBelow, kSamePoint, kAbove},
        {kRightBelow, kRight, kRightAbove},
    };
    return codes[x + 1][y + 1];
}

SegmentPosition segmentPosition(const KxGePoint3d& point, const KxGePoint3d& start, const KxGePoint3d& end)
{
    const int k1 = comparePoints(point, start);
    const int k2 = comparePoints(point, end);
    if (k1 == k2)
        return SegmentPosition::Outside;
    if (std::abs(k1) == std::abs(k2))
        return SegmentPosition::Inside;
    return SegmentPosition::AtEnd;
}

bool segmentsCollinear(const KxGePoint3d& p1, const KxGePoint3d& p2, const KxGePoint3d& q1, const KxGePoint3d& q2)
{
    // Directions far from parallel are told first, at little cost: segments
    // in line differ in direction by about the tolerance at most.
    const KxGeVector3d along = p2 - p1;
    const auto farFromParallel = [&along](const KxGeVector3d& v) {
        const KxGeVector3d c = cross(along, v);
        return dot(c, c) > 1e-12 * dot(along, along) * dot(v, v);
    };
    if (farFromParallel(q2 - q1))
        return false;
    KxGeVector3d w = q2 - p2;
    if (w.length() <= kxGeTolerance)
        w = q2 - p1;
    if (farFromParallel(w))
        return false;
    const KxGeVector3d u = normalized(along);
    const KxGeVector3d v = normalized(q2 - q1);
    w = normalized(w);
    const auto same = [](const KxGeVector3d& a, const KxGeVector3d& b) { return (a - b).length() <= kxGeTolerance; };
    return (same(u, v) || same(u, -v)) && (same(u, w) || same(u, -w));
}

bool equalWithin(double x, double reference, double t)
{
    if (std::abs(reference) > t)
        return std::abs(x - reference) <= t;
    return std::abs(x) <= t;
}

bool anglesWithin(double a, double b, double t)
{
    if (a == 0.0 && b == 0.0)
        return true;
    a = intoOneTurn(a);
    b = intoOneTurn(b);
    if (b <= t)
        return a <= t;
    return std::abs(a - b) <= t;
}

}  // namespace kdml
