// What a multiline is drawn with, worked out from what it stores alone:
// vertices, segment directions, miters and per vertex and element the
// parameter lists, with the caps, joints and fill of its style. The
// renderer turns the pieces into a scene, EXPLODE into lines, arcs and a
// hatch, so that both show the same geometry. The parameter records are
// read where the multiline keeps them, without taking references; scratch
// arrays are kept between multilines.
#pragma once

#include <array>
#include <vector>

#include "kxdbmline.h"

class KxDbMlineStyle;

namespace kaldo::view {

// One drawn stretch of an element along one segment. continues: it starts
// at the vertex where the element's previous run ended; closes: it ends
// where the element's first run starts and the element is drawn all round
// without a break (a closed multiline).
struct MlineRun {
    int element = 0;
    KxGePoint3d from;
    KxGePoint3d to;
    bool continues = false;
    bool closes = false;
};

// A straight piece of a line cap or a joint, in an element's colour.
struct MlineCapLine {
    int element = 0;
    KxGePoint3d from;
    KxGePoint3d to;
};

// An arc of an arc cap in the multiline's plane, in an element's colour:
// start and sweep are plane angles, sweep signed (positive
// counter-clockwise about the multiline's normal).
struct MlineCapArc {
    int element = 0;
    KxGePoint3d centre;
    double radius = 0;
    double start = 0;
    double sweep = 0;
};

// A filled quadrilateral between the first and the last element.
struct MlineFill {
    std::array<KxGePoint3d, 4> corners;
};

class MlinePieceSink {
public:
    virtual void fill(const MlineFill& fill) = 0;
    virtual void run(const MlineRun& run) = 0;
    virtual void capLine(const MlineCapLine& line) = 0;
    virtual void capArc(const MlineCapArc& arc) = 0;

protected:
    ~MlinePieceSink() = default;
};

class MlinePieces {
public:
    // Hands the pieces of mline to sink: fills, then every element's runs
    // in order, then joints and caps. style may be null: then only the
    // elements are drawn. Returns the number of elements drawn (0 when the
    // multiline draws nothing).
    int collect(const KxDbMline& mline, const KxDbMlineStyle* style, MlinePieceSink& sink);

private:
    // Where an element crosses a vertex's miter.
    const KxGePoint3d& elementPoint(int vertex, int element) const;
    void collectElement(int element, bool closed, MlinePieceSink& sink) const;
    void collectFill(bool closed, MlinePieceSink& sink) const;
    void collectLineCap(int vertex, MlinePieceSink& sink) const;
    void collectArcCaps(int vertex, const KxGeVector3d& outward, bool outer, bool inner, MlinePieceSink& sink) const;
    void collectArcPair(int vertex, int first, int second, const KxGeVector3d& outward, MlinePieceSink& sink) const;

    const KxDbMline* m_mline = nullptr;
    int m_elements = 0;
    std::vector<KxDbMlineVertexLists> m_params;  // read in place
    std::vector<KxGePoint3d> m_positions;
    std::vector<KxGeVector3d> m_axes;
    std::vector<KxGeVector3d> m_miters;
    std::vector<KxGePoint3d> m_elementPoints;  // per vertex, per element
};

}  // namespace kaldo::view
