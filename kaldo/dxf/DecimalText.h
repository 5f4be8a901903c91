// Texts of reals below 10^5 of up to three decimals, and of reals from 1
// up to 2^52 in magnitude, made in whole-number arithmetic that is exact
// (the value's significand times a power of ten) instead of
// std::to_chars's general search, giving the same texts. They may
// overwrite bytes after the text they write, up to 34 bytes from out: out
// needs room for that many.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace kaldo::dxf {

// The eight digits of a number below 10^8, one a byte, the first in the
// lowest: its halves, then their hundreds and tens are split off in all
// lanes of one word at once, by multiplications with reciprocals of 100 and
// 10 that are exact for numbers as small as those lanes hold.
[[gnu::always_inline]] inline std::uint64_t eightDigitValues(std::uint32_t value)
{
    const std::uint64_t halves = value / 10000 | std::uint64_t(value % 10000) << 32;
    const std::uint64_t hundreds = (halves * 10486) >> 20 & 0x0000007F0000007Full;
    const std::uint64_t pairs = hundreds | (halves - hundreds * 100) << 16;
    const std::uint64_t tens = (pairs * 103) >> 10 & 0x000F000F000F000Full;
    return tens | (pairs - tens * 10) << 8;
}

// Added to digit values, one a byte, makes them characters.
inline constexpr std::uint64_t kDigitZeros = 0x3030303030303030ull;

// Writes at out the text std::to_chars(out, end, value) gives, for a value
// below 10^5 in magnitude that is a whole number of thousandths (-0 as
// "-0"), as most of a drawing's values are; returns the end of the text,
// or nullptr, with nothing written, for other values. Inline: the writer
// writes nearly every real so, and its text costs fewer instructions than
// a call's.
inline char* writeFewDecimals(double value, char* out)
{
    // The whole number of thousandths nearest to the value gives it back
    // exactly when its text reads back, and no other text of up to three
    // decimals does (two lie 0.001 apart, farther than such a value's last
    // place). With a whole part, the scientific form is longer; below 1, no
    // shorter (0.001 and 1e-03), and the fixed form is taken on a tie.
    const double magnitude = std::abs(value);
    if (!(magnitude < 1e5))
        return nullptr;
    const auto thousandths = std::uint32_t(magnitude * 1000 + 0.5);
    if (double(thousandths) / 1000 != magnitude)
        return nullptr;
    // The eight digits, the whole part's five then the three decimals: the
    // zeros that begin them are the lowest zero bytes, those that end them
    // the highest. The units' byte counts as no zero, so that a whole part
    // keeps its last digit and the decimals do not reach into it.
    const std::uint64_t values = eightDigitValues(thousandths);
    const std::uint64_t marked = values | std::uint64_t(0x81) << 32;
    const int leading = std::countr_zero(marked) / 8;
    const int decimals = 3 - std::countl_zero(marked) / 8;
    const std::uint64_t digits = values + kDigitZeros;
    *out = '-';
    out += std::signbit(value);
    // The whole part with the decimals after it, then the point and the
    // decimals over them; bytes beyond them lie beyond the text.
    const std::uint64_t whole = digits >> (8 * leading);
    std::memcpy(out, &whole, 8);
    out += 5 - leading;
    // The point is overwritten by what follows when there are no decimals.
    *out = '.';
    const auto decimalDigits = std::uint32_t(digits >> 40);
    std::memcpy(out + 1, &decimalDigits, 4);
    return out + decimals + int(decimals > 0);
}

// Writes at out the text std::to_chars(out, end, value) gives, for a value
// that is not whole and lies from 1 up to 2^52 in magnitude, and that is
// no whole number of thousandths below 10^5 (writeFewDecimals writes
// those); returns the end of the text, or nullptr, with nothing written,
// for other values and for the rare value that lies halfway between two
// texts.
char* writeShortestDecimal(double value, char* out);

// Writes at out the text std::to_chars(out, end, value,
// std::chars_format::general, 15) gives, for a value from 1 up to 2^52 in
// magnitude; returns the end of the text, or nullptr, with nothing
// written, for other values, for those that round up to 10^15 and for the
// rare value that lies halfway between two texts.
char* writeFifteenDigits(double value, char* out);

}  // namespace kaldo::dxf
