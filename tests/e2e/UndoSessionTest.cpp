// U, UNDO and REDO through the real binary. Every command that changes the
// drawing, host and module alike, is saved before and after it runs, after
// U and after REDO: the file after U is the file before, byte for byte, and
// the file after REDO the file after. Then counts, marks, an empty history,
// a new command clearing what could be redone, undo across SAVE, and OPEN
// starting a new history.
#include "FileText.h"
#include "KaldoProcess.h"
#include "MleditScripts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <sstream>
#include <string>

using ::testing::HasSubstr;
using ::testing::Not;

namespace {

// Whether every handle (group 5) of a saved drawing is given once.
bool handlesUnique(const std::string& dxf)
{
    std::istringstream in(dxf);
    std::set<std::string> handles;
    std::string code, value;
    while (std::getline(in, code) && std::getline(in, value))
        if (code == "  5" && !handles.insert(value).second)
            return false;
    return !handles.empty();
}

struct Case {
    const char* name;     // the step's name as U and REDO print it
    std::string setup;    // commands before the first save
    std::string command;  // the command taken back and restored
};

// A style WALL made from STANDARD in the style manager, with a third element.
const std::string kMakeWall = "MLSTYLE\nCLICK 1028\nTEXT 1035 WALL\nCLICK 1\nCLICK 1051\nTEXT 1050 0.25\nCLICK 1\nCLICK 1\n";

}  // namespace

TEST(UndoSession, EveryCommandTakenBackAndRestoredByteForByte)
{
    const std::string bar = kSetup + mline({"0,0", "100,0"});
    const std::vector<Case> cases = {
        {"LINE", "", "LINE\n0,0\n100,0\n100,50\n\n"},
        // Cancelled after two lines: they stay, and are one step.
        {"LINE", "", "LINE\n0,0\n100,0\n100,50\n^C\n"},
        {"ERASE", "LINE\n0,0\n100,0\n\nLINE\n0,20\n100,20\n\n", "ERASE\n50,0\n50,20\n\n"},
        {"MLINE", kMakeWall, "MLINE\nST\nWALL\nJ\nB\nS\n2\n0,0\n100,0\n100,50\nC\n"},
        {"-MLEDIT", kCrossingPair, "-MLEDIT\nCC\n20,5\n45,30\n\n"},
        // Two edits, the first taken back by the tool's own Undo: one step.
        {"-MLEDIT", kCrossingPair, "-MLEDIT\nOC\n20,5\n45,30\nU\n20,-5\n55,-30\n\n"},
        {"-MLEDIT", bar + mline({"50,-50", "50,-10"}), "-MLEDIT\nCT\n55,-30\n20,5\n\n"},
        {"-MLEDIT", bar, "-MLEDIT\nAV\n40,5\n\n"},
        {"-MLEDIT", bar, "-MLEDIT\nCS\n20,5\n30,-5\n\n"},
        {"MLSTYLE", "", kMakeWall},
        {"MLSTYLE", kMakeWall,
         "MLSTYLE\nSELECT 1021 WALL\nCLICK 1029\nCLICK 1054\nCLICK 1\nCLICK 1026\nCLICK 1030\nTEXT 1060 BRICK\nCLICK 1\nCLICK 1\n"},
        {"MLSTYLE", kMakeWall, "MLSTYLE\nSELECT 1021 WALL\nCLICK 1031\nCLICK 6\nCLICK 1\n"},
        {"EXPLODE", bar, "EXPLODE\n20,5\n\n"},
        {"SETVAR", "", "SETVAR\nCMLSCALE\n3\n"},
        {"CMLJUST", "", "CMLJUST\n2\n"},
        {"UCS", "", "UCS\nZ\n30\n"},
    };
    KaldoProcess kaldo;
    for (std::size_t i = 0; i < cases.size(); ++i) {
        const Case& c = cases[i];
        const auto file = [&](const char* stage) { return kaldo.dir() / (std::to_string(i) + stage + ".dxf"); };
        const auto save = [&](const char* stage) { return "SAVEAS\n" + file(stage).string() + "\n"; };
        const KaldoRun run = kaldo.runScript(c.setup + save("before") + c.command + save("after") + "U\n"
                                             + save("undone") + "REDO\n" + save("redone"));
        ASSERT_EQ(run.exitCode, 0) << run.err;
        const std::string before = fileText(file("before"));
        const std::string after = fileText(file("after"));
        ASSERT_FALSE(before.empty()) << c.command;
        EXPECT_NE(before, after) << c.command << " changed nothing";
        EXPECT_EQ(fileText(file("undone")), before) << c.command;
        EXPECT_EQ(fileText(file("redone")), after) << c.command;
        EXPECT_THAT(run.out, HasSubstr(std::string("\n") + c.name + " undone.\n")) << c.command;
        EXPECT_THAT(run.out, HasSubstr(std::string("\n") + c.name + " redone.\n")) << c.command;
        EXPECT_EQ(c.command.find("\nU\n") == std::string::npos,
                  run.out.find("The last edit was undone.") == std::string::npos) << c.command;
    }
}

TEST(UndoSession, CountsMarksRedoSaveAndOpen)
{
    KaldoProcess kaldo;
    const auto file = [&](const std::string& name) { return kaldo.dir() / (name + ".dxf"); };
    const auto save = [&](const std::string& name) { return "SAVEAS\n" + file(name).string() + "\n"; };
    const auto line = [](int y) { return "LINE\n0," + std::to_string(y) + "\n100," + std::to_string(y) + "\n\n"; };

    // Nothing to take back or restore yet; then three lines, a mark, two
    // more. Back returns to the mark, REDO restores both; UNDO 2 takes them
    // back again, and U the third line (with SAVE between: SAVE is no step).
    const std::string script = "U\nREDO\n" + save("empty") + line(0) + save("one") + line(10) + line(20)
                               + save("three") + "UNDO\nM\n" + line(30) + "MLINE\n0,40\n100,40\n\n" + save("five")
                               + "UNDO\nB\n" + save("back") + "REDO\n" + save("redone") + "UNDO\n2\n"
                               + save("two") + "U\n" + "U\nU\n" + save("none") + "U\n"
                               + "REDO\n" + line(50) + "REDO\n" + "U\nLIST\n50,50\n\n\nREDO\n" + save("last")
                               // OPEN starts a new history.
                               + "OPEN\n" + file("three").string() + "\nU\n";
    const KaldoRun run = kaldo.runScript(script);
    ASSERT_EQ(run.exitCode, 0) << run.err;

    EXPECT_EQ(fileText(file("back")), fileText(file("three")));
    EXPECT_EQ(fileText(file("redone")), fileText(file("five")));
    EXPECT_EQ(fileText(file("two")), fileText(file("three")));
    EXPECT_EQ(fileText(file("none")), fileText(file("empty")));
    EXPECT_NE(fileText(file("last")), fileText(file("none")));

    const std::string out = run.out;
    EXPECT_THAT(out, HasSubstr("Command: U\nNothing to undo.\nCommand: REDO\nNothing to redo.\n"));
    EXPECT_THAT(out, HasSubstr("Enter the number of operations to undo or [Mark/Back] <1>: B\n"
                               "MLINE undone.\nLINE undone.\n"));
    EXPECT_THAT(out, HasSubstr("Command: REDO\nLINE redone.\nMLINE redone.\n"));
    EXPECT_THAT(out, HasSubstr("<1>: 2\nMLINE undone.\nLINE undone.\n"));
    // Three lines were drawn; the fourth U finds nothing (the mark went
    // with Back). REDO restores the last line taken back; after a new line
    // there is nothing to redo; LIST, which changes nothing, keeps it.
    EXPECT_THAT(out, HasSubstr("Command: U\nLINE undone.\nCommand: U\nLINE undone.\nCommand: U\nLINE undone.\n"));
    EXPECT_THAT(out, HasSubstr("Command: U\nNothing to undo.\nCommand: REDO\nLINE redone.\nCommand: LINE"));
    EXPECT_THAT(out, HasSubstr("Command: REDO\nNothing to redo.\nCommand: U\nLINE undone.\nCommand: LIST"));
    EXPECT_THAT(out, HasSubstr("Command: REDO\nLINE redone.\nCommand: SAVEAS"));
    EXPECT_THAT(out, HasSubstr("\nOpened \"" + file("three").string() + "\".\nCommand: U\nNothing to undo.\n"));
    EXPECT_THAT(out, Not(HasSubstr("SAVEAS undone")));

    // The first save of a new drawing gives its blocks records of their own;
    // a line taken back from before it must not hand their handles out again.
    const KaldoRun after = kaldo.runScript(line(0) + save("first") + "U\n" + line(10) + save("again"));
    ASSERT_EQ(after.exitCode, 0) << after.err;
    EXPECT_TRUE(handlesUnique(fileText(file("first"))));
    EXPECT_TRUE(handlesUnique(fileText(file("again"))));
}
