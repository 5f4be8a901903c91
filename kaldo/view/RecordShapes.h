// Shapes of entities that the host keeps as records as read (TEXT, ATTRIB,
// MTEXT, SOLID, HATCH, ELLIPSE, SPLINE), drawn from their groups into a scene. Texts go
// through TextShapes (their letters filled while the budget
// holds, else the box of each line); MTEXT's paragraph breaks start new
// lines and its other formatting codes are left out. Counts are read as far as the groups
// that follow bear them out, and every curve gets a bounded number of
// points: an ellipse 96 for a whole turn, a spline 16 for each control
// point read.
#pragma once

#include "kaldo/view/Scene.h"
#include "kaldo/view/TextShapes.h"
#include "kxdbobject.h"
#include "kxdbunmodelled.h"

#include <vector>

namespace kaldo::view {

// Each returns false when the record cannot be drawn.
bool drawTextRecord(const std::vector<KxDbFileGroup>& groups, int pen, TextShapes& text);
// ATTRIB shows its value, an ATTDEF (definition) its tag; invisible ones
// (flag 1 of 70) draw nothing.
bool drawAttributeRecord(const std::vector<KxDbFileGroup>& groups, bool definition, int pen, TextShapes& text);
bool drawMtextRecord(const std::vector<KxDbFileGroup>& groups, int pen, TextShapes& text);
// SOLID and TRACE.
bool drawSolidRecord(const std::vector<KxDbFileGroup>& groups, const DrawColor& color, Scene& scene);
// 3DFACE: its visible edges, seen from above.
bool drawFaceRecord(const std::vector<KxDbFileGroup>& groups, int pen, Scene& scene);
// LEADER: the line through its vertices (without its arrowhead).
bool drawLeaderRecord(const std::vector<KxDbFileGroup>& groups, int pen, Scene& scene);
// MESH: the edges of its faces, seen from above.
bool drawMeshRecord(const std::vector<KxDbFileGroup>& groups, int pen, Scene& scene);
// WIPEOUT and IMAGE: the frame of their boundary (the picture or the
// masking is not drawn).
bool drawFrameRecord(const std::vector<KxDbFileGroup>& groups, int pen, Scene& scene);
// Solid fills, and patterns by their line families (HatchPattern.h) in
// the pen, solid when the record gives no lines or too many to draw one by
// one; polyline paths with bulges and edges other than lines and arcs are
// drawn by their corners.
bool drawHatchRecord(const std::vector<KxDbFileGroup>& groups, int pen, Scene& scene, PointBudget& budget);
// From its start parameter to its end, one turn at most; not drawn when
// its axes are beyond the largest number.
bool drawEllipseRecord(const std::vector<KxDbFileGroup>& groups, int pen, Scene& scene);
// The curve of the control points, knots and weights, as a polyline; the
// fit points joined when the control net is unusable (a count of knots or
// points that does not fit the degree, knots out of order), the control
// points joined for a degree above 11.
bool drawSplineRecord(const std::vector<KxDbFileGroup>& groups, int pen, Scene& scene);

// The value of a group as a finite number, else fallback.
double numberIn(std::string_view text, double fallback);
// The same, as a whole number (the fraction cut off); fallback too when it
// lies beyond the range of int.
int integerIn(std::string_view text, int fallback);
// The value of the first group of code, as a number; fallback when there is
// none or it is no finite number.
double groupNumber(const std::vector<KxDbFileGroup>& groups, int code, double fallback);
// The same, as a whole number (the fraction cut off); fallback too when it
// lies beyond the range of int.
int groupInteger(const std::vector<KxDbFileGroup>& groups, int code, int fallback);
const KxDbFileGroup* findGroup(const std::vector<KxDbFileGroup>& groups, int code);
// A record's groups into groups, whose room (and that of their values) is
// used again: drawing many records unpacks them without allocating.
void unpackGroups(const KxDbUnmodelledRecord& record, std::vector<KxDbFileGroup>& groups);

}  // namespace kaldo::view
