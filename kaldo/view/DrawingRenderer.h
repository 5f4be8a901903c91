// The renderer: turns a drawing's model space into a scene. Entities on
// layers that are off or frozen are left out. Besides the modelled
// entities it draws records kept as read: TEXT, ATTRIB, MTEXT, SOLID,
// ELLIPSE, solid HATCH, and INSERT and DIMENSION through their blocks (nested, scaled,
// rotated; the block's base point taken as its origin).
#pragma once

#include "kaldo/view/Scene.h"

#include <set>
#include <string>
#include <vector>

class KxDbDatabase;
class KxDbEntity;

namespace kaldo::view {

// undrawn, when given, receives the kinds of the records it could not draw.
Scene renderDrawing(const KxDbDatabase& db, std::set<std::string>* undrawn = nullptr);

// A scene of a few entities (open for read, or in no database yet) with
// the layers, linetypes and styles of db: what a window draws over the
// drawing (highlights, a drag's entity).
Scene renderEntities(const KxDbDatabase& db, const std::vector<const KxDbEntity*>& entities);

}  // namespace kaldo::view
