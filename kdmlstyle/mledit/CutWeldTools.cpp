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

bool editCutSingle(MlineEditContext& context)
{
    if (context.second.hitElement != context.first.hitElement)
        projectPickToElement(context.second, context.first.hitElement, nullptr);
    cutBetweenMarks(context);
    return true;
}

bool editCutAll(MlineEditContext& context)
{
    for (int e = 0; e < context.first.numElements; ++e) {
        projectPickToElement(context.first, e, nullptr);
        projectPickToElement(context.second, e, nullptr);
        cutBetweenMarks(context);
    }
    return true;
}

bool editWeldAll(MlineEditContext& context)
{
    for (int e = 0; e < context.first.numElements; ++e) {
        projectMarkForWeld(context.first, e);
        projectMarkForWeld(context.second, e);
        weldElement(context, context.first, context.second);
    }
    return true;
}

int runCutSingle(MlineEditContext& context)
{
    return runTwoPointLoop(context, PointPick::Cut, editCutSingle);
}

int runCutAll(MlineEditContext& context)
{
    return runTwoPointLoop(context, PointPick::Cut, editCutAll);
}

int runWeldAll(MlineEditContext& context)
{
    return runTwoPointLoop(context, PointPick::Weld, editWeldAll);
}

}  // namespace kdml
