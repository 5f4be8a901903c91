// What the renderer makes of a drawing: a plan view of the world XY plane
// as flat lists of primitives (polylines, arcs, filled polygons) that share
// one array of points, so that building a scene of millions of segments
// allocates only when those arrays grow. The exporters and the drawing
// window turn a scene into pixels.
#pragma once

#include <cstdint>
#include <map>
#include <tuple>
#include <vector>

namespace kaldo::view {

struct Point2 {
    double x = 0;
    double y = 0;
};

// A colour as drawn: a fixed red, green and blue, or the foreground (colour
// 7), which is black on a light background and white on a dark one.
struct DrawColor {
    std::uint32_t rgb = 0;  // 0xRRGGBB, unused for the foreground
    bool foreground = true;
    static DrawColor fixed(std::uint32_t rgb) { return {rgb, false}; }
    friend bool operator==(const DrawColor&, const DrawColor&) = default;
};

// A dash pattern in drawing units, as a linetype holds it: dashes positive,
// gaps negative, dots 0. Pattern 0 of every scene is continuous (empty).
using LinePattern = std::vector<double>;

struct Pen {
    DrawColor color;
    int pattern = 0;
    friend bool operator==(const Pen&, const Pen&) = default;
};

struct Polyline {
    std::uint32_t first = 0;  // index of the first point
    std::uint32_t count = 0;
    int pen = 0;
    bool closed = false;
};

// An arc in the XY plane; sweep is signed (positive counter-clockwise),
// angles in radians. A sweep of 2 pi or more is a full circle.
struct Arc {
    Point2 centre;
    double radius = 0;
    double start = 0;
    double sweep = 0;
    int pen = 0;
};

struct Polygon {
    std::uint32_t first = 0;
    std::uint32_t count = 0;
    DrawColor color;
};

// Consecutive polylines [first, end) that draw one multiline, and its width
// in drawing units: narrower than a pixel, a coarse picture draws only the
// polylines of one of its pens.
struct PolylineGroup {
    std::uint32_t first = 0;
    std::uint32_t end = 0;
    double width = 0;
};

// Points that are not finite numbers do not count.
struct Bounds {
    double minX = 0, minY = 0, maxX = 0, maxY = 0;
    bool empty = true;
    void add(const Point2& p);
};

class Scene {
public:
    Scene();

    // The index of the pen of this colour and pattern, added when new.
    int pen(const Pen& pen);
    // The index of this pattern, added when new (continuous patterns give 0).
    int addPattern(LinePattern pattern);

    // A polyline is built point by point between begin and end; one of
    // fewer than two points is dropped. A closed one whose last point
    // repeats its first keeps the first only.
    void beginPolyline(int pen);
    void addPoint(const Point2& p);
    void endPolyline(bool closed = false);
    void addLine(const Point2& from, const Point2& to, int pen);
    void addArc(const Arc& arc) { m_arcs.push_back(arc); }
    // A polygon of the points added since the call (at least three kept).
    void beginPolygon() { m_openFirst = m_points.size(); }
    void endPolygon(const DrawColor& color);

    const std::vector<Point2>& points() const { return m_points; }
    const std::vector<Polyline>& polylines() const { return m_polylines; }
    const std::vector<Arc>& arcs() const { return m_arcs; }
    const std::vector<Polygon>& polygons() const { return m_polygons; }
    const std::vector<Pen>& pens() const { return m_pens; }
    const std::vector<LinePattern>& patterns() const { return m_patterns; }
    const std::vector<PolylineGroup>& groups() const { return m_groups; }
    // Groups the polylines added since first.
    void groupPolylines(std::uint32_t first, double width);

    // The extents of everything drawn.
    Bounds bounds() const;
    // Reserves room for about this many points and polylines.
    void reserve(std::size_t points, std::size_t polylines);

private:
    std::vector<Point2> m_points;
    std::vector<Polyline> m_polylines;
    std::vector<Arc> m_arcs;
    std::vector<Polygon> m_polygons;
    std::vector<Pen> m_pens;
    std::vector<LinePattern> m_patterns;
    std::vector<PolylineGroup> m_groups;
    // Pens and patterns by what they are: copies of blocks look theirs up
    // for each copy.
    std::map<std::tuple<bool, std::uint32_t, int>, int> m_penIndex;
    std::map<LinePattern, int> m_patternIndex;
    std::size_t m_openFirst = 0;
    int m_openPen = 0;
};

// The extents of an arc: its end points and the quadrant points it passes.
void addArcBounds(Bounds& bounds, const Arc& arc);

}  // namespace kaldo::view
