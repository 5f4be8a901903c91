// How fast a drawing of 100 000 multilines (4 elements, 10 vertices each)
// is rendered: the database turned into a scene, the scene painted on a
// 2000 px image in one band and in two (two threads), and the whole export
// to a PNG file. Painting and export are timed by the clock on the wall, as
// they use more than one thread.
#include "ZigzagMultilines.h"
#include "kaldo/view/DrawingRenderer.h"
#include "kaldo/view/PictureExport.h"
#include "kaldo/view/PngExport.h"
#include "kxdb.h"

#include <benchmark/benchmark.h>

#include <QTemporaryDir>

#include <memory>

namespace {

constexpr int kMultilines = 100000;
constexpr kaldo::view::PictureOptions kPicture{2000, kaldo::view::Background::White};

std::unique_ptr<KxDbDatabase> buildDrawing()
{
    return buildZigzagMultilines(kMultilines);
}

void BM_RenderDrawingToScene(benchmark::State& state)
{
    const auto db = buildDrawing();
    for (auto _ : state) {
        const kaldo::view::Scene scene = kaldo::view::renderDrawing(*db);
        benchmark::DoNotOptimize(scene.polylines().data());
        state.counters["polylines"] = double(scene.polylines().size());
    }
}
BENCHMARK(BM_RenderDrawingToScene)->Unit(benchmark::kMillisecond)->Iterations(5);

void BM_PaintSceneOn2000pxImage(benchmark::State& state)
{
    const auto db = buildDrawing();
    const kaldo::view::Scene scene = kaldo::view::renderDrawing(*db);
    for (auto _ : state) {
        const QImage image = kaldo::view::paintScene(scene, kPicture, int(state.range(0)));
        benchmark::DoNotOptimize(image.constBits());
    }
}
BENCHMARK(BM_PaintSceneOn2000pxImage)
    ->ArgName("bands")
    ->Arg(1)
    ->Arg(2)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(5)
    ->UseRealTime();

void BM_ExportDrawingTo2000pxPng(benchmark::State& state)
{
    const auto db = buildDrawing();
    QTemporaryDir dir;
    const std::filesystem::path file = dir.filePath("render.png").toStdString();
    for (auto _ : state) {
        if (const std::string problem = kaldo::view::exportPicture(*db, file, kPicture); !problem.empty())
            state.SkipWithError(problem.c_str());
    }
}
BENCHMARK(BM_ExportDrawingTo2000pxPng)->Unit(benchmark::kMillisecond)->Iterations(5)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
