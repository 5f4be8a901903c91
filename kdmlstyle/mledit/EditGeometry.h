// Point and vector helpers of the multiline editing tools, with their fixed
// absolute tolerance. All plane tests use x and y only.
#pragma once

#include "kxtypes.h"

namespace kdml {

// Absolute tolerance of every comparison the editing tools make.
inline constexpr double kEditTolerance = 1e-10;

// Per coordinate: a relative difference below the tolerance, or both
// values within the tolerance of 0.
bool pointsEqual(const KxGePoint3d& a, const KxGePoint3d& b);
double pointDistance(const KxGePoint3d& a, const KxGePoint3d& b);
// Angle of the direction from one point to another in [0, 2pi); 0 when the
// points coincide in x and y.
double directionAngle(const KxGePoint3d& from, const KxGePoint3d& to);
KxGeVector3d crossProduct(const KxGeVector3d& a, const KxGeVector3d& b);

// Where a lies relative to b, in octants (x and y only).
enum OctantCode : int {
    kSamePoint = 0,
    kLeft = 1,          // a.x < b.x, same y
    kLeftBelow = 2,     // a.x < b.x, a.y < b.y
    kBelow = 3,         // same x, a.y < b.y
    kRightBelow = 4,    // a.x > b.x, a.y < b.y
    kRight = -1,        // a.x > b.x, same y
    kRightAbove = -2,   // a.x > b.x, a.y > b.y
    kAbove = -3,        // same x, a.y > b.y
    kLeftAbove = -4,    // a.x < b.x, a.y > b.y
    kNoOctant = -5001,  // not a number
};
int comparePoints(const KxGePoint3d& a, const KxGePoint3d& b);

// Where a point lies relative to a segment, from the octant codes of the
// point against both ends.
enum class SegmentPosition { Inside, AtEnd, Outside };
SegmentPosition segmentPosition(const KxGePoint3d& point, const KxGePoint3d& start, const KxGePoint3d& end);

// True when the segments p1p2 and q1q2 lie on one line.
bool segmentsCollinear(const KxGePoint3d& p1, const KxGePoint3d& p2, const KxGePoint3d& q1, const KxGePoint3d& q2);

// x equals reference within t: |x - reference| <= t when |reference|
// exceeds t, else |x| <= t.
bool equalWithin(double x, double reference, double t);

// Two angles equal within t after both are brought into [0, 2pi); no
// wrap-around at 0.
bool anglesWithin(double a, double b, double t);

}  // namespace kdml
