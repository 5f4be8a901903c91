#include "kaldo/view/TextShapes.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QRegularExpression>
#include <QGuiApplication>
#include <QGlyphRun>
#include <QPainterPath>
#include <QTextLayout>

#include "kaldo/view/LineLetters.h"

#include <algorithm>
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

// The last letter of printable Latin.
constexpr char16_t kLastUnshapedLetter = u'\u02FF';

// Whether a line's letters are each one glyph of its font side by side
// (printable Latin), so that its extent can be measured without shaping.
bool measurableWithoutShaping(const QString& line)
{
    return std::all_of(line.begin(), line.end(),
                       [](QChar letter) { return letter >= u' ' && letter <= kLastUnshapedLetter; });
}

// Font files of other systems and the families they hold, where the
// file's name does not say it.
const std::map<QString, QString>& familiesOfFiles()
{
    static const std::map<QString, QString> families = {
        {"arial", "Arial"}, {"arialn", "Arial Narrow"}, {"times", "Times New Roman"}, {"cour", "Courier New"},
        {"verdana", "Verdana"}, {"tahoma", "Tahoma"}, {"georgia", "Georgia"}, {"calibri", "Calibri"},
        {"cambria", "Cambria"}, {"consola", "Consolas"}, {"segoeui", "Segoe UI"}, {"trebuc", "Trebuchet MS"},
    };
    return families;
}

}  // namespace

QFont fontForFile(const std::string& file)
{
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setStyleHint(QFont::SansSerif);
    font.setPixelSize(kLayoutPixels);
    const QFileInfo info(QString::fromStdString(file));
    const QString stem = info.completeBaseName().section('-', 0, 0);
    if (stem.isEmpty() || info.suffix().compare(QStringLiteral("shx"), Qt::CaseInsensitive) == 0)
        return font;
    const QString key = stem.toLower();
    QString family = stem;
    if (const auto known = familiesOfFiles().find(key); known != familiesOfFiles().end()) {
        family = known->second;
    } else {
        // "LiberationSerif" names "Liberation Serif".
        static const QRegularExpression wordStart(QStringLiteral("(?<=[a-z])(?=[A-Z])"));
        family.replace(wordStart, QStringLiteral(" "));
    }
    font.setFamily(family);
    if (key.contains(QStringLiteral("mono")) || key.startsWith(QStringLiteral("cour"))
        || key.startsWith(QStringLiteral("consol")))
        font.setStyleHint(QFont::Monospace);
    else if ((key.contains(QStringLiteral("serif")) && !key.contains(QStringLiteral("sans")))
             || key.startsWith(QStringLiteral("times")) || key.startsWith(QStringLiteral("georgia"))
             || key.startsWith(QStringLiteral("cambria")))
        font.setStyleHint(QFont::Serif);
    return font;
}

TextShapes::Font::Font(const std::string& file)
    : file(file), font(fontForFile(file)), metrics(font), raw(QRawFont::fromFont(font)), descent(metrics.descent())
{
    cap = metrics.capHeight() > 0 ? metrics.capHeight() : metrics.ascent();
}

TextShapes::TextShapes(Scene& scene, PointBudget& budget, const TextStyleFonts& styles)
    : m_scene(scene), m_budget(budget), m_styles(styles)
{
}

TextShapes::Font& TextShapes::styleFont(const std::string& style)
{
    if (const auto found = m_styleFonts.find(style); found != m_styleFonts.end())
        return *found->second;
    const auto file = m_styles.find(QString::fromStdString(style).toUpper().toStdString());
    const std::string& fontFile = file == m_styles.end() ? std::string() : file->second;
    auto font = m_fonts.find(fontFile);
    if (font == m_fonts.end())
        font = m_fonts.emplace(fontFile, Font(fontFile)).first;
    return *m_styleFonts.emplace(style, &font->second).first->second;
}

bool TextShapes::drawLines(const QStringList& lines, const TextPlacement& place, int pen)
{
    if (!qobject_cast<QGuiApplication*>(QCoreApplication::instance()))
        return false;
    Font& font = styleFont(place.style);
    const double cap = font.cap;
    const double descent = font.descent;
    double scale = place.height / cap;
    double along = scale * place.widthFactor;
    if (place.fitLength > 0 && lines.size() == 1) {
        const double width = font.metrics.horizontalAdvance(lines.front());
        if (width > 0) {
            along = place.fitLength / width;
            if (place.keepProportions)
                scale = along / place.widthFactor;
        }
    }
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
    // Letters lean by moving each point along the line by its height
    // above the baseline times this.
    const double lean = std::tan(place.oblique);
    for (qsizetype i = 0; i < lines.size(); ++i) {
        if (lines[i].trimmed().isEmpty())
            continue;
        const double up = firstBaseline - spacing * double(i);
        // Layout units (y down from the baseline) to the drawing.
        const Affine toDrawing{c * along, (s - c * lean) * scale, s * along, -(c + s * lean) * scale,
                               place.anchor.x - s * scale * up, place.anchor.y + c * scale * up};
        if (m_scene.keepsTexts()) {
            const double width = font.metrics.horizontalAdvance(lines[i]);
            const double left = -place.horizontal * width;
            m_scene.addText(
                {lines[i].toStdString(), font.file, left, Box{left, -cap, left + width, descent}, toDrawing, pen});
            continue;
        }
        measureLine(font, lines[i]);
        const LineMeasure& measure = m_measure;
        const double left = -place.horizontal * measure.advance;
        const Box box{left, descent, left + measure.advance, -cap};
        std::size_t points = 0;
        for (const auto& letter : measure.letters)
            points += letter.first->points;
        // Outlined only while the budget holds the least points its letters
        // could need, and then the points they do need.
        if (!m_budget.take(points, kLeastPointsPerLetter * std::size_t(lines[i].size()))) {
            drawBox(box, toDrawing, pen);
            continue;
        }
        const Affine lineStart = toDrawing.shiftedAlongX(left);
        m_inkCorners.clear();
        for (const auto& [glyph, shift] : measure.letters) {
            const Affine place = lineStart.shiftedAlongX(shift);
            for (const Point2& corner : glyph->hull)
                m_inkCorners.push_back(place(corner));
        }
        const Bounds ink = pointBounds(m_inkCorners);
        if (ink.empty) {
            drawBox(box, toDrawing, pen);
            continue;
        }
        Bounds shapeBox;
        shapeBox.add(Point2{box.minX, box.minY});
        shapeBox.add(Point2{box.maxX, box.maxY});
        const std::uint32_t line = m_scene.lineLetters().addLine(lines[i], font.file, place.horizontal);
        m_scene.addInstance(m_scene.addLineShape(line, shapeBox), toDrawing, pen,
                            Box{ink.minX, ink.minY, ink.maxX, ink.maxY});
    }
    return true;
}

bool TextShapes::measureLetters(Font& font, const QString& line)
{
    if (font.letters.empty())
        font.letters.resize(kLastUnshapedLetter + 1);
    for (const QChar letter : line) {
        Font::Letter& known = font.letters[letter.unicode()];
        if (!known.measure) {
            const QList<quint32> glyph = font.raw.glyphIndexesForString(QString(letter));
            if (glyph.size() != 1 || glyph.front() == 0) {
                m_measure.letters.clear();
                return false;
            }
            known = {glyph.front(), &glyphMeasure(font, font.raw, glyph.front())};
        }
        m_measure.letters.emplace_back(known.measure, 0);
    }
    const auto advance = [&](quint32 glyph, const quint32* next) {
        const auto measured = [&](QList<quint32> glyphs) {
            return font.raw.advancesForGlyphIndexes(glyphs, QRawFont::KernedAdvances).front().x();
        };
        if (!next) {
            const auto [found, added] = font.lastAdvances.try_emplace(glyph);
            if (added)
                found->second = measured({glyph});
            return found->second;
        }
        const auto [found, added] = font.pairAdvances.try_emplace(std::uint64_t(glyph) << 32 | *next);
        if (added)
            found->second = measured({glyph, *next});
        return found->second;
    };
    for (qsizetype i = 0; i < line.size(); ++i) {
        const quint32 glyph = font.letters[line[i].unicode()].glyph;
        const quint32* next = i + 1 < line.size() ? &font.letters[line[i + 1].unicode()].glyph : nullptr;
        m_measure.letters[std::size_t(i)].second = m_measure.advance;
        m_measure.advance += advance(glyph, next);
    }
    return true;
}

void TextShapes::measureLine(Font& font, const QString& line)
{
    m_measure.advance = 0;
    m_measure.letters.clear();
    if (measurableWithoutShaping(line) && font.raw.isValid() && measureLetters(font, line))
        return;
    QTextLayout layout(line, font.font);
    layout.beginLayout();
    const QTextLine laidOut = layout.createLine();
    layout.endLayout();
    for (const QGlyphRun& glyphRun : layout.glyphRuns()) {
        const QRawFont raw = glyphRun.rawFont();
        if (!raw.isValid())
            continue;
        const QList<quint32> glyphs = glyphRun.glyphIndexes();
        const QList<QPointF> positions = glyphRun.positions();
        for (qsizetype g = 0; g < glyphs.size(); ++g)
            m_measure.letters.emplace_back(&glyphMeasure(font, raw, glyphs[g]), positions[g].x());
    }
    m_measure.advance = laidOut.horizontalAdvance();
}

const TextShapes::GlyphMeasure& TextShapes::glyphMeasure(Font& font, const QRawFont& raw, quint32 glyph)
{
    auto byFont = std::find_if(font.glyphs.begin(), font.glyphs.end(), [&](const auto& each) { return each.first == raw; });
    if (byFont == font.glyphs.end())
        byFont = font.glyphs.insert(font.glyphs.end(), {raw, {}});  // keeps the others where they are
    if (const auto found = byFont->second.find(glyph); found != byFont->second.end())
        return found->second;
    std::vector<Point2> points;
    for (const QPolygonF& outline : raw.pathForGlyph(glyph).toSubpathPolygons())
        for (const QPointF& p : outline)
            points.push_back({p.x(), p.y()});
    const std::size_t count = points.size();
    return byFont->second.emplace(glyph, GlyphMeasure{convexHull(std::move(points)), count}).first->second;
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
