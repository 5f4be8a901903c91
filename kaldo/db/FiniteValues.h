// Whether points and vectors hold numbers only: results that overflowed are
// refused wherever the database takes geometry.
#pragma once

#include "kxtypes.h"

#include <cmath>

namespace kaldo {

inline bool isFinite(const KxGePoint3d& p)
{
    return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}

inline bool isFinite(const KxGeVector3d& v)
{
    return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
}

}  // namespace kaldo
