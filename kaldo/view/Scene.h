// What the renderer makes of a drawing: a plan view of the world XY plane
// as flat lists of primitives (polylines, arcs, filled polygons) that share
// one array of points, so that building a scene of millions of segments
// allocates only when those arrays grow. The exporters and the drawing
// window turn a scene into pixels.
#pragma once

#include <cstdint>
#include <map>
#include <string>
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

// A lineweight that the plot's default lineweight stands for.
inline constexpr int kDefaultLineWeight = -3;

struct Pen {
    DrawColor color;
    int pattern = 0;
    // The width of the line on paper in hundredths of a millimetre (0 the
    // thinnest), or kDefaultLineWeight; only plots draw it.
    int lineWeight = kDefaultLineWeight;
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

// A line of text kept as text, for plots that write letters as text: laid
// out in the font family at pixelSize with its baseline's start at (x, 0),
// in layout units with y downwards, and placed in the drawing by the
// matrix: (u, v) -> (xx u + yx v + dx, xy u + yy v + dy).
struct TextLine {
    std::string text;  // UTF-8
    std::string family;
    double pixelSize = 1;
    double x = 0;
    // The line's box in layout units: x to x + width, top to bottom.
    double width = 0, top = 0, bottom = 0;
    double xx = 1, xy = 0, yx = 0, yy = 1, dx = 0, dy = 0;
    int pen = 0;
    Point2 place(double u, double v) const { return {xx * u + yx * v + dx, xy * u + yy * v + dy}; }
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
    // Whether texts are kept as text lines rather than drawn as the
    // outlines of their letters (false unless asked for).
    bool keepsTexts() const { return m_keepsTexts; }
    void keepTexts(bool keep) { m_keepsTexts = keep; }
    void addText(TextLine text) { m_texts.push_back(std::move(text)); }

    const std::vector<Point2>& points() const { return m_points; }
    const std::vector<Polyline>& polylines() const { return m_polylines; }
    const std::vector<Arc>& arcs() const { return m_arcs; }
    const std::vector<Polygon>& polygons() const { return m_polygons; }
    const std::vector<Pen>& pens() const { return m_pens; }
    const std::vector<LinePattern>& patterns() const { return m_patterns; }
    const std::vector<PolylineGroup>& groups() const { return m_groups; }
    const std::vector<TextLine>& texts() const { return m_texts; }
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
    std::vector<TextLine> m_texts;
    bool m_keepsTexts = false;
    // Pens and patterns by what they are: copies of blocks look theirs up
    // for each copy.
    std::map<std::tuple<bool, std::uint32_t, int, int>, int> m_penIndex;
    std::map<LinePattern, int> m_patternIndex;
    std::size_t m_openFirst = 0;
    int m_openPen = 0;
};

// The extents of an arc: its end points and the quadrant points it passes.
void addArcBounds(Bounds& bounds, const Arc& arc);

}  // namespace kaldo::view
