// What the undo history costs: a command that moves a vertex of a long
// multiline (its copy is recorded, taken back and restored), and a command
// that adds a line to a drawing of many multilines (the model space block's
// entity list is recorded; undo takes the line out again).
#include "ZigzagMultilines.h"
#include "kaldo/db/UndoHistory.h"
#include "kxdb.h"

#include <benchmark/benchmark.h>

namespace {

void BM_UndoRedoVertexMove(benchmark::State& state)
{
    KxDbDatabase db;
    auto* mline = new KxDbMline;
    mline->setDatabaseDefaults(&db);
    const int n = static_cast<int>(state.range(0));
    for (int i = 0; i < n; ++i)
        mline->appendSeg({i * 10.0, (i % 2) * 7.0, 0.0});
    KxDbObjectId id;
    db.addToCurrentSpace(mline, id);
    mline->close();
    kaldo::UndoHistory& history = db.undoHistory();
    double y = 0;
    for (auto _ : state) {
        history.beginStep(L"MOVE");
        {
            KxDbObjectPtr<KxDbMline> edited(id, KxDb::kForWrite);
            edited->moveVertexAt(0, {0, y += 1, 0});
        }
        history.endStep();
        history.undo(1);
        history.redo();
    }
    state.counters["bytes_per_step"] = double(history.bytes()) / double(history.undoableSteps());
    state.SetComplexityN(n);
}
BENCHMARK(BM_UndoRedoVertexMove)->RangeMultiplier(10)->Range(10, 10000)->Complexity();

void BM_UndoLineAddedToLargeDrawing(benchmark::State& state)
{
    const std::unique_ptr<KxDbDatabase> db = buildZigzagMultilines(static_cast<int>(state.range(0)));
    kaldo::UndoHistory& history = db->undoHistory();
    for (auto _ : state) {
        history.beginStep(L"LINE");
        auto* line = new KxDbLine(KxGePoint3d{0, 0, 0}, KxGePoint3d{10, 0, 0});
        db->addToCurrentSpace(line);
        line->close();
        history.endStep();
        history.undo(1);
    }
    state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_UndoLineAddedToLargeDrawing)->Arg(1000)->Arg(100000);

}  // namespace

BENCHMARK_MAIN();
