#include <gtest/gtest.h>

#include <array>
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

TEST(PickDistance, MultilineRuns)
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
    KxDbMlineVertexParams::fromArray(array)->lists.setElement(0, std::array{0.5, 2.0, 4.0});
    m.setParametersAt(0, array);
    KxDbMlineVertexParams::fromArray(array)->release();
    EXPECT_NEAR(kaldo::pickDistance(m, {7, 0.5, 0}), 1.0, 1e-12);
    EXPECT_NEAR(kaldo::pickDistance(m, {3, 0.6, 0}), 0.1, 1e-12);

    const KxDbMline lone;
    EXPECT_TRUE(std::isinf(kaldo::pickDistance(lone, {0, 0, 0})));
}

TEST(PickDistance, CirclesAndPolylineArcsArePickedWhereTheyAreDrawn)
{
    const KxDbCircle circle({5, 5, 0}, 2.0);
    EXPECT_NEAR(kaldo::pickDistance(circle, {5, 8, 0}), 1.0, 1e-12);
    EXPECT_NEAR(kaldo::pickDistance(circle, {5, 5.5, 0}), 1.5, 1e-12);

    // From (0,0) to (4,0) with a half circle below the chord (bulge 1:
    // counter-clockwise), then straight up.
    KxDbPolyline polyline;
    polyline.addVertexAt({0, 0, 0, 0, 1});
    polyline.addVertexAt({4, 0, 0, 0, 0});
    polyline.addVertexAt({4, 6, 0, 0, 0});
    EXPECT_NEAR(kaldo::pickDistance(polyline, {2, -2, 0}), 0.0, 1e-12);
    EXPECT_NEAR(kaldo::pickDistance(polyline, {2, -1, 0}), 1.0, 1e-12);
    EXPECT_NEAR(kaldo::pickDistance(polyline, {5, 4, 0}), 1.0, 1e-12);
    kaldo::Box box;
    ASSERT_TRUE(kaldo::pickExtents(polyline, box));
    EXPECT_NEAR(box.minY, -2, 1e-12);
    EXPECT_NEAR(box.maxY, 6, 1e-12);
}

TEST(PickDistance, WindowsHoldAndCrossWhatIsDrawn)
{
    // A quarter arc from (2,0) to (0,2): its box is tight, not the circle's.
    const KxDbArc arc({0, 0, 0}, 2.0, 0.0, std::numbers::pi / 2);
    kaldo::Box box;
    ASSERT_TRUE(kaldo::pickExtents(arc, box));
    EXPECT_NEAR(box.minX, 0, 1e-12);
    EXPECT_NEAR(box.minY, 0, 1e-12);
    EXPECT_NEAR(box.maxX, 2, 1e-12);
    EXPECT_NEAR(box.maxY, 2, 1e-12);

    kaldo::PlanPieces pieces;
    kaldo::collectPlanPieces(arc, pieces);
    EXPECT_TRUE(kaldo::meetsWindow(pieces, {1.9, 0.4, 3, 0.8}));      // crosses the arc near (1.95, 0.45)
    EXPECT_FALSE(kaldo::meetsWindow(pieces, {0.1, 0.1, 1, 1}));       // inside the circle, off the arc
    EXPECT_FALSE(kaldo::meetsWindow(pieces, {-2.5, -0.5, -1.5, 0.5}));  // where the rest of the circle would be
    const KxDbCircle circle({0, 0, 0}, 2.0);
    kaldo::collectPlanPieces(circle, pieces);
    EXPECT_TRUE(kaldo::meetsWindow(pieces, {-2.5, -0.5, -1.5, 0.5}));

    const KxDbLine line({0, 0, 0}, {10, 10, 0});
    kaldo::collectPlanPieces(line, pieces);
    EXPECT_TRUE(kaldo::meetsWindow(pieces, {4, 4, 6, 6}));
    EXPECT_TRUE(kaldo::meetsWindow(pieces, {-1, 0.5, 20, 0.6}));
    EXPECT_FALSE(kaldo::meetsWindow(pieces, {6, 0, 9, 3}));

    // A multiline with a round end cap reaches beyond its last vertex by
    // half its width.
    KxDbDatabase db;
    {
        KxDbObjectPtr<KxDbMlineStyle> standard(db.cmlstyleID(), KxDb::kForWrite);
        standard->setEndRoundCap(true);
    }
    KxDbMline m;
    m.setDatabaseDefaults(&db);
    m.setJustification(Mline::kZero);
    m.setScale(4);
    m.appendSeg({0, 0, 0});
    m.appendSeg({10, 0, 0});
    ASSERT_TRUE(kaldo::pickExtents(m, box));
    EXPECT_NEAR(box.maxX, 12, 1e-12);
    EXPECT_NEAR(kaldo::pickDistance(m, {12.5, 0, 0}), 0.5, 1e-12);
}
