// Multilines drawn from their stored geometry: runs and gaps, caps, arcs,
// joints, fill, closed and mirrored multilines, colours and linetypes.
#include "ViewDrawing.h"

#include <gmock/gmock.h>

#include "kaldo/view/ColorPalette.h"

#include <cmath>

using kaldo::view::Arc;
using kaldo::view::DrawColor;
using kaldo::view::Point2;
using kaldo::view::Polyline;
using kaldo::view::Scene;

namespace {

constexpr double kTol = 1e-9;

std::vector<Point2> pointsOf(const Scene& scene, const Polyline& p)
{
    return {scene.points().begin() + p.first, scene.points().begin() + p.first + p.count};
}

void expectPoints(const std::vector<Point2>& actual, std::initializer_list<Point2> expected)
{
    ASSERT_EQ(actual.size(), expected.size());
    std::size_t i = 0;
    for (const Point2& e : expected) {
        EXPECT_NEAR(actual[i].x, e.x, kTol) << "point " << i;
        EXPECT_NEAR(actual[i].y, e.y, kTol) << "point " << i;
        ++i;
    }
}

// The polylines drawn with the pen of this colour, in scene order.
std::vector<Polyline> polylinesIn(const Scene& scene, const DrawColor& color)
{
    std::vector<Polyline> out;
    for (const Polyline& p : scene.polylines())
        if (scene.pens()[std::size_t(p.pen)].color == color)
            out.push_back(p);
    return out;
}

Point2 arcPoint(const Arc& arc, double t)
{
    const double a = arc.start + arc.sweep * t;
    return {arc.centre.x + arc.radius * std::cos(a), arc.centre.y + arc.radius * std::sin(a)};
}

const DrawColor kRed = DrawColor::fixed(0xFF0000);
const DrawColor kBlue = DrawColor::fixed(0x0000FF);
const DrawColor kGreen = DrawColor::fixed(0x00FF00);

}  // namespace

TEST(MlineRender, RunsAndGapsFollowTheParameterLists)
{
    ViewDrawing d;
    const KxDbObjectId style =
        d.addStyle(L"TWO", {{0.5, indexColor(1)}, {-0.5, indexColor(5)}}, [](KxDbMlineStyle&) {});
    {
        auto mline = d.addMline(style, {{0, 0}, {10, 0}, {10, 10}});
        // Element 0: runs 2..4 and 6..end on the first segment, going on
        // round the corner; element 1: nothing on the first segment, 0..3
        // on the second.
        setRuns(*mline, 0, 0, {2, 4, 6});
        setRuns(*mline, 0, 1, {});
        setRuns(*mline, 1, 1, {0, 3});
    }
    const Scene scene = d.render();
    const auto red = polylinesIn(scene, kRed);
    ASSERT_EQ(red.size(), 2u);
    expectPoints(pointsOf(scene, red[0]), {{2, 0.5}, {4, 0.5}});
    expectPoints(pointsOf(scene, red[1]), {{6, 0.5}, {9.5, 0.5}, {9.5, 10}});
    const auto blue = polylinesIn(scene, kBlue);
    ASSERT_EQ(blue.size(), 1u);
    expectPoints(pointsOf(scene, blue[0]), {{10.5, -0.5}, {10.5, 2.5}});
    // No style flags: nothing but the elements.
    EXPECT_TRUE(scene.arcs().empty());
    EXPECT_TRUE(scene.polygons().empty());
    EXPECT_EQ(scene.polylines().size(), 3u);
}

TEST(MlineRender, RunsBeyondTheSegmentAreClippedAndEmptyListsDrawNothing)
{
    ViewDrawing d;
    const KxDbObjectId style = d.addStyle(L"ONE", {{0, indexColor(1)}}, [](KxDbMlineStyle&) {});
    {
        auto mline = d.addMline(style, {{0, 0}, {10, 0}, {20, 0}});
        setRuns(*mline, 0, 0, {-3, 4, 8, 30});
        setRuns(*mline, 1, 0, {5, 5});
    }
    {
        // At the free ends of an open multiline runs reach beyond the end
        // miters, as the corner and tee tools end elements there.
        auto mline = d.addMline(style, {{0, 10}, {10, 10}});
        setRuns(*mline, 0, 0, {-3, 13});
    }
    const Scene scene = d.render();
    ASSERT_EQ(scene.polylines().size(), 3u);
    expectPoints(pointsOf(scene, scene.polylines()[0]), {{-3, 0}, {4, 0}});
    expectPoints(pointsOf(scene, scene.polylines()[1]), {{8, 0}, {10, 0}});
    expectPoints(pointsOf(scene, scene.polylines()[2]), {{-3, 10}, {13, 10}});
}

TEST(MlineRender, LineCapsAndArcsAtUnsuppressedEnds)
{
    ViewDrawing d;
    const KxDbObjectId style = d.addStyle(
        L"CAPS", {{1.5, indexColor(1)}, {0.5, indexColor(3)}, {-0.5, indexColor(3)}, {-1.5, indexColor(5)}},
        [](KxDbMlineStyle& s) {
            s.setStartSquareCap(true);
            s.setStartRoundCap(true);
            s.setEndRoundCap(true);
            s.setEndInnerArcs(true);
        });
    {
        auto mline = d.addMline(style, {{0, 0}, {10, 0}});
    }
    Scene scene = d.render();
    // Start line cap: two halves meeting on the axis, in the colours of
    // the first and the last element.
    const auto red = polylinesIn(scene, kRed);
    const auto blue = polylinesIn(scene, kBlue);
    ASSERT_EQ(red.size(), 2u);
    ASSERT_EQ(blue.size(), 2u);
    expectPoints(pointsOf(scene, red[1]), {{0, 1.5}, {0, 0}});
    expectPoints(pointsOf(scene, blue[1]), {{0, -1.5}, {0, 0}});

    // Outer arcs at both ends and the inner pair at the end: two arcs each,
    // meeting on the axis outside the multiline.
    ASSERT_EQ(scene.arcs().size(), 6u);
    for (const Arc& arc : scene.arcs()) {
        EXPECT_NEAR(arc.centre.y, 0, kTol);
        EXPECT_NEAR(std::abs(arc.sweep), std::numbers::pi / 2, kTol);
        const bool atStart = arc.centre.x == 0;
        const double outside = atStart ? -arc.radius : 10 + arc.radius;
        const Point2 from = arcPoint(arc, 0), to = arcPoint(arc, 1);
        EXPECT_NEAR(std::min(std::abs(from.x - outside) + std::abs(from.y), std::abs(to.x - outside) + std::abs(to.y)),
                    0, kTol);
        EXPECT_TRUE(atStart ? arcPoint(arc, 0.5).x < 0 : arcPoint(arc, 0.5).x > 10);
    }
    int startArcs = 0, innerArcs = 0;
    for (const Arc& arc : scene.arcs()) {
        startArcs += arc.centre.x == 0;
        innerArcs += std::abs(arc.radius - 0.5) < kTol;
    }
    EXPECT_EQ(startArcs, 2);
    EXPECT_EQ(innerArcs, 2);

    // Suppressed caps draw nothing at that end.
    {
        KxDbObjectPtr<KxDbBlockTableRecord> space(d.db.modelSpaceId(), KxDb::kForRead);
        const auto it = space->newIterator();
        KxDbObjectPtr<KxDbMline> mline(it->getEntityId(), KxDb::kForWrite);
        mline->setSupressStartCaps(true);
    }
    scene = d.render();
    EXPECT_EQ(scene.arcs().size(), 4u);
    EXPECT_EQ(polylinesIn(scene, kRed).size(), 1u);
}

TEST(MlineRender, SlantedCapsFollowTheMiter)
{
    ViewDrawing d;
    const KxDbObjectId style = d.addStyle(L"SLANT", {{0.5, indexColor(1)}, {-0.5, indexColor(5)}},
                                          [](KxDbMlineStyle& s) {
                                              s.setStartAngle(std::numbers::pi / 4);
                                              s.setStartRoundCap(true);
                                          });
    {
        auto mline = d.addMline(style, {{0, 0}, {10, 0}});
    }
    const Scene scene = d.render();
    ASSERT_EQ(scene.arcs().size(), 2u);
    const Arc& first = scene.arcs()[0];
    const Arc& second = scene.arcs()[1];
    // A half circle over the slanted ends, split where it points backwards.
    EXPECT_NEAR(first.radius, std::sqrt(2.0) / 2, kTol);
    EXPECT_NEAR(first.start, std::numbers::pi / 4, kTol);
    EXPECT_NEAR(first.sweep, 3 * std::numbers::pi / 4, kTol);
    EXPECT_NEAR(std::remainder(second.start - std::numbers::pi, 2 * std::numbers::pi), 0, kTol);
    EXPECT_NEAR(second.sweep, std::numbers::pi / 4, kTol);
    EXPECT_EQ(scene.pens()[std::size_t(first.pen)].color, kRed);
    EXPECT_EQ(scene.pens()[std::size_t(second.pen)].color, kBlue);
}

TEST(MlineRender, MirroredMultilineKeepsItsArcsOutside)
{
    ViewDrawing d;
    const KxDbObjectId style = d.addStyle(L"ROUND", {{0.5, indexColor(1)}, {-0.5, indexColor(5)}},
                                          [](KxDbMlineStyle& s) {
                                              s.setStartRoundCap(true);
                                              s.setEndRoundCap(true);
                                          });
    {
        auto mline = d.addMline(style, {{0, 0}, {10, 0}}, -2.0);
    }
    const Scene scene = d.render();
    // A negative scale puts the first element on the right.
    const auto red = polylinesIn(scene, kRed);
    ASSERT_EQ(red.size(), 1u);
    expectPoints(pointsOf(scene, red[0]), {{0, -1}, {10, -1}});
    ASSERT_EQ(scene.arcs().size(), 4u);
    for (const Arc& arc : scene.arcs()) {
        EXPECT_NEAR(arc.radius, 1, kTol);
        const Point2 halfway = arcPoint(arc, 0.5);
        EXPECT_TRUE(arc.centre.x == 0 ? halfway.x < 0 : halfway.x > 10);
    }
}

TEST(MlineRender, JointsFillAndClosedMultilines)
{
    // A green fill for the open multiline, the default one for the closed.
    const auto box = [](ViewDrawing& drawing, bool green) {
        return drawing.addStyle(L"BOX", {{0.5, indexColor(1)}, {0, indexColor(2)}, {-0.5, indexColor(5)}},
                                [&](KxDbMlineStyle& s) {
                                    s.setShowMiters(true);
                                    s.setFilled(true);
                                    s.setStartSquareCap(true);
                                    s.setEndRoundCap(true);
                                    KxCmColor fill;
                                    fill.setRGB(0, 255, 0);
                                    if (green)
                                        s.setFillColor(fill);
                                });
    };
    ViewDrawing d;
    {
        auto open = d.addMline(box(d, true), {{0, 0}, {10, 0}, {10, 10}});
    }
    Scene scene = d.render();
    // One joint at the corner, from element 0's corner to the middle and
    // from the last element's corner to the middle.
    const auto red = polylinesIn(scene, kRed);
    const auto blue = polylinesIn(scene, kBlue);
    ASSERT_EQ(red.size(), 3u);  // element, joint half, start cap half
    expectPoints(pointsOf(scene, red[1]), {{9.5, 0.5}, {10, 0}});
    expectPoints(pointsOf(scene, blue[1]), {{10.5, -0.5}, {10, 0}});
    // The fill covers both segments between the outer elements.
    ASSERT_EQ(scene.polygons().size(), 2u);
    EXPECT_EQ(scene.polygons()[0].color, kGreen);
    const Point2* q = scene.points().data() + scene.polygons()[0].first;
    expectPoints({q, q + 4}, {{0, 0.5}, {9.5, 0.5}, {10.5, -0.5}, {0, -0.5}});

    ViewDrawing c;
    {
        auto closed = c.addMline(box(c, false), {{0, 0}, {10, 0}, {10, 10}, {0, 10}}, 1.0, true);
    }
    scene = c.render();
    // Closed: each element one closed polyline, joints at all four
    // vertices, four filled segments and no caps.
    const auto closedRed = polylinesIn(scene, kRed);
    ASSERT_EQ(closedRed.size(), 5u);
    EXPECT_TRUE(closedRed[0].closed);
    expectPoints(pointsOf(scene, closedRed[0]), {{0.5, 0.5}, {9.5, 0.5}, {9.5, 9.5}, {0.5, 9.5}});
    EXPECT_EQ(scene.polygons().size(), 4u);
    EXPECT_TRUE(scene.arcs().empty());
    // By-layer fill on layer 0 (white) is the foreground colour.
    EXPECT_TRUE(scene.polygons()[0].color.foreground);
}

TEST(MlineRender, ColoursAndLinetypesOfElements)
{
    ViewDrawing d;
    const KxDbObjectId dashed = d.addLinetype(L"DASHED", {0.5, -0.25});
    KxCmColor byBlock;
    byBlock.setColorIndex(KxCmColor::kIndexByBlock);
    KxCmColor trueColor;
    trueColor.setRGB(10, 20, 30);
    const KxDbObjectId style = d.addStyle(
        L"LOOK", {{1, KxCmColor(), dashed}, {0, byBlock}, {-1, trueColor}, {-2, indexColor(30)}},
        [](KxDbMlineStyle&) {});
    {
        auto mline = d.addMline(style, {{0, 0}, {10, 0}});
    }
    const Scene scene = d.render();
    ASSERT_EQ(scene.polylines().size(), 4u);
    const auto penOf = [&](int i) { return scene.pens()[std::size_t(scene.polylines()[std::size_t(i)].pen)]; };
    // By layer: layer 0 is white, the foreground; dashed pattern kept.
    EXPECT_TRUE(penOf(0).color.foreground);
    EXPECT_EQ(scene.patterns()[std::size_t(penOf(0).pattern)], (std::vector<double>{0.5, -0.25}));
    EXPECT_TRUE(penOf(1).color.foreground);
    EXPECT_EQ(penOf(1).pattern, 0);
    EXPECT_EQ(penOf(2).color, DrawColor::fixed(0x0A141E));
    EXPECT_EQ(penOf(3).color, DrawColor::fixed(kaldo::view::colorIndexRgb(30)));
}

TEST(MlineRender, MultilinesOfOneStyleTakeTheirOwnLayers)
{
    // One after another, so that what one multiline resolved is not taken
    // for the next: layer 0, a red layer, layer 0 again.
    ViewDrawing d;
    KxDbObjectId red;
    {
        KxDbObjectPtr<KxDbLayerTable> layers(d.db.layerTableId(), KxDb::kForWrite);
        auto* layer = new KxDbLayerTableRecord;
        layer->setName(L"RED");
        layer->setColor(indexColor(1));
        layers->add(layer, red);
        layer->close();
    }
    const KxDbObjectId style = d.addStyle(L"PAIR", {{1, KxCmColor()}, {-1, indexColor(3)}}, [](KxDbMlineStyle&) {});
    for (const KxDbObjectId layer : {KxDbObjectId(), red, KxDbObjectId()}) {
        auto mline = d.addMline(style, {{0, 0}, {10, 0}});
        if (!layer.isNull())
            mline->setLayer(layer);
    }
    const Scene scene = d.render();
    ASSERT_EQ(scene.polylines().size(), 6u);
    const auto colorOf = [&](int i) { return scene.pens()[std::size_t(scene.polylines()[std::size_t(i)].pen)].color; };
    EXPECT_TRUE(colorOf(0).foreground);
    EXPECT_EQ(colorOf(2), kRed);
    EXPECT_TRUE(colorOf(4).foreground);
    for (const int i : {1, 3, 5})
        EXPECT_EQ(colorOf(i), kGreen) << i;
}

TEST(MlineRender, FillFollowsTheFirstElementsFillList)
{
    ViewDrawing d;
    const KxDbObjectId style = d.addStyle(L"FILL", {{1, indexColor(1)}, {-1, indexColor(5)}},
                                          [](KxDbMlineStyle& s) { s.setFilled(true); });
    {
        auto mline = d.addMline(style, {{0, 0}, {10, 0}, {20, 0}});
        // First segment filled from 2 to 4 and from 7 to its end; the
        // second's list holds entry 0 alone and is filled whole.
        setRuns(*mline, 0, 0, {2, 4, 7}, true);
        setRuns(*mline, 1, 0, {}, true);
    }
    const Scene scene = d.render();
    ASSERT_EQ(scene.polygons().size(), 3u);
    const auto corners = [&](std::size_t i) {
        const Point2* q = scene.points().data() + scene.polygons()[i].first;
        return std::vector<Point2>(q, q + scene.polygons()[i].count);
    };
    expectPoints(corners(0), {{2, 1}, {4, 1}, {4, -1}, {2, -1}});
    expectPoints(corners(1), {{7, 1}, {10, 1}, {10, -1}, {7, -1}});
    expectPoints(corners(2), {{10, 1}, {20, 1}, {20, -1}, {10, -1}});
}

