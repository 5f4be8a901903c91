// Plots made by the real binary and read back with poppler's tools: the
// paper size in points (pdfinfo), a known line where the scale and the
// offset put it, to a pixel at 600 dpi (pdftoppm), lineweights in
// millimetres, texts as text (pdftotext), the drawing's units, no colour
// in a monochrome plot; -PLOT answered line by line, PLOT's dialog driven
// by a script's actions, --plot with its options.
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

// The middle of the dark band down column at (rows top to bottom) or,
// across, along row at (columns), in pixels of the image, and its width.
struct Band {
    double middle = 0;
    double width = 0;
};

Band band(const QImage& image, int at, bool across = false)
{
    Band band;
    const int length = across ? image.width() : image.height();
    for (int i = 0; i < length; ++i) {
        const double dark = darkness(across ? image.pixel(i, at) : image.pixel(at, i));
        band.middle += dark * (i + 0.5);
        band.width += dark;
    }
    band.middle /= band.width;
    return band;
}

// The first and the last column of row y darker than half.
std::pair<int, int> darkRun(const QImage& image, int y)
{
    int first = -1, last = -1;
    for (int x = 0; x < image.width(); ++x)
        if (darkness(image.pixel(x, y)) > 0.5) {
            first = first < 0 ? x : first;
            last = x;
        }
    return {first, last};
}

// The dark bands down column x, top to bottom: rows darker than white
// next to one another.
std::vector<Band> bandsDown(const QImage& image, int x)
{
    std::vector<Band> bands;
    bool inBand = false;
    for (int y = 0; y < image.height(); ++y) {
        const double dark = darkness(image.pixel(x, y));
        if (dark < 0.02) {
            inBand = false;
            continue;
        }
        if (!inBand)
            bands.push_back({});
        inBand = true;
        bands.back().middle += dark * (y + 0.5);
        bands.back().width += dark;
    }
    for (Band& band : bands)
        band.middle /= band.width;
    return bands;
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
    const Band horizontal = band(page, int(pdf::pixels(30, kDpi)) - area.x());
    EXPECT_NEAR(horizontal.middle, row, 1);
    EXPECT_NEAR(horizontal.width, pdf::pixels(0.5, kDpi), 1);
    const Band vertical = band(page, int(pdf::rowAbove(file, 37.5, kDpi)) - area.y(), true);
    EXPECT_NEAR(vertical.middle, column, 1);
    EXPECT_NEAR(vertical.width, pdf::pixels(0.5, kDpi), 1);
    // Along the line: from 25 to 35 mm, and half the width further at
    // each end.
    const auto [first, last] = darkRun(page, int(row));
    EXPECT_NEAR(first, column - pdf::pixels(0.25, kDpi), 1);
    EXPECT_NEAR(last + 1, pdf::pixels(35.25, kDpi) - area.x(), 1);

    // Enter takes every setting of the last plot, kept in the profile.
    const std::filesystem::path again = kaldo.dir() / "again.pdf";
    const KaldoRun repeated = kaldo.runScript(kCorner + "-PLOT\n\n\n\n\n\n\n\n\n" + again.string() + "\n");
    ASSERT_EQ(repeated.exitCode, 0) << repeated.err;
    EXPECT_THAT(repeated.out, HasSubstr("Plot scale (1:N, or mm=units) or [Fit] <1:100>: \n"));
    EXPECT_THAT(repeated.out, HasSubstr("Plot offset in mm (x,y) or [Center] <20,30>: \n"));
    const QImage repeatedPage = pdf::rasterise(again, kDpi, area);
    EXPECT_NEAR(band(repeatedPage, int(pdf::pixels(30, kDpi)) - area.x()).middle, row, 1);
}

// --plot after the script: the extents centred on the paper the options
// name, custom sizes in millimetres; a Window between two corners on an
// ANSI sheet, at 1=50 (millimetres = units).
TEST(PlotSession, OptionsAndPromptsChooseTheSheet)
{
    KaldoProcess kaldo;
    const std::filesystem::path a3 = kaldo.dir() / "a3.pdf";
    KaldoRun run = kaldo.runScript(
        kCorner, {"--plot", pdf::path(a3), "--paper", "A3", "--orientation", "portrait", "--plot-scale", "1:5"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("A3 portrait (297 x 420 mm), scale 1:5.\n"));
    expectPage(a3, 297, 420);
    // Centred: the 1000 mm line is 200 mm long across the middle.
    const QImage page = pdf::rasterise(a3, 100);
    const Band across = band(page, int(pdf::rowAbove(a3, 420 / 2.0, 100)), true);
    EXPECT_NEAR(across.middle, pdf::pixels(297 / 2.0 - 100, 100), 1);

    const std::filesystem::path custom = kaldo.dir() / "custom.pdf";
    run = kaldo.runScript(kCorner, {"--plot", pdf::path(custom), "--paper", "300x500"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("500 x 300 mm landscape, scale 1:2.0408 (Fit).\n"));
    expectPage(custom, 500, 300);

    const std::filesystem::path window = kaldo.dir() / "window.pdf";
    run = kaldo.runScript(kCorner + "-PLOT\nANSI-B\nP\nW\n-100,-100\n100,100\n1=50\nC\nM\nNo\n0.7\n" + window.string()
                          + "\n");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out,
                HasSubstr("ANSI B portrait (279.4 x 431.8 mm), scale 1:50, monochrome.\n"));
    expectPage(window, 279.4, 431.8);
    // The window's middle (the origin) in the middle of the sheet; the
    // line along x runs 2 mm (100 units at 1=50) to the right, cut at the
    // window's edge.
    const double middle = pdf::rowAbove(window, 431.8 / 2, kDpi);
    const int top = int(middle) - 100;
    const QImage windowPage = pdf::rasterise(window, kDpi, QRect(0, top, int(pdf::pixels(279.4, kDpi)), 200));
    EXPECT_NEAR(darkRun(windowPage, int(middle) - top).second + 1, pdf::pixels(279.4 / 2 + 2, kDpi), 1);
    // Lineweights off: every line in the default 0.7 mm.
    const Band weighed = band(windowPage, int(pdf::pixels(279.4 / 2 + 1, kDpi)));
    EXPECT_NEAR(weighed.width, pdf::pixels(0.7, kDpi), 1);
    EXPECT_NEAR(weighed.middle, middle - top, 1);

    // Too large at 1:1: cut, and said so; a PDF that cannot be written
    // leaves a message and exit code 2.
    run = kaldo.runScript(kCorner, {"--plot", pdf::path(kaldo.dir() / "cut.pdf"), "--plot-scale", "1:1"});
    EXPECT_THAT(run.out, HasSubstr("Parts of the drawing lie beyond the printable area and are cut off.\n"));
    const std::filesystem::path nowhere = kaldo.dir() / "missing" / "out.pdf";
    run = kaldo.runScript(kCorner, {"--plot", pdf::path(nowhere)});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_THAT(run.err, HasSubstr("cannot write '" + nowhere.string() + "'"));
}

// Texts are text in the PDF; lengths in metres ($INSUNITS 6) are plotted
// at 1:100 as a tenth of their millimetres; the entity's and the layer's
// lineweights (group 370) come through in millimetres.
TEST(PlotSession, TextsAsTextUnitsAndLineweightsFromTheFile)
{
    KaldoProcess kaldo;
    const std::filesystem::path drawing = kaldo.writeFile(
        "metres.dxf",
        "  0\nSECTION\n  2\nHEADER\n  9\n$ACADVER\n  1\nAC1015\n  9\n$INSUNITS\n 70\n6\n  0\nENDSEC\n"
        "  0\nSECTION\n  2\nTABLES\n  0\nTABLE\n  2\nLAYER\n 70\n1\n"
        "  0\nLAYER\n  2\nWALLS\n 70\n0\n 62\n7\n  6\nCONTINUOUS\n370\n100\n  0\nENDTAB\n  0\nENDSEC\n"
        "  0\nSECTION\n  2\nENTITIES\n"
        "  0\nLINE\n  8\nWALLS\n 10\n0\n 20\n0\n 30\n0\n 11\n10\n 21\n0\n 31\n0\n"
        "  0\nLINE\n  8\n0\n370\n35\n 10\n0\n 20\n5\n 30\n0\n 11\n10\n 21\n5\n 31\n0\n"
        "  0\nTEXT\n  8\n0\n 10\n0\n 20\n6\n 30\n0\n 40\n0.5\n  1\nGround plan of the west wing\n"
        "  0\nENDSEC\n  0\nEOF\n");
    const std::filesystem::path file = kaldo.dir() / "metres.pdf";
    const KaldoRun run =
        kaldo.runScript("", {pdf::path(drawing), "--plot", pdf::path(file), "--plot-scale", "1:100"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(pdf::text(file), HasSubstr("Ground plan of the west wing"));
    // Down the middle of the sheet, from the foot up: the wall along
    // y = 0, 1 mm wide (its layer's lineweight), the other line 50 mm
    // (5 m) higher, 0.35 mm wide (its own); then the text.
    const int sheetWidth = int(pdf::pixels(297, kDpi));
    const QImage strip = pdf::rasterise(file, kDpi, QRect(sheetWidth / 2 - 10, 0, 20, int(pdf::pixels(210, kDpi))));
    const std::vector<Band> bands = bandsDown(strip, 10);
    ASSERT_GE(bands.size(), 3u);
    const Band& wall = bands[bands.size() - 1];
    const Band& other = bands[bands.size() - 2];
    EXPECT_NEAR(wall.width, pdf::pixels(1, kDpi), 1);
    EXPECT_NEAR(other.width, pdf::pixels(0.35, kDpi), 1);
    EXPECT_NEAR(wall.middle - other.middle, pdf::pixels(50, kDpi), 1);
    // Along the wall: 10 m, 100 mm, and its round ends half its width.
    const QImage page = pdf::rasterise(file, kDpi, QRect(0, int(wall.middle) - 10, sheetWidth, 20));
    const auto [first, last] = darkRun(page, 10);
    EXPECT_NEAR(last + 1 - first, pdf::pixels(100 + 1.0, kDpi), 2);
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

// PLOT opens the Plot dialog, which a script answers with dialog actions:
// the paper, the orientation and the scale chosen, Plot clicked, the
// file's name on the next line.
TEST(PlotSession, PlotDialogTakesScriptActions)
{
    KaldoProcess kaldo;
    const std::filesystem::path file = kaldo.dir() / "dialog.pdf";
    const KaldoRun run = kaldo.runScript(kCorner + "PLOT\nSELECT 7001 A3\nCLICK 7004\nTEXT 7008 1:10\nSHOW\nCLICK 1\n"
                                         + file.string() + "\n");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("Dialog 7000: Plot\n"));
    EXPECT_THAT(run.out, HasSubstr("  7016 text enabled \"Scale 1:10, the drawing 100 x 50 mm on the sheet.\""));
    EXPECT_THAT(run.out, HasSubstr("Dialog 7000 closed: OK\n"));
    EXPECT_THAT(run.out, HasSubstr("A3 portrait (297 x 420 mm), scale 1:10.\n"));
    expectPage(file, 297, 420);
}
