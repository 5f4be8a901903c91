// Distance from a picked point to what an entity draws, measured in the
// projection onto the world XY plane (the plan view that picks are made in).
#pragma once

#include "kaldo/util/BoxIndex.h"
#include "kxtypes.h"

class KxDbEntity;

namespace kaldo {

// Lines: the segment. Arcs: the arc (exact in planes parallel to XY, else
// through a fine polyline). Multilines: every drawn run of every element,
// as its parameter lists place it. Infinity for entities that draw nothing
// here.
double pickDistance(const KxDbEntity& entity, const KxGePoint3d& worldPoint);

// A box in the world XY plane around everything pickDistance measures to;
// false for entities that it finds nothing in.
bool pickExtents(const KxDbEntity& entity, Box& box);

}  // namespace kaldo
