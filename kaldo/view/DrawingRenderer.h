// The renderer: turns a drawing's model space into a scene. Entities on
// layers that are off or frozen are left out.
#pragma once

#include "kaldo/view/Scene.h"

#include <vector>

class KxDbDatabase;
class KxDbEntity;

namespace kaldo::view {

Scene renderDrawing(const KxDbDatabase& db);

// A scene of a few entities (open for read, or in no database yet) with
// the layers, linetypes and styles of db: what a window draws over the
// drawing (highlights, a drag's entity).
Scene renderEntities(const KxDbDatabase& db, const std::vector<const KxDbEntity*>& entities);

}  // namespace kaldo::view
