// How fast the closed cross finds and opens a crossing between two long
// multilines (10 000 vertices each, crossing once): the whole edit of one
// pass, and the axis crossing search alone, pruned and plain.
#include "CrossingMultilines.h"
#include "kxdb.h"
#include "mledit/AxisCrossing.h"
#include "mledit/CrossTools.h"
#include "mledit/MlinePicking.h"

#include <benchmark/benchmark.h>

namespace {

// Picks a few segments away from the crossing, so that the search has to
// weigh every candidate.
void pickNearCrossing(kdml::MlinePick& pick, std::int64_t entity, int segment)
{
    pick.name.id[0] = entity;
    pick.hitSegment = segment;
    pick.hitElement = 0;
    const kdml::ElementLine& line = pick.elementLines.front();
    pick.hitPoint = line[std::size_t(segment)] + (line[std::size_t(segment + 1)] - line[std::size_t(segment)]) * 0.5;
    pick.markHit();
}

void BM_ClosedCrossPass(benchmark::State& state)
{
    CrossingMultilines& p = crossingMultilines();
    KxDbObjectPtr<KxDbMline> along(p.along, KxDb::kForWrite);
    KxDbObjectPtr<KxDbMline> across(p.across, KxDb::kForWrite);
    kdml::MlineEditContext context;
    kdml::loadPickGeometry(context.first, along.get());
    kdml::loadPickGeometry(context.second, across.get());
    for (auto _ : state) {
        pickNearCrossing(context.first, 1, 4990);
        pickNearCrossing(context.second, 2, 4990);
        benchmark::DoNotOptimize(kdml::editCrossing(context, kdml::CrossKind::Closed));
    }
    context.first.mline = context.second.mline = nullptr;
}
BENCHMARK(BM_ClosedCrossPass)->Unit(benchmark::kMillisecond);

template <std::optional<kdml::AxisCrossing> (*search)(const kdml::MlinePick&, const kdml::MlinePick&, bool)>
void BM_AxisCrossing(benchmark::State& state)
{
    CrossingMultilines& p = crossingMultilines();
    KxDbObjectPtr<KxDbMline> along(p.along, KxDb::kForRead);
    KxDbObjectPtr<KxDbMline> across(p.across, KxDb::kForRead);
    kdml::MlinePick first, second;
    kdml::loadPickGeometry(first, along.get());
    kdml::loadPickGeometry(second, across.get());
    pickNearCrossing(first, 1, 4990);
    pickNearCrossing(second, 2, 4990);
    for (auto _ : state)
        benchmark::DoNotOptimize(search(first, second, true));
}
BENCHMARK(BM_AxisCrossing<kdml::searchAxisCrossing>)->Name("BM_AxisCrossingPruned")->Unit(benchmark::kMillisecond);
BENCHMARK(BM_AxisCrossing<kdml::scanAxisCrossing>)->Name("BM_AxisCrossingPlain")->Unit(benchmark::kMillisecond)->Iterations(2);

}  // namespace

BENCHMARK_MAIN();
