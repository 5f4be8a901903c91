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

// A plain decimal ("-12.375", "0.5999999999999998": no exponent) of at
// most 17 digits. When its digits, taken as a whole number, are at most
// 2^53, that number and the power of ten are exact, so one division gives
// the correctly rounded value, the same one from_chars gives, in a fraction
// of its time; above, divideRounded. False, with value untouched, for any
// other text. One pass of a byte a step: loops that end at the point or
// take eight digits at once branch on the varying lengths of values and
// cost more than they save.
inline bool readPlainDecimal(std::string_view text, double& value)
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
    // Counted up to the end, so that one addition both steps and tests; the
    // point is told by the digit it would be, so the byte is read once.
    for (std::ptrdiff_t at = first - end; at != 0; ++at) {
        const unsigned digit = unsigned(end[at]) - '0';
        if (digit < 10)
            digits = digits * 10 + digit;
        else if (digit == unsigned('.' - '0') && point == 0)
            point = at;
        else
            return false;
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
// The real of a value by toReal's quick ways alone, so that it can be read
// ahead of its use; false, with value untouched, where toReal looks further
// (and may refuse the text). Inline: a record reads the reals of its groups
// as it copies them.
inline bool readQuickReal(std::string_view text, double& value)
{
    if (isOneDigit(text)) {
        value = text[0] - '0';
        return true;
    }
    // A plain decimal refuses blanks and plus signs, so only a text it
    // refuses that has a blank at either end or a plus sign is trimmed and
    // read again: most values are read at the first try, untested.
    if (readPlainDecimal(text, value))
        return true;
    if (!hasBlankEnd(text) && (text.empty() || text.front() != '+'))
        return false;
    text = trimmed(text);
    if (!text.empty() && text.front() == '+')
        text.remove_prefix(1);
    return readPlainDecimal(text, value);
}

}  // namespace kaldo::dxf
