#include "mledit/VertexTools.h"

#include "mledit/ToolLoop.h"
#include "mledit/VertexEdit.h"

namespace kdml {

int runAddVertex(MlineEditContext& context)
{
    return runOneMultilineLoop(context, [](MlineEditContext& c) { return insertVertexAtPick(c.first); });
}

int runDeleteVertex(MlineEditContext& context)
{
    return runOneMultilineLoop(context, [](MlineEditContext& c) {
        return removeVertex(c.first, findVertexNearPick(c, c.first));
    });
}

}  // namespace kdml
