// Drawings made to break the renderer (tests/data/render) are drawn with
// bounded work: a block that reaches itself once, a fan of nested inserts
// within the point budget and as boxes beyond it, curves with a bounded
// number of points, hatches as far as their groups go. Memory that runs
// out while a picture is painted in bands or exported is reported where
// the picture is made, never thrown out of a thread.
#include "../dxf/AllocationMeter.h"
#include "PlacedScene.h"
#include "TreePaths.h"
#include "ViewDrawing.h"

#include "kaldo/dxf/DxfFile.h"
#include "kaldo/view/PictureExport.h"
#include "kaldo/view/PngExport.h"
#include "kaldo/view/PointBudget.h"

#include <gmock/gmock.h>

#include <QTemporaryDir>

#include <new>
#include <set>
#include <string>

using namespace kaldo::view;
using ::testing::HasSubstr;

namespace {

Scene renderHostile(const char* name, RenderNotes& notes)
{
    const kaldo::dxf::DxfDrawing drawing =
        kaldo::dxf::readDxfFile(sourceDir() / "tests/data/render" / name);
    return placedScene(renderDrawing(*drawing.database, &notes));
}

}  // namespace

TEST(BoundedRender, BlocksThatReachThemselvesOrMultiplyAreDrawnOnceOrAsBoxes)
{
    // LOOP holds a circle, a line and twelve inserts of itself; inserted
    // twice, it is drawn twice, without the copies inside.
    RenderNotes notes;
    Scene scene = renderHostile("block-inserts-itself.dxf", notes);
    EXPECT_EQ(notes.selfReachingBlocks, std::set<std::string>{"LOOP"});
    EXPECT_FALSE(notes.coarse);
    EXPECT_EQ(scene.polylines().size(), 4u);
    const Bounds loops = scene.bounds();
    EXPECT_NEAR(loops.minX, -10, 1e-9);
    EXPECT_NEAR(loops.maxX, 120, 1e-9);

    // FAN1 .. FAN8, each holding eight inserts of the next, FAN8 a line;
    // eight FAN1 in model space would be 2^25 points. The budget pays for
    // copies until it runs out; the rest are the boxes of their blocks,
    // which keep the picture's extents.
    notes = {};
    scene = renderHostile("nested-insert-fan.dxf", notes);
    EXPECT_TRUE(notes.coarse);
    EXPECT_TRUE(notes.selfReachingBlocks.empty());
    EXPECT_LE(scene.points().size(), PointBudget::kPicture);
    const Bounds fan = scene.bounds();
    EXPECT_NEAR(fan.minX, 0, 1e-9);
    EXPECT_NEAR(fan.minY, 0, 1e-9);
    EXPECT_NEAR(fan.maxX, 9838, 1e-9);
    EXPECT_NEAR(fan.maxY, 95134, 1e-9);
    EXPECT_EQ(describeNotes(notes, L"the window"),
              L"Drawn as boxes in the window beyond 4194304 points: copies of blocks and lines of text.\n");
}

TEST(BoundedRender, CurvesAndHatchesTakeWhatTheirGroupsBearOut)
{
    // Ellipses ending 1e8 after their start, from -1e300 to 1e300, from
    // 1e20 back to 0: each one turn at most; one with axes beyond the
    // largest number is not drawn.
    RenderNotes notes;
    Scene scene = renderHostile("ellipse-huge-sweep.dxf", notes);
    EXPECT_EQ(notes.undrawnKinds, std::set<std::string>{"ELLIPSE"});
    ASSERT_EQ(scene.polylines().size(), 3u);
    EXPECT_TRUE(scene.polylines()[0].closed);
    EXPECT_TRUE(scene.polylines()[1].closed);
    for (const Polyline& ellipse : scene.polylines())
        EXPECT_LE(ellipse.count, 97u);

    // A spline of degree 1200 on 1201 control points: its control polygon.
    notes = {};
    scene = renderHostile("spline-degree-1200.dxf", notes);
    EXPECT_TRUE(notes.undrawnKinds.empty());
    ASSERT_EQ(scene.polylines().size(), 1u);
    EXPECT_EQ(scene.polylines()[0].count, 1201u);

    // Hatches claiming 2e9 vertices, 2e9 paths and 2e9 edges, 1e300 paths:
    // the triangles their groups hold, and a path of one point dropped.
    notes = {};
    scene = renderHostile("hatch-claims-huge-counts.dxf", notes);
    EXPECT_TRUE(notes.undrawnKinds.empty());
    ASSERT_EQ(scene.polygons().size(), 2u);
    EXPECT_EQ(scene.polygons()[0].count, 3u);
    EXPECT_EQ(scene.polygons()[1].count, 3u);
}

TEST(BoundedRender, MemoryThatRunsOutIsReportedWhereThePictureIsMade)
{
    // A dashed polyline of 100 000 points: each band gathers its pixels
    // (1.6 MB) before it paints them.
    Scene scene;
    const int dashed = scene.pen({DrawColor{}, scene.addPattern({500, -500})});
    scene.beginPolyline(dashed);
    for (int i = 0; i < 100000; ++i)
        scene.addPoint({double(i), double(i % 2)});
    scene.endPolyline();
    const PictureFrame frame(scene.bounds(), 400);
    QImage image(frame.width(), frame.height(), QImage::Format_RGB32);
    {
        const AllocationCap cap(1 << 20);
        EXPECT_THROW(paintScene(image, scene, frame, Background::White, 3), std::bad_alloc);
    }
    EXPECT_NO_THROW(paintScene(image, scene, frame, Background::White, 3));

    // Three thousand lines need more than a megabyte of points at once.
    ViewDrawing d;
    for (int i = 0; i < 3000; ++i) {
        auto* line = new KxDbLine({0, double(i), 0}, {10, double(i), 0});
        line->setDatabaseDefaults(&d.db);
        d.db.addToCurrentSpace(line);
        line->close();
    }
    QTemporaryDir dir;
    const std::string file = dir.filePath("lines.png").toStdString();
    {
        const AllocationCap cap(1 << 20);
        EXPECT_EQ(exportPicture(d.db, file, {400, Background::White}),
                  "cannot draw '" + file + "': the memory ran out.");
    }
    EXPECT_EQ(exportPicture(d.db, file, {400, Background::White}), "");
}
