#include "kaldo/dxf/DecimalText.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <emmintrin.h>
#include <limits>

namespace kaldo::dxf {

namespace {

// The product of a significand (below 2^53) and a power of ten (at most
// 10^17) needs up to 110 bits.
__extension__ typedef unsigned __int128 Wide;

constexpr std::array<std::uint64_t, 18> kPowersOfTen = [] {
    std::array<std::uint64_t, 18> powers{};
    std::uint64_t power = 1;
    for (std::uint64_t& p : powers) {
        p = power;
        power *= 10;
    }
    return powers;
}();

// A magnitude from 1 up to 2^52 exactly: significand / 2^shift, with the
// shift from 1 to 52.
struct Binary {
    std::uint64_t significand = 0;
    int shift = 0;
};

bool takeBinary(double magnitude, Binary& binary)
{
    if (!(magnitude >= 1 && magnitude < 0x1p52))
        return false;
    const auto bits = std::bit_cast<std::uint64_t>(magnitude);
    binary.significand = (bits & ((std::uint64_t(1) << 52) - 1)) | (std::uint64_t(1) << 52);
    binary.shift = 1075 - int(bits >> 52);
    return true;
}

// The count of digits of the whole part (1 to 16): the count of its bits
// times log10(2) (1233 / 4096 a little below it) is the count or one less.
int wholeDigits(const Binary& binary)
{
    const std::uint64_t whole = binary.significand >> binary.shift;
    const int below = (std::bit_width(whole) * 1233) >> 12;
    return below + int(whole >= kPowersOfTen[std::size_t(below)]);
}

// Whether the magnitude is a whole number: no bit below its point is set.
bool isWhole(const Binary& binary)
{
    return (binary.significand & ((std::uint64_t(1) << binary.shift) - 1)) == 0;
}

// The value times 10^decimals exactly: a whole number and the rest in
// units of 2^-shift.
struct Product {
    std::uint64_t whole = 0;
    std::uint64_t rest = 0;
};

Product product(const Binary& binary, int decimals)
{
    const Wide exact = Wide(binary.significand) * kPowersOfTen[decimals];
    const auto low = std::uint64_t(exact);
    const auto high = std::uint64_t(exact >> 64);
    // The shift is below 64: the whole number takes bits of both halves.
    return {(high << (64 - binary.shift)) | (low >> binary.shift), low & ((std::uint64_t(1) << binary.shift) - 1)};
}

// The whole number of units (1, 10 or 100) nearest to a product, and twice
// its distance from the product in units of 2^-shift; a tie when the
// product lies halfway between two such numbers.
struct Scaled {
    std::uint64_t nearest = 0;
    std::uint64_t twiceDistance = 0;
    bool tie = false;
};

Scaled rounded(const Product& product, int shift, std::uint64_t unit)
{
    // Below 100 * 2^52: the rest of whole units fits one word.
    const std::uint64_t remainder = (product.whole % unit) << shift | product.rest;
    const std::uint64_t span = unit << shift;
    const std::uint64_t half = span >> 1;
    // Without branches: rounding up or down is as likely.
    const std::uint64_t distance = std::min(remainder, span - remainder);
    return {product.whole / unit + std::uint64_t(remainder >= half), 2 * distance, remainder == half};
}

// The sixteen digits of a number below 10^16 as characters, the first in
// the lowest byte: its halves of eight digits, their halves of four, then
// hundreds and tens are split off in all lanes at once, by multiplications
// with reciprocals of 10^4, 100 and 10 that are exact for numbers as small
// as those lanes hold.
[[gnu::always_inline]] inline __m128i sixteenDigits(std::uint64_t value)
{
    constexpr std::uint64_t kEight = 100000000;
    // Lanes of 64 bits, the higher eight digits first.
    const __m128i eights = _mm_set_epi64x(std::int64_t(value % kEight), std::int64_t(value / kEight));
    const __m128i highFours = _mm_srli_epi64(_mm_mul_epu32(eights, _mm_set1_epi32(int(0xD1B71759u))), 45);
    const __m128i lowFours = _mm_sub_epi64(eights, _mm_mul_epu32(highFours, _mm_set1_epi32(10000)));
    // Lanes of 32 bits, each below 10^4, then of 16 bits, each below 100.
    const __m128i fours = _mm_or_si128(highFours, _mm_slli_epi64(lowFours, 32));
    const __m128i highPairs = _mm_srli_epi16(_mm_mulhi_epu16(fours, _mm_set1_epi16(5243)), 3);
    const __m128i lowPairs = _mm_sub_epi16(fours, _mm_mullo_epi16(highPairs, _mm_set1_epi16(100)));
    const __m128i pairs = _mm_or_si128(highPairs, _mm_slli_epi32(lowPairs, 16));
    const __m128i tens = _mm_mulhi_epu16(pairs, _mm_set1_epi16(6554));
    const __m128i ones = _mm_sub_epi16(pairs, _mm_mullo_epi16(tens, _mm_set1_epi16(10)));
    return _mm_add_epi8(_mm_or_si128(tens, _mm_slli_epi16(ones, 8)), _mm_set1_epi8('0'));
}

// Writes the whole digits and the decimals of digits (whole + decimals of
// them, at most 17, each part at most 16) with the point between them. The
// digits are right-aligned in a text of 24, the last sixteen made at once;
// each part is copied as sixteen bytes, so up to 34 bytes from out are
// overwritten.
char* writeDigits(bool negative, std::uint64_t digits, int whole, int decimals, char* out)
{
    constexpr std::uint64_t kSixteen = 10000000000000000;
    // The bytes before the first of seventeen digits are never copied;
    // those beyond the digits are, but lie beyond the text.
    char text[40];
    text[7] = char('0' + digits / kSixteen);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(text + 8), sixteenDigits(digits % kSixteen));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(text + 24), _mm_setzero_si128());
    const int count = whole + decimals;
    *out = '-';
    out += negative;
    std::memcpy(out, text + 24 - count, 16);
    out += whole;
    if (decimals > 0) {
        *out++ = '.';
        std::memcpy(out, text + 24 - decimals, 16);
        out += decimals;
    }
    return out;
}

// A magnitude below 2^42 (and not whole) of up to three decimals, as most
// values typed or snapped are: the whole number nearest to it times 1000,
// divided by 1000 in doubles (both exact, so the quotient is what reading
// that text gives), gives it back. Two texts of up to three decimals lie
// 0.001 apart or more, farther than such a value's last place (2^-11 at
// most), so that text is the only one of up to three decimals that reads
// back: the shortest, with the zeros that end it dropped. False for any
// other magnitude.
bool fewDecimals(double magnitude, std::uint64_t& digits, int& decimals)
{
    if (!(magnitude < 0x1p42))
        return false;
    const auto nearest = std::uint64_t(magnitude * 1000 + 0.5);
    if (double(nearest) / 1000 != magnitude)
        return false;
    // Not whole, so not all three decimals are zeros.
    digits = nearest;
    decimals = 3;
    for (; digits % 10 == 0; --decimals)
        digits /= 10;
    return true;
}

}  // namespace

char* writeShortestDecimal(double value, char* out)
{
    const double magnitude = std::abs(value);
    Binary binary;
    if (!takeBinary(magnitude, binary) || isWhole(binary))
        return nullptr;
    // Below 10^5, writeFewDecimals has looked for up to three decimals.
    if (magnitude >= 1e5) {
        std::uint64_t digits = 0;
        int decimals = 0;
        if (fewDecimals(magnitude, digits, decimals))
            return writeDigits(value < 0, digits, wholeDigits(binary), decimals, out);
    }
    // The text with the fewest decimals that reads back: with a given count
    // of decimals, the nearest text reads back when it lies within half a
    // unit in the value's last place. None lies on that edge, which has one
    // decimal more than the value's own exact text: with that many
    // decimals, the exact text is the nearest. When one count reads back,
    // every larger one does, and seventeen significant digits always do.
    // Such a text with decimals is shorter than the scientific form.
    const int whole = wholeDigits(binary);
    const int most = 17 - whole;
    // Computed values need sixteen or seventeen significant digits. Those
    // and fifteen are made from one product, of seventeen: rounded to tens
    // and hundreds of it, twice their distance is in the same units, and
    // reads back below the same bound.
    const Product exact = product(binary, most);
    const std::uint64_t bound = kPowersOfTen[most];
    const Scaled seventeen = rounded(exact, binary.shift, 1);
    const Scaled sixteen = rounded(exact, binary.shift, 10);
    const Scaled fifteen = rounded(exact, binary.shift, 100);
    // Without branches: sixteen digits or seventeen are as likely.
    const bool sixteenReadBack = sixteen.twiceDistance < bound;
    std::uint64_t digits = sixteenReadBack ? sixteen.nearest : seventeen.nearest;
    bool tie = sixteenReadBack ? sixteen.tie : seventeen.tie;
    int decimals = most - int(sixteenReadBack);
    if (fifteen.twiceDistance < bound) {
        // Fewer digits may read back: searched upwards. Below 2^42 no text
        // of up to three decimals reads back (none was found), so the
        // search starts at four.
        decimals = magnitude < 0x1p42 ? 4 : 1;
        Scaled found = fifteen;
        for (; decimals < most - 2; ++decimals) {
            const Scaled tried = rounded(product(binary, decimals), binary.shift, 1);
            if (tried.twiceDistance < kPowersOfTen[decimals]) {
                found = tried;
                break;
            }
        }
        decimals = std::min(decimals, most - 2);
        digits = found.nearest;
        tie = found.tie;
    }
    // Halfway between two texts: which of them std::to_chars writes is
    // left to it.
    if (tie)
        return nullptr;
    return writeDigits(value < 0, digits, whole, decimals, out);
}

char* writeFifteenDigits(double value, char* out)
{
    const double magnitude = std::abs(value);
    Binary binary;
    if (!takeBinary(magnitude, binary))
        return nullptr;
    const int whole = wholeDigits(binary);
    if (whole > 15)
        return nullptr;
    int decimals = 15 - whole;
    const Scaled fifteen = rounded(product(binary, decimals), binary.shift, 1);
    if (fifteen.tie || fifteen.nearest >= kPowersOfTen[15])
        return nullptr;
    // The general form drops the zeros that end the decimals, and the point
    // when none is left: eight, four, two and one at a time.
    std::uint64_t digits = fifteen.nearest;
    const auto drop = [&](int count, std::uint64_t power) {
        if (decimals >= count && digits % power == 0) {
            digits /= power;
            decimals -= count;
        }
    };
    drop(8, 100000000);
    drop(4, 10000);
    drop(2, 100);
    drop(1, 10);
    return writeDigits(value < 0, digits, whole, decimals, out);
}

}  // namespace kaldo::dxf
