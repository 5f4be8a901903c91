// A multiline vertex's parameter lists as plain values, for tests that
// compare them or look at single entries.
#pragma once

#include <vector>

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
