// Records kept as read that the renderer draws: a block inserted scaled and
// rotated (with a block inside it), a solid, solid hatches, pattern
// hatches by their line families, an ellipse, a point, a spline, texts
// placed by their justification, leant and fitted, their letters filled
// once per scene where Qt lays them out in their style's font (boxes
// beyond the picture's budget of points);
// attributes with their reference, definitions only outside blocks,
// dimensions at their insertion point, polyface meshes by their visible
// edges; what it cannot draw is named.
#include "PlacedScene.h"
#include "ViewDrawing.h"

#include "kaldo/view/PngExport.h"
#include "kaldo/view/SvgExport.h"
#include "kxdbunmodelled.h"

#include <QFont>
#include <QFontMetricsF>
#include <QPainterPath>

#include <cmath>
#include <numbers>
#include <span>
#include <set>
#include <string>

using namespace kaldo::view;

namespace {

constexpr double kTol = 1e-10;

// A block of one line.
KxDbObjectId addBlockOfLine(KxDbDatabase& db, const wchar_t* name, const KxGePoint3d& from, const KxGePoint3d& to)
{
    const KxDbObjectId id = addBlock(db, name);
    auto* line = new KxDbLine(from, to);
    line->setDatabaseDefaults(&db);
    KxDbObjectPtr<KxDbBlockTableRecord> block(id, KxDb::kForWrite);
    block->appendKxDbEntity(line);
    line->close();
    return id;
}

// The glyph outlines that the scene's texts place, laid out now.
std::set<const GlyphOutlines*> glyphsOf(const Scene& scene)
{
    std::set<const GlyphOutlines*> glyphs;
    for (const Instance& instance : scene.instances())
        for (const LaidOutLetter& letter : scene.letters(scene.shapes()[instance.shape]))
            glyphs.insert(letter.glyph);
    return glyphs;
}

}  // namespace

TEST(RecordRender, BlocksSolidsEllipsesAndTexts)
{
    ensureFonts();
    ViewDrawing d;
    // DOOR: a line from the origin to (1, 0) and the block LEAF inserted
    // at (0, 1); LEAF: a line from the origin to (0, 2).
    addBlockOfLine(d.db, L"LEAF", {0, 0, 0}, {0, 2, 0});
    const KxDbObjectId door = addBlockOfLine(d.db, L"DOOR", {0, 0, 0}, {1, 0, 0});
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
    const Bounds halfDisc =
        pointBounds(std::span(scene.points()).subspan(scene.polygons()[2].first, scene.polygons()[2].count));
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
    const Bounds ellipse =
        pointBounds(std::span(scene.points()).subspan(scene.polylines()[2].first, scene.polylines()[2].count));
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

TEST(RecordRender, LettersAreFilledOncePerSceneWhereQtLaysThemOut)
{
    ensureFonts();
    // 300 texts of the same five letters, 2.5 high, turned by 30 degrees,
    // in red.
    ViewDrawing d;
    for (int i = 0; i < 300; ++i) {
        const KxDbObjectId text = addRecord(
            d.db, "TEXT", groups({{10, std::to_string(i * 20)}, {20, "5"}, {40, "2.5"}, {50, "30"}, {1, "Tag 7"}}));
        KxDbObjectPtr<KxDbEntity>(text, KxDb::kForWrite)->setColorIndex(1);
    }
    // Leaning by 20 degrees, and fitted (72 = 5) between (0, -20) and
    // (30, -20).
    addRecord(d.db, "TEXT", groups({{10, "0"}, {20, "-10"}, {40, "2.5"}, {51, "20"}, {1, "Tag 7"}}));
    addRecord(d.db, "TEXT", groups({{10, "0"}, {20, "-20"}, {11, "30"}, {21, "-20"}, {40, "2.5"}, {72, "5"},
                                    {1, "Tag 7"}}));
    const Scene scene = renderDrawing(d.db);
    // Each letter's outline once, each text one placing of them, its
    // outlines filled in the text's colour and no lines.
    EXPECT_EQ(glyphsOf(scene).size(), 5u);
    EXPECT_EQ(scene.instances().size(), 302u);
    EXPECT_TRUE(scene.polylines().empty());
    scene.visitPolylines([](int, bool, std::span<const Point2>) { ADD_FAILURE() << "a letter drawn as lines"; });

    // The placed outlines of a text are Qt's own outlines of the whole
    // line, scaled so that a capital is 2.5 high, leant, turned and moved.
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setStyleHint(QFont::SansSerif);
    font.setPixelSize(200);
    const QFontMetricsF metrics(font);
    const double scale = 2.5 / (metrics.capHeight() > 0 ? metrics.capHeight() : metrics.ascent());
    QPainterPath line;
    line.addText(0, 0, font, QStringLiteral("Tag 7"));
    const auto expectPlaced = [&](const Instance& instance, double along, double lean, double angle, Point2 at) {
        const double c = std::cos(angle), s = std::sin(angle);
        std::vector<std::vector<Point2>> expected;
        for (const QPolygonF& outline : line.toSubpathPolygons()) {
            std::vector<Point2>& points = expected.emplace_back();
            for (const QPointF& p : outline) {
                const double y = -p.y() * scale, x = p.x() * along + y * lean;
                points.push_back({at.x + x * c - y * s, at.y + x * s + y * c});
            }
            // A fill does not repeat its first point.
            if (points.size() > 2
                && std::hypot(points.back().x - points.front().x, points.back().y - points.front().y) < kTol)
                points.pop_back();
        }
        std::vector<std::vector<Point2>> placed;
        scene.visitPolygons(instance, [&](const DrawColor& color, std::span<const Point2> points) {
            EXPECT_EQ(color, scene.pens()[std::size_t(instance.pen)].color);
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
    };
    EXPECT_EQ(scene.pens()[std::size_t(scene.instances()[0].pen)].color, DrawColor::fixed(0xFF0000));
    expectPlaced(scene.instances()[0], scale, 0, std::numbers::pi / 6, {0, 5});
    expectPlaced(scene.instances()[300], scale, std::tan(20 * std::numbers::pi / 180), 0, {0, -10});
    expectPlaced(scene.instances()[301], 30 / metrics.horizontalAdvance(QStringLiteral("Tag 7")), 0, 0, {0, -20});

    // The letters take their points from the picture's budget: beyond it
    // a line is its box, from the descent to the height of a capital,
    // around where its letters would be, and the picture says it drew
    // coarsely.
    RenderNotes notes;
    const Scene budgeted = renderDrawing(d.db, &notes, 20000);
    const std::size_t outlined = budgeted.instances().size();
    EXPECT_GT(outlined, 10u);
    EXPECT_LT(outlined, 290u);
    EXPECT_TRUE(notes.coarse);
    ASSERT_EQ(budgeted.polylines().size(), 302 - outlined);
    for (std::size_t i = 0; i < budgeted.polylines().size(); ++i) {
        const Polyline& box = budgeted.polylines()[i];
        EXPECT_TRUE(box.closed);
        ASSERT_EQ(box.count, 4u);
        const Bounds corners = pointBounds(std::span(budgeted.points()).subspan(box.first, box.count));
        const auto& letters = scene.instances()[outlined + i].box;
        // (Within a fiftieth of the height: letters may reach a little
        // beyond their advance.)
        EXPECT_LT(corners.minX, letters.minX + 0.05);
        EXPECT_LT(corners.minY, letters.minY + 0.05);
        EXPECT_GT(corners.maxX, letters.maxX - 0.05);
        EXPECT_GT(corners.maxY, letters.maxY - 0.05);
        EXPECT_LT(corners.maxY - corners.minY, letters.maxY - letters.minY + 2.5);
    }
}

TEST(RecordRender, PicturesFillLettersAndLeaveTheirHolesOpen)
{
    ensureFonts();
    // An I and an O, capitals 100 high, side by side.
    ViewDrawing d;
    addRecord(d.db, "TEXT", groups({{10, "0"}, {20, "0"}, {40, "100"}, {1, "I"}}));
    addRecord(d.db, "TEXT", groups({{10, "100"}, {20, "0"}, {40, "100"}, {1, "O"}}));
    const Scene scene = renderDrawing(d.db);
    ASSERT_EQ(scene.instances().size(), 2u);
    const PictureOptions options{400, Background::White};
    const QImage image = paintScene(scene, options);
    const PictureFrame frame(scene.bounds(), options.size);
    const auto pixelAtMiddle = [&](const Instance& instance) {
        const kaldo::Box& b = instance.box;
        return image.pixel(int(frame.x((b.minX + b.maxX) / 2)), int(frame.y((b.minY + b.maxY) / 2)));
    };
    // The middle of the I is its stem, inked; the middle of the O its hole.
    EXPECT_EQ(pixelAtMiddle(scene.instances()[0]), qRgb(0, 0, 0));
    EXPECT_EQ(pixelAtMiddle(scene.instances()[1]), qRgb(255, 255, 255));
    // The SVG fills the letters: one path of the text's colour.
    const std::string svg = svgDocument(scene, options);
    EXPECT_NE(svg.find("<path fill-rule=\"nonzero\" stroke=\"none\" fill=\"#000000\""), std::string::npos);
}

TEST(RecordRender, AttributesDimensionsAndPolyfaceMeshes)
{
    ensureFonts();
    ViewDrawing d;
    // TAG: a line from the origin to (1, 0) and the definition of the
    // attribute NAME at (2, 0), which shows in no reference.
    const KxDbObjectId tag = addBlockOfLine(d.db, L"TAG", {0, 0, 0}, {1, 0, 0});
    addRecord(d.db, "ATTDEF", groups({{10, "2"}, {20, "0"}, {40, "1"}, {1, "?"}, {3, "Name?"}, {2, "NAME"}}), tag);
    addRecord(d.db, "INSERT", groups({{66, "1"}, {2, "TAG"}, {10, "10"}, {20, "0"}}));
    // Its attribute, and one hidden (flag 1), follow the reference.
    addRecord(d.db, "ATTRIB", groups({{10, "12"}, {20, "0"}, {40, "1"}, {1, "A1"}, {2, "NAME"}}));
    addRecord(d.db, "ATTRIB", groups({{10, "12"}, {20, "-5"}, {40, "1"}, {1, "B2"}, {2, "HIDDEN"}, {70, "1"}}));
    addRecord(d.db, "SEQEND", {});
    // A definition in the drawing's own space shows its tag, its top
    // (74 = 3) on its point.
    addRecord(d.db, "ATTDEF", groups({{10, "0"}, {20, "20"}, {11, "0"}, {21, "20"}, {40, "1"}, {1, "?"}, {3, "Top?"},
                                      {2, "TOP"}, {74, "3"}}));
    // A dimension's block moved up by 3 by its insertion point.
    addBlockOfLine(d.db, L"*D0", {30, 0, 0}, {35, 0, 0});
    addRecord(d.db, "DIMENSION", groups({{2, "*D0"}, {10, "30"}, {20, "0"}, {12, "0"}, {22, "3"}}));
    // A polyface mesh of one triangle whose edge from its third corner is
    // invisible.
    addRecord(d.db, "POLYLINE", groups({{66, "1"}, {70, "64"}, {71, "3"}, {72, "1"}}));
    for (const auto& [x, y] : {std::pair{"40", "0"}, std::pair{"44", "0"}, std::pair{"44", "4"}})
        addRecord(d.db, "VERTEX", groups({{10, x}, {20, y}, {70, "192"}}));
    addRecord(d.db, "VERTEX", groups({{10, "0"}, {20, "0"}, {70, "128"}, {71, "1"}, {72, "2"}, {73, "-3"}}));
    addRecord(d.db, "SEQEND", {});
    RenderNotes notes;
    const Scene drawn = renderDrawing(d.db, &notes);
    EXPECT_TRUE(notes.undrawnKinds.empty());

    // The reference of TAG spans its line only; the attribute A1 and the
    // tag TOP are the texts.
    std::vector<kaldo::Box> texts;
    for (const Instance& instance : drawn.instances()) {
        if (drawn.shapes()[instance.shape].text) {
            texts.push_back(instance.box);
        } else if (instance.box.minX < 20) {
            EXPECT_NEAR(instance.box.maxX, 11, kTol);
        }
    }
    ASSERT_EQ(texts.size(), 2u);
    EXPECT_NEAR(texts[0].minX, 12, 0.3);
    EXPECT_NEAR(texts[0].minY, 0, 0.1);
    EXPECT_NEAR(texts[1].maxY, 20, 0.1);
    EXPECT_NEAR(texts[1].minX, 0, 0.3);

    const Scene scene = placedScene(drawn);
    std::vector<std::pair<Point2, Point2>> lines;
    for (const Polyline& polyline : scene.polylines())
        lines.push_back({scene.points()[polyline.first], scene.points()[polyline.first + polyline.count - 1]});
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_NEAR(lines[1].first.x, 30, kTol);
    EXPECT_NEAR(lines[1].first.y, 3, kTol);
    EXPECT_NEAR(lines[1].second.x, 35, kTol);
    EXPECT_NEAR(lines[2].second.x, 44, kTol);
    EXPECT_NEAR(lines[3].first.x, 44, kTol);
    EXPECT_NEAR(lines[3].second.y, 4, kTol);
}

TEST(RecordRender, TextsAreSetInTheFontOfTheirStyle)
{
    ensureFonts();
    // The same word in the styles SERIF (a serif font file), MONO (a
    // monospaced one) and Standard (a shape font: Qt's sans-serif).
    ViewDrawing d;
    for (const char* style : {"Serif", "MONO", "Standard"})
        addRecord(d.db, "TEXT", groups({{10, "0"}, {20, "0"}, {40, "10"}, {7, style}, {1, "Milling"}}));
    const TextStyleFonts fonts = {{"SERIF", "times.ttf"}, {"MONO", "cour.ttf"}, {"STANDARD", "romans.shx"}};
    const Scene scene = renderDrawing(d.db, nullptr, PointBudget::kPicture, fonts);
    ASSERT_EQ(scene.instances().size(), 3u);
    // Each font's letters are parts of their own, and each sets the word
    // to its own width: the monospaced one gives its narrow letters room.
    const auto width = [&](std::size_t i) { return scene.instances()[i].box.maxX - scene.instances()[i].box.minX; };
    EXPECT_EQ(glyphsOf(scene).size(), 3 * 5u);
    EXPECT_GT(width(1), width(2) * 1.1);
    EXPECT_GT(std::abs(width(0) - width(2)), 0.1);
    EXPECT_EQ(fontForFile("LiberationSerif-Regular.ttf").family(), QStringLiteral("Liberation Serif"));
    EXPECT_EQ(fontForFile("times.ttf").styleHint(), QFont::Serif);
    EXPECT_EQ(fontForFile("txt.shx").family(), QStringLiteral("DejaVu Sans"));
}
