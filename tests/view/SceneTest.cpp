// The scene's building rules: short polylines and polygons are dropped, a
// closed polyline does not repeat its first point, pens are shared, arcs
// count in the extents by the quadrants they pass.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <tuple>
#include <vector>

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
    // A whole turn has the very box of its two halves, whatever its start,
    // direction and radius; also near the largest number, where points
    // short of a side still count.
    for (const Arc& turn : std::vector<Arc>{{{10, 0}, 1, 0, -2 * std::numbers::pi, 0},
                                            {{-3.7, 1e5}, 0.3, 2.1, 2 * std::numbers::pi, 0},
                                            {{1e-3, -7}, -2.5, -40.3, 7, 0},
                                            {{0.1, 0.2}, 1e-9, 5.5, -9, 0},
                                            {{1.7e308, 0}, 1e308, 0.5, 2 * std::numbers::pi, 0}}) {
        Bounds whole, halves;
        addArcBounds(whole, turn);
        const double half = std::clamp(turn.sweep, -2 * std::numbers::pi, 2 * std::numbers::pi) / 2;
        addArcBounds(halves, {turn.centre, turn.radius, turn.start, half, 0});
        addArcBounds(halves, {turn.centre, turn.radius, turn.start + half, half, 0});
        EXPECT_EQ(std::tie(whole.empty, whole.minX, whole.minY, whole.maxX, whole.maxY),
                  std::tie(halves.empty, halves.minX, halves.minY, halves.maxX, halves.maxY));
    }
}
