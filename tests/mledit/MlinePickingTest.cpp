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
    KxDbObjectId add(const std::vector<KxGePoint3d>& points, bool closed = false)
    {
        return addStandardMline(db, points, closed);
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

    auto* line = new KxDbLine({0, 200, 0}, {10, 200, 0});
    KxDbObjectId lineId;
    db.addToCurrentSpace(line, lineId);
    line->close();
    kxds_name_t name;
    kxdbGetEntityName(name.id, lineId);
    EXPECT_FALSE(isMultilineEntity(name));
    EXPECT_EQ(name.id[0], 0) << "cleared";
    EXPECT_FALSE(isMultilineEntity(name)) << "an empty name";
    kxdbGetEntityName(name.id, square);
    EXPECT_TRUE(isMultilineEntity(name));
}
