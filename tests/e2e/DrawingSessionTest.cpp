// Host commands that draw and edit in a real session: LINE with Undo, Close
// and cancel, ERASE by pick, UCS rotation seen through LIST in world
// coordinates, and Enter repeating the last command.
#include "KaldoProcess.h"
#include "ListedMlines.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using ::testing::HasSubstr;
using ::testing::Not;

namespace {

// A LIST whose pick found nothing: the pick is a window's first corner, and
// Enter there finds nothing.
std::string listedNothing(const std::string& pick)
{
    return "Command: LIST\nSelect objects: " + pick + "\nSpecify opposite corner: \n0 found\nSelect objects: \nCommand: ";
}

}  // namespace

// One session: Enter before any command, LINE with Undo, Close and cancel,
// Enter repeating LINE (and not an unknown name), ERASE by pick, UCS
// rotations; each part far from the others.
TEST(DrawingSession, LinesErasureUcsAndRepeatedCommands)
{
    KaldoProcess kaldo;
    const KaldoRun run = kaldo.runScript(
        "\nLINE\n500,0\n501,0\n\n\n505,5\n506,5\n\nfrob\n\n507,7\n508,7\n\nLIST\n505.5,5\n\nLIST\n507.5,7\n\n"
        "LINE\n0,200\n10,200\n10,210\nu\n20,200\n@0,10\nc\n"
        "LINE\n100,200\n110,200\n110,210\n^C\n"
        "LIST\n10,209\n\n\nLIST\n15,200\n\nLIST\n20,205\n\nLIST\n10,205\n\nLIST\n110,205\n\nLIST\n105,200\n\n"
        "LINE\n0,1000\n10,1000\n\nLINE\n0,1050\n10,1050\n\nLINE\n0,1100\n10,1100\n\n"
        "ERASE\n5,1000\n5,1025\n5,1000\n5,1050\n\nERASE\n5,1100\n^C\n"
        "LIST\n5,1000\n\n\nLIST\n5,1050\n\n\nLIST\n5,1100\n\n"
        "UCS\nZ\n90\nLINE\n10,0\n20,0\n\nLIST\n15,0\n\n"
        "UCS\nz\n\nLINE\n1,1\n2,1\n\n"
        "UCS\n\nLIST\n0,15\n\nLIST\n-1.5,-1\n\n"
        "UCS\nZ\n30\nUCS\nW\nLINE\n0,0\n5,0\n\nLIST\n2,0\n\n");
    EXPECT_EQ(run.exitCode, 0);
    // Enter before any command does nothing; after a command it repeats it.
    EXPECT_THAT(run.out, HasSubstr("Command: \nCommand: LINE\n"));
    EXPECT_THAT(run.out, HasSubstr("Specify next point or [Undo]: \nCommand: \nSpecify first point: 505,5\n"));
    EXPECT_THAT(run.out, HasSubstr(listedLine("X=505.0000  Y=5.0000  Z=0.0000", "X=506.0000  Y=5.0000  Z=0.0000")));
    // An unknown name is not remembered: Enter after it repeats LINE.
    EXPECT_THAT(run.out, HasSubstr("Unknown command \"FROB\". Type COMMANDS to list the commands.\nCommand: \n"
                                   "Specify first point: 507,7\n"));
    EXPECT_THAT(run.out, HasSubstr(listedLine("X=507.0000  Y=7.0000  Z=0.0000", "X=508.0000  Y=7.0000  Z=0.0000")));
    EXPECT_THAT(run.out, Not(HasSubstr("Unknown command \"LINE\"")));

    // Undo took back 10,200 -> 10,210; Close joined 20,210 to 0,200.
    EXPECT_THAT(run.out, HasSubstr("Specify next point or [Close/Undo]: c\n"));
    EXPECT_THAT(run.out, HasSubstr(listedNothing("10,209")));
    EXPECT_THAT(run.out, HasSubstr(listedLine("X=10.0000  Y=200.0000  Z=0.0000", "X=20.0000  Y=200.0000  Z=0.0000")));
    EXPECT_THAT(run.out, HasSubstr(listedLine("X=20.0000  Y=200.0000  Z=0.0000", "X=20.0000  Y=210.0000  Z=0.0000")));
    EXPECT_THAT(run.out, HasSubstr(listedLine("X=20.0000  Y=210.0000  Z=0.0000", "X=0.0000  Y=200.0000  Z=0.0000")));
    // Cancel ends LINE and keeps both segments drawn before it.
    EXPECT_THAT(run.out, HasSubstr("*Cancel*"));
    EXPECT_THAT(run.out, HasSubstr(listedLine("X=110.0000  Y=200.0000  Z=0.0000", "X=110.0000  Y=210.0000  Z=0.0000")));
    EXPECT_THAT(run.out, HasSubstr(listedLine("X=100.0000  Y=200.0000  Z=0.0000", "X=110.0000  Y=200.0000  Z=0.0000")));

    // A pick that finds nothing starts a window: from there to 5,1000 it
    // holds nothing.
    EXPECT_THAT(run.out, HasSubstr("Select objects: 5,1025\nSpecify opposite corner: 5,1000\n0 found\n"));
    EXPECT_THAT(run.out, HasSubstr("2 erased."));
    EXPECT_THAT(run.out, HasSubstr(listedNothing("5,1000")));
    EXPECT_THAT(run.out, HasSubstr(listedNothing("5,1050")));
    // A cancelled ERASE erases nothing.
    EXPECT_THAT(run.out, HasSubstr(listedLine("X=0.0000  Y=1100.0000  Z=0.0000", "X=10.0000  Y=1100.0000  Z=0.0000")));

    const std::string rotated = listedLine("X=0.0000  Y=10.0000  Z=0.0000", "X=0.0000  Y=20.0000  Z=0.0000");
    // Picked in the rotated system at 15,0, then in the world at 0,15.
    const std::size_t first = run.out.find(rotated);
    ASSERT_NE(first, std::string::npos);
    EXPECT_NE(run.out.find(rotated, first + 1), std::string::npos);
    // A second Z rotation (default 90 degrees) turns the system upside down.
    EXPECT_THAT(run.out, HasSubstr(listedLine("X=-1.0000  Y=-1.0000  Z=0.0000", "X=-2.0000  Y=-1.0000  Z=0.0000")));
    // World puts the system back.
    EXPECT_THAT(run.out, HasSubstr(listedLine("X=0.0000  Y=0.0000  Z=0.0000", "X=5.0000  Y=0.0000  Z=0.0000")));
}
