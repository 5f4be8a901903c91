// Multilines of styles with 2, 3 and 4 elements, built by the host from
// their vertices, and the checks that an edited shape agrees with what the
// host builds from the same vertices.
#pragma once

#include "mledit/MlineAccess.h"
#include "mledit/MlineShape.h"

#include "TestMlines.h"

#include "kxdb.h"

#include <gtest/gtest.h>

#include <memory>
#include <numbers>
#include <string>
#include <vector>

namespace kdml::test {

inline constexpr double kAgree = 1e-9;

// How a multiline is drawn: style offsets and cap angles, justification,
// scale, vertices, closed or not.
struct MlineCase {
    std::string name;
    std::vector<double> offsets;
    int justification = Mline::kZero;
    double scale = 1.0;
    std::vector<KxGePoint3d> points;
    bool closed = false;
    double startAngle = std::numbers::pi / 2;
    double endAngle = std::numbers::pi / 2;
};

class ShapeDrawing {
public:
    // A multiline of the case's style drawn by the host, not in any space.
    std::unique_ptr<KxDbMline> draw(const MlineCase& c, const std::vector<KxGePoint3d>& points)
    {
        return makeMline(db, style(c), points, c.justification, c.scale, c.closed);
    }

    MlineShape shape(const MlineCase& c)
    {
        const std::unique_ptr<KxDbMline> mline = draw(c, c.points);
        std::optional<MlineShape> shape = readMlineShape(mline.get());
        EXPECT_TRUE(shape.has_value()) << c.name;
        return shape.value_or(MlineShape());
    }

    KxDbDatabase db;

private:
    KxDbObjectId style(const MlineCase& c)
    {
        const std::wstring name = L"S" + std::to_wstring(++styles_);
        return addTestStyle(db, name.c_str(), c.offsets, c.startAngle, c.endAngle);
    }

    int styles_ = 0;
};

inline void expectNear(const KxGeVector3d& a, const KxGeVector3d& b, const std::string& label)
{
    EXPECT_NEAR(a.x, b.x, kAgree) << label;
    EXPECT_NEAR(a.y, b.y, kAgree) << label;
    EXPECT_NEAR(a.z, b.z, kAgree) << label;
}

// The shape's directions and miter offsets (entry 0 of the element and of
// the fill lists) are those the host gives a multiline drawn through the
// shape's vertices.
inline void expectDrawnAlike(ShapeDrawing& drawing, const MlineCase& c, const MlineShape& shape,
                             const std::string& label)
{
    std::vector<KxGePoint3d> points;
    for (const ShapeVertex& v : shape.vertices)
        points.push_back(v.position);
    MlineCase same = c;
    same.closed = shape.closed;
    const std::unique_ptr<KxDbMline> drawn = drawing.draw(same, points);
    const std::vector<MlineVertexData> expected = readMlineSnapshot(drawn.get());
    ASSERT_EQ(expected.size(), shape.vertices.size()) << label;
    for (std::size_t v = 0; v < expected.size(); ++v) {
        const std::string at = label + " vertex " + std::to_string(v);
        expectNear(shape.vertices[v].axis, expected[v].axis, at + " axis");
        expectNear(shape.vertices[v].miter, expected[v].miter, at + " miter");
        const KxDbMlineVertexLists lists = shape.listsAt(int(v));
        ASSERT_EQ(std::size_t(lists.numElements()), expected[v].elements.size()) << at;
        for (std::size_t e = 0; e < expected[v].elements.size(); ++e) {
            ASSERT_FALSE(lists.element(int(e)).empty() || lists.areaFill(int(e)).empty()) << at << " element " << e;
            EXPECT_NEAR(lists.element(int(e))[0], expected[v].elements[e].elementParams.at(0), kAgree)
                << at << " element " << e;
            EXPECT_NEAR(lists.areaFill(int(e))[0], expected[v].elements[e].fillParams.at(0), kAgree)
                << at << " element " << e << " fill";
        }
    }
}

// The world points where the runs of element e along segment v start and
// stop.
inline std::vector<KxGePoint3d> runBounds(const MlineShape& shape, int v, int e)
{
    std::vector<KxGePoint3d> bounds;
    const std::span<const double> list = shape.runs(v, e);
    const KxGePoint3d start = shape.elementPoint(v, e);
    const KxGeVector3d along = shape.vertices[std::size_t(v)].axis;
    for (std::size_t i = 1; i < list.size(); ++i)
        bounds.push_back(start + along * list[i]);
    return bounds;
}

}  // namespace kdml::test
