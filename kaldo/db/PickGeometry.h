// What an entity draws, projected onto the world XY plane (the plan view
// that picks and selection windows are made in): the distance of a pick
// from it, its extents, and whether it lies in or meets a window.
#pragma once

#include "kaldo/util/BoxIndex.h"
#include "kxtypes.h"

#include <vector>

class KxDbEntity;

namespace kaldo {

// A circular arc in the XY plane: start and a signed sweep (positive
// counter-clockwise), XY angles in radians.
struct PlanArc {
    KxGePoint3d centre;
    double radius = 0;
    double start = 0;
    double sweep = 0;
};

struct PlanSegment {
    KxGePoint3d from;
    KxGePoint3d to;
};

// The pieces an entity draws in plan. Lines: the segment. Arcs, circles and
// polyline arc segments: arcs where their plane is parallel to XY, else
// fine polylines. Multilines: every drawn run of every element, as its
// parameter lists place it, and with their style the line caps, joints and
// arc caps. Nothing for other kinds.
struct PlanPieces {
    std::vector<PlanSegment> segments;
    std::vector<PlanArc> arcs;
    bool empty() const { return segments.empty() && arcs.empty(); }
};
void collectPlanPieces(const KxDbEntity& entity, PlanPieces& pieces);

// Infinity for entities that draw nothing here.
double pickDistance(const KxDbEntity& entity, const KxGePoint3d& worldPoint);

// The box around everything the entity draws in plan (tight: arcs by the
// points where they turn); false for entities that draw nothing.
bool pickExtents(const KxDbEntity& entity, Box& box);

// Whether the drawn pieces lie in window or cross its edges.
bool meetsWindow(const PlanPieces& pieces, const Box& window);

}  // namespace kaldo
