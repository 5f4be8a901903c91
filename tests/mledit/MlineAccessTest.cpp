// Reading and rewriting multilines through the access layer, the write
// scope and the undo copies, on multilines built through the database.
#include "StandardMline.h"
#include "mledit/MlineAccess.h"
#include "mledit/MlineWriteScope.h"

#include "kxdb.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace kdml;
using ::testing::ElementsAre;
using ::testing::SizeIs;

namespace {

class MlineAccess : public ::testing::Test {
protected:
    KxDbObjectId add(const std::vector<KxGePoint3d>& points, bool closed = false)
    {
        return addStandardMline(db, points, closed);
    }

    KxDbDatabase db;
};

kxds_name_t nameOf(KxDbObjectId id)
{
    kxds_name_t name;
    kxdbGetEntityName(name.id, id);
    return name;
}

}  // namespace

TEST_F(MlineAccess, VerticesFlagsAndCounts)
{
    KxDbObjectPtr<KxDbMline> mline(add({{0, 0}, {100, 0}}), KxDb::kForWrite);
    int flags = 0;
    ASSERT_TRUE(readMlineFlags(mline.get(), flags));
    EXPECT_EQ(flags, kHasVertices);
    EXPECT_TRUE(applyMlineFlags(mline.get(), kClosed | kEndCapsSuppressed));
    EXPECT_FALSE(mline->closedMline()) << "two vertices never close";
    EXPECT_TRUE(mline->supressEndCaps());

    EXPECT_FALSE(setVertexCount(mline.get(), 1));
    EXPECT_EQ(mline->numVertices(), 2);
    ASSERT_TRUE(setVertexCount(mline.get(), 3));
    EXPECT_EQ(mline->vertexAt(2).x, 0.0) << "appended at the origin";
    EXPECT_TRUE(applyMlineFlags(mline.get(), kClosed | kStartCapsSuppressed));
    ASSERT_TRUE(readMlineFlags(mline.get(), flags));
    EXPECT_EQ(flags, kHasVertices | kClosed | kStartCapsSuppressed);

    int n = 0;
    ASSERT_TRUE(getElementCount(mline.get(), n));
    EXPECT_EQ(n, 2);
    ASSERT_TRUE(setElementCountAll(mline.get(), 3));
    ASSERT_TRUE(getElementCount(mline.get(), n));
    EXPECT_EQ(n, 3);
    EXPECT_FALSE(setElementCountAll(mline.get(), 0));

    // Nothing works on a null multiline.
    EXPECT_FALSE(readMlineFlags(nullptr, flags));
    EXPECT_FALSE(getElementCount(nullptr, n));
    std::vector<KxGePoint3d> points;
    EXPECT_FALSE(getVertices(nullptr, points));
    EXPECT_FALSE(setVertices(nullptr, points));
}

TEST_F(MlineAccess, ParameterListsByVertexAndElement)
{
    KxDbObjectPtr<KxDbMline> mline(add({{0, 0}, {100, 0}, {100, 100}}), KxDb::kForWrite);
    std::vector<double> values;
    ASSERT_TRUE(getElementParams(mline.get(), values, 0, 1));
    EXPECT_THAT(values, ElementsAre(-10.0, 0.0));

    ASSERT_TRUE(writeElementParams(mline.get(), {-10.0, 0.0, 20.0, 40.0}, 2, 1));
    int n = 0;
    ASSERT_TRUE(getElementParamCount(mline.get(), n, 7, 5)) << "indices beyond the last read the last";
    EXPECT_EQ(n, 4);
    ASSERT_TRUE(getElementParams(mline.get(), values, -3, 1));
    EXPECT_THAT(values, ElementsAre(-10.0, 0.0)) << "below 0 reads vertex 0";

    // Writers need indices in range and leave the entity alone otherwise.
    EXPECT_FALSE(setElementParamCount(mline.get(), 3, 3, 0));
    EXPECT_FALSE(setElementParams(mline.get(), {1.0}, 0, 2));
    EXPECT_FALSE(setElementParams(mline.get(), {1.0}, 0, 0)) << "fewer values than the list holds";
    ASSERT_TRUE(setElementParamCount(mline.get(), 3, 0, 0));
    ASSERT_TRUE(setElementParams(mline.get(), {10.0, 0.0, 50.0, 99.0}, 0, 0));
    ASSERT_TRUE(getElementParams(mline.get(), values, 0, 0));
    EXPECT_THAT(values, ElementsAre(10.0, 0.0, 50.0));

    // The fill lists are apart from the element lists.
    ASSERT_TRUE(getFillParams(mline.get(), values, 0, 0));
    EXPECT_THAT(values, ElementsAre(10.0, 0.0));
    ASSERT_TRUE(setFillParamCount(mline.get(), 1, 0, 0));
    ASSERT_TRUE(setFillParams(mline.get(), {10.0}, 0, 0));
    ASSERT_TRUE(getFillParamCount(mline.get(), n, 0, 0));
    EXPECT_EQ(n, 1);
    ASSERT_TRUE(getElementParamCount(mline.get(), n, 0, 0));
    EXPECT_EQ(n, 3);

    // A record handed out before a write keeps what it held.
    KxArray held;
    ASSERT_EQ(mline->getParametersAt(1, held), Kald::eOk);
    const KxDbMlineParamsPtr record = KxDbMlineParamsPtr::adopt(KxDbMlineVertexParams::fromArray(held));
    ASSERT_TRUE(writeElementParams(mline.get(), {10.0}, 1, 0));
    EXPECT_THAT(record->lists.element(0), SizeIs(2));
}

TEST_F(MlineAccess, SnapshotAndElementLines)
{
    KxDbObjectPtr<KxDbMline> mline(add({{0, 0}, {100, 0}, {100, 100}}), KxDb::kForRead);
    const std::vector<MlineVertexData> snapshot = readMlineSnapshot(mline.get());
    ASSERT_EQ(snapshot.size(), 3u);
    ASSERT_EQ(snapshot[1].elements.size(), 2u);
    EXPECT_EQ(snapshot[1].position.x, 100.0);
    EXPECT_NEAR(snapshot[1].axis.y, 1.0, 1e-12);

    const std::vector<ElementLine> lines = buildElementLines(mline.get());
    ASSERT_EQ(lines.size(), 2u);
    ASSERT_EQ(lines[0].size(), 3u);
    // The upper element runs 10 above the first segment and 10 left of the
    // second, meeting at the inner corner.
    EXPECT_NEAR(lines[0][0].y, 10.0, 1e-9);
    EXPECT_NEAR(lines[0][1].x, 90.0, 1e-9);
    EXPECT_NEAR(lines[0][1].y, 10.0, 1e-9);
    EXPECT_NEAR(lines[1][1].x, 110.0, 1e-9);
    EXPECT_NEAR(lines[1][1].y, -10.0, 1e-9);
    EXPECT_TRUE(buildElementLines(nullptr).empty());
}

TEST_F(MlineAccess, WriteScopeOpensASharedMultilineOnceAndUndoCopies)
{
    const KxDbObjectId id = add({{0, 0}, {100, 0}});
    MlinePick first, second;
    first.name = second.name = nameOf(id);
    ASSERT_EQ(kxdbOpenObject(first.mline, id, KxDb::kForRead), Kald::eOk);
    second.mline = first.mline;
    auto undo = std::make_unique<KxDbMline>();
    {
        const MlineWriteScope scope(first, second);
        ASSERT_EQ(scope.status(), Kald::eOk);
        EXPECT_EQ(first.mline, second.mline);
        EXPECT_TRUE(first.mline->isWriteEnabled());
        backupMultiline(undo.get(), first.mline);
        ASSERT_TRUE(writeElementParams(first.mline, {10.0}, 0, 0));
    }
    EXPECT_EQ(first.mline, nullptr);
    EXPECT_EQ(second.mline, nullptr);
    // Closed exactly once: it opens for write again.
    KxDbObjectPtr<KxDbMline> check(id, KxDb::kForWrite);
    ASSERT_TRUE(check);
    std::vector<double> values;
    getElementParams(check.get(), values, 0, 0);
    EXPECT_THAT(values, ElementsAre(10.0));
    check.close();

    restoreMultiline(first.name, undo.get());
    KxDbObjectPtr<KxDbMline> restored(id, KxDb::kForRead);
    getElementParams(restored.get(), values, 0, 0);
    EXPECT_THAT(values, ElementsAre(10.0, 0.0));
}

TEST_F(MlineAccess, WriteScopeFailsWhileAnotherReaderHoldsTheSecond)
{
    const KxDbObjectId a = add({{0, 0}, {100, 0}});
    const KxDbObjectId b = add({{50, -50}, {50, 50}});
    MlinePick first, second;
    first.name = nameOf(a);
    second.name = nameOf(b);
    ASSERT_EQ(kxdbOpenObject(first.mline, a, KxDb::kForRead), Kald::eOk);
    ASSERT_EQ(kxdbOpenObject(second.mline, b, KxDb::kForRead), Kald::eOk);
    KxDbObjectPtr<KxDbMline> otherReader(b, KxDb::kForRead);
    {
        const MlineWriteScope scope(first, second);
        EXPECT_NE(scope.status(), Kald::eOk);
    }
    EXPECT_EQ(first.mline, nullptr);
    otherReader.close();
    // Both were closed: each opens for write now.
    EXPECT_TRUE(KxDbObjectPtr<KxDbMline>(a, KxDb::kForWrite));
    EXPECT_TRUE(KxDbObjectPtr<KxDbMline>(b, KxDb::kForWrite));
}
