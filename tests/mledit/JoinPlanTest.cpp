// Which element lines the tees and the corner joint end elements at and
// open: the depth rule of the merged tee from either side of the bar, and
// the corner partners for the same and for reversed element order.
#include "mledit/CornerJoint.h"
#include "mledit/TeeTools.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace kdml;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(JoinPlan, OpenAndMergedTeeFromEitherSide)
{
    // Open tee: every stem element at the near element, which alone opens.
    TeePlan plan = planTee(TeeKind::Open, 3, 4, 3);
    EXPECT_THAT(plan.stemEnds, ElementsAre(3, 3, 3));
    EXPECT_THAT(plan.opened, ElementsAre(3));
    EXPECT_THAT(planTee(TeeKind::Closed, 2, 2, 0).opened, IsEmpty());

    struct Row {
        int nA, nB, near;
        std::vector<int> stemEnds, opened;
    };
    const std::vector<Row> rows = {
        // Three over three: the middle element ends at the middle (L = 1).
        {3, 3, 0, {0, 1, 0}, {0}},
        {3, 3, 2, {2, 1, 2}, {2}},
        // A two-element bar: L = 1, only the near element opens.
        {3, 2, 0, {0, 1, 0}, {0}},
        {2, 2, 1, {1, 1}, {1}},
        // Four over four: nested by depth (L = 2).
        {4, 4, 0, {0, 1, 1, 0}, {0, 1}},
        {4, 4, 3, {3, 2, 2, 3}, {3, 2}},
        // Five over four: depth limited by the bar (L = 2).
        {5, 4, 0, {0, 1, 2, 1, 0}, {0, 1}},
        // Two over five: no inner stem elements (L = 1).
        {2, 5, 4, {4, 4}, {4}},
        // Six over three: L = min(3, 1) = 1.
        {6, 3, 0, {0, 1, 1, 1, 1, 0}, {0}},
    };
    for (const Row& row : rows) {
        plan = planTee(TeeKind::Merged, row.nA, row.nB, row.near);
        EXPECT_EQ(plan.stemEnds, row.stemEnds) << row.nA << " over " << row.nB << " near " << row.near;
        EXPECT_EQ(plan.opened, row.opened) << row.nA << " over " << row.nB << " near " << row.near;
    }
}

TEST(JoinPlan, CornerPartnersForSameAndReversedOrder)
{
    struct Row {
        int n, m;
        bool sameOrder, atEnd;
        std::vector<int> partners;  // for e = 0 .. n-1
    };
    const std::vector<Row> rows = {
        {3, 3, false, true, {2, 1, 0}},
        {3, 3, true, true, {0, 1, 2}},
        // Three elements meeting five: the inner one by the end rule.
        {3, 5, true, true, {0, 1, 4}},
        {3, 5, true, false, {0, 3, 4}},
        {3, 5, false, true, {4, 1, 0}},
        // Five meeting three: inner elements at the lesser of e and 1, or the
        // greater of 2 - e and 1.
        {5, 3, true, true, {0, 1, 1, 1, 2}},
        {5, 3, false, true, {2, 1, 1, 1, 0}},
        // Four meeting two, and one element meeting one.
        {4, 2, true, true, {0, 0, 0, 1}},
        {4, 2, true, false, {0, 1, 1, 1}},
        {1, 1, false, true, {0}},
    };
    for (const Row& row : rows) {
        std::vector<int> partners;
        for (int e = 0; e < row.n; ++e)
            partners.push_back(cornerPartner(e, row.n, row.m, row.sameOrder, row.atEnd));
        EXPECT_EQ(partners, row.partners) << row.n << " meeting " << row.m << (row.sameOrder ? " same" : " reversed")
                                          << (row.atEnd ? " at end" : " at start");
    }
}
