// How fast one pass of the open and merged crosses, the tees, the corner
// joint, the vertex tools, cut single, cut all and weld all edits two long
// multilines (10 000 vertices each, crossing once). Each pass starts from
// the same multilines: they are put back, and picked again, outside the
// timing.
#include "CrossingMultilines.h"
#include "kxdb.h"
#include "mledit/CornerJoint.h"
#include "mledit/CrossTools.h"
#include "mledit/CutWeldTools.h"
#include "mledit/MlinePicking.h"
#include "mledit/TeeTools.h"
#include "mledit/VertexEdit.h"

#include <benchmark/benchmark.h>

#include <functional>

namespace {

constexpr int kPicked = 4990;
// Passes of the tools that take microseconds: the multilines are put back
// before each, which takes far longer than the pass.
constexpr int kShortPasses = 200;

// Picks the middle of a segment of element 0 (where a weld pick lands too).
void pick(kdml::MlinePick& pick, KxDbMline* mline, std::int64_t entity, int segment)
{
    kdml::loadPickGeometry(pick, mline);
    pick.name.id[0] = entity;
    pick.hitSegment = segment;
    pick.hitElement = 0;
    const kdml::ElementLine& line = pick.elementLines.front();
    const KxGeVector3d along = line[std::size_t(segment + 1)] - line[std::size_t(segment)];
    pick.hitPoint = line[std::size_t(segment)] + along * 0.5;
    pick.hitDistance = along.length() * 0.5;
    pick.snapPoint = pick.hitPoint;
    pick.markHit();
}

// The picks of a pass: the multiline across first and the one along
// second (two multilines), or two points on the one along, a few segments
// apart (two points).
enum class Picks { TwoMultilines, TwoPoints };

void pickFor(Picks picks, kdml::MlineEditContext& context, KxDbMline* along, KxDbMline* across)
{
    if (picks == Picks::TwoPoints) {
        pick(context.first, along, 1, kPicked);
        pick(context.second, along, 1, kPicked + 5);
        return;
    }
    pick(context.first, across, 2, kPicked);
    pick(context.second, along, 1, kPicked);
}

using Edit = std::function<void(kdml::MlineEditContext&)>;

// Runs edit once per iteration on both multilines, open for write, freshly
// restored and picked. The multilines are restored to what prepare, run
// once on the drawn ones, made of them.
void runPasses(benchmark::State& state, const Edit& edit, Picks picks = Picks::TwoMultilines,
               const Edit& prepare = nullptr)
{
    CrossingMultilines& p = crossingMultilines();
    KxDbObjectPtr<KxDbMline> along(p.along, KxDb::kForWrite);
    KxDbObjectPtr<KxDbMline> across(p.across, KxDb::kForWrite);
    KxDbMline alongDrawn, acrossDrawn;
    alongDrawn.copyFrom(along.get());
    acrossDrawn.copyFrom(across.get());
    kdml::MlineEditContext context;
    if (prepare) {
        pickFor(picks, context, along.get(), across.get());
        prepare(context);
    }
    KxDbMline alongCopy, acrossCopy;
    alongCopy.copyFrom(along.get());
    acrossCopy.copyFrom(across.get());
    for (auto _ : state) {
        state.PauseTiming();
        along->copyFrom(&alongCopy);
        across->copyFrom(&acrossCopy);
        pickFor(picks, context, along.get(), across.get());
        state.ResumeTiming();
        edit(context);
    }
    context.first.mline = context.second.mline = nullptr;
    along->copyFrom(&alongDrawn);
    across->copyFrom(&acrossDrawn);
}

void BM_OpenCrossPass(benchmark::State& state)
{
    runPasses(state, [](kdml::MlineEditContext& c) { benchmark::DoNotOptimize(kdml::editCrossing(c, kdml::CrossKind::Open)); });
}
BENCHMARK(BM_OpenCrossPass)->Unit(benchmark::kMillisecond);

void BM_MergedCrossPass(benchmark::State& state)
{
    runPasses(state, [](kdml::MlineEditContext& c) { benchmark::DoNotOptimize(kdml::editCrossing(c, kdml::CrossKind::Merged)); });
}
BENCHMARK(BM_MergedCrossPass)->Unit(benchmark::kMillisecond);

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

void BM_CutSinglePass(benchmark::State& state)
{
    runPasses(state, [](kdml::MlineEditContext& c) { benchmark::DoNotOptimize(kdml::editCutSingle(c)); }, Picks::TwoPoints);
}
BENCHMARK(BM_CutSinglePass)->Unit(benchmark::kMillisecond)->Iterations(kShortPasses);

void BM_CutAllPass(benchmark::State& state)
{
    runPasses(state, [](kdml::MlineEditContext& c) { benchmark::DoNotOptimize(kdml::editCutAll(c)); }, Picks::TwoPoints);
}
BENCHMARK(BM_CutAllPass)->Unit(benchmark::kMillisecond)->Iterations(kShortPasses);

// Welds the gaps that cut all made between the same points.
void BM_WeldAllPass(benchmark::State& state)
{
    runPasses(
        state, [](kdml::MlineEditContext& c) { benchmark::DoNotOptimize(kdml::editWeldAll(c)); }, Picks::TwoPoints,
        [](kdml::MlineEditContext& c) { kdml::editCutAll(c); });
}
BENCHMARK(BM_WeldAllPass)->Unit(benchmark::kMillisecond)->Iterations(kShortPasses);

}  // namespace

BENCHMARK_MAIN();
