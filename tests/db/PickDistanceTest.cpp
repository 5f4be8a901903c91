#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "kaldo/db/PickGeometry.h"
#include "kxdb.h"

TEST(PickDistance, LinesAndArcsInPlanView)
{
    const KxDbLine line({0, 0, 5}, {10, 0, -5});
    EXPECT_NEAR(kaldo::pickDistance(line, {5, 3, 100}), 3.0, 1e-12);  // z does not count
    EXPECT_NEAR(kaldo::pickDistance(line, {13, 4, 0}), 5.0, 1e-12);   // past the end

    const KxDbArc arc({0, 0, 0}, 2.0, 0.0, std::numbers::pi / 2);
    EXPECT_NEAR(kaldo::pickDistance(arc, {3, 3, 0}), std::hypot(3, 3) - 2, 1e-12);
    EXPECT_NEAR(kaldo::pickDistance(arc, {0, -3, 0}), std::hypot(2, 3), 1e-12);  // nearest end (2,0)

    // Seen from below, the same counter-clockwise sweep runs the other way.
    const KxDbArc flipped({0, 0, 0}, {0, 0, -1}, 2.0, 0.0, std::numbers::pi / 2);
    EXPECT_NEAR(kaldo::pickDistance(flipped, {-3, 3, 0}), std::hypot(3, 3) - 2, 1e-12);
    EXPECT_GT(kaldo::pickDistance(flipped, {3, 3, 0}), 2.0);
}

TEST(PickDistance, MultilineRunsOnly)
{
    KxDbDatabase db;
    KxDbMline m;
    m.setDatabaseDefaults(&db);
    m.setJustification(Mline::kZero);
    m.appendSeg({0, 0, 0});
    m.appendSeg({10, 0, 0});
    EXPECT_NEAR(kaldo::pickDistance(m, {5, 0.8, 0}), 0.3, 1e-12);
    EXPECT_NEAR(kaldo::pickDistance(m, {5, -0.6, 0}), 0.1, 1e-12);

    // Element 0 drawn from 2 to 4 only: a pick at x = 7 is nearer element 1.
    KxArray array;
    m.getParametersAt(0, array);
    KxDbMlineVertexParams::fromArray(array)->elements[0].element = {0.5, 2.0, 4.0};
    m.setParametersAt(0, array);
    KxDbMlineVertexParams::fromArray(array)->release();
    EXPECT_NEAR(kaldo::pickDistance(m, {7, 0.5, 0}), 1.0, 1e-12);
    EXPECT_NEAR(kaldo::pickDistance(m, {3, 0.6, 0}), 0.1, 1e-12);

    const KxDbMline lone;
    EXPECT_TRUE(std::isinf(kaldo::pickDistance(lone, {0, 0, 0})));
}
