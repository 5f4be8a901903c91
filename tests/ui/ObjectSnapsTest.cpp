// Object snaps on a scene, and the box index under them.
#include "kaldo/ui/ObjectSnaps.h"
#include "kaldo/util/BoxIndex.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <numbers>
#include <random>

namespace kaldo::ui {
namespace {

constexpr double kTol = 1e-10;

view::Scene snapScene()
{
    view::Scene scene;
    scene.addLine({0, 0}, {10, 0}, 0);
    scene.addLine({3, -5}, {3, 7}, 0);
    scene.addLine({20, 0}, {20, 10}, 0);
    scene.addArc({{40, 0}, 2, 0, std::numbers::pi / 2, 0});
    scene.beginPolyline(0);
    for (const view::Point2 p : {view::Point2{50, 0}, {52, 0}, {52, 2}, {50, 2}})
        scene.addPoint(p);
    scene.endPolyline(true);
    return scene;
}

TEST(ObjectSnaps, EachKindNearTheCursorAndNothingFarAway)
{
    const auto scene = std::make_shared<const view::Scene>(snapScene());
    const SnapGeometry snaps(scene, std::make_shared<const view::SceneIndex>(*scene));
    struct Case {
        view::Point2 cursor;
        std::optional<view::Point2> base;
        SnapKind kind;
        view::Point2 expected;
    };
    const Case cases[] = {
        {{10.2, 0.1}, {}, SnapKind::Endpoint, {10, 0}},
        {{5.1, 0.2}, {}, SnapKind::Midpoint, {5, 0}},
        {{3.1, 0.1}, {}, SnapKind::Intersection, {3, 0}},
        {{20.1, 4.2}, view::Point2{25, 4}, SnapKind::Perpendicular, {20, 4}},
        {{20.3, 7}, {}, SnapKind::Nearest, {20, 7}},
        {{40.1, 2.1}, {}, SnapKind::Endpoint, {40, 2}},
        {{41.5, 1.5}, {}, SnapKind::Midpoint, {40 + std::sqrt(2.0), std::sqrt(2.0)}},
        {{42.2, 0.3}, {}, SnapKind::Endpoint, {42, 0}},
        {{49.9, 1.05}, {}, SnapKind::Midpoint, {50, 1}},  // the closing side of a closed polyline
    };
    for (const Case& c : cases) {
        const auto snap = snaps.find(c.cursor, 0.5, c.base ? &*c.base : nullptr);
        ASSERT_TRUE(snap) << c.cursor.x << "," << c.cursor.y;
        EXPECT_EQ(snap->kind, c.kind) << c.cursor.x << "," << c.cursor.y;
        EXPECT_NEAR(snap->point.x, c.expected.x, kTol) << c.cursor.x;
        EXPECT_NEAR(snap->point.y, c.expected.y, kTol) << c.cursor.x;
    }
    // The nearest point of the arc, away from its special points.
    const auto onArc = snaps.find({40 + 2.1 * std::cos(0.3), 2.1 * std::sin(0.3)}, 0.5, nullptr);
    ASSERT_TRUE(onArc);
    EXPECT_EQ(onArc->kind, SnapKind::Nearest);
    EXPECT_NEAR(onArc->point.x, 40 + 2 * std::cos(0.3), kTol);
    EXPECT_FALSE(snaps.find({30, 30}, 0.5, nullptr));
}

TEST(BoxIndex, FindsWhatAPlainSearchFinds)
{
    std::mt19937 random(7);
    std::uniform_real_distribution<double> place(0, 1000);
    std::uniform_real_distribution<double> size(0, 20);
    const auto randomBox = [&] {
        const double x = place(random), y = place(random);
        return Box{x, y, x + size(random), y + size(random)};
    };
    // Enough boxes for the tree to be sorted on two threads.
    std::vector<Box> boxes(70000);
    std::generate(boxes.begin(), boxes.end(), randomBox);
    const BoxIndex index(boxes);
    EXPECT_EQ(index.size(), boxes.size());
    for (int q = 0; q < 200; ++q) {
        const Box query = randomBox();
        std::vector<std::uint32_t> found;
        index.query(query, [&](std::uint32_t item) { found.push_back(item); });
        // The tree keeps each item's box as given.
        index.queryCoarse(
            query, 0,
            [&](std::uint32_t item, const Box& kept) {
                ASSERT_TRUE(kept.minX == boxes[item].minX && kept.minY == boxes[item].minY
                            && kept.maxX == boxes[item].maxX && kept.maxY == boxes[item].maxY)
                    << item;
            },
            [](const Box&) {});
        std::vector<std::uint32_t> expected;
        for (std::uint32_t i = 0; i < boxes.size(); ++i)
            if (boxes[i].meets(query))
                expected.push_back(i);
        std::sort(found.begin(), found.end());
        EXPECT_EQ(found, expected) << q;
    }
    const BoxIndex empty(std::vector<Box>{});
    int visits = 0;
    empty.query({0, 0, 1, 1}, [&](std::uint32_t) { ++visits; });
    EXPECT_EQ(visits, 0);
}

}  // namespace
}  // namespace kaldo::ui
