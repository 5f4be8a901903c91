// The renderer: turns a drawing's model space into a scene. Entities on
// layers that are off or frozen are left out.
#pragma once

#include "kaldo/view/Scene.h"

class KxDbDatabase;

namespace kaldo::view {

Scene renderDrawing(const KxDbDatabase& db);

}  // namespace kaldo::view
