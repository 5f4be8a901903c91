// Pictures written from drawings: the SVG is well-formed XML holding the
// expected elements, the PNG has the size asked for and ink where the
// lines are, and the same pixels however it is painted; other kinds of
// picture are refused.
#include "ViewDrawing.h"

#include <gmock/gmock.h>

#include <QFile>
#include <QImage>
#include <QTemporaryDir>
#include <QXmlStreamReader>

#include <map>

#include "kaldo/view/LineLetters.h"
#include "kaldo/view/PictureExport.h"
#include "kaldo/view/PngEncoding.h"
#include "kaldo/view/PngExport.h"
#include "kaldo/view/SceneIndex.h"
#include "kaldo/view/SvgExport.h"

using namespace kaldo::view;
using ::testing::HasSubstr;
using ::testing::Not;

namespace {

// A red line from (0,0) to (100,0), a blue one up to (100,50), and a
// filled multiline with round caps and a dashed element above them.
void buildSample(ViewDrawing& d)
{
    for (const auto& [from, to, color] : {std::tuple{KxGePoint3d(0, 0), KxGePoint3d(100, 0), 1},
                                          std::tuple{KxGePoint3d(100, 0), KxGePoint3d(100, 50), 5}}) {
        auto* line = new KxDbLine(from, to);
        line->setDatabaseDefaults(&d.db);
        line->setColorIndex(color);
        d.db.addToCurrentSpace(line);
        line->close();
    }
    const KxDbObjectId dashed = d.addLinetype(L"DASHED", {2, -1});
    const KxDbObjectId style = d.addStyle(L"ROUND", {{2, indexColor(3), dashed}, {-2, indexColor(7)}},
                                          [](KxDbMlineStyle& s) {
                                              s.setFilled(true);
                                              s.setFillColor(indexColor(8));
                                              s.setStartRoundCap(true);
                                              s.setEndRoundCap(true);
                                          });
    auto mline = d.addMline(style, {{10, 30}, {90, 30}});
}

// Element names of an XML document and how often each occurs; an empty
// map when the document is not well-formed.
std::map<QString, int> elementCounts(const QByteArray& xml, std::map<QString, QStringList>& dashArrays)
{
    std::map<QString, int> counts;
    QXmlStreamReader reader(xml);
    while (!reader.atEnd()) {
        if (reader.readNext() == QXmlStreamReader::StartElement) {
            ++counts[reader.name().toString()];
            if (reader.attributes().hasAttribute("stroke-dasharray"))
                dashArrays[reader.attributes().value("stroke").toString()].append(
                    reader.attributes().value("stroke-dasharray").toString());
        }
    }
    return reader.hasError() ? std::map<QString, int>{} : counts;
}

bool isInk(QRgb pixel, QRgb background)
{
    return std::abs(qRed(pixel) - qRed(background)) + std::abs(qGreen(pixel) - qGreen(background))
               + std::abs(qBlue(pixel) - qBlue(background))
           > 120;
}

}  // namespace

// The SVG holds every primitive, the PNG has the size asked for and ink
// where the lines are; other kinds are refused (a folder that is not there,
// and a failed write that leaves the old picture: ExportSession).
TEST(Export, SvgAndPngOfTheSampleOtherKindsRefused)
{
    ViewDrawing d;
    buildSample(d);
    QTemporaryDir dir;
    EXPECT_THAT(exportPicture(d.db, dir.filePath("out.jpg").toStdString(), {}), HasSubstr(".svg or a .png"));
    EXPECT_FALSE(QFile::exists(dir.filePath("out.jpg")));
    const std::filesystem::path file = dir.filePath("sample.svg").toStdString();
    ASSERT_EQ(exportPicture(d.db, file, {800, Background::White}), "");
    QFile in(QString::fromStdString(file.string()));
    ASSERT_TRUE(in.open(QIODevice::ReadOnly));
    const QByteArray xml = in.readAll();

    std::map<QString, QStringList> dashes;
    const std::map<QString, int> counts = elementCounts(xml, dashes);
    ASSERT_FALSE(counts.empty()) << "not well-formed";
    EXPECT_EQ(counts.at("svg"), 1);
    EXPECT_EQ(counts.at("rect"), 1);
    EXPECT_EQ(counts.at("polyline"), 4);  // two lines, two elements
    EXPECT_EQ(counts.at("path"), 5);      // one fill, four cap arcs
    // The picture is as wide as asked, its height follows the drawing.
    EXPECT_THAT(xml.toStdString(), HasSubstr("width=\"800\" height=\"420\""));
    EXPECT_THAT(xml.toStdString(), HasSubstr("fill=\"#808080\""));
    // The dashed element: 2 and 1 units at 7.6 pixels a unit.
    ASSERT_EQ(dashes.count("#00ff00"), 1u);
    EXPECT_EQ(dashes.at("#00ff00"), QStringList{"15.20 7.60"});
    // Colour 7 is black on white.
    EXPECT_THAT(xml.toStdString(), HasSubstr("stroke=\"#000000\""));

    ASSERT_EQ(exportPicture(d.db, file, {800, Background::Dark}), "");
    in.close();
    ASSERT_TRUE(in.open(QIODevice::ReadOnly));
    const std::string darkSvg = in.readAll().toStdString();
    EXPECT_THAT(darkSvg, HasSubstr("stroke=\"#ffffff\""));
    EXPECT_THAT(darkSvg, Not(HasSubstr("stroke=\"#000000\"")));

    const std::filesystem::path png = dir.filePath("sample.png").toStdString();
    ASSERT_EQ(exportPicture(d.db, png, {400, Background::White}), "");
    const QImage image(QString::fromStdString(png.string()));
    ASSERT_FALSE(image.isNull());
    EXPECT_EQ(image.width(), 400);
    EXPECT_EQ(image.height(), 210);
    const QRgb white = qRgb(255, 255, 255);
    // Margin 10 px, 3.8 px a unit: the red line runs along y = 200, the
    // blue one along x = 390; the drawing's corners stay blank.
    EXPECT_EQ(image.pixel(2, 2), white);
    EXPECT_EQ(image.pixel(397, 207), white);
    for (int x : {50, 200, 350}) {
        const QRgb p = image.pixel(x, 200);
        EXPECT_TRUE(isInk(p, white)) << x;
        EXPECT_GT(qRed(p), qBlue(p) + 100) << x;
    }
    EXPECT_GT(qBlue(image.pixel(390, 100)), qRed(image.pixel(390, 100)) + 100);
    // The fill lies between the multiline's elements (y 28..32 units).
    EXPECT_EQ(image.pixel(200, int(200 - 30 * 3.8)), qRgb(0x80, 0x80, 0x80));
    EXPECT_EQ(image.pixel(200, 120), white);

    const QImage dark = paintScene(d.render(), {400, Background::Dark});
    const QRgb background = dark.pixel(2, 2);
    EXPECT_NE(background, white);
    // The lower element, colour 7, is white on the dark background.
    EXPECT_TRUE(isInk(dark.pixel(200, int(200 - 28 * 3.8)), background));
    EXPECT_GT(qGreen(dark.pixel(200, int(200 - 28 * 3.8))), 200);
}

TEST(Export, CoarsePaintingDrawsAMultilineNarrowerThanAPixelByItsLastPen)
{
    // Two element lines 0.2 apart, grouped as one multiline; and the red
    // one alone (red is painted after blue).
    Scene both;
    Scene redOnly;
    const auto element = [](Scene& scene, double offset, std::uint32_t rgb) {
        scene.beginPolyline(scene.pen({DrawColor::fixed(rgb), 0}));
        for (const Point2& p : {Point2{0, offset}, Point2{40, 10 + offset}, Point2{80, offset}})
            scene.addPoint(p);
        scene.endPolyline();
    };
    element(both, 0, 0xFF0000);
    element(both, 0.2, 0x0000FF);
    both.groupPolylines(0, 0.2);
    element(redOnly, 0, 0xFF0000);
    const auto painted = [](const Scene& scene, double scale, bool coarse) {
        QImage image(100, 60, QImage::Format_RGB32);
        image.fill(Qt::white);
        paintScene(image, scene, PictureFrame(100, 60, scale, {40, 9}), Background::White, 1, {nullptr, coarse});
        return image;
    };
    // A fifth of a pixel wide: the blue element is left out of a coarse
    // picture only.
    EXPECT_TRUE(painted(both, 1, true) == painted(redOnly, 1, true));
    EXPECT_FALSE(painted(both, 1, false) == painted(redOnly, 1, false));
    // Two pixels wide: both are drawn.
    EXPECT_FALSE(painted(both, 10, true) == painted(redOnly, 10, true));
}

TEST(Export, TextIsLaidOutWhereItIsDrawnLargeAndFillsItsBoxExactly)
{
    ensureFonts();
    ViewDrawing d;
    // Kerned pairs, a rotated and centred line, letters of other scripts.
    addRecord(d.db, "TEXT", {{10, 0, "0"}, {20, 0, "0"}, {40, 0, "10"}, {1, 0, "Wavy AV To"}});
    addRecord(d.db, "TEXT",
              {{10, 0, "0"}, {20, 0, "40"}, {40, 0, "8"}, {50, 0, "30"}, {72, 0, "1"}, {11, 0, "0"}, {21, 0, "40"},
               {1, 0, "Plan 12"}});
    addRecord(d.db, "TEXT", {{10, 0, "0"}, {20, 0, "-40"}, {40, 0, "6"}, {1, 0, "Ελλάδα и мир"}});
    Scene scene = d.render();
    ASSERT_EQ(scene.instances().size(), 3u);
    // Its box, known before the line is laid out, is the extent of its
    // letters as they are laid out (within a five-thousandth of the text's
    // height, where the font's kerning and Qt's layout part).
    for (const Instance& instance : scene.instances()) {
        Bounds letters;
        scene.visitPolygons(instance, [&](const DrawColor&, std::span<const Point2> points) {
            for (const Point2& p : points)
                letters.add(p);
        });
        ASSERT_FALSE(letters.empty);
        EXPECT_NEAR(instance.box.minX, letters.minX, 2e-3);
        EXPECT_NEAR(instance.box.minY, letters.minY, 2e-3);
        EXPECT_NEAR(instance.box.maxX, letters.maxX, 2e-3);
        EXPECT_NEAR(instance.box.maxY, letters.maxY, 2e-3);
    }
    // A coarse picture of the whole drawing, a few pixels high, lays out no
    // line; one showing the first line large lays out that line only.
    Scene fresh = d.render();
    const auto paint = [&](const PictureFrame& frame) {
        QImage image(frame.width(), frame.height(), QImage::Format_RGB32);
        image.fill(Qt::white);
        paintScene(image, fresh, frame, Background::White, 2, {nullptr, true});
        return image;
    };
    const QImage small = paint(PictureFrame(60, 40, 0.3, {0, 0}));
    EXPECT_EQ(fresh.lineLetters().laidOutLines(), 0u);
    const QImage large = paint(PictureFrame(400, 100, 5, {30, 3}));
    EXPECT_EQ(fresh.lineLetters().laidOutLines(), 1u);
    long ink = 0;
    for (int y = 0; y < large.height(); ++y)
        for (int x = 0; x < large.width(); ++x)
            ink += qGray(large.pixel(x, y)) < 128;
    EXPECT_GT(ink, 2000);
}

TEST(Export, SvgArcsKeepTheirTurn)
{
    // A quarter circle counter-clockwise from (10,0) to (0,10) and a three
    // quarter one clockwise: with y downwards in pixels, counter-clockwise
    // has the sweep flag 0; more than half a turn sets the large-arc flag.
    Scene scene;
    const int pen = scene.pen({DrawColor{}, 0});
    scene.addArc({{0, 0}, 10, 0, std::numbers::pi / 2, pen});
    scene.addArc({{0, 0}, 10, 0, -3 * std::numbers::pi / 2, pen});
    const std::string svg = svgDocument(scene, {400, Background::White});
    // 380 px for 20 units after margins of 10: the centre is at (200,200).
    EXPECT_THAT(svg, HasSubstr("<path d=\"M390.00,200.00 A190.00,190.00 0 0,0 200.00,10.00\"/>"));
    EXPECT_THAT(svg, HasSubstr("<path d=\"M390.00,200.00 A190.00,190.00 0 1,1 200.00,10.00\"/>"));
}

TEST(Export, PngIsReadBackAsPainted)
{
    // Pictures of every row count around the one where encoding splits in
    // two, and one of noise that deflates poorly (output buffers fill up):
    // Qt's reader (libpng) gives back the painted pixels.
    ViewDrawing d;
    buildSample(d);
    const QImage painted = paintScene(d.render(), {333, Background::Dark});
    std::vector<QImage> images;
    for (const int rows : {1, 2, 63, 64, 65, painted.height()})
        images.push_back(painted.copy(0, 0, painted.width(), rows));
    QImage noise(517, 301, QImage::Format_RGB32);
    for (int y = 0; y < noise.height(); ++y)
        for (int x = 0; x < noise.width(); ++x)
            noise.setPixel(x, y, qRgb((x * 37 + y * 11) % 251, (x * y) % 253, (x ^ y) & 0xFF));
    images.push_back(noise);
    for (const QImage& image : images) {
        const QByteArray png = encodePng(image);
        const QImage read = QImage::fromData(png, "png");
        ASSERT_FALSE(read.isNull()) << image.height();
        EXPECT_TRUE(read.convertToFormat(QImage::Format_RGB32) == image) << image.height();
    }
}

TEST(Export, PngIsTheSameInAnyNumberOfBands)
{
    // Lines at shallow and steep angles crossing the rows where bands meet,
    // dashed polylines running on across them, arcs and circles, fills of
    // two colours, a closed outline, a polyline with a point that is not a
    // number, the sample drawing's multiline with its caps and fill, and
    // lines and circles smaller than a pixel (dots) strewn over it.
    ViewDrawing d;
    buildSample(d);
    Scene scene = d.render();
    const int red = scene.pen({DrawColor::fixed(0xFF0000), 0});
    const int dashed = scene.pen({DrawColor::fixed(0x0000FF), scene.addPattern({3, -1.5, 0, -1.5})});
    for (int i = 0; i < 40; ++i) {
        const double x = i * 2.6;
        scene.addLine({x, -5}, {x + 40, 60 - i * 0.37}, i % 3 ? red : dashed);
        scene.addLine({x, 12.5 + i * 0.61}, {x + 0.4, 31 - i * 0.2}, red);
    }
    scene.beginPolyline(dashed);
    for (int i = 0; i <= 30; ++i)
        scene.addPoint({i * 3.3, 25 + 20 * std::sin(i * 0.7)});
    scene.endPolyline();
    scene.beginPolyline(red);
    for (const Point2& p : {Point2{70, 5}, Point2{95, 40}, Point2{60, 45}})
        scene.addPoint(p);
    scene.endPolyline(true);
    scene.beginPolyline(red);
    for (const Point2& p : {Point2{5, 5}, Point2{std::nan(""), 20}, Point2{30, 50}})
        scene.addPoint(p);
    scene.endPolyline();
    scene.addArc({{50, 25}, 18, 0.3, 4.0, dashed});
    scene.addArc({{20, 33}, 6, 0, 2 * std::numbers::pi, red});
    scene.addArc({{80, 20}, 9, 2.0, -2.5, red});
    for (const auto& [x, color] : {std::pair{10.0, 0x00A000u}, std::pair{35.0, 0xC0C000u}, std::pair{60.0, 0x00A000u}}) {
        scene.beginPolygon();
        for (const Point2& p : {Point2{x, 8}, Point2{x + 20, 14}, Point2{x + 12, 47}, Point2{x - 3, 30}})
            scene.addPoint(p);
        scene.endPolygon(DrawColor::fixed(color));
    }
    for (int i = 0; i < 600; ++i) {
        const Point2 at{std::fmod(i * 7.31, 100.0), std::fmod(i * 3.17, 50.0)};
        if (i % 3)
            scene.addLine(at, {at.x + 0.05, at.y + 0.02}, i % 2 ? red : dashed);
        else
            scene.addArc({at, 0.04, 0, 2 * std::numbers::pi, red});
    }
    for (const Background background : {Background::White, Background::Dark}) {
        const QImage whole = paintScene(scene, {333, background}, 1);
        for (const int bands : {2, 3, 7, 1000})
            EXPECT_TRUE(paintScene(scene, {333, background}, bands) == whole) << bands;
        // Written as PNG, each band deflating the rows it painted: read
        // back, the same pixels.
        for (const int bands : {1, 2, 3, 1000}) {
            const QImage read = QImage::fromData(paintPng(scene, {333, background}, bands), "png");
            EXPECT_TRUE(read.convertToFormat(QImage::Format_RGB32) == whole) << bands;
        }
    }

    // The scene's index chooses the items to look at: the same picture,
    // whole or zoomed in on a part with items beyond every edge. Zoomed in,
    // every line is longer than a pixel, and coarse painting changes nothing.
    const SceneIndex index(scene);
    const PictureFrame whole(scene.bounds(), 333);
    const PictureFrame zoomed(150, 110, whole.scale() * 3, {45, 27});
    const auto painted = [&](const PictureFrame& frame, const PaintDetail& detail) {
        QImage image(frame.width(), frame.height(), QImage::Format_RGB32);
        image.fill(Qt::white);
        paintScene(image, scene, frame, Background::White, 3, detail);
        return image;
    };
    // Painting an image sets its dots directly: the pixels the painter sets
    // for them, also where they round to an edge of the image.
    const auto paintedByPainter = [&](const PictureFrame& frame) {
        QImage image(frame.width(), frame.height(), QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setClipRect(image.rect());
        paintScene(painter, scene, frame, Background::White, 0, frame.height());
        return image;
    };
    for (const PictureFrame& frame : {whole, zoomed}) {
        EXPECT_TRUE(painted(frame, {&index}) == painted(frame, {})) << frame.width();
        EXPECT_TRUE(painted(frame, {}) == paintedByPainter(frame)) << frame.width();
    }
    EXPECT_TRUE(painted(zoomed, {&index, true}) == painted(zoomed, {}));
}
