// The parts of the style manager that hold no window: the in-use walk that
// decides which buttons a style gets, and the schematic preview geometry.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "TestMlines.h"
#include "kxdb.h"
#include "styledlg/StylePreviewData.h"
#include "styledlg/StylePreviewGeometry.h"
#include "styledlg/StyleUse.h"

namespace {

constexpr double kTol = 1e-10;
constexpr double pi = std::numbers::pi;

KxDbMline* newMline(KxDbDatabase& db, KxDbObjectId style)
{
    auto* mline = new KxDbMline;
    mline->setDatabaseDefaults(&db);
    mline->setStyle(style);
    mline->appendSeg({0, 0, 0});
    mline->appendSeg({10, 0, 0});
    return mline;
}

kdml::StylePreviewData record(std::initializer_list<double> offsets, std::uint32_t flags, double startAngle,
                              double endAngle)
{
    kdml::StylePreviewData data;
    data.flags = flags;
    data.startAngle = startAngle;
    data.endAngle = endAngle;
    for (const double o : offsets)
        data.elements.push_back({o, KxCmColor(), {}});
    return data;
}

void expectPoint(const KxGePoint3d& p, double x, double y)
{
    EXPECT_NEAR(p.x, x, kTol);
    EXPECT_NEAR(p.y, y, kTol);
}

}  // namespace

TEST(StyleUse, AnyLiveMultilineInAnyBlockCounts)
{
    KxDbDatabase db;
    const KxDbObjectId walls = addTestStyle(db, L"Walls", {0.5, -0.5});
    const KxDbObjectId roads = addTestStyle(db, L"Roads", {0.5, -0.5});
    EXPECT_FALSE(kdml::isStyleInUse(&db, L"WALLS"));

    KxDbMline* road = newMline(db, roads);
    db.addToCurrentSpace(road);
    road->close();
    KxDbMline* erased = newMline(db, walls);
    db.addToCurrentSpace(erased);
    erased->erase();
    erased->close();
    EXPECT_FALSE(kdml::isStyleInUse(&db, L"walls")) << "an erased multiline is no use";
    EXPECT_TRUE(kdml::isStyleInUse(&db, L"rOADS"));
    EXPECT_FALSE(kdml::isStyleInUse(&db, L"standard"));

    // A use inside a block that is no layout counts as well.
    auto* block = new KxDbBlockTableRecord;
    block->setName(L"DOOR");
    {
        KxDbBlockTable* table = nullptr;
        ASSERT_EQ(db.getBlockTable(table, KxDb::kForWrite), Kald::eOk);
        KxDbObjectPtr<KxDbBlockTable> closeTable(table);
        ASSERT_EQ(table->add(block), Kald::eOk);
    }
    KxDbMline* inBlock = newMline(db, walls);
    ASSERT_EQ(block->appendKxDbEntity(inBlock), Kald::eOk);
    inBlock->close();
    block->close();
    EXPECT_TRUE(kdml::isStyleInUse(&db, L"Walls"));
    EXPECT_FALSE(kdml::isStyleInUse(nullptr, L"Walls"));
}

TEST(StylePreview, RecordFollowsTheStyle)
{
    KxDbDatabase db;
    KxDbObjectPtr<KxDbMlineStyle> standard(db.cmlstyleID(), KxDb::kForWrite);
    standard->setShowMiters(true);
    standard->setEndRoundCap(true);
    standard->setStartAngle(pi / 4);
    kdml::StylePreviewData data = record({9, 9, 9}, 0x1, 0, 0);
    kdml::fillPreviewRecord(data, *standard);
    ASSERT_EQ(data.elements.size(), 2u);
    EXPECT_EQ(data.elements[0].offset, 0.5);
    EXPECT_EQ(data.elements[1].offset, -0.5);
    EXPECT_EQ(data.flags, 0x2u | 0x400u);
    EXPECT_EQ(data.startAngle, pi / 4);
}

// A control of 400 by 200: cx = 200, cy = 100; the elements lie between
// y = 150 (the first) and y = 50 (the last), x between 100 and 300.
TEST(StylePreview, SchematicGeometry)
{
    {
        SCOPED_TRACE("two elements, right-angled caps, no flags");
        const auto g = kdml::previewGeometry(record({0.5, -0.5}, 0, pi / 2, pi / 2), 0, 0, 400, 200);
        ASSERT_EQ(g.lines.size(), 2u);
        EXPECT_TRUE(g.arcs.empty());
        expectPoint(g.lines[0].from, 100, 150);
        expectPoint(g.lines[0].to, 300, 150);
        expectPoint(g.lines[1].from, 100, 50);
        expectPoint(g.lines[1].to, 300, 50);
        EXPECT_TRUE(g.lines[1].elementLinetype);
        EXPECT_EQ(g.lines[1].element, 1);
    }
    {
        SCOPED_TRACE("caps at 45 degrees with line caps: both caps lean the same way, drawn in halves");
        const auto g = kdml::previewGeometry(record({1.0, -3.0}, 0x10 | 0x100, pi / 4, pi / 4), 0, 0, 400, 200);
        ASSERT_EQ(g.lines.size(), 6u);
        expectPoint(g.lines[0].from, 200, 150);  // left end moved right by cy - h = 100
        expectPoint(g.lines[0].to, 300, 150);    // right end moved left by h = 0
        expectPoint(g.lines[1].from, 100, 50);
        expectPoint(g.lines[1].to, 200, 50);
        expectPoint(g.lines[2].to, 150, 100);  // start cap halves meet at its midpoint
        EXPECT_EQ(g.lines[2].element, 0);
        EXPECT_EQ(g.lines[3].element, 1);
        EXPECT_FALSE(g.lines[3].elementLinetype);
        expectPoint(g.lines[5].to, 250, 100);
    }
    {
        SCOPED_TRACE("four elements with start outer arc and inner arcs");
        const auto g = kdml::previewGeometry(record({3, 1, -1, -3}, 0x20 | 0x40, pi / 2, pi / 2), 0, 0, 400, 200);
        ASSERT_EQ(g.arcs.size(), 4u);
        const int pairs[4] = {0, 3, 1, 2};
        for (int i = 0; i < 4; ++i) {
            EXPECT_EQ(g.arcs[std::size_t(i)].element, pairs[i]);
            expectPoint(g.arcs[std::size_t(i)].centre, 100, 100);
        }
        EXPECT_NEAR(g.arcs[0].radius, 50, kTol);
        EXPECT_NEAR(g.arcs[2].radius, 50.0 / 3, kTol);
        EXPECT_NEAR(g.arcs[0].endAngle, pi, kTol);
        EXPECT_NEAR(g.arcs[1].startAngle, pi, kTol);
        EXPECT_NEAR(g.arcs[1].endAngle, 1.5 * pi, kTol);
    }
    {
        SCOPED_TRACE("three elements with joints and an end outer arc; the middle element has no arc");
        const auto g = kdml::previewGeometry(record({1, 0, -1}, 0x2 | 0x400 | 0x200, pi / 2, pi / 2), 0, 0, 400, 200);
        ASSERT_EQ(g.lines.size(), 5u);
        expectPoint(g.lines[3].from, 200, 150);
        expectPoint(g.lines[3].to, 200, 100);
        EXPECT_EQ(g.lines[3].element, 0);
        EXPECT_EQ(g.lines[4].element, 2);
        ASSERT_EQ(g.arcs.size(), 2u);
        EXPECT_NEAR(g.arcs[1].startAngle, 1.5 * pi, kTol);
        EXPECT_NEAR(g.arcs[1].endAngle, 2 * pi, kTol);
    }
    {
        SCOPED_TRACE("one element: one line through the middle, flags ignored");
        const auto g = kdml::previewGeometry(record({0.7}, 0x7FF, pi / 4, pi / 4), 0, 0, 400, 200);
        ASSERT_EQ(g.lines.size(), 1u);
        EXPECT_TRUE(g.arcs.empty());
        expectPoint(g.lines[0].from, 100, 100);
        expectPoint(g.lines[0].to, 300, 100);
    }
    {
        SCOPED_TRACE("equal first and last offsets spread evenly; no elements draw nothing");
        const auto g = kdml::previewGeometry(record({0, 0, 0}, 0, pi / 2, pi / 2), 0, 0, 400, 200);
        ASSERT_EQ(g.lines.size(), 3u);
        EXPECT_NEAR(g.lines[1].from.y, 100, kTol);
        EXPECT_NEAR(g.lines[2].from.y, 50, kTol);
        EXPECT_TRUE(kdml::previewGeometry(record({}, 0x7FF, pi / 2, pi / 2), 0, 0, 400, 200).lines.empty());
    }
}
