// Records kept as read that the renderer draws: a block inserted scaled and
// rotated (with a block inside it), a solid, solid hatches, an ellipse, a
// point, a spline, texts placed by their justification; what it cannot draw (hatch
// patterns) is named.
#include "ViewDrawing.h"

#include "kxdbunmodelled.h"

#include <QGuiApplication>

#include <cmath>
#include <set>
#include <string>

using namespace kaldo::view;

namespace {

constexpr double kTol = 1e-10;

void ensureFonts()
{
    static int argc = 1;
    static char name[] = "test_view";
    static char* argv[] = {name, nullptr};
    if (!QCoreApplication::instance())
        static QGuiApplication app(argc, argv);
}

std::vector<KxDbFileGroup> groups(std::initializer_list<std::pair<std::int16_t, std::string>> list)
{
    std::vector<KxDbFileGroup> result;
    for (const auto& [code, value] : list)
        result.push_back({code, 0, value});
    return result;
}

KxDbObjectId addRecord(KxDbDatabase& db, const char* kind, std::vector<KxDbFileGroup> values,
                       KxDbObjectId into = {})
{
    auto* record = new KxDbUnmodelledEntity(kind, std::move(values));
    record->setDatabaseDefaults(&db);
    KxDbObjectId id;
    if (into.isNull()) {
        db.addToCurrentSpace(record, id);
    } else {
        KxDbObjectPtr<KxDbBlockTableRecord> block(into, KxDb::kForWrite);
        block->appendKxDbEntity(id, record);
    }
    record->close();
    return id;
}

KxDbObjectId addBlock(KxDbDatabase& db, const wchar_t* name)
{
    auto* block = new KxDbBlockTableRecord;
    block->setName(name);
    KxDbBlockTable* table = nullptr;
    db.getBlockTable(table, KxDb::kForWrite);
    KxDbObjectId id;
    table->add(block, id);
    table->close();
    block->close();
    return id;
}

}  // namespace

TEST(RecordRender, BlocksSolidsEllipsesAndTexts)
{
    ensureFonts();
    ViewDrawing d;
    // DOOR: a line from the origin to (1, 0) and the block LEAF inserted
    // at (0, 1); LEAF: a line from the origin to (0, 2).
    const KxDbObjectId leaf = addBlock(d.db, L"LEAF");
    {
        KxDbObjectPtr<KxDbBlockTableRecord> block(leaf, KxDb::kForWrite);
        auto* line = new KxDbLine({0, 0, 0}, {0, 2, 0});
        line->setDatabaseDefaults(&d.db);
        block->appendKxDbEntity(line);
        line->close();
    }
    const KxDbObjectId door = addBlock(d.db, L"DOOR");
    {
        KxDbObjectPtr<KxDbBlockTableRecord> block(door, KxDb::kForWrite);
        auto* line = new KxDbLine({0, 0, 0}, {1, 0, 0});
        line->setDatabaseDefaults(&d.db);
        block->appendKxDbEntity(line);
        line->close();
    }
    addRecord(d.db, "INSERT", groups({{2, "LEAF"}, {10, "0"}, {20, "1"}}), door);
    // DOOR at (10, 20), scaled 2 by 3, turned a quarter.
    addRecord(d.db, "INSERT", groups({{2, "DOOR"}, {10, "10"}, {20, "20"}, {41, "2"}, {42, "3"}, {50, "90"}}));
    addRecord(d.db, "SOLID", groups({{10, "0"}, {20, "0"}, {11, "4"}, {21, "0"}, {12, "0"}, {22, "4"},
                                     {13, "4"}, {23, "4"}}));
    addRecord(d.db, "ELLIPSE", groups({{10, "50"}, {20, "0"}, {11, "3"}, {21, "0"}, {40, "0.5"}}));
    addRecord(d.db, "HATCH", groups({{2, "ANSI31"}, {70, "0"}, {91, "0"}}));
    // A solid hatch: a triangle by its polyline path, and a half disc of
    // radius 1 at (30, 0) by a line edge and an arc edge.
    addRecord(d.db, "HATCH", groups({{10, "0"}, {20, "0"}, {2, "SOLID"}, {70, "1"}, {91, "2"}, {92, "2"}, {72, "0"},
                                     {73, "1"}, {93, "3"}, {10, "20"}, {20, "0"}, {10, "24"}, {20, "0"}, {10, "20"},
                                     {20, "3"}, {92, "1"}, {93, "2"}, {72, "1"}, {10, "29"}, {20, "0"}, {11, "31"},
                                     {21, "0"}, {72, "2"}, {10, "30"}, {20, "0"}, {40, "1"}, {50, "0"}, {51, "180"},
                                     {73, "1"}, {97, "0"}}));
    addRecord(d.db, "POINT", groups({{10, "-7"}, {20, "8"}}));
    // A quadratic spline over (60, 0), (61, 2), (62, 0), weighted 1.
    addRecord(d.db, "SPLINE", groups({{71, "2"}, {40, "0"}, {40, "0"}, {40, "0"}, {40, "1"}, {40, "1"}, {40, "1"},
                                      {10, "60"}, {20, "0"}, {10, "61"}, {20, "2"}, {10, "62"}, {20, "0"}}));
    RenderNotes notes;
    const Scene scene = renderDrawing(d.db, &notes);
    EXPECT_EQ(notes.undrawnKinds, (std::set<std::string>{"HATCH"}));

    // The door's line runs up from (10, 20) for 2; the leaf, placed at
    // (0, 3) of the scaled block and 6 long, runs left of it.
    ASSERT_GE(scene.polylines().size(), 3u);
    const auto segment = [&](std::size_t i, std::uint32_t p) { return scene.points()[scene.polylines()[i].first + p]; };
    EXPECT_NEAR(segment(0, 0).x, 10, kTol);
    EXPECT_NEAR(segment(0, 0).y, 20, kTol);
    EXPECT_NEAR(segment(0, 1).x, 10, kTol);
    EXPECT_NEAR(segment(0, 1).y, 22, kTol);
    EXPECT_NEAR(segment(1, 0).x, 7, kTol);
    EXPECT_NEAR(segment(1, 0).y, 20, kTol);
    EXPECT_NEAR(segment(1, 1).x, 1, kTol);
    EXPECT_NEAR(segment(1, 1).y, 20, kTol);
    // The solid's corners go round: 1, 2, 4, 3.
    ASSERT_EQ(scene.polygons().size(), 3u);
    EXPECT_NEAR(scene.points()[scene.polygons()[0].first + 2].x, 4, kTol);
    EXPECT_NEAR(scene.points()[scene.polygons()[0].first + 2].y, 4, kTol);
    const Polygon& triangle = scene.polygons()[1];
    ASSERT_EQ(triangle.count, 3u);
    EXPECT_NEAR(scene.points()[triangle.first + 1].x, 24, kTol);
    EXPECT_NEAR(scene.points()[triangle.first + 2].y, 3, kTol);
    Bounds halfDisc;
    for (std::uint32_t p = 0; p < scene.polygons()[2].count; ++p)
        halfDisc.add(scene.points()[scene.polygons()[2].first + p]);
    EXPECT_NEAR(halfDisc.minX, 29, kTol);
    EXPECT_NEAR(halfDisc.maxX, 31, kTol);
    EXPECT_NEAR(halfDisc.minY, 0, kTol);
    EXPECT_NEAR(halfDisc.maxY, 1, kTol);
    // The ellipse spans 3 and 1.5 about its centre; the point is a dot;
    // the spline runs from its first control point to its last through
    // (61, 1) halfway.
    ASSERT_EQ(scene.polylines().size(), 5u);
    const Polyline& spline = scene.polylines()[4];
    ASSERT_EQ(spline.count % 2, 1u);
    EXPECT_NEAR(scene.points()[spline.first].x, 60, kTol);
    EXPECT_NEAR(scene.points()[spline.first + spline.count / 2].x, 61, kTol);
    EXPECT_NEAR(scene.points()[spline.first + spline.count / 2].y, 1, kTol);
    EXPECT_NEAR(scene.points()[spline.first + spline.count - 1].x, 62, kTol);
    EXPECT_NEAR(segment(3, 0).x, -7, kTol);
    EXPECT_NEAR(segment(3, 1).y, 8, kTol);
    Bounds ellipse;
    for (std::uint32_t p = 0; p < scene.polylines()[2].count; ++p)
        ellipse.add(scene.points()[scene.polylines()[2].first + p]);
    EXPECT_NEAR(ellipse.minX, 47, kTol);
    EXPECT_NEAR(ellipse.maxX, 53, kTol);
    EXPECT_NEAR(ellipse.maxY, 1.5, kTol);

    // A text 2 high, centred (72 = 1) on (100, 0): its capitals stand on
    // the baseline, about 2 high, on both sides of the point.
    ViewDrawing texts;
    addRecord(texts.db, "TEXT", groups({{10, "0"}, {20, "0"}, {11, "100"}, {21, "0"}, {40, "2"}, {1, "HELLO"},
                                        {72, "1"}}));
    const Bounds text = renderDrawing(texts.db).bounds();
    EXPECT_NEAR(text.minY, 0, 0.1);
    EXPECT_NEAR(text.maxY, 2, 0.1);
    EXPECT_NEAR((text.minX + text.maxX) / 2, 100, 0.3);
    // MTEXT attached top left (71 = 1) hangs below its point, one line for
    // each paragraph.
    ViewDrawing paragraphs;
    addRecord(paragraphs.db, "MTEXT", groups({{10, "0"}, {20, "0"}, {40, "1"}, {71, "1"},
                                              {1, "{\\fArial;FIRST}\\PSECOND"}}));
    const Bounds mtext = renderDrawing(paragraphs.db).bounds();
    EXPECT_NEAR(mtext.maxY, 0, 0.1);
    EXPECT_NEAR(mtext.minY, -(1 + 5.0 / 3.0), 0.35);
    EXPECT_GT(mtext.minX, -0.2);
}
