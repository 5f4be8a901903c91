// Lines of text as shapes of a scene: each letter's outline (in the font
// that stands for its text style's font, laid out at a large size) is a
// part made once per scene, filled in the colour of its text, and a line
// is one instance placing its letters side by side, so that a drawing of
// many texts shapes and flattens each letter once. A scene that keeps
// texts (plots) gets each line as a text line instead.
// Without a QGuiApplication (no fonts) nothing is drawn.
#pragma once

#include <QFont>
#include <QFontMetricsF>
#include <QRawFont>
#include <QStringList>

#include <algorithm>
#include <map>
#include <optional>
#include <string>

#include <unordered_map>
#include <utility>
#include <vector>

#include "kaldo/view/PointBudget.h"
#include "kaldo/view/Scene.h"

namespace kaldo::view {

// The font file each text style names ("arial.ttf", "romans.shx"), by the
// style's name in capitals.
using TextStyleFonts = std::map<std::string, std::string>;

// The font that stands for a font file: the family its name gives, which
// the system's font configuration may substitute by a font of the same
// kind (serif, monospace or sans-serif, as the name suggests); Qt's
// sans-serif font for shape fonts (.shx) and for no file at all.
QFont fontForFile(const std::string& file);

// Where lines of text go: anchor point, direction, height, how much wider
// than the font the letters are and how far they lean (oblique, radians
// from upright, positive to the right), and how the block of lines sits
// on the anchor (0, 0.5 or 1 of its width to the left; the anchor on the
// first line's top, the middle, the last baseline or the last line's
// bottom). A line fitted to a length (fitLength > 0) is stretched to run
// that length from the anchor; when it also keeps its proportions, its
// height follows.
struct TextPlacement {
    std::string style;  // the text style's name as the record gives it
    Point2 anchor;
    double angle = 0;
    double height = 1;
    double widthFactor = 1;
    double oblique = 0;
    double fitLength = 0;
    bool keepProportions = false;
    double horizontal = 0;
    enum class Vertical { Baseline, Bottom, Middle, Top } vertical = Vertical::Baseline;
};

class TextShapes {
public:
    TextShapes(Scene& scene, PointBudget& budget, const TextStyleFonts& styles);

    // Draws each line's letters, scaled so that a capital is as tall as the
    // text height, while the budget holds; else the line's box (from the
    // descent to the height of a capital). False, drawing nothing, without
    // fonts.
    bool drawLines(const QStringList& lines, const TextPlacement& place, int pen);

private:
    struct Font;
    // The font of a style, made at its first text.
    const Font& styleFont(const std::string& style);
    // The runs of a line's letters, laid out from x = 0 on the baseline,
    // and the line's advance (its width with trailing blanks); nothing
    // when a letter's font has no outlines.
    std::optional<double> letterRuns(const Font& font, const QString& line, std::vector<ShapeRun>& runs);
    // The part of a glyph's outline, made at its first use.
    std::uint32_t glyphPart(const QRawFont& font, quint32 glyph);
    // The corners of box (layout units), placed, as a closed polyline.
    void drawBox(const Box& box, const Affine& place, int pen);

    // The font that stands for a font file, and its measures.
    struct Font {
        explicit Font(const std::string& file);
        std::string file;
        QFont font;
        QFontMetricsF metrics;
        double cap = 0;
    };

    Scene& m_scene;
    PointBudget& m_budget;
    const TextStyleFonts& m_styles;
    // Fonts by the file they stand for, and by style.
    std::map<std::string, Font> m_fonts;
    std::map<std::string, const Font*> m_styleFonts;
    // Parts of glyphs by font (a line may fall back on other fonts), and
    // the points of each part as the budget counts them.
    std::vector<std::pair<QRawFont, std::unordered_map<quint32, std::uint32_t>>> m_glyphs;
    std::unordered_map<std::uint32_t, std::size_t> m_partPoints;
};

}  // namespace kaldo::view
