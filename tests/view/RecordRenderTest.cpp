// Records kept as read that the renderer draws: a block inserted scaled and
// rotated (with a block inside it), a solid, solid hatches, pattern
// hatches by their line families, an ellipse, a point, a spline, texts
// placed by their justification, their letters outlined once per scene
// where Qt lays them out; what it cannot draw is named.
#include "PlacedScene.h"
#include "ViewDrawing.h"

#include "kxdbunmodelled.h"

#include <QFont>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPainterPath>

#include <cmath>
#include <numbers>
#include <span>
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
    addRecord(d.db, "3DSOLID", groups({{70, "1"}}));
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
    const Scene scene = placedScene(renderDrawing(d.db, &notes));
    EXPECT_EQ(notes.undrawnKinds, (std::set<std::string>{"3DSOLID"}));

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

TEST(RecordRender, PatternHatchesDrawTheirLineFamiliesWithinTheirBoundaries)
{
    ViewDrawing d;
    // A square from (100, 0) to (104, 4) with a hole from (101, 1) to
    // (103, 3), hatched by horizontal lines 1 apart through (0, 0.5),
    // dashed 0.5 on and 0.5 off from each line's point at x = 0.
    const auto square = [](double low, double high) {
        const std::string a = std::to_string(low), b = std::to_string(high);
        const std::string x0 = std::to_string(100 + low), x1 = std::to_string(100 + high);
        return std::vector<std::pair<std::int16_t, std::string>>{{92, "2"}, {72, "0"}, {73, "1"}, {93, "4"},
                                                                 {10, x0}, {20, a}, {10, x1}, {20, a},
                                                                 {10, x1}, {20, b}, {10, x0}, {20, b}, {97, "0"}};
    };
    std::vector<KxDbFileGroup> hatch = groups({{10, "0"}, {20, "0"}, {2, "DASHES"}, {70, "0"}, {91, "2"}});
    for (const auto& loop : {square(0, 4), square(1, 3)})
        for (const auto& [code, value] : loop)
            hatch.push_back({code, 0, value});
    for (const KxDbFileGroup& g : groups({{75, "0"}, {76, "1"}, {52, "0"}, {41, "1"}, {77, "0"}, {78, "1"},
                                           {53, "0"}, {43, "0"}, {44, "0.5"}, {45, "0"}, {46, "1"}, {79, "2"},
                                           {49, "0.5"}, {49, "-0.5"}, {98, "0"}}))
        hatch.push_back(g);
    addRecord(d.db, "HATCH", hatch);
    // A pattern whose record lists no lines is drawn solid.
    addRecord(d.db, "HATCH", groups({{2, "UNKNOWN"}, {70, "0"}, {91, "1"}, {92, "2"}, {93, "3"}, {10, "0"},
                                     {20, "0"}, {10, "2"}, {20, "0"}, {10, "0"}, {20, "2"}, {78, "0"}}));
    RenderNotes notes;
    const Scene scene = renderDrawing(d.db, &notes);
    EXPECT_TRUE(notes.undrawnKinds.empty());
    ASSERT_EQ(scene.polygons().size(), 1u);
    EXPECT_EQ(scene.polygons()[0].count, 3u);
    // Rows 0.5 and 3.5 cross the whole square: dashes from 100, 101, 102
    // and 103; rows 1.5 and 2.5 stop at the hole: dashes from 100 and 103.
    std::multiset<std::pair<long, long>> dashes;  // (y, x) of each start, in tenths
    for (const Polyline& line : scene.polylines()) {
        ASSERT_EQ(line.count, 2u);
        const Point2& from = scene.points()[line.first];
        const Point2& to = scene.points()[line.first + 1];
        EXPECT_NEAR(to.x - from.x, 0.5, kTol);
        EXPECT_NEAR(to.y, from.y, kTol);
        dashes.insert({std::lround(from.y * 10), std::lround(from.x * 10)});
    }
    std::multiset<std::pair<long, long>> expected;
    for (const long y : {5, 35})
        for (const long x : {1000, 1010, 1020, 1030})
            expected.insert({y, x});
    for (const long y : {15, 25})
        for (const long x : {1000, 1030})
            expected.insert({y, x});
    EXPECT_EQ(dashes, expected);
}

TEST(RecordRender, LettersAreOutlinedOncePerSceneWhereQtLaysThemOut)
{
    ensureFonts();
    // 300 texts of the same five letters, 2.5 high, turned by 30 degrees.
    ViewDrawing d;
    for (int i = 0; i < 300; ++i)
        addRecord(d.db, "TEXT", groups({{10, std::to_string(i * 20)}, {20, "5"}, {40, "2.5"}, {50, "30"},
                                        {1, "Tag 7"}}));
    const Scene scene = renderDrawing(d.db);
    // Each letter's outline once, each text one placing of them.
    EXPECT_EQ(scene.parts().size(), 5u);
    EXPECT_EQ(scene.instances().size(), 300u);
    EXPECT_TRUE(scene.polylines().empty());

    // The placed outlines of the first text are Qt's own outlines of the
    // whole line, scaled so that a capital is 2.5 high, turned and moved.
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setStyleHint(QFont::SansSerif);
    font.setPixelSize(200);
    const QFontMetricsF metrics(font);
    const double scale = 2.5 / (metrics.capHeight() > 0 ? metrics.capHeight() : metrics.ascent());
    const double c = std::cos(std::numbers::pi / 6), s = std::sin(std::numbers::pi / 6);
    QPainterPath line;
    line.addText(0, 0, font, QStringLiteral("Tag 7"));
    std::vector<std::vector<Point2>> expected;
    for (const QPolygonF& outline : line.toSubpathPolygons()) {
        std::vector<Point2>& points = expected.emplace_back();
        for (const QPointF& p : outline) {
            const double x = p.x() * scale, y = -p.y() * scale;
            points.push_back({x * c - y * s, 5 + x * s + y * c});
        }
        // A closed polyline does not repeat its first point.
        if (points.size() > 2 && std::hypot(points.back().x - points.front().x, points.back().y - points.front().y) < kTol)
            points.pop_back();
    }
    std::vector<std::vector<Point2>> placed;
    scene.visitPolylines(scene.instances()[0], [&](int, bool closed, std::span<const Point2> points) {
        EXPECT_TRUE(closed);
        placed.emplace_back(points.begin(), points.end());
    });
    ASSERT_EQ(placed.size(), expected.size());
    for (std::size_t o = 0; o < placed.size(); ++o) {
        ASSERT_EQ(placed[o].size(), expected[o].size()) << "outline " << o;
        for (std::size_t p = 0; p < placed[o].size(); ++p) {
            EXPECT_NEAR(placed[o][p].x, expected[o][p].x, kTol);
            EXPECT_NEAR(placed[o][p].y, expected[o][p].y, kTol);
        }
    }
}
