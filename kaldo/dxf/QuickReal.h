// The real of a value by quick ways: one digit, or a plain decimal of at
// most 17 digits read exactly as std::from_chars reads it; toReal reads
// every other text. The ways of trimming a value that the reader's number
// conversions share.
#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string_view>

#include "kaldo/dxf/GroupReader.h"

namespace kaldo::dxf {

// The product of 64 bits and 64 bits.
__extension__ typedef unsigned __int128 WideProduct;

// 2^shift / 5^power, rounded down, for the shift that puts its highest bit
// at bit 127: its high halves and its low halves; the powers of two that
// scale half the high half of its product with digits times 2^7 to
// digits / 10^power; the inverses of 5^power modulo 2^64. An array of
// each, read with one address.
struct FifthsReciprocals {
    std::array<std::uint64_t, 18> highs{};
    std::array<std::uint64_t, 18> lows{};
    std::array<double, 18> scales{};
    std::array<std::uint64_t, 18> inverses{};
};

// A copy in each file that reads reals: one shared by the library would be
// found through its table of addresses at every read.
static constexpr FifthsReciprocals kFifthsReciprocals = [] {
    FifthsReciprocals reciprocals;
    std::uint64_t power = 1;
    std::uint64_t inverse = 1;
    // 5 times 0xCCCCCCCCCCCCCCCD is 1 modulo 2^64.
    constexpr std::uint64_t kInverseOfFive = 0xCCCCCCCCCCCCCCCD;
    for (std::size_t p = 1; p < reciprocals.highs.size(); ++p) {
        power *= 5;
        inverse *= kInverseOfFive;
        const int shift = 63 + std::bit_width(power);
        const WideProduct high = (WideProduct(1) << shift) / power;
        const WideProduct rest = (WideProduct(1) << shift) - high * power;
        reciprocals.highs[p] = std::uint64_t(high);
        reciprocals.lows[p] = std::uint64_t((rest << 64) / power);
        // 2^(65 - shift - 7 - p) as the bits of a double.
        reciprocals.scales[p] = std::bit_cast<double>(std::uint64_t(1023 + 58 - shift - int(p)) << 52);
        reciprocals.inverses[p] = inverse;
    }
    return reciprocals;
}();

// The lowest bits of the high half of the product divideRounded takes that
// may all be ones only when it lies closer to a boundary of the rounding
// than the exact product does to it.
constexpr std::uint64_t kBelowRounding = 0x3F;

// divideRounded for a high half whose lowest bits are all ones: the
// reciprocal's low half comes in, to the same end 64 bits further down.
// All ones still: the quotient lies closer to a double or a midpoint
// between two than any quotient by a power of ten up to 10^17 does that
// is not exactly on it, so it is exactly on it, 5^power divides the digits
// and the whole number quotient converted rounds as from_chars (to even).
// Out of line: rare, and it would hold registers in the reading loops.
[[gnu::cold, gnu::noinline]] inline double divideRoundedFurther(std::uint64_t digits, std::size_t power)
{
    const std::uint64_t moved = digits << 7;
    const WideProduct product = WideProduct(moved) * kFifthsReciprocals.highs[power];
    const auto carried = std::uint64_t((WideProduct(moved) * kFifthsReciprocals.lows[power]) >> 64);
    const auto low = std::uint64_t(product) + carried;
    const std::uint64_t high = std::uint64_t(product >> 64) + (low < carried);
    if ((high & kBelowRounding) == kBelowRounding && low == ~std::uint64_t(0)) {
        const double unit = std::bit_cast<double>(std::uint64_t(1023 - power) << 52);
        return double(std::int64_t(digits * kFifthsReciprocals.inverses[power])) * unit;
    }
    return double(std::int64_t((high >> 1) | 1)) * kFifthsReciprocals.scales[power];
}

// digits / 10^power rounded correctly to a double, for digits above 2^53
// and below 10^17 ("-1.3333333333333335" has 17), as from_chars rounds it,
// by a multiplication with the reciprocal of 5^power, from 2^123 up to
// 2^128, whose high half is converted and scaled by a power of two. The
// exact product lies above it by less than 2^64, so both round to the same
// 53 bits unless a boundary of the rounding (a multiple of 2^70 at least)
// lies between: the high half's six lowest bits are all ones then. Else,
// the high half with its lowest bit set (the exact product has bits below
// set: 5^power divides no power of two), halved to fit in a signed word,
// rounds as the exact product does.
inline double divideRounded(std::uint64_t digits, std::size_t power)
{
    if (power == 0)
        return double(std::int64_t(digits));
    const WideProduct product = WideProduct(digits << 7) * kFifthsReciprocals.highs[power];
    const auto high = std::uint64_t(product >> 64);
    if ((high & kBelowRounding) == kBelowRounding)
        return divideRoundedFurther(digits, power);
    return double(std::int64_t((high >> 1) | 1)) * kFifthsReciprocals.scales[power];
}

// Whether the bytes of a Word from p (four or eight) are all digits; if so,
// digits is followed by them. A byte past '9' carries into its high nibble
// when six is added to it, one below '0' has it set already. Their number
// is summed by multiplications that add the parts of a word at once:
// pairs, then fours, then eights.
template <class Word>
inline bool appendDigitsAtOnce(const char* p, std::uint64_t& digits)
{
    static_assert(sizeof(Word) == 4 || sizeof(Word) == 8);
    Word values;
    std::memcpy(&values, p, sizeof values);
    values ^= Word(0x3030303030303030);
    if ((((values + Word(0x0606060606060606)) | values) & Word(0xF0F0F0F0F0F0F0F0)) != 0)
        return false;
    // Each byte, the first the lowest, ten times its digit and the next one.
    const Word pairs = values * 10 + (values >> 8);
    if constexpr (sizeof(Word) == 4) {
        digits = digits * 10000 + (pairs & 0xFF) * 100 + ((pairs >> 16) & 0xFF);
    } else {
        constexpr std::uint64_t kPairs = 0x000000FF000000FF;
        digits = digits * 100000000
                 + (((pairs & kPairs) * (100 + (std::uint64_t(1000000) << 32))
                     + ((pairs >> 16) & kPairs) * (1 + (std::uint64_t(10000) << 32)))
                    >> 32);
    }
    return true;
}

// A plain decimal ("-12.375", "0.5999999999999998": no exponent) of at
// most 17 digits. When its digits, taken as a whole number, are at most
// 2^53, that number and the power of ten are exact, so one division gives
// the correctly rounded value, the same one from_chars gives, in a fraction
// of its time; above, divideRounded. False, with value untouched, for any
// other text. A byte a step, but for four digits at once at the start when
// the text has as many, and eight then four at once after the point: most
// whole parts of coordinates have four digits or more, and the decimals of
// reals written in their shortest form often twelve or more. The words are
// read only where the text has as many bytes left, and outside the loops:
// inside, they branch more on the values' varying lengths than they save.
[[gnu::always_inline]] inline bool readPlainDecimal(std::string_view text, double& value)
{
    static constexpr double kPowersOfTen[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7, 1e8,
                                              1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15, 1e16, 1e17};
    constexpr int kMostDigits = 17;
    const char* p = text.data();
    const char* const end = p + text.size();
    const bool negative = p < end && *p == '-';
    if (negative)
        ++p;
    const char* const first = p;
    // The point's place counted from the end (negative), 0 for none.
    std::ptrdiff_t point = 0;
    // More digits than fit wrap around here, but such texts are refused below.
    std::uint64_t digits = 0;
    // Counted up to the end, so that one addition both steps and tests.
    std::ptrdiff_t at = first - end;
    if (at <= -4 && appendDigitsAtOnce<std::uint32_t>(end + at, digits))
        at += 4;
    for (; at != 0; ++at) {
        const unsigned digit = unsigned(end[at]) - '0';
        if (digit >= 10)
            break;
        digits = digits * 10 + digit;
    }
    if (at != 0) {
        if (end[at] != '.')
            return false;
        point = at++;
        if (at <= -8 && appendDigitsAtOnce<std::uint64_t>(end + at, digits))
            at += 8;
        if (at <= -4 && appendDigitsAtOnce<std::uint32_t>(end + at, digits))
            at += 4;
        for (; at != 0; ++at) {
            const unsigned digit = unsigned(end[at]) - '0';
            if (digit >= 10)
                return false;
            digits = digits * 10 + digit;
        }
    }
    const int fractional = point != 0 ? int(-point - 1) : 0;
    const int count = int(end - first) - (point != 0 ? 1 : 0);
    if (count > kMostDigits || count == fractional || (point != 0 && fractional == 0))
        return false;
    const double magnitude = digits <= (std::uint64_t(1) << 53)
                                 ? double(std::int64_t(digits)) / kPowersOfTen[fractional]
                                 : divideRounded(digits, std::size_t(fractional));
    value = negative ? -magnitude : magnitude;
    return true;
}

// Whether trimmed would change the text: its ends are tested once, sparing
// most values the trimming loops.
inline bool hasBlankEnd(std::string_view text)
{
    const auto blank = [](char c) { return c == ' ' || c == '\t'; };
    return !text.empty() && (blank(text.front()) || blank(text.back()));
}
// One digit, the most usual value of all ("0", "1", "8").
inline bool isOneDigit(std::string_view text)
{
    return text.size() == 1 && text[0] >= '0' && text[0] <= '9';
}
// A text readPlainDecimal refused read again without the blanks at its
// ends and a plus sign; false for any other text.
[[gnu::noinline]] inline bool readTrimmedDecimal(std::string_view text, double& value)
{
    // A plain decimal refuses blanks and plus signs, so only a text it
    // refuses that has a blank at either end or a plus sign is trimmed and
    // read again: most values are read at the first try, untested.
    if (!hasBlankEnd(text) && (text.empty() || text.front() != '+'))
        return false;
    text = trimmed(text);
    if (!text.empty() && text.front() == '+')
        text.remove_prefix(1);
    return readPlainDecimal(text, value);
}
// The real of a value by toReal's quick ways alone, so that it can be read
// ahead of its use; false, with value untouched, where toReal looks further
// (and may refuse the text). Inline, always: a record reads the reals of
// its groups as it copies them, in the loop that copies them.
[[gnu::always_inline]] inline bool readQuickReal(std::string_view text, double& value)
{
    if (isOneDigit(text)) {
        value = text[0] - '0';
        return true;
    }
    return readPlainDecimal(text, value) || readTrimmedDecimal(text, value);
}

}  // namespace kaldo::dxf
