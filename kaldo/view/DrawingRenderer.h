// The renderer: turns a drawing's model space into a scene. Entities on
// layers that are off or frozen are left out.
#pragma once

#include "kaldo/view/Scene.h"

#include <vector>

class KxDbDatabase;
class KxDbEntity;

namespace kaldo::view {

Scene renderDrawing(const KxDbDatabase& db);
// The scene of entities that need not belong to the drawing (previews);
// their layers, linetypes and styles are looked up in db.
Scene renderEntities(const KxDbDatabase& db, const std::vector<const KxDbEntity*>& entities);

}  // namespace kaldo::view
