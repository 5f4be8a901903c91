// Lines of text of a scene whose letters are laid out only when a picture
// first draws them large enough to show them: a view of a whole large
// drawing draws its many small texts as dots or boxes and never pays for
// shaping them. Each glyph's outlines are made once and shared by every
// line that uses it. Pictures are painted on several threads at once, so
// laying out is serialised here.
#pragma once

#include <QRawFont>
#include <QString>

#include <cstdint>
#include <map>
#include <mutex>
#include <span>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "kaldo/view/Scene.h"

namespace kaldo::view {

class LineLetters {
public:
    // Adds a line to lay out in the font that stands for fontFile, moved
    // to the left by horizontal times its advance; returns its number.
    std::uint32_t addLine(const QString& text, const std::string& fontFile, double horizontal);
    // Adds the lines of later after these (later is not laid out on
    // meanwhile); returns the number its first line has here.
    std::uint32_t append(const LineLetters& later);
    // The letters of a line, laid out at the first call (none when its
    // font has no outlines). Valid as long as this object.
    std::span<const LaidOutLetter> letters(std::uint32_t line) const;
    // How many lines have been laid out so far.
    std::size_t laidOutLines() const;

private:
    struct Line {
        QString text;
        std::uint32_t font = 0;
        double horizontal = 0;
    };
    std::vector<LaidOutLetter> layOut(const Line& line) const;
    // The number of a font file, added at its first line (lock held).
    std::uint32_t fontIndex(const std::string& fontFile);
    // The outlines of a glyph, made at its first use.
    const GlyphOutlines& glyph(const QRawFont& font, quint32 index) const;

    mutable std::mutex m_mutex;
    std::vector<Line> m_lines;
    // The font files of the lines. A line is laid out in a font made for
    // it: a font used by one thread after another rebuilds its engines
    // each time.
    std::vector<std::string> m_fontFiles;
    std::map<std::string, std::uint32_t> m_fontIndex;
    mutable std::unordered_map<std::uint32_t, std::vector<LaidOutLetter>> m_laidOut;
    // Glyphs by font (a line may fall back on other fonts) and index.
    mutable std::vector<QRawFont> m_rawFonts;
    mutable std::map<std::pair<std::size_t, quint32>, GlyphOutlines> m_glyphs;
};

}  // namespace kaldo::view
