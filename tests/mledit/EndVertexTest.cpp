// Ending element runs at a point, moving an end vertex and cutting vertices
// off, as the tees and the corner joint use them.
#include "MlineShapes.h"
#include "mledit/EndVertex.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

using namespace kdml;
using namespace kdml::test;

namespace {

std::vector<double> trimmed(std::vector<double> list, double d, bool atEnd)
{
    trimRuns(list, d, atEnd);
    return list;
}

std::vector<double> runsOf(const MlineShape& shape, int v, int e)
{
    const std::span<const double> list = shape.runs(v, e);
    return {list.begin(), list.end()};
}

}  // namespace

TEST(EndVertex, TrimRunsAtTheEndAndAtTheStart)
{
    struct Row {
        std::vector<double> list;
        double d;
        bool atEnd;
        std::vector<double> expected;
    };
    const std::vector<Row> rows = {
        // Stopping at d: runs beyond go, a run open at d ends there.
        {{5, 0}, 30, true, {5, 0, 30}},
        {{5, 0, 20, 40, 60}, 50, true, {5, 0, 20, 40, 50}},
        {{5, 0, 20, 40, 60}, 30, true, {5, 0, 20}},
        {{5, 0, 20, 50, 60}, 50, true, {5, 0, 20}},
        {{5, 0, 20, 40}, 70, true, {5, 0, 20, 40, 70}},
        {{5, 0, 20, 40, 60}, 70, true, {5, 0, 20, 40, 60}},
        {{5, 0}, -4, true, {5}},
        {{5}, 30, true, {5}},
        // Starting at d: runs before go, a run that covers d starts there.
        {{5, 0}, 30, false, {5, 30}},
        {{5, 0, 20, 40}, 30, false, {5, 40}},
        {{5, 0, 20, 40, 60}, 50, false, {5, 50, 60}},
        {{5, 0, 20, 40}, 20, false, {5, 40}},
        {{5, 10, 50}, 5, false, {5, 10, 50}},
        // A start behind the segment's start lengthens a run drawn from it.
        {{5, 0}, -4, false, {5, -4}},
        {{5, 0, 20}, -4, false, {5, -4, 20}},
        {{5, 10, 20}, -4, false, {5, 10, 20}},
        {{-5}, 30, false, {-5}},
    };
    for (const Row& row : rows) {
        std::vector<::testing::Matcher<double>> expected;
        for (double v : row.expected)
            expected.push_back(::testing::DoubleNear(v, 1e-10));
        EXPECT_THAT(trimmed(row.list, row.d, row.atEnd), ::testing::ElementsAreArray(expected))
            << "d " << row.d << (row.atEnd ? " at end" : " at start") << " of " << ::testing::PrintToString(row.list);
    }
}

TEST(EndVertex, TrimElementToMeasuresAlongTheElementLineAndHidesTheSegmentsBeyond)
{
    // Elements 5 either side of an axis (0, 0) (100, 0) (100, 100) (200, 100):
    // a left turn, then a right one. Element 0 runs y = 5 to (95, 5), up
    // x = 95 to (95, 105), then y = 105; element 1 y = -5 to (105, -5), up
    // x = 105 to (105, 95), then y = 95. At both bends the miter makes 45
    // degrees with the segments: entry 0 is +-5 / sin 45 = +-7.0711.
    ShapeDrawing drawing;
    const MlineShape bent =
        drawing.shape({"bent", {0.5, -0.5}, Mline::kZero, 10, {{0, 0}, {100, 0}, {100, 100}, {200, 100}}});
    const double m = 5 * std::sqrt(2.0);
    struct Row {
        int e, s;
        KxGePoint3d target;
        bool atEnd;
        std::vector<std::vector<double>> lists;  // at vertices 0, 1, 2
    };
    const std::vector<Row> rows = {
        // Ending on segment 1, 55 up from (95, 5): segment 2 is not drawn.
        {0, 1, {95, 60}, true, {{5, 0}, {m, 0, 55}, {m}}},
        // Starting on segment 1, 25 up from (105, -5): segment 0 is not drawn.
        {1, 1, {105, 20}, false, {{-5}, {-m, 25}, {-m, 0}}},
        // Ending on the last segment or starting on the first hides nothing.
        {0, 2, {150, 105}, true, {{5, 0}, {m, 0}, {m, 0, 55}}},
        {1, 0, {-10, -5}, false, {{-5, -10}, {-m, 0}, {-m, 0}}},
        // Ending on segment 0 hides the two after it.
        {0, 0, {60, 5}, true, {{5, 0, 60}, {m}, {m}}},
    };
    for (const Row& row : rows) {
        MlineShape shape = bent;
        trimElementTo(shape, row.e, row.s, row.target, row.atEnd);
        for (int v = 0; v < 3; ++v) {
            std::vector<::testing::Matcher<double>> expected;
            for (double value : row.lists[std::size_t(v)])
                expected.push_back(::testing::DoubleNear(value, 1e-9));
            EXPECT_THAT(runsOf(shape, v, row.e), ::testing::ElementsAreArray(expected))
                << "element " << row.e << " segment " << row.s << (row.atEnd ? " end" : " start") << ", vertex " << v;
        }
    }
}

TEST(EndVertex, MovingTheEndVertexKeepsTheShapeAsDrawnAndTheRunsBeforeIt)
{
    const std::vector<MlineCase> cases = {
        {"two vertices", {0.5, -0.5}, Mline::kZero, 20, {{0, 0}, {100, 0}}},
        {"bent three elements", {1, 0, -1}, Mline::kTop, 5, {{0, 0}, {100, 0}, {150, 80}, {150, 200}}},
        {"four elements negative scale", {1.5, 0.5, -0.5, -1.5}, Mline::kBottom, -4, {{0, 0}, {60, 30}, {120, 0}}},
        {"slanted caps", {0.5, -0.5}, Mline::kZero, 10, {{0, 0}, {50, 50}, {100, 0}}, false, 1.0, 2.0},
    };
    for (const MlineCase& c : cases) {
        ShapeDrawing drawing;
        const MlineShape original = drawing.shape(c);
        const int last = original.size() - 1;
        const KxGePoint3d& from = original.vertices[std::size_t(last - 1)].position;
        const KxGePoint3d& to = original.vertices[std::size_t(last)].position;
        const KxGePoint3d& second = original.vertices[1].position;
        const KxGePoint3d& start = original.vertices[0].position;
        struct Move {
            const char* name;
            int k;
            KxGePoint3d point;
        };
        for (const Move& move : {Move{"shortened end", last, from + (to - from) * 0.6},
                                 Move{"lengthened end", last, from + (to - from) * 1.3},
                                 Move{"turned end", last, to + KxGeVector3d(-7, 11, 0)},
                                 Move{"shortened start", 0, start + (second - start) * 0.25},
                                 Move{"lengthened start", 0, start + (second - start) * -0.5}}) {
            const std::string label = c.name + std::string(" ") + move.name;
            MlineShape shape = original;
            // Runs on the segments at both ends.
            for (int e = 0; e < shape.elementCount(); ++e) {
                shape.editRuns(last - 1, e, [](std::vector<double>& runs) {
                    runs.resize(1);
                    runs.insert(runs.end(), {0.0, 10.0, 15.0});
                });
            }
            const MlineShape before = shape;
            moveVertex(shape, move.k, move.point);
            EXPECT_NEAR(distance(shape.vertices[std::size_t(move.k)].position, move.point), 0.0, kAgree) << label;
            expectDrawnAlike(drawing, c, shape, label);
            for (int e = 0; e < shape.elementCount(); ++e) {
                if (move.k == last && std::string(move.name) != "turned end") {
                    EXPECT_EQ(runsOf(shape, last - 1, e), runsOf(before, last - 1, e)) << label;
                }
                EXPECT_THAT(runsOf(shape, last, e), ::testing::SizeIs(2)) << label;
            }
        }
    }
}

TEST(EndVertex, KeepingVerticesCutsAMultilineToThem)
{
    const MlineCase c{"bent", {0.5, -0.5}, Mline::kZero, 10, {{0, 0}, {100, 0}, {100, 100}, {0, 100}, {0, 200}}};
    ShapeDrawing drawing;
    const MlineShape original = drawing.shape(c);
    MlineShape head = original;
    keepVertices(head, 0, 3);
    ASSERT_EQ(head.size(), 3);
    expectDrawnAlike(drawing, c, head, "head");
    MlineShape tail = original;
    keepVertices(tail, 2, 3);
    ASSERT_EQ(tail.size(), 3);
    EXPECT_NEAR(tail.vertices[0].position.y, 100, kAgree);
    expectDrawnAlike(drawing, c, tail, "tail");
    MlineShape middle = original;
    keepVertices(middle, 1, 3);
    expectDrawnAlike(drawing, c, middle, "middle");
    MlineShape unchanged = original;
    keepVertices(unchanged, 4, 3);
    EXPECT_EQ(unchanged.size(), 5) << "beyond the last vertex";
}
