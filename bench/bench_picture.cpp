// The first picture of a large mixed drawing (lines, arcs, circles,
// lightweight polylines of 20 vertices, texts and references to a small
// block in turn, written by bench/drawings/generate_drawing): opening it
// alone, turning it into a scene, the PNG and the SVG export of the whole
// drawing (the window's pictures of it are bench_window's). Each reports
// the process's peak memory during the work (the opened drawing included,
// except for the opening itself) beside the file's size. Timed by the
// clock on the wall, as painting uses more than one thread.
// KALDO_BENCH_MIXED_ENTITIES sets the count (default 100 000);
// KALDO_BENCH_MIXED_DXF names a drawing to use instead.
#include "BenchPaths.h"
#include "PeakMemory.h"
#include "kaldo/dxf/DxfFile.h"
#include "kaldo/view/DrawingRenderer.h"
#include "kaldo/view/PictureExport.h"
#include "kaldo/view/PngExport.h"
#include "kxdb.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QProcess>
#include <QTemporaryDir>

#include <cstdlib>
#include <filesystem>
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
            QProcess::execute(QString::fromStdString(stagedProgram("generate_drawing").string()),
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
    state.counters["peak_MB"] = largestPeakOfEach(state, work);
    state.counters["file_MB"] = mixedDrawing().megabytes;
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
