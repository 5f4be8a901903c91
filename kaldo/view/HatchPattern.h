// The lines of a pattern hatch. A HATCH record holds its pattern's line
// families already scaled and turned: each a direction, a line through a
// base point, the offset from one line of the family to the next, and its
// dashes (positive a dash, negative a gap, zero a dot). Lines are cut to
// the hatch's boundary loops by the even-odd rule, then into their dashes,
// the pattern starting at each line's own point.
#pragma once

#include "kaldo/view/Scene.h"

#include <cstddef>
#include <functional>
#include <vector>

namespace kaldo::view {

struct PatternFamily {
    double angle = 0;  // radians
    Point2 base;
    Point2 offset;
    std::vector<double> dashes;  // empty: continuous
};

// Hands each dash (a dot as a piece of no length) inside the loops to
// piece, in the loops' coordinates. Returns false, handing out nothing,
// when the families would draw more than mostLines lines across the loops'
// extents, or none at all (no family with lines apart).
bool patternPieces(const std::vector<std::vector<Point2>>& loops, const std::vector<PatternFamily>& families,
                   std::size_t mostLines, const std::function<void(const Point2&, const Point2&)>& piece);

}  // namespace kaldo::view
