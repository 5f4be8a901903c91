// Reading and rewriting a multiline's vertices, directions, flags and
// per-vertex parameter lists. Every operation returns false and changes
// nothing for a null multiline or an index out of range; the writers need
// the multiline open for write.
#pragma once

#include <vector>

#include "kxdbmline.h"
#include "kxdbmlstyle.h"
#include "mledit/MlineEditContext.h"

namespace kdml {

// Bits of a multiline's flag word.
enum MlineFlags : int {
    kHasVertices = 1,
    kClosed = 2,
    kStartCapsSuppressed = 4,
    kEndCapsSuppressed = 8,
};

bool readMlineFlags(const KxDbMline* mline, int& flags);
// The closed bit only takes on more than 2 vertices.
bool applyMlineFlags(KxDbMline* mline, int flags);
// Removes last segments or appends segments at the origin; n >= 2.
bool setVertexCount(KxDbMline* mline, int n);
bool getElementCount(const KxDbMline* mline, int& n);
bool setElementCountAll(KxDbMline* mline, int n);

// Element lists (entry 0 the miter offset, then the run bounds). The readers
// clamp vertex and element into range; the writers require them in range.
bool getElementParamCount(const KxDbMline* mline, int& n, int vertex, int element);
bool getElementParams(const KxDbMline* mline, std::vector<double>& values, int vertex, int element);
// Replaces the list by one of n zeros.
bool setElementParamCount(KxDbMline* mline, int n, int vertex, int element);
// Overwrites the list's entries with the first ones of values (the list
// keeps its length; values must be at least as long, the list non-empty).
bool setElementParams(KxDbMline* mline, const std::vector<double>& values, int vertex, int element);
// setElementParamCount to the length of values, then setElementParams.
bool writeElementParams(KxDbMline* mline, const std::vector<double>& values, int vertex, int element);

// The same on the area-fill lists.
bool getFillParamCount(const KxDbMline* mline, int& n, int vertex, int element);
bool getFillParams(const KxDbMline* mline, std::vector<double>& values, int vertex, int element);
bool setFillParamCount(KxDbMline* mline, int n, int vertex, int element);
bool setFillParams(KxDbMline* mline, const std::vector<double>& values, int vertex, int element);

bool getVertices(const KxDbMline* mline, std::vector<KxGePoint3d>& points);
bool setVertices(KxDbMline* mline, const std::vector<KxGePoint3d>& points);
bool getAxes(const KxDbMline* mline, std::vector<KxGeVector3d>& axes);
bool setAxes(KxDbMline* mline, const std::vector<KxGeVector3d>& axes);
bool getMiters(const KxDbMline* mline, std::vector<KxGeVector3d>& miters);
bool setMiters(KxDbMline* mline, const std::vector<KxGeVector3d>& miters);
bool getNormal(const KxDbMline* mline, KxGeVector3d& normal);

// Opens the multiline's style for read; the pointer closes it.
bool openMlineStyle(const KxDbMline* mline, KxDbObjectPtr<KxDbMlineStyle>& style);

struct MlineElementParams {
    std::vector<double> elementParams;
    std::vector<double> fillParams;
};

struct MlineVertexData {
    KxGePoint3d position;
    KxGeVector3d axis;
    KxGeVector3d miter;
    std::vector<MlineElementParams> elements;
};

// Every vertex with its directions and both lists of every element.
std::vector<MlineVertexData> readMlineSnapshot(const KxDbMline* mline);

// The point of element at vertex (see ElementLine); entry 0 counts as 0
// when the vertex has no list for the element.
KxGePoint3d elementPointAt(const KxDbMline* mline, int vertex, int element);

// The element lines of every element (see ElementLine).
std::vector<ElementLine> buildElementLines(const KxDbMline* mline);

}  // namespace kdml
