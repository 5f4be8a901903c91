// The box around the entities of model space, from their defining points
// (vertices, centres with radii), for the header's extents.
#pragma once

#include "kxtypes.h"

class KxDbDatabase;

namespace kaldo::dxf {

struct Extents {
    KxGePoint3d min;
    KxGePoint3d max;
};

// For a drawing without modelled entities, the inverted box that files
// use to say "empty": min 1e20, max -1e20.
Extents drawingExtents(const KxDbDatabase& db);

}  // namespace kaldo::dxf
