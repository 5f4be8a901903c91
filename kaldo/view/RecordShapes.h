// Shapes of entities that the host keeps as records as read (TEXT, ATTRIB,
// MTEXT, SOLID, ELLIPSE, HATCH), drawn from their groups into a scene. Texts are
// the outlines of their letters in Qt's sans-serif font, scaled so that a
// capital is as tall as the text height; MTEXT's paragraph breaks start new
// lines and its other formatting codes are left out. Texts need a
// QGuiApplication (fonts); without one they are not drawn.
#pragma once

#include "kaldo/view/Scene.h"
#include "kxdbobject.h"

#include <vector>

namespace kaldo::view {

// Each returns false when the record cannot be drawn.
bool drawTextRecord(const std::vector<KxDbFileGroup>& groups, int pen, Scene& scene);
bool drawMtextRecord(const std::vector<KxDbFileGroup>& groups, int pen, Scene& scene);
bool drawSolidRecord(const std::vector<KxDbFileGroup>& groups, const DrawColor& color, Scene& scene);
bool drawEllipseRecord(const std::vector<KxDbFileGroup>& groups, int pen, Scene& scene);
// A solid HATCH whose boundary paths are polylines without bulges, each
// path a filled polygon in the hatch's colour.
bool drawHatchRecord(const std::vector<KxDbFileGroup>& groups, const DrawColor& color, Scene& scene);

// The value of the first group of code, as a number; fallback when there is
// none or it is no number.
double groupNumber(const std::vector<KxDbFileGroup>& groups, int code, double fallback);
const KxDbFileGroup* findGroup(const std::vector<KxDbFileGroup>& groups, int code);

}  // namespace kaldo::view
