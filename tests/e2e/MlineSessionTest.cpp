// MLINE through the real binary: scripts draw multilines, LIST shows what
// reached the drawing, SETVAR what the command wrote to the variables.
#include "EzdxfReport.h"
#include "KaldoProcess.h"
#include "ListedMlines.h"
#include "MlnText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonObject>

#include <cmath>
#include <sstream>
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

// Enter or Cancel at the start draws nothing; Undo back to the start point
// writes it to LASTPOINT, and a relative point after two Undos is taken
// from the fixed vertex left. The prompts after each Undo are the jig's
// (MlineJigTest).
TEST(MlineSession, EnterOrCancelAtTheStartAndUndoBackToLastpoint)
{
    KaldoProcess kaldo;
    const KaldoRun run = kaldo.runScript("MLINE\n\nMLINE\n^C\nMLINE\n0,0\n\n"
                                         "MLINE\n5,5\n15,5\nU\n\nSETVAR\nLASTPOINT\n\n"
                                         "MLINE\n0,20\n10,20\n10,30\n20,30\nU\nU\n@0,-5\n\nSETVAR\nLASTPOINT\n\n"
                                         "LIST\n5,20\n\n");
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out, HasSubstr(std::string("Command: MLINE\n") + settingsLine("Top", "1.0000", "STANDARD")
                                   + kStartPrompt + "\nCommand: MLINE\n"));
    EXPECT_THAT(run.out, HasSubstr(std::string(kStartPrompt) + "0,0\nNext point :\nCommand: "));
    EXPECT_THAT(run.out, HasSubstr("Enter new value for LASTPOINT <5.0000,5.0000,0.0000>: \n"));
    EXPECT_THAT(run.out, HasSubstr("Enter new value for LASTPOINT <10.0000,15.0000,0.0000>: \n"));
    // Two Undos gave up 20,30 and 10,30: @0,-5 is taken from 10,20.
    const auto listed = listedMlines(run.out);
    ASSERT_THAT(listed, SizeIs(1));
    ASSERT_THAT(listed[0].vertices, SizeIs(3));
    EXPECT_THAT(listed[0].vertices[0].position, IsVec(0, 20, 0));
    EXPECT_THAT(listed[0].vertices[1].position, IsVec(10, 20, 0));
    EXPECT_THAT(listed[0].vertices[2].position, IsVec(10, 15, 0));
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
    std::filesystem::create_directory(kaldo.dir() / "my styles");
    kaldo.writeFile("my styles/roads.v2", mlnStyleBlock("ROAD", "Road", {3, 0, -3}));
    const std::string dir = kaldo.dir().string();
    const KaldoRun run = kaldo.runScript(
        // Not found, not in the file, then found: a name without a dot gets ".mln".
        "MLINE\nST\nWall\nnosuch\nRoad\nwalls.mln\nWall\nwalls\n0,0\n10,0\n\n"
        // A bar stands for a blank; a name with a dot keeps its extension.
        "MLINE\nST\nROAD\n" + dir + "/my|styles/roads.v2\n0,50\n10,50\n\n"
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

namespace {

struct Shape {
    std::string script;  // the points, ended by Enter or Close
    std::string pick;    // a point on the path
    bool closed;
};

// The element distances from the path that a style of elements at 0.5 and
// -0.5 gives in each justification (0 top, 1 zero, 2 bottom).
std::vector<double> standardOffsets(int justification, double scale)
{
    switch (justification) {
    case 0: return {0, -scale};
    case 1: return {scale / 2, -scale / 2};
    default: return {scale, 0};
    }
}

ListedVec along(const ListedVec& p, const ListedVec& d, double t)
{
    return {p.x + d.x * t, p.y + d.y * t, p.z + d.z * t};
}

// The signed distance of p from the line through a with unit direction d,
// positive on its left.
double leftDistance(const ListedVec& p, const ListedVec& a, const ListedVec& d)
{
    return -(p.x - a.x) * d.y + (p.y - a.y) * d.x;
}

ListedVec unitFromTo(const ListedVec& a, const ListedVec& b)
{
    const double len = std::hypot(b.x - a.x, b.y - a.y, b.z - a.z);
    return {(b.x - a.x) / len, (b.y - a.y) / len, (b.z - a.z) / len};
}

}  // namespace

TEST(MlineSession, ElementsLieAtTheirOffsetsFromEverySegment)
{
    // Straight, turning both ways, and closed; every justification at the
    // scales 1, 2 and -1. Each element point (vertex + miter * entry 0)
    // must lie at its offset from the segments on both sides of the vertex.
    const std::vector<Shape> shapes = {
        {"0,0\n20,0\n\n", "10,0", false},
        {"0,0\n20,0\n20,20\n35,5\n\n", "10,0", false},
        {"0,0\n20,0\n30,25\nC\n", "10,0", true},
    };
    const char* const justifications[] = {"T", "Z", "B"};
    const double scales[] = {1, 2, -1};
    std::string script;
    std::vector<std::pair<int, double>> settings;
    int placed = 0;
    for (int j = 0; j < 3; ++j) {
        for (double scale : scales) {
            for (const Shape& shape : shapes) {
                // Each multiline 100 units from the others; the pick lands on
                // the path, where the top (or bottom) element runs, or
                // between the zero-justified elements within the pick box.
                const double dx = 100.0 * placed++;
                std::string points;
                std::istringstream in(shape.script);
                for (std::string line; std::getline(in, line);) {
                    double x = 0, y = 0;
                    if (std::sscanf(line.c_str(), "%lf,%lf", &x, &y) == 2)
                        points += std::to_string(x + dx) + "," + std::to_string(y) + "\n";
                    else
                        points += line + "\n";
                }
                double px = 0, py = 0;
                std::sscanf(shape.pick.c_str(), "%lf,%lf", &px, &py);
                script += std::string("MLINE\nJ\n") + justifications[j] + "\nS\n" + std::to_string(scale) + "\n" + points
                    + "LIST\n" + std::to_string(px + dx) + "," + std::to_string(py) + "\n\n";
                settings.emplace_back(j, scale);
            }
        }
    }
    KaldoProcess kaldo;
    const KaldoRun run = kaldo.runScript(script);
    EXPECT_EQ(run.exitCode, 0);
    // The layout LIST gives a multiline, on the first (straight, top, scale 1).
    EXPECT_THAT(run.out, HasSubstr("  scale: 1.0000  justification: 0\n"
                                   "  style: STANDARD  normal: X=0.0000  Y=0.0000  Z=1.0000\n"
                                   "  vertex 0: X=0.0000  Y=0.0000  Z=0.0000\n"
                                   "    direction: X=1.0000  Y=0.0000  Z=0.0000\n"
                                   "    miter: X=0.0000  Y=1.0000  Z=0.0000\n"
                                   "    element 0: 0.0000 0.0000  fill: 0.0000 0.0000\n"
                                   "    element 1: -1.0000 0.0000  fill: -1.0000 0.0000\n"));
    const auto listed = listedMlines(run.out);
    ASSERT_EQ(listed.size(), settings.size());
    for (std::size_t m = 0; m < listed.size(); ++m) {
        const ListedMline& mline = listed[m];
        const auto [justification, scale] = settings[m];
        const Shape& shape = shapes[m % shapes.size()];
        SCOPED_TRACE("multiline " + std::to_string(m));
        EXPECT_EQ(mline.justification, justification);
        EXPECT_EQ(mline.scale, scale);
        EXPECT_EQ(mline.closed, shape.closed);
        EXPECT_EQ(mline.style, "STANDARD");
        EXPECT_THAT(mline.normal, IsVec(0, 0, 1));
        const std::vector<double> offsets = standardOffsets(justification, scale);
        const std::size_t n = mline.vertices.size();
        for (std::size_t v = 0; v < n; ++v) {
            const ListedVertex& vertex = mline.vertices[v];
            const bool last = v + 1 == n;
            // Directions: towards the next vertex; the closing segment back
            // to the first; the last vertex of an open one keeps the one before.
            const ListedVec expected = last ? (shape.closed ? unitFromTo(vertex.position, mline.vertices[0].position)
                                                      : mline.vertices[v - 1].direction)
                                      : unitFromTo(vertex.position, mline.vertices[v + 1].position);
            EXPECT_THAT(vertex.direction, IsVec(expected.x, expected.y, expected.z)) << "vertex " << v;
            EXPECT_NEAR(std::hypot(vertex.miter.x, vertex.miter.y, vertex.miter.z), 1, kListed);
            ASSERT_EQ(vertex.elements.size(), offsets.size());
            for (std::size_t e = 0; e < offsets.size(); ++e) {
                // A fresh vertex draws and fills its whole segment.
                ASSERT_THAT(vertex.elements[e], SizeIs(2));
                EXPECT_EQ(vertex.elements[e][1], 0);
                EXPECT_EQ(vertex.fills[e], vertex.elements[e]);
                const ListedVec point = along(vertex.position, vertex.miter, vertex.elements[e][0]);
                // Four decimals of miter and entry 0 each: a looser bound.
                constexpr double kTolerance = 2e-3;
                EXPECT_NEAR(leftDistance(point, vertex.position, vertex.direction), offsets[e], kTolerance)
                    << "vertex " << v << " element " << e << " outgoing";
                if (v > 0 || shape.closed) {
                    const ListedVertex& before = mline.vertices[v > 0 ? v - 1 : n - 1];
                    EXPECT_NEAR(leftDistance(point, before.position, before.direction), offsets[e], kTolerance)
                        << "vertex " << v << " element " << e << " incoming";
                }
            }
        }
    }
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
