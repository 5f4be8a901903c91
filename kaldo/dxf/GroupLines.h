// The lines of groups as they lie in a buffer read from a drawing file:
// where a line ends, and the usual group read straight from the buffer.
// Shared by GroupReader's ways of reading so that they take the same lines.
#pragma once

#include <bit>
#include <cstddef>
#include <emmintrin.h>
#include <string_view>

namespace kaldo::dxf {

// The longest line read; a longer one is refused.
constexpr std::size_t kLongestLine = 65536;

// The first line feed or carriage return from p on, or end: sixteen bytes
// at a time, as most values are longer than a few characters and shorter
// than sixteen. On the way, marked tells whether a byte before it has its
// high bit set or is a backslash: only a value with such a byte may need
// decoding. Inlined into the plain way, which then calls nothing.
[[gnu::always_inline]] inline const char* lineEnd(const char* p, const char* const end, bool& marked)
{
    const __m128i feeds = _mm_set1_epi8('\n');
    const __m128i returns = _mm_set1_epi8('\r');
    const __m128i backslashes = _mm_set1_epi8('\\');
    unsigned marks = 0;
    for (; end - p >= 16; p += 16) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
        const unsigned found = unsigned(
            _mm_movemask_epi8(_mm_or_si128(_mm_cmpeq_epi8(bytes, feeds), _mm_cmpeq_epi8(bytes, returns))));
        // The high bit of each byte, set for itself or for a backslash.
        const unsigned chunkMarks =
            unsigned(_mm_movemask_epi8(_mm_or_si128(bytes, _mm_cmpeq_epi8(bytes, backslashes))));
        if (found) {
            marked = (marks | (chunkMarks & ((found & -found) - 1))) != 0;
            return p + std::countr_zero(found);
        }
        marks |= chunkMarks;
    }
    for (; p < end && *p != '\n' && *p != '\r'; ++p)
        marks |= (*p & 0x80) != 0 || *p == '\\';
    marked = marks != 0;
    return p;
}

// The code line as this and most writers write it: three places, right-
// aligned with blanks ("  5", " 40", "105"), and its line feed. p is left
// on the line feed. False, with nothing changed, for any other line.
inline bool readAlignedCode(const char*& p, const char* const end, int& code)
{
    if (end - p < 4 || p[3] != '\n')
        return false;
    const auto digit = [](char c) { return c >= '0' && c <= '9'; };
    const char a = p[0], b = p[1], c = p[2];
    if (!digit(c))
        return false;
    if (a == ' ' && b == ' ')
        code = c - '0';
    else if (a == ' ' && digit(b))
        code = (b - '0') * 10 + (c - '0');
    else if (digit(a) && digit(b))
        code = (a - '0') * 100 + (b - '0') * 10 + (c - '0');
    else
        return false;
    p += 3;
    return true;
}


// The usual group from p on: a code of blanks and digits and a value with
// nothing to decode, both lines ended by a line feed before end. p is left
// after the value's line feed. False, with nothing changed, for anything
// else.
[[gnu::always_inline]] inline bool readPlainGroup(const char*& p, const char* const end, int& code,
                                                  std::string_view& value)
{
    const char* at = p;
    code = 0;
    if (!readAlignedCode(at, end, code)) {
        while (at < end && *at == ' ')
            ++at;
        const char* const digits = at;
        while (at < end && at - digits < 5 && *at >= '0' && *at <= '9')
            code = code * 10 + (*at++ - '0');
        if (at == digits || at == end || *at != '\n' || code > 32767 || std::size_t(at - p) > kLongestLine)
            return false;
    }
    const char* const first = at + 1;
    bool marked = false;
    const char* const stop = lineEnd(first, end, marked);
    if (marked || stop == end || *stop != '\n' || std::size_t(stop - first) > kLongestLine)
        return false;
    value = std::string_view(first, std::size_t(stop - first));
    p = stop + 1;
    return true;
}

}  // namespace kaldo::dxf
