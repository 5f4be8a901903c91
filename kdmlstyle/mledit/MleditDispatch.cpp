#include "mledit/MleditDispatch.h"

#include <array>
#include <string>
#include <wchar.h>

#include "mledit/CornerJoint.h"
#include "mledit/CrossTools.h"
#include "mledit/CutWeldTools.h"
#include "mledit/MlineEditContext.h"
#include "mledit/TeeTools.h"
#include "mledit/VertexTools.h"

namespace kdml {

namespace {

// Codes in tool order 1 to 12.
constexpr std::array<const wchar_t*, 12> kToolCodes = {
    L"CC", L"OC", L"MC", L"CT", L"OT", L"MT", L"CJ", L"AV", L"DV", L"CS", L"CA", L"WA",
};

using ToolOperation = int (*)(MlineEditContext&);

// The tools this module provides, by id; the others run nothing.
ToolOperation operationOf(int toolId)
{
    switch (toolId) {
    case kClosedCross:
        return runClosedCross;
    case kOpenCross:
        return runOpenCross;
    case kMergedCross:
        return runMergedCross;
    case kClosedTee:
        return runClosedTee;
    case kOpenTee:
        return runOpenTee;
    case kMergedTee:
        return runMergedTee;
    case kCornerJoint:
        return runCornerJoint;
    case kAddVertex:
        return runAddVertex;
    case kDeleteVertex:
        return runDeleteVertex;
    case kCutSingle:
        return runCutSingle;
    case kCutAll:
        return runCutAll;
    case kWeldAll:
        return runWeldAll;
    default:
        return nullptr;
    }
}

}  // namespace

int toolFromKeyword(std::wstring_view keyword)
{
    const std::wstring typed(keyword);
    for (std::size_t i = 0; i < kToolCodes.size(); ++i)
        if (wcscasecmp(typed.c_str(), kToolCodes[i]) == 0)
            return int(i) + 1;
    return kNoTool;
}

void dispatchMleditTool(int toolId)
{
    MlineEditContext context;
    if (const ToolOperation run = operationOf(toolId))
        run(context);
}

}  // namespace kdml
