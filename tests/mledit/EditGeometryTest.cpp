// Point helpers of the editing tools: octant codes, positions on a segment,
// equality within the tolerance, angles.
#include "mledit/EditGeometry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

using namespace kdml;

TEST(EditGeometry, ComparePointsGivesEveryOctantCode)
{
    const KxGePoint3d b(1, 1);
    EXPECT_EQ(comparePoints({0, 1}, b), 1);
    EXPECT_EQ(comparePoints({0, 0}, b), 2);
    EXPECT_EQ(comparePoints({1, 0}, b), 3);
    EXPECT_EQ(comparePoints({2, 0}, b), 4);
    EXPECT_EQ(comparePoints({2, 1}, b), -1);
    EXPECT_EQ(comparePoints({2, 2}, b), -2);
    EXPECT_EQ(comparePoints({1, 2}, b), -3);
    EXPECT_EQ(comparePoints({0, 2}, b), -4);
    EXPECT_EQ(comparePoints({1, 1, 7}, b), 0) << "z plays no part";
    EXPECT_EQ(comparePoints({1 + 5e-11, 1 - 5e-11}, b), 0) << "within the tolerance";
    EXPECT_EQ(comparePoints({1 + 5e-10, 1}, b), -1) << "beyond the tolerance";
    EXPECT_EQ(comparePoints({std::numeric_limits<double>::quiet_NaN(), 1}, b), -5001);
}

TEST(EditGeometry, PositionOnSegment)
{
    const KxGePoint3d s(0, 0), e(10, 5);
    EXPECT_EQ(segmentPosition({4, 2}, s, e), SegmentPosition::Inside);
    EXPECT_EQ(segmentPosition({0, 0}, s, e), SegmentPosition::AtEnd);
    EXPECT_EQ(segmentPosition({10, 5}, s, e), SegmentPosition::AtEnd);
    EXPECT_EQ(segmentPosition({10, 2}, s, e), SegmentPosition::AtEnd) << "x at an end, y inside";
    EXPECT_EQ(segmentPosition({12, 6}, s, e), SegmentPosition::Outside);
    EXPECT_EQ(segmentPosition({-1, -1}, s, e), SegmentPosition::Outside);
    // A horizontal segment: y is the same everywhere along it.
    EXPECT_EQ(segmentPosition({5, 0}, {0, 0}, {10, 0}), SegmentPosition::Inside);
    EXPECT_EQ(segmentPosition({15, 0}, {0, 0}, {10, 0}), SegmentPosition::Outside);
}

TEST(EditGeometry, EqualityAndDistances)
{
    EXPECT_TRUE(pointsEqual({1e6, 0, 0}, {1e6 * (1 + 1e-11), 5e-11, 0})) << "relative for large values";
    EXPECT_FALSE(pointsEqual({1, 0, 0}, {1 + 1e-9, 0, 0}));
    EXPECT_FALSE(pointsEqual({0, 0, 0}, {0, 0, 2e-10}));
    EXPECT_DOUBLE_EQ(pointDistance({0, 0, 0}, {1, 2, 2}), 3.0);

    EXPECT_TRUE(equalWithin(10.05, 10.0, 0.1));
    EXPECT_FALSE(equalWithin(10.2, 10.0, 0.1));
    EXPECT_TRUE(equalWithin(0.05, 0.02, 0.1)) << "a small reference compares the value with 0";
    EXPECT_FALSE(equalWithin(0.15, 0.02, 0.1));
}

TEST(EditGeometry, Angles)
{
    constexpr double pi = std::numbers::pi;
    EXPECT_DOUBLE_EQ(directionAngle({0, 0}, {0, -1}), 1.5 * pi);
    EXPECT_DOUBLE_EQ(directionAngle({0, 0}, {-1, 0}), pi);
    EXPECT_EQ(directionAngle({1, 1}, {1 + 1e-11, 1}), 0.0);

    EXPECT_TRUE(anglesWithin(0, 0, 0.1));
    EXPECT_TRUE(anglesWithin(2 * pi + 0.3, 0.35, 0.1)) << "whole turns are taken off";
    EXPECT_TRUE(anglesWithin(-0.3, 2 * pi - 0.35, 0.1)) << "a negative angle counts from a full turn";
    EXPECT_FALSE(anglesWithin(2 * pi - 0.01, 0.01, 0.1)) << "no wrap-around at 0";
    EXPECT_TRUE(anglesWithin(0.05, 0.08, 0.1));
    EXPECT_FALSE(anglesWithin(0.2, 0.08, 0.1)) << "b within t of 0 needs a within t of 0";
    EXPECT_TRUE(anglesWithin(pi / 4, pi / 2, pi / 2));
    EXPECT_FALSE(anglesWithin(1.5 * pi, 0.25 * pi, pi / 2));

    const KxGeVector3d z = crossProduct({1, 0, 0}, {0, 1, 0});
    EXPECT_DOUBLE_EQ(z.z, 1.0);
}

TEST(EditGeometry, SegmentsOnOneLine)
{
    EXPECT_TRUE(segmentsCollinear({0, 0}, {1, 1}, {3, 3}, {5, 5}));
    EXPECT_TRUE(segmentsCollinear({0, 0}, {1, 1}, {5, 5}, {3, 3})) << "either direction";
    EXPECT_TRUE(segmentsCollinear({0, 0}, {1, 1}, {0, 0}, {1, 1})) << "a segment with itself";
    EXPECT_FALSE(segmentsCollinear({0, 0}, {1, 1}, {0, 1}, {1, 2})) << "parallel, another line";
    EXPECT_FALSE(segmentsCollinear({0, 0}, {1, 0}, {1, 0}, {2, 1}));
}
