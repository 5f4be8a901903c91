// Lines of text as shapes of a scene: each line is one instance of a line
// of the scene's LineLetters, laid out (in the font that stands for its
// text style's font, at a large size) only when a picture first draws it
// large, its letters' outlines filled in the colour of its text. Here a
// line is only measured, without shaping it where its letters allow, and
// the points of its outlines are taken from the picture's budget; beyond
// the budget it is drawn as its box. A scene that keeps texts (plots) gets
// each line as a text line instead.
// Without a QGuiApplication (no fonts) nothing is drawn.
#pragma once

#include <QFont>
#include <QFontMetricsF>
#include <QRawFont>
#include <QStringList>

#include <cstdint>
#include <deque>
#include <map>
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
    // The convex hull of a glyph's outlines and the points of the outlines.
    struct GlyphMeasure {
        std::vector<Point2> hull;
        std::size_t points = 0;
    };
    // A line's advance (its width with trailing blanks) and its letters'
    // glyphs, laid out from x = 0 on the baseline, each with its shift
    // along the line.
    struct LineMeasure {
        double advance = 0;
        std::vector<std::pair<const GlyphMeasure*, double>> letters;
    };
    // The font of a style, made at its first text.
    Font& styleFont(const std::string& style);
    // Measured from the font's glyphs one by one where the line's letters
    // allow (kerned as the font says), else laid out; into m_measure.
    void measureLine(Font& font, const QString& line);
    // Measures a line of letters each of which is one glyph of the font
    // (printable Latin); false when one has none.
    bool measureLetters(Font& font, const QString& line);
    // A glyph's measure, found at its first use.
    const GlyphMeasure& glyphMeasure(Font& font, const QRawFont& raw, quint32 glyph);
    // The corners of box (layout units), placed, as a closed polyline.
    void drawBox(const Box& box, const Affine& place, int pen);

    // The font that stands for a font file, its measures and those of the
    // glyphs its lines use, by font (a line may fall back on others).
    struct Font {
        explicit Font(const std::string& file);
        std::string file;
        QFont font;
        QFontMetricsF metrics;
        QRawFont raw;
        // The height of a capital and the descent, asked of the metrics once.
        double cap = 0;
        double descent = 0;
        std::deque<std::pair<QRawFont, std::unordered_map<quint32, GlyphMeasure>>> glyphs;
        // The glyph of each letter measured without shaping, by its code,
        // and that glyph's measure: looked up at the letter's first use.
        struct Letter {
            quint32 glyph = 0;
            const GlyphMeasure* measure = nullptr;
        };
        std::vector<Letter> letters;
        // The advance of a glyph followed by another (kerned towards it),
        // by the pair, and that of a glyph that ends its line: a line's
        // advances are these, found once for each pair of letters.
        std::unordered_map<std::uint64_t, double> pairAdvances;
        std::unordered_map<quint32, double> lastAdvances;
    };

    // The line measured last; its room is used again for the next.
    LineMeasure m_measure;
    // The corners of the hulls of the letters of the line drawn last,
    // placed; their room is used again for the next.
    std::vector<Point2> m_inkCorners;
    Scene& m_scene;
    PointBudget& m_budget;
    const TextStyleFonts& m_styles;
    // Fonts by the file they stand for, and by style.
    std::map<std::string, Font> m_fonts;
    std::map<std::string, Font*> m_styleFonts;
};

}  // namespace kaldo::view
