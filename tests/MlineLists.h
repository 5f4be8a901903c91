// A multiline vertex's parameter lists as plain values, for tests that
// compare them or look at single entries.
#pragma once

#include <vector>

#include "kxdb.h"

#include "kxdbmline.h"

struct ElementLists {
    std::vector<double> element;
    std::vector<double> areaFill;
    friend bool operator==(const ElementLists&, const ElementLists&) = default;
};

inline std::vector<ElementLists> listsOf(KxDbMlineVertexLists lists)
{
    std::vector<ElementLists> elements;
    for (int e = 0; e < lists.numElements(); ++e)
        elements.push_back({{lists.element(e).begin(), lists.element(e).end()},
                            {lists.areaFill(e).begin(), lists.areaFill(e).end()}});
    return elements;
}

// Replaces the element list (or the fill list) of one element at one
// vertex, keeping entry 0.
inline void setRuns(KxDbMline& mline, int vertex, int element, std::vector<double> runs, bool fill = false)
{
    KxArray array;
    mline.getParametersAt(vertex, array);
    const auto record = KxDbMlineParamsPtr::adopt(KxDbMlineVertexParams::fromArray(array));
    KxDbMlineListSet& lists = record->lists;
    runs.insert(runs.begin(), (fill ? lists.areaFill(element) : lists.element(element)).front());
    if (fill)
        lists.setAreaFill(element, runs);
    else
        lists.setElement(element, runs);
    mline.setParametersAt(vertex, array);
}
