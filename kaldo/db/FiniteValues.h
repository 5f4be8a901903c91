// Whether points, vectors and multiline vertices hold numbers only: results
// that overflowed are refused wherever the database takes geometry.
#pragma once

#include "kxdbmline.h"
#include "kxtypes.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace kaldo {

template <class Xyz>
bool isFinite(const Xyz& p)
{
    return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}

inline bool finiteLists(const std::vector<KxDbMlineElementParams>& elements)
{
    return std::ranges::all_of(elements, [](const KxDbMlineElementParams& lists) {
        const auto finite = [](double value) { return std::isfinite(value); };
        return std::ranges::all_of(lists.element, finite) && std::ranges::all_of(lists.areaFill, finite);
    });
}

// A point or a scale so large that a miter or a list overflows is refused.
inline bool finiteVertex(const KxDbMlineVertex& v)
{
    return isFinite(v.position) && isFinite(v.axis) && isFinite(v.miter) && (!v.params || finiteLists(v.params->elements));
}

}  // namespace kaldo
