// What the modify commands cost on large drawings: MOVE of 100 000
// multilines selected by one window (the window's query of the pick index
// the previous move kept up to date, each multiline opened for write with
// its vertex positions recorded for undo and moved, the step closed), U
// and REDO of such a move (and what one move costs in memory at its peak,
// the step it leaves held), and its parts (a window after other changes
// measures every entity anew); a grip drag's
// frame on a multiline of 10 000 vertices (one vertex stretched on the
// drag's copy, and that copy drawn).
#include "PeakMemory.h"
#include "ZigzagMultilines.h"
#include "kaldo/app/EntityEdits.h"
#include "kaldo/core/Host.h"
#include "kaldo/db/StretchPreview.h"
#include "kaldo/db/UndoHistory.h"
#include "kaldo/ed/PickIndex.h"
#include "kaldo/view/DrawingRenderer.h"

#include <benchmark/benchmark.h>

namespace {

constexpr int kMultilines = 100000;

// The window round every multiline of buildZigzagMultilines.
const kaldo::Box kEverything{-1e6, -1e6, 1e6, 1e6};

void BM_MoveOfAWindowOfMultilines(benchmark::State& state)
{
    const std::unique_ptr<KxDbDatabase> db = buildZigzagMultilines(kMultilines);
    kaldo::host().database = db.get();
    // The first window of a session builds the index (see the benchmarks
    // of a window after other changes); every move keeps it.
    kaldo::PickIndex index;
    index.inside(*db, kEverything);
    double dx = 1;
    std::size_t moved = 0;
    for (auto _ : state) {
        db->undoHistory().beginStep(L"MOVE");
        const std::vector<KxDbObjectId> ids = index.inside(*db, kEverything);
        moved = std::size_t(kaldo::moveEntities(ids, {dx, 0, 0}, index).changed);
        db->undoHistory().endStep();
        dx = -dx;
    }
    state.counters["moved"] = double(moved);
    kaldo::host().database = nullptr;
}
BENCHMARK(BM_MoveOfAWindowOfMultilines)->Unit(benchmark::kMillisecond)->UseRealTime();

// U and REDO of a MOVE of 100 000 multilines; the memory of that move at
// its peak (its step held after it) and what the undo history counts for
// the step.
void BM_UndoAndRedoOfAMove(benchmark::State& state)
{
    const std::unique_ptr<KxDbDatabase> db = buildZigzagMultilines(kMultilines);
    kaldo::host().database = db.get();
    kaldo::PickIndex index;
    const std::vector<KxDbObjectId> ids = index.inside(*db, kEverything);
    resetPeakMemory();
    const double drawingMegabytes = residentMegabytes();
    db->undoHistory().beginStep(L"MOVE");
    kaldo::moveEntities(ids, {1, 0, 0}, index);
    db->undoHistory().endStep();
    state.counters["move_peak_MB"] = peakMegabytes() - drawingMegabytes;
    state.counters["step_MB"] = double(db->undoHistory().bytes()) / (1 << 20);
    for (auto _ : state) {
        db->undoHistory().undo(1);
        db->undoHistory().redo();
    }
    kaldo::host().database = nullptr;
}
BENCHMARK(BM_UndoAndRedoOfAMove)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_WindowSelectionAfterAChange(benchmark::State& state)
{
    const std::unique_ptr<KxDbDatabase> db = buildZigzagMultilines(kMultilines);
    kaldo::PickIndex index;
    for (auto _ : state) {
        db->noteChange();
        benchmark::DoNotOptimize(index.inside(*db, kEverything));
    }
}
BENCHMARK(BM_WindowSelectionAfterAChange)->Unit(benchmark::kMillisecond);

void BM_WindowSelectionOfAnIndexedDrawing(benchmark::State& state)
{
    const std::unique_ptr<KxDbDatabase> db = buildZigzagMultilines(kMultilines);
    kaldo::PickIndex index;
    for (auto _ : state)
        benchmark::DoNotOptimize(index.inside(*db, kEverything));
}
BENCHMARK(BM_WindowSelectionOfAnIndexedDrawing)->Unit(benchmark::kMillisecond);

void BM_MoveWithoutUndo(benchmark::State& state)
{
    const std::unique_ptr<KxDbDatabase> db = buildZigzagMultilines(kMultilines);
    kaldo::host().database = db.get();
    const std::vector<KxDbObjectId> ids = kaldo::PickIndex().inside(*db, kEverything);
    double dx = 1;
    for (auto _ : state) {
        kaldo::transformEntities(ids, KxGeMatrix3d::translation({dx, 0, 0}), false);
        dx = -dx;
    }
    kaldo::host().database = nullptr;
}
BENCHMARK(BM_MoveWithoutUndo)->Unit(benchmark::kMillisecond);

// A multiline of n vertices in zigzag, and the drag of its middle vertex.
std::unique_ptr<KxDbMline> longMultiline(KxDbDatabase& db, int n)
{
    auto mline = std::make_unique<KxDbMline>();
    mline->setDatabaseDefaults(&db);
    mline->setStyle(addFourElementStyle(db));
    for (int v = 0; v < n; ++v)
        mline->appendSeg({v * 9.0, (v % 2) * 12.0, 0.0});
    return mline;
}

// One frame of a grip drag on a multiline of range(0) vertices: the
// stretched preview, and with range(1) the drawing of what it changed
// (what the window draws over its picture of the drawing).
void BM_GripDragFrame(benchmark::State& state)
{
    KxDbDatabase db;
    const int n = int(state.range(0));
    const bool drawn = state.range(1) != 0;
    const auto mline = longMultiline(db, n);
    kaldo::StretchPreview preview(*mline, {n / 2});
    double y = 0;
    for (auto _ : state) {
        const KxDbEntity& shown = drawn ? preview.changedAt({0.5, y += 0.25, 0}) : preview.at({0.5, y += 0.25, 0});
        if (drawn)
            benchmark::DoNotOptimize(kaldo::view::renderEntities(db, {&shown}));
        else
            benchmark::DoNotOptimize(&shown);
    }
}
BENCHMARK(BM_GripDragFrame)->ArgNames({"vertices", "drawn"})->Args({10000, 0})->Args({10000, 1})->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
