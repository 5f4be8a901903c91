// MOVE, COPY, ROTATE, SCALE, MIRROR and STRETCH through the real binary on
// multilines of two to five elements: cut by -MLEDIT, tee'd, closed, of a
// negative scale, with line caps, outer and inner arcs, slanted caps,
// joints and fills, selected by windows, crossings and picks. ezdxf reads
// the exploded copies saved before and after each command, and every line,
// arc and fill loop after is one before transformed by the test's own
// arithmetic (tests/dxf/ezdxf_transformed.py); the multilines' stored
// vertices, directions, miters, scales and lists are checked the same way.
// U gives back the drawing saved before, byte for byte, REDO the one after.
#include "EzdxfReport.h"
#include "FileText.h"
#include "KaldoProcess.h"
#include "MlnText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QJsonArray>

#include <string>

using ::testing::HasSubstr;

namespace {

// Three styles: two elements with line caps and a fill; three with outer
// and inner arcs, joints and slanted caps (60 and 120 degrees); five with
// everything. Each element in a colour of its own.
const std::string kStyles = mlnStyleBlock({"W2", "two", {{1.0, 1}, {-1.0, 2}}, 273, 8})
    + mlnStyleBlock({"W3", "three", {{1.5, 1}, {0.25, 3}, {-1.5, 5}}, 1634, 256, 60, 120})
    + mlnStyleBlock({"W5", "five", {{2.0, 1}, {1.0, 2}, {0.0, 3}, {-0.5, 4}, {-2.0, 5}}, 1907, 9});

class ModifySession : public ::testing::Test {
protected:
    ModifySession() { styles_ = kaldo.writeFile("walls.mln", kStyles); }

    // MLINE in a style of walls.mln (loaded on first use), centred on the
    // points, at scale.
    std::string mline(const std::string& style, bool load, double scale, const std::vector<std::string>& points,
                      bool close = false) const
    {
        std::string text = "MLINE\nJ\nZ\nS\n" + std::to_string(scale) + "\nST\n" + style + "\n";
        if (load)
            text += styles_.string() + "\n";
        for (const std::string& p : points)
            text += p + "\n";
        return text + (close ? "C\n" : "\n");
    }

    // A cut wall, a tee, a closed room, a wall of negative scale and a
    // capped one.
    std::string drawing() const
    {
        return "SETVAR\nPICKBOX\n1\n" + mline("W3", true, 1, {"0,0", "60,0", "60,40"})
            + "-MLEDIT\nCS\n20,1.5\n30,1.5\n\n"  // a door in the outer element
            + mline("W2", true, 1, {"0,-30", "60,-30"}) + mline("W2", false, 1, {"30,-50", "30,-33"})
            + "-MLEDIT\nOT\n31,-45\n10,-29\n\n"  // the stem ends in the bar, which opens
            + mline("W5", true, 1, {"80,0", "120,0", "120,30", "80,30"}, true)
            + mline("W3", false, -2, {"0,60", "40,70", "80,60"}) + mline("W5", false, 1, {"90,60", "130,80", "160,60"});
    }

    struct Outcome {
        KaldoRun run;
        EzdxfReport check;
    };

    // Runs the command on the drawing between saves of the drawing and of
    // its exploded copy, then U and REDO with saves; checks the undo's
    // bytes and returns what ezdxf found for the transform.
    Outcome modify(const std::string& name, const std::string& setup, const std::string& command,
                   const std::string& transform, bool checkMlines = true)
    {
        const auto file = [&](const std::string& what) { return (kaldo.dir() / (name + "-" + what + ".dxf")).string(); };
        const std::string script = setup + "SAVEAS\n" + file("before") + "\nSAVEAS\nExploded\n\n" + file("before-x")
            + "\n" + command + "SAVEAS\n" + file("after") + "\nSAVEAS\nExploded\n\n" + file("after-x") + "\nU\nSAVEAS\n"
            + file("undone") + "\nREDO\nSAVEAS\n" + file("redone") + "\n";
        Outcome outcome;
        outcome.run = kaldo.runScript(script);
        EXPECT_EQ(outcome.run.exitCode, 0) << outcome.run.err;
        EXPECT_EQ(outcome.run.err, "") << name;
        EXPECT_EQ(fileText(file("undone")), fileText(file("before"))) << name << ": U";
        EXPECT_EQ(fileText(file("redone")), fileText(file("after"))) << name << ": REDO";
        EXPECT_NE(fileText(file("after")), fileText(file("before"))) << name;
        QStringList more{QString::fromStdString(file("after-x")), QString::fromStdString(transform)};
        if (checkMlines)
            more << QString::fromStdString(file("before")) << QString::fromStdString(file("after"));
        outcome.check = readWithEzdxf(file("before-x"), "ezdxf_transformed.py", more);
        return outcome;
    }

    static void expectTransformed(const Outcome& outcome, const std::string& name, int pieces)
    {
        ASSERT_TRUE(outcome.check.ran) << name << ": " << outcome.check.problem;
        const QJsonObject& report = outcome.check.file;
        EXPECT_EQ(auditFindings(outcome.check), "") << name;
        EXPECT_GE(report["pieces"].toInt(), pieces) << name;
        EXPECT_EQ(report["missing"].toArray(), QJsonArray()) << name;
        EXPECT_EQ(report["extra"].toArray(), QJsonArray()) << name;
        EXPECT_EQ(report["mlines"].toArray(), QJsonArray()) << name;
    }

    KaldoProcess kaldo;
    std::filesystem::path styles_;
};

// Every multiline of the drawing, by a window round all of it.
const std::string kWindow = "W\n-20,-70\n200,120\n\n";

}  // namespace

TEST_F(ModifySession, MoveRotateScaleAndMirrorTransformEveryMultilineExactly)
{
    const std::string drawing = this->drawing();
    Outcome moved = modify("move", drawing, "MOVE\n" + kWindow + "10,5\n47.5,-12.25\n",
                           R"({"kind": "move", "dx": 37.5, "dy": -17.25})");
    expectTransformed(moved, "move", 90);
    EXPECT_THAT(moved.run.out, HasSubstr("Specify opposite corner: 200,120\n6 found\nSelect objects: \n"
                                         "Specify base point or [Displacement] <Displacement>: 10,5\n"
                                         "Specify second point or <use first point as displacement>: 47.5,-12.25\n"));

    // A pick on empty ground and the opposite corner to its right: a window.
    expectTransformed(modify("rotate", drawing, "ROTATE\n-20,-70\n200,120\n\n30,20\n37\n",
                             R"({"kind": "rotate", "cx": 30, "cy": 20, "degrees": 37})"),
                      "rotate", 90);
    const Outcome scaled = modify("scale", drawing, "SCALE\n" + kWindow + "15,-5\n2.5\n",
                                  R"({"kind": "scale", "cx": 15, "cy": -5, "k": 2.5})");
    expectTransformed(scaled, "scale", 90);
    EXPECT_THAT(scaled.run.out, HasSubstr("Specify scale factor or [Copy/Reference] <1.0000>: 2.5\n"));
    expectTransformed(modify("scale by reference", drawing, "SCALE\n" + kWindow + "15,-5\nR\n4\n1.6\n",
                             R"({"kind": "scale", "cx": 15, "cy": -5, "k": 0.4})"),
                      "scale by reference", 90);
    const Outcome mirrored = modify("mirror", drawing, "MIRROR\n" + kWindow + "-10,-20\n50,90\nY\n",
                                    R"({"kind": "mirror", "ax": -10, "ay": -20, "bx": 50, "by": 90})");
    expectTransformed(mirrored, "mirror", 90);
    EXPECT_THAT(mirrored.run.out, HasSubstr("Specify first point of mirror line: -10,-20\n"
                                            "Specify second point of mirror line: 50,90\n"
                                            "Erase source objects? [Yes/No] <No>: Y\n"));
}

TEST_F(ModifySession, CopiesKeepTheOriginalsAndMirrorsInTheirPlace)
{
    const std::string drawing = this->drawing();
    // A crossing from right to left through everything: every multiline.
    const Outcome copied = modify("copy", drawing, "COPY\nC\n200,120\n-20,-70\n\n0,0\n100,150\n\n",
                                  R"({"kind": "move", "dx": 100, "dy": 150, "copies": true})", false);
    expectTransformed(copied, "copy", 180);
    EXPECT_THAT(copied.run.out, HasSubstr("6 found"));
    EXPECT_THAT(copied.run.out, HasSubstr("Specify second point or [Exit/Undo] <Exit>: \n"));
    expectTransformed(modify("mirror copy", drawing, "MIRROR\n" + kWindow + "0,100\n100,100\n\n",
                             R"({"kind": "mirror", "ax": 0, "ay": 100, "bx": 100, "by": 100, "copies": true})", false),
                      "mirror copy", 180);
    expectTransformed(modify("rotate copy", drawing, "ROTATE\n" + kWindow + "0,0\nC\n180\n",
                             R"({"kind": "rotate", "cx": 0, "cy": 0, "degrees": 180, "copies": true})", false),
                      "rotate copy", 180);
}

TEST_F(ModifySession, StretchMovesWhatLiesInTheCrossingAndKeepsTheRunsBehind)
{
    // Straight walls along x, cut, capped and filled; a crossing round their
    // right ends stretches them by 25 along themselves: every point of the
    // exploded walls inside the window moves by 25, every other stays (the
    // cuts lie outside it: runs stay measured from the ends that stayed).
    const std::string walls = "SETVAR\nPICKBOX\n1\n" + mline("W3", true, 1, {"0,100", "100,100"})
        + "-MLEDIT\nCS\n20,101.5\n30,101.5\n\n" + mline("W5", true, 1, {"0,130", "100,130"})
        + mline("W2", true, 2, {"0,160", "50,160", "100,160"}) + "-MLEDIT\nCS\n60,162\n75,162\n\n";
    const Outcome stretched = modify("stretch", walls, "STRETCH\nC\n200,170\n90,90\n\n0,0\n25,0\n",
                                     R"({"kind": "stretch", "box": [90, 90, 200, 170], "dx": 25, "dy": 0})", false);
    expectTransformed(stretched, "stretch", 30);
    EXPECT_THAT(stretched.run.out,
                HasSubstr("Select objects to stretch by crossing-window or crossing-polygon...\nSelect objects: C\n"));
    // A window that holds the walls whole moves them.
    expectTransformed(modify("stretch whole", walls, "STRETCH\nW\n-10,90\n200,170\n\n@\n@-5,7\n",
                             R"({"kind": "move", "dx": -5, "dy": 7})"),
                      "stretch whole", 30);
}

TEST_F(ModifySession, KindsTheHostDoesNotTransformAreNamedAndLeftAsTheyWere)
{
    // A line and, last, an unmodelled TEXT read from a file.
    const std::string drawing = "  0\nSECTION\n  2\nENTITIES\n  0\nLINE\n  5\n2B\n  8\n0\n 10\n0.0\n 20\n0.0\n 30\n0.0\n"
                                " 11\n10.0\n 21\n0.0\n 31\n0.0\n  0\nTEXT\n  5\n2A\n  8\n0\n 10\n5.0\n 20\n5.0\n 30\n0.0\n"
                                " 40\n2.5\n  1\nNOTE\n  0\nENDSEC\n  0\nEOF\n";
    const std::filesystem::path file = kaldo.writeFile("text.dxf", drawing);
    const KaldoRun run = kaldo.runScript("MOVE\nL\n5,0\n\n0,0\n10,0\nLIST\nW\n-1,-1\n30,30\n\n",
                                         {QString::fromStdString(file.string())});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("Not changed: 1 TEXT.\n"));
    EXPECT_THAT(run.out, HasSubstr("LINE  handle: 2B\n  from point: X=10.0000  Y=0.0000"));
}
