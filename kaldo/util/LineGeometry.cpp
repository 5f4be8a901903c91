#include "KdCmdUtil.h"

#include <algorithm>
#include <numbers>

namespace {

constexpr double kTol = kxGeTolerance;

// Parameter t of the crossing along p1p2 counts as within the segment when it
// lies in [0, 1] allowing for the tolerance measured in drawing units.
bool withinSegment(double t, double segmentLength)
{
    const double slack = segmentLength > kTol ? kTol / segmentLength : 0.0;
    return t >= -slack && t <= 1.0 + slack;
}

short placement(bool onFirst, bool onSecond)
{
    if (onFirst && onSecond)
        return 3;
    if (onFirst)
        return 1;
    if (onSecond)
        return 2;
    return 0;
}

}  // namespace

short PtLnDist(const KxGePoint3d& pt, const KxGePoint3d& s, const KxGePoint3d& e,
               double* dist, KxGePoint3d* foot)
{
    const KxGeVector3d dir = e - s;
    const double len2 = dot(dir, dir);
    KxGePoint3d f = s;
    if (len2 > kTol * kTol)
        f = s + dir * (dot(pt - s, dir) / len2);
    if (dist)
        *dist = distance(pt, f);
    if (foot)
        *foot = f;
    return len2 > kTol * kTol ? 1 : 0;
}

short LineXline(const KxGePoint3d& p1, const KxGePoint3d& p2, const KxGePoint3d& p3,
                const KxGePoint3d& p4, KxGePoint3d& out)
{
    const double d1x = p2.x - p1.x, d1y = p2.y - p1.y;
    const double d2x = p4.x - p3.x, d2y = p4.y - p3.y;
    const double len1 = std::hypot(d1x, d1y), len2 = std::hypot(d2x, d2y);
    if (len1 <= kTol || len2 <= kTol)
        return 0;
    const double denom = d1x * d2y - d1y * d2x;
    // Parallel when the sine of the angle between the lines vanishes.
    if (std::abs(denom) <= kTol * len1 * len2)
        return 0;
    const double t = ((p3.x - p1.x) * d2y - (p3.y - p1.y) * d2x) / denom;
    const double u = ((p3.x - p1.x) * d1y - (p3.y - p1.y) * d1x) / denom;
    out = KxGePoint3d(p1.x + t * d1x, p1.y + t * d1y, p1.z + t * (p2.z - p1.z));
    const short where = placement(withinSegment(t, len1), withinSegment(u, len2));
    return where == 0 ? 4 : where;
}

short LineXline3d(const KxGePoint3d& p1, const KxGePoint3d& p2, const KxGePoint3d& p3,
                  const KxGePoint3d& p4, KxGePoint3d& out)
{
    const KxGeVector3d d1 = p2 - p1, d2 = p4 - p3, r = p1 - p3;
    const double a = dot(d1, d1), b = dot(d1, d2), c = dot(d2, d2);
    const double d = dot(d1, r), e = dot(d2, r);
    if (a <= kTol * kTol || c <= kTol * kTol)
        return -1;
    const double denom = a * c - b * b;
    if (denom <= kTol * a * c)
        return -1;
    // Closest points of the two lines; they meet when those coincide.
    const double t = (b * e - c * d) / denom;
    const double u = (a * e - b * d) / denom;
    const KxGePoint3d q1 = p1 + d1 * t, q2 = p3 + d2 * u;
    const double scale = std::max({1.0, std::sqrt(a), std::sqrt(c)});
    if (distance(q1, q2) > kTol * scale * 1e3)
        return -1;
    out = q1;
    return placement(withinSegment(t, std::sqrt(a)), withinSegment(u, std::sqrt(c)));
}

double kxutAngle(const KxGePoint3d& a, const KxGePoint3d& b)
{
    double angle = std::atan2(b.y - a.y, b.x - a.x);
    if (angle < 0)
        angle += 2 * std::numbers::pi;
    return angle;
}

double kxutDistance(const KxGePoint3d& a, const KxGePoint3d& b)
{
    return distance(a, b);
}
