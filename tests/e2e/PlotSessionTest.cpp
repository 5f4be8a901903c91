// Plots made by the real binary and read back with poppler's tools: the
// paper size in points (pdfinfo), a known line where the scale and the
// offset put it, to a pixel at 600 dpi (pdftoppm), lineweights in
// millimetres, no colour in a monochrome plot; -PLOT answered line by
// line.
#include "KaldoProcess.h"
#include "PdfPages.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

using ::testing::HasSubstr;

namespace {

constexpr int kDpi = 600;
constexpr double kPointsPerMillimetre = 72 / 25.4;

// Two lines of 1000 and 500 units from the origin, along x and y.
const std::string kCorner = "LINE\n0,0\n1000,0\n\nLINE\n0,0\n0,500\n\n";

double darkness(QRgb pixel)
{
    return (255 - qGray(pixel)) / 255.0;
}

// The middle of the dark band across column x (rows top to bottom) or
// across row y (columns), in pixels of the image, and its width.
struct Band {
    double middle = 0;
    double width = 0;
};

Band bandDown(const QImage& image, int x)
{
    Band band;
    for (int y = 0; y < image.height(); ++y) {
        const double dark = darkness(image.pixel(x, y));
        band.middle += dark * (y + 0.5);
        band.width += dark;
    }
    band.middle /= band.width;
    return band;
}

Band bandAcross(const QImage& image, int y)
{
    Band band;
    for (int x = 0; x < image.width(); ++x) {
        const double dark = darkness(image.pixel(x, y));
        band.middle += dark * (x + 0.5);
        band.width += dark;
    }
    band.middle /= band.width;
    return band;
}

// Pixels whose red, green and blue differ: grey antialiasing does not.
int colouredPixels(const QImage& image)
{
    int coloured = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const QRgb p = image.pixel(x, y);
            const int spread = std::max({qRed(p), qGreen(p), qBlue(p)}) - std::min({qRed(p), qGreen(p), qBlue(p)});
            coloured += spread > 24 ? 1 : 0;
        }
    return coloured;
}

// The page is the sheet in whole points, as Qt's PDF writer sizes pages.
void expectPage(const std::filesystem::path& file, double widthMillimetres, double heightMillimetres)
{
    const auto [width, height] = pdf::pageSize(file);
    EXPECT_NEAR(width, widthMillimetres * kPointsPerMillimetre, 0.5) << file;
    EXPECT_NEAR(height, heightMillimetres * kPointsPerMillimetre, 0.5) << file;
    EXPECT_EQ(pdf::pageCount(file), 1) << file;
}

}  // namespace

// A4 landscape at 1:100 with the offset 20,30: the 1000 mm line measures
// 10 mm from 25 mm right and 35 mm above the sheet's lower-left corner
// (the printable area starts 5 mm in), 0.5 mm wide (the default
// lineweight typed), ends rounded. Rows are counted from the page's foot:
// the page is the sheet in whole points.
TEST(PlotSession, LineWhereTheScaleAndOffsetPutItTypedLineByLine)
{
    KaldoProcess kaldo;
    const std::filesystem::path file = kaldo.dir() / "corner.pdf";
    const KaldoRun run = kaldo.runScript(kCorner + "-PLOT\nA4\nLandscape\nExtents\n1:100\n20,30\nColor\nYes\n0.5\n"
                                         + file.string() + "\n");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("Paper [A0/A1/A2/A3/A4/ANSI-A/ANSI-B/ANSI-C/ANSI-D/ANSI-E] or WxH in mm <A4>: A4\n"));
    EXPECT_THAT(run.out, HasSubstr("Plotted \"" + file.string() + "\": A4 landscape (297 x 210 mm), scale 1:100.\n"));
    expectPage(file, 297, 210);

    // The part of the page round the corner of the two lines.
    const QRect area(500, 3800, 400, 400);
    const QImage page = pdf::rasterise(file, kDpi, area);
    ASSERT_FALSE(page.isNull());
    const double row = pdf::rowAbove(file, 35, kDpi) - area.y();
    const double column = pdf::pixels(25, kDpi) - area.x();
    const Band horizontal = bandDown(page, int(pdf::pixels(30, kDpi)) - area.x());
    EXPECT_NEAR(horizontal.middle, row, 1);
    EXPECT_NEAR(horizontal.width, pdf::pixels(0.5, kDpi), 1);
    const Band vertical = bandAcross(page, int(pdf::rowAbove(file, 37.5, kDpi)) - area.y());
    EXPECT_NEAR(vertical.middle, column, 1);
    EXPECT_NEAR(vertical.width, pdf::pixels(0.5, kDpi), 1);
    // Along the line: from 25 to 35 mm, and half the width further at
    // each end.
    int first = -1, last = -1;
    for (int x = 0; x < page.width(); ++x)
        if (darkness(page.pixel(x, int(row))) > 0.5) {
            first = first < 0 ? x : first;
            last = x;
        }
    EXPECT_NEAR(first, column - pdf::pixels(0.25, kDpi), 1);
    EXPECT_NEAR(last + 1, pdf::pixels(35.25, kDpi) - area.x(), 1);

    // Enter takes every setting of the last plot, kept in the profile.
    const std::filesystem::path again = kaldo.dir() / "again.pdf";
    const KaldoRun repeated = kaldo.runScript(kCorner + "-PLOT\n\n\n\n\n\n\n\n\n" + again.string() + "\n");
    ASSERT_EQ(repeated.exitCode, 0) << repeated.err;
    EXPECT_THAT(repeated.out, HasSubstr("Plot scale (1:N, or mm=units) or [Fit] <1:100>: \n"));
    EXPECT_THAT(repeated.out, HasSubstr("Plot offset in mm (x,y) or [Center] <20,30>: \n"));
    const QImage repeatedPage = pdf::rasterise(again, kDpi, area);
    EXPECT_NEAR(bandDown(repeatedPage, int(pdf::pixels(30, kDpi)) - area.x()).middle, row, 1);
}

// Multilines in colour: the yellow centre line of ROAD_7M (a style in
// metres), the grey fill of WALL_200MM (in millimetres, scaled to 10
// units wide); the same plotted monochrome holds no colour at all.
TEST(PlotSession, MonochromeHoldsNoColour)
{
    KaldoProcess kaldo;
    const std::string drawing = "MLINE\nST\nROAD_7M\nKALDO\n0,0\n40,0\n40,30\n\nMLINE\nST\nWALL_200MM\nKALDO\nS\n0.05\n"
                                "-10,-10\n50,-10\n\n";
    const std::filesystem::path colour = kaldo.dir() / "colour.pdf";
    KaldoRun run = kaldo.runScript(drawing + "-PLOT\nA4\nL\nE\nFit\nC\nColor\nY\n0.25\n" + colour.string() + "\n");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    const QImage colourPage = pdf::rasterise(colour, 100);
    EXPECT_GT(colouredPixels(colourPage), 100);

    const std::filesystem::path black = kaldo.dir() / "black.pdf";
    run = kaldo.runScript(drawing + "-PLOT\nA4\nL\nE\nFit\nC\nMonochrome\nY\n0.25\n" + black.string() + "\n");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    const QImage blackPage = pdf::rasterise(black, 100);
    ASSERT_FALSE(blackPage.isNull());
    EXPECT_EQ(colouredPixels(blackPage), 0);
    // The wall's fill is there, in black.
    int darkPixels = 0;
    for (int y = 0; y < blackPage.height(); ++y)
        for (int x = 0; x < blackPage.width(); ++x)
            darkPixels += darkness(blackPage.pixel(x, y)) > 0.9 ? 1 : 0;
    EXPECT_GT(darkPixels, 5000);
}
