// Multilines moved, turned, scaled and mirrored: the picture of the result
// (every run, cap, arc and fill) is the original's picture with each point
// transformed by the test's own arithmetic, for open, closed, cut,
// slanted-cap and negative-scale multilines of two to five elements; the
// scale and list entries follow the factor, and a mirror turns the scale's
// sign while the entries stay.
#include "MlinePicture.h"
#include "MlineLists.h"
#include "TestMlines.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <numbers>

namespace {

constexpr double kPi = std::numbers::pi;

struct Drawing {
    KxDbDatabase db;

    // A style with every cap, joints and a fill.
    KxDbObjectId addStyle(const wchar_t* name, std::initializer_list<double> offsets, double startAngle = kPi / 2,
                          double endAngle = kPi / 2)
    {
        return addTestStyle(db, name, offsets, startAngle, endAngle, [](KxDbMlineStyle& style) {
            style.setStartSquareCap(true);
            style.setStartInnerArcs(true);
            style.setEndRoundCap(true);
            style.setEndInnerArcs(true);
            style.setShowMiters(true);
            style.setFilled(true);
        });
    }

    std::unique_ptr<KxDbMline> make(KxDbObjectId style, std::initializer_list<KxGePoint3d> points, int justification,
                                    double scale, bool closed = false)
    {
        return makeMline(db, style, points, justification, scale, closed);
    }
};

std::vector<double> listAt(const KxDbMline& m, int v, std::size_t e, bool fill = false)
{
    const KxDbMlineVertexLists lists = m.parametersAt(v);
    const std::span<const double> list = fill ? lists.areaFill(int(e)) : lists.element(int(e));
    return {list.begin(), list.end()};
}

// The transforms, by the test's own arithmetic.
PointMap mirrorIn(KxGePoint3d a, KxGePoint3d b)
{
    return [=](const KxGePoint3d& p) {
        const double len = std::hypot(b.x - a.x, b.y - a.y);
        const double dx = (b.x - a.x) / len, dy = (b.y - a.y) / len;
        const double along = (p.x - a.x) * dx + (p.y - a.y) * dy;
        return KxGePoint3d(2 * (a.x + along * dx) - p.x, 2 * (a.y + along * dy) - p.y, p.z);
    };
}

PointMap turnAbout(KxGePoint3d c, double angle)
{
    return [=](const KxGePoint3d& p) {
        const double x = p.x - c.x, y = p.y - c.y;
        return KxGePoint3d(c.x + x * std::cos(angle) - y * std::sin(angle), c.y + x * std::sin(angle) + y * std::cos(angle), p.z);
    };
}

PointMap scaleAbout(KxGePoint3d c, double k)
{
    return [=](const KxGePoint3d& p) { return KxGePoint3d(c.x + k * (p.x - c.x), c.y + k * (p.y - c.y), c.z + k * (p.z - c.z)); };
}

struct Transform {
    const char* name;
    KxGeMatrix3d matrix;
    PointMap map;
};

std::vector<Transform> transforms()
{
    const KxGePoint3d a(3, -2), b(11, 5);
    return {
        {"move", KxGeMatrix3d::translation({40, -25, 0}), [](const KxGePoint3d& p) { return KxGePoint3d(p.x + 40, p.y - 25, p.z); }},
        {"rotate", KxGeMatrix3d::rotation(0.65, {0, 0, 1}, {7, 4}), turnAbout({7, 4}, 0.65)},
        {"scale", KxGeMatrix3d::scaling(2.5, {-3, 8}), scaleAbout({-3, 8}, 2.5)},
        {"shrink", KxGeMatrix3d::scaling(0.4, {1, 1}), scaleAbout({1, 1}, 0.4)},
        {"mirror", KxGeMatrix3d::mirroring(a, {-(b.y - a.y), b.x - a.x, 0}), mirrorIn(a, b)},
        {"mirror in x", KxGeMatrix3d::mirroring({0, 0}, {0, 1, 0}), mirrorIn({0, 0}, {1, 0})},
    };
}

}  // namespace

TEST(MlineTransform, ThePictureOfTheResultIsThePictureOfTheOriginalTransformed)
{
    Drawing d;
    const KxDbObjectId two = d.addStyle(L"TWO", {0.5, -0.5});
    const KxDbObjectId three = d.addStyle(L"THREE", {1.0, 0.2, -0.7});
    const KxDbObjectId five = d.addStyle(L"FIVE", {1.2, 0.6, 0.0, -0.4, -1.0}, kPi / 3, 2 * kPi / 3);
    const KxDbObjectId slanted = d.addStyle(L"SLANT", {0.8, -0.3, -0.9, -1.4}, kPi / 3, kPi / 4);

    struct Case {
        const char* name;
        std::unique_ptr<KxDbMline> mline;
    };
    std::vector<Case> cases;
    cases.push_back({"two, bent", d.make(two, {{0, 0}, {10, 0}, {14, 6}}, Mline::kTop, 1.0)});
    auto cut = d.make(three, {{0, 0}, {20, 0}, {20, 12}, {5, 15}}, Mline::kZero, 2.0);
    setRuns(*cut, 0, 0, {0, 4, 7.5});         // a gap from 4 to 7.5, then drawn on
    setRuns(*cut, 1, 2, {2, 6, 9, 10.5});     // two runs, the end left open
    setRuns(*cut, 2, 1, {0, 3});              // drawn to 3 only
    cases.push_back({"three, cut", std::move(cut)});
    cases.push_back({"five, slanted caps, bottom", d.make(five, {{2, 1}, {-6, 9}, {-10, 2}, {-15, 3}}, Mline::kBottom, 1.5)});
    cases.push_back({"four, negative scale", d.make(slanted, {{0, 0}, {8, 3}, {16, -1}}, Mline::kTop, -3.0)});
    auto closed = d.make(three, {{0, 0}, {12, 0}, {12, 9}, {0, 9}}, Mline::kZero, 1.0, true);
    setRuns(*closed, 3, 1, {0, 2, 5});
    cases.push_back({"three, closed", std::move(closed)});

    for (const Case& c : cases) {
        const std::vector<PicturePiece> before = MlinePicture::of(*c.mline);
        ASSERT_FALSE(before.empty()) << c.name;
        for (const Transform& t : transforms()) {
            KxDbMline result;
            result.copyFrom(c.mline.get());
            ASSERT_EQ(result.transformBy(t.matrix), Kald::eOk) << c.name << ", " << t.name;
            EXPECT_TRUE(samePicture(mapped(before, t.map), MlinePicture::of(result), 1e-10)) << c.name << ", " << t.name;

            // The factor multiplies the scale and every entry; a mirror
            // turns the scale's sign and leaves the entries as they were.
            const double k = std::string(t.name) == "scale" ? 2.5 : std::string(t.name) == "shrink" ? 0.4 : 1.0;
            const bool mirrored = std::string(t.name).starts_with("mirror");
            EXPECT_DOUBLE_EQ(result.scale(), c.mline->scale() * k * (mirrored ? -1 : 1)) << c.name << ", " << t.name;
            EXPECT_EQ(result.normal().z, 1.0);
            for (int v = 0; v < c.mline->numVertices(); ++v) {
                for (std::size_t e = 0; e < std::size_t(c.mline->parametersAt(v).numElements()); ++e) {
                    for (const bool fill : {false, true}) {
                        const std::vector<double> was = listAt(*c.mline, v, e, fill);
                        const std::vector<double> now = listAt(result, v, e, fill);
                        ASSERT_EQ(was.size(), now.size());
                        for (std::size_t i = 0; i < was.size(); ++i)
                            EXPECT_NEAR(now[i], was[i] * k, 1e-12) << c.name << ", " << t.name;
                    }
                }
            }
        }
    }
}

TEST(MlineTransform, FlatteningMatricesAndOverflowsAreRefusedAndChangeNothing)
{
    Drawing d;
    const KxDbObjectId two = d.addStyle(L"TWO", {0.5, -0.5});
    const auto m = d.make(two, {{0, 0}, {10, 0}, {10, 10}}, Mline::kZero, 1.0);
    const std::vector<PicturePiece> before = MlinePicture::of(*m);

    EXPECT_EQ(m->transformBy(KxGeMatrix3d::scaling(0, {})), Kald::eInvalidInput);
    EXPECT_EQ(m->transformBy(KxGeMatrix3d::scaling(1e300, {})), Kald::eInvalidInput);
    EXPECT_TRUE(samePicture(before, MlinePicture::of(*m)));

    KxDbLine line({0, 0, 0}, {1, 1, 0});
    EXPECT_EQ(line.transformBy(KxGeMatrix3d::scaling(1e308, {}) * KxGeMatrix3d::scaling(1e10, {})), Kald::eInvalidInput);
    EXPECT_DOUBLE_EQ(line.endPoint().x, 1.0);
}
