// The first picture of a large mixed drawing (lines, arcs, circles,
// lightweight polylines of 20 vertices, texts and references to a small
// block in turn, written by bench/drawings/generate_drawing): opening it
// alone, turning it into a scene, the PNG and the SVG export of the whole
// drawing, and the window's: its first picture (the scene, its index and a
// 1600 x 1000 picture of the whole drawing, first its preview, then
// complete), a pan and a wheel step of the whole drawing. Each reports the
// process's peak memory during the work (the opened drawing included,
// except for the opening itself) beside the file's size. Timed by the
// clock on the wall, as painting uses more than one thread.
// KALDO_BENCH_MIXED_ENTITIES sets the count (default 100 000);
// KALDO_BENCH_MIXED_DXF names a drawing to use instead.
#include "PeakMemory.h"
#include "kaldo/dxf/DxfFile.h"
#include "kaldo/ui/Canvas.h"
#include "kaldo/ui/ObjectSnaps.h"
#include "kaldo/ui/ViewGeometry.h"
#include "kaldo/view/DrawingRenderer.h"
#include "kaldo/view/PictureExport.h"
#include "kaldo/view/PngExport.h"
#include "kaldo/view/SceneIndex.h"
#include "kxdb.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QProcess>
#include <QTemporaryDir>
#include <QWheelEvent>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

namespace {

// The drawing, written once for all benchmarks of the run, and opened.
struct MixedDrawing {
    MixedDrawing()
    {
        if (const char* given = std::getenv("KALDO_BENCH_MIXED_DXF")) {
            path = given;
        } else {
            const char* count = std::getenv("KALDO_BENCH_MIXED_ENTITIES");
            path = dir.filePath("mixed.dxf").toStdString();
            QProcess::execute(KALDO_GENERATE_DRAWING,
                              {"mixed", count ? count : "100000", QString::fromStdString(path.string())});
        }
        megabytes = double(std::filesystem::file_size(path)) / 1e6;
        drawing = kaldo::dxf::readDxfFile(path);
    }

    QTemporaryDir dir;
    std::filesystem::path path;
    double megabytes = 0;
    kaldo::dxf::DxfDrawing drawing;
};

MixedDrawing& mixedDrawing()
{
    static MixedDrawing drawing;
    return drawing;
}

const KxDbDatabase& database()
{
    return *mixedDrawing().drawing.database;
}

// Runs work once per iteration and reports its peak memory.
template <class Work>
void measure(benchmark::State& state, Work&& work)
{
    double peak = 0;
    for (auto _ : state) {
        resetPeakMemory();
        work();
        peak = std::max(peak, peakMegabytes());
    }
    state.counters["file_MB"] = mixedDrawing().megabytes;
    state.counters["peak_MB"] = peak;
}

void BM_MixedOpenOnly(benchmark::State& state)
{
    measure(state, [] {
        const kaldo::dxf::DxfDrawing drawing = kaldo::dxf::readDxfFile(mixedDrawing().path);
        benchmark::DoNotOptimize(drawing.database.get());
    });
}
BENCHMARK(BM_MixedOpenOnly)->Unit(benchmark::kMillisecond)->Iterations(2)->UseRealTime();

void BM_MixedScene(benchmark::State& state)
{
    measure(state, [] {
        const kaldo::view::Scene scene = kaldo::view::renderDrawing(database());
        benchmark::DoNotOptimize(scene.points().data());
    });
}
BENCHMARK(BM_MixedScene)->Unit(benchmark::kMillisecond)->Iterations(2)->UseRealTime();

void exportTo(benchmark::State& state, const char* name)
{
    const std::filesystem::path file = mixedDrawing().dir.filePath(name).toStdString();
    measure(state, [&] {
        if (const std::string problem = kaldo::view::exportPicture(database(), file, {}); !problem.empty())
            state.SkipWithError(problem.c_str());
    });
}

void BM_MixedExportPng(benchmark::State& state)
{
    exportTo(state, "mixed.png");
}
BENCHMARK(BM_MixedExportPng)->Unit(benchmark::kMillisecond)->Iterations(2)->UseRealTime();

void BM_MixedExportSvg(benchmark::State& state)
{
    exportTo(state, "mixed.svg");
}
BENCHMARK(BM_MixedExportSvg)->Unit(benchmark::kMillisecond)->Iterations(2)->UseRealTime();

// The drawing published to a canvas of 1600 x 1000 pixels as the command
// thread publishes it (its scene and the scene's index).
kaldo::ui::PublishedDrawing published()
{
    kaldo::ui::PublishedDrawing drawing =
        kaldo::ui::publishedScene(std::make_shared<const kaldo::view::Scene>(kaldo::view::renderDrawing(database())));
    drawing.serial = 1;
    return drawing;
}

using Clock = std::chrono::steady_clock;

double millisecondsSince(Clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

// Paints a frame of the canvas; returns how long it took until the frame
// was painted (a preview for a large drawing) and adds to complete_ms how
// long until its picture was complete.
double paintFrame(kaldo::ui::Canvas& canvas, QImage& target, Clock::time_point start, double& complete)
{
    canvas.render(&target);
    const double frame = millisecondsSince(start);
    while (canvas.refining())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
    canvas.render(&target);
    complete += millisecondsSince(start);
    return frame;
}

// The window's first picture: the scene, its index and the picture of the
// whole drawing, until it is complete (the first frame, a preview, comes
// after the scene and the index: first_frame_ms).
void BM_MixedWindowFirstPicture(benchmark::State& state)
{
    double firstFrame = 0, complete = 0;
    measure(state, [&] {
        const Clock::time_point start = Clock::now();
        kaldo::ui::Canvas canvas;
        canvas.resize(1600, 1000);
        QImage target(canvas.size(), QImage::Format_RGB32);
        canvas.showDrawing(published());
        firstFrame += paintFrame(canvas, target, start, complete);
    });
    state.counters["first_frame_ms"] = firstFrame / double(state.iterations());
    state.counters["complete_ms"] = complete / double(state.iterations());
}
BENCHMARK(BM_MixedWindowFirstPicture)->Unit(benchmark::kMillisecond)->Iterations(2)->UseRealTime();

// A canvas showing the whole drawing, its picture complete.
struct ShownDrawing {
    ShownDrawing() : target(1600, 1000, QImage::Format_RGB32)
    {
        canvas.resize(target.size());
        canvas.showDrawing(published());
        double complete = 0;
        paintFrame(canvas, target, Clock::now(), complete);
    }
    kaldo::ui::Canvas canvas;
    QImage target;
};

// A pan by a few pixels: the picture moves, the strips it uncovers are
// painted.
void BM_MixedWindowPan(benchmark::State& state)
{
    ShownDrawing shown;
    double complete = 0;
    for (auto _ : state) {
        const Clock::time_point start = Clock::now();
        shown.canvas.setPlacement(kaldo::ui::panned(shown.canvas.placement(), {3, 2}));
        paintFrame(shown.canvas, shown.target, start, complete);
    }
    state.counters["complete_ms"] = complete / double(state.iterations());
}
BENCHMARK(BM_MixedWindowPan)->Unit(benchmark::kMillisecond)->Iterations(10)->UseRealTime();

// Wheel steps in and out in turn at a point of the whole drawing: the
// frame after the step (the picture scaled) and the complete picture.
void BM_MixedWindowZoom(benchmark::State& state)
{
    ShownDrawing shown;
    const QPointF at(700, 450);
    int steps = 120;
    double frames = 0, complete = 0;
    for (auto _ : state) {
        const Clock::time_point start = Clock::now();
        QWheelEvent wheel(at, at, {}, {0, steps}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(&shown.canvas, &wheel);
        steps = -steps;
        frames += paintFrame(shown.canvas, shown.target, start, complete);
    }
    state.counters["frame_ms"] = frames / double(state.iterations());
    state.counters["complete_ms"] = complete / double(state.iterations());
}
BENCHMARK(BM_MixedWindowZoom)->Unit(benchmark::kMillisecond)->Iterations(6)->UseRealTime();

}  // namespace

int main(int argc, char** argv)
{
    // Texts need fonts, and fonts an application; no display is needed.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
