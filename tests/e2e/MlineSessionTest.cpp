// MLINE through the real binary: scripts draw multilines, LIST shows what
// reached the drawing, SETVAR what the command wrote to the variables
// (where the elements lie, to 1e-9: MlineGeometry).
#include "EzdxfReport.h"
#include "KaldoProcess.h"
#include "ListedMlines.h"
#include "MlnText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonObject>

#include <cmath>
#include <string>
#include <vector>

using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::SizeIs;

namespace {

constexpr double kListed = 1e-4;  // LIST shows four decimals

MATCHER_P3(IsVec, x, y, z, "")
{
    return std::abs(arg.x - x) < kListed && std::abs(arg.y - y) < kListed && std::abs(arg.z - z) < kListed;
}

std::string settingsLine(const std::string& justification, const std::string& scale, const std::string& style)
{
    return "Current settings: Justification = " + justification + ", Scale = " + scale + ", Style = " + style + "\n";
}

const char* const kStartPrompt = "Specify start point or [Justification/Scale/STyle]: ";

}  // namespace

// The point loop: Enter or Cancel at the start draws nothing, nor does a
// start point alone; Undo back to the start point writes it to LASTPOINT,
// in user coordinates, and a relative point after two Undos is taken from
// the fixed vertex left; the prompts follow the fixed vertices; Cancel keeps
// the fixed segments, every point is taken (the same one twice too), and
// Close is no keyword before the third vertex.
TEST(MlineSession, PointLoopUndoCloseCancelAndLastpoint)
{
    KaldoProcess kaldo;
    const KaldoRun run = kaldo.runScript("MLINE\n\nMLINE\n^C\nMLINE\n0,0\n\n"
                                         "MLINE\n5,5\n15,5\nU\n\nSETVAR\nLASTPOINT\n\n"
                                         "MLINE\n0,20\n10,20\n10,30\n20,30\nU\nU\n@0,-5\n\nSETVAR\nLASTPOINT\n\n"
                                         "LIST\n5,20\n\nMLINE\n0,40\n10,40\n10,40\n^C\nLIST\n5,40\n\n"
                                         "MLINE\n0,60\n10,60\nC\n10,70\nC\nLIST\n5,60\n\n"
                                         "UCS\nZ\n90\nMLINE\nJ\nZ\nS\n2\n0,80\n0,90\n0,100\nU\n^C\n"
                                         "SETVAR\nLASTPOINT\n\n"
                                         "LIST\n0,85\n\n");
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out, HasSubstr(std::string("Command: MLINE\n") + settingsLine("Top", "1.0000", "STANDARD")
                                   + kStartPrompt + "\nCommand: MLINE\n"));
    EXPECT_THAT(run.out, HasSubstr(std::string(kStartPrompt) + "0,0\nNext point :\nCommand: "));
    EXPECT_THAT(run.out, HasSubstr("Next point :15,5\nSpecify next point or [Undo]:U\nNext point :\n"));
    EXPECT_THAT(run.out, HasSubstr("Enter new value for LASTPOINT <5.0000,5.0000,0.0000>: \n"));
    EXPECT_THAT(run.out, HasSubstr("Next point :10,20\nSpecify next point or [Undo]:10,30\n"
                                   "Specify next point or [Close/Undo]: 20,30\nSpecify next point or [Close/Undo]: U\n"
                                   "Specify next point or [Close/Undo]: U\nSpecify next point or [Undo]:@0,-5\n"
                                   "Specify next point or [Close/Undo]: \n"));
    EXPECT_THAT(run.out, HasSubstr("Enter new value for LASTPOINT <10.0000,15.0000,0.0000>: \n"));
    EXPECT_THAT(run.out, HasSubstr("Specify next point or [Undo]:C\nInvalid point."));
    // Undo gave up 0,100: LASTPOINT is the fixed point before, in the user
    // system turned by 90 degrees.
    EXPECT_THAT(run.out, HasSubstr("Enter new value for LASTPOINT <0.0000,90.0000,0.0000>: \n"));
    const auto listed = listedMlines(run.out);
    ASSERT_THAT(listed, SizeIs(4));
    // Two Undos gave up 20,30 and 10,30: @0,-5 is taken from 10,20.
    ASSERT_THAT(listed[0].vertices, SizeIs(3));
    EXPECT_THAT(listed[0].vertices[0].position, IsVec(0, 20, 0));
    EXPECT_THAT(listed[0].vertices[1].position, IsVec(10, 20, 0));
    EXPECT_THAT(listed[0].vertices[2].position, IsVec(10, 15, 0));
    // Top at scale 1: the elements at 0 and -1 along the miter, drawn and
    // filled whole (their offsets from every segment at every justification
    // and scale: MlineGeometry).
    EXPECT_EQ(listed[0].justification, 0);
    EXPECT_EQ(listed[0].vertices[0].elements, (std::vector<std::vector<double>>{{0, 0}, {-1, 0}}));
    EXPECT_EQ(listed[0].vertices[0].fills, listed[0].vertices[0].elements);
    EXPECT_FALSE(listed[1].closed);
    ASSERT_THAT(listed[1].vertices, SizeIs(3));
    EXPECT_THAT(listed[1].vertices[2].position, IsVec(10, 40, 0));
    EXPECT_TRUE(listed[2].closed);
    ASSERT_THAT(listed[2].vertices, SizeIs(3));
    EXPECT_THAT(listed[2].vertices[2].position, IsVec(10, 70, 0));
    // The user points in the world: user x runs along world y. Zero at
    // scale 2: the elements at 1 and -1.
    EXPECT_EQ(listed[3].justification, 1);
    EXPECT_EQ(listed[3].scale, 2);
    ASSERT_THAT(listed[3].vertices, SizeIs(2));
    EXPECT_EQ(listed[3].vertices[0].elements, (std::vector<std::vector<double>>{{1, 0}, {-1, 0}}));
    EXPECT_THAT(listed[3].vertices[0].position, IsVec(-80, 0, 0));
    EXPECT_THAT(listed[3].vertices[1].position, IsVec(-90, 0, 0));
}

TEST(MlineSession, OptionsWriteTheVariablesAndTheSettingsLine)
{
    KaldoProcess kaldo;
    const KaldoRun run = kaldo.runScript(
        "MLINE\nJ\nz\nJ\n^C\nS\n2.5\nS\n^C\nST\nstandard\n\n"
        "SETVAR\nCMLJUST\n\nSETVAR\nCMLSCALE\n\nSETVAR\nCMLSTYLE\n\n"
        "MLINE\nS\n0\nj\nBOTTOM\nS\n-3\n0,0\n10,0\n\nLIST\n5,0\n\n"
        "SETVAR\nCMLJUST\n\nSETVAR\nCMLSCALE\n\n");
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out, HasSubstr("Enter justification type [Top/Zero/Bottom] <Top>: z\n"
                                   + settingsLine("Zero", "1.0000", "STANDARD")));
    // Cancel at the justification prompt keeps Zero.
    EXPECT_THAT(run.out, HasSubstr("Enter justification type [Top/Zero/Bottom] <Zero>: *Cancel*\n"
                                   + settingsLine("Zero", "1.0000", "STANDARD")));
    EXPECT_THAT(run.out, HasSubstr("Enter mline scale <1.0000> :2.5\n" + settingsLine("Zero", "2.5000", "STANDARD")));
    EXPECT_THAT(run.out, HasSubstr("Enter mline scale <2.5000> :*Cancel*\n" + settingsLine("Zero", "2.5000", "STANDARD")));
    // A style name in any case is taken and stored in upper case.
    EXPECT_THAT(run.out, HasSubstr("Enter mline style name or [?]: standard\n" + settingsLine("Zero", "2.5000", "STANDARD")
                                   + kStartPrompt + "\n"));
    EXPECT_THAT(run.out, HasSubstr("Enter new value for CMLJUST <1>: "));
    EXPECT_THAT(run.out, HasSubstr("Enter new value for CMLSCALE <2.5000>: "));
    EXPECT_THAT(run.out, HasSubstr("Enter new value for CMLSTYLE <STANDARD>: "));
    // The next run starts from the variables; zero and negative scales are taken.
    EXPECT_THAT(run.out, HasSubstr("Enter mline scale <2.5000> :0\n" + settingsLine("Zero", "0.0000", "STANDARD")));
    EXPECT_THAT(run.out, HasSubstr("<Zero>: BOTTOM\n" + settingsLine("Bottom", "0.0000", "STANDARD")));
    EXPECT_THAT(run.out, HasSubstr("Enter mline scale <0.0000> :-3\n" + settingsLine("Bottom", "-3.0000", "STANDARD")));
    EXPECT_THAT(run.out, HasSubstr("Enter new value for CMLJUST <2>: "));
    EXPECT_THAT(run.out, HasSubstr("Enter new value for CMLSCALE <-3.0000>: "));
    const auto listed = listedMlines(run.out);
    ASSERT_THAT(listed, SizeIs(1));
    EXPECT_EQ(listed[0].scale, -3);
    EXPECT_EQ(listed[0].justification, 2);
    EXPECT_EQ(listed[0].style, "STANDARD");
}

TEST(MlineSession, StyleListingCutsNamesAt35CharactersAndAlignsTheDescriptions)
{
    KaldoProcess kaldo;
    const std::string longName = "corridor_wall_with_insulation_layers_40c";
    ASSERT_EQ(longName.size(), 40u);
    kaldo.writeFile("long.mln", mlnStyleBlock(longName, "Two skins, 0.3 apart", {0.15, -0.15}));
    const KaldoRun run = kaldo.runScript("MLINE\nST\n" + longName + "\nlong\nST\n?\n\n^C\n");
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out, HasSubstr("Enter mline style name or [?]: ?\n\n"
                                   "       Multiline Style                      Description                         \n"
                                   "----------------------------------  ---------------------------------------------\n"));
    // Names are listed in the dictionary's order, each cut to 35 characters
    // and filled up to them, so that every description starts under the
    // second part of the rule.
    auto row = [](const std::string& name, const std::string& description) {
        std::string cut = name.substr(0, 35);
        cut.resize(35, ' ');
        return cut + " " + description + "\n";
    };
    EXPECT_THAT(run.out, HasSubstr("\n" + row(longName, "Two skins, 0.3 apart") + row("STANDARD", "")
                                   + "Enter mline style name or [?]: \n"));
    EXPECT_THAT(run.out, Not(HasSubstr("\n" + longName.substr(0, 36))));
}

TEST(MlineSession, MissingStyleLoadedFromAFileByScript)
{
    KaldoProcess kaldo;
    kaldo.writeFile("walls.mln", mlnStyleBlock("OTHER", "", {1, -1}) + mlnStyleBlock("WALL", "Wall of 0.4", {0.2, -0.2}));
    std::filesystem::create_directory(kaldo.dir() / "my styles.v2");
    kaldo.writeFile("my styles.v2/roads", mlnStyleBlock("ROAD", "Road", {3, 0, -3}));
    const std::string dir = kaldo.dir().string();
    const KaldoRun run = kaldo.runScript(
        // Not found, not in the file, then found: a name without a dot gets ".mln".
        "MLINE\nST\nWall\nnosuch\nRoad\nwalls.mln\nWall\nwalls\n0,0\n10,0\n\n"
        // A bar stands for a blank; a name with a dot, in a folder's name
        // too, gets no extension.
        "MLINE\nST\nROAD\n" + dir + "/my|styles.v2/roads\n0,50\n10,50\n\n"
        // Cancel at the file-name prompt: silent, asked again for a style.
        "MLINE\nST\nlost\n^C\n\n\n"
        "LIST\n5,0.2\n\nLIST\n5,51\n\nSETVAR\nCMLSTYLE\n\n");
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out, HasSubstr("Enter mline style name or [?]: Wall\nMultiline style to load: nosuch\n"
                                   "Unable to find file \"nosuch.mln\".\n"
                                   "The \"wall\" multiline style does not exist\n"
                                   "Enter mline style name or [?]: Road\n"));
    EXPECT_THAT(run.out, HasSubstr("Multiline style to load: walls.mln\nThe \"road\" multiline style does not exist\n"));
    EXPECT_THAT(run.out, HasSubstr("Multiline style to load: walls\n" + settingsLine("Top", "1.0000", "WALL")));
    EXPECT_THAT(run.out, HasSubstr(settingsLine("Top", "1.0000", "ROAD")));
    EXPECT_THAT(run.out, HasSubstr("Enter mline style name or [?]: lost\nMultiline style to load: *Cancel*\n"
                                   "Enter mline style name or [?]: \n"));
    const auto listed = listedMlines(run.out);
    ASSERT_THAT(listed, SizeIs(2));
    // The style is kept under the lower-case name the command looked for.
    EXPECT_EQ(listed[0].style, "wall");
    ASSERT_THAT(listed[0].vertices, SizeIs(2));
    ASSERT_THAT(listed[0].vertices[0].elements, SizeIs(2));
    EXPECT_NEAR(listed[0].vertices[0].elements[1][0], -0.4, kListed);
    EXPECT_EQ(listed[1].style, "road");
    ASSERT_THAT(listed[1].vertices[0].elements, SizeIs(3));
    EXPECT_NEAR(listed[1].vertices[0].elements[2][0], -6, kListed);
    EXPECT_THAT(run.out, HasSubstr("Enter new value for CMLSTYLE <ROAD>: "));
}

TEST(MlineSession, DrawnMultilineAndSettingsSurviveTheSavedFile)
{
    KaldoProcess kaldo;
    kaldo.writeFile("walls.mln", mlnStyleBlock("WALL", "Wall of 0.4", {0.2, -0.2}));
    const std::string saved = (kaldo.dir() / "room.dxf").string();
    const KaldoRun draw = kaldo.runScript("MLINE\nJ\nB\nS\n2\nST\nwall\nwalls\n0,0\n10,0\n10,10\nC\n",
                                          {"--save", QString::fromStdString(saved)});
    ASSERT_EQ(draw.exitCode, 0) << draw.err;

    // An independent reader finds the multiline whole and the file sound.
    const EzdxfReport report = readWithEzdxf(saved);
    ASSERT_TRUE(report.ran) << report.problem;
    const QJsonObject& file = report.file;
    EXPECT_EQ(auditFindings(report), "");
    const QJsonArray mlines = file["mlines"].toArray();
    ASSERT_EQ(mlines.size(), 1);
    const QJsonObject mline = mlines[0].toObject();
    EXPECT_EQ(mline["style"].toString().toUpper(), "WALL");
    EXPECT_TRUE(mline["flags"].toInt() & 2) << "closed";
    EXPECT_EQ(mline["scale"].toDouble(), 2);
    EXPECT_EQ(mline["justification"].toInt(), 2);
    const QJsonArray vertices = mline["vertices"].toArray();
    ASSERT_EQ(vertices.size(), 3);
    const QJsonArray corner = vertices[1].toObject()["location"].toArray();
    EXPECT_NEAR(corner[0].toDouble(), 10, 1e-12);
    EXPECT_NEAR(corner[1].toDouble(), 0, 1e-12);

    // Opened again: the settings come back with the drawing, and so does
    // the multiline with its style.
    const KaldoRun reopened = kaldo.runScript("MLINE\n\nLIST\n5,0\n\n", {QString::fromStdString(saved)});
    EXPECT_EQ(reopened.exitCode, 0) << reopened.err;
    EXPECT_THAT(reopened.out, HasSubstr(settingsLine("Bottom", "2.0000", "WALL")));
    const auto listed = listedMlines(reopened.out);
    ASSERT_THAT(listed, SizeIs(1));
    EXPECT_TRUE(listed[0].closed);
    EXPECT_EQ(listed[0].style, "wall");
    ASSERT_THAT(listed[0].vertices, SizeIs(3));
    EXPECT_THAT(listed[0].vertices[2].position, IsVec(10, 10, 0));
}
