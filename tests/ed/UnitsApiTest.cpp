#include "EditorFixture.h"

#include "kxedunits.h"

#include <numbers>

namespace kaldo {
namespace {

class UnitsApi : public EditorFixture {
protected:
    std::wstring distance(double value, int unit = -1, int precision = -1)
    {
        wchar_t out[KXED_NUMBER_SIZE];
        EXPECT_EQ(kxdbRToS(value, unit, precision, out), RTNORM);
        return out;
    }
    std::wstring angle(double value, int unit = -1, int precision = -1)
    {
        wchar_t out[KXED_NUMBER_SIZE];
        EXPECT_EQ(kxdbAngToS(value, unit, precision, out), RTNORM);
        return out;
    }
};

TEST_F(UnitsApi, SystemVariablesFillInUnitsPrecisionAndZeros)
{
    EXPECT_EQ(distance(1.5), L"1.5000");
    EXPECT_EQ(angle(std::numbers::pi / 4), L"45");
    editor.variables().set(L"LUNITS", short(4));
    editor.variables().set(L"LUPREC", short(2));
    EXPECT_EQ(distance(15.5), L"1'-3 1/2\"");
    EXPECT_EQ(distance(15.5, 2), L"15.50");
    editor.variables().set(L"AUNITS", short(1));
    editor.variables().set(L"AUPREC", short(2));
    EXPECT_EQ(angle(std::numbers::pi / 4), L"45d0'");
    ASSERT_EQ(db.setDimzin(12), Kald::eOk);
    EXPECT_EQ(distance(0.5, 2, 4), L".5");
    EXPECT_EQ(angle(std::numbers::pi / 4, 0, 4), L"45");
    wchar_t out[KXED_NUMBER_SIZE];
    EXPECT_EQ(kxdbRToS(1, 9, 2, out), RTERROR);
    EXPECT_EQ(kxdbAngToS(1, 7, 2, out), RTERROR);
    EXPECT_EQ(kxdbRToS(1, 2, 2, nullptr), RTERROR);
}

TEST_F(UnitsApi, AnglesFromText)
{
    double radians = 0;
    ASSERT_EQ(kxdbAngToF(L"90", -1, &radians), RTNORM);
    EXPECT_NEAR(radians, std::numbers::pi / 2, 1e-15);
    editor.variables().set(L"AUNITS", short(3));
    ASSERT_EQ(kxdbAngToF(L"1", -1, &radians), RTNORM);
    EXPECT_EQ(radians, 1.0);
    ASSERT_EQ(kxdbAngToF(L"100g", -1, &radians), RTNORM);
    EXPECT_NEAR(radians, std::numbers::pi / 2, 1e-15);
    EXPECT_EQ(kxdbAngToF(L"ninety", 0, &radians), RTERROR);
    EXPECT_EQ(kxdbAngToF(nullptr, 0, &radians), RTERROR);
}

}  // namespace
}  // namespace kaldo
