// Lightweight polylines as one scene polyline each: straight segments as
// they are, bulged segments as points along their arcs. Widths are not
// drawn; the centre line is.
#pragma once

#include "kaldo/view/Scene.h"

class KxDbPolyline;

namespace kaldo::view {

void drawPolyline(const KxDbPolyline& polyline, int pen, Scene& scene);

}  // namespace kaldo::view
