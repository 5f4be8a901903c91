// What the renderer makes of a drawing: a plan view of the world XY plane
// as flat lists of compact records (polylines, arcs, filled polygons) that
// share one array of points, so that building a scene of millions of
// segments allocates only when those arrays grow. What a drawing repeats
// is drawn once: a block's drawing and a letter's outline are parts, in
// their own coordinates, and each reference or line of text is one
// instance that places a shape (parts side by side) by an affine map. The
// exporters and the drawing window turn a scene into pixels, placing the
// parts as they paint.
#pragma once

#include <algorithm>
#include <cstdint>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <tuple>
#include <unordered_map>
#include <utility>
#include <vector>

#include "kaldo/util/BoxIndex.h"

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

// The pen of a part's polyline that takes the pen of the instance placing
// it (a letter is drawn in the colour of its text).
constexpr int kInstancePen = -1;

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

// A fill; one of a part may take the colour of the pen of the instance
// placing it (a letter is filled in the colour of its text).
struct Polygon {
    std::uint32_t first = 0;
    std::uint32_t count = 0;
    DrawColor color;
    bool instanceColor = false;
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

// The bounds of points, as adding them one by one gives.
Bounds pointBounds(std::span<const Point2> points);

// Where a part's points go: (xx x + xy y + dx, yx x + yy y + dy).
struct Affine {
    double xx = 1, xy = 0, yx = 0, yy = 1, dx = 0, dy = 0;
    Point2 operator()(const Point2& p) const { return {xx * p.x + xy * p.y + dx, yx * p.x + yy * p.y + dy}; }
    // This map after a move by (x, 0) in the part's own coordinates.
    Affine shiftedAlongX(double x) const { return {xx, xy, yx, yy, dx + xx * x, dy + yx * x}; }
    // The map that applies first, then this one.
    Affine after(const Affine& first) const;
};

// A line of text kept as text, for plots that write letters as text: laid
// out in the font that stands for fontFile (fontForFile in TextShapes.h)
// with its baseline's start at (left, 0), in layout units with y
// downwards; box is its extent there (from the height of a capital to the
// descent), place maps layout units into the drawing.
struct TextLine {
    std::string text;  // UTF-8
    std::string fontFile;
    double left = 0;
    Box box;
    Affine place;
    int pen = 0;
};

// A drawing in its own coordinates: polylines, fills and kept texts in the
// scene's part lists, over the part points, and the corners of the convex
// hull of those points and of the texts' boxes (placed, they give an
// instance's exact extents).
struct Part {
    std::uint32_t firstPolyline = 0, endPolyline = 0;
    std::uint32_t firstPolygon = 0, endPolygon = 0;
    std::uint32_t firstText = 0, endText = 0;
    std::uint32_t firstHull = 0, endHull = 0;
};

// The closed outlines of a glyph, filled together, in layout units (y
// downwards); outline i ends before point ends[i].
struct GlyphOutlines {
    std::vector<Point2> points;
    std::vector<std::uint32_t> ends;
};

// A letter of a line of text laid out: its glyph moved along the line.
struct LaidOutLetter {
    const GlyphOutlines* glyph = nullptr;
    double shift = 0;
};

class LineLetters;

// A shape that is a line of text of the scene's LineLetters rather than
// parts.
constexpr std::uint32_t kNoLine = 0xFFFFFFFFu;

// A part moved along x within a shape (a letter along its line).
struct ShapeRun {
    std::uint32_t part = 0;
    double shift = 0;
};

// Parts side by side: one for a block, one for each letter of a line of
// text. box is its extent in its own coordinates (a text line's box from
// the descent to the height of a capital); pens lists the distinct pens of
// its parts' polylines, and kInstancePen, standing for the instance's own
// pen, also for fills in the instance's colour (drawn as a dot or a box
// when small, in that pen).
struct Shape {
    std::uint32_t firstRun = 0, endRun = 0;
    std::uint32_t firstPen = 0, endPen = 0;
    Bounds box;
    bool text = false;   // small in a coarse picture, it is drawn as its box
    bool fills = false;  // whether its parts have fills
    // A line of text laid out when first drawn (its letters filled in the
    // instance's colour).
    std::uint32_t line = kNoLine;
};

// A shape placed. box is its exact extent in the drawing; the instance
// lies among the scene's polylines and fills where it was added (before
// the polyline and the fill of those numbers), which paints it in order.
struct Instance {
    Affine place;
    Box box;
    std::uint32_t shape = 0;
    int pen = 0;  // for kInstancePen, and for the instance drawn as a dot
    std::uint32_t polylinesBefore = 0;
    std::uint32_t polygonsBefore = 0;
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
    // outlines of their letters (false unless asked for: plots).
    bool keepsTexts() const { return m_keepsTexts; }
    void keepTexts(bool keep) { m_keepsTexts = keep; }
    void addText(TextLine text) { m_texts.push_back(std::move(text)); }

    // Adds what scene draws as a part (its pens and patterns taken over,
    // its arcs as polylines of 64 points a turn, its instances and kept
    // texts placed);
    // returns the part's index.
    std::uint32_t addPart(const Scene& scene);
    // Adds a shape of the parts of runs; returns its index.
    std::uint32_t addShape(std::span<const ShapeRun> runs, const Bounds& box, bool text);
    // The lines of text laid out when first drawn, made at the first call.
    LineLetters& lineLetters();
    // Adds a shape of a line of lineLetters() whose box is box; returns its
    // index.
    std::uint32_t addLineShape(std::uint32_t line, const Bounds& box);
    // The letters of a line shape, laid out now when first asked for.
    std::span<const LaidOutLetter> letters(const Shape& shape) const;
    // Places a shape; returns false (adding nothing) when it has no points.
    bool addInstance(std::uint32_t shape, const Affine& place, int pen);
    // Places a shape whose extent the caller knows (a line of text not yet
    // laid out).
    void addInstance(std::uint32_t shape, const Affine& place, int pen, const Box& box);
    // Points that placing the shape adds to a picture drawn in full.
    std::size_t shapePoints(std::uint32_t shape) const;
    // Adds what later drew, after what this scene holds, as drawing on
    // into this scene would have: its pens, patterns, lines of text and
    // shapes taken over in the order later met them (those this scene has
    // keep their numbers), its items after these. sameShapes maps shapes
    // of later to the shapes of this scene that draw the same (a block
    // both drew), whose parts are not added again. later's lists of items
    // are freed as they are taken over, so that the two scenes are not
    // held twice.
    void append(Scene&& later, const std::unordered_map<std::uint32_t, std::uint32_t>& sameShapes);

    const std::vector<Point2>& points() const { return m_points; }
    const std::vector<Polyline>& polylines() const { return m_polylines; }
    const std::vector<Arc>& arcs() const { return m_arcs; }
    const std::vector<Polygon>& polygons() const { return m_polygons; }
    const std::vector<Pen>& pens() const { return m_pens; }
    const std::vector<LinePattern>& patterns() const { return m_patterns; }
    const std::vector<PolylineGroup>& groups() const { return m_groups; }
    const std::vector<TextLine>& texts() const { return m_texts; }
    const std::vector<Instance>& instances() const { return m_instances; }
    const std::vector<Shape>& shapes() const { return m_shapes; }
    const std::vector<ShapeRun>& runs() const { return m_runs; }
    const std::vector<Part>& parts() const { return m_parts; }
    const std::vector<Point2>& partPoints() const { return m_partPoints; }
    const std::vector<Polyline>& partPolylines() const { return m_partPolylines; }
    const std::vector<Polygon>& partPolygons() const { return m_partPolygons; }
    const std::vector<int>& shapePens() const { return m_shapePens; }
    const std::vector<TextLine>& partTexts() const { return m_partTexts; }
    // Groups the polylines added since first.
    void groupPolylines(std::uint32_t first, double width);

    // Calls visit(pen, closed, points) for every polyline the scene draws,
    // those of instances placed (in a buffer valid during the call), in
    // the order of the scene.
    template <class Visit>
    void visitPolylines(Visit&& visit) const;
    // The same for the polylines of one instance.
    template <class Visit>
    void visitPolylines(const Instance& instance, Visit&& visit) const;
    // Calls visit(color, points) for every fill the scene draws, those of
    // instances placed, in the order of the scene.
    template <class Visit>
    void visitPolygons(Visit&& visit) const;
    // The same for the fills of one instance.
    template <class Visit>
    void visitPolygons(const Instance& instance, Visit&& visit) const;
    // Calls visit(text) for every kept text line, those of instances placed
    // (the scene's own first, then each instance's).
    template <class Visit>
    void visitTexts(Visit&& visit) const;
    // Calls visit(color) for each fill of one instance, in the order of
    // visitPolygons, without placing its points (for a line of text not
    // laid out, its one colour once).
    template <class Visit>
    void visitFillColors(const Instance& instance, Visit&& visit) const;
    // Calls visit(pen) for each pen an instance draws in (its own for
    // kInstancePen), each once, in ascending order of the shape's pens.
    template <class Visit>
    void visitPens(const Instance& instance, Visit&& visit) const;

    // The extents of everything drawn.
    Bounds bounds() const;
    // Reserves room for about this many points, polylines and arcs.
    void reserve(std::size_t points, std::size_t polylines, std::size_t arcs);

private:
    // Calls visit(item, its points placed) for the items of the instance's
    // parts that [part.*first, part.*end) selects in items.
    template <class Item, class Visit>
    void visitPlaced(const Instance& instance, std::uint32_t Part::*first, std::uint32_t Part::*end,
                     const std::vector<Item>& items, Visit&& visit) const;
    int takePen(const Scene& from, int pen, std::vector<int>& pens, std::vector<int>& patterns);
    std::uint32_t endPart(std::uint32_t firstPoint, std::uint32_t firstPolyline, std::uint32_t firstPolygon,
                          std::uint32_t firstText);
    // Adds a part of later, its pens by the numbers pens gives them here.
    std::uint32_t appendPart(const Scene& later, const Part& part, const std::vector<int>& pens);

    std::vector<Point2> m_points;
    std::vector<Polyline> m_polylines;
    std::vector<Arc> m_arcs;
    std::vector<Polygon> m_polygons;
    std::vector<Pen> m_pens;
    std::vector<LinePattern> m_patterns;
    std::vector<PolylineGroup> m_groups;
    std::vector<TextLine> m_texts;
    bool m_keepsTexts = false;
    std::vector<Instance> m_instances;
    std::vector<Shape> m_shapes;
    std::vector<ShapeRun> m_runs;
    std::vector<int> m_shapePens;
    std::vector<Part> m_parts;
    std::vector<Point2> m_partPoints;
    std::vector<Polyline> m_partPolylines;
    std::vector<Polygon> m_partPolygons;
    std::vector<Point2> m_hulls;
    std::vector<TextLine> m_partTexts;
    std::shared_ptr<LineLetters> m_lineLetters;
    // Pens and patterns by what they are: copies of blocks look theirs up
    // for each copy.
    std::map<std::tuple<bool, std::uint32_t, int, int>, int> m_penIndex;
    std::map<LinePattern, int> m_patternIndex;
    std::size_t m_openFirst = 0;
    int m_openPen = 0;
};

// The corners of the convex hull of points, in order; points that are not
// finite numbers are left out.
std::vector<Point2> convexHull(std::vector<Point2> points);

// The extents of an arc: its end points and the quadrant points it passes.
void addArcBounds(Bounds& bounds, const Arc& arc);

template <class Item, class Visit>
void Scene::visitPlaced(const Instance& instance, std::uint32_t Part::*first, std::uint32_t Part::*end,
                        const std::vector<Item>& items, Visit&& visit) const
{
    std::vector<Point2> placed;
    const Shape& shape = m_shapes[instance.shape];
    for (std::uint32_t r = shape.firstRun; r < shape.endRun; ++r) {
        const Part& part = m_parts[m_runs[r].part];
        const Affine place = instance.place.shiftedAlongX(m_runs[r].shift);
        for (std::uint32_t i = part.*first; i < part.*end; ++i) {
            const Item& item = items[i];
            placed.clear();
            for (std::uint32_t p = 0; p < item.count; ++p)
                placed.push_back(place(m_partPoints[item.first + p]));
            visit(item, std::span<const Point2>(placed));
        }
    }
}

template <class Visit>
void Scene::visitPolylines(const Instance& instance, Visit&& visit) const
{
    visitPlaced(instance, &Part::firstPolyline, &Part::endPolyline, m_partPolylines,
                [&](const Polyline& polyline, std::span<const Point2> placed) {
                    visit(polyline.pen == kInstancePen ? instance.pen : polyline.pen, polyline.closed, placed);
                });
}

template <class Visit>
void Scene::visitPolygons(const Instance& instance, Visit&& visit) const
{
    const Shape& shape = m_shapes[instance.shape];
    if (shape.line != kNoLine) {
        const DrawColor& color = m_pens[std::size_t(instance.pen)].color;
        std::vector<Point2> placed;
        for (const LaidOutLetter& letter : letters(shape)) {
            const Affine place = instance.place.shiftedAlongX(letter.shift);
            std::uint32_t begin = 0;
            for (const std::uint32_t end : letter.glyph->ends) {
                placed.clear();
                for (std::uint32_t p = begin; p < end; ++p)
                    placed.push_back(place(letter.glyph->points[p]));
                visit(color, std::span<const Point2>(placed));
                begin = end;
            }
        }
        return;
    }
    visitPlaced(instance, &Part::firstPolygon, &Part::endPolygon, m_partPolygons,
                [&](const Polygon& polygon, std::span<const Point2> placed) {
                    visit(polygon.instanceColor ? m_pens[std::size_t(instance.pen)].color : polygon.color, placed);
                });
}

template <class Visit>
void Scene::visitFillColors(const Instance& instance, Visit&& visit) const
{
    const Shape& shape = m_shapes[instance.shape];
    if (shape.line != kNoLine) {
        visit(m_pens[std::size_t(instance.pen)].color);
        return;
    }
    for (std::uint32_t r = shape.firstRun; r < shape.endRun; ++r) {
        const Part& part = m_parts[m_runs[r].part];
        for (std::uint32_t i = part.firstPolygon; i < part.endPolygon; ++i) {
            const Polygon& polygon = m_partPolygons[i];
            visit(polygon.instanceColor ? m_pens[std::size_t(instance.pen)].color : polygon.color);
        }
    }
}

template <class Visit>
void Scene::visitPens(const Instance& instance, Visit&& visit) const
{
    const Shape& shape = m_shapes[instance.shape];
    const int* first = m_shapePens.data() + shape.firstPen;
    const int* end = m_shapePens.data() + shape.endPen;
    for (const int* pen = first; pen != end; ++pen) {
        if (*pen != kInstancePen)
            visit(*pen);
        else if (!std::binary_search(pen + 1, end, instance.pen))
            visit(instance.pen);
    }
}

template <class Visit>
void Scene::visitTexts(Visit&& visit) const
{
    for (const TextLine& text : m_texts)
        visit(text);
    for (const Instance& instance : m_instances) {
        const Shape& shape = m_shapes[instance.shape];
        for (std::uint32_t r = shape.firstRun; r < shape.endRun; ++r) {
            const Part& part = m_parts[m_runs[r].part];
            const Affine place = instance.place.shiftedAlongX(m_runs[r].shift);
            for (std::uint32_t t = part.firstText; t < part.endText; ++t) {
                TextLine placed = m_partTexts[t];
                placed.place = place.after(placed.place);
                visit(std::as_const(placed));
            }
        }
    }
}

template <class Visit>
void Scene::visitPolylines(Visit&& visit) const
{
    std::size_t next = 0;
    for (std::uint32_t i = 0; i <= m_polylines.size(); ++i) {
        for (; next < m_instances.size() && m_instances[next].polylinesBefore <= i; ++next)
            visitPolylines(m_instances[next], visit);
        if (i == m_polylines.size())
            break;
        const Polyline& polyline = m_polylines[i];
        visit(polyline.pen, polyline.closed, std::span<const Point2>(m_points.data() + polyline.first, polyline.count));
    }
}

template <class Visit>
void Scene::visitPolygons(Visit&& visit) const
{
    std::size_t next = 0;
    for (std::uint32_t i = 0; i <= m_polygons.size(); ++i) {
        for (; next < m_instances.size() && m_instances[next].polygonsBefore <= i; ++next)
            visitPolygons(m_instances[next], visit);
        if (i == m_polygons.size())
            break;
        const Polygon& polygon = m_polygons[i];
        visit(polygon.color, std::span<const Point2>(m_points.data() + polygon.first, polygon.count));
    }
}

}  // namespace kaldo::view
