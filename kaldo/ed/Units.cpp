#include "kaldo/ed/Units.h"

#include "kaldo/ed/Text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cwctype>
#include <numbers>
#include <numeric>

namespace kaldo {

namespace {

constexpr double kPi = std::numbers::pi;

int clampPrecision(int precision)
{
    return std::clamp(precision, 0, 16);
}

std::wstring widen(const char* begin, const char* end)
{
    return std::wstring(begin, end);
}

std::wstring fixedText(double value, int precision)
{
    char buf[400];
    const auto [end, error] = std::to_chars(buf, buf + sizeof buf, value, std::chars_format::fixed, precision);
    if (error != std::errc())
        return {};
    std::wstring text = widen(buf, end);
    if (text.front() == L'-' && text.find_first_not_of(L"-0.") == std::wstring::npos)
        text.erase(0, 1);
    return text;
}

// Applies the DIMZIN bits 4 and 8 to a plain decimal number.
std::wstring suppressZeros(std::wstring text, int dimzin)
{
    const bool negative = !text.empty() && text.front() == L'-';
    if (negative)
        text.erase(0, 1);
    if ((dimzin & 8) && text.find(L'.') != std::wstring::npos) {
        text.erase(text.find_last_not_of(L'0') + 1);
        if (text.back() == L'.')
            text.pop_back();
    }
    if ((dimzin & 4) && text.size() > 1 && text[0] == L'0' && text[1] == L'.')
        text.erase(0, 1);
    if (text.empty())
        text = L"0";
    return negative ? L"-" + text : text;
}

std::wstring scientificText(double value, int precision, int dimzin)
{
    char buf[64];
    const auto [end, error] = std::to_chars(buf, buf + sizeof buf, value, std::chars_format::scientific, precision);
    if (error != std::errc())
        return {};
    std::wstring text = widen(buf, end);
    const std::size_t e = text.find(L'e');
    return suppressZeros(text.substr(0, e), dimzin) + L"E" + text.substr(e + 1);
}

std::wstring decimalText(double value, int precision, int dimzin)
{
    return suppressZeros(fixedText(value, precision), dimzin);
}

// Joins feet and inches as the low two DIMZIN bits ask.
std::wstring feetAndInches(long long feet, bool inchesZero, const std::wstring& inches, int dimzin)
{
    const int mode = dimzin & 3;
    const bool showZeroFeet = mode == 1 || mode == 2;
    const bool showZeroInches = mode == 1 || mode == 3;
    const std::wstring feetText = std::to_wstring(feet) + L"'";
    const std::wstring inchText = inches + L"\"";
    if (feet == 0 && !showZeroFeet)
        return inchText;
    if (inchesZero && !showZeroInches)
        return feet == 0 ? inchText : feetText;
    return feetText + L"-" + inchText;
}

std::wstring fractionText(long long whole, long long numerator, long long denominator)
{
    if (numerator == 0)
        return std::to_wstring(whole);
    const long long g = std::gcd(numerator, denominator);
    std::wstring fraction = std::to_wstring(numerator / g) + L"/" + std::to_wstring(denominator / g);
    return whole == 0 ? fraction : std::to_wstring(whole) + L" " + fraction;
}

// Rounds value to a whole number of steps, when that fits in a long long.
std::optional<long long> steps(double value, double perUnit)
{
    const double scaled = std::round(value * perUnit);
    if (!std::isfinite(scaled) || scaled > 9e15)
        return std::nullopt;
    return static_cast<long long>(scaled);
}

std::wstring engineeringText(double value, int precision, int dimzin)
{
    const double scale = std::pow(10.0, precision);
    const auto units = steps(std::fabs(value), scale);
    if (!units)
        return scientificText(value, precision, dimzin);
    const long long perFoot = 12 * static_cast<long long>(scale);
    const long long inchUnits = *units % perFoot;
    const std::wstring inches = suppressZeros(fixedText(static_cast<double>(inchUnits) / scale, precision), dimzin);
    const std::wstring text = feetAndInches(*units / perFoot, inchUnits == 0, inches, dimzin);
    return value < 0 && *units != 0 ? L"-" + text : text;
}

std::wstring architecturalText(double value, int precision, int dimzin, bool withFeet)
{
    const long long denominator = 1LL << std::min(precision, 8);
    const auto units = steps(std::fabs(value), static_cast<double>(denominator));
    if (!units)
        return scientificText(value, precision, dimzin);
    const long long whole = *units / denominator;
    const long long numerator = *units % denominator;
    std::wstring text;
    if (withFeet)
        text = feetAndInches(whole / 12, whole % 12 == 0 && numerator == 0,
                             fractionText(whole % 12, numerator, denominator), dimzin);
    else
        text = fractionText(whole, numerator, denominator);
    return value < 0 && *units != 0 ? L"-" + text : text;
}

// Degrees (0 <= degrees < 360) as d/m/s: precision 0 whole degrees, 1-2
// minutes, 3-4 seconds, 5 and more decimals of seconds.
std::wstring dmsText(double degrees, int precision, int dimzin)
{
    if (precision == 0)
        return std::to_wstring(std::llround(degrees) % 360) + L"d";
    if (precision <= 2) {
        const long long minutes = std::llround(degrees * 60) % (360 * 60);
        return std::to_wstring(minutes / 60) + L"d" + std::to_wstring(minutes % 60) + L"'";
    }
    const int decimals = std::max(0, precision - 4);
    const long long scale = static_cast<long long>(std::pow(10.0, decimals));
    const long long units = std::llround(degrees * 3600 * static_cast<double>(scale)) % (360LL * 3600 * scale);
    const long long perMinute = 60 * scale;
    const long long secondUnits = units % perMinute;
    const std::wstring seconds =
        suppressZeros(fixedText(static_cast<double>(secondUnits) / static_cast<double>(scale), decimals), dimzin);
    return std::to_wstring(units / (60 * perMinute)) + L"d" + std::to_wstring(units / perMinute % 60) + L"'"
        + seconds + L"\"";
}

// The angle in a unit that wraps at period, written with precision decimals,
// so that a value that rounds to a full turn reads 0.
std::wstring wrappedDecimal(double value, double period, int precision, int dimzin)
{
    std::wstring text = fixedText(value, precision);
    if (text == fixedText(period, precision))
        text = fixedText(0.0, precision);
    return suppressZeros(std::move(text), dimzin);
}

std::wstring surveyorText(double degrees, int precision, int dimzin)
{
    wchar_t from = L'N';
    wchar_t to = L'E';
    double deviation = 90 - degrees;
    if (degrees > 90 && degrees <= 180) {
        to = L'W';
        deviation = degrees - 90;
    } else if (degrees > 180 && degrees <= 270) {
        from = L'S';
        to = L'W';
        deviation = 270 - degrees;
    } else if (degrees > 270) {
        from = L'S';
        deviation = degrees - 270;
    }
    const std::wstring text = dmsText(deviation, precision, dimzin);
    if (text == dmsText(0, precision, dimzin))
        return std::wstring(1, from);
    if (text == dmsText(90, precision, dimzin))
        return std::wstring(1, to);
    return std::wstring(1, from) + L" " + text + L" " + std::wstring(1, to);
}

double normalizedRadians(double radians)
{
    double r = std::fmod(radians, 2 * kPi);
    return r < 0 ? r + 2 * kPi : r;
}

// Degrees written as "45", "45d", "45d30'", "45d30'15.5\"" (a '°' counts as
// 'd'); the whole text must be used.
std::optional<double> parseDegrees(std::wstring_view text)
{
    text = trimmed(text);
    std::size_t used = 0;
    const auto degrees = parseLeadingReal(text, used);
    if (!degrees)
        return std::nullopt;
    std::wstring_view rest = text.substr(used);
    if (rest.empty())
        return degrees;
    if (rest.front() != L'd' && rest.front() != L'D' && rest.front() != L'\u00b0')
        return std::nullopt;
    rest.remove_prefix(1);
    const double sign = std::signbit(*degrees) ? -1.0 : 1.0;
    double total = std::fabs(*degrees);
    double unit = 60;
    for (wchar_t mark : {L'\'', L'"'}) {
        if (rest.empty())
            break;
        const auto part = parseLeadingReal(rest, used);
        if (!part || *part < 0 || used >= rest.size() || rest[used] != mark)
            return std::nullopt;
        total += *part / unit;
        unit *= 60;
        rest.remove_prefix(used + 1);
    }
    if (!rest.empty())
        return std::nullopt;
    return sign * total;
}

std::optional<double> parseBearing(std::wstring_view text)
{
    const wchar_t from = static_cast<wchar_t>(std::towupper(static_cast<wint_t>(text.front())));
    if (text.size() == 1) {
        switch (from) {
        case L'N': return 90.0;
        case L'S': return 270.0;
        case L'E': return 0.0;
        case L'W': return 180.0;
        default: return std::nullopt;
        }
    }
    const wchar_t to = static_cast<wchar_t>(std::towupper(static_cast<wint_t>(text.back())));
    if ((from != L'N' && from != L'S') || (to != L'E' && to != L'W'))
        return std::nullopt;
    const auto deviation = parseDegrees(text.substr(1, text.size() - 2));
    if (!deviation || *deviation < 0 || *deviation > 90)
        return std::nullopt;
    const double base = from == L'N' ? 90.0 : 270.0;
    const bool towardsZero = (from == L'N') == (to == L'E');
    return towardsZero ? base - *deviation : base + *deviation;
}

}  // namespace

std::wstring formatDistance(double value, int unit, int precision, int dimzin)
{
    precision = clampPrecision(precision);
    if (unit == 1 || (std::isfinite(value) && std::fabs(value) >= kLargestPlainNumber))
        return scientificText(value, precision, dimzin);
    switch (unit) {
    case 3: return engineeringText(value, precision, dimzin);
    case 4: return architecturalText(value, precision, dimzin, true);
    case 5: return architecturalText(value, precision, dimzin, false);
    default: return decimalText(value, precision, dimzin);
    }
}

std::wstring formatAngle(double radians, int unit, int precision, int dimzin)
{
    precision = clampPrecision(precision);
    const double r = normalizedRadians(radians);
    const double degrees = r * 180 / kPi;
    switch (unit) {
    case 1: return dmsText(degrees, precision, dimzin);
    case 2: return wrappedDecimal(r * 200 / kPi, 400, precision, dimzin) + L"g";
    case 3: return wrappedDecimal(r, 2 * kPi, precision, dimzin) + L"r";
    case 4: return surveyorText(degrees, precision, dimzin);
    default: return wrappedDecimal(degrees, 360, precision, dimzin);
    }
}

namespace {

// An angle of halfTurn units to the half turn (180 degrees, 200 gradians)
// in radians. A number so large that its product with pi overflows is
// divided first, so that every finite angle gives finite radians.
double toRadians(double angle, double halfTurn)
{
    const double radians = angle * kPi / halfTurn;
    return std::isfinite(radians) ? radians : angle / halfTurn * kPi;
}

}  // namespace

std::optional<double> parseAngle(std::wstring_view text, int unit)
{
    text = trimmed(text);
    if (text.empty())
        return std::nullopt;
    const wchar_t first = static_cast<wchar_t>(std::towupper(static_cast<wint_t>(text.front())));
    if (first == L'N' || first == L'S' || first == L'E' || first == L'W') {
        const auto degrees = parseBearing(text);
        return degrees ? std::optional(toRadians(*degrees, 180)) : std::nullopt;
    }
    std::size_t used = 0;
    const auto number = parseLeadingReal(text, used);
    if (!number)
        return std::nullopt;
    const std::wstring_view suffix = text.substr(used);
    if (suffix.empty()) {
        if (unit == 2)
            return toRadians(*number, 200);
        if (unit == 3)
            return *number;
        return toRadians(*number, 180);
    }
    if (equalsNoCase(suffix, L"r"))
        return *number;
    if (equalsNoCase(suffix, L"g"))
        return toRadians(*number, 200);
    const auto degrees = parseDegrees(text);
    return degrees ? std::optional(toRadians(*degrees, 180)) : std::nullopt;
}

}  // namespace kaldo
