// Choosing the crossing of two axes relative to the picks: candidates,
// immediate choices, ties, and the pruned search against the plain one.
#include "mledit/AxisCrossing.h"
#include "mledit/EditGeometry.h"

#include "AxisPicks.h"

#include <gtest/gtest.h>

#include <random>

using namespace kdml;
using kdml::test::axisPick;

namespace {

void expectCrossing(const std::optional<AxisCrossing>& c, int i, int j, double x, double y)
{
    ASSERT_TRUE(c.has_value());
    EXPECT_EQ(c->segFirst, i);
    EXPECT_EQ(c->segSecond, j);
    EXPECT_NEAR(c->point.x, x, 1e-12);
    EXPECT_NEAR(c->point.y, y, 1e-12);
}

}  // namespace

TEST(AxisCrossing, EqualSumsGoToTheEarliestCandidate)
{
    // A straight first axis and a U-shaped second one crossing it twice at
    // the same summed distance from the picks.
    MlinePick first = axisPick(1, {{0, 0}, {10, 0}, {20, 0}}, 0, {10, 0});
    MlinePick second = axisPick(2, {{5, 5}, {5, -5}, {15, -5}, {15, 5}}, 1, {10, -5});
    expectCrossing(scanAxisCrossing(first, second, true), 0, 0, 5, 0);
    expectCrossing(searchAxisCrossing(first, second, true), 0, 0, 5, 0);

    // Picks nearer the right leg choose the other crossing; it is found
    // first on segment 0 of the first axis, beyond that segment's end, and
    // the picks take the chosen segments.
    second.hitPoint = {13, -5};
    first.hitPoint = {12, 0};
    first.hitSegment = 1;
    const auto chosen = findAxisCrossing(first, second, true);
    expectCrossing(chosen, 0, 2, 15, 0);
    EXPECT_EQ(first.hitSegment, 0);
    EXPECT_EQ(first.markSegment, 0);
    EXPECT_EQ(second.hitSegment, 2);
    EXPECT_EQ(second.markSegment, 2);
}

TEST(AxisCrossing, CrossingOnThePickedSegmentsIsTakenAtOnce)
{
    // The second axis crosses the first twice; the picks lie nearer the
    // first crossing, but the second's pick is on the segment of the other,
    // and the first's on a segment in line with it.
    const MlinePick first = axisPick(1, {{0, 0}, {10, 0}, {20, 0}}, 0, {6, 0});
    const MlinePick second = axisPick(2, {{5, 5}, {5, -5}, {15, -5}, {15, 5}}, 2, {15, 4});
    expectCrossing(searchAxisCrossing(first, second, true), 1, 2, 15, 0);
    expectCrossing(scanAxisCrossing(first, second, true), 1, 2, 15, 0);
}

TEST(AxisCrossing, SegmentsInLineWithThePickedOnesGiveAnImmediateChoice)
{
    // Two straight axes of ten segments each; the picks lie on other
    // segments than those that cross.
    std::vector<KxGePoint3d> along, across;
    for (int k = 0; k <= 10; ++k) {
        along.emplace_back(k * 10.0, 0.0);
        across.emplace_back(55.0, k * 10.0 - 50.0);
    }
    const MlinePick first = axisPick(1, along, 1, {15, 0});
    const MlinePick second = axisPick(2, across, 8, {55, 35});
    // The crossing (55, 0) ends segment 4 of the second and starts segment
    // 5: the earlier pair in scan order wins.
    expectCrossing(scanAxisCrossing(first, second, true), 5, 4, 55, 0);
    expectCrossing(searchAxisCrossing(first, second, true), 5, 4, 55, 0);
}

TEST(AxisCrossing, CandidatesBeyondTheSegments)
{
    // The second axis ends short of the first: the crossing lies within the
    // first's segment only. Cross tools take it, tee tools do not.
    const MlinePick first = axisPick(1, {{0, 0}, {10, 0}}, 0, {5, 0});
    const MlinePick stem = axisPick(2, {{5, 8}, {5, 2}}, 0, {5, 4});
    expectCrossing(searchAxisCrossing(first, stem, true), 0, 0, 5, 0);
    EXPECT_FALSE(searchAxisCrossing(first, stem, false).has_value());

    // Beyond the end of the first's segment but on the second's: a
    // candidate with or without anyCrossing.
    const MlinePick shortFirst = axisPick(1, {{0, 0}, {4, 0}}, 0, {2, 0});
    const MlinePick cross = axisPick(2, {{5, 5}, {5, -5}}, 0, {5, 1});
    expectCrossing(searchAxisCrossing(shortFirst, cross, false), 0, 0, 5, 0);
    expectCrossing(scanAxisCrossing(shortFirst, cross, false), 0, 0, 5, 0);

    // Parallel axes have no crossing.
    const MlinePick parallel = axisPick(2, {{0, 3}, {10, 3}}, 0, {5, 3});
    EXPECT_FALSE(searchAxisCrossing(first, parallel, true).has_value());
}

TEST(AxisCrossing, OneMultilinePickedTwice)
{
    const std::vector<KxGePoint3d> zigzag = {{0, 0}, {10, 0}, {10, 10}, {5, -5}};
    // Same or neighbouring segments: nothing to look for.
    EXPECT_FALSE(searchAxisCrossing(axisPick(1, zigzag, 0, {5, 0}), axisPick(1, zigzag, 1, {10, 5}), true));
    EXPECT_TRUE(picksOnNeighbouringSegments(axisPick(1, zigzag, 2, {8, 4}), axisPick(1, zigzag, 1, {10, 5})));
    // The last segment crosses the first one; a segment never crosses itself.
    expectCrossing(searchAxisCrossing(axisPick(1, zigzag, 0, {6, 0}), axisPick(1, zigzag, 2, {7, 1}), true), 0, 2,
                   20.0 / 3.0, 0);

    // On a closed axis the second's closing segment is tried too.
    const std::vector<KxGePoint3d> square = {{0, 0}, {10, 0}, {10, 10}, {0, 10}};
    const MlinePick across = axisPick(2, {{-5, 5}, {5, 5}}, 0, {-1, 5});
    expectCrossing(searchAxisCrossing(across, axisPick(1, square, 3, {0, 4}, true), false), 0, 3, 0, 5);
}

TEST(AxisCrossing, PrunedSearchChoosesAsThePlainSearch)
{
    std::mt19937 random(20261123);
    std::uniform_real_distribution<double> coordinate(-100, 100);
    std::uniform_int_distribution<int> grid(-4, 4);
    int crossings = 0;
    for (int round = 0; round < 400; ++round) {
        // Every fourth round on a coarse grid, so that ties, crossings at
        // vertices and segments in line with the picked ones occur.
        const bool onGrid = round % 4 == 0;
        const auto randomAxis = [&](int n) {
            std::vector<KxGePoint3d> points;
            for (int k = 0; k < n; ++k)
                points.push_back(onGrid ? KxGePoint3d(grid(random) * 10.0, grid(random) * 10.0)
                                        : KxGePoint3d(coordinate(random), coordinate(random)));
            return points;
        };
        const auto randomPick = [&](std::int64_t entity, const std::vector<KxGePoint3d>& axis, bool closed) {
            const int segments = int(axis.size()) - (closed ? 0 : 1);
            const int s = std::uniform_int_distribution<int>(0, segments - 1)(random);
            const double t = std::uniform_real_distribution<double>(0, 1)(random);
            const KxGePoint3d& a = axis[std::size_t(s)];
            const KxGePoint3d& b = axis[std::size_t((s + 1) % axis.size())];
            return axisPick(entity, axis, s, a + (b - a) * t, closed);
        };
        const std::vector<KxGePoint3d> axisA = randomAxis(2 + round % 9);
        const bool same = round % 7 == 3;
        const std::vector<KxGePoint3d> axisB = same ? axisA : randomAxis(2 + round % 13);
        const bool closedB = round % 3 == 1 && axisB.size() > 2;
        const MlinePick first = randomPick(1, axisA, same && closedB);
        const MlinePick second = randomPick(same ? 1 : 2, axisB, closedB);
        for (const bool any : {true, false}) {
            const auto plain = scanAxisCrossing(first, second, any);
            const auto pruned = searchAxisCrossing(first, second, any);
            ASSERT_EQ(plain.has_value(), pruned.has_value()) << "round " << round;
            if (!plain)
                continue;
            ++crossings;
            EXPECT_EQ(plain->segFirst, pruned->segFirst) << "round " << round;
            EXPECT_EQ(plain->segSecond, pruned->segSecond) << "round " << round;
            EXPECT_TRUE(pointsEqual(plain->point, pruned->point)) << "round " << round;
        }
    }
    EXPECT_GT(crossings, 300) << "the rounds must mostly find crossings to compare";
}
