// What kaldo saves, kaldo opens: drawings other programs wrote with faults
// open repaired and say what was repaired, and nothing that is not a finite
// number enters a drawing, so that every drawing stays savable. (Every
// drawing these tests leave is checked again when KaldoProcess goes.)
#include "FileText.h"
#include "KaldoProcess.h"
#include "TreePaths.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

using ::testing::HasSubstr;
using ::testing::Not;

namespace {

// A file of the test data copied into the session's folder.
std::string copied(const KaldoProcess& kaldo, const std::string& data)
{
    const std::filesystem::path from = sourceDir() / "tests/data" / data;
    return kaldo.writeFile(from.filename().string(), fileText(from)).string();
}

}  // namespace

TEST(ReopenSession, DrawingsWithFaultsOpenRepairedAndSaveToFilesThatReopen)
{
    KaldoProcess kaldo;
    const std::string missing = copied(kaldo, "drawings/mline-style-missing.dxf");
    KaldoRun run = kaldo.runScript("OPEN\n" + missing + "\nSAVE\n");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("Opened \"" + missing + "\".\n"
                                   "Repaired: 3 multilines point to no multiline style; now they use STANDARD.\n"
                                   "Repaired: 1 multiline lists another number of elements than its style; now laid "
                                   "out anew in it, every element drawn whole.\n"));
    EXPECT_THAT(run.out, HasSubstr("Saved \"" + missing + "\"."));
    run = kaldo.runScript("", {QString::fromStdString(missing)});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, Not(HasSubstr("Repaired")));

    const std::string cases = copied(kaldo, "drawings/style-keys-differ-in-case.dxf");
    run = kaldo.runScript("SAVE\n", {QString::fromStdString(cases)});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("Repaired: line 269: the dictionary entry \"WALL\" repeats a name of the "
                                   "dictionary (case aside); it is kept as \"WALL_2\".\n"));
    run = kaldo.runScript("MLINE\nST\n?\n^C\n", {QString::fromStdString(cases)});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("WALL_2"));

    // New objects of a drawing whose handle seed stands at the top take
    // handles a file may hold, save after save.
    const std::string top = copied(kaldo, "drawings/handle-seed-at-the-top.dxf");
    for (int i = 0; i < 3; ++i) {
        run = kaldo.runScript("LINE\n0,0\n" + std::to_string(i) + ",5\n\nSAVE\n", {QString::fromStdString(top)});
        ASSERT_EQ(run.exitCode, 0) << i << run.err;
        EXPECT_THAT(run.out, HasSubstr("Saved")) << i;
    }
}

TEST(ReopenSession, NothingThatIsNotFiniteBlocksSaving)
{
    KaldoProcess kaldo;
    copied(kaldo, "mln/cap-angle-1e308.mln");
    copied(kaldo, "mln/colour-name-without-book.mln");
    const std::filesystem::path styles = kaldo.dir() / "styles.dxf";
    KaldoRun run = kaldo.runScript("MLINE\nST\nWIDE_CAP\ncap-angle-1e308\n0,0\n10,0\n\n"
                                   "MLINE\nST\nNAMED\ncolour-name-without-book\n0,5\n10,5\n\n"
                                   "SAVEAS\n" + styles.string() + "\n");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("Saved \"" + styles.string() + "\"."));
    EXPECT_THAT(fileText(styles), HasSubstr("\n 51\n1e+308\n"));
    EXPECT_THAT(fileText(styles), HasSubstr("\n430\nFOREST\n"));
    // A lone carriage return of the style file ends no line of the drawing.
    EXPECT_THAT(fileText(styles), HasSubstr("\n  3\ntwo lines\n"));

    // Editing multilines whose elements lie 1e308 from their axis would
    // overflow: each tool leaves them as they were, and the drawing saves.
    const std::string huge = copied(kaldo, "drawings/style-offsets-of-1e308.dxf");
    run = kaldo.runScript("-MLEDIT\nAV\n20,0\n\n-MLEDIT\nCT\n50,-30\n20,0\n\n-MLEDIT\nCJ\n20,0\n50,-30\n\nSAVE\n",
                          {QString::fromStdString(huge)});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    const std::string leftAsItWas = " is left as it was: the edit would give it numbers beyond the largest.\n";
    EXPECT_THAT(run.out, HasSubstr("Select mline: 20,0\nThe multiline 30" + leftAsItWas));
    EXPECT_THAT(run.out, HasSubstr("Select second mline: 20,0\nThe multiline 31" + leftAsItWas));
    EXPECT_THAT(run.out, HasSubstr("Select second mline: 50,-30\nThe multiline 30" + leftAsItWas + "The multiline 31"
                                   + leftAsItWas));
    EXPECT_THAT(run.out, HasSubstr("Saved \"" + huge + "\"."));

    // The R12 copy of a circle that reaches to the largest number.
    const std::string circle = copied(kaldo, "drawings/circle-of-radius-1e308.dxf");
    const std::filesystem::path r12 = kaldo.dir() / "circle-r12.dxf";
    run = kaldo.runScript("SAVEAS\nExploded\nR12\n" + r12.string() + "\n", {QString::fromStdString(circle)});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("Saved \"" + r12.string() + "\" with 0 multilines exploded."));
}
