// The working state of one run of a multiline editing tool: the prompt
// buffer, the last selection, the two picked multilines, the scratch list
// for parameter rewriting, the crossing table and the undo copies.
#pragma once

#include <memory>
#include <vector>

#include "kxdbmline.h"
#include "kxed.h"
#include "kxtypes.h"

namespace kdml {

// The polyline an element draws along: one point per vertex,
// vertex + miter * element parameter 0.
using ElementLine = std::vector<KxGePoint3d>;

// One picked multiline: where the pick hit it, and a movable copy of the
// hit (the mark) that the tools carry onto other element lines.
struct MlinePick {
    kxds_name_t name;
    KxGePoint3d hitPoint;    // world point on the hit element line
    double hitDistance = 0;  // from the element line's point at hitSegment
    int hitSegment = 0;
    int hitElement = 0;
    int numVertices = 0;
    int numElements = 0;
    bool closed = false;
    // The open multiline, or null. A second pick of the same entity shares
    // the first pick's object and never closes it.
    KxDbMline* mline = nullptr;
    std::vector<KxGePoint3d> vertices;      // the axis
    std::vector<ElementLine> elementLines;  // one per element
    KxGePoint3d markPoint;
    double markDistance = 0;
    int markSegment = 0;
    int markElement = 0;
    KxGePoint3d snapPoint;  // where a weld pick lands

    // Copies the hit into the mark.
    void markHit();
};

// Two picks name the same entity when the first words of their names agree.
bool sameEntity(const MlinePick& a, const MlinePick& b);

// Crossings between every element line of the first multiline (rows) and
// every element line of the second (columns), with the segments they lie on.
struct CrossingTable {
    struct Segments {
        int first = 0;
        int second = 0;
    };
    std::vector<std::vector<KxGePoint3d>> points;
    std::vector<std::vector<Segments>> segments;
    int rows() const { return static_cast<int>(points.size()); }
};

struct MlineEditContext {
    MlineEditContext();
    // Closes the picks' multilines if they are still open.
    ~MlineEditContext();
    MlineEditContext(const MlineEditContext&) = delete;
    MlineEditContext& operator=(const MlineEditContext&) = delete;

    int status = RTNORM;  // last input result; the tool returns it
    wchar_t text[KXED_TEXT_SIZE] = {};
    KxGePoint3d pickPoint;  // user coordinates
    double pickTolerance = 0;
    kxds_name_t pickName;
    MlinePick first;
    MlinePick second;
    std::vector<double> paramScratch;
    CrossingTable crossings;
    std::unique_ptr<KxDbMline> undoFirst;
    std::unique_ptr<KxDbMline> undoSecond;
};

// Copies resource string id into the context's text buffer and returns it.
const wchar_t* loadText(MlineEditContext& context, unsigned id);

// Closes the picks' open multilines (the second only when it is another
// entity) and clears both pointers.
void closePicks(MlineEditContext& context);

}  // namespace kdml
