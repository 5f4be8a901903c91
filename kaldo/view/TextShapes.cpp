#include "kaldo/view/TextShapes.h"

#include <QCoreApplication>
#include <QGlyphRun>
#include <QGuiApplication>
#include <QPainterPath>
#include <QTextLayout>

#include <cmath>

namespace kaldo::view {

namespace {

// Letters are laid out at this size and then scaled, so that their
// outlines keep their detail.
constexpr int kLayoutPixels = 200;
// Distance between MTEXT lines, in text heights.
constexpr double kLineSpacing = 5.0 / 3.0;
// Outlines are drawn only while the budget holds this many points for
// each letter of a line: a letter never has fewer.
constexpr std::size_t kLeastPointsPerLetter = 4;

QFont layoutFont()
{
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setStyleHint(QFont::SansSerif);
    font.setPixelSize(kLayoutPixels);
    return font;
}

}  // namespace

TextShapes::Font::Font() : font(layoutFont()), metrics(font)
{
    cap = metrics.capHeight() > 0 ? metrics.capHeight() : metrics.ascent();
}

TextShapes::TextShapes(Scene& scene, PointBudget& budget) : m_scene(scene), m_budget(budget) {}

bool TextShapes::drawLines(const QStringList& lines, const TextPlacement& place, int pen)
{
    if (!qobject_cast<QGuiApplication*>(QCoreApplication::instance()))
        return false;
    if (!m_font)
        m_font.emplace();
    const double cap = m_font->cap;
    const double descent = m_font->metrics.descent();
    const double scale = place.height / cap;
    const double spacing = kLineSpacing * cap;
    const double blockHeight = cap + spacing * double(lines.size() - 1);
    // Vertical shift of the first baseline above the anchor, in layout units.
    double firstBaseline = 0;
    switch (place.vertical) {
    case TextPlacement::Vertical::Baseline: firstBaseline = spacing * double(lines.size() - 1); break;
    case TextPlacement::Vertical::Bottom:
        firstBaseline = spacing * double(lines.size() - 1) + descent;
        break;
    case TextPlacement::Vertical::Middle: firstBaseline = blockHeight / 2 - cap; break;
    case TextPlacement::Vertical::Top: firstBaseline = -cap; break;
    }
    const double c = std::cos(place.angle), s = std::sin(place.angle);
    const double along = scale * place.widthFactor;
    std::vector<ShapeRun> runs;
    for (qsizetype i = 0; i < lines.size(); ++i) {
        if (lines[i].trimmed().isEmpty())
            continue;
        const double width = m_font->metrics.horizontalAdvance(lines[i]);
        const double left = -place.horizontal * width;
        const double up = firstBaseline - spacing * double(i);
        // Layout units (y down from the baseline) to the drawing.
        const Affine toDrawing{c * along, s * scale, s * along, -c * scale,
                               place.anchor.x - s * scale * up, place.anchor.y + c * scale * up};
        runs.clear();
        std::size_t points = 0;
        bool outlined = false;
        if (m_budget.left() / kLeastPointsPerLetter >= std::size_t(lines[i].size())) {
            outlined = letterRuns(lines[i], left, runs);
            for (const ShapeRun& run : runs)
                points += m_partPoints[run.part];
            outlined = outlined && m_budget.take(points);
        } else {
            m_budget.markSpent();
        }
        if (!outlined) {
            drawBox({left, descent, left + width, -cap}, toDrawing, pen);
            continue;
        }
        Bounds box;
        box.add(Point2{left, descent});
        box.add(Point2{left + width, -cap});
        m_scene.addInstance(m_scene.addShape(runs, box, true), toDrawing, pen);
    }
    return true;
}

bool TextShapes::letterRuns(const QString& line, double left, std::vector<ShapeRun>& runs)
{
    QTextLayout layout(line, m_font->font);
    layout.setCacheEnabled(true);
    layout.beginLayout();
    layout.createLine();
    layout.endLayout();
    for (const QGlyphRun& glyphRun : layout.glyphRuns()) {
        const QRawFont font = glyphRun.rawFont();
        if (!font.isValid())
            return false;
        const QList<quint32> glyphs = glyphRun.glyphIndexes();
        const QList<QPointF> positions = glyphRun.positions();
        for (qsizetype g = 0; g < glyphs.size(); ++g)
            runs.push_back({glyphPart(font, glyphs[g]), left + positions[g].x()});
    }
    return true;
}

std::uint32_t TextShapes::glyphPart(const QRawFont& font, quint32 glyph)
{
    auto byFont = std::find_if(m_glyphs.begin(), m_glyphs.end(), [&](const auto& each) { return each.first == font; });
    if (byFont == m_glyphs.end())
        byFont = m_glyphs.insert(m_glyphs.end(), {font, {}});
    if (const auto found = byFont->second.find(glyph); found != byFont->second.end())
        return found->second;
    std::vector<std::vector<Point2>> outlines;
    std::size_t points = 0;
    for (const QPolygonF& outline : font.pathForGlyph(glyph).toSubpathPolygons()) {
        std::vector<Point2>& each = outlines.emplace_back();
        for (const QPointF& p : outline)
            each.push_back({p.x(), p.y()});
        points += each.size();
    }
    const std::uint32_t part = m_scene.addOutlinePart(outlines);
    m_partPoints.emplace(part, points);
    return byFont->second.emplace(glyph, part).first->second;
}

void TextShapes::drawBox(const Box& box, const Affine& place, int pen)
{
    m_scene.beginPolyline(pen);
    for (const Point2& corner : {Point2{box.minX, box.minY}, Point2{box.maxX, box.minY}, Point2{box.maxX, box.maxY},
                                 Point2{box.minX, box.maxY}})
        m_scene.addPoint(place(corner));
    m_scene.endPolyline(true);
}

}  // namespace kaldo::view
