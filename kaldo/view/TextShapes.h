// Lines of text as shapes of a scene: each letter's outline (in Qt's
// sans-serif font, laid out at a large size) is a part made once per
// scene, and a line is one instance placing its letters side by side, so
// that a drawing of many texts shapes and flattens each letter once.
// Without a QGuiApplication (no fonts) nothing is drawn.
#pragma once

#include <QFont>
#include <QFontMetricsF>
#include <QRawFont>
#include <QStringList>

#include <algorithm>
#include <optional>

#include <unordered_map>
#include <utility>
#include <vector>

#include "kaldo/view/PointBudget.h"
#include "kaldo/view/Scene.h"

namespace kaldo::view {

// Where lines of text go: anchor point, direction, height, and how the
// block of lines sits on the anchor (0, 0.5 or 1 of its width to the left;
// the anchor on the first line's top, the middle, the last baseline or the
// last line's bottom).
struct TextPlacement {
    Point2 anchor;
    double angle = 0;
    double height = 1;
    double widthFactor = 1;
    double horizontal = 0;
    enum class Vertical { Baseline, Bottom, Middle, Top } vertical = Vertical::Baseline;
};

class TextShapes {
public:
    TextShapes(Scene& scene, PointBudget& budget);

    // Draws each line's letters, scaled so that a capital is as tall as the
    // text height, while the budget holds; else the line's box (from the
    // descent to the height of a capital). False, drawing nothing, without
    // fonts.
    bool drawLines(const QStringList& lines, const TextPlacement& place, int pen);

private:
    // The runs of a line's letters, laid out from x = left on the
    // baseline; false when a letter's font has no outlines.
    bool letterRuns(const QString& line, double left, std::vector<ShapeRun>& runs);
    // The part of a glyph's outline, made at its first use.
    std::uint32_t glyphPart(const QRawFont& font, quint32 glyph);
    // The corners of box (layout units), placed, as a closed polyline.
    void drawBox(const Box& box, const Affine& place, int pen);

    // The font and its measures, made at the first text.
    struct Font {
        Font();
        QFont font;
        QFontMetricsF metrics;
        double cap = 0;
    };

    Scene& m_scene;
    PointBudget& m_budget;
    std::optional<Font> m_font;
    // Parts of glyphs by font (a line may fall back on other fonts), and
    // the points of each part as the budget counts them.
    std::vector<std::pair<QRawFont, std::unordered_map<quint32, std::uint32_t>>> m_glyphs;
    std::unordered_map<std::uint32_t, std::size_t> m_partPoints;
};

}  // namespace kaldo::view
