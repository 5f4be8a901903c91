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

TEST(DrawingSession, LineUndoCloseAndCancel)
{
    KaldoProcess kaldo;
    const KaldoRun run = kaldo.runScript(
        "LINE\n0,0\n10,0\n10,10\nu\n20,0\n@0,10\nc\n"
        "LINE\n100,0\n110,0\n110,10\n^C\n"
        "LIST\n10,9\n\n\nLIST\n15,0\n\nLIST\n20,5\n\nLIST\n10,5\n\nLIST\n110,5\n\nLIST\n105,0\n\n");
    EXPECT_EQ(run.exitCode, 0);
    // Undo took back 10,0 -> 10,10; Close joined 20,10 to 0,0.
    EXPECT_THAT(run.out, HasSubstr("Specify next point or [Close/Undo]: c\n"));
    EXPECT_THAT(run.out, HasSubstr(listedNothing("10,9")));
    EXPECT_THAT(run.out, HasSubstr(listedLine("X=10.0000  Y=0.0000  Z=0.0000", "X=20.0000  Y=0.0000  Z=0.0000")));
    EXPECT_THAT(run.out, HasSubstr(listedLine("X=20.0000  Y=0.0000  Z=0.0000", "X=20.0000  Y=10.0000  Z=0.0000")));
    EXPECT_THAT(run.out, HasSubstr(listedLine("X=20.0000  Y=10.0000  Z=0.0000", "X=0.0000  Y=0.0000  Z=0.0000")));
    // Cancel ends LINE and keeps both segments drawn before it.
    EXPECT_THAT(run.out, HasSubstr("*Cancel*"));
    EXPECT_THAT(run.out, HasSubstr(listedLine("X=110.0000  Y=0.0000  Z=0.0000", "X=110.0000  Y=10.0000  Z=0.0000")));
    EXPECT_THAT(run.out, HasSubstr(listedLine("X=100.0000  Y=0.0000  Z=0.0000", "X=110.0000  Y=0.0000  Z=0.0000")));
}

TEST(DrawingSession, EraseBySelection)
{
    KaldoProcess kaldo;
    const KaldoRun run = kaldo.runScript(
        "LINE\n0,0\n10,0\n\nLINE\n0,50\n10,50\n\nLINE\n0,100\n10,100\n\n"
        "ERASE\n5,0\n5,25\n5,0\n5,50\n\n"
        "ERASE\n5,100\n^C\n"
        "LIST\n5,0\n\n\nLIST\n5,50\n\n\nLIST\n5,100\n\n");
    EXPECT_EQ(run.exitCode, 0);
    // A pick that finds nothing starts a window: from there to 5,0 it holds
    // nothing.
    EXPECT_THAT(run.out, HasSubstr("Select objects: 5,25\nSpecify opposite corner: 5,0\n0 found\n"));
    EXPECT_THAT(run.out, HasSubstr("2 erased."));
    EXPECT_THAT(run.out, HasSubstr(listedNothing("5,0")));
    EXPECT_THAT(run.out, HasSubstr(listedNothing("5,50")));
    // A cancelled ERASE erases nothing.
    EXPECT_THAT(run.out, HasSubstr(listedLine("X=0.0000  Y=100.0000  Z=0.0000", "X=10.0000  Y=100.0000  Z=0.0000")));
}

TEST(DrawingSession, UcsRotationChangesWhereTypedPointsLand)
{
    KaldoProcess kaldo;
    const KaldoRun run = kaldo.runScript(
        "UCS\nZ\n90\nLINE\n10,0\n20,0\n\nLIST\n15,0\n\n"
        "UCS\nz\n\nLINE\n1,1\n2,1\n\n"
        "UCS\n\nLIST\n0,15\n\nLIST\n-1.5,-1\n\n"
        "UCS\nZ\n30\nUCS\nW\nLINE\n0,0\n5,0\n\nLIST\n2,0\n\n");
    EXPECT_EQ(run.exitCode, 0);
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

TEST(DrawingSession, EnterRepeatsTheLastCommandAndUnknownNamesAreReported)
{
    KaldoProcess kaldo;
    const KaldoRun run = kaldo.runScript("\nLINE\n0,0\n1,0\n\n\n5,5\n6,5\n\nfrob\n\n7,7\n8,7\n\nLIST\n5.5,5\n\nLIST\n7.5,7\n\n");
    EXPECT_EQ(run.exitCode, 0);
    // Enter before any command does nothing.
    EXPECT_THAT(run.out, HasSubstr("Command: \nCommand: LINE\n"));
    EXPECT_THAT(run.out, HasSubstr("Specify next point or [Undo]: \nCommand: \nSpecify first point: 5,5\n"));
    EXPECT_THAT(run.out, HasSubstr(listedLine("X=5.0000  Y=5.0000  Z=0.0000", "X=6.0000  Y=5.0000  Z=0.0000")));
    // An unknown name is not remembered: Enter after it repeats LINE.
    EXPECT_THAT(run.out, HasSubstr("Unknown command \"FROB\". Type COMMANDS to list the commands.\nCommand: \nSpecify first point: 7,7\n"));
    EXPECT_THAT(run.out, HasSubstr(listedLine("X=7.0000  Y=7.0000  Z=0.0000", "X=8.0000  Y=7.0000  Z=0.0000")));
    EXPECT_THAT(run.out, Not(HasSubstr("Unknown command \"LINE\"")));
}
