#include "kaldo/dxf/DecimalText.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
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

// The whole number nearest to the value times 10^decimals, and twice its
// distance from that product in units of 2^-shift; a tie when the product
// lies halfway between two whole numbers.
struct Scaled {
    std::uint64_t nearest = 0;
    std::uint64_t twiceDistance = 0;
    bool tie = false;
};

Scaled scaled(const Binary& binary, int decimals)
{
    const Wide exact = Wide(binary.significand) * kPowersOfTen[decimals];
    const auto low = std::uint64_t(exact);
    const auto high = std::uint64_t(exact >> 64);
    // The shift is below 64: the quotient takes bits of both halves.
    const std::uint64_t quotient = (high << (64 - binary.shift)) | (low >> binary.shift);
    const std::uint64_t remainder = low & ((std::uint64_t(1) << binary.shift) - 1);
    const std::uint64_t half = std::uint64_t(1) << (binary.shift - 1);
    // Without branches: rounding up or down is as likely.
    const std::uint64_t distance = std::min(remainder, (half << 1) - remainder);
    return {quotient + std::uint64_t(remainder >= half), 2 * distance, remainder == half};
}

// The eight digits of a number below 10^8 as characters, the first in
// the lowest byte.
[[gnu::always_inline]] inline std::uint64_t eightDigits(std::uint32_t value)
{
    return eightDigitValues(value) + kDigitZeros;
}

// Writes the whole digits and the decimals of digits (whole + decimals of
// them, at most 17, each part at most 16) with the point between them. The
// digits are made eight at a time, right-aligned in a text of 24; each part
// is copied as sixteen bytes, so up to 34 bytes from out are overwritten.
char* writeDigits(bool negative, std::uint64_t digits, int whole, int decimals, char* out)
{
    constexpr std::uint64_t kEight = 100000000;
    // Bytes beyond the digits are copied out too, but lie beyond the text.
    char text[40] = {};
    const int count = whole + decimals;
    const std::uint64_t low = eightDigits(std::uint32_t(digits % kEight));
    std::memcpy(text + 16, &low, 8);
    if (count > 8) {
        const std::uint64_t middle = eightDigits(std::uint32_t(digits / kEight % kEight));
        std::memcpy(text + 8, &middle, 8);
        if (count > 16) {
            const std::uint64_t high = eightDigits(std::uint32_t(digits / (kEight * kEight)));
            std::memcpy(text, &high, 8);
        }
    }
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
    {
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
    Scaled found;
    bool tie = false;
    const auto readsBack = [&](int decimals) {
        found = scaled(binary, decimals);
        tie = tie || found.tie;
        return found.twiceDistance < kPowersOfTen[decimals];
    };
    const int whole = wholeDigits(binary);
    const int most = 17 - whole;
    // Below 2^42 no text of up to three decimals reads back (fewDecimals
    // found none), so the search starts at four.
    int decimals = magnitude < 0x1p42 ? 4 : 1;
    // Whether found holds the text of the count chosen, so that it is not
    // made again.
    bool chosen = false;
    if (decimals == 1 && most > 3) {
        // Values of up to three decimals above 2^42 have few decimals too:
        // searched from two, two tries for up to three decimals, one try
        // fewer than upwards from one for three and for computed values.
        if (readsBack(2)) {
            const Scaled two = found;
            decimals = readsBack(1) ? 1 : 2;
            if (decimals == 2)
                found = two;
            chosen = true;
        } else if (readsBack(3)) {
            decimals = 3;
            chosen = true;
        } else {
            decimals = 4;
        }
    }
    if (!chosen && most - decimals >= 2) {
        // Computed values mostly need sixteen or seventeen significant
        // digits: those two are tried first, then fewer upwards.
        if (!readsBack(most - 1)) {
            decimals = most;
            readsBack(most);
        } else {
            const Scaled sixteen = found;
            if (!readsBack(most - 2)) {
                decimals = most - 1;
                found = sixteen;
            } else {
                const Scaled fifteen = found;
                while (decimals < most - 2 && !readsBack(decimals))
                    ++decimals;
                if (decimals == most - 2)
                    found = fifteen;
            }
        }
    } else if (!chosen) {
        while (decimals < most && !readsBack(decimals))
            ++decimals;
        if (decimals == most)
            readsBack(most);
    }
    if (tie)
        return nullptr;
    return writeDigits(value < 0, found.nearest, whole, decimals, out);
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
    const Scaled rounded = scaled(binary, decimals);
    if (rounded.tie || rounded.nearest >= kPowersOfTen[15])
        return nullptr;
    // The general form drops the zeros that end the decimals, and the point
    // when none is left.
    std::uint64_t digits = rounded.nearest;
    while (decimals > 0 && digits % 10 == 0) {
        digits /= 10;
        --decimals;
    }
    return writeDigits(value < 0, digits, whole, decimals, out);
}

}  // namespace kaldo::dxf
