// A large drawing is drawn on two threads, half its entities each, and the
// halves joined: the scene is exactly the one a single thread draws, also
// where the second half alone would have decided otherwise (the point
// budget spent in the first half or in the second, blocks first drawn in
// the first half and placed again in the second, a block whose drawing
// asks the budget, blocks that reach each other, pens first used in the
// second half, an old-form polyline across the middle), and while the
// renderer is called between entities as the window's builder is.
#include "ViewDrawing.h"

#include "kxdbunmodelled.h"

#include <cstring>
#include <functional>
#include <limits>
#include <stdexcept>
#include <string>

using namespace kaldo::view;

namespace {

constexpr int kEntities = 20000;

void addLine(KxDbDatabase& db, double y, int colorIndex, KxDbObjectId into = {})
{
    auto* line = new KxDbLine({0, y, 0}, {10, y + 1, 0});
    line->setDatabaseDefaults(&db);
    line->setColorIndex(colorIndex);
    if (into.isNull()) {
        db.addToCurrentSpace(line);
    } else {
        KxDbObjectPtr<KxDbBlockTableRecord> block(into, KxDb::kForWrite);
        block->appendKxDbEntity(line);
    }
    line->close();
}

void addInsert(KxDbDatabase& db, const char* block, int at, KxDbObjectId into = {})
{
    addRecord(db, "INSERT", groups({{2, block}, {10, std::to_string(at)}, {20, "3"}, {50, "30"}}), into);
}

void addText(KxDbDatabase& db, int at, KxDbObjectId into = {})
{
    addRecord(db, "TEXT", groups({{10, std::to_string(at)}, {20, "0"}, {40, "2.5"}, {1, "Room " + std::to_string(at)}}),
              into);
}

// kEntities entities of model space: lines in a few colours, texts, and
// references to SHARED in turn; LATE, in a colour of its own, only in the
// second half; an old-form polyline across the middle. asking adds,
// early and late, references to WORDS (a block holding a text) and to
// RING and LOOP, each holding the other: the first half meets LOOP inside
// RING, the second LOOP first.
void fillDrawing(KxDbDatabase& db, bool asking)
{
    addLine(db, 0, 1, addBlock(db, L"SHARED"));
    addLine(db, 0, 200, addBlock(db, L"LATE"));
    const KxDbObjectId words = addBlock(db, L"WORDS");
    addText(db, 0, words);
    const KxDbObjectId ring = addBlock(db, L"RING");
    const KxDbObjectId loop = addBlock(db, L"LOOP");
    addInsert(db, "LOOP", 0, ring);
    addLine(db, 5, 3, ring);
    addInsert(db, "RING", 0, loop);
    addLine(db, 7, 4, loop);
    for (int i = 0; i < kEntities; ++i) {
        const bool second = i > kEntities / 2;
        if (i == kEntities / 2 - 2) {
            addRecord(db, "POLYLINE", groups({{66, "1"}, {70, "1"}}));
            for (int v = 0; v < 4; ++v)
                addRecord(db, "VERTEX", groups({{10, std::to_string(v)}, {20, std::to_string(v * v)}}));
            addRecord(db, "SEQEND", {});
            i += 5;
        } else if (asking && (i == 10 || i == kEntities - 10)) {
            addInsert(db, "WORDS", i);
            addInsert(db, i == 10 ? "RING" : "LOOP", i);
        } else if (i % 4 == 0) {
            addInsert(db, second && i % 40 == 0 ? "LATE" : "SHARED", i);
        } else if (i % 4 == 1) {
            addText(db, i);
        } else {
            addLine(db, i, second && i % 7 == 0 ? 150 : 1 + i % 5);
        }
    }
}

// The scene one thread draws: renderDrawingInPieces in one piece.
Scene oneThread(const KxDbDatabase& db, RenderNotes& notes, std::size_t points)
{
    Scene drawn;
    renderDrawingInPieces(
        db, std::numeric_limits<std::size_t>::max(), [&](const Scene& scene) { drawn = scene; }, &notes, points);
    return drawn;
}

template <class Item, class Same>
void expectSameItems(const char* what, const std::vector<Item>& got, const std::vector<Item>& want, Same same)
{
    ASSERT_EQ(got.size(), want.size()) << what;
    for (std::size_t i = 0; i < got.size(); ++i)
        ASSERT_TRUE(same(got[i], want[i])) << what << " " << i;
}

bool samePoint(const Point2& a, const Point2& b)
{
    return a.x == b.x && a.y == b.y;
}

bool samePolyline(const Polyline& a, const Polyline& b)
{
    return a.first == b.first && a.count == b.count && a.pen == b.pen && a.closed == b.closed;
}

bool samePolygon(const Polygon& a, const Polygon& b)
{
    return a.first == b.first && a.count == b.count && a.color == b.color && a.instanceColor == b.instanceColor;
}

bool sameBounds(const Bounds& a, const Bounds& b)
{
    return a.empty == b.empty && a.minX == b.minX && a.minY == b.minY && a.maxX == b.maxX && a.maxY == b.maxY;
}

// Everything the scene holds, item by item and number by number.
void expectSameScene(const Scene& got, const Scene& want)
{
    expectSameItems("points", got.points(), want.points(), samePoint);
    expectSameItems("polylines", got.polylines(), want.polylines(), samePolyline);
    expectSameItems("pens", got.pens(), want.pens(), std::equal_to<Pen>());
    expectSameItems("patterns", got.patterns(), want.patterns(), std::equal_to<LinePattern>());
    expectSameItems("polygons", got.polygons(), want.polygons(), samePolygon);
    expectSameItems("arcs", got.arcs(), want.arcs(), [](const Arc& a, const Arc& b) {
        return samePoint(a.centre, b.centre) && a.radius == b.radius && a.start == b.start && a.sweep == b.sweep
            && a.pen == b.pen;
    });
    expectSameItems("instances", got.instances(), want.instances(), [](const Instance& a, const Instance& b) {
        return std::memcmp(&a.place, &b.place, sizeof a.place) == 0 && a.box.minX == b.box.minX
            && a.box.minY == b.box.minY && a.box.maxX == b.box.maxX && a.box.maxY == b.box.maxY && a.shape == b.shape && a.pen == b.pen
            && a.polylinesBefore == b.polylinesBefore && a.polygonsBefore == b.polygonsBefore;
    });
    expectSameItems("shapes", got.shapes(), want.shapes(), [](const Shape& a, const Shape& b) {
        return a.firstRun == b.firstRun && a.endRun == b.endRun && a.firstPen == b.firstPen && a.endPen == b.endPen
            && sameBounds(a.box, b.box) && a.text == b.text && a.fills == b.fills && a.line == b.line;
    });
    expectSameItems("shape pens", got.shapePens(), want.shapePens(), std::equal_to<int>());
    expectSameItems("runs", got.runs(), want.runs(),
                    [](const ShapeRun& a, const ShapeRun& b) { return a.part == b.part && a.shift == b.shift; });
    expectSameItems("parts", got.parts(), want.parts(), [](const Part& a, const Part& b) {
        return a.firstPolyline == b.firstPolyline && a.endPolyline == b.endPolyline
            && a.firstPolygon == b.firstPolygon && a.endPolygon == b.endPolygon && a.firstHull == b.firstHull
            && a.endHull == b.endHull;
    });
    expectSameItems("part points", got.partPoints(), want.partPoints(), samePoint);
    expectSameItems("part polylines", got.partPolylines(), want.partPolylines(), samePolyline);
    expectSameItems("part polygons", got.partPolygons(), want.partPolygons(), samePolygon);
    // Lines of text by their letters, laid out (every tenth: layout is slow).
    for (std::size_t s = 0; s < got.shapes().size(); s += 10) {
        if (got.shapes()[s].line == kNoLine)
            continue;
        const auto gotLetters = got.letters(got.shapes()[s]);
        const auto wantLetters = want.letters(want.shapes()[s]);
        ASSERT_EQ(gotLetters.size(), wantLetters.size()) << "letters of shape " << s;
        for (std::size_t l = 0; l < gotLetters.size(); ++l) {
            EXPECT_EQ(gotLetters[l].shift, wantLetters[l].shift);
            EXPECT_EQ(gotLetters[l].glyph->points.size(), wantLetters[l].glyph->points.size());
        }
    }
}

}  // namespace

TEST(TwoThreadRender, HalvesJoinIntoTheSceneOneThreadDraws)
{
    ensureFonts();
    for (const bool asking : {false, true}) {
        ViewDrawing d;
        fillDrawing(d.db, asking);
        // The whole budget lasts (each half's texts take about 1.5 million
        // points); a small one is spent early in the first half; a
        // middling one in the second.
        for (const std::size_t points : {PointBudget::kPicture, std::size_t(100000), std::size_t(2500000)}) {
            SCOPED_TRACE("asking " + std::to_string(asking) + ", budget " + std::to_string(points));
            RenderNotes wantNotes;
            const Scene want = oneThread(d.db, wantNotes, points);
            RenderNotes notes;
            const Scene got = renderDrawing(d.db, &notes, points);
            expectSameScene(got, want);
            EXPECT_EQ(notes.coarse, wantNotes.coarse);
            EXPECT_EQ(notes.undrawnKinds, wantNotes.undrawnKinds);
            EXPECT_EQ(notes.selfReachingBlocks, wantNotes.selfReachingBlocks);
            EXPECT_EQ(notes.coarse, points != PointBudget::kPicture);
        }
        // Called between entities, as the window's builder calls it: at
        // least once for every kEntitiesBetween entities, never while a
        // half reads.
        std::size_t calls = 0;
        RenderNotes wantNotes, notes;
        const Scene want = oneThread(d.db, wantNotes, 100000);
        const Scene got = renderDrawing(d.db, &notes, 100000, {}, false, [&] { ++calls; });
        expectSameScene(got, want);
        EXPECT_GE(calls, std::size_t(kEntities) / kEntitiesBetween - 1);
    }
}

TEST(TwoThreadRender, WhatStopsTheDrawingBetweenEntitiesReachesTheCaller)
{
    ViewDrawing d;
    fillDrawing(d.db, false);
    std::size_t calls = 0;
    EXPECT_THROW(renderDrawing(d.db, nullptr, PointBudget::kPicture, {}, false,
                               [&] {
                                   if (++calls == 3)
                                       throw std::runtime_error("stopped");
                               }),
                 std::runtime_error);
    EXPECT_EQ(calls, 3u);
    // Nothing stays open: the drawing can be changed at once.
    KxDbObjectPtr<KxDbBlockTableRecord> space(d.db.modelSpaceId(), KxDb::kForWrite);
    EXPECT_TRUE(space);
}
