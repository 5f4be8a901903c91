// Whether points, vectors and multiline vertices hold numbers only: results
// that overflowed are refused wherever the database takes geometry.
#pragma once

#include "kxdbmline.h"
#include "kxtypes.h"

#include <algorithm>
#include <cmath>

namespace kaldo {

template <class Xyz>
bool isFinite(const Xyz& p)
{
    return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}

inline bool finiteLists(KxDbMlineVertexLists lists)
{
    return std::ranges::all_of(lists.values(), [](double value) { return std::isfinite(value); });
}

// A point or a scale so large that a miter or a list overflows is refused.
inline bool finiteVertex(const KxDbMlineVertex& v, KxDbMlineVertexLists lists)
{
    return isFinite(v.position) && isFinite(v.axis) && isFinite(v.miter) && finiteLists(lists);
}

}  // namespace kaldo
