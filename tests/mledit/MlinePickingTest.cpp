// Picking multilines: which element run a pick hits, gaps, the fallback to
// an end of element 0, refused entities, and the weld pick's snapping.
#include "StandardMline.h"
#include "mledit/MlineAccess.h"
#include "mledit/MlinePicking.h"

#include "ed/EditorFixture.h"

#include <gtest/gtest.h>

using namespace kdml;

namespace {

// The view shows one drawing unit per pixel and PICKBOX is 3: picks reach
// 3 * sqrt(2) units.
class MlinePicking : public kaldo::EditorFixture {
protected:
    KxDbObjectId add(const std::vector<KxGePoint3d>& points, bool closed = false, double scale = 20)
    {
        return addStandardMline(db, points, closed, scale);
    }

    // Fills pick as the tools do after a selection at point.
    void pickAt(const KxGePoint3d& point, KxDbObjectId id, MlinePick& pick, bool weld = false)
    {
        kxds_name_t name;
        kxdbGetEntityName(name.id, id);
        context.pickPoint = point;
        if (weld)
            pickMultilineForWeld(context, pick, name, nullptr);
        else
            pickMultiline(context, pick, name, nullptr);
        closePicks(context);
    }

    MlineEditContext context;
};

}  // namespace

TEST_F(MlinePicking, HitsTheFirstDrawnRunUnderThePickBox)
{
    const KxDbObjectId id = add({{0, 0}, {100, 0}, {100, 100}});
    pickAt({50, 9}, id, context.first);
    EXPECT_EQ(context.first.numVertices, 3);
    EXPECT_EQ(context.first.numElements, 2);
    EXPECT_EQ(context.first.hitSegment, 0);
    EXPECT_EQ(context.first.hitElement, 0);
    EXPECT_NEAR(context.first.hitPoint.x, 50, 1e-9);
    EXPECT_NEAR(context.first.hitPoint.y, 10, 1e-9);
    EXPECT_NEAR(context.first.hitDistance, 50, 1e-9);
    EXPECT_EQ(context.first.markSegment, 0);
    EXPECT_NEAR(context.first.markDistance, 50, 1e-9);
    EXPECT_NEAR(context.pickTolerance, 3 * std::sqrt(2.0), 1e-12);

    pickAt({111, 60}, id, context.first);
    EXPECT_EQ(context.first.hitSegment, 1);
    EXPECT_EQ(context.first.hitElement, 1);
    EXPECT_NEAR(context.first.hitPoint.x, 110, 1e-9);
}

TEST_F(MlinePicking, GapsAreNotHitAndOpenMultilinesFallBackToAnEnd)
{
    const KxDbObjectId id = add({{0, 0}, {100, 0}});
    {
        KxDbObjectPtr<KxDbMline> mline(id, KxDb::kForWrite);
        writeElementParams(mline.get(), {10.0, 0.0, 20.0, 80.0}, 0, 0);
    }
    pickAt({30, 10}, id, context.first);
    EXPECT_EQ(context.first.hitElement, 0);
    EXPECT_EQ(context.first.hitSegment, 0);
    EXPECT_NEAR(context.first.hitPoint.x, 0, 1e-9) << "in the gap: the nearer end of element 0";
    pickAt({70, 11}, id, context.first);
    EXPECT_NEAR(context.first.hitPoint.x, 100, 1e-9);
    EXPECT_NEAR(context.first.hitPoint.y, 10, 1e-9);
    pickAt({90, 10}, id, context.first);
    EXPECT_NEAR(context.first.hitPoint.x, 90, 1e-9) << "on the run after the gap";

    // A weld pick in the gap still hits the element line; it snaps to the
    // segment's start unless it lies at or beyond the end.
    pickAt({30, 10}, id, context.first, true);
    EXPECT_EQ(context.first.hitElement, 0);
    EXPECT_NEAR(context.first.hitPoint.x, 30, 1e-9);
    EXPECT_NEAR(context.first.markDistance, 30, 1e-9);
    EXPECT_NEAR(context.first.markPoint.x, 30, 1e-9);
    pickAt({102, -10}, id, context.first, true);
    EXPECT_EQ(context.first.hitElement, 1);
    EXPECT_NEAR(context.first.markDistance, 100, 1e-9);
    EXPECT_NEAR(context.first.markPoint.x, 100, 1e-9);
}

TEST_F(MlinePicking, ClosedMultilinesAndRefusedEntities)
{
    const KxDbObjectId square = add({{0, 0}, {100, 0}, {100, 100}, {0, 100}}, true);
    pickAt({-10, 50}, square, context.first);
    EXPECT_EQ(context.first.hitSegment, 3) << "the closing segment";
    EXPECT_EQ(context.first.hitElement, 1);
    EXPECT_TRUE(context.first.closed);
    // Nothing under the pick box: the hit still names a segment and an
    // element of the multiline.
    context.first.hitSegment = 17;
    pickAt({50, 50}, square, context.first);
    EXPECT_LT(context.first.hitSegment, 4);

    const KxDbObjectId lineId = addLine({0, 200, 0}, {10, 200, 0});
    kxds_name_t name;
    kxdbGetEntityName(name.id, lineId);
    EXPECT_FALSE(isMultilineEntity(name));
    EXPECT_EQ(name.id[0], 0) << "cleared";
    EXPECT_FALSE(isMultilineEntity(name)) << "an empty name";
    kxdbGetEntityName(name.id, square);
    EXPECT_TRUE(isMultilineEntity(name));
}

TEST_F(MlinePicking, PicksNearEitherEndOfASegmentOfAWideWallHitWhereTheyAre)
{
    // Walls 100 wide (STANDARD at scale 100): element 0 lies 50 left of the
    // axis, element 1 50 right; entry 0 of a list is 50 (-50), or 50 / sin
    // 45 = 70.71 at a right-angled bend. A run bound counts from the
    // element's point at the vertex, whatever entry 0 holds.
    const KxDbObjectId straight = add({{0, 0}, {200, 0}}, false, 100);
    // Along (0, 500) (200, 500) (200, 800): element 0 runs y = 550 to
    // (150, 550) and up x = 150; element 1 y = 450 to (250, 450) and up
    // x = 250.
    const KxDbObjectId bent = add({{0, 500}, {200, 500}, {200, 800}}, false, 100);
    // A wall drawn only from 10 to 20 along its element 0.
    const KxDbObjectId gapped = add({{0, -500}, {200, -500}}, false, 100);
    {
        KxDbObjectPtr<KxDbMline> mline(gapped, KxDb::kForWrite);
        writeElementParams(mline.get(), {50.0, 10.0, 20.0}, 0, 0);
    }
    struct Row {
        KxDbObjectId id;
        KxGePoint3d pick;
        int element, segment;
        double distance;  // from the element's point at the segment's start
        KxGePoint3d hit;
    };
    const std::vector<Row> rows = {
        {straight, {3, 50}, 0, 0, 3, {3, 50}},
        {straight, {197, 50}, 0, 0, 197, {197, 50}},
        {straight, {3, -50}, 1, 0, 3, {3, -50}},
        {straight, {197, -51}, 1, 0, 197, {197, -50}},
        // 3 after the start of segment 1 on element 0 (entry 0 70.71):
        // (150, 553) is 3 up from (150, 550).
        {bent, {150, 553}, 0, 1, 3, {150, 553}},
        {bent, {150, 797}, 0, 1, 247, {150, 797}},
        {bent, {147, 550}, 0, 0, 147, {147, 550}},
        {bent, {250, 453}, 1, 1, 3, {250, 453}},
        {gapped, {15, -450}, 0, 0, 15, {15, -450}},
    };
    for (const Row& row : rows) {
        const std::string label = "pick at " + std::to_string(row.pick.x) + "," + std::to_string(row.pick.y);
        pickAt(row.pick, row.id, context.first);
        EXPECT_EQ(context.first.hitElement, row.element) << label;
        EXPECT_EQ(context.first.hitSegment, row.segment) << label;
        EXPECT_NEAR(context.first.hitDistance, row.distance, 1e-9) << label;
        EXPECT_NEAR(context.first.hitPoint.x, row.hit.x, 1e-9) << label;
        EXPECT_NEAR(context.first.hitPoint.y, row.hit.y, 1e-9) << label;
    }
}
