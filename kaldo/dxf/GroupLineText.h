// The text of a group's code line and of a handle as the writer makes them,
// written at a place the caller has room at (GroupWriter::room).
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <emmintrin.h>

namespace kaldo::dxf {

// The code lines of codes 0 to 999, right-aligned in three places ("  5\n",
// " 40\n", "105\n"): nearly every group has one of them.
inline constexpr int kShortCodes = 1000;
struct CodeLines {
    std::array<std::array<char, 4>, kShortCodes> lines{};
    constexpr CodeLines()
    {
        for (int code = 0; code < kShortCodes; ++code)
            lines[code] = {code >= 100 ? char('0' + code / 100) : ' ', code >= 10 ? char('0' + code / 10 % 10) : ' ',
                           char('0' + code % 10), '\n'};
    }
};
inline constexpr CodeLines kCodeLines;

// Writes the code's line at out, in room of 8 bytes; returns its end.
inline char* writeCodeLine(int code, char* out)
{
    if (code >= 0 && code < kShortCodes) [[likely]] {
        std::memcpy(out, kCodeLines.lines[code].data(), 4);
        return out + 4;
    }
    out = std::to_chars(out, out + 7, code).ptr;
    *out = '\n';
    return out + 1;
}

// Writes the value's upper-case hexadecimal digits at out, all sixteen
// made at once from the value shifted so that its first digit leads: its
// bytes in the text's order split into nibbles, each made a digit or a
// letter. Returns the end of the digits; sixteen bytes are overwritten.
[[gnu::always_inline]] inline char* writeHandleDigits(std::uint64_t value, char* out)
{
    const int digits = std::max((int(std::bit_width(value)) + 3) / 4, 1);
    const __m128i bytes = _mm_cvtsi64_si128(std::int64_t(__builtin_bswap64(value << (64 - 4 * digits))));
    const __m128i low = _mm_set1_epi8(15);
    const __m128i nibbles = _mm_unpacklo_epi8(_mm_and_si128(_mm_srli_epi16(bytes, 4), low), _mm_and_si128(bytes, low));
    const __m128i letters = _mm_and_si128(_mm_cmpgt_epi8(nibbles, _mm_set1_epi8(9)), _mm_set1_epi8('A' - '9' - 1));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm_add_epi8(_mm_add_epi8(nibbles, _mm_set1_epi8('0')), letters));
    return out + digits;
}

}  // namespace kaldo::dxf
