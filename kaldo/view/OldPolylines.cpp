#include "kaldo/view/OldPolylines.h"

#include <cmath>
#include <cstdlib>

#include "kaldo/view/PolylineRenderer.h"
#include "kaldo/view/RecordShapes.h"
#include "kxdbents.h"

namespace kaldo::view {

namespace {

// Flags of the POLYLINE record (70).
constexpr int kClosed = 1;
constexpr int kThreeD = 8;
constexpr int kMesh = 16;
constexpr int kClosedAcross = 32;
constexpr int kPolyface = 64;
// A polyface's VERTEX record of a face, not a position (70).
constexpr int kFaceRecord = 128;
constexpr int kPositionRecord = 64;

}  // namespace

void OldPolyline::begin(const std::vector<KxDbFileGroup>& groups, int pen)
{
    m_open = true;
    m_head = groups;
    m_vertices.clear();
    m_pen = pen;
}

bool OldPolyline::addVertex(const std::vector<KxDbFileGroup>& groups)
{
    if (!m_open)
        return false;
    Vertex& v = m_vertices.emplace_back();
    v.x = groupNumber(groups, 10, 0);
    v.y = groupNumber(groups, 20, 0);
    v.startWidth = groupNumber(groups, 40, 0);
    v.endWidth = groupNumber(groups, 41, 0);
    v.bulge = groupNumber(groups, 42, 0);
    v.flags = groupInteger(groups, 70, 0);
    for (int corner = 0; corner < 4; ++corner)
        v.face[std::size_t(corner)] = groupInteger(groups, 71 + corner, 0);
    return true;
}

void OldPolyline::end(Scene& scene)
{
    if (!m_open)
        return;
    const int flags = groupInteger(m_head, 70, 0);
    if (flags & kPolyface)
        drawFaces(scene);
    else if (flags & kMesh)
        drawMesh(scene);
    else
        drawPlane(scene);
    m_open = false;
    m_head.clear();
    m_vertices.clear();
}

void OldPolyline::drawPlane(Scene& scene) const
{
    const int flags = groupInteger(m_head, 70, 0);
    if (flags & kThreeD) {
        scene.beginPolyline(m_pen);
        for (const Vertex& v : m_vertices)
            scene.addPoint({v.x, v.y});
        scene.endPolyline(flags & kClosed);
        return;
    }
    KxDbPolyline polyline;
    polyline.setClosed(flags & kClosed);
    polyline.setElevation(groupNumber(m_head, 30, 0));
    polyline.setConstantWidth(groupNumber(m_head, 40, 0));
    polyline.setNormal({groupNumber(m_head, 210, 0), groupNumber(m_head, 220, 0), groupNumber(m_head, 230, 1)});
    std::vector<KxDbPolyline::Vertex> vertices;
    for (const Vertex& v : m_vertices)
        vertices.push_back({v.x, v.y, v.startWidth, v.endWidth, v.bulge});
    polyline.setVertices(vertices);
    drawPolyline(polyline, m_pen, scene);
}

void OldPolyline::drawMesh(Scene& scene) const
{
    // m rows of n vertices, in order; the lines of the grid both ways.
    const int flags = groupInteger(m_head, 70, 0);
    const std::size_t m = std::size_t(std::max(0, groupInteger(m_head, 71, 0)));
    const std::size_t n = std::size_t(std::max(0, groupInteger(m_head, 72, 0)));
    if (m == 0 || n == 0 || m_vertices.size() < m * n)
        return;
    const auto line = [&](std::size_t first, std::size_t step, std::size_t count, bool closed) {
        scene.beginPolyline(m_pen);
        for (std::size_t i = 0; i < count; ++i)
            scene.addPoint({m_vertices[first + i * step].x, m_vertices[first + i * step].y});
        scene.endPolyline(closed);
    };
    for (std::size_t row = 0; row < m; ++row)
        line(row * n, 1, n, flags & kClosedAcross);
    for (std::size_t column = 0; column < n; ++column)
        line(column, n, m, flags & kClosed);
}

void OldPolyline::drawFaces(Scene& scene) const
{
    std::vector<Point2> positions;
    for (const Vertex& v : m_vertices)
        if ((v.flags & kPositionRecord) || !(v.flags & kFaceRecord))
            positions.push_back({v.x, v.y});
    const auto at = [&](int number) {
        const std::size_t index = std::size_t(std::abs(number)) - 1;
        return index < positions.size() ? &positions[index] : nullptr;
    };
    for (const Vertex& v : m_vertices) {
        if ((v.flags & kPositionRecord) || !(v.flags & kFaceRecord))
            continue;
        // The corners given (a triangle leaves the fourth 0); an edge from
        // a corner whose number is negative is invisible.
        int corners = 0;
        while (corners < 4 && v.face[std::size_t(corners)] != 0)
            ++corners;
        for (int c = 0; c < corners; ++c) {
            const int from = v.face[std::size_t(c)], to = v.face[std::size_t((c + 1) % corners)];
            const Point2* a = at(from);
            const Point2* b = at(to);
            if (from > 0 && a && b)
                scene.addLine(*a, *b, m_pen);
        }
    }
}

}  // namespace kaldo::view
