// Polylines of the old form: a POLYLINE record, a VERTEX record for each
// vertex and SEQEND, which ends it. Plane polylines are drawn as
// lightweight ones (bulges as arcs), 3D polylines through their vertices
// seen from above, polygon meshes as the lines of their grid and polyface
// meshes as the visible edges of their faces.
#pragma once

#include <array>
#include <vector>

#include "kaldo/view/Scene.h"
#include "kxdbobject.h"

namespace kaldo::view {

class OldPolyline {
public:
    // Starts a polyline from its POLYLINE record's groups.
    void begin(const std::vector<KxDbFileGroup>& groups, int pen);
    // False when no polyline was begun.
    bool addVertex(const std::vector<KxDbFileGroup>& groups);
    // Draws the polyline begun, if any, and forgets it.
    void end(Scene& scene);
    // Whether a polyline was begun and not yet ended.
    bool open() const { return m_open; }

private:
    struct Vertex {
        double x = 0, y = 0;
        double startWidth = 0, endWidth = 0, bulge = 0;
        int flags = 0;
        std::array<int, 4> face{};  // polyface vertex numbers from 1, negative before an invisible edge
    };
    void drawPlane(Scene& scene) const;
    void drawMesh(Scene& scene) const;
    void drawFaces(Scene& scene) const;

    bool m_open = false;
    std::vector<KxDbFileGroup> m_head;
    std::vector<Vertex> m_vertices;
    int m_pen = 0;
};

}  // namespace kaldo::view
