#include "mledit/TeeTools.h"

#include <algorithm>
#include <utility>

#include "kxed.h"
#include "mledit/AxisCrossing.h"
#include "mledit/CutElement.h"
#include "mledit/EditGeometry.h"
#include "mledit/ElementCrossings.h"
#include "mledit/EndVertex.h"
#include "mledit/PickProjection.h"
#include "mledit/ToolLoop.h"

namespace kdml {

namespace {

constexpr unsigned kNoCrossingMessage = 4007;
constexpr unsigned kBarCutOffMessage = 4017;

}  // namespace

TeePlan planTee(TeeKind kind, int nA, int nB, int near)
{
    TeePlan plan;
    plan.stemEnds.assign(std::size_t(std::max(nA, 0)), near);
    if (kind == TeeKind::Closed || nA < 1 || nB < 1)
        return plan;
    if (kind == TeeKind::Open) {
        plan.opened = {near};
        return plan;
    }
    // Depth m from the near side.
    const auto bar = [&](int m) { return near == nB - 1 ? nB - 1 - m : m; };
    const int inner = std::min(nA / 2, nB - 2);
    const int depth = inner > 0 ? inner : nB - 1;
    for (int i = 1; i < nA - 1; ++i)
        plan.stemEnds[std::size_t(i)] = bar(std::min({i, nA - 1 - i, depth}));
    for (int j = 0; j < depth; ++j)
        plan.opened.push_back(bar(j));
    return plan;
}

bool editTee(MlineEditContext& context, TeeKind kind)
{
    MlinePick& stem = context.first;
    MlinePick& bar = context.second;
    const std::optional<AxisCrossing> crossing = findAxisCrossing(stem, bar, false);
    if (!crossing) {
        if (!picksOnNeighbouringSegments(stem, bar))
            kxutPrintf(L"%ls", loadText(context, kNoCrossingMessage));
        return false;
    }
    // The side that stays is the one picked: between the segment's start
    // and the crossing of the element lines 0, or beyond that crossing.
    const int s = stem.hitSegment;
    projectPickToElement(stem, 0, nullptr);
    const bool keepStart = keepsStartBefore(stem, s, stem.markPoint, bar, crossing->segSecond);
    const CrossingTable& table = context.crossings;
    if (!computeElementCrossings(stem, s, bar, crossing->segSecond, context.crossings,
                                 keepStart ? ElementReach::UpToSegment : ElementReach::FromSegment))
        return true;
    const auto k = [&table](int a, int b) -> const KxGePoint3d& {
        return table.points[std::size_t(a)][std::size_t(b)];
    };
    const bool same = sameEntity(stem, bar);
    if (same && (keepStart ? stem.hitSegment <= bar.hitSegment : stem.hitSegment >= bar.hitSegment)) {
        kxutPrintf(L"%ls", loadText(context, kBarCutOffMessage));
        return false;
    }
    std::optional<MlineShape> shape = cutBackTo(stem.mline, s, keepStart, crossing->point);
    if (!shape)
        return true;
    const int nA = table.rows();
    const int nB = nA > 0 ? int(table.points.front().size()) : 0;
    const int reference = keepStart ? s : 1;
    const auto nearer = [&](int e, int b1, int b2) {
        const KxGePoint3d r = shape->elementPoint(reference, e);
        return pointDistance(r, k(e, b1)) <= pointDistance(r, k(e, b2)) ? b1 : b2;
    };
    const KxGePoint3d r0 = shape->elementPoint(reference, 0);
    const int near = pointDistance(r0, k(0, nB - 1)) < pointDistance(r0, k(0, 0)) ? nB - 1 : 0;
    const TeePlan plan = planTee(kind, nA, nB, near);
    for (int e = 0; e < nA && e < shape->elementCount(); ++e) {
        const int end = kind == TeeKind::Closed ? nearer(e, 0, nB - 1) : plan.stemEnds[std::size_t(e)];
        const int g = table.segments[std::size_t(e)][std::size_t(end)].first;
        trimElementTo(*shape, e, segmentAfterCut(*shape, g, s, keepStart), k(e, end), keepStart);
    }
    writeMlineShape(stem.mline, std::move(*shape));
    suppressCaps(stem.mline, keepStart, !keepStart);

    // One multiline as stem and bar: the bar's segments lost the numbers of
    // the vertices cut off before the stem.
    const int shift = same && !keepStart ? s : 0;
    for (std::size_t j = 0; j < plan.opened.size(); ++j) {
        const int b = plan.opened[j];
        const int from = int(j);
        const int to = nA - 1 - from;
        cutElement(bar, b, k(from, b), table.segments[std::size_t(from)][std::size_t(b)].second - shift, k(to, b),
                   table.segments[std::size_t(to)][std::size_t(b)].second - shift);
    }
    return true;
}

int runClosedTee(MlineEditContext& context)
{
    return runTwoMultilineLoop(
        context, false, [](MlineEditContext& c) { return editTee(c, TeeKind::Closed); }, OpenPicks::First);
}

int runOpenTee(MlineEditContext& context)
{
    return runTwoMultilineLoop(
        context, true, [](MlineEditContext& c) { return editTee(c, TeeKind::Open); }, OpenPicks::First);
}

int runMergedTee(MlineEditContext& context)
{
    return runTwoMultilineLoop(
        context, true, [](MlineEditContext& c) { return editTee(c, TeeKind::Merged); }, OpenPicks::First);
}

}  // namespace kdml
