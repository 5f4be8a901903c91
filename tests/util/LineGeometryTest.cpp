#include "KdCmdUtil.h"

#include <gtest/gtest.h>

#include <numbers>

namespace {

void expectPoint(const KxGePoint3d& p, double x, double y, double z = 0)
{
    EXPECT_NEAR(p.x, x, 1e-12);
    EXPECT_NEAR(p.y, y, 1e-12);
    EXPECT_NEAR(p.z, z, 1e-12);
}

TEST(PtLnDist, DistanceAndFootOnTheInfiniteLine)
{
    double d = -1;
    KxGePoint3d foot;
    PtLnDist({5, 3, 0}, {0, 0, 0}, {2, 0, 0}, &d, &foot);  // foot beyond the segment end
    EXPECT_DOUBLE_EQ(d, 3.0);
    expectPoint(foot, 5, 0);

    PtLnDist({0, 0, 0}, {1, 1, 0}, {3, 3, 0}, &d, &foot);  // diagonal, foot behind the start
    EXPECT_NEAR(d, 0.0, 1e-12);
    expectPoint(foot, 0, 0);

    PtLnDist({1, 1, 5}, {0, 0, 0}, {0, 0, 10}, &d, nullptr);  // in space, foot not asked for
    EXPECT_NEAR(d, std::sqrt(2.0), 1e-12);

    EXPECT_EQ(PtLnDist({3, 4, 0}, {1, 1, 0}, {1, 1, 0}, &d, &foot), 0);  // degenerate line
    EXPECT_DOUBLE_EQ(d, std::sqrt(13.0));
    expectPoint(foot, 1, 1);
}

TEST(LineXline, ResultCodesTellWhereTheCrossingLies)
{
    KxGePoint3d x;
    EXPECT_EQ(LineXline({0, 0}, {4, 0}, {2, -1}, {2, 1}, x), 3);  // inside both
    expectPoint(x, 2, 0);
    EXPECT_EQ(LineXline({0, 0}, {4, 0}, {2, 1}, {2, 3}, x), 1);  // on p1p2 only
    expectPoint(x, 2, 0);
    EXPECT_EQ(LineXline({0, 0}, {1, 0}, {2, -1}, {2, 1}, x), 2);  // on p3p4 only
    expectPoint(x, 2, 0);
    EXPECT_EQ(LineXline({0, 0}, {1, 0}, {2, 1}, {2, 3}, x), 4);  // on neither
    expectPoint(x, 2, 0);
    EXPECT_EQ(LineXline({0, 0}, {4, 0}, {4, 0}, {4, 3}, x), 3);  // shared end counts as within
    expectPoint(x, 4, 0);
    EXPECT_LT(LineXline({0, 0}, {4, 0}, {0, 1}, {4, 1}, x), 1);  // parallel
    EXPECT_LT(LineXline({0, 0}, {4, 0}, {1, 0}, {3, 0}, x), 1);  // collinear
    EXPECT_LT(LineXline({0, 0}, {0, 0}, {1, 0}, {1, 3}, x), 1);  // degenerate first line
    // The z of the crossing follows the first line.
    EXPECT_EQ(LineXline({0, 0, 0}, {4, 0, 8}, {2, -1, 100}, {2, 1, 100}, x), 3);
    expectPoint(x, 2, 0, 4);
}

TEST(LineXline3d, ResultCodesInSpace)
{
    KxGePoint3d x;
    EXPECT_EQ(LineXline3d({0, 0, 1}, {4, 0, 1}, {2, -1, 1}, {2, 1, 1}, x), 3);
    expectPoint(x, 2, 0, 1);
    EXPECT_EQ(LineXline3d({0, 0, 0}, {0, 0, 4}, {-1, 0, 2}, {-3, 0, 2}, x), 1);
    expectPoint(x, 0, 0, 2);
    EXPECT_EQ(LineXline3d({0, 0, 0}, {0, 0, 1}, {1, 0, 2}, {-1, 0, 2}, x), 2);
    EXPECT_EQ(LineXline3d({0, 0, 0}, {0, 0, 1}, {1, 0, 3}, {2, 0, 3}, x), 0);
    expectPoint(x, 0, 0, 3);
    EXPECT_LT(LineXline3d({0, 0, 0}, {4, 0, 0}, {2, -1, 1}, {2, 1, 1}, x), 0);  // skew
    EXPECT_LT(LineXline3d({0, 0, 0}, {4, 0, 0}, {0, 1, 0}, {4, 1, 0}, x), 0);   // parallel
}

TEST(PlaneAngles, AngleAndDistance)
{
    EXPECT_DOUBLE_EQ(kxutAngle({1, 1}, {2, 1}), 0.0);
    EXPECT_DOUBLE_EQ(kxutAngle({0, 0}, {0, 5}), std::numbers::pi / 2);
    EXPECT_DOUBLE_EQ(kxutAngle({0, 0}, {0, -5}), 3 * std::numbers::pi / 2);
    EXPECT_DOUBLE_EQ(kxutAngle({0, 0}, {-1, 0}), std::numbers::pi);
    EXPECT_DOUBLE_EQ(kxutDistance({0, 0, 0}, {1, 2, 2}), 3.0);
}

}  // namespace
