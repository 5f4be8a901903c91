// Hiding an element line between two points, on hand-made element lines
// and run lists.
#include "mledit/CutElement.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace kdml;
using ::testing::ElementsAre;

namespace {

// An element line along y = 1 through x = 0, 10, 20, 30, drawn whole, with
// miter offset m.
constexpr double m = 1.0;
const ElementLine kLine = {{0, 1}, {10, 1}, {20, 1}, {30, 1}};

ElementRuns whole()
{
    return ElementRuns(4, std::vector<double>{m, 0.0});
}

}  // namespace

TEST(CutElement, OneGapOnAFreshSegmentEitherWayRound)
{
    ElementRuns runs = whole();
    cutElementRuns(kLine, false, runs, {3, 1}, 0, {5, 1}, 0);
    EXPECT_THAT(runs[0], ElementsAre(m, 0.0, 3.0, 5.0));
    EXPECT_THAT(runs[1], ElementsAre(m, 0.0));

    ElementRuns reversed = whole();
    cutElementRuns(kLine, false, reversed, {5, 1}, 0, {3, 1}, 0);
    EXPECT_EQ(reversed, runs);

    // The same cut again changes nothing.
    cutElementRuns(kLine, false, runs, {3, 1}, 0, {5, 1}, 0);
    EXPECT_THAT(runs[0], ElementsAre(m, 0.0, 3.0, 5.0));

    // Equal ends change nothing.
    ElementRuns untouched = whole();
    cutElementRuns(kLine, false, untouched, {4, 1}, 0, {4, 1}, 0);
    EXPECT_EQ(untouched, whole());
}

TEST(CutElement, AlreadyCutListsGrowOrMergeGaps)
{
    ElementRuns runs = whole();
    runs[1] = {m, 0.0, 3.0, 5.0};
    // A cut starting in the gap and ending on the run after it widens the gap.
    cutElementRuns(kLine, false, runs, {14, 1}, 1, {18, 1}, 1);
    EXPECT_THAT(runs[1], ElementsAre(m, 0.0, 3.0, 8.0));
    // A second gap further on.
    cutElementRuns(kLine, false, runs, {19, 1}, 1, {19.5, 1}, 1);
    EXPECT_THAT(runs[1], ElementsAre(m, 0.0, 3.0, 8.0, 9.0, 9.5));
    // One cut over both gaps and the run between them leaves one gap.
    cutElementRuns(kLine, false, runs, {12, 1}, 1, {19.8, 1}, 1);
    EXPECT_THAT(runs[1], ElementsAre(m, 0.0, 2.0, 9.8));
    // A cut that lies wholly inside a gap changes nothing.
    cutElementRuns(kLine, false, runs, {14, 1}, 1, {16, 1}, 1);
    EXPECT_THAT(runs[1], ElementsAre(m, 0.0, 2.0, 9.8));
}

TEST(CutElement, AcrossSegmentsHidesTheMiddleOnes)
{
    ElementRuns runs = whole();
    cutElementRuns(kLine, false, runs, {7, 1}, 0, {25, 1}, 2);
    EXPECT_THAT(runs[0], ElementsAre(m, 0.0, 7.0));
    EXPECT_THAT(runs[1], ElementsAre(m));
    EXPECT_THAT(runs[2], ElementsAre(m, 5.0));
    EXPECT_THAT(runs[3], ElementsAre(m, 0.0));

    // Given the other way round, the ends are ordered by segment.
    ElementRuns reversed = whole();
    cutElementRuns(kLine, false, reversed, {25, 1}, 2, {7, 1}, 0);
    EXPECT_EQ(reversed, runs);

    // On the last segment the runs up to the end point go and a run covering
    // it starts there.
    ElementRuns cut = whole();
    cut[2] = {m, 0.0, 2.0, 3.0};
    cutElementRuns(kLine, false, cut, {7, 1}, 0, {24, 1}, 2);
    EXPECT_THAT(cut[2], ElementsAre(m, 4.0));
}

TEST(CutElement, AStartOnTheEndVertexStartsTheNextSegment)
{
    ElementRuns runs = whole();
    cutElementRuns(kLine, false, runs, {10, 1}, 0, {15, 1}, 1);
    EXPECT_THAT(runs[0], ElementsAre(m, 0.0)) << "the segment that ends at the start stays whole";
    EXPECT_THAT(runs[1], ElementsAre(m, 5.0));

    // An end on the vertex that starts its segment ends the previous one.
    ElementRuns back = whole();
    cutElementRuns(kLine, false, back, {15, 1}, 1, {20, 1}, 2);
    EXPECT_THAT(back[1], ElementsAre(m, 0.0, 5.0));
    EXPECT_THAT(back[2], ElementsAre(m, 0.0));
}

TEST(CutElement, EndsOffTheirSegmentsChangeNothing)
{
    ElementRuns runs = whole();
    cutElementRuns(kLine, false, runs, {-5, 1}, 0, {-2, 1}, 0);
    EXPECT_EQ(runs, whole()) << "both before the start";
    cutElementRuns(kLine, false, runs, {35, 1}, 3, {40, 1}, 3);
    EXPECT_EQ(runs, whole()) << "no such segment on an open line";
}

TEST(CutElement, TheClosingSegmentOfAClosedLine)
{
    ElementRuns runs = whole();
    cutElementRuns(kLine, true, runs, {30, 1}, 3, {30, 1}, 3);
    EXPECT_EQ(runs, whole());
    const ElementLine square = {{0, 0}, {10, 0}, {10, 10}, {0, 10}};
    ElementRuns closed = whole();
    cutElementRuns(square, true, closed, {0, 8}, 3, {0, 4}, 3);
    EXPECT_THAT(closed[3], ElementsAre(m, 0.0, 2.0, 6.0));
}
