#include "mledit/CutWeldTools.h"

#include "mledit/CutElement.h"
#include "mledit/PickProjection.h"
#include "mledit/ToolLoop.h"
#include "mledit/WeldElement.h"

namespace kdml {

namespace {

void cutBetweenMarks(MlineEditContext& context)
{
    const MlinePick& first = context.first;
    const MlinePick& second = context.second;
    cutElement(context.first, first.markElement, first.markPoint, first.markSegment, second.markPoint,
               second.markSegment);
}

}  // namespace

int runCutSingle(MlineEditContext& context)
{
    return runTwoPointLoop(context, PointPick::Cut, [](MlineEditContext& c) {
        if (c.second.hitElement != c.first.hitElement)
            projectPickToElement(c.second, c.first.hitElement, nullptr);
        cutBetweenMarks(c);
        return true;
    });
}

int runCutAll(MlineEditContext& context)
{
    return runTwoPointLoop(context, PointPick::Cut, [](MlineEditContext& c) {
        for (int e = 0; e < c.first.numElements; ++e) {
            projectPickToElement(c.first, e, nullptr);
            projectPickToElement(c.second, e, nullptr);
            cutBetweenMarks(c);
        }
        return true;
    });
}

int runWeldAll(MlineEditContext& context)
{
    return runTwoPointLoop(context, PointPick::Weld, [](MlineEditContext& c) {
        for (int e = 0; e < c.first.numElements; ++e) {
            projectMarkForWeld(c.first, e);
            projectMarkForWeld(c.second, e);
            weldElement(c, c.first, c.second);
        }
        return true;
    });
}

}  // namespace kdml
