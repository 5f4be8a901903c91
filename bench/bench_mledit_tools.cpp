// How fast one pass of the tees, the corner joint and the vertex tools
// edits two long multilines (10 000 vertices each, crossing once). Each
// pass starts from the drawn multilines: they are put back, and picked
// again, outside the timing.
#include "kxdb.h"
#include "mledit/CornerJoint.h"
#include "mledit/MlinePicking.h"
#include "mledit/TeeTools.h"
#include "mledit/VertexEdit.h"

#include <benchmark/benchmark.h>

#include <functional>

namespace {

constexpr int kVertices = 10000;
constexpr int kPicked = 4990;

// A zigzag multiline along x and one along y near x = 5000; they cross
// once, near (5000.5, 0.25).
struct Pair {
    KxDbDatabase db;
    KxDbObjectId along;
    KxDbObjectId across;

    Pair()
    {
        along = add([](int i) { return KxGePoint3d(i, (i % 2) * 0.5); });
        across = add([](int i) { return KxGePoint3d(5000.3 + (i % 2) * 0.5, i - kVertices / 2.0); });
    }

    template <class Vertex>
    KxDbObjectId add(Vertex vertex)
    {
        auto* mline = new KxDbMline;
        mline->setDatabaseDefaults(&db);
        mline->setScale(0.1);
        for (int i = 0; i < kVertices; ++i)
            mline->appendSeg(vertex(i));
        KxDbObjectId id;
        db.addToCurrentSpace(mline, id);
        mline->close();
        return id;
    }
};

Pair& pair()
{
    static Pair built;
    return built;
}

// Picks the middle of a segment of element 0.
void pick(kdml::MlinePick& pick, KxDbMline* mline, std::int64_t entity, int segment)
{
    kdml::loadPickGeometry(pick, mline);
    pick.name.id[0] = entity;
    pick.hitSegment = segment;
    pick.hitElement = 0;
    const kdml::ElementLine& line = pick.elementLines.front();
    pick.hitPoint = line[std::size_t(segment)] + (line[std::size_t(segment + 1)] - line[std::size_t(segment)]) * 0.5;
    pick.markHit();
}

// Runs edit once per iteration on both multilines, open for write, freshly
// restored and picked.
void runPasses(benchmark::State& state, const std::function<void(kdml::MlineEditContext&)>& edit)
{
    Pair& p = pair();
    KxDbObjectPtr<KxDbMline> along(p.along, KxDb::kForWrite);
    KxDbObjectPtr<KxDbMline> across(p.across, KxDb::kForWrite);
    KxDbMline alongCopy, acrossCopy;
    alongCopy.copyFrom(along.get());
    acrossCopy.copyFrom(across.get());
    kdml::MlineEditContext context;
    for (auto _ : state) {
        state.PauseTiming();
        along->copyFrom(&alongCopy);
        across->copyFrom(&acrossCopy);
        pick(context.first, across.get(), 2, kPicked);
        pick(context.second, along.get(), 1, kPicked);
        state.ResumeTiming();
        edit(context);
    }
    context.first.mline = context.second.mline = nullptr;
    along->copyFrom(&alongCopy);
    across->copyFrom(&acrossCopy);
}

void BM_ClosedTeePass(benchmark::State& state)
{
    runPasses(state, [](kdml::MlineEditContext& c) { benchmark::DoNotOptimize(kdml::editTee(c, kdml::TeeKind::Closed)); });
}
BENCHMARK(BM_ClosedTeePass)->Unit(benchmark::kMillisecond);

void BM_OpenTeePass(benchmark::State& state)
{
    runPasses(state, [](kdml::MlineEditContext& c) { benchmark::DoNotOptimize(kdml::editTee(c, kdml::TeeKind::Open)); });
}
BENCHMARK(BM_OpenTeePass)->Unit(benchmark::kMillisecond);

void BM_MergedTeePass(benchmark::State& state)
{
    runPasses(state, [](kdml::MlineEditContext& c) { benchmark::DoNotOptimize(kdml::editTee(c, kdml::TeeKind::Merged)); });
}
BENCHMARK(BM_MergedTeePass)->Unit(benchmark::kMillisecond);

void BM_CornerJointPass(benchmark::State& state)
{
    runPasses(state, [](kdml::MlineEditContext& c) { benchmark::DoNotOptimize(kdml::editCornerJoint(c)); });
}
BENCHMARK(BM_CornerJointPass)->Unit(benchmark::kMillisecond);

void BM_AddVertexPass(benchmark::State& state)
{
    runPasses(state, [](kdml::MlineEditContext& c) { benchmark::DoNotOptimize(kdml::insertVertexAtPick(c.first)); });
}
BENCHMARK(BM_AddVertexPass)->Unit(benchmark::kMillisecond);

void BM_DeleteVertexPass(benchmark::State& state)
{
    runPasses(state, [](kdml::MlineEditContext& c) {
        c.pickPoint = c.first.hitPoint;
        c.pickTolerance = 0.5;
        benchmark::DoNotOptimize(kdml::removeVertex(c.first, kdml::findVertexNearPick(c, c.first)));
    });
}
BENCHMARK(BM_DeleteVertexPass)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
