// Hiding one element line of a multiline between two points.
#pragma once

#include "mledit/ElementRuns.h"
#include "mledit/MlineEditContext.h"

namespace kdml {

// Rewrites runs so that the element is not drawn between P and Q. Each
// point lies on the element line's segment segP or segQ (or on its
// extension). Runs that ended before P stay, a run open at P ends there,
// everything between disappears, a run that covered Q starts there, runs
// after Q stay. Ends that both lie off their segments change nothing.
void cutElementRuns(const ElementLine& line, bool closed, ElementRuns& runs, KxGePoint3d p, int segP, KxGePoint3d q,
                    int segQ);

// cutElementRuns on element e of the pick's multiline (open for write),
// with its element line built afresh.
void cutElement(MlinePick& pick, int e, const KxGePoint3d& p, int segP, const KxGePoint3d& q, int segQ);

}  // namespace kdml
