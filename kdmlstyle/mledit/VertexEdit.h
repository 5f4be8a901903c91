// Adding a vertex to a multiline and removing one, keeping its look: the
// vertices around the change get directions and miter offsets as the host
// gives a drawn multiline, and the element runs stay where they were as
// far as the new path allows.
#pragma once

#include "mledit/MlineEditContext.h"
#include "mledit/MlineShape.h"

namespace kdml {

// Distance of point from the line through a and b, positive on the left of
// a -> b when seen against normal; foot receives the perpendicular's foot.
double signedDistanceToLine(const KxGePoint3d& point, const KxGePoint3d& a, const KxGePoint3d& b,
                            const KxGeVector3d& normal, KxGePoint3d* foot = nullptr);

// Adds a vertex on segment `segment` (the closing segment of a closed
// multiline appends it last) at the foot of near on the segment's axis.
// Every run stays where it was drawn: the runs before the new vertex stay
// on the segment, cut at it, those beyond it go to the new segment. False,
// and no change, when the foot is an existing vertex or the segment does
// not exist.
bool insertVertex(MlineShape& shape, int segment, const KxGePoint3d& near);

// Removes vertex k. The joined segment is drawn in full; the runs of the
// segment after it keep their places. False, and no change, when k does
// not exist or the multiline would keep fewer than 2 vertices (3 when
// closed).
bool removeVertex(MlineShape& shape, int k);

// The vertex nearest to the context's pick point, as the view shows it:
// the nearer end of the first element segment within the pick box (the
// later end on a tie), or of the closing segment of a closed multiline;
// vertex 0 when no element passes within the pick box.
int findVertexNearPick(MlineEditContext& context, const MlinePick& pick);

// insertVertex at the pick's hit segment and point, on its multiline (open
// for write); false when nothing changed. The pick's geometry stays that of
// the multiline before the edit.
bool insertVertexAtPick(MlinePick& pick);
// removeVertex on the pick's multiline (open for write); false when
// nothing changed. Either way the pick's geometry is that of the
// multiline before the edit.
bool removeVertex(MlinePick& pick, int k);

}  // namespace kdml
