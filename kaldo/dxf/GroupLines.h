// The lines of groups as they lie in a buffer read from a drawing file:
// where a line ends, and the usual group read straight from the buffer.
// Shared by GroupReader's ways of reading so that they take the same lines.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
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


// The bytes readShortGroup looks at: the code line and a short value.
constexpr std::ptrdiff_t kShortGroupBytes = 32;

// The most usual group from p on, with kShortGroupBytes readable before the
// input's end: a code line of three places ("  5", " 40", "105") and a
// value of at most kShortGroupBytes - 5 bytes with nothing to decode, both
// ended by a line feed. The line feeds, the bytes that stop the quick way
// and the code's places are found sixteen bytes at a time, the second
// sixteen only for a value that goes on. p is left after the value's line
// feed. False, with nothing changed, for anything else.
[[gnu::always_inline]] inline bool readShortGroup(const char*& p, int& code, std::string_view& value)
{
    const auto feedsIn = [](__m128i bytes) {
        return std::uint32_t(_mm_movemask_epi8(_mm_cmpeq_epi8(bytes, _mm_set1_epi8('\n'))));
    };
    // A carriage return, a backslash or a byte with its high bit set.
    const auto stopsIn = [](__m128i bytes) {
        const __m128i marked = _mm_or_si128(_mm_cmpeq_epi8(bytes, _mm_set1_epi8('\r')),
                                            _mm_cmpeq_epi8(bytes, _mm_set1_epi8('\\')));
        return std::uint32_t(_mm_movemask_epi8(_mm_or_si128(bytes, marked)));
    };
    const __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    const std::uint32_t feeds = feedsIn(low);
    // The code's line feed at the fourth byte, then the value's.
    if ((feeds & 0xF) != 0x8)
        return false;
    std::uint32_t valueFeeds = feeds & (feeds - 1);
    std::uint32_t stops = stopsIn(low);
    if (valueFeeds == 0) {
        const __m128i high = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 16));
        valueFeeds = feedsIn(high) << 16;
        stops |= stopsIn(high) << 16;
        if (valueFeeds == 0)
            return false;
    }
    const unsigned stop = unsigned(std::countr_zero(valueFeeds));
    if (stops & ((std::uint32_t(1) << stop) - 1))
        return false;
    // The code's places: digits after blanks, the last a digit.
    const __m128i fromZero = _mm_sub_epi8(low, _mm_set1_epi8('0'));
    const unsigned digits =
        unsigned(_mm_movemask_epi8(_mm_cmpeq_epi8(_mm_min_epu8(fromZero, _mm_set1_epi8(9)), fromZero))) & 7;
    const unsigned blanks = unsigned(_mm_movemask_epi8(_mm_cmpeq_epi8(low, _mm_set1_epi8(' ')))) & 7;
    // "ddd", " dd" and "  d", as the digits' and blanks' places make them.
    constexpr std::uint64_t kAligned = std::uint64_t(1) << 0b000111 | std::uint64_t(1) << 0b001110
                                       | std::uint64_t(1) << 0b011100;
    if (!(kAligned >> (digits | blanks << 3) & 1))
        return false;
    // A blank's low four bits are zero, a digit's its value.
    const auto places = std::uint32_t(_mm_cvtsi128_si32(low));
    code = int((places & 0xF) * 100 + (places >> 8 & 0xF) * 10 + (places >> 16 & 0xF));
    value = std::string_view(p + 4, stop - 4);
    p += stop + 1;
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
