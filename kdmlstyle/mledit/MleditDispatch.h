// The multiline editing tools by id, as the tool dialog's buttons and the
// -MLEDIT keywords choose them, and the dispatcher that runs one.
#pragma once

#include <string_view>

namespace kdml {

enum MleditTool : int {
    kNoTool = 0,
    kClosedCross = 1,
    kOpenCross = 2,
    kMergedCross = 3,
    kClosedTee = 4,
    kOpenTee = 5,
    kMergedTee = 6,
    kCornerJoint = 7,
    kAddVertex = 8,
    kDeleteVertex = 9,
    kCutSingle = 10,
    kCutAll = 11,
    kWeldAll = 12,
    kPlainButton = 13,  // the dialog's button that runs no tool
};

// The tool of a two-letter code ("CC" ... "WA", any case); kNoTool for
// anything else.
int toolFromKeyword(std::wstring_view keyword);

// Builds a working context, runs tool toolId in it (ids without a tool run
// nothing) and destroys the context. Prompts and messages come from the
// current resource library.
void dispatchMleditTool(int toolId);

}  // namespace kdml
