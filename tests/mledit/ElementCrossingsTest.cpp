// The table of crossings between the element lines of two multilines.
#include "MlineShapes.h"
#include "mledit/ElementCrossings.h"
#include "mledit/MlinePicking.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace kdml;
using namespace kdml::test;

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

TEST(ElementCrossings, NextToAVertexEachElementLineIsTakenAsDrawn)
{
    // Multilines of two elements 5 either side of the axis, built by the
    // host: each element line is a polyline through its own miter points.
    const double r = std::sqrt(2.0);
    struct Crossing {
        int a, b;  // element of first, element of second
        KxGePoint3d point;
        int segFirst, segSecond;
    };
    struct Row {
        const char* name;
        std::vector<KxGePoint3d> first, second;
        ElementReach reach;  // of first
        std::vector<Crossing> expected;
    };
    const std::vector<Row> rows = {
        // A stem down x = 98 (elements at x = 103 and 93) over a bar along
        // y = 0 that turns left by 45 degrees at (100, 0). The bar's segment
        // 1 runs along (1, 1): its elements lie on y = x - 100 +- 5 sqrt 2,
        // and its element points at the vertex are where those meet y = 5
        // and y = -5: x = 105 - 5 sqrt 2 = 97.93 and x = 95 + 5 sqrt 2 =
        // 102.07. The stem's element at x = 103 passes both, so it meets
        // the bar's elements on segment 1, at y = 3 +- 5 sqrt 2 (not on the
        // lines y = +-5 extended); the one at x = 93 meets them on segment 0.
        {"bar turning left",
         {{98, 50}, {98, -50}},
         {{0, 0}, {100, 0}, {200, 100}},
         ElementReach::Whole,
         {{0, 0, {103, 3 + 5 * r}, 0, 1}, {0, 1, {103, 3 - 5 * r}, 0, 1}, {1, 0, {93, 5}, 0, 0}, {1, 1, {93, -5}, 0, 0}}},
        // A stem down x = 99 (elements at 104 and 94) over a bar that turns
        // right at (100, 0) along (1, -1): elements on x + y = 100 +- 5
        // sqrt 2, element points at x = 95 + 5 sqrt 2 = 102.07 (y = 5) and
        // x = 105 - 5 sqrt 2 = 97.93 (y = -5). At x = 104 both lie on
        // segment 1: y = 5 sqrt 2 - 4 = 3.07 and y = -4 - 5 sqrt 2.
        {"bar turning right",
         {{99, 50}, {99, -50}},
         {{0, 0}, {100, 0}, {200, -100}},
         ElementReach::Whole,
         {{0, 0, {104, 5 * r - 4}, 0, 1}, {0, 1, {104, -4 - 5 * r}, 0, 1}, {1, 0, {94, 5}, 0, 0}, {1, 1, {94, -5}, 0, 0}}},
        // The first row the other way round: the first multiline turns.
        {"first turning left",
         {{0, 0}, {100, 0}, {200, 100}},
         {{98, 50}, {98, -50}},
         ElementReach::Whole,
         {{0, 0, {103, 3 + 5 * r}, 1, 0}, {0, 1, {93, 5}, 0, 0}, {1, 0, {103, 3 - 5 * r}, 1, 0}, {1, 1, {93, -5}, 0, 0}}},
        // A stem down x = 98 that turns along (1, -1) at (98, 8), over a bar
        // along y = 0. Its segment 1 elements lie on x + y = 106 +- 5 sqrt
        // 2; its element points at the vertex are (103, 3 + 5 sqrt 2) and
        // (93, 13 - 5 sqrt 2), both above y = 5. As drawn, the elements
        // meet the bar on segment 1: y = 5 at x = 101 +- 5 sqrt 2, y = -5
        // at x = 111 +- 5 sqrt 2.
        {"stem turning above the bar",
         {{98, 50}, {98, 8}, {148, -42}},
         {{0, 0}, {200, 0}},
         ElementReach::Whole,
         {{0, 0, {101 + 5 * r, 5}, 1, 0},
          {0, 1, {111 + 5 * r, -5}, 1, 0},
          {1, 0, {101 - 5 * r, 5}, 1, 0},
          {1, 1, {111 - 5 * r, -5}, 1, 0}}},
        // The same stem kept up to segment 0 (a tee cuts it back there): its
        // segment 0 reaches on down x = 103 and x = 93.
        {"stem kept up to its segment 0",
         {{98, 50}, {98, 8}, {148, -42}},
         {{0, 0}, {200, 0}},
         ElementReach::UpToSegment,
         {{0, 0, {103, 5}, 0, 0}, {0, 1, {103, -5}, 0, 0}, {1, 0, {93, 5}, 0, 0}, {1, 1, {93, -5}, 0, 0}}},
        // The first turns left by 90 degrees at (100, 0): its element 0 runs
        // along y = 5 to (95, 5) and then up x = 95, parallel to the
        // second's element at x = 103, which it never meets. The crossing
        // of the segments' lines stays.
        {"element lines that do not meet as drawn",
         {{0, 0}, {100, 0}, {100, 100}},
         {{98, -50}, {98, 50}},
         ElementReach::Whole,
         {{0, 0, {93, 5}, 0, 0}, {0, 1, {103, 5}, 0, 0}, {1, 0, {93, -5}, 0, 0}, {1, 1, {103, -5}, 0, 0}}},
    };
    for (const Row& row : rows) {
        ShapeDrawing drawing;
        const MlineCase style{row.name, {0.5, -0.5}, Mline::kZero, 10, {}};
        const std::unique_ptr<KxDbMline> first = drawing.draw(style, row.first);
        const std::unique_ptr<KxDbMline> second = drawing.draw(style, row.second);
        MlinePick a;
        MlinePick b;
        a.name.id[0] = 1;
        b.name.id[0] = 2;
        loadPickGeometry(a, first.get());
        loadPickGeometry(b, second.get());
        CrossingTable table;
        ASSERT_TRUE(computeElementCrossings(a, 0, b, 0, table, row.reach)) << row.name;
        for (const Crossing& c : row.expected) {
            const std::string label = std::string(row.name) + " " + std::to_string(c.a) + "/" + std::to_string(c.b);
            const KxGePoint3d& point = table.points[std::size_t(c.a)][std::size_t(c.b)];
            EXPECT_NEAR(point.x, c.point.x, 1e-9) << label;
            EXPECT_NEAR(point.y, c.point.y, 1e-9) << label;
            EXPECT_EQ(table.segments[std::size_t(c.a)][std::size_t(c.b)].first, c.segFirst) << label;
            EXPECT_EQ(table.segments[std::size_t(c.a)][std::size_t(c.b)].second, c.segSecond) << label;
        }
    }
}
