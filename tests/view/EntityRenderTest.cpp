// Lines, arcs, circles and polylines in a scene: their pens from colour,
// layer and linetype, arcs seen from below, bulged polyline segments, and
// entities on layers that are off.
#include "ViewDrawing.h"

#include <cmath>

using namespace kaldo::view;

namespace {

constexpr double kTol = 1e-9;

template <class Entity>
void add(ViewDrawing& d, Entity* entity, int colorIndex = 256)
{
    entity->setDatabaseDefaults(&d.db);
    entity->setColorIndex(colorIndex);
    d.db.addToCurrentSpace(entity);
    entity->close();
}

}  // namespace

TEST(EntityRender, LinesArcsAndCircles)
{
    ViewDrawing d;
    add(d, new KxDbLine({0, 0, 5}, {10, 0, 5}), 1);
    add(d, new KxDbArc({0, 0}, 2, 0, std::numbers::pi / 2), 3);
    // Seen from below, counter-clockwise about the normal is clockwise in
    // the plan: start and end swap sides.
    add(d, new KxDbArc({20, 0}, {0, 0, -1}, 1, 0, std::numbers::pi / 2));
    add(d, new KxDbCircle({0, 20}, 3));
    const Scene scene = d.render();
    ASSERT_EQ(scene.polylines().size(), 1u);
    EXPECT_EQ(scene.pens()[std::size_t(scene.polylines()[0].pen)].color, DrawColor::fixed(0xFF0000));
    ASSERT_EQ(scene.arcs().size(), 3u);
    const Arc& quarter = scene.arcs()[0];
    EXPECT_NEAR(quarter.start, 0, kTol);
    EXPECT_NEAR(quarter.sweep, std::numbers::pi / 2, kTol);
    const Arc& below = scene.arcs()[1];
    EXPECT_NEAR(std::cos(below.start), -1, kTol);
    EXPECT_NEAR(below.sweep, -std::numbers::pi / 2, kTol);
    EXPECT_NEAR(scene.arcs()[2].sweep, 2 * std::numbers::pi, kTol);
    // Extents: the arc seen from below reaches x = 20 at its end, the circle
    // the rest.
    const Bounds b = scene.bounds();
    EXPECT_NEAR(b.minX, -3, kTol);
    EXPECT_NEAR(b.maxX, 20, kTol);
    EXPECT_NEAR(b.minY, 0, kTol);
    EXPECT_NEAR(b.maxY, 23, kTol);
}

TEST(EntityRender, PolylinesWithBulges)
{
    ViewDrawing d;
    auto* polyline = new KxDbPolyline;
    // A half circle counter-clockwise from (0,0) to (2,0) (below the
    // chord), then straight up and closed back to the start.
    polyline->addVertexAt({0, 0, 0, 0, 1});
    polyline->addVertexAt({2, 0, 0, 0, 0});
    polyline->addVertexAt({2, 3, 0, 0, 0});
    polyline->setClosed(true);
    add(d, polyline);
    const Scene scene = d.render();
    ASSERT_EQ(scene.polylines().size(), 1u);
    const Polyline& p = scene.polylines()[0];
    EXPECT_TRUE(p.closed);
    double lowest = 0;
    for (std::uint32_t i = 0; i < p.count; ++i) {
        const Point2& q = scene.points()[p.first + i];
        if (q.y < 0) {
            EXPECT_NEAR(std::hypot(q.x - 1, q.y), 1, kTol);
        }
        lowest = std::min(lowest, q.y);
    }
    EXPECT_NEAR(lowest, -1, kTol);
    const Point2& last = scene.points()[p.first + p.count - 1];
    EXPECT_NEAR(last.x, 2, kTol);
    EXPECT_NEAR(last.y, 3, kTol);

    // A bulge that is no number, or so large that the arc has no centre,
    // leaves out its segment: the rest is drawn in two pieces.
    for (const double bulge : {std::nan(""), 1e308}) {
        ViewDrawing broken;
        auto* pline = new KxDbPolyline;
        pline->addVertexAt({0, 10, 0, 0, 0});
        pline->addVertexAt({5, 10, 0, 0, bulge});
        pline->addVertexAt({10, 10, 0, 0, 0});
        pline->addVertexAt({10, 15, 0, 0, 0});
        add(broken, pline);
        const Scene pieces = broken.render();
        ASSERT_EQ(pieces.polylines().size(), 2u) << bulge;
        for (const Point2& q : pieces.points())
            EXPECT_TRUE(std::isfinite(q.x) && std::isfinite(q.y)) << bulge;
        const Polyline& second = pieces.polylines()[1];
        EXPECT_NEAR(pieces.points()[second.first].x, 10, kTol);
        EXPECT_NEAR(pieces.points()[second.first + second.count - 1].y, 15, kTol);
    }
}

TEST(EntityRender, LayersGiveColourLinetypeAndVisibility)
{
    ViewDrawing d;
    const KxDbObjectId dashed = d.addLinetype(L"DASHED", {1, -0.5});
    KxDbObjectId red, hidden;
    {
        KxDbObjectPtr<KxDbLayerTable> layers(d.db.layerTableId(), KxDb::kForWrite);
        auto* redLayer = new KxDbLayerTableRecord;
        redLayer->setName(L"RED");
        redLayer->setColor(indexColor(1));
        redLayer->setLinetypeObjectId(dashed);
        layers->add(redLayer, red);
        redLayer->close();
        auto* offLayer = new KxDbLayerTableRecord;
        offLayer->setName(L"OFF");
        offLayer->setIsOff(true);
        layers->add(offLayer, hidden);
        offLayer->close();
    }
    for (const KxDbObjectId layer : {red, hidden}) {
        auto* line = new KxDbLine({0, 0}, {10, 0});
        line->setDatabaseDefaults(&d.db);
        line->setLayer(layer);
        d.db.addToCurrentSpace(line);
        line->close();
    }
    const Scene scene = d.render();
    ASSERT_EQ(scene.polylines().size(), 1u);
    const Pen& pen = scene.pens()[std::size_t(scene.polylines()[0].pen)];
    EXPECT_EQ(pen.color, DrawColor::fixed(0xFF0000));
    EXPECT_EQ(scene.patterns()[std::size_t(pen.pattern)], (std::vector<double>{1, -0.5}));
}
