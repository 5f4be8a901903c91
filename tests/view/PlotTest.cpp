// Plots: papers, scales and offsets read as typed; the sheet placement
// (exact at scale, offset, centred, fitted, cut); lineweights of the
// entity, its layer or the default; texts kept as text where their
// outlines would lie, in blocks too; dashes measured on paper whatever the
// lineweight; a drawing plotted in pieces drawn whole, its PDF showing what
// the preview shows (read back with poppler).
#include "../e2e/PdfPages.h"
#include "ViewDrawing.h"

#include "kaldo/view/DrawingRenderer.h"
#include "kaldo/view/PdfExport.h"
#include "kaldo/view/PlotPainter.h"
#include "kaldo/view/PlotSettings.h"
#include "kaldo/view/SheetPlacement.h"
#include "kxdbunmodelled.h"

#include <QImage>
#include <QPainter>
#include <QTemporaryDir>

#include <cmath>

using namespace kaldo::view;

namespace {

constexpr double kTol = 1e-10;

PlotSettings settingsFor(const wchar_t* paper, const wchar_t* scale, Orientation orientation = Orientation::Landscape)
{
    PlotSettings settings;
    settings.paper = *parsePaper(paper);
    settings.scale = *parsePlotScale(scale);
    settings.orientation = orientation;
    return settings;
}

PlotSource sourceOf(Point2 low, Point2 high, double unitMillimetres = 1)
{
    PlotSource source;
    source.extents.add(low);
    source.extents.add(high);
    source.unitMillimetres = unitMillimetres;
    return source;
}

KxDbObjectId addLayer(KxDbDatabase& db, const wchar_t* name, std::vector<KxDbFileGroup> kept)
{
    auto* layer = new KxDbLayerTableRecord;
    layer->setName(name);
    layer->setKeptGroups(KxDbPackedGroups(kept));
    KxDbObjectPtr<KxDbLayerTable> table(db.layerTableId(), KxDb::kForWrite);
    KxDbObjectId id;
    table->add(layer, id);
    layer->close();
    return id;
}

}  // namespace

TEST(PlotSettings, PapersScalesAndOffsetsAsTyped)
{
    for (const wchar_t* a4 : {L"A4", L"a4", L" a4 "}) {
        const auto paper = parsePaper(a4);
        ASSERT_TRUE(paper) << a4;
        EXPECT_EQ(paper->name, L"A4");
        EXPECT_DOUBLE_EQ(paper->width, 210);
        EXPECT_DOUBLE_EQ(paper->height, 297);
    }
    for (const wchar_t* ansiB : {L"ANSI B", L"ansi-b", L"AnsiB"}) {
        const auto paper = parsePaper(ansiB);
        ASSERT_TRUE(paper) << ansiB;
        EXPECT_EQ(paper->name, L"ANSI B");
        EXPECT_NEAR(paper->width, 279.4, kTol);
        EXPECT_NEAR(paper->height, 431.8, kTol);
    }
    EXPECT_EQ(parsePaper(L"A0")->height, 1189);
    EXPECT_NEAR(parsePaper(L"ANSI-E")->height, 1117.6, kTol);
    // Custom sizes: the shorter side first, whichever was typed first.
    for (const wchar_t* custom : {L"500x300", L"500 X 300", L"300,500", L"300 x 500"}) {
        const auto paper = parsePaper(custom);
        ASSERT_TRUE(paper) << custom;
        EXPECT_TRUE(paper->name.empty());
        EXPECT_DOUBLE_EQ(paper->width, 300);
        EXPECT_DOUBLE_EQ(paper->height, 500);
        EXPECT_EQ(paperText(*paper), L"300 x 500");
    }
    for (const wchar_t* bad : {L"A5", L"", L"x", L"0x100", L"100x", L"-5x100", L"100x20000", L"nanx100", L"1x2x3"})
        EXPECT_FALSE(parsePaper(bad)) << bad;

    const auto hundred = parsePlotScale(L"1:100");
    ASSERT_TRUE(hundred);
    EXPECT_FALSE(hundred->fit);
    EXPECT_DOUBLE_EQ(hundred->millimetresPerUnit(1), 0.01);
    EXPECT_DOUBLE_EQ(hundred->millimetresPerUnit(1000), 10);  // metres: 1 m is 10 mm
    const auto units = parsePlotScale(L"1=50");
    ASSERT_TRUE(units);
    EXPECT_DOUBLE_EQ(units->millimetresPerUnit(1000), 0.02);  // the unit does not count
    EXPECT_EQ(plotScaleText(*units), L"1=50");
    EXPECT_EQ(plotScaleText(*parsePlotScale(L"2 : 1")), L"2:1");
    EXPECT_TRUE(parsePlotScale(L"fit")->fit);
    EXPECT_EQ(plotScaleText(*parsePlotScale(L"FIT")), L"Fit");
    for (const wchar_t* bad : {L"100", L"1:0", L"0:1", L"1:-2", L"a:b", L"1:2:3", L"1:inf", L""})
        EXPECT_FALSE(parsePlotScale(bad)) << bad;

    EXPECT_DOUBLE_EQ(unitMillimetres(0), 1);
    EXPECT_DOUBLE_EQ(unitMillimetres(1), 25.4);
    EXPECT_DOUBLE_EQ(unitMillimetres(4), 1);
    EXPECT_DOUBLE_EQ(unitMillimetres(6), 1000);
    EXPECT_DOUBLE_EQ(unitMillimetres(14), 100);
    EXPECT_DOUBLE_EQ(unitMillimetres(99), 1);

    const auto offset = parseOffset(L" 20 , -3.5");
    ASSERT_TRUE(offset);
    EXPECT_DOUBLE_EQ(offset->x, 20);
    EXPECT_DOUBLE_EQ(offset->y, -3.5);
    EXPECT_EQ(offsetText(*offset), L"20,-3.5");
    for (const wchar_t* bad : {L"20", L"Center", L"1,2,3", L"x,1", L"inf,0"})
        EXPECT_FALSE(parseOffset(bad)) << bad;
}

// Where a scale, an offset, centring, fitting and metres put the drawing
// on the sheet, and what is cut: PlotSession measures it in the PDF.
TEST(SheetPlacement, ScaleTextsAndTheAreaPlotted)
{
    PlotSettings fit = settingsFor(L"A3", L"Fit", Orientation::Portrait);
    EXPECT_EQ(placedScaleText(placeOnSheet(fit, sourceOf({0, 0}, {1000, 100})), 1), L"1:3.4843");
    fit.scale = *parsePlotScale(L"5:1");
    EXPECT_EQ(placedScaleText(placeOnSheet(fit, sourceOf({0, 0}, {10, 10})), 1), L"5:1");
    EXPECT_EQ(placedScaleText(placeOnSheet(settingsFor(L"A4", L"1:100"), sourceOf({0, 0}, {10, 5}, 1000)), 1000),
              L"1:100");

    // The area: Window's corners, the view shown, or nothing drawn (a
    // point at the origin, at full size when fitted).
    PlotSettings settings = settingsFor(L"A4", L"1:1");
    PlotSource source = sourceOf({0, 0}, {10, 10});
    source.display.add({-50, -50});
    source.display.add({50, 50});
    settings.area = PlotArea::Display;
    EXPECT_DOUBLE_EQ(plotArea(settings, source).minX, -50);
    settings.area = PlotArea::Window;
    settings.window.add({2, 3});
    settings.window.add({4, 5});
    EXPECT_DOUBLE_EQ(plotArea(settings, source).maxY, 5);
    const SheetPlacement empty = placeOnSheet(settingsFor(L"A4", L"Fit"), PlotSource{});
    EXPECT_DOUBLE_EQ(empty.millimetresPerUnit, 1);
    EXPECT_NEAR(empty.toPaper({0, 0}).x, 148.5, kTol);
}

TEST(PlotRender, LineweightsOfEntityLayerOrDefault)
{
    ViewDrawing d;
    const KxDbObjectId thick = addLayer(d.db, L"THICK", {{370, 0, "50"}});
    const KxDbObjectId plain = addLayer(d.db, L"PLAIN", {});
    // Each line's lineweight as it is drawn: on THICK by layer, its own
    // from the file, its own set by a program, by block (the default),
    // and by layer on a layer without one (the default).
    const auto addLine = [&](double y, KxDbObjectId layer, std::vector<KxDbFileGroup> kept, int weight) {
        auto* line = new KxDbLine({0, y, 0}, {10, y, 0});
        line->setDatabaseDefaults(&d.db);
        line->setLayer(layer);
        line->setKeptGroups(KxDbPackedGroups(kept));
        line->setLineWeight(weight);
        d.db.addToCurrentSpace(line);
        line->close();
    };
    addLine(0, thick, {}, KxDb::kLnWtByLayer);
    addLine(1, thick, {{370, 1, " 13"}}, KxDb::kLnWtByLayer);
    addLine(2, plain, {}, 30);
    addLine(3, thick, {{370, 1, "-2"}}, KxDb::kLnWtByLayer);
    addLine(4, plain, {}, KxDb::kLnWtByLayer);
    addRecord(d.db, "POINT", {{8, 0, "THICK"}, {10, 0, "5"}, {20, 0, "5"}, {370, 0, "200"}});
    {
        const KxDbObjectId standard = [&] {
            KxDbObjectPtr<KxDbDictionary> styles(d.db.mlineStyleDictionaryId(), KxDb::kForRead);
            KxDbObjectId id;
            styles->getAt(L"STANDARD", id);
            return id;
        }();
        auto mline = d.addMline(standard, {{0, 10, 0}, {10, 10, 0}});
        mline->setLayer(thick);
    }
    const Scene scene = d.render();
    std::vector<int> weights;
    for (const Polyline& polyline : scene.polylines())
        weights.push_back(scene.pens()[std::size_t(polyline.pen)].lineWeight);
    ASSERT_GE(weights.size(), 7u);
    EXPECT_EQ(std::vector<int>(weights.begin(), weights.begin() + 6),
              (std::vector<int>{50, 13, 30, kDefaultLineWeight, kDefaultLineWeight, 200}));
    for (std::size_t i = 6; i < weights.size(); ++i)
        EXPECT_EQ(weights[i], 50) << "multiline polyline " << i;
}

TEST(PlotRender, TextsKeptAsTextWhereTheirOutlinesLie)
{
    ensureFonts();
    // Drawn as outlines and kept as text: the kept lines' boxes hold the
    // outlines drawn for them and reach no further from them than a line's
    // height (its advance and descent), and no outline is drawn.
    const auto compare = [](ViewDrawing& d, const std::vector<std::string>& lines, double height) {
        const Scene outlines = renderDrawing(d.db);
        const Scene texts = renderDrawing(d.db, nullptr, PointBudget::kPicture, {}, true);
        EXPECT_TRUE(texts.polylines().empty());
        std::vector<std::string> kept;
        texts.visitTexts([&](const TextLine& text) { kept.push_back(text.text); });
        EXPECT_EQ(kept, lines);
        const Bounds box = texts.bounds();
        const Bounds letters = outlines.bounds();
        ASSERT_FALSE(letters.empty);
        const double slack = height * 0.05;
        EXPECT_LE(box.minX, letters.minX + slack) << lines[0];
        EXPECT_GE(box.maxX, letters.maxX - slack) << lines[0];
        EXPECT_LE(box.minY, letters.minY + slack) << lines[0];
        EXPECT_GE(box.maxY, letters.maxY - slack) << lines[0];
        EXPECT_LT(letters.minX - box.minX + box.maxX - letters.maxX, 2 * height) << lines[0];
        EXPECT_LT(letters.minY - box.minY + box.maxY - letters.maxY, 2 * height) << lines[0];
    };
    {
        ViewDrawing d;
        addRecord(d.db, "TEXT",
                  {{10, 0, "3"}, {20, 0, "4"}, {40, 0, "2.5"}, {1, 0, "Plan A"}, {50, 0, "30"}, {41, 0, "0.8"},
                   {72, 0, "1"}, {11, 0, "3"}, {21, 0, "4"}});
        compare(d, {"Plan A"}, 2.5);
    }
    {
        ViewDrawing d;
        addRecord(d.db, "MTEXT",
                  {{10, 0, "40"}, {20, 0, "0"}, {40, 0, "1.5"}, {71, 0, "5"}, {1, 0, "First\\PSecond line"}});
        compare(d, {"First", "Second line"}, 1.5);
    }
    {
        // A block holding a text, inserted twice the size and turned a
        // quarter.
        ViewDrawing d;
        auto* block = new KxDbBlockTableRecord;
        block->setName(L"TAG");
        KxDbObjectId tag;
        KxDbBlockTable* table = nullptr;
        d.db.getBlockTable(table, KxDb::kForWrite);
        table->add(block, tag);
        table->close();
        block->close();
        addRecord(d.db, "TEXT", {{10, 0, "1"}, {20, 0, "0"}, {40, 0, "1"}, {1, 0, "T1"}}, tag);
        addRecord(d.db, "INSERT",
                  {{2, 0, "TAG"}, {10, 0, "-20"}, {20, 0, "10"}, {41, 0, "2"}, {42, 0, "2"}, {50, 0, "90"}});
        compare(d, {"T1"}, 2);
    }
}

TEST(PlotPainter, DashesMeasuredOnPaperWhateverTheLineweight)
{
    // A line of dashes 10 mm long with gaps of 10 mm, plotted at 1:1 on a
    // sheet of 10 pixels to the millimetre: runs of 100 pixels, for a thin
    // line and for a line 1 mm wide alike; the thick one covers 10 rows.
    for (const int weight : {0, 100}) {
        Scene scene;
        const int pattern = scene.addPattern({10, -10});
        scene.addLine({0, 0}, {80, 0}, scene.pen({DrawColor::fixed(0xFF0000), pattern, weight}));
        PlotSettings settings = settingsFor(L"100x50", L"1:1");
        settings.centred = false;
        settings.offset = {5, 14.95};
        const SheetPlacement placement = placeOnSheet(settings, sourceOf({0, 0}, {80, 0}));
        QImage image(1000, 500, QImage::Format_RGB32);
        image.fill(Qt::white);
        {
            QPainter painter(&image);
            paintPlot(painter, scene, placement, QRectF(0, 0, 1000, 500), settings.look);
        }
        // The line runs along the middle of row 300 (19.95 mm above the
        // sheet's foot), from 100 px (10 mm) on.
        const auto dark = [&](int x, int y) { return qGreen(image.pixel(x, y)) < 128; };
        std::vector<int> starts;
        for (int x = 1; x < 1000; ++x)
            if (dark(x, 300) && !dark(x - 1, 300))
                starts.push_back(x);
        ASSERT_EQ(starts.size(), 4u) << "weight " << weight;
        for (std::size_t i = 0; i < starts.size(); ++i)
            EXPECT_NEAR(starts[i], 100 + 200 * int(i), 1) << "weight " << weight;
        double rows = 0;
        for (int y = 280; y < 320; ++y)
            rows += (255 - qGreen(image.pixel(150, y))) / 255.0;
        EXPECT_NEAR(rows, weight == 0 ? 1 : 10, 0.5) << "weight " << weight;
        EXPECT_EQ(image.pixel(150, 300), qRgb(0xFF, 0, 0)) << "in colour";
    }
}

TEST(PlotRender, PiecesDrawEveryEntityOnceAndKeepOldPolylinesWhole)
{
    ViewDrawing d;
    addRecord(d.db, "POINT", {{10, 0, "0"}, {20, 0, "0"}});
    addRecord(d.db, "POLYLINE", {{66, 0, "1"}, {70, 0, "0"}});
    for (const char* x : {"1", "2", "3"})
        addRecord(d.db, "VERTEX", {{10, 0, x}, {20, 0, x}});
    addRecord(d.db, "SEQEND", {});
    addRecord(d.db, "POINT", {{10, 0, "5"}, {20, 0, "0"}});
    const Scene whole = renderDrawing(d.db);
    ASSERT_EQ(whole.polylines().size(), 3u);
    // One entity a piece: the polyline's records stay in one piece.
    std::vector<std::size_t> pointsOfPolylines;
    int pieces = 0;
    renderDrawingInPieces(d.db, 1, [&](const Scene& piece) {
        ++pieces;
        for (const Polyline& polyline : piece.polylines())
            pointsOfPolylines.push_back(polyline.count);
    });
    EXPECT_EQ(pieces, 3);
    EXPECT_EQ(pointsOfPolylines, (std::vector<std::size_t>{2, 3, 2}));
}

TEST(PdfExport, PiecesShowWhatThePreviewShowsFillsUnderAllLines)
{
    // A thick red line with round ends, a dashed blue one and a circle in
    // one piece; a grey square over the red line in the next. The sheet is
    // 360 x 180 points, 10 pixels to the millimetre at 254 dots per inch.
    Scene lines;
    lines.addLine({10, 25}, {90, 25}, lines.pen({DrawColor::fixed(0xFF0000), 0, 100}));
    const int dashes = lines.addPattern({10, -5});
    lines.addLine({10, 10}, {90, 10}, lines.pen({DrawColor::fixed(0x0000FF), dashes, 50}));
    lines.addArc({{20, 40}, 5, 0, 7, lines.pen({DrawColor{}, 0, 35})});
    Scene square;
    const auto addSquare = [](Scene& scene) {
        scene.beginPolygon();
        for (const Point2& corner : {Point2{40, 15}, Point2{60, 15}, Point2{60, 35}, Point2{40, 35}})
            scene.addPoint(corner);
        scene.endPolygon(DrawColor::fixed(0x808080));
    };
    addSquare(square);
    Scene both = lines;
    addSquare(both);

    PlotSettings settings = settingsFor(L"127x63.5", L"1:1");
    const SheetPlacement placement = placeOnSheet(settings, sourceOf({0, 0}, {100, 50}));
    QImage preview(1270, 635, QImage::Format_RGB32);
    preview.fill(Qt::white);
    {
        QPainter painter(&preview);
        paintPlot(painter, both, placement, QRectF(0, 0, 1270, 635), settings.look);
    }
    QTemporaryDir dir;
    const std::filesystem::path file = dir.filePath("pieces.pdf").toStdString();
    const ScenePieces pieces = [&](const std::function<void(const Scene&)>& paint) {
        paint(lines);
        paint(square);
    };
    ASSERT_EQ(writePdf(pieces, placement, settings.look, file, L"pieces"), "");
    const QImage page = pdf::rasterise(file, 254).convertToFormat(QImage::Format_RGB32);
    ASSERT_EQ(page.size(), preview.size());

    // Pixels inside areas of one colour in the preview (not on edges,
    // which the two rasterisers shade differently) that the page shows
    // nowhere within a pixel.
    const auto near = [](QRgb a, QRgb b) {
        return std::max({std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)), std::abs(qBlue(a) - qBlue(b))})
            <= 64;
    };
    const auto inside = [&](const QImage& image, int x, int y, QRgb color) {
        for (int dy = -1; dy <= 1; ++dy)
            for (int dx = -1; dx <= 1; ++dx)
                if (image.pixel(x + dx, y + dy) != color)
                    return false;
        return true;
    };
    int dark = 0, differing = 0;
    for (int y = 1; y + 1 < page.height(); ++y)
        for (int x = 1; x + 1 < page.width(); ++x) {
            const QRgb shown = preview.pixel(x, y);
            if (!inside(preview, x, y, shown))
                continue;
            dark += qGray(shown) < 200 ? 1 : 0;
            bool found = false;
            for (int dy = -1; dy <= 1 && !found; ++dy)
                for (int dx = -1; dx <= 1 && !found; ++dx)
                    found = near(shown, page.pixel(x + dx, y + dy));
            differing += found ? 0 : 1;
        }
    EXPECT_GT(dark, 20000);
    EXPECT_LT(differing, 20) << "of " << dark;
    // The red line runs over the square, painted in the piece before it.
    const Point2 middle = placement.toPaper({50, 25});
    EXPECT_EQ(page.pixel(int(middle.x * 10), int(635 - middle.y * 10)), qRgb(0xFF, 0, 0));
}
