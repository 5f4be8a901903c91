#include "kaldo/ed/PointInput.h"

#include <gtest/gtest.h>

#include <numbers>

namespace kaldo {
namespace {

void expectPoint(const std::optional<KxGePoint3d>& p, double x, double y, double z)
{
    ASSERT_TRUE(p);
    EXPECT_NEAR(p->x, x, 1e-12);
    EXPECT_NEAR(p->y, y, 1e-12);
    EXPECT_NEAR(p->z, z, 1e-12);
}

TEST(PointInput, AbsoluteRelativeAndPolar)
{
    const KxGePoint3d ref(10, 20, 5);
    const AngleConvention degrees;
    expectPoint(parsePointInput(L"1,2", ref, degrees), 1, 2, 0);
    expectPoint(parsePointInput(L" 1.5 , -2 , 3 ", ref, degrees), 1.5, -2, 3);
    expectPoint(parsePointInput(L"@1,2", ref, degrees), 11, 22, 5);
    expectPoint(parsePointInput(L"@1,2,-5", ref, degrees), 11, 22, 0);
    expectPoint(parsePointInput(L"@", ref, degrees), 10, 20, 5);
    expectPoint(parsePointInput(L"@2<90", ref, degrees), 10, 22, 5);
    expectPoint(parsePointInput(L"@2<45d", ref, degrees), 10 + std::sqrt(2.0), 20 + std::sqrt(2.0), 5);
    expectPoint(parsePointInput(L"4<180", ref, degrees), -4, 0, 0);
}

TEST(PointInput, AnglesFollowTheDrawingsConvention)
{
    const KxGePoint3d origin;
    expectPoint(parsePointInput(L"@1<100", origin, {2, 0, false}), 0, 1, 0);
    expectPoint(parsePointInput(L"@1<0", origin, {0, std::numbers::pi / 2, false}), 0, 1, 0);
    expectPoint(parsePointInput(L"@1<90", origin, {0, 0, true}), 0, -1, 0);
    expectPoint(parsePointInput(L"@1<1.5707963267948966", origin, {3, 0, false}), 0, 1, 0);
}

TEST(PointInput, JunkIsNoPoint)
{
    for (const wchar_t* junk : {L"", L"1", L"1,", L",1", L"1,2,3,4", L"a,b", L"1;2", L"@@1,2", L"1<", L"<45",
                                L"@1<abc", L"1,2x", L"Close"})
        EXPECT_FALSE(parsePointInput(junk, {}, {})) << junk;
}

}  // namespace
}  // namespace kaldo
