// A multiline's vertices, directions and lists as plain values, with what
// its style and plane give them. The tools that add, remove and move
// vertices change a shape and write it back at once; directions and miter
// offsets are rebuilt the way the host builds them when a multiline is
// drawn, so that an edited multiline agrees with a drawn one.
#pragma once

#include <optional>
#include <span>
#include <vector>

#include "kxdbmline.h"

namespace kdml {

// One vertex of a shape; its lists lie in the shape's list store.
using ShapeVertex = KxDbMlineVertex;

struct MlineShape {
    std::vector<ShapeVertex> vertices;
    // Every vertex's lists. They never change in place: an edit adds the
    // vertex's new lists, so that vertices may share them.
    KxDbMlineListStore lists;
    bool closed = false;
    // Each element's distance from the axis, positive on the left.
    std::vector<double> offsets;
    double startAngle = 0;
    double endAngle = 0;
    // The multiline's plane, in world coordinates.
    KxGeVector3d xAxis{1, 0, 0};
    KxGeVector3d yAxis{0, 1, 0};
    KxGeVector3d normal{0, 0, 1};

    int size() const { return static_cast<int>(vertices.size()); }
    int elementCount() const { return static_cast<int>(offsets.size()); }
    // The vertex a segment ends at (vertex 0 for the closing segment).
    int segmentEnd(int segment) const;
    // Position + miter * entry 0 of the element's list.
    KxGePoint3d elementPoint(int vertex, int element) const;

    // A vertex's lists, read in place until the shape's lists change.
    KxDbMlineVertexLists listsAt(int vertex) const { return lists.at(vertices[std::size_t(vertex)].lists); }
    // The element list of one element at a vertex, read in place.
    std::span<const double> runs(int vertex, int element) const { return listsAt(vertex).element(element); }
    // The lists from, with the element list of element replaced by runs,
    // added to the store.
    KxDbMlineListsRef withRuns(KxDbMlineListsRef from, int element, std::span<const double> runs);
    void setRuns(int vertex, int element, std::span<const double> runs);
    // Changes the element list of one element at a vertex: change gets a
    // copy of it to edit.
    template <class Change>
    void editRuns(int vertex, int element, Change change)
    {
        const std::span<const double> current = runs(vertex, element);
        std::vector<double> list(current.begin(), current.end());
        change(list);
        setRuns(vertex, element, list);
    }

    // Direction angle from one point to another in the plane, in [0, 2pi).
    double planeAngle(const KxGePoint3d& from, const KxGePoint3d& to) const;
    // The world vector of a direction angle in the plane.
    KxGeVector3d planeDirection(double angle) const;

    // Each element's point at a vertex.
    std::vector<KxGePoint3d> elementPoints(int vertex) const;
    // Unit direction of an element line's segment; the vertex's axis when
    // the segment has no length.
    KxGeVector3d segmentDirection(int segment, int element) const;
    // Moves the runs of a segment along with its element points, which were
    // `before` and are now where the vertex's miter puts them.
    void followElementPoints(int vertex, const std::vector<KxGePoint3d>& before);
    // Every element drawn along the whole segment.
    void drawWholeSegment(int vertex);

    // Recomputes the axis and miter of a vertex from the positions, and
    // entry 0 of both lists of every element: the axis points to the next
    // vertex (the last vertex of an open multiline keeps the previous
    // vertex's axis); the miter bisects, or at the ends of an open
    // multiline turns by the cap angle from the axis.
    void refreshDirections(int vertex);
};

// The shape of a multiline, or of count of its vertices from first (all
// from first when count is negative); none when its style cannot be opened.
std::optional<MlineShape> readMlineShape(const KxDbMline* mline, int first = 0, int count = -1);
// Replaces the multiline's vertices by the shape's (open for write); the
// shape's lists move into the multiline. False when the host refuses them
// (a number that is not finite): the multiline stays as it was, and the
// transcript names it.
bool writeMlineShape(KxDbMline* mline, MlineShape&& shape);

// The miter angle between the direction a to the next vertex and b to the
// previous one: (a + b) / 2, plus pi when a > b, plus pi/2 when they agree.
double bisectorAngle(double a, double b);

// The list without its run bounds at or beyond d: the element is drawn as
// before up to d and, when a run was open there, on to the segment's end.
std::vector<double> runsBefore(std::span<const double> list, double d);

// Shifts a list's run bounds when the element's point at its vertex moves
// delta forward along the segment: the bounds come delta nearer, bounds
// that fall behind the new point go, and a run that covered it starts there.
// A run drawn from the old point stays drawn from the new one.
void shiftRuns(std::vector<double>& list, double delta);

}  // namespace kdml
