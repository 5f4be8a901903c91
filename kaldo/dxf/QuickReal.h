// The real of a value by quick ways: one digit, or a plain decimal of at
// most 17 digits read exactly as std::from_chars reads it; toReal reads
// every other text. The ways of trimming a value that the reader's number
// conversions share.
#pragma once

#include <cstdint>
#include <cstring>
#include <limits>
#include <string_view>

#include "kaldo/dxf/GroupReader.h"

namespace kaldo::dxf {

// digits / 10^power rounded correctly to a double, for digits above 2^53
// ("-1.3333333333333335" has 17): both are exact in the 64-bit significand
// of long double, so the quotient is rounded once to 64 bits, then to 53.
// That second rounding differs from rounding once only when the first
// lands on the midpoint between two doubles: false then, for from_chars.
inline bool divideRounded(std::uint64_t digits, int power, double& value)
{
    static_assert(std::numeric_limits<long double>::digits == 64);
    static constexpr long double kPowersOfTen[] = {1e0L, 1e1L,  1e2L,  1e3L,  1e4L,  1e5L,  1e6L,  1e7L,  1e8L,
                                                   1e9L, 1e10L, 1e11L, 1e12L, 1e13L, 1e14L, 1e15L, 1e16L, 1e17L};
    const long double quotient = static_cast<long double>(digits) / kPowersOfTen[power];
    // The significand is the first eight bytes of an x87 long double; its
    // lowest 11 bits are those the second rounding drops.
    std::uint64_t significand;
    std::memcpy(&significand, &quotient, sizeof significand);
    if ((significand & 0x7FF) == 0x400)
        return false;
    value = static_cast<double>(quotient);
    return true;
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
    double magnitude = 0;
    if (digits <= (std::uint64_t(1) << 53))
        magnitude = double(digits) / kPowersOfTen[fractional];
    else if (!divideRounded(digits, fractional, magnitude))
        return false;
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
