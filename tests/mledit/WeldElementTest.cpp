// Drawing an element through again between two marks, and telling gaps
// from runs.
#include "mledit/WeldElement.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace kdml;
using ::testing::ElementsAre;

namespace {

constexpr double m = 1.0;
constexpr double t = 0.1;
const ElementLine kLine = {{0, 1}, {10, 1}, {20, 1}, {30, 1}};

}  // namespace

TEST(WeldElement, RunState)
{
    const std::vector<double> list = {m, 0.0, 3.0, 5.0};
    EXPECT_TRUE(runStateAt(list, 4.0, true, t));
    EXPECT_FALSE(runStateAt(list, 4.0, false, t));
    EXPECT_TRUE(runStateAt(list, 2.0, false, t));
    EXPECT_TRUE(runStateAt(list, 6.0, false, t));
    EXPECT_TRUE(runStateAt(list, 2.95, true, t)) << "a bound within t counts as passed";
    EXPECT_TRUE(runStateAt({m}, 1.0, true, t)) << "no runs: everything is gap";
}

TEST(WeldElement, GapOnOneSegmentClosesEitherWayRound)
{
    ElementRuns runs(4, std::vector<double>{m, 0.0});
    runs[1] = {m, 0.0, 3.0, 5.0};
    ElementRuns reversed = runs;
    weldElementRuns(kLine, runs, {{12, 1}, 2.0, 1}, {{16, 1}, 6.0, 1}, t);
    EXPECT_THAT(runs[1], ElementsAre(m, 0.0));
    weldElementRuns(kLine, reversed, {{16, 1}, 6.0, 1}, {{12, 1}, 2.0, 1}, t);
    EXPECT_EQ(reversed, runs);

    // A segment without any run is drawn whole.
    ElementRuns hidden(4, std::vector<double>{m});
    weldElementRuns(kLine, hidden, {{2, 1}, 2.0, 0}, {{6, 1}, 6.0, 0}, t);
    EXPECT_THAT(hidden[0], ElementsAre(m, 0.0));

    // Equal marks change nothing.
    ElementRuns same(4, std::vector<double>{m, 0.0, 3.0, 5.0});
    weldElementRuns(kLine, same, {{4, 1}, 4.0, 0}, {{4, 1}, 4.0, 0}, t);
    EXPECT_THAT(same[0], ElementsAre(m, 0.0, 3.0, 5.0));
}

TEST(WeldElement, AcrossSegmentsDrawsTheMiddleWhole)
{
    ElementRuns runs(4, std::vector<double>{m, 0.0});
    runs[0] = {m, 0.0, 3.0, 4.0};
    runs[1] = {m};
    runs[2] = {m, 8.0};
    weldElementRuns(kLine, runs, {{5, 1}, 5.0, 0}, {{29, 1}, 9.0, 2}, t);
    EXPECT_THAT(runs[0], ElementsAre(m, 0.0, 3.0, 4.0)) << "runs before the first mark stay";
    EXPECT_THAT(runs[1], ElementsAre(m, 0.0));
    EXPECT_THAT(runs[2], ElementsAre(m, 0.0));
    EXPECT_THAT(runs[3], ElementsAre(m, 0.0));
}
