// Multilines stretched: vertices moved, the segments between moved vertices
// moved whole, segments that keep their direction keep their runs where they
// were drawn, a turned segment keeps them measured from its end that stayed,
// free ends keep their cap angle; corners land where the element lines'
// offset lines cross (worked out here), a stretch of a plain multiline
// matches MLINE drawn through the moved vertices, and a grip drag's copy
// stretched frame after frame ends as one stretch does.
#include "MlinePicture.h"
#include "MlineLists.h"
#include "TestMlines.h"
#include "kaldo/db/MlineRuns.h"
#include "kaldo/db/StretchPreview.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <numbers>

namespace {

constexpr double kPi = std::numbers::pi;
constexpr double kTol = 1e-10;

KxDbObjectId addStyle(KxDbDatabase& db, const wchar_t* name, double startAngle = kPi / 2, double endAngle = kPi / 2)
{
    return addTestStyle(db, name, {0.5, -0.5}, startAngle, endAngle, [](KxDbMlineStyle& style) {
        style.setStartSquareCap(true);
        style.setEndSquareCap(true);
    });
}

// A wall 2 wide about its axis: element 0 one to the left, element 1 one to
// the right.
std::unique_ptr<KxDbMline> wall(KxDbDatabase& db, KxDbObjectId style, std::initializer_list<KxGePoint3d> points)
{
    return makeMline(db, style, points, Mline::kZero, 2);
}

KxGeVector3d unit(const KxGePoint3d& from, const KxGePoint3d& to)
{
    return normalized(to - from);
}

KxGeVector3d left(const KxGeVector3d& d)
{
    return {-d.y, d.x, 0};
}

// Where the element at offset o (to the left) crosses the corner a-b-c:
// the crossing of the offset lines of a-b and b-c.
KxGePoint3d corner(const KxGePoint3d& a, const KxGePoint3d& b, const KxGePoint3d& c, double o)
{
    const KxGeVector3d d1 = unit(a, b), d2 = unit(b, c);
    const KxGePoint3d p = b + left(d1) * o;
    const KxGePoint3d q = b + left(d2) * o;
    // p + d1 t = q + d2 s
    const double det = d1.x * (-d2.y) - d1.y * (-d2.x);
    const double t = ((q.x - p.x) * (-d2.y) - (q.y - p.y) * (-d2.x)) / det;
    return p + d1 * t;
}

bool hasRun(const std::vector<PicturePiece>& picture, int element, const KxGePoint3d& from, const KxGePoint3d& to)
{
    return std::any_of(picture.begin(), picture.end(), [&](const PicturePiece& p) {
        return samePiece(p, {"run " + std::to_string(element), {from, to}}, kTol);
    });
}

std::string pictureText(const std::vector<PicturePiece>& picture)
{
    std::string text;
    for (const PicturePiece& p : picture)
        text += describePiece(p) + "\n";
    return text;
}

}  // namespace

TEST(MlineStretch, MovedSegmentsKeepTheirRunsTurnedOnesKeepThemFromTheEndThatStayed)
{
    KxDbDatabase db;
    const KxDbObjectId style = addStyle(db, L"WALL");
    // Up the right side, along the top to the left.
    const KxGePoint3d v0(0, 0), v1(10, 0), v2(10, 10), v3(0, 10);
    const auto original = wall(db, style, {v0, v1, v2, v3});
    setRuns(*original, 0, 1, {0, 3, 5});  // a door 3 to 5 along the bottom, right-hand element
    setRuns(*original, 1, 0, {0, 2, 4});  // a gap 2 to 4 up the right side, left-hand element
    setRuns(*original, 2, 1, {0, 3, 5});  // a gap 3 to 5 along the top, right-hand element

    // The top moved up by 5: the side keeps its direction and grows, the
    // top moves whole, the bottom stays.
    {
        KxDbMline m;
        m.copyFrom(original.get());
        ASSERT_EQ(m.moveStretchPointsAt(std::vector<int>{2, 3}, {0, 5, 0}), Kald::eOk);
        const auto picture = MlinePicture::of(m);
        EXPECT_TRUE(hasRun(picture, 1, {0, -1}, {3, -1})) << pictureText(picture);
        EXPECT_TRUE(hasRun(picture, 1, {5, -1}, {11, -1})) << pictureText(picture);
        EXPECT_TRUE(hasRun(picture, 0, {9, 1}, {9, 3})) << pictureText(picture);
        EXPECT_TRUE(hasRun(picture, 0, {9, 5}, {9, 14})) << pictureText(picture);
        EXPECT_TRUE(hasRun(picture, 1, {11, 16}, {8, 16})) << pictureText(picture);
        EXPECT_TRUE(hasRun(picture, 1, {6, 16}, {0, 16})) << pictureText(picture);
    }
    // The last vertex moved up by 6: the top turns and keeps its gap 3 to 5
    // from its corner, which moves to where the offset lines now cross; the
    // side keeps its gap and reaches the new corner.
    {
        KxDbMline m;
        m.copyFrom(original.get());
        const KxGePoint3d top(0, 16);
        ASSERT_EQ(m.moveStretchPointsAt(std::vector<int>{3}, {0, 6, 0}), Kald::eOk);
        const auto picture = MlinePicture::of(m);
        const KxGeVector3d along = unit(v2, top);
        const KxGePoint3d inner = corner(v1, v2, top, 1);   // element 0
        const KxGePoint3d outer = corner(v1, v2, top, -1);  // element 1
        EXPECT_TRUE(hasRun(picture, 0, {9, 5}, inner)) << pictureText(picture);
        EXPECT_TRUE(hasRun(picture, 1, {11, -1}, outer)) << pictureText(picture);
        EXPECT_TRUE(hasRun(picture, 1, outer, outer + along * 3)) << pictureText(picture);
        EXPECT_TRUE(hasRun(picture, 1, outer + along * 5, top + left(along) * -1)) << pictureText(picture);
        EXPECT_TRUE(hasRun(picture, 1, {0, -1}, {3, -1})) << pictureText(picture);
    }
    // The first vertex moved down by 4: the bottom turns about its end that
    // stayed and keeps the door 6 to 8 back from the corner.
    {
        KxDbMline m;
        m.copyFrom(original.get());
        const KxGePoint3d start(0, -4);
        ASSERT_EQ(m.moveStretchPointsAt(std::vector<int>{0}, {0, -4, 0}), Kald::eOk);
        const auto picture = MlinePicture::of(m);
        const KxGeVector3d along = unit(start, v1);
        const KxGePoint3d outer = corner(start, v1, v2, -1);
        EXPECT_TRUE(hasRun(picture, 1, start + left(along) * -1, outer - along * 8)) << pictureText(picture);
        EXPECT_TRUE(hasRun(picture, 1, outer - along * 6, outer)) << pictureText(picture);
    }
}

TEST(MlineStretch, TheWholeMultilineMovedIsAMoveAndAPlainOneMatchesMlineThroughTheNewVertices)
{
    KxDbDatabase db;
    const KxDbObjectId style = addStyle(db, L"WALL");
    const auto original = wall(db, style, {{0, 0}, {10, 0}, {14, 7}, {3, 12}});
    setRuns(*original, 1, 0, {1, 2.5});

    KxDbMline moved;
    moved.copyFrom(original.get());
    ASSERT_EQ(moved.moveStretchPointsAt(std::vector<int>{0, 1, 2, 3}, {-7, 2, 0}), Kald::eOk);
    EXPECT_TRUE(samePicture(mapped(MlinePicture::of(*original), [](const KxGePoint3d& p) { return p + KxGeVector3d(-7, 2, 0); }),
                            MlinePicture::of(moved)));

    // Each vertex of a plain multiline stretched alone, and two at once.
    const KxGeVector3d offset(3, -2, 0);
    for (const std::vector<int>& indices : std::vector<std::vector<int>>{{0}, {1}, {2}, {3}, {1, 2}}) {
        const auto plain = wall(db, style, {{0, 0}, {10, 0}, {14, 7}, {3, 12}});
        std::vector<KxGePoint3d> points;
        plain->getStretchPoints(points);
        for (const int i : indices)
            points[std::size_t(i)] = points[std::size_t(i)] + offset;
        ASSERT_EQ(plain->moveStretchPointsAt(indices, offset), Kald::eOk);
        const auto drawn = wall(db, style, {points[0], points[1], points[2], points[3]});
        for (int v = 0; v < 4; ++v) {
            EXPECT_LT(distance(plain->vertexAt(v), drawn->vertexAt(v)), kTol);
            EXPECT_LT((plain->axisAt(v) - drawn->axisAt(v)).length(), kTol) << "vertex " << v;
            EXPECT_LT((plain->miterAt(v) - drawn->miterAt(v)).length(), kTol) << "vertex " << v;
            for (std::size_t e = 0; e < 2; ++e) {
                EXPECT_THAT(plain->parametersAt(v).element(int(e)),
                            ::testing::Pointwise(::testing::DoubleNear(kTol), drawn->parametersAt(v).element(int(e))))
                    << "vertex " << v << " element " << e;
            }
        }
    }
}

TEST(MlineStretch, FreeEndsKeepTheirCapAngleAlsoOnAMirroredMultiline)
{
    KxDbDatabase db;
    const KxDbObjectId style = addStyle(db, L"SLANT", kPi / 3, 3 * kPi / 4);
    auto m = wall(db, style, {{0, 0}, {10, 0}, {16, 5}});
    ASSERT_EQ(m->transformBy(KxGeMatrix3d::mirroring({0, 0}, {1, 1, 0})), Kald::eOk);
    const auto capAngle = [&](int v) {
        const KxGeVector3d a = m->axisAt(v), c = m->miterAt(v);
        return std::atan2(a.x * c.y - a.y * c.x, a.x * c.x + a.y * c.y);
    };
    const double start = capAngle(0), end = capAngle(2);
    ASSERT_EQ(m->moveStretchPointsAt(std::vector<int>{0}, {2, 9, 0}), Kald::eOk);
    ASSERT_EQ(m->moveStretchPointsAt(std::vector<int>{2}, {-4, 3, 0}), Kald::eOk);
    EXPECT_NEAR(capAngle(0), start, kTol);
    EXPECT_NEAR(capAngle(2), end, kTol);
    // Mirrored, the cap angles run the other way round from the style's.
    EXPECT_NEAR(std::abs(start), kPi / 3, kTol);
    EXPECT_LT(start * std::sin(kPi / 3), 0);
}

TEST(MlineStretch, AGripDragStretchedFrameAfterFrameEndsAsOneStretchAndLeavesTheSource)
{
    KxDbDatabase db;
    const KxDbObjectId style = addStyle(db, L"WALL");
    auto source = wall(db, style, {{0, 0}, {10, 0}, {14, 7}, {3, 12}, {-2, 4}});
    setRuns(*source, 1, 1, {0, 1, 2});
    setRuns(*source, 2, 0, {0.5, 3, 4});
    const auto before = MlinePicture::of(*source);
    kaldo::StretchPreview preview(*source, {2});
    for (const KxGeVector3d offset : {KxGeVector3d(1, 1, 0), KxGeVector3d(-30, 4, 0), KxGeVector3d(0.5, -2, 0)})
        preview.at(offset);
    KxDbMline once;
    once.copyFrom(source.get());
    ASSERT_EQ(once.moveStretchPointsAt(std::vector<int>{2}, {0.5, -2, 0}), Kald::eOk);
    EXPECT_TRUE(samePicture(MlinePicture::of(once), MlinePicture::of(*KxDbMline::cast(&preview.at({0.5, -2, 0})))));
    EXPECT_TRUE(samePicture(before, MlinePicture::of(*source)));

    KxDbLine line({0, 0, 0}, {4, 0, 0});
    kaldo::StretchPreview end(line, {1});
    end.at({1, 1, 0});
    EXPECT_LT(distance(KxDbLine::cast(&end.at({0, 3, 0}))->endPoint(), {4, 3, 0}), kTol);
    EXPECT_LT(distance(KxDbLine::cast(&end.at({0, 3, 0}))->startPoint(), {0, 0, 0}), kTol);
}

TEST(MlineStretch, AGripDragShowsThePartTheStretchChanged)
{
    // What a window draws over the drawing: every piece the stretch changed
    // and only pieces of the stretched multiline, from five vertices round
    // the grip (round the start of a closed one; with the cap at a real end).
    KxDbDatabase db;
    const KxDbObjectId style = addStyle(db, L"WALL");
    const auto drawnIn = [](const PicturePiece& piece, const std::vector<PicturePiece>& picture) {
        return std::ranges::any_of(picture, [&](const PicturePiece& p) { return samePiece(piece, p, kTol); });
    };
    for (const bool closed : {false, true}) {
        for (const int grip : {0, 1, 4, 8}) {
            auto source = wall(db, style, {{0, 0}, {10, 0}, {20, 6}, {30, 0}, {40, 6}, {50, 0}, {60, 6}, {70, 0}, {80, 9}});
            source->setClosedMline(closed);
            setRuns(*source, 2, 0, {0.5, 3, 4});
            setRuns(*source, 5, 1, {1, 2});
            const KxGeVector3d offset(2, -3, 0);
            KxDbMline once;
            once.copyFrom(source.get());
            ASSERT_EQ(once.moveStretchPointsAt(std::vector<int>{grip}, offset), Kald::eOk);
            const auto before = MlinePicture::of(*source);
            const auto after = MlinePicture::of(once);
            kaldo::StretchPreview preview(*source, {grip});
            const auto* part = KxDbMline::cast(&preview.changedAt(offset));
            ASSERT_NE(part, nullptr);
            const std::string where = (closed ? "closed, grip " : "open, grip ") + std::to_string(grip);
            EXPECT_EQ(part->numVertices(), closed || (grip > 1 && grip < 7) ? 5 : 3 + std::min(grip, 8 - grip)) << where;
            const auto shown = MlinePicture::of(*part);
            for (const PicturePiece& piece : after)
                EXPECT_TRUE(drawnIn(piece, before) || drawnIn(piece, shown)) << where << ": " << describePiece(piece);
            for (const PicturePiece& piece : shown)
                EXPECT_TRUE(drawnIn(piece, after)) << where << ": " << describePiece(piece);
        }
    }
}

TEST(MlineRuns, RunsFollowTheEndsThatMoved)
{
    const auto refitRuns = [](const std::vector<double>& list, const kaldo::SegmentChange& change) {
        return kaldo::refitRuns(list, change);
    };
    // Grown at the end: drawn to the end, the new part is drawn; ending in
    // a gap, it stays a gap; an explicit stop at the old end goes.
    EXPECT_THAT(refitRuns({0.5, 0, 3, 5}, {0, 10, 14, false, true}), ::testing::ElementsAre(0.5, 0, 3, 5));
    EXPECT_THAT(refitRuns({0.5, 0, 3, 5, 8}, {0, 10, 14, false, true}), ::testing::ElementsAre(0.5, 0, 3, 5, 8));
    EXPECT_THAT(refitRuns({0.5, 0, 10}, {0, 10, 14, false, true}), ::testing::ElementsAre(0.5, 0));
    // Shortened at the end: what lay beyond goes.
    EXPECT_THAT(refitRuns({0.5, 0, 3, 5, 8}, {0, 10, 4, false, true}), ::testing::ElementsAre(0.5, 0, 3));
    EXPECT_THAT(refitRuns({0.5, 0, 3, 5, 8}, {0, 10, 6, false, true}), ::testing::ElementsAre(0.5, 0, 3, 5));
    // Grown at the start by 4 (shift -4): distances move along, the new
    // part drawn as the start was; a start within a gap stays undrawn.
    EXPECT_THAT(refitRuns({0.5, 0, 3, 5}, {-4, 10, 14, true, false}), ::testing::ElementsAre(0.5, 0, 7, 9));
    EXPECT_THAT(refitRuns({0.5, 2, 3}, {-4, 10, 14, true, false}), ::testing::ElementsAre(0.5, 6, 7));
    // Shortened at the start by 4: a start inside a run is drawn, one
    // inside a gap not; runs reaching back before a free start are cut.
    EXPECT_THAT(refitRuns({0.5, 0, 3, 5}, {4, 10, 6, true, false}), ::testing::ElementsAre(0.5, 1));
    EXPECT_THAT(refitRuns({0.5, 0, 5, 6}, {4, 10, 6, true, false}), ::testing::ElementsAre(0.5, 0, 1, 2));
    EXPECT_THAT(refitRuns({0.5, 0, 3, 5}, {3.5, 10, 6.5, true, false}), ::testing::ElementsAre(0.5, 1.5));
    EXPECT_THAT(refitRuns({0.5, -2, 3}, {1, 10, 9, true, false}), ::testing::ElementsAre(0.5, 0, 2));
    // Nothing moved: the list as it was, beyond-the-end runs of free ends too.
    EXPECT_THAT(refitRuns({0.5, -2, 12}, {0, 10, 10, false, false}), ::testing::ElementsAre(0.5, -2, 12));
}
