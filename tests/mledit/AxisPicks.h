// Picks made by hand for tests of the intersection core: one element line
// on the axis itself, the hit on a given segment.
#pragma once

#include "mledit/MlineEditContext.h"

#include <vector>

namespace kdml::test {

inline MlinePick axisPick(std::int64_t entity, const std::vector<KxGePoint3d>& vertices, int hitSegment,
                          const KxGePoint3d& hitPoint, bool closed = false)
{
    MlinePick pick;
    pick.name.id[0] = entity;
    pick.vertices = vertices;
    pick.elementLines = {vertices};
    pick.numVertices = static_cast<int>(vertices.size());
    pick.numElements = 1;
    pick.closed = closed;
    pick.hitSegment = hitSegment;
    pick.hitPoint = hitPoint;
    pick.markHit();
    return pick;
}

}  // namespace kdml::test
