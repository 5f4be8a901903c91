// Adding and removing vertices on straight, bent and closed multilines of
// 2, 3 and 4 elements, every justification and a negative scale: the result
// has the directions and miter offsets the host gives a multiline drawn
// through the same vertices, and the runs stay where they were drawn.
#include "MlineShapes.h"
#include "mledit/VertexEdit.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace kdml;
using namespace kdml::test;
using ::testing::DoubleNear;
using ::testing::ElementsAre;

namespace {

std::vector<MlineCase> cases()
{
    return {
        {"straight two elements", {0.5, -0.5}, Mline::kZero, 20, {{0, 0}, {100, 0}, {200, 0}}},
        {"bent three elements top", {1, 0, -1}, Mline::kTop, 5, {{0, 0}, {100, 0}, {150, 80}, {150, 200}}},
        {"four elements bottom negative scale",
         {1.5, 0.5, -0.5, -1.5},
         Mline::kBottom,
         -4,
         {{0, 0}, {60, 30}, {120, 0}, {200, 40}}},
        {"closed square", {0.5, -0.5}, Mline::kZero, 10, {{0, 0}, {100, 0}, {100, 100}, {0, 100}}, true},
        {"closed triangle three elements", {2, 0, -2}, Mline::kZero, 3, {{0, 0}, {100, 0}, {50, 80}}, true},
        {"slanted caps", {0.5, -0.5}, Mline::kZero, 10, {{0, 0}, {50, 50}, {100, 0}, {160, 20}}, false,
         std::numbers::pi / 3, 2 * std::numbers::pi / 3},
    };
}

void setRuns(MlineShape& shape, int v, const std::vector<double>& runs)
{
    for (int e = 0; e < shape.listsAt(v).numElements(); ++e) {
        shape.editRuns(v, e, [&runs](std::vector<double>& list) {
            list.resize(1);
            list.insert(list.end(), runs.begin(), runs.end());
        });
    }
}

std::vector<double> runsOf(const MlineShape& shape, int v, int e)
{
    const std::span<const double> list = shape.runs(v, e);
    return std::vector<double>(list.begin() + 1, list.end());
}

}  // namespace

TEST(VertexEdit, InsertingOnEverySegmentKeepsDirectionsMitersAndOffsets)
{
    for (const MlineCase& c : cases()) {
        ShapeDrawing drawing;
        const MlineShape original = drawing.shape(c);
        const int segments = original.closed ? original.size() : original.size() - 1;
        for (int s = 0; s < segments; ++s) {
            const std::string label = c.name + " segment " + std::to_string(s);
            MlineShape shape = original;
            const KxGePoint3d& a = original.vertices[std::size_t(s)].position;
            const KxGePoint3d& b = original.vertices[std::size_t(original.segmentEnd(s))].position;
            const KxGePoint3d foot = a + (b - a) * 0.4;
            const KxGePoint3d near = foot + normalized(cross(KxGeVector3d(0, 0, 1), b - a)) * 0.3;
            ASSERT_TRUE(insertVertex(shape, s, near)) << label;
            ASSERT_EQ(shape.size(), original.size() + 1) << label;
            const ShapeVertex& added = shape.vertices[std::size_t(s + 1)];
            EXPECT_NEAR(distance(added.position, foot), 0.0, kAgree) << label;
            expectDrawnAlike(drawing, c, shape, label);
            for (int e = 0; e < shape.elementCount(); ++e) {
                EXPECT_THAT(runsOf(shape, s + 1, e), ElementsAre(0.0)) << label << " the new segment is drawn";
                EXPECT_THAT(runsOf(shape, s, e), ElementsAre(0.0)) << label;
            }
        }
        MlineShape shape = original;
        EXPECT_FALSE(insertVertex(shape, 0, original.vertices[1].position)) << c.name << ": a vertex already there";
        EXPECT_EQ(shape.size(), original.size());
    }
}

TEST(VertexEdit, RemovingEveryVertexKeepsDirectionsMitersAndOffsets)
{
    for (const MlineCase& c : cases()) {
        ShapeDrawing drawing;
        const MlineShape original = drawing.shape(c);
        for (int k = 0; k < original.size(); ++k) {
            const std::string label = c.name + " vertex " + std::to_string(k);
            MlineShape shape = original;
            const bool allowed = original.size() > 3 || (original.size() == 3 && !original.closed);
            ASSERT_EQ(removeVertex(shape, k), allowed) << label;
            if (!allowed) {
                EXPECT_EQ(shape.size(), original.size()) << label;
                continue;
            }
            ASSERT_EQ(shape.size(), original.size() - 1) << label;
            expectDrawnAlike(drawing, c, shape, label);
        }
        MlineShape shape = original;
        EXPECT_FALSE(removeVertex(shape, original.size())) << c.name;
    }
}

TEST(VertexEdit, EveryRunStaysWhereItWasDrawnWhenAVertexIsAdded)
{
    // The new vertex cuts the runs of its segment: those before it stay,
    // cut at it; those beyond it go to the new segment, measured from the
    // new vertex's element points (square miter: on the element lines,
    // straight across from the vertex).
    struct Row {
        const char* name;
        std::vector<KxGePoint3d> axis;
        int segment;
        KxGePoint3d pick;
        std::vector<std::vector<double>> before;  // runs of the segment, per element
        std::vector<std::vector<double>> kept;    // runs left on the segment
        std::vector<std::vector<double>> moved;   // runs of the new segment
    };
    const std::vector<double> runs = {0, 20, 40, 70};  // drawn 0-20 and 40-70 of 100
    const std::vector<Row> rows = {
        // In the gap 20-40 at 30: the run 40-70 is 10-40 from the new vertex.
        {"in a gap", {{0, 0}, {100, 0}}, 0, {30, 3}, {runs, runs}, {{0, 20}, {0, 20}}, {{10, 40}, {10, 40}}},
        // Inside the run 40-70 at 50: it goes on from the new vertex to 20.
        {"in a run", {{0, 0}, {100, 0}}, 0, {50, 3}, {runs, runs}, {{0, 20, 40}, {0, 20, 40}}, {{0, 20}, {0, 20}}},
        // At 80, after the last run: nothing is drawn beyond.
        {"after the runs", {{0, 0}, {100, 0}}, 0, {80, 3}, {runs, runs}, {runs, runs}, {{}, {}}},
        // On a run's end (20) and on a run's start (40).
        {"on a run's end", {{0, 0}, {100, 0}}, 0, {20, 3}, {runs, runs}, {{0}, {0}}, {{20, 50}, {20, 50}}},
        {"on a run's start", {{0, 0}, {100, 0}}, 0, {40, 3}, {runs, runs}, {{0, 20}, {0, 20}}, {{0, 30}, {0, 30}}},
        // At 70, where the last run ends: nothing beyond.
        {"on the last run's end", {{0, 0}, {100, 0}}, 0, {70, 3}, {runs, runs}, {{0, 20, 40}, {0, 20, 40}}, {{}, {}}},
        // Segment 1 of an axis that turns left at (100, 0): element 0 runs
        // up x = 95 from (95, 5), element 1 up x = 105 from (105, -5). A
        // vertex at (100, 50) lies 45 along element 0 and 55 along element
        // 1: element 0's runs 0-30, 60-90 leave 0-30 and 15-45; element 1's
        // leave 0-30 and 5-35.
        {"on a bent axis",
         {{0, 0}, {100, 0}, {100, 100}},
         1,
         {103, 50},
         {{0, 30, 60, 90}, {0, 30, 60, 90}},
         {{0, 30}, {0, 30}},
         {{15, 45}, {5, 35}}},
    };
    ShapeDrawing drawing;
    for (const Row& row : rows) {
        MlineShape shape = drawing.shape({row.name, {0.5, -0.5}, Mline::kZero, 10, row.axis});
        for (int e = 0; e < 2; ++e) {
            shape.editRuns(row.segment, e, [&](std::vector<double>& list) {
                list.resize(1);
                list.insert(list.end(), row.before[std::size_t(e)].begin(), row.before[std::size_t(e)].end());
            });
        }
        ASSERT_TRUE(insertVertex(shape, row.segment, row.pick)) << row.name;
        expectDrawnAlike(drawing, {row.name, {0.5, -0.5}, Mline::kZero, 10, row.axis}, shape, row.name);
        for (int e = 0; e < 2; ++e) {
            for (const auto& [v, expectedRuns] : {std::pair(row.segment, row.kept), std::pair(row.segment + 1, row.moved)}) {
                std::vector<::testing::Matcher<double>> expected;
                for (double value : expectedRuns[std::size_t(e)])
                    expected.push_back(DoubleNear(value, kAgree));
                EXPECT_THAT(runsOf(shape, v, e), ::testing::ElementsAreArray(expected))
                    << row.name << ", element " << e << ", vertex " << v;
            }
        }
    }
    // The closing segment of a closed multiline gets its vertex last.
    const MlineCase square{"square", {0.5, -0.5}, Mline::kZero, 10, {{0, 0}, {100, 0}, {100, 100}, {0, 100}}, true};
    MlineShape closed = drawing.shape(square);
    ASSERT_TRUE(insertVertex(closed, 3, KxGePoint3d(-2, 40)));
    ASSERT_EQ(closed.size(), 5);
    EXPECT_NEAR(closed.vertices[4].position.x, 0.0, kAgree);
    EXPECT_NEAR(closed.vertices[4].position.y, 40.0, kAgree);
}

TEST(VertexEdit, RemovalJoinsTheSegmentsAndKeepsLaterRunsInPlace)
{
    const MlineCase c{"bent", {1, 0, -1}, Mline::kZero, 5, {{0, 0}, {100, 0}, {150, 80}, {150, 200}, {250, 200}}};
    ShapeDrawing drawing;
    MlineShape original = drawing.shape(c);
    setRuns(original, 0, {0, 30, 60});
    setRuns(original, 1, {0, 20, 45});
    setRuns(original, 2, {0, 30, 60, 90});
    setRuns(original, 3, {10, 50});
    for (const int k : {1, 2, 0}) {
        MlineShape shape = original;
        ASSERT_TRUE(removeVertex(shape, k)) << k;
        // The segment before the removed vertex joins the next and is drawn
        // whole; the runs of the segment after it stay where they were.
        const int prev = k - 1;
        const int next = k;
        for (int e = 0; e < 3; ++e) {
            if (prev >= 0) {
                EXPECT_THAT(runsOf(shape, prev, e), ElementsAre(0.0)) << k;
            }
            const std::vector<KxGePoint3d> before = runBounds(original, k + 1, e);
            const std::vector<KxGePoint3d> after = runBounds(shape, next, e);
            ASSERT_EQ(after.size(), before.size()) << k << " element " << e;
            for (std::size_t i = 1; i < after.size(); ++i)
                EXPECT_NEAR(distance(after[i], before[i]), 0.0, kAgree) << k << " element " << e << " bound " << i;
        }
    }
    // The last vertex of an open multiline, and never below two vertices.
    MlineShape shape = original;
    ASSERT_TRUE(removeVertex(shape, 4));
    expectDrawnAlike(drawing, c, shape, "last removed");
    while (shape.size() > 2)
        ASSERT_TRUE(removeVertex(shape, 1));
    EXPECT_FALSE(removeVertex(shape, 0));
    EXPECT_EQ(shape.size(), 2);
}

TEST(VertexEdit, SignedDistanceToLineIsPositiveOnTheLeft)
{
    struct Row {
        KxGePoint3d point;
        KxGeVector3d normal;
        double distance;
    };
    const KxGePoint3d a(0, 0), b(10, 0);
    for (const Row& row : std::vector<Row>{{{5, 3}, {0, 0, 1}, 3},
                                           {{5, -3}, {0, 0, 1}, -3},
                                           {{5, 3}, {0, 0, -1}, -3},
                                           {{-4, -2}, {0, 0, -1}, 2},
                                           {{7, 0}, {0, 0, 1}, 0}}) {
        KxGePoint3d foot;
        EXPECT_NEAR(signedDistanceToLine(row.point, a, b, row.normal, &foot), row.distance, kAgree);
        EXPECT_NEAR(foot.x, row.point.x, kAgree);
        EXPECT_NEAR(foot.y, 0.0, kAgree);
    }
}
