// Fitting a scene into a picture, colours on each background, dash
// patterns in pixels and the indexed colour palette.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <tuple>
#include <vector>

#include "kaldo/view/ColorPalette.h"
#include "kaldo/view/Picture.h"

using namespace kaldo::view;

TEST(Picture, FrameFitsTheDrawingWithAMargin)
{
    // A wide drawing: Export's pictures (400 by 210 pixels for 100 by 50
    // units, margins of 10). A tall one:
    Bounds tall;
    tall.add({0, 0});
    tall.add({10, 100});
    EXPECT_EQ(PictureFrame(tall, 400).height(), 400);
    EXPECT_EQ(PictureFrame(tall, 400).width(), 58);

    // Nothing drawn, or a single point (points that are not finite do not
    // count): a square picture around it.
    const PictureFrame empty(Bounds{}, 100);
    EXPECT_EQ(empty.width(), 100);
    EXPECT_EQ(empty.height(), 100);
    Bounds point;
    point.add({5, 5});
    point.add({std::nan(""), 1e9});
    point.add({-1e9, std::numeric_limits<double>::infinity()});
    EXPECT_DOUBLE_EQ(PictureFrame(point, 100).x(5), 50);

    // A scene's points bounded at once come out as added one by one.
    const std::vector<Point2> points{{std::nan(""), 1e9}, {5, -2}, {-1e9, std::numeric_limits<double>::infinity()},
                                     {-3, 7}, {4, std::nan("")}, {1, 1}};
    Bounds oneByOne;
    for (const Point2& p : points)
        oneByOne.add(p);
    const Bounds atOnce = pointBounds(points);
    EXPECT_FALSE(atOnce.empty);
    EXPECT_EQ(std::tie(atOnce.minX, atOnce.minY, atOnce.maxX, atOnce.maxY),
              std::tie(oneByOne.minX, oneByOne.minY, oneByOne.maxX, oneByOne.maxY));
    EXPECT_TRUE(pointBounds(std::vector<Point2>{{std::nan(""), 0}, {0, -std::numeric_limits<double>::infinity()}}).empty);
}

TEST(Picture, ForegroundFlipsWithTheBackground)
{
    EXPECT_EQ(pictureRgb(DrawColor{}, Background::White), 0x000000u);
    EXPECT_EQ(pictureRgb(DrawColor{}, Background::Dark), 0xFFFFFFu);
    EXPECT_EQ(pictureRgb(DrawColor::fixed(0xFF0000), Background::Dark), 0xFF0000u);
    EXPECT_NE(backgroundRgb(Background::Dark), backgroundRgb(Background::White));

    KxCmColor byLayer;
    EXPECT_EQ(drawColor(byLayer, DrawColor::fixed(0x123456)), DrawColor::fixed(0x123456));
    KxCmColor seven;
    seven.setColorIndex(7);
    EXPECT_TRUE(drawColor(seven, DrawColor::fixed(0x123456)).foreground);
    KxCmColor byBlock;
    byBlock.setColorIndex(0);
    EXPECT_TRUE(drawColor(byBlock, DrawColor::fixed(0x123456)).foreground);
}

TEST(Picture, IndexedColours)
{
    EXPECT_EQ(colorIndexRgb(1), 0xFF0000u);
    EXPECT_EQ(colorIndexRgb(5), 0x0000FFu);
    EXPECT_EQ(colorIndexRgb(8), 0x808080u);
    EXPECT_EQ(colorIndexRgb(10), 0xFF0000u);  // first hue row: pure red
    EXPECT_EQ(colorIndexRgb(11), 0xFFAAAAu);  // its paler neighbour
    EXPECT_EQ(colorIndexRgb(50), 0xFFFF00u);  // 60 degrees: yellow
    EXPECT_EQ(colorIndexRgb(250), 0x333333u);
    EXPECT_EQ(colorIndexRgb(0), 0xFFFFFFu);
    EXPECT_EQ(colorIndexRgb(256), 0xFFFFFFu);
}

TEST(Picture, DashPatternsInPixels)
{
    // Dash first: kept as it is, scaled.
    PixelDashes d = pixelDashes({0.5, -0.25}, 20);
    EXPECT_EQ(d.lengths, (std::vector<double>{10, 5}));
    EXPECT_EQ(d.offset, 0);
    // Gap first: moved to the end, lines start inside it.
    d = pixelDashes({-0.25, 0.5}, 20);
    EXPECT_EQ(d.lengths, (std::vector<double>{10, 5}));
    EXPECT_EQ(d.offset, 10);
    // Dash last: joined to the first dash, lines start after its share.
    d = pixelDashes({0.5, -0.25, 0.25}, 20);
    EXPECT_EQ(d.lengths, (std::vector<double>{15, 5}));
    EXPECT_EQ(d.offset, 5);
    // Dots get a pixel; neighbours of one sign merge.
    d = pixelDashes({0.5, -0.1, -0.15, 0, -0.25}, 20);
    EXPECT_EQ(d.lengths, (std::vector<double>{10, 5, 1, 5}));
    // Continuous, and too fine to show.
    EXPECT_TRUE(pixelDashes({}, 20).lengths.empty());
    EXPECT_TRUE(pixelDashes({0.5}, 20).lengths.empty());
    EXPECT_TRUE(pixelDashes({0.05, -0.05}, 20).lengths.empty());
}
