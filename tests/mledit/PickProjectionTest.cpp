// Carrying a pick across its segment onto another element line, on element
// lines whose ends differ only by rounding in the coordinate that should be
// the same, running in every direction.
#include "mledit/PickProjection.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace kdml;

namespace {

constexpr double kTolerance = 1e-10;

struct Direction {
    const char* name;
    KxGeVector3d along;   // unit direction of the segment
    KxGeVector3d across;  // unit normal, towards element 0
};

// Two element lines 10 apart about an axis from the origin along d (length
// 60): element 0 on the left, element 1 on the right, whose ends are off by
// `rounding` across the segment in opposite senses. Near the origin a
// rounding of 1e-15 is the last bit of a coordinate.
MlinePick twoElementPick(const Direction& d, double rounding)
{
    const KxGePoint3d o(0, 0);
    const KxGePoint3d end = o + d.along * 60.0;
    MlinePick pick;
    pick.name.id[0] = 1;
    pick.vertices = {o, end};
    pick.elementLines = {
        {o + d.across * 5.0, end + d.across * 5.0},
        {o - d.across * (5.0 + rounding), end - d.across * (5.0 - rounding)},
    };
    pick.numVertices = 2;
    pick.numElements = 2;
    pick.hitElement = 0;
    pick.hitSegment = 0;
    return pick;
}

}  // namespace

TEST(PickProjection, RoundedEndsInEveryDirectionKeepThePickOnTheSegment)
{
    const std::vector<Direction> directions = {
        {"down", {0, -1, 0}, {1, 0, 0}},   {"up", {0, 1, 0}, {-1, 0, 0}},
        {"right", {1, 0, 0}, {0, 1, 0}},   {"left", {-1, 0, 0}, {0, -1, 0}},
    };
    for (const Direction& d : directions) {
        for (const double rounding : {1e-15, -1e-15, 3e-11, -3e-11}) {
            for (double along = 0.5; along < 60; along += 0.37) {
                const std::string label = std::string(d.name) + " rounding " + std::to_string(rounding) + " at "
                    + std::to_string(along);
                MlinePick pick = twoElementPick(d, rounding);
                pick.hitPoint = pick.elementLines[0][0] + d.along * along;
                pick.hitDistance = along;
                pick.markHit();
                projectPickToElement(pick, 1, nullptr);
                const KxGePoint3d expected = pick.hitPoint - d.across * 10.0;
                EXPECT_NEAR(pick.markPoint.x, expected.x, kTolerance) << label;
                EXPECT_NEAR(pick.markPoint.y, expected.y, kTolerance) << label;
                EXPECT_NEAR(pick.markDistance, along, kTolerance) << label;
                EXPECT_EQ(pick.markElement, 1) << label;
            }
        }
    }
}

TEST(PickProjection, BeyondTheSegmentClampsToTheNearerEndAndTheAxisIsNotClamped)
{
    MlinePick pick = twoElementPick({"right", {1, 0, 0}, {0, 1, 0}}, 0.0);
    // A hit beyond the end (the element line of element 0 was extended).
    pick.hitPoint = KxGePoint3d(75, 5);
    pick.markHit();
    projectPickToElement(pick, 1, nullptr);
    EXPECT_NEAR(pick.markPoint.x, 60, kTolerance);
    EXPECT_NEAR(pick.markDistance, 60, kTolerance);

    pick.hitPoint = KxGePoint3d(-10, 5);
    projectPickToElement(pick, 1, nullptr);
    EXPECT_NEAR(pick.markPoint.x, 0, kTolerance);
    EXPECT_NEAR(pick.markDistance, 0, kTolerance);

    KxGePoint3d onAxis;
    projectPickToElement(pick, -1, &onAxis);
    EXPECT_NEAR(onAxis.x, -10, kTolerance);
    EXPECT_NEAR(onAxis.y, 0, kTolerance);
    EXPECT_NEAR(pick.markPoint.x, 0, kTolerance) << "the axis leaves the mark";

    pick.hitPoint = KxGePoint3d(30, 5);
    pick.hitDistance = 30;
    projectPickToElement(pick, 0, nullptr);
    EXPECT_NEAR(pick.markPoint.x, 30, kTolerance) << "the hit element takes the hit";
    EXPECT_EQ(pick.markElement, 0);
}
