// The table of crossings between the element lines of two multilines.
#include "mledit/ElementCrossings.h"

#include <gtest/gtest.h>

using namespace kdml;

namespace {

// A two-element multiline with its element lines half a unit either side
// of the axis.
MlinePick twoElements(std::int64_t entity, const std::vector<KxGePoint3d>& axis, const KxGeVector3d& side)
{
    MlinePick pick;
    pick.name.id[0] = entity;
    pick.vertices = axis;
    pick.numVertices = int(axis.size());
    pick.numElements = 2;
    for (const double offset : {0.5, -0.5}) {
        ElementLine line;
        for (const KxGePoint3d& p : axis)
            line.push_back(p + side * offset);
        pick.elementLines.push_back(line);
    }
    return pick;
}

}  // namespace

TEST(ElementCrossings, EveryElementOfOneWithEveryElementOfTheOther)
{
    const MlinePick first = twoElements(1, {{0, 0}, {20, 0}}, {0, 1});
    const MlinePick second = twoElements(2, {{10, -10}, {10, 10}}, {-1, 0});
    CrossingTable table;
    ASSERT_TRUE(computeElementCrossings(first, 0, second, 0, table));
    ASSERT_EQ(table.rows(), 2);
    ASSERT_EQ(table.points[0].size(), 2u);
    EXPECT_NEAR(table.points[0][0].x, 9.5, 1e-12);
    EXPECT_NEAR(table.points[0][0].y, 0.5, 1e-12);
    EXPECT_NEAR(table.points[1][1].x, 10.5, 1e-12);
    EXPECT_NEAR(table.points[1][1].y, -0.5, 1e-12);
    EXPECT_EQ(table.segments[1][0].first, 0);
    EXPECT_EQ(table.segments[1][0].second, 0);

    // Segments of the same direction: no table, the old one stays.
    const MlinePick along = twoElements(3, {{0, 3}, {20, 3}}, {0, 1});
    EXPECT_FALSE(computeElementCrossings(first, 0, along, 0, table));
    EXPECT_EQ(table.rows(), 2);
    EXPECT_NEAR(table.points[0][0].x, 9.5, 1e-12);
}

TEST(ElementCrossings, CrossingsBeyondTheSegmentAreFoundOnTheirOwnSegment)
{
    // The first axis has a vertex at x = 5; its segment 0 stops short of
    // the second multiline, whose crossings lie on segment 1.
    const MlinePick first = twoElements(1, {{0, 0}, {5, 0}, {20, 0}}, {0, 1});
    const MlinePick second = twoElements(2, {{10, -10}, {10, 10}}, {-1, 0});
    CrossingTable table;
    ASSERT_TRUE(computeElementCrossings(first, 0, second, 0, table));
    EXPECT_EQ(table.segments[0][0].first, 1);
    EXPECT_EQ(table.segments[0][0].second, 0);
    EXPECT_EQ(table.segments[1][1].first, 1);

    // The second's closing segment runs back to its vertex 0.
    MlinePick ring = twoElements(2, {{8, -4}, {12, -4}, {12, 4}, {8, 4}}, {0, 0});
    ring.closed = true;
    ASSERT_TRUE(computeElementCrossings(first, 1, ring, 3, table));
    EXPECT_NEAR(table.points[0][0].x, 8, 1e-12);
    EXPECT_NEAR(table.points[0][0].y, 0.5, 1e-12);
    EXPECT_EQ(table.segments[0][0].second, 3);
}
