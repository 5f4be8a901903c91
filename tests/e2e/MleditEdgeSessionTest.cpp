// -MLEDIT through the real binary where picks and crossings come close to
// a vertex: every tool picked near either end of a segment of a wall 100
// wide cuts and keeps where the pick was made; elements end exactly on the
// element lines they meet next to a bend, as those are drawn (an
// independent reader finds them there: MleditJoinSession); a multiline of
// one segment picked twice for a corner is told that there is no crossing.
#include "KaldoProcess.h"
#include "ListedMlines.h"
#include "MleditScripts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>


#include <cmath>
#include <numbers>
#include <string>
#include <vector>

using ::testing::ElementsAreArray;
using ::testing::HasSubstr;

namespace {

// MLINE at another scale; later multilines of the script keep it.
std::string mlineAtScale(const std::string& scale, const std::vector<std::string>& points)
{
    return "MLINE\nS\n" + scale + "\n" + mline(points).substr(6);
}

constexpr double kSqrt2 = std::numbers::sqrt2;

}  // namespace

TEST(MleditEdgeSession, CornerJointOfAMultilineOfOneSegmentWithItselfFindsNoCrossing)
{
    KaldoProcess kaldo;
    struct Row {
        std::string drawing;  // MLINE at scale 2: elements 1 either side
        std::string picks;
        std::string expected;  // the transcript of the picks
        std::vector<std::string> vertices;
    };
    const std::vector<Row> rows = {
        // One segment picked twice, at two points or at one: its first and
        // last segment are one, whose element lines run alike and never
        // cross.
        {"MLINE\nJ\nZ\nS\n2\n0,0\n40,0\n\n",
         "10,1\n30,1\n10,1\n10,1\n",
         "Select first mline: 10,1\nSelect second mline: 30,1\nThe selected multilines do not intersect.\n"
         "Select first mline: 10,1\nSelect second mline: 10,1\nThe selected multilines do not intersect.\n"
         "Select first mline: \n",
         {"0.0000,0.0000", "40.0000,0.0000"}},
        // Two segments: the first and the last are neighbours, which keep
        // no corner between them; nothing is said.
        {"MLINE\nJ\nZ\nS\n2\n0,0\n40,0\n40,40\n\n",
         "10,1\n30,1\n10,1\n41,20\n",
         "Select first mline: 10,1\nSelect second mline: 30,1\n"
         "Select first mline: 10,1\nSelect second mline: 41,20\nSelect first mline: \n",
         {"0.0000,0.0000", "40.0000,0.0000", "40.0000,40.0000"}},
    };
    for (const Row& row : rows) {
        const KaldoRun run = kaldo.runScript("SETVAR\nPICKBOX\n1\n" + row.drawing + "-MLEDIT\nCJ\n" + row.picks + "\n"
                                             + list({"20,-1"}));
        EXPECT_EQ(run.exitCode, 0) << run.err;
        EXPECT_THAT(run.out, HasSubstr(row.expected));
        const std::vector<ListedMline> listed = listedMlines(run.out);
        EXPECT_THAT(positions(listed, 0), ElementsAreArray(row.vertices));
        EXPECT_THAT(runs(listed, 0, 0, 0), listIs(1.0, 0.0));
        EXPECT_THAT(runs(listed, 0, 0, 1), listIs(-1.0, 0.0));
    }
}

TEST(MleditEdgeSession, EveryToolPickedNearEitherEndOfASegmentOfAWideWall)
{
    // Walls of STANDARD at scale 100: element 0 lies 50 left of the axis,
    // element 1 50 right, and entry 0 of their lists is 50 and -50; at a
    // right-angled bend the miter makes 45 degrees with the segments and
    // entry 0 is 50 / sin 45 = 70.7107. Run bounds count from the element's
    // point at the vertex. The picks lie 3 units from a segment's start or
    // end, nearer than entry 0.
    const double m = 50 * kSqrt2;
    const std::string straight = mlineAtScale("100", {"0,0", "200,0"});
    // Element 0 along y = 50 to (150, 50), then up x = 150; element 1 along
    // y = -50 to (250, -50), then up x = 250.
    const std::string bent = mlineAtScale("100", {"0,0", "200,0", "200,300"});
    // A stem down x = 100 from y = 300 to 60 over the straight wall: its
    // element 0 runs down x = 150, element 1 down x = 50. Picked 3 below its
    // start, it keeps its start and ends on the wall's element line y = 50,
    // 250 below its start; the wall's element 0 opens from x = 50 to 150.
    const std::string tee = straight + mline({"100,300", "100,60"});
    // A wide wall turning up at (200, 0) and a narrow one (scale 10)
    // turning right at (100, 200): they cross at (200, 200), where the wide
    // one is picked, 3 above the start of its segment 1 on element 0 at
    // (150, 50). Element 0 (x = 150) then opens between the narrow wall's
    // element lines y = 195 and 205 (from 145 to 155 along it), element 1
    // (x = 250, from (250, -50)) from 245 to 255. The narrow wall's
    // elements run from (95, 205) and (105, 195) (entry 0 5 / sin 135 =
    // 7.0711): its element 0 opens from 55 to 155, element 1 from 45 to 145.
    const std::string crossing =
        mlineAtScale("100", {"0,0", "200,0", "200,600"}) + mlineAtScale("10", {"100,-100", "100,200", "600,200"});
    const std::vector<std::string> wall = {"0.0000,0.0000", "200.0000,0.0000"};
    const std::vector<std::string> bentWall = {"0.0000,0.0000", "200.0000,0.0000", "200.0000,300.0000"};
    const std::vector<std::string> stem = {"100.0000,300.0000", "100.0000,0.0000"};
    const std::vector<std::string> wide = {"0.0000,0.0000", "200.0000,0.0000", "200.0000,600.0000"};
    const std::vector<std::string> narrow = {"100.0000,-100.0000", "100.0000,200.0000", "600.0000,200.0000"};
    const std::vector<ListedList> crossedWide = {
        {0, 0, 0, {50, 0}}, {0, 0, 1, {-50, 0}}, {0, 1, 0, {m, 0, 145, 155}}, {0, 1, 1, {-m, 0, 245, 255}}};
    const std::vector<ListedList> tees = {{0, 0, 0, {50, 0, 250}}, {0, 0, 1, {-50, 0, 250}}, {0, 1, 0, {50, 0}}};
    auto openedBoth = crossedWide;
    openedBoth.push_back({1, 1, 0, {5 * kSqrt2, 0, 55, 155}});
    openedBoth.push_back({1, 1, 1, {-5 * kSqrt2, 0, 45, 145}});
    auto closedCross = crossedWide;
    closedCross.push_back({1, 1, 0, {5 * kSqrt2, 0}});
    auto openedTee = tees;
    openedTee.push_back({1, 0, 0, {50, 0, 50, 150}});
    auto closedTee = tees;
    closedTee.push_back({1, 0, 0, {50, 0}});

    const std::vector<Session> sessions = {
        {"cut single from 3 to 197", straight + "-MLEDIT\nCS\n3,50\n197,50\n\n", {"100,-50"}, {wall},
         {{0, 0, 0, {50, 0, 3, 197}}, {0, 0, 1, {-50, 0}}}},
        {"cut single on segment 1 from 3 to 247", bent + "-MLEDIT\nCS\n150,53\n150,297\n\n", {"100,-50"}, {bentWall},
         {{0, 0, 0, {50, 0}}, {0, 1, 0, {m, 0, 3, 247}}, {0, 1, 1, {-m, 0}}}},
        {"cut all from 3 to 197", straight + "-MLEDIT\nCA\n3,50\n197,-50\n\n", {"199,50"}, {wall},
         {{0, 0, 0, {50, 0, 3, 197}}, {0, 0, 1, {-50, 0, 3, 197}}}},
        {"weld all from 3 to 197 over gaps from 50 to 150",
         straight + "-MLEDIT\nCA\n50,50\n150,50\n\n-MLEDIT\nWA\n3,50\n197,-50\n\n", {"100,50"}, {wall},
         {{0, 0, 0, {50, 0}}, {0, 0, 1, {-50, 0}}}},
        {"add vertex at 3 and at 197", straight + "-MLEDIT\nAV\n3,50\n197,50\n\n", {"100,50"},
         {{"0.0000,0.0000", "3.0000,0.0000", "197.0000,0.0000", "200.0000,0.0000"}},
         {{0, 0, 0, {50, 0}}, {0, 1, 0, {50, 0}}, {0, 2, 1, {-50, 0}}}},
        // The joined segment's element 0 passes 50 left of (100, 150).
        {"delete vertex 3 after the bend", bent + "-MLEDIT\nDV\n150,53\n\n", {"58.3975,177.7350"},
         {{"0.0000,0.0000", "200.0000,300.0000"}}, {}},
        {"closed tee", tee + "-MLEDIT\nCT\n150,297\n20,-50\n\n", {"50,200", "20,-50"}, {stem, wall}, closedTee},
        {"open tee", tee + "-MLEDIT\nOT\n150,297\n20,-50\n\n", {"50,200", "20,-50"}, {stem, wall}, openedTee},
        {"merged tee", tee + "-MLEDIT\nMT\n150,297\n20,-50\n\n", {"50,200", "20,-50"}, {stem, wall}, openedTee},
        {"open tee picked 3 before the stem's end", tee + "-MLEDIT\nOT\n150,63\n197,-50\n\n", {"50,200", "20,-50"},
         {stem, wall}, openedTee},
        // Two walls picked 3 from their starts keep them and meet at
        // (300, 0): the first's element 0 (y = 50) ends at the second's
        // element 1 (x = 250), its element 1 (y = -50) at the second's
        // element 0 (x = 350).
        {"corner joint",
         straight + mline({"300,300", "300,100"}) + "-MLEDIT\nCJ\n3,50\n350,297\n\n",
         {"100,-50", "350,200"},
         {{"0.0000,0.0000", "300.0000,0.0000"}, {"300.0000,300.0000", "300.0000,0.0000"}},
         {{0, 0, 0, {50, 0, 250}}, {0, 0, 1, {-50, 0, 350}}, {1, 0, 0, {50, 0, 350}}, {1, 0, 1, {-50, 0, 250}}}},
        {"corner joint picked 3 before the segments' ends",
         straight + mline({"300,300", "300,100"}) + "-MLEDIT\nCJ\n197,50\n350,103\n\n",
         {"100,-50", "350,200"},
         {{"0.0000,0.0000", "300.0000,0.0000"}, {"300.0000,300.0000", "300.0000,0.0000"}},
         {{0, 0, 0, {50, 0, 250}}, {0, 0, 1, {-50, 0, 350}}, {1, 0, 0, {50, 0, 350}}, {1, 0, 1, {-50, 0, 250}}}},
        {"closed cross", crossing + "-MLEDIT\nCC\n150,53\n550,205\n\n", {"250,300", "400,195"}, {wide, narrow},
         closedCross},
        {"open cross", crossing + "-MLEDIT\nOC\n150,53\n550,205\n\n", {"250,300", "400,195"}, {wide, narrow},
         openedBoth},
        {"merged cross", crossing + "-MLEDIT\nMC\n150,53\n550,205\n\n", {"250,300", "400,195"}, {wide, narrow},
         openedBoth},
    };
    KaldoProcess kaldo;
    for (const Session& session : sessions)
        expectSession(kaldo, session);
}

TEST(MleditEdgeSession, ElementsEndOnTheElementLinesTheyMeetNextToABend)
{
    // Multilines of scale 10: elements 5 either side of the axis. A bar
    // along (0, 0) (100, 0) (200, 100) turns left by 45 degrees: its
    // segment 1 elements lie on y = x - 100 +- 5 sqrt 2 and start at
    // (105 - 5 sqrt 2, 5) = (97.93, 5) and (95 + 5 sqrt 2, -5) = (102.07, -5);
    // entry 0 there is 5 / sin 67.5 = 5.4120. A stem down x = 98 has its
    // elements at x = 103 and 93: the one at x = 103 meets the bar's
    // elements on their segment 1, at y = 3 + 5 sqrt 2 = 10.0711 and
    // y = 3 - 5 sqrt 2 = -4.0711.
    const double r = kSqrt2;
    const double bend = 5 / std::sin(67.5 / 180 * std::numbers::pi);
    const std::string leftBar = mline({"0,0", "100,0", "200,100"});
    const std::vector<std::string> leftBarVertices = {"0.0000,0.0000", "100.0000,0.0000", "200.0000,100.0000"};
    const std::vector<std::string> stemDown = {"98.0000,50.0000", "98.0000,0.0000"};
    // A bar turning right at (100, 0) along (1, -1): its elements lie on
    // x + y = 100 +- 5 sqrt 2, element 0 from (95 + 5 sqrt 2, 5). A stem
    // down x = 99 has its element 0 at x = 104, which meets the bar's
    // element 0 at y = 5 sqrt 2 - 4 = 3.0711: 46.9289 below (104, 50), not
    // 45 (where the line y = 5 would have stopped it short).
    const std::string rightBar = mline({"0,0", "100,0", "200,-100"});
    // A stem down x = 98 that turns along (-1, -1) at (98, -3), picked
    // below the bar (it keeps its end). Its segment 1 elements lie on
    // x - y = 101 +- 5 sqrt 2 and start at (103, -2 - 5 sqrt 2) = (103,
    // -5.07) and (93, 5 sqrt 2 - 8) = (93, -0.93), entry 0 +-5.4120. Element
    // 0 still reaches the bar's element line y = -5 on segment 0 (5 below
    // the new start (103, 0)); element 1 turns before it and meets it on
    // segment 1 at (96 - 5 sqrt 2, -5) = (88.93, -5), 10 - 3 sqrt 2 =
    // 5.7574 along: its segment 0 is not drawn. The bar's element 1 opens
    // from 88.93 to 103.
    const std::string turningStem = mline({"0,0", "200,0"}) + mline({"98,50", "98,-3", "48,-53"});

    const std::vector<Session> sessions = {
        // The open tee: the stem's element at x = 103 ends at y = 10.0711,
        // 39.9289 below (103, 50); the one at x = 93 at y = 5. The bar's
        // element 0 opens from x = 93 on segment 0 to the stem's element at
        // x = 103 on segment 1: 10 - 2 sqrt 2 = 7.1716 along it.
        {"open tee on a bar turning left",
         leftBar + mline({"98,50", "98,-50"}) + "-MLEDIT\nOT\n103,30\n20,5\n\n",
         {"93,30", "20,-5"},
         {stemDown, leftBarVertices},
         {{0, 0, 0, {5, 0, 47 - 5 * r}},
          {0, 0, 1, {-5, 0, 45}},
          {1, 0, 0, {5, 0, 93}},
          {1, 1, 0, {bend, 10 - 2 * r}},
          {1, 1, 1, {-bend, 0}}}},
        {"closed tee on a bar turning right",
         rightBar + mline({"99,50", "99,-50"}) + "-MLEDIT\nCT\n104,30\n20,-5\n\n",
         {"94,30", "20,-5"},
         {{"99.0000,50.0000", "99.0000,0.0000"}, {"0.0000,0.0000", "100.0000,0.0000", "200.0000,-100.0000"}},
         {{0, 0, 0, {5, 0, 54 - 5 * r}}, {0, 0, 1, {-5, 0, 45}}, {1, 0, 0, {5, 0}}, {1, 1, 0, {bend, 0}}}},
        {"open tee of a stem turning next to the bar",
         turningStem + "-MLEDIT\nOT\n103,-2\n20,5\n\n",
         {"80,-28.0711", "20,5"},
         {{"98.0000,0.0000", "98.0000,-3.0000", "48.0000,-53.0000"}, {"0.0000,0.0000", "200.0000,0.0000"}},
         {{0, 0, 0, {5, 5}},
          {0, 0, 1, {-5}},
          {0, 1, 0, {bend, 0}},
          {0, 1, 1, {-bend, 10 - 3 * r}},
          {1, 0, 0, {5, 0}},
          {1, 0, 1, {-5, 0, 96 - 5 * r, 103}}}},
        // The open cross: the stem's element at x = 103 opens between
        // y = 10.0711 and y = -4.0711 (39.9289 to 54.0711 below (103, 50)).
        // The bar's elements open from x = 93 to their crossings on
        // segment 1: element 0 7.1716 along it, element 1 (from
        // (102.07, -5) to (103, -4.07)) 8 sqrt 2 - 10 = 1.3137.
        {"open cross on a bar turning left",
         leftBar + mline({"98,50", "98,-50"}) + "-MLEDIT\nOC\n103,30\n20,5\n\n",
         {"93,30", "20,-5"},
         {{"98.0000,50.0000", "98.0000,-50.0000"}, leftBarVertices},
         {{0, 0, 0, {5, 0, 47 - 5 * r, 47 + 5 * r}},
          {0, 0, 1, {-5, 0, 45, 55}},
          {1, 0, 0, {5, 0, 93}},
          {1, 0, 1, {-5, 0, 93}},
          {1, 1, 0, {bend, 10 - 2 * r}},
          {1, 1, 1, {-bend, 8 * r - 10}}}},
    };
    KaldoProcess kaldo;
    for (const Session& session : sessions)
        expectSession(kaldo, session);
}
