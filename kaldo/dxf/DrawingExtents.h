// The box around the entities of model space, from their defining points
// (vertices, centres with radii), for the header's extents.
#pragma once

#include "kaldo/dxf/DxfFile.h"
#include "kaldo/dxf/Extents.h"

class KxDbDatabase;

namespace kaldo::dxf {

// For a drawing without modelled entities, the inverted box that files
// use to say "empty": min 1e20, max -1e20. The entities are measured in
// chunks, on two threads when there is more than one (EntityChunks): the
// box is the same.
Extents drawingExtents(const KxDbDatabase& db, const EntityChunks& chunks = {});
// The extents known, while they hold for db; else measured as above.
Extents drawingExtents(const KxDbDatabase& db, const KnownExtents& known, const EntityChunks& chunks = {});

}  // namespace kaldo::dxf
