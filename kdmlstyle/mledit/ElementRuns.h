// The element lists of one element at every vertex of a multiline, read
// at once so that cut and weld can rewrite them as plain values.
#pragma once

#include <vector>

#include "kxdbmline.h"

namespace kdml {

// runs[v] is the element list of the element at vertex v: entry 0 the miter
// offset, then the distances along segment v where drawn runs start and
// stop in turn.
using ElementRuns = std::vector<std::vector<double>>;

ElementRuns readElementRuns(const KxDbMline* mline, int element);
// Writes back the lists that differ from before.
void writeChangedRuns(KxDbMline* mline, int element, const ElementRuns& before, const ElementRuns& after);

}  // namespace kdml
