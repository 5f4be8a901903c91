#include "mledit/ElementRuns.h"

#include "mledit/MlineAccess.h"

namespace kdml {

ElementRuns readElementRuns(const KxDbMline* mline, int element)
{
    ElementRuns runs(mline ? std::size_t(mline->numVertices()) : 0);
    for (std::size_t v = 0; v < runs.size(); ++v)
        getElementParams(mline, runs[v], int(v), element);
    return runs;
}

void writeChangedRuns(KxDbMline* mline, int element, const ElementRuns& before, const ElementRuns& after)
{
    for (std::size_t v = 0; v < after.size() && v < before.size(); ++v)
        if (after[v] != before[v])
            writeElementParams(mline, after[v], int(v), element);
}

}  // namespace kdml
