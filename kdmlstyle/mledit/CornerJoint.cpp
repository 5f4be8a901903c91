#include "mledit/CornerJoint.h"

#include <algorithm>
#include <cstdlib>
#include <tuple>
#include <utility>

#include "KdCmdUtil.h"
#include "kxed.h"
#include "mledit/EditGeometry.h"
#include "mledit/ElementCrossings.h"
#include "mledit/EndVertex.h"
#include "mledit/PickProjection.h"
#include "mledit/ToolLoop.h"

namespace kdml {

namespace {

constexpr unsigned kNoCrossingMessage = 4007;

KxGePoint3d midpoint(const ElementLine& line, int s)
{
    return line[std::size_t(s)] + (line[std::size_t(s + 1)] - line[std::size_t(s)]) * 0.5;
}

// One multiline joined with itself through its first and last segments s1
// and s2 (one of them 0), the first keeping its start when startFirst, the
// second when startSecond.
bool joinWithItself(MlineEditContext& context, int s1, int s2, bool startFirst, bool startSecond, const KxGePoint3d& x)
{
    if (startFirst == startSecond)
        return false;
    MlinePick& pick = context.first;
    const CrossingTable& table = context.crossings;
    std::optional<MlineShape> shape = readMlineShape(pick.mline);
    if (!shape)
        return true;
    // The segment that keeps its start comes first along the multiline:
    // what lies between the two goes and the corner takes its place.
    const int keptStart = startFirst ? s1 : s2;
    const int keptEnd = startFirst ? s2 : s1;
    if (keptStart < keptEnd) {
        shape->vertices.erase(shape->vertices.begin() + keptStart + 2, shape->vertices.begin() + keptEnd + 1);
        moveVertex(*shape, keptStart + 1, x);
        writeMlineShape(pick.mline, std::move(*shape));
        return true;
    }
    // Otherwise the multiline runs from the corner round to the corner: both
    // ends move there and every element ends where it meets itself, on the
    // segments that hold the crossing.
    moveVertex(*shape, shape->size() - 1, x);
    moveVertex(*shape, 0, x);
    const int last = shape->size() - 2;
    for (int e = 0; e < shape->elementCount() && e < table.rows(); ++e) {
        const KxGePoint3d& target = table.points[std::size_t(e)][std::size_t(e)];
        const CrossingTable::Segments& on = table.segments[std::size_t(e)][std::size_t(e)];
        trimElementTo(*shape, e, std::clamp(s1 == 0 ? on.first : on.second, 0, last), target, false);
        trimElementTo(*shape, e, std::clamp(s1 == 0 ? on.second : on.first, 0, last), target, true);
    }
    writeMlineShape(pick.mline, std::move(*shape));
    suppressCaps(pick.mline, true, true);
    return true;
}

ElementReach reachOf(bool keepStart)
{
    return keepStart ? ElementReach::UpToSegment : ElementReach::FromSegment;
}

}  // namespace

KxGePoint3d axisCrossingOfSegments(const MlinePick& one, int s1, const MlinePick& other, int s2)
{
    KxGePoint3d x;
    if (s1 >= 0 && s2 >= 0 && s1 + 1 < int(one.vertices.size()) && s2 + 1 < int(other.vertices.size()))
        LineXline3d(one.vertices[std::size_t(s1)], one.vertices[std::size_t(s1 + 1)],
                    other.vertices[std::size_t(s2)], other.vertices[std::size_t(s2 + 1)], x);
    return x;
}

int cornerPartner(int e, int n, int m, bool sameOrder, bool atEnd)
{
    if (e == 0)
        return sameOrder ? 0 : m - 1;
    if (e == n - 1)
        return sameOrder ? m - 1 : 0;
    if (n < m)
        return atEnd ? e : m - 1 - e;
    if (m >= 3)
        return sameOrder ? std::min(e, m - 2) : std::max(m - 1 - e, 1);
    if (m == 2)
        return atEnd ? 0 : 1;
    return 0;
}

bool editCornerJoint(MlineEditContext& context)
{
    MlinePick& first = context.first;
    MlinePick& second = context.second;
    int s1 = first.hitSegment;
    int s2 = second.hitSegment;
    const bool same = sameEntity(first, second);
    if (same) {
        // Joined through its first and last segments, which must not be
        // neighbours either. A multiline of one segment has one direction:
        // its element lines do not cross, as below.
        const int last = first.numVertices - 2;
        if (std::abs(s1 - s2) == 1 || last == 1)
            return false;
        std::tie(s1, s2) = s1 <= s2 ? std::pair(0, last) : std::pair(last, 0);
    }
    // The side each keeps: where it was picked (one multiline picked twice:
    // the middles of its segments), before or beyond the crossing of the
    // element lines 0.
    if (same) {
        first.markPoint = midpoint(first.elementLines.front(), s1);
        second.markPoint = midpoint(second.elementLines.front(), s2);
    } else {
        projectPickToElement(first, 0, nullptr);
        projectPickToElement(second, 0, nullptr);
    }
    const bool startA = keepsStartBefore(first, s1, first.markPoint, second, s2);
    const bool startB = keepsStartBefore(second, s2, second.markPoint, first, s1);
    if (!computeElementCrossings(first, s1, second, s2, context.crossings, reachOf(startA), reachOf(startB))) {
        kxutPrintf(L"%ls", loadText(context, kNoCrossingMessage));
        return false;
    }
    const KxGePoint3d x = axisCrossingOfSegments(first, s1, second, s2);
    if (same)
        return joinWithItself(context, s1, s2, startA, startB, x);

    const CrossingTable& table = context.crossings;
    std::optional<MlineShape> a = cutBackTo(first.mline, s1, startA, x);
    std::optional<MlineShape> b = cutBackTo(second.mline, s2, startB, x);
    if (!a || !b)
        return true;
    const bool negScale = (first.mline->scale() < 0) != (second.mline->scale() < 0);
    const bool sameOrder = startA == startB ? negScale : !negScale;
    const int nA = table.rows();
    const int nB = nA > 0 ? int(table.points.front().size()) : 0;
    for (int e = 0; e < nA && e < a->elementCount(); ++e) {
        const int p = cornerPartner(e, nA, nB, sameOrder, startA);
        const int g = table.segments[std::size_t(e)][std::size_t(p)].first;
        trimElementTo(*a, e, segmentAfterCut(*a, g, s1, startA), table.points[std::size_t(e)][std::size_t(p)], startA);
    }
    for (int e = 0; e < nB && e < b->elementCount(); ++e) {
        const int p = cornerPartner(e, nB, nA, sameOrder, startB);
        const int g = table.segments[std::size_t(p)][std::size_t(e)].second;
        trimElementTo(*b, e, segmentAfterCut(*b, g, s2, startB), table.points[std::size_t(p)][std::size_t(e)], startB);
    }
    writeMlineShape(first.mline, std::move(*a));
    writeMlineShape(second.mline, std::move(*b));
    suppressCaps(first.mline, startA, !startA);
    suppressCaps(second.mline, startB, !startB);
    return true;
}

int runCornerJoint(MlineEditContext& context)
{
    return runTwoMultilineLoop(context, true, editCornerJoint, OpenPicks::Both);
}

}  // namespace kdml
