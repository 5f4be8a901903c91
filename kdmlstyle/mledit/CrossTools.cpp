#include "mledit/CrossTools.h"

#include <algorithm>

#include "kxed.h"
#include "mledit/AxisCrossing.h"
#include "mledit/CutElement.h"
#include "mledit/ElementCrossings.h"
#include "mledit/ToolLoop.h"

namespace kdml {

namespace {

constexpr unsigned kNoCrossingMessage = 4007;

// Cuts of one pass, all from the crossing table of the picked segments.
class CrossCuts {
public:
    explicit CrossCuts(MlineEditContext& context)
        : context_(context), nA_(context.crossings.rows()),
          nB_(nA_ > 0 ? int(context.crossings.points.front().size()) : 0)
    {
    }

    // Element e of first, from its crossing with element b1 of second to
    // that with b2.
    void first(int e, int b1, int b2)
    {
        const CrossingTable& k = context_.crossings;
        cutElement(context_.first, e, at(e, b1), k.segments[std::size_t(e)][std::size_t(b1)].first, at(e, b2),
                   k.segments[std::size_t(e)][std::size_t(b2)].first);
    }
    // Element e of second, from its crossing with element a1 of first to
    // that with a2.
    void second(int e, int a1, int a2)
    {
        const CrossingTable& k = context_.crossings;
        cutElement(context_.second, e, at(a1, e), k.segments[std::size_t(a1)][std::size_t(e)].second, at(a2, e),
                   k.segments[std::size_t(a2)][std::size_t(e)].second);
    }

    void closed()
    {
        for (int e = 0; e < nA_; ++e)
            first(e, 0, nB_ - 1);
    }
    void open()
    {
        closed();
        second(0, 0, nA_ - 1);
        second(nB_ - 1, 0, nA_ - 1);
    }
    // Each element opens between the two element lines of the other
    // multiline at its own depth from the outside, at most the other's
    // middle; the outer ones between the other's outer ones.
    void merged()
    {
        const int h = (nB_ - 1) / 2;
        const int g = (nA_ - 1) / 2;
        first(0, 0, nB_ - 1);
        if (nA_ > 1)
            first(nA_ - 1, 0, nB_ - 1);
        for (int i = 1; i <= nA_ - 2; ++i) {
            const int m = std::min({i, nA_ - 1 - i, h});
            first(i, m, nB_ - 1 - m);
        }
        second(0, 0, nA_ - 1);
        second(nB_ - 1, 0, nA_ - 1);
        for (int k = 1; k <= nB_ - 2; ++k) {
            const int m = std::min({k, nB_ - 1 - k, g});
            second(k, m, nA_ - 1 - m);
        }
    }

    bool empty() const { return nA_ < 1 || nB_ < 1; }

private:
    const KxGePoint3d& at(int a, int b) const { return context_.crossings.points[std::size_t(a)][std::size_t(b)]; }

    MlineEditContext& context_;
    int nA_;
    int nB_;
};

}  // namespace

bool editCrossing(MlineEditContext& context, CrossKind kind)
{
    const std::optional<AxisCrossing> crossing = findAxisCrossing(context.first, context.second, true);
    if (!crossing) {
        if (!picksOnNeighbouringSegments(context.first, context.second))
            kxutPrintf(L"%ls", loadText(context, kNoCrossingMessage));
        return false;
    }
    if (!computeElementCrossings(context.first, crossing->segFirst, context.second, crossing->segSecond,
                                 context.crossings))
        return true;
    CrossCuts cuts(context);
    if (cuts.empty())
        return true;
    switch (kind) {
    case CrossKind::Closed:
        cuts.closed();
        break;
    case CrossKind::Open:
        cuts.open();
        break;
    case CrossKind::Merged:
        cuts.merged();
        break;
    }
    return true;
}

int runClosedCross(MlineEditContext& context)
{
    return runTwoMultilineLoop(context, false, [](MlineEditContext& c) { return editCrossing(c, CrossKind::Closed); });
}

int runOpenCross(MlineEditContext& context)
{
    return runTwoMultilineLoop(context, true, [](MlineEditContext& c) { return editCrossing(c, CrossKind::Open); });
}

int runMergedCross(MlineEditContext& context)
{
    return runTwoMultilineLoop(context, true, [](MlineEditContext& c) { return editCrossing(c, CrossKind::Merged); });
}

}  // namespace kdml
