// How fast, and in how much memory, drawings of 10 000 to 100 000
// multilines (4 elements, 10 vertices each) are plotted to a PDF on an A0
// sheet: the drawing turned into the plot's scene, the scene painted into
// the PDF file, and the whole plot as PLOT makes it (the extents measured
// in pieces of the drawing, then each piece drawn, painted and dropped),
// beside the same with the whole drawing in one scene. The peak memory is
// reported beside the file's size and the scene's at each size, to show
// how it grows with the drawing.
#include "PeakMemory.h"
#include "ZigzagMultilines.h"
#include "kaldo/view/DrawingRenderer.h"
#include "kaldo/view/PdfExport.h"
#include "kaldo/view/SheetPlacement.h"

#include <benchmark/benchmark.h>

#include <QGuiApplication>
#include <QTemporaryDir>

#include <cstdlib>
#include <filesystem>
#include <functional>

namespace {

using namespace kaldo::view;

PlotSettings a0Fitted()
{
    PlotSettings settings;
    settings.paper = *parsePaper(L"A0");
    return settings;
}

double megabytes(std::size_t bytes)
{
    return double(bytes) / (1024.0 * 1024.0);
}

double sceneMegabytes(const Scene& scene)
{
    return megabytes(scene.points().capacity() * sizeof(Point2) + scene.polylines().capacity() * sizeof(Polyline)
                     + scene.polygons().capacity() * sizeof(Polygon));
}

void BM_RenderDrawingForPlot(benchmark::State& state)
{
    const auto db = buildZigzagMultilines(int(state.range(0)));
    for (auto _ : state) {
        const Scene scene = renderDrawing(*db, nullptr, PointBudget::kPicture, {}, true);
        benchmark::DoNotOptimize(scene.polylines().data());
        state.counters["scene_MB"] = sceneMegabytes(scene);
    }
}
BENCHMARK(BM_RenderDrawingForPlot)->ArgName("multilines")->Arg(100000)->Unit(benchmark::kMillisecond)->Iterations(3);

// 10 000, 30 000 and 100 000 multilines, three times each.
void atPlotSizes(benchmark::internal::Benchmark* run)
{
    run->ArgName("multilines")->Arg(10000)->Arg(30000)->Arg(100000)->Unit(benchmark::kMillisecond)->Iterations(3);
}

// Runs plot(file) once an iteration, measuring the peak memory above
// what the process held before (the drawing, and what the benchmark drew
// before), and the file's size.
void measurePlot(benchmark::State& state, const std::function<void(const std::filesystem::path&)>& plot)
{
    QTemporaryDir dir;
    const std::filesystem::path file = dir.filePath("plot.pdf").toStdString();
    for (auto _ : state) {
        resetPeakMemory();
        const double before = residentMegabytes();
        plot(file);
        state.counters["peak_rise_MB"] = peakMegabytes() - before;
    }
    state.counters["pdf_MB"] = megabytes(std::filesystem::file_size(file));
}

void writeOrSkip(benchmark::State& state, const std::string& problem)
{
    if (!problem.empty())
        state.SkipWithError(problem.c_str());
}

// The peak is above the drawing and its scene.
void BM_PaintSceneIntoPdf(benchmark::State& state)
{
    const auto db = buildZigzagMultilines(int(state.range(0)));
    const Scene scene = renderDrawing(*db, nullptr, PointBudget::kPicture, {}, true);
    PlotSource source;
    source.extents = scene.bounds();
    const SheetPlacement placement = placeOnSheet(a0Fitted(), source);
    measurePlot(state, [&](const std::filesystem::path& file) {
        writeOrSkip(state, writePdf(scene, placement, {}, file, L"bench"));
    });
    state.counters["scene_MB"] = sceneMegabytes(scene);
}
BENCHMARK(BM_PaintSceneIntoPdf)->Apply(atPlotSizes);

// The whole drawing drawn into one scene, then plotted; the peak is above
// the drawing.
void BM_PlotWholeSceneToPdf(benchmark::State& state)
{
    const auto db = buildZigzagMultilines(int(state.range(0)));
    measurePlot(state, [&](const std::filesystem::path& file) {
        const Scene scene = renderDrawing(*db, nullptr, PointBudget::kPicture, {}, true);
        PlotSource source;
        source.extents = scene.bounds();
        writeOrSkip(state, writePdf(scene, placeOnSheet(a0Fitted(), source), {}, file, L"bench"));
    });
}
BENCHMARK(BM_PlotWholeSceneToPdf)->Apply(atPlotSizes);

// What PLOT does once it has its settings: the extents measured piece by
// piece, then the drawing plotted piece by piece; the peak is above the
// drawing.
void BM_PlotDrawingToPdf(benchmark::State& state)
{
    const auto db = buildZigzagMultilines(int(state.range(0)));
    const ScenePieces pieces = [&](const std::function<void(const Scene&)>& piece) {
        renderDrawingInPieces(*db, kPlotPieceEntities, piece, nullptr, PointBudget::kPicture, {}, true);
    };
    measurePlot(state, [&](const std::filesystem::path& file) {
        PlotSource source;
        source.extents = piecesExtents(pieces);
        writeOrSkip(state, writePdf(pieces, placeOnSheet(a0Fitted(), source), {}, file, L"bench"));
    });
}
BENCHMARK(BM_PlotDrawingToPdf)->Apply(atPlotSizes);

}  // namespace

int main(int argc, char** argv)
{
    // Fonts for the PDF writer, without a display.
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    QGuiApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
