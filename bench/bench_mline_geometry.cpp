// How fast the host builds multiline geometry: drawing whole multilines into
// a drawing, the rubber-band step of the drawing command (moving the last
// vertex) on multilines of growing length, and laying a long multiline out
// anew when its scale changes (every vertex rebuilt).
#include "kxdb.h"

#include <benchmark/benchmark.h>

#include <cmath>

namespace {

KxGePoint3d zigzag(int i)
{
    return {i * 10.0, (i % 2) * 7.0, 0.0};
}

// A zigzag multiline of n vertices in the drawing's current style.
void drawZigzag(KxDbMline& mline, KxDbDatabase& db, int n)
{
    mline.setDatabaseDefaults(&db);
    for (int i = 0; i < n; ++i)
        mline.appendSeg(zigzag(i));
}

void BM_DrawTenVertexMultilines(benchmark::State& state)
{
    KxDbDatabase db;
    for (auto _ : state) {
        auto* mline = new KxDbMline;
        mline->setDatabaseDefaults(&db);
        for (int i = 0; i < 10; ++i)
            mline->appendSeg(zigzag(i));
        db.addToCurrentSpace(mline);
        mline->close();
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_DrawTenVertexMultilines);

void BM_RubberBandStep(benchmark::State& state)
{
    KxDbDatabase db;
    KxDbMline mline;
    const int n = static_cast<int>(state.range(0));
    drawZigzag(mline, db, n);
    double t = 0;
    for (auto _ : state) {
        t += 0.01;
        mline.moveVertexAt(n - 1, {n * 10.0 + std::cos(t), 5 + std::sin(t), 0});
        benchmark::DoNotOptimize(mline.miterAt(n - 1));
    }
    state.SetComplexityN(n);
}
BENCHMARK(BM_RubberBandStep)->RangeMultiplier(10)->Range(10, 10000)->Complexity();

void BM_RebuildWholeMultiline(benchmark::State& state)
{
    KxDbDatabase db;
    KxDbMline mline;
    const int n = static_cast<int>(state.range(0));
    drawZigzag(mline, db, n);
    double scale = 1;
    for (auto _ : state) {
        scale = scale == 1 ? 2 : 1;
        mline.setScale(scale);
        benchmark::DoNotOptimize(mline.miterAt(n - 1));
    }
    state.SetComplexityN(n);
    state.SetItemsProcessed(state.iterations() * n);
}
BENCHMARK(BM_RebuildWholeMultiline)->Arg(1000)->Arg(4000)->Arg(16000)->Arg(64000)->Complexity()->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
