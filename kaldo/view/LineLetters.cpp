#include "kaldo/view/LineLetters.h"

#include <QGlyphRun>
#include <QPainterPath>
#include <QTextLayout>

#include <algorithm>

#include "kaldo/view/TextShapes.h"

namespace kaldo::view {

std::uint32_t LineLetters::addLine(const QString& text, const std::string& fontFile, double horizontal)
{
    const std::lock_guard lock(m_mutex);
    m_lines.push_back({text, fontIndex(fontFile), horizontal});
    return std::uint32_t(m_lines.size() - 1);
}

std::uint32_t LineLetters::append(const LineLetters& later)
{
    const std::lock_guard lock(m_mutex);
    const auto first = std::uint32_t(m_lines.size());
    for (const Line& line : later.m_lines)
        m_lines.push_back({line.text, fontIndex(later.m_fontFiles[line.font]), line.horizontal});
    return first;
}

std::uint32_t LineLetters::fontIndex(const std::string& fontFile)
{
    const auto [font, added] = m_fontIndex.try_emplace(fontFile, std::uint32_t(m_fontFiles.size()));
    if (added)
        m_fontFiles.push_back(fontFile);
    return font->second;
}

std::span<const LaidOutLetter> LineLetters::letters(std::uint32_t line) const
{
    const std::lock_guard lock(m_mutex);
    auto found = m_laidOut.find(line);
    if (found == m_laidOut.end())
        found = m_laidOut.emplace(line, layOut(m_lines[line])).first;
    return found->second;
}

std::size_t LineLetters::laidOutLines() const
{
    const std::lock_guard lock(m_mutex);
    return m_laidOut.size();
}

std::vector<LaidOutLetter> LineLetters::layOut(const Line& line) const
{
    QTextLayout layout(line.text, fontForFile(m_fontFiles[line.font]));
    layout.setCacheEnabled(true);
    layout.beginLayout();
    const QTextLine laidOut = layout.createLine();
    layout.endLayout();
    const double left = -line.horizontal * laidOut.horizontalAdvance();
    std::vector<LaidOutLetter> letters;
    for (const QGlyphRun& glyphRun : layout.glyphRuns()) {
        const QRawFont raw = glyphRun.rawFont();
        if (!raw.isValid())
            return {};
        const QList<quint32> glyphs = glyphRun.glyphIndexes();
        const QList<QPointF> positions = glyphRun.positions();
        for (qsizetype g = 0; g < glyphs.size(); ++g)
            letters.push_back({&glyph(raw, glyphs[g]), positions[g].x() + left});
    }
    return letters;
}

const GlyphOutlines& LineLetters::glyph(const QRawFont& font, quint32 index) const
{
    auto byFont = std::find(m_rawFonts.begin(), m_rawFonts.end(), font);
    if (byFont == m_rawFonts.end())
        byFont = m_rawFonts.insert(m_rawFonts.end(), font);
    const std::pair key(std::size_t(byFont - m_rawFonts.begin()), index);
    if (const auto found = m_glyphs.find(key); found != m_glyphs.end())
        return found->second;
    GlyphOutlines outlines;
    for (const QPolygonF& outline : font.pathForGlyph(index).toSubpathPolygons()) {
        qsizetype count = outline.size();
        // As a fill does not repeat its first point.
        if (count > 2 && outline.back().x() == outline.front().x() && outline.back().y() == outline.front().y())
            --count;
        if (count < 3)
            continue;
        for (qsizetype p = 0; p < count; ++p)
            outlines.points.push_back({outline[p].x(), outline[p].y()});
        outlines.ends.push_back(std::uint32_t(outlines.points.size()));
    }
    return m_glyphs.emplace(key, std::move(outlines)).first->second;
}

}  // namespace kaldo::view
