// Cutting a multiline back or lengthening it to a point, for the tees and
// the corner joint: its end vertex moves, its elements end at given points
// and the caps of that end go.
#pragma once

#include <optional>
#include <vector>

#include "kxdbmline.h"
#include "mledit/MlineShape.h"

namespace kdml {

// Moves vertex k to point. The vertex and its neighbours get directions and
// miter offsets from the new positions. Runs of the segment into k that keep
// their direction are cut where the segment now ends (a lengthened segment
// keeps a run that was open at its end open); a segment that turns is drawn
// in full; runs of segments whose start moved along them keep their places.
void moveVertex(MlineShape& shape, int k, const KxGePoint3d& point);

// Keeps `count` vertices from vertex `first` on (an open multiline) and
// drops the others; the new ends get end directions, and the runs of the
// new first segment keep their places.
void keepVertices(MlineShape& shape, int first, int count);

// A stem or corner multiline cut back or lengthened to point, read from
// mline: keeping its start, the vertices after segment s go and the end
// vertex moves to point; keeping its end, the vertices before segment s go
// and the start vertex moves there. Only the vertices kept are read. None
// when the style cannot be opened.
std::optional<MlineShape> cutBackTo(const KxDbMline* mline, int s, bool keepStart, const KxGePoint3d& point);

// The segment of a shape that cutBackTo (s, keepStart) made that holds
// what lay on segment g of the multiline before; a segment cut off gives
// the nearest one kept.
int segmentAfterCut(const MlineShape& shape, int g, int s, bool keepStart);

// An element list rewritten so that the element stops at distance d along
// its segment (atEnd) or starts there: runs beyond (before) d go, a run
// open at d ends (starts) there. A start behind the segment's start
// (d < 0) lengthens a run drawn from the start back to d.
void trimRuns(std::vector<double>& list, double d, bool atEnd);

// trimRuns on element e of segment s, at target (a point on the element
// line or its extension); the element is then not drawn along the segments
// after s (atEnd) or before it, so that it ends (starts) at target where
// target lies next to a vertex on an earlier (later) segment than the
// multiline's last (first) one.
void trimElementTo(MlineShape& shape, int e, int s, const KxGePoint3d& target, bool atEnd);

// Switches caps off: the end caps when atEnd, the start caps when atStart;
// caps already off stay off.
void suppressCaps(KxDbMline* mline, bool atEnd, bool atStart);

}  // namespace kdml
