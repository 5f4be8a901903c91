// The world's own plane converts points without its products: the same
// coordinates, bit for bit, as the plane of a normal that only becomes +z
// once normalised, which takes the products.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

#include "kaldo/db/EntityPlane.h"

namespace {

bool sameBits(double a, double b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

TEST(EntityPlane, TheWorldPlaneGivesWhatTheProductsGive)
{
    const kaldo::EntityPlane world(KxGeVector3d(0, 0, 1));
    const kaldo::EntityPlane computed(KxGeVector3d(0, 0, 2));
    for (const auto& [a, b] : {std::pair{world.xAxis(), computed.xAxis()}, std::pair{world.yAxis(), computed.yAxis()},
                               std::pair{world.normal(), computed.normal()}}) {
        EXPECT_TRUE(sameBits(a.x, b.x) && sameBits(a.y, b.y) && sameBits(a.z, b.z));
    }
    constexpr double kInf = std::numeric_limits<double>::infinity();
    const double values[] = {0.0, -0.0, 1.5, -2.25, 1e300, -1e-300, kInf, -kInf, std::nan("")};
    for (const double x : values)
        for (const double y : values)
            for (const double z : values) {
                const KxGePoint3d w = world.toWorld(KxGePoint3d(x, y, z));
                const KxGePoint3d c = computed.toWorld(KxGePoint3d(x, y, z));
                EXPECT_TRUE(sameBits(w.x, c.x) && sameBits(w.y, c.y) && sameBits(w.z, c.z))
                    << x << " " << y << " " << z << ": " << w.x << " " << w.y << " " << w.z;
            }
    // A normal of a negative zero takes the rule's way.
    const kaldo::EntityPlane negativeZero(KxGeVector3d(-0.0, 0, 1));
    EXPECT_TRUE(std::signbit(negativeZero.xAxis().y));
}

}  // namespace
