// Cut single, cut all and weld all: one multiline between two points picked
// on it. Cut single hides the first point's element between the points,
// cut all hides every element, weld all draws every element through.
#pragma once

#include "mledit/MlineEditContext.h"

namespace kdml {

// One pass on the picks of the context (open for write).
bool editCutSingle(MlineEditContext& context);
bool editCutAll(MlineEditContext& context);
bool editWeldAll(MlineEditContext& context);

int runCutSingle(MlineEditContext& context);
int runCutAll(MlineEditContext& context);
int runWeldAll(MlineEditContext& context);

}  // namespace kdml
