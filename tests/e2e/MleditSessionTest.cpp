// -MLEDIT through the real binary: scripts draw multilines with MLINE, edit
// them with the cross, cut and weld tools, and LIST shows the element lists
// that result (an independent reader finds a cross in the saved drawing:
// MleditJoinSession).
#include "KaldoProcess.h"
#include "ListedMlines.h"
#include "MleditScripts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::SizeIs;

TEST(MleditSession, CrossToolsOnTwoElementMultilines)
{
    const std::string pair = mline({"0,0", "100,0"}) + mline({"50,-50", "50,50"});
    const std::vector<std::string> listAt = {"20,5", "45,30"};
    KaldoProcess kaldo;
    // The first multiline opens between its crossings with the second's
    // element lines at x = 45 and 55; the second stays whole.
    const KaldoRun closed = expectSession(kaldo, {"closed cross", pair + "-MLEDIT\ncc\n20,5\n45,30\n\n", listAt, {},
                                                  {{0, 0, 0, {5, 0, 45, 55}}, {0, 0, 1, {-5, 0, 45, 55}}, {0, 1, 0, {5, 0}},
                                                   {1, 0, 0, {5, 0}}, {1, 0, 1, {-5, 0}}}});
    EXPECT_THAT(closed.out, HasSubstr("Enter mline editing option [CC/OC/MC/CT/OT/MT/CJ/AV/DV/CS/CA/WA]: cc\n"
                                      "Select first mline: 20,5\nSelect second mline: 45,30\n"
                                      "Select first mline or [Undo]: \nCommand: LIST"));

    // Open cross (typed in mixed case) also opens the second's outer
    // elements; with two elements the merged cross does the same. The same
    // cross again changes nothing further.
    const std::vector<ListedList> opened = {
        {0, 0, 0, {5, 0, 45, 55}}, {0, 0, 1, {-5, 0, 45, 55}}, {1, 0, 0, {5, 0, 45, 55}}, {1, 0, 1, {-5, 0, 45, 55}}};
    for (const Session& session : std::vector<Session>{
             {"open cross", pair + "-MLEDIT\nOc\n20,5\n45,30\n\n", listAt, {}, opened},
             {"merged cross", pair + "-MLEDIT\nMC\n20,5\n45,30\n\n", listAt, {}, opened},
             {"open cross twice", pair + "-MLEDIT\nOC\n20,5\n45,30\n20,-5\n55,-30\n\n", listAt, {}, opened}})
        expectSession(kaldo, session);
}

TEST(MleditSession, CrossToolsOnThreeAndFourElementMultilines)
{
    // PIPE has elements at 5, 0 and -5 (at scale 10), DUCT at 10, 5, -5
    // and -10.
    const std::string pipe = mlineInStyle("PIPE", true, {"0,0", "100,0"});
    const std::string duct = mlineInStyle("DUCT", true, {"0,0", "100,0"});
    const std::string stem = mline({"50,-50", "50,50"});
    const std::vector<std::string> atPipe = {"20,5", "45,30"};
    const std::vector<std::string> atDuct = {"20,10", "40,30"};
    const std::vector<Session> sessions = {
        // Three elements over two: every element of the first gets one gap.
        {"closed cross of three over two",
         pipe + "MLINE\nST\nSTANDARD\n50,-50\n50,50\n\n-MLEDIT\nCC\n20,5\n45,30\n\n", atPipe, {},
         {{0, 0, 0, {5, 0, 45, 55}}, {0, 0, 1, {0, 0, 45, 55}}, {0, 0, 2, {-5, 0, 45, 55}}, {1, 0, 0, {5, 0}}}},
        // Open cross of two three-element multilines: the second's middle
        // element stays whole.
        {"open cross of three", pipe + stem + "-MLEDIT\nOC\n20,5\n45,30\n\n", atPipe, {},
         {{0, 0, 1, {0, 0, 45, 55}}, {1, 0, 0, {5, 0, 45, 55}}, {1, 0, 1, {0, 0}}, {1, 0, 2, {-5, 0, 45, 55}}}},
        // Closed cross of two four-element multilines: every element of the
        // first opens between the second's outer elements at x = 40 and 60.
        {"closed cross of four", duct + stem + "-MLEDIT\nCC\n20,10\n40,30\n\n", atDuct, {},
         {{0, 0, 1, {5, 0, 40, 60}}, {0, 0, 2, {-5, 0, 40, 60}}, {1, 0, 1, {5, 0}}}},
        // Merged cross of three elements each: the outer elements open
        // between the other's outer ones, the middle ones stay whole.
        {"merged cross of three", pipe + stem + "-MLEDIT\nMC\n20,5\n45,30\n\n", atPipe, {},
         {{0, 0, 0, {5, 0, 45, 55}}, {0, 0, 1, {0, 0}}, {0, 0, 2, {-5, 0, 45, 55}},
          {1, 0, 0, {5, 0, 45, 55}}, {1, 0, 1, {0, 0}}, {1, 0, 2, {-5, 0, 45, 55}}}},
        // Four elements each: the inner elements open between the other's
        // inner ones, the outer between the outer ones.
        {"merged cross of four", duct + stem + "-MLEDIT\nmc\n20,10\n40,30\n\n", atDuct, {},
         {{0, 0, 0, {10, 0, 40, 60}}, {0, 0, 1, {5, 0, 45, 55}}, {0, 0, 2, {-5, 0, 45, 55}},
          {0, 0, 3, {-10, 0, 40, 60}}, {1, 0, 0, {10, 0, 40, 60}}, {1, 0, 1, {5, 0, 45, 55}},
          {1, 0, 2, {-5, 0, 45, 55}}, {1, 0, 3, {-10, 0, 40, 60}}}},
    };
    KaldoProcess kaldo;
    for (const Session& session : sessions)
        expectSession(kaldo, session);
}

TEST(MleditSession, CrossingsOnClosedMultilinesAndNearVertices)
{
    KaldoProcess kaldo;
    // A closed square crossed by a straight multiline on its closing
    // segment (x = 0, running south); the square's elements there lie at
    // x = 5 and -5 and start 5 units below its corner at (0, 100).
    const KaldoRun square = kaldo.runScript(kSetup + mline({"0,0", "100,0", "100,100", "0,100"}, true)
                                            + mline({"-50,50", "150,50"}) + "-MLEDIT\nOC\n-30,45\n-5,70\n\n"
                                            + list({"-30,45", "-5,70"}));
    EXPECT_EQ(square.exitCode, 0) << square.err;
    auto listed = listedMlines(square.out);
    ASSERT_THAT(listed, SizeIs(2));
    EXPECT_THAT(runs(listed, 0, 0, 0), listIs(5.0, 0.0, 45.0, 55.0)) << "only the crossing picked is opened";
    EXPECT_THAT(runs(listed, 0, 0, 1), listIs(-5.0, 0.0, 45.0, 55.0));
    ASSERT_TRUE(listed[1].closed);
    const std::vector<double> closing = runs(listed, 1, 3, 0);
    ASSERT_THAT(closing, SizeIs(4));
    EXPECT_NEAR(closing[2], 40.0, kListed);
    EXPECT_NEAR(closing[3], 50.0, kListed);
    EXPECT_THAT(runs(listed, 1, 1, 0), SizeIs(2)) << "the square's other segments stay whole";

    // A crossing just past a bend: the axes cross on the first segment's
    // extension, at (52, 0). The first's segment 1 runs along (5, 1); its
    // elements lie on -x + 5y = 50 +- 5 sqrt 26 and start at (75 - 5 sqrt 26,
    // 5) = (49.50, 5) and (25 + 5 sqrt 26, -5) = (50.50, -5); the miter
    // bisects the turn by a = atan(1 / 5), so entry 0 is 5 / cos(a / 2) =
    // 5 / sqrt((1 + 5 / sqrt 26) / 2) = 5.0245. Both open from the vertical's element line at
    // x = 47 on segment 0, across the bend, to the one at x = 57 on segment
    // 1: (57 - 49.50) sqrt 26 / 5 = 26 - 3.6 sqrt 26 = 7.6435 along it for
    // element 0, (57 - 50.50) sqrt 26 / 5 = 6.4 sqrt 26 - 26 = 6.6339 for
    // element 1.
    const KaldoRun bend = kaldo.runScript(kSetup + mline({"0,0", "50,0", "100,10"}) + mline({"52,-50", "52,50"})
                                          + "-MLEDIT\nCC\n20,5\n47,-30\n\n" + list({"20,5"}));
    listed = listedMlines(bend.out);
    ASSERT_THAT(listed, SizeIs(1));
    const double root26 = std::sqrt(26.0);
    const double miter = 5 / std::sqrt((1 + 5 / root26) / 2);
    EXPECT_THAT(runs(listed, 0, 0, 0), listIs(5.0, 0.0, 47.0));
    EXPECT_THAT(runs(listed, 0, 0, 1), listIs(-5.0, 0.0, 47.0));
    EXPECT_THAT(runs(listed, 0, 1, 0), listIs(miter, 26 - 3.6 * root26));
    EXPECT_THAT(runs(listed, 0, 1, 1), listIs(-miter, 6.4 * root26 - 26));
}

TEST(MleditSession, CutSingleCutAllAndWeldAll)
{
    KaldoProcess kaldo;
    // Cut single from the upper element to a point on the lower one: the
    // upper element opens between the first point and the projection of the
    // second onto it.
    const KaldoRun single = kaldo.runScript(kSetup + mline({"0,0", "100,0"}) + "-MLEDIT\nCS\n20,5\n30,-5\n\n"
                                            + list({"10,5"}));
    EXPECT_EQ(single.exitCode, 0) << single.err;
    EXPECT_THAT(single.out, HasSubstr("Select mline: 20,5\nSelect second point: 30,-5\nSelect mline or [Undo]: \n"));
    auto listed = listedMlines(single.out);
    ASSERT_THAT(listed, SizeIs(1));
    EXPECT_THAT(runs(listed, 0, 0, 0), listIs(5.0, 0.0, 20.0, 30.0));
    EXPECT_THAT(runs(listed, 0, 0, 1), listIs(-5.0, 0.0));

    // Cut all on the vertical side of a C: the element lines there end at
    // x = 4.999999999999999 and 5.000000000000001; both elements open.
    const KaldoRun side = kaldo.runScript(kSetup + mline({"100,60", "0,60", "0,0", "100,0"})
                                          + "-MLEDIT\nCA\n-5.5,20\n-5.5,40\n\n" + list({"50,65"}));
    listed = listedMlines(side.out);
    ASSERT_THAT(listed, SizeIs(1));
    EXPECT_THAT(runs(listed, 0, 1, 0), listIs(7.071068, 0.0, 15.0, 35.0));
    EXPECT_THAT(runs(listed, 0, 1, 1), listIs(-7.071068, 0.0, 25.0, 45.0));

    // Cut all across three segments hides the middle one entirely; a weld
    // from segment 0 to segment 2 draws segment 1 whole again (over a gap
    // within one segment: MleditEdgeSession).
    const KaldoRun all = kaldo.runScript(kSetup + mline({"0,0", "50,0", "50,50", "100,50"}) + "-MLEDIT\nCA\n20,5\n75,55\n\n"
                                         + list({"10,5"}) + "-MLEDIT\nWA\n10,5\n90,55\n\n" + list({"5,5"}));
    listed = listedMlines(all.out);
    ASSERT_THAT(listed, SizeIs(2));
    for (std::size_t e = 0; e < 2; ++e) {
        const std::vector<double> first = runs(listed, 0, 0, e);
        ASSERT_THAT(first, SizeIs(3)) << e;
        EXPECT_NEAR(first[2], 20.0, kListed) << e;
        EXPECT_THAT(runs(listed, 0, 1, e), SizeIs(1)) << "hidden along segment 1";
        ASSERT_THAT(runs(listed, 0, 2, e), SizeIs(2)) << e;
        EXPECT_GT(runs(listed, 0, 2, e)[1], 0.0) << e;
        // Welded: segments 0 and 1 drawn whole again.
        EXPECT_THAT(runs(listed, 1, 0, e), SizeIs(2)) << e;
        EXPECT_THAT(runs(listed, 1, 1, e), SizeIs(2)) << e;
        EXPECT_NEAR(runs(listed, 1, 1, e).back(), 0.0, kListed) << e;
    }
}

TEST(MleditSession, NonMultilinesMissesAndOneMultilinePickedTwice)
{
    KaldoProcess kaldo;
    // A line is refused with the tool's message, a miss with the host's; the
    // prompt repeats.
    const KaldoRun refused = kaldo.runScript(kCrossingPair + "LINE\n0,80\n100,80\n\n"
                                             + "-MLEDIT\nCC\n20,80\n20,60\n20,5\n20,80\n45,30\n\n" + list({"20,5"}));
    EXPECT_EQ(refused.exitCode, 0) << refused.err;
    EXPECT_THAT(refused.out, HasSubstr("Select first mline: 20,80\nThe object selected is not a multiline.\n"
                                       "Select first mline: 20,60\nNo object found.\nSelect first mline: 20,5\n"
                                       "Select second mline: 20,80\nThe object selected is not a multiline.\n"
                                       "Select second mline: 45,30\n"));
    EXPECT_THAT(runs(listedMlines(refused.out), 0, 0, 0), listIs(5.0, 0.0, 45.0, 55.0));

    // A multiline that crosses itself: its first segment opens where its
    // last segment crosses it; picks on neighbouring segments do nothing.
    const std::string loop = kSetup + mline({"0,0", "100,0", "100,50", "50,50", "50,-50"});
    const KaldoRun self = kaldo.runScript(loop + "-MLEDIT\nCC\n20,5\n95,20\n20,5\n55,-30\n\n" + list({"20,5"}));
    EXPECT_THAT(self.out, Not(HasSubstr("do not intersect")));
    const auto listed = listedMlines(self.out);
    ASSERT_THAT(listed, SizeIs(1));
    EXPECT_THAT(runs(listed, 0, 0, 0), listIs(5.0, 0.0, 45.0, 55.0));
    EXPECT_THAT(runs(listed, 0, 0, 1), listIs(-5.0, 0.0, 45.0, 55.0));

    // Multilines that do not cross get the message and stay as they were.
    const KaldoRun apart = kaldo.runScript(kSetup + mline({"0,0", "100,0"}) + mline({"0,50", "100,50"})
                                           + "-MLEDIT\nCC\n20,5\n20,55\n\n" + list({"20,5"}));
    EXPECT_THAT(apart.out, HasSubstr("Select second mline: 20,55\nThe selected multilines do not intersect.\n"
                                     "Select first mline: \n"));
    EXPECT_THAT(runs(listedMlines(apart.out), 0, 0, 0), listIs(5.0, 0.0));
}

// Unknown codes, Enter and Cancel at the tool prompt run no tool; a miss at
// any pick says so and asks again, and Enter or Cancel there ends the tool.
TEST(MleditSession, UnknownCodesMissesEnterAndCancelChangeNothing)
{
    KaldoProcess kaldo;
    const KaldoRun run = kaldo.runScript(kCrossingPair + "-MLEDIT\nXX\n\n-MLEDIT\n\n-MLEDIT\n^C\n"
                                         + "-MLEDIT\nCT\n55,-30\n500,500\n\n-MLEDIT\nCJ\n500,500\n^C\n"
                                         + "-MLEDIT\nAV\n500,500\n\n" + list({"20,5", "55,-30"}));
    EXPECT_EQ(run.exitCode, 0) << run.err;
    const std::string option = "Enter mline editing option [CC/OC/MC/CT/OT/MT/CJ/AV/DV/CS/CA/WA]: ";
    EXPECT_THAT(run.out, HasSubstr(option + "XX\nInvalid option keyword.\n" + option + "\nCommand: -MLEDIT\n" + option
                                   + "\nCommand: -MLEDIT\n" + option + "*Cancel*\n"));
    EXPECT_THAT(run.out, HasSubstr("Select second mline: 500,500\nNo object found.\nSelect second mline: \nCommand: "));
    EXPECT_THAT(run.out, HasSubstr("Select first mline: 500,500\nNo object found.\nSelect first mline: *Cancel*\n"));
    EXPECT_THAT(run.out, HasSubstr("Select mline: 500,500\nNo object found.\nSelect mline: \nCommand: "));
    EXPECT_THAT(run.out, Not(HasSubstr("undone")));
    const auto listed = listedMlines(run.out);
    ASSERT_THAT(listed, SizeIs(2));
    EXPECT_THAT(runs(listed, 0, 0, 0), listIs(5.0, 0.0));
    EXPECT_THAT(positions(listed, 1), ElementsAre("50.0000,-50.0000", "50.0000,50.0000"));
}
