// The scene's building rules: short polylines and polygons are dropped, a
// closed polyline does not repeat its first point, pens are shared, arcs
// count in the extents by the quadrants they pass.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "kaldo/view/Scene.h"

using namespace kaldo::view;

TEST(Scene, BuildingRules)
{
    Scene scene;
    const int red = scene.pen({DrawColor::fixed(0xFF0000), 0});
    EXPECT_EQ(scene.pen({DrawColor::fixed(0xFF0000), 0}), red);
    EXPECT_NE(scene.pen({DrawColor{}, 0}), red);
    EXPECT_EQ(scene.addPattern({}), 0);

    scene.beginPolyline(red);
    scene.endPolyline();
    scene.beginPolyline(red);
    scene.addPoint({1, 1});
    scene.endPolyline(true);
    EXPECT_TRUE(scene.polylines().empty());
    EXPECT_TRUE(scene.points().empty());

    scene.beginPolyline(red);
    for (const Point2& p : {Point2{0, 0}, Point2{1, 0}, Point2{1, 1}, Point2{0, 0}})
        scene.addPoint(p);
    scene.endPolyline(true);
    ASSERT_EQ(scene.polylines().size(), 1u);
    EXPECT_EQ(scene.polylines()[0].count, 3u);

    scene.beginPolygon();
    scene.addPoint({5, 5});
    scene.addPoint({6, 6});
    scene.endPolygon(DrawColor{});
    EXPECT_TRUE(scene.polygons().empty());
    EXPECT_EQ(scene.points().size(), 3u);
}

TEST(Scene, ArcExtents)
{
    Bounds b;
    // From 30 to 200 degrees: passes the top (90) and the left (180).
    addArcBounds(b, {{0, 0}, 2, std::numbers::pi / 6, std::numbers::pi * 17 / 18, 0});
    EXPECT_DOUBLE_EQ(b.maxY, 2);
    EXPECT_DOUBLE_EQ(b.minX, -2);
    EXPECT_NEAR(b.maxX, 2 * std::cos(std::numbers::pi / 6), 1e-12);
    EXPECT_NEAR(b.minY, 2 * std::sin(std::numbers::pi * 20 / 18), 1e-12);
    // Clockwise sweeps and full circles.
    Bounds c;
    addArcBounds(c, {{10, 0}, 1, 0, -2 * std::numbers::pi, 0});
    EXPECT_DOUBLE_EQ(c.minX, 9);
    EXPECT_DOUBLE_EQ(c.maxY, 1);
    EXPECT_DOUBLE_EQ(c.minY, -1);
}
