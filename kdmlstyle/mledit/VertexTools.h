// Add vertex and delete vertex: one picked multiline gains a vertex at the
// pick or loses the vertex nearest to it.
#pragma once

#include "mledit/MlineEditContext.h"

namespace kdml {

int runAddVertex(MlineEditContext& context);
int runDeleteVertex(MlineEditContext& context);

}  // namespace kdml
