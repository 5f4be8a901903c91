// -MLEDIT tees, corner joint and vertex tools through the real binary:
// scripts draw multilines with MLINE and edit them, LIST shows the lists
// that result (add vertex keeps the runs beyond the new vertex), an
// independent reader checks the saved drawing and where the drawn runs end
// (of tees on a straight and on a bent bar, a corner and a cross), and the
// tools' Undo gives back the drawing byte for byte.
#include "FileText.h"
#include "KaldoProcess.h"
#include "ListedMlines.h"
#include "MleditScripts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonObject>

#include <numbers>
#include <string>
#include <vector>

using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::SizeIs;

namespace {

// A horizontal bar along y = 0 from x = 0 to 100.
const std::string kBar = kSetup + mline({"0,0", "100,0"});

}  // namespace

TEST(MleditJoinSession, TeesFromBothSidesOfTheBar)
{
    const std::string bar = mline({"0,0", "100,0"});
    const std::vector<std::string> barVertices = {"0.0000,0.0000", "100.0000,0.0000"};
    const std::vector<Session> sessions = {
        // A stem below the bar that does not reach it is lengthened: its end
        // moves onto the bar's axis and its elements end at the bar's lower
        // element line (y = -5), 45 from the stem's start. The closed tee
        // leaves the bar whole.
        {"closed tee", bar + mline({"50,-50", "50,-10"}) + "-MLEDIT\nCT\n55,-30\n20,5\n\n", {"55,-30", "20,5"},
         {{"50.0000,-50.0000", "50.0000,0.0000"}, barVertices},
         {{0, 0, 0, {5, 0, 45}}, {0, 0, 1, {-5, 0, 45}}, {1, 0, 0, {5, 0}}}},
        // A stem at 45 degrees: each element ends where it meets the bar's
        // lower element line, at its own distance.
        {"closed tee at 45 degrees", bar + mline({"20,-30", "80,30"}) + "-MLEDIT\nCT\n26.4645,-16.4645\n10,5\n\n",
         {"26.4645,-16.4645"}, {{"20.0000,-30.0000", "50.0000,0.0000"}},
         {{0, 0, 0, {5, 0, 30.355339}}, {0, 0, 1, {-5, 0, 40.355339}}}},
        // A stem above that runs across the bar, picked above it, keeps its
        // start and is cut back; the open tee opens the bar's upper element
        // between the stem's elements.
        {"open tee from above", bar + mline({"50,50", "50,-30"}) + "-MLEDIT\nOT\n55,30\n20,5\n\n", {"55,30", "20,5"},
         {{"50.0000,50.0000", "50.0000,0.0000"}, barVertices},
         {{0, 0, 0, {5, 0, 45}}, {0, 0, 1, {-5, 0, 45}}, {1, 0, 0, {5, 0, 45, 55}}, {1, 0, 1, {-5, 0}}}},
        // A stem drawn from the bar downwards, picked below it, keeps its
        // end: its start moves onto the bar's axis and its elements start at
        // the lower element line; the lower element of the bar opens.
        {"open tee from below", bar + mline({"50,10", "50,20", "50,-50"}) + "-MLEDIT\nOT\n45,-30\n20,-5\n\n",
         {"45,-30", "20,5"}, {{"50.0000,0.0000", "50.0000,-50.0000"}, barVertices},
         {{0, 0, 0, {5, 5}}, {0, 0, 1, {-5, 5}}, {1, 0, 0, {5, 0}}, {1, 0, 1, {-5, 0, 45, 55}}}},
        // Merged tee of two three-element multilines: the stem's outer
        // elements end at the bar's upper element, its middle one at the
        // bar's middle element; only the upper element opens.
        {"merged tee", mlineInStyle("PIPE", true, {"0,0", "100,0"}) + mline({"50,50", "50,-30"})
                           + "-MLEDIT\nMT\n55,30\n20,5\n\n",
         {"55,30", "20,5"}, {},
         {{0, 0, 0, {5, 0, 45}}, {0, 0, 1, {0, 0, 50}}, {0, 0, 2, {-5, 0, 45}}, {1, 0, 0, {5, 0, 45, 55}},
          {1, 0, 1, {0, 0}}, {1, 0, 2, {-5, 0}}}},
    };
    KaldoProcess kaldo;
    const KaldoRun closed = expectSession(kaldo, sessions[0]);
    EXPECT_THAT(closed.out, HasSubstr("Select first mline: 55,-30\nSelect second mline: 20,5\n"
                                      "Select first mline or [Undo]: \n"));
    for (std::size_t i = 1; i < sessions.size(); ++i)
        expectSession(kaldo, sessions[i]);

    // Stem and bar on one multiline: the stem keeps its end below the bar,
    // the vertex before it goes and the bar, renumbered, opens at the stem;
    // picked above the bar the stem would cut the bar off and is refused.
    const std::string hook = kSetup + mline({"0,60", "50,30", "50,-50", "150,-50", "150,0", "0,0"});
    const KaldoRun wrong = kaldo.runScript(hook + "-MLEDIT\nOT\n55,20\n20,-5\n\n" + list({"55,-20"}));
    EXPECT_THAT(wrong.out, HasSubstr("Select second mline: 20,-5\nPick the stem on the side that keeps the bar.\n"));
    EXPECT_THAT(positions(listedMlines(wrong.out), 0), SizeIs(6));
    const KaldoRun same = kaldo.runScript(hook + "-MLEDIT\nOT\n55,-20\n20,-5\n\n" + list({"55,-20"}));
    auto listed = listedMlines(same.out);
    ASSERT_THAT(listed, SizeIs(1));
    EXPECT_THAT(positions(listed, 0), SizeIs(5));
    EXPECT_THAT(positions(listed, 0).front(), "50.0000,0.0000");
    EXPECT_THAT(runs(listed, 0, 0, 0), listIs(5.0, 5.0));
    EXPECT_THAT(runs(listed, 0, 3, 0), listIs(7.071068, 0.0, 90.0, 100.0));
    EXPECT_THAT(runs(listed, 0, 3, 1), listIs(-7.071068, 0.0));

    // A closed stem is refused and asked for again; a stem that does not
    // meet the bar within the bar gets the message and stays.
    const KaldoRun refused = kaldo.runScript(kBar + mline({"20,20", "80,20", "80,60"}, true)
                                             + mline({"150,-50", "150,-10"})
                                             + "-MLEDIT\nCT\n50,25\n155,-30\n20,5\n\n" + list({"155,-30"}));
    EXPECT_THAT(refused.out, HasSubstr("Select first mline: 50,25\nA closed multiline cannot be used with this tool.\n"
                                       "Select first mline: 155,-30\nSelect second mline: 20,5\n"
                                       "The selected multilines do not intersect.\nSelect first mline: \n"));
    listed = listedMlines(refused.out);
    ASSERT_THAT(listed, SizeIs(1));
    EXPECT_THAT(positions(listed, 0), ::testing::ElementsAre("150.0000,-50.0000", "150.0000,-10.0000"));
}

TEST(MleditJoinSession, CornerJointOfTwoMultilinesAndOfOneWithItself)
{
    const std::string hook = mline({"0,0", "100,0", "100,40", "60,40", "60,-100"});
    const std::vector<Session> sessions = {
        // Two multilines pointing at each other: both end at (100, 0); the
        // inner elements meet at (95, 5), the outer at (105, -5).
        {"two multilines", mline({"0,0", "90,0"}) + mline({"100,100", "100,10"}) + "-MLEDIT\nCJ\n50,5\n105,50\n\n",
         {"50,5", "105,50"}, {{"0.0000,0.0000", "100.0000,0.0000"}, {"100.0000,100.0000", "100.0000,0.0000"}},
         {{0, 0, 0, {5, 0, 95}}, {0, 0, 1, {-5, 0, 105}}, {1, 0, 0, {5, 0, 105}}, {1, 0, 1, {-5, 0, 95}}}},
        // One multiline whose last segment crosses its first: picked twice,
        // the loop between them goes and the corner takes its place.
        {"one with itself", hook + "-MLEDIT\nCJ\n20,5\n65,-60\n\n", {"20,5"},
         {{"0.0000,0.0000", "60.0000,0.0000", "60.0000,-100.0000"}}, {}},
        // With its last segment slanted, the corner vertex moves from (100,
        // 0) to (40, 0), where the axis turns from 180 to 243.43 degrees: its
        // miter bisects them (at 31.72 degrees) and entry 0 is 5 / sin
        // 148.28 = 9.5106, as for a multiline drawn through these vertices;
        // the segment after it, which turned, is drawn whole.
        {"one with itself, slanted", mline({"0,0", "100,0", "100,40", "60,40", "20,-40"})
                                         + "-MLEDIT\nCJ\n20,5\n54.4721,17.7639\n\n",
         {"20,5"}, {{"0.0000,0.0000", "40.0000,0.0000", "20.0000,-40.0000"}},
         {{0, 0, 0, {5, 0}}, {0, 1, 0, {9.510565, 0}}, {0, 1, 1, {-9.510565, 0}}}},
        // Joined the other way round, it runs from the corner round to the
        // corner: both ends move there and the elements end where they meet.
        {"one with itself, round", mline({"0,0", "100,0", "100,50", "20,50", "20,-10"}) + "-MLEDIT\nCJ\n60,5\n25,30\n\n",
         {"60,5"},
         {{"20.0000,0.0000", "100.0000,0.0000", "100.0000,50.0000", "20.0000,50.0000", "20.0000,0.0000"}}, {}},
    };
    KaldoProcess kaldo;
    for (const Session& session : sessions)
        expectSession(kaldo, session);

    // Picks on neighbouring segments of one multiline do nothing; a closed
    // second multiline is refused and the pass starts again.
    const KaldoRun refused = kaldo.runScript(kSetup + hook + mline({"200,0", "300,0", "300,100"}, true)
                                             + "-MLEDIT\nCJ\n20,5\n105,20\n20,5\n250,5\n\n" + list({"20,5"}));
    EXPECT_THAT(refused.out, HasSubstr("Select second mline: 250,5\nA closed multiline cannot be used with this tool.\n"
                                       "Select first mline: \n"));
    EXPECT_THAT(positions(listedMlines(refused.out), 0), SizeIs(5));
}

TEST(MleditJoinSession, AddAndDeleteVertexOnStraightBentAndClosedMultilines)
{
    KaldoProcess kaldo;
    const KaldoRun run = kaldo.runScript(kSetup + mline({"0,0", "100,0", "100,50"})
                                         + mline({"200,0", "300,0", "300,100", "200,100"}, true)
                                         + "-MLEDIT\nAV\n40,5\n195,40\n\n" + list({"10,5", "250,5"})
                                         + "-MLEDIT\nDV\n5,-5\n105,10\n305,95\n\n" + list({"59.845,23.047", "250,5"}));
    EXPECT_EQ(run.exitCode, 0) << run.err;
    auto listed = listedMlines(run.out);
    ASSERT_THAT(listed, SizeIs(4));
    // A vertex at the foot of the pick, square miter, both halves drawn.
    EXPECT_THAT(positions(listed, 0),
                ::testing::ElementsAre("0.0000,0.0000", "40.0000,0.0000", "100.0000,0.0000", "100.0000,50.0000"));
    EXPECT_NEAR(listed[0].vertices[1].miter.y, 1.0, kListed);
    EXPECT_THAT(runs(listed, 0, 1, 0), listIs(5.0, 0.0));
    // On the closing segment of a closed multiline it comes last.
    EXPECT_THAT(positions(listed, 1), ::testing::ElementsAre("200.0000,0.0000", "300.0000,0.0000", "300.0000,100.0000",
                                                             "200.0000,100.0000", "200.0000,40.0000"));
    EXPECT_TRUE(listed[1].closed);
    // Deleting the first vertex, then the corner; the closed one loses the
    // vertex picked near.
    EXPECT_THAT(positions(listed, 2), ::testing::ElementsAre("40.0000,0.0000", "100.0000,50.0000"));
    EXPECT_THAT(positions(listed, 3), ::testing::ElementsAre("200.0000,0.0000", "300.0000,0.0000", "200.0000,100.0000",
                                                             "200.0000,40.0000"));

    // Never below two vertices (three when closed).
    const KaldoRun keep = kaldo.runScript(kSetup + mline({"0,0", "100,0"}) + mline({"200,0", "300,0", "250,80"}, true)
                                          + "-MLEDIT\nDV\n50,5\n250,5\n\n" + list({"50,5", "250,5"}));
    listed = listedMlines(keep.out);
    ASSERT_THAT(listed, SizeIs(2));
    EXPECT_THAT(positions(listed, 0), SizeIs(2));
    EXPECT_THAT(positions(listed, 1), SizeIs(3));

    // Element 0 (y = 5) cut from 20 to 40, then a vertex added at x = 30 in
    // the gap: segment 0 keeps 0 to 20, the new segment from (30, 5) is not
    // drawn up to 40, 10 along it, and drawn on from there.
    expectSession(kaldo, {"add vertex in a gap",
                          mline({"0,0", "100,0"}) + "-MLEDIT\nCS\n20,5\n40,5\n\n-MLEDIT\nAV\n30,-5\n\n",
                          {"60,-5"},
                          {{"0.0000,0.0000", "30.0000,0.0000", "100.0000,0.0000"}},
                          {{0, 0, 0, {5, 0, 20}}, {0, 1, 0, {5, 10}}, {0, 0, 1, {-5, 0}}, {0, 1, 1, {-5, 0}}}});
}

// The tools' own Undo, typed in full and lower case, gives back the
// drawing byte for byte; it takes back one edit only, after which U is no
// keyword but a point refused.
TEST(MleditJoinSession, UndoGivesBackTheSavedDrawingByteForByte)
{
    KaldoProcess kaldo;
    const std::string drawing = kSetup + "SETVAR\nFILEDIA\n0\n" + mline({"0,0", "100,0", "100,50"})
        + mline({"50,-50", "50,-10"}) + mline({"150,-50", "150,100"}) + mline({"30,-30", "30,30"});
    const std::vector<std::string> edits = {
        "CC\n20,5\n35,20\n", "CS\n20,5\n10,5\n",  "CT\n55,-30\n20,5\n", "OT\n55,-30\n20,5\n",
        "MT\n55,-30\n20,5\n", "CJ\n20,5\n155,50\n", "AV\n40,5\n",           "DV\n105,10\n",
    };
    for (std::size_t i = 0; i < edits.size(); ++i) {
        const std::string before = (kaldo.dir() / ("before" + std::to_string(i) + ".dxf")).string();
        const std::string after = (kaldo.dir() / ("after" + std::to_string(i) + ".dxf")).string();
        const std::string edited = (kaldo.dir() / ("edited" + std::to_string(i) + ".dxf")).string();
        const KaldoRun run = kaldo.runScript(drawing + "SAVEAS\n" + before + "\n-MLEDIT\n" + edits[i]
                                             + "undo\nU\n^C\nSAVEAS\n" + after + "\n-MLEDIT\n" + edits[i] + "^C\nSAVEAS\n"
                                             + edited + "\n");
        EXPECT_EQ(run.exitCode, 0) << run.err;
        EXPECT_THAT(run.out, HasSubstr("[Undo]: undo\nThe last edit was undone.\n")) << edits[i];
        EXPECT_THAT(run.out, HasSubstr("mline: U\nInvalid point.\n")) << edits[i];
        const std::string saved = fileText(before);
        ASSERT_FALSE(saved.empty()) << edits[i];
        EXPECT_EQ(fileText(after), saved) << edits[i];
        EXPECT_NE(fileText(edited), saved) << edits[i] << ": the edit changed the drawing";
    }
}

TEST(MleditJoinSession, AnIndependentReaderFindsTheTeesTheCornerAndTheCross)
{
    KaldoProcess kaldo;
    const QJsonArray mlines = mlinesReadBack(kaldo,
                                             kBar + mline({"50,50", "50,-30"}) + mline({"0,100", "90,100"})
                                                 + mline({"100,200", "100,110"}) + mline({"300,0", "400,0"})
                                                 + mline({"350,-50", "350,50"}) + mline({"0,-300", "100,-300", "200,-200"})
                                                 + mline({"98,-250", "98,-350"})
                                                 + "-MLEDIT\nOT\n55,30\n20,5\n\n-MLEDIT\nCJ\n50,105\n105,150\n\n"
                                                 + "-MLEDIT\nOC\n320,5\n345,30\n\n-MLEDIT\nOT\n103,-270\n20,-295\n\n",
                                             "joined.dxf");
    ASSERT_EQ(mlines.size(), 8);
    const QJsonObject bar = mlines[0].toObject();
    const QJsonObject stem = mlines[1].toObject();
    // The stem's end caps are off and its elements stop on the bar's upper
    // element line; the bar's upper element is drawn up to the stem's
    // elements and on after them.
    EXPECT_EQ(stem["flags"].toInt() & 12, 8);
    for (int e = 0; e < 2; ++e) {
        const auto ends = runEnds(stem, 0, e);
        ASSERT_THAT(ends, SizeIs(2)) << e;
        EXPECT_NEAR(ends[1].first, e == 0 ? 55.0 : 45.0, 1e-9) << e;
        EXPECT_NEAR(ends[1].second, 5.0, 1e-9) << e;
    }
    const auto opened = runEnds(bar, 0, 0);
    ASSERT_THAT(opened, SizeIs(3));
    EXPECT_NEAR(opened[1].first, 45.0, 1e-9);
    EXPECT_NEAR(opened[2].first, 55.0, 1e-9);
    // The corner: end caps of both off, the inner elements end at (95, 105)
    // and the outer at (105, 95).
    for (int n = 2; n < 4; ++n) {
        const QJsonObject mline = mlines[n].toObject();
        EXPECT_EQ(mline["flags"].toInt() & 12, 8) << n;
        const auto inner = runEnds(mline, 0, n == 2 ? 0 : 1);
        const auto outer = runEnds(mline, 0, n == 2 ? 1 : 0);
        ASSERT_THAT(inner, SizeIs(2));
        ASSERT_THAT(outer, SizeIs(2));
        EXPECT_NEAR(inner[1].first, 95.0, 1e-9) << n;
        EXPECT_NEAR(inner[1].second, 105.0, 1e-9) << n;
        EXPECT_NEAR(outer[1].first, 105.0, 1e-9) << n;
        EXPECT_NEAR(outer[1].second, 95.0, 1e-9) << n;
    }
    // The open cross: at the first vertex of both every element is drawn
    // from 0 to 45 and from 55 on; at the last vertex nothing changed.
    for (int n = 4; n < 6; ++n) {
        const QJsonArray vertices = mlines[n].toObject()["vertices"].toArray();
        ASSERT_EQ(vertices.size(), 2);
        for (int e = 0; e < 2; ++e) {
            const QJsonArray params = vertices[0].toObject()["element"].toArray()[e].toArray();
            ASSERT_EQ(params.size(), 4) << n;
            const double expected[] = {e == 0 ? 5.0 : -5.0, 0.0, 45.0, 55.0};
            for (int i = 0; i < 4; ++i)
                EXPECT_NEAR(params[i].toDouble(), expected[i], 1e-9) << n << " element " << e;
        }
        EXPECT_EQ(vertices[1].toObject()["element"].toArray()[0].toArray().size(), 2);
    }
    // The open tee on a bar turning left at (100, -300): the stem's element
    // 0 stops, and the bar's element 0 starts again on its segment 1, at the
    // same point (103, -297 + 5 sqrt 2), which lies on the bar's element
    // line.
    const auto stemEnds = runEnds(mlines[7].toObject(), 0, 0);
    const auto barStarts = runEnds(mlines[6].toObject(), 1, 0);
    ASSERT_THAT(stemEnds, SizeIs(2));
    ASSERT_THAT(barStarts, SizeIs(1));
    const double y = -297 + 5 * std::numbers::sqrt2;
    EXPECT_NEAR(stemEnds[1].first, 103, 1e-9);
    EXPECT_NEAR(stemEnds[1].second, y, 1e-9);
    EXPECT_NEAR(barStarts[0].first, 103, 1e-9);
    EXPECT_NEAR(barStarts[0].second, y, 1e-9);
    EXPECT_NEAR(barStarts[0].second - barStarts[0].first, 5 * std::numbers::sqrt2 - 400, 1e-9)
        << "on y = x - 400 + 5 sqrt 2";
}
