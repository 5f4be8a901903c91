#include "EditorFixture.h"

#include "kxed.h"

namespace kaldo {
namespace {

class Coordinates : public EditorFixture {
protected:
    static kxresbuf system(short code)
    {
        kxresbuf rb;
        rb.restype = RTSHORT;
        rb.resval.rint = code;
        return rb;
    }
    static kxresbuf normal(double x, double y, double z)
    {
        kxresbuf rb;
        rb.restype = RT3DPOINT;
        rb.resval.rpoint[0] = x;
        rb.resval.rpoint[1] = y;
        rb.resval.rpoint[2] = z;
        return rb;
    }
    static void expectPoint(const double p[3], double x, double y, double z)
    {
        EXPECT_NEAR(p[0], x, 1e-12);
        EXPECT_NEAR(p[1], y, 1e-12);
        EXPECT_NEAR(p[2], z, 1e-12);
    }
};

TEST_F(Coordinates, RotatedAndMovedUserSystem)
{
    // User x along world y, user y along world -x, origin (10, 0, 5).
    ASSERT_EQ(db.setUcs({10, 0, 5}, {0, 1, 0}, {-1, 0, 0}), Kald::eOk);
    const kxresbuf world = system(0);
    const kxresbuf user = system(1);
    const double p[3] = {1, 2, 3};
    double out[3];
    ASSERT_EQ(kxedTrans(p, &user, &world, 0, out), RTNORM);
    expectPoint(out, 8, 1, 8);
    ASSERT_EQ(kxedTrans(p, &user, &world, 1, out), RTNORM);
    expectPoint(out, -2, 1, 3);
    const double w[3] = {8, 1, 8};
    ASSERT_EQ(kxedTrans(w, &world, &user, 0, out), RTNORM);
    expectPoint(out, 1, 2, 3);
    ASSERT_EQ(kxedTrans(p, &user, &user, 0, out), RTNORM);
    expectPoint(out, 1, 2, 3);

    ASSERT_EQ(kxdbUcs2Wcs(p, out, 0), RTNORM);
    expectPoint(out, 8, 1, 8);
    ASSERT_EQ(kxdbWcs2Ucs(w, out, 0), RTNORM);
    expectPoint(out, 1, 2, 3);
    ASSERT_EQ(kxdbWcs2Ucs(p, out, 1), RTNORM);
    expectPoint(out, 2, -1, 3);
}

TEST_F(Coordinates, EntitySystemByItsNormal)
{
    const kxresbuf world = system(0);
    const double p[3] = {1, 2, 3};
    double out[3];
    // Normal along world x: the arbitrary-axis rule puts the entity's x
    // axis along world y and its y axis along world z.
    const kxresbuf alongX = normal(2, 0, 0);
    ASSERT_EQ(kxedTrans(p, &alongX, &world, 0, out), RTNORM);
    expectPoint(out, 3, 1, 2);
    double back[3];
    ASSERT_EQ(kxedTrans(out, &world, &alongX, 0, back), RTNORM);
    expectPoint(back, 1, 2, 3);
    // Normal along world z: the entity system is the world system.
    const kxresbuf alongZ = normal(0, 0, 1);
    ASSERT_EQ(kxedTrans(p, &alongZ, &world, 0, out), RTNORM);
    expectPoint(out, 1, 2, 3);
    // Between a rotated user system and an entity system.
    ASSERT_EQ(db.setUcs({0, 0, 0}, {0, 1, 0}, {-1, 0, 0}), Kald::eOk);
    const kxresbuf user = system(1);
    ASSERT_EQ(kxedTrans(p, &user, &alongX, 1, out), RTNORM);
    expectPoint(out, 1, 3, -2);
}

TEST_F(Coordinates, UnknownSystemsAreRefused)
{
    const kxresbuf world = system(0);
    const kxresbuf display = system(2);
    const kxresbuf nullNormal = normal(0, 0, 0);
    kxresbuf text;
    text.restype = RTSTR;
    const double p[3] = {1, 2, 3};
    double out[3];
    EXPECT_EQ(kxedTrans(p, &display, &world, 0, out), RTERROR);
    EXPECT_EQ(kxedTrans(p, &world, &nullNormal, 0, out), RTERROR);
    EXPECT_EQ(kxedTrans(p, &text, &world, 0, out), RTERROR);
    EXPECT_EQ(kxedTrans(p, nullptr, &world, 0, out), RTERROR);
}

}  // namespace
}  // namespace kaldo
