#include "kaldo/ed/PrintfText.h"
#include "kaldo/ed/Units.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdarg>
#include <numbers>
#include <string>

namespace kaldo {
namespace {

constexpr double kPi = std::numbers::pi;

double degrees(double d)
{
    return d * kPi / 180;
}

// A value (a distance, or an angle in radians), the unit, precision and
// zero flags it is written with, and the text expected.
struct FormattedRow {
    double value;
    int unit, precision, zeros;
    const wchar_t* text;
};

// Decimal (2), scientific (1), feet and inches (3), architectural (4) and
// fractional (5), with zeros suppressed as the flags ask; rounding that
// reaches a whole foot carries into the feet.
TEST(Units, DistancesInEveryUnitWithZeroSuppression)
{
    const FormattedRow rows[] = {
        {1.5, 2, 4, 0, L"1.5000"}, {1.5, 2, 4, 8, L"1.5"}, {2.0, 2, 4, 8, L"2"}, {0.5, 2, 2, 4, L".50"},
        {0.5, 2, 4, 12, L".5"}, {-0.25, 2, 3, 12, L"-.25"}, {0.0, 2, 4, 12, L"0"}, {-0.00001, 2, 2, 0, L"0.00"},
        {1234.5678, 2, 2, 0, L"1234.57"}, {3.0, 2, 0, 0, L"3"}, {15.0, 1, 4, 0, L"1.5000E+01"},
        {15.0, 1, 4, 8, L"1.5E+01"}, {0.00025, 1, 2, 0, L"2.50E-04"}, {15.5, 3, 4, 0, L"1'-3.5000\""},
        {15.5, 3, 4, 8, L"1'-3.5\""}, {6.0, 3, 2, 0, L"6.00\""}, {6.0, 3, 2, 1, L"0'-6.00\""},
        {24.0, 3, 2, 0, L"2'"}, {24.0, 3, 2, 3, L"2'-0.00\""}, {23.9999, 3, 2, 1, L"2'-0.00\""},
        {15.5, 4, 4, 0, L"1'-3 1/2\""}, {-15.5, 4, 4, 0, L"-1'-3 1/2\""}, {0.375, 4, 3, 0, L"3/8\""},
        {0.376, 4, 2, 0, L"1/2\""}, {15.5, 5, 4, 0, L"15 1/2"}, {15.0, 5, 4, 0, L"15"}, {0.25, 5, 4, 0, L"1/4"}
    };
    for (const auto& row : rows)
        EXPECT_EQ(formatDistance(row.value, row.unit, row.precision, row.zeros), row.text) << row.text;
}

// Whole parts longer than a double's digits are no number to read: every
// linear unit writes such values as the scientific unit does, and so does
// the host's printf for fixed-point reals.
TEST(Units, HugeValuesAreWrittenScientificInEveryUnitAndByPrintf)
{
    EXPECT_EQ(formatDistance(999999999999999.0, 2, 4, 0), L"999999999999999.0000");
    EXPECT_EQ(formatDistance(1e15, 2, 4, 0), L"1.0000E+15");
    EXPECT_EQ(formatDistance(-1e308, 2, 4, 8), L"-1E+308");
    EXPECT_EQ(formatDistance(1e100, 2, 2, 0), L"1.00E+100");
    for (int unit = 3; unit <= 5; ++unit)
        EXPECT_EQ(formatDistance(1e308, unit, 4, 0), L"1.0000E+308") << unit;
    EXPECT_EQ(formatDistance(1.2e14, 4, 0, 0), L"10000000000000'");

    const auto printed = [](const wchar_t* format, ...) {
        std::va_list args;
        va_start(args, format);
        const auto text = printfText(format, args);
        va_end(args);
        return text.value_or(L"(refused)");
    };
    EXPECT_EQ(printed(L"Scale = %.4f, Style = %ls", 1e308, L"STANDARD"), L"Scale = 1.0000E+308, Style = STANDARD");
    EXPECT_EQ(printed(L"<%.4f> <%f> <%8.2F>", -2.5e15, 12.5, 3.14159), L"<-2.5000E+15> <12.500000> <    3.14>");
    EXPECT_EQ(printed(L"%d%% %5s|%-4c|%#x %lld %zu %.3e %g %*.*f", 42, "ab", L'z', 255u, 1LL << 40, std::size_t(7),
                      1234.5, 0.5, 7, 2, 1.005),
              L"42%    ab|z   |0xff 1099511627776 7 1.234e+03 0.5    1.00");
    EXPECT_EQ(printed(L"%.*f", -1, 2.5), L"2.500000");
    const std::wstring longName(1000, L'w');
    EXPECT_EQ(printed(L"[%ls]", longName.c_str()), L"[" + longName + L"]");
    EXPECT_EQ(printed(L"%Lf", 1e20L), L"1.000000E+20");
    EXPECT_EQ(printed(L"broken %"), L"(refused)");
    EXPECT_EQ(printed(L"%n", nullptr), L"(refused)");
}

TEST(Units, AnglesInEveryUnit)
{
    const FormattedRow rows[] = {
        {degrees(45), 0, 4, 0, L"45.0000"}, {degrees(45), 0, 4, 8, L"45"}, {degrees(0.5), 0, 2, 4, L".50"},
        {degrees(-90), 0, 0, 0, L"270"}, {degrees(359.99999), 0, 2, 0, L"0.00"}, {degrees(45.5), 1, 0, 0, L"46d"},
        {degrees(45.5), 1, 2, 0, L"45d30'"}, {degrees(45 + 30 / 60.0 + 15 / 3600.0), 1, 4, 0, L"45d30'15\""},
        {degrees(45 + 30 / 60.0 + 15.5 / 3600.0), 1, 6, 0, L"45d30'15.50\""},
        {degrees(45 + 30 / 60.0 + 15.5 / 3600.0), 1, 6, 8, L"45d30'15.5\""}, {degrees(90), 2, 2, 0, L"100.00g"},
        {kPi / 4, 3, 4, 0, L"0.7854r"}, {kPi / 4, 3, 4, 4, L".7854r"}, {degrees(45), 4, 2, 0, L"N 45d0' E"},
        {degrees(120), 4, 2, 0, L"N 30d0' W"}, {degrees(200), 4, 2, 0, L"S 70d0' W"},
        {degrees(300), 4, 2, 0, L"S 30d0' E"}, {degrees(90), 4, 2, 0, L"N"}, {degrees(180), 4, 2, 0, L"W"}
    };
    for (const auto& row : rows)
        EXPECT_EQ(formatAngle(row.value, row.unit, row.precision, row.zeros), row.text) << row.text;
}

TEST(Units, AnglesAreReadInTheirUnitOrBySuffix)
{
    const auto near = [](std::optional<double> value, double expected, double tolerance = 1e-12) {
        return value && std::abs(*value - expected) < tolerance;
    };
    const struct {
        const wchar_t* text;
        int unit;
        double radians;
    } rows[] = {
        {L"45", 0, degrees(45)}, {L" -30 ", 0, degrees(-30)}, {L"100", 2, degrees(90)}, {L"1.5", 3, 1.5},
        {L"45d30'", 0, degrees(45.5)}, {L"45d30'36\"", 1, degrees(45.51)}, {L"-45d30'", 1, degrees(-45.5)},
        {L"50g", 0, degrees(45)}, {L"0.5r", 0, 0.5}, {L"N 45d E", 0, degrees(45)}, {L"N45dW", 4, degrees(135)},
        {L"S 30d E", 4, degrees(300)}, {L"W", 4, degrees(180)}
    };
    for (const auto& row : rows)
        EXPECT_TRUE(near(parseAngle(row.text, row.unit), row.radians)) << row.text;
    for (const wchar_t* junk : {L"", L"abc", L"45x", L"45d30", L"45d-3'", L"N 100d E", L"N 45d", L"1,5", L"1e309"})
        EXPECT_FALSE(parseAngle(junk, 0)) << junk;
    // Every finite angle has finite radians, however large.
    const std::optional<double> huge = parseAngle(L"1e308", 0);
    ASSERT_TRUE(huge && std::isfinite(*huge));
    EXPECT_NEAR(*huge / 1e308 * 180, std::numbers::pi, 1e-12);
    const std::optional<double> hugeGradians = parseAngle(L"-1.7e308g", 0);
    ASSERT_TRUE(hugeGradians && std::isfinite(*hugeGradians));
    EXPECT_NEAR(*hugeGradians / -1.7e308 * 200, std::numbers::pi, 1e-12);
    // What formatAngle writes reads back (to its precision).
    for (int unit = 0; unit <= 4; ++unit)
        EXPECT_TRUE(near(parseAngle(formatAngle(degrees(123.25), unit, 8, 0), unit), degrees(123.25), 1e-8)) << unit;
}

}  // namespace
}  // namespace kaldo
