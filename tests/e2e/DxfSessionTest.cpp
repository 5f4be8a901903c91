// Drawings on disk through the real binary: the drawing argument, a script,
// --save, OPEN and SAVEAS with names typed on the command line, and files
// that cannot be read or written.
#include "FileText.h"
#include "KaldoProcess.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

using ::testing::HasSubstr;

namespace {

QString str(const std::filesystem::path& path)
{
    return QString::fromStdString(path.string());
}

std::string listedLine(const std::string& from, const std::string& to)
{
    return "  from point: " + from + "\n    to point: " + to + "\n";
}

}  // namespace

TEST(DxfSession, DrawSaveOpenAndSaveAgain)
{
    KaldoProcess kaldo;
    const std::filesystem::path first = kaldo.dir() / "first.dxf";
    KaldoRun run = kaldo.runScript("LINE\n0,0\n10,0\n\n", {"--save", str(first)});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    ASSERT_THAT(fileText(first), HasSubstr("LINE"));

    // The drawing argument opens it; SAVEAS with FILEDIA 0 asks on the command line.
    const std::filesystem::path second = kaldo.dir() / "second";
    run = kaldo.runScript("SETVAR\nFILEDIA\n0\nLIST\n5,0\n\nLINE\n0,5\n10,5\n\nSAVEAS\n" + second.string() + "\n",
                          {str(first)});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr(listedLine("X=0.0000  Y=0.0000  Z=0.0000", "X=10.0000  Y=0.0000  Z=0.0000")));
    EXPECT_THAT(run.out, HasSubstr("Saved \"" + second.string() + ".dxf\"."));

    // OPEN reads it back in the same session; SAVE writes to its own file.
    run = kaldo.runScript("OPEN\n" + second.string() + ".dxf\nLIST\n5,5\n\nLINE\n0,9\n1,9\n\nSAVE\n");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr(listedLine("X=0.0000  Y=5.0000  Z=0.0000", "X=10.0000  Y=5.0000  Z=0.0000")));
    run = kaldo.runScript("LIST\n0.5,9\n\n", {str(second) + ".dxf"});
    EXPECT_THAT(run.out, HasSubstr(listedLine("X=0.0000  Y=9.0000  Z=0.0000", "X=1.0000  Y=9.0000  Z=0.0000")));
}

TEST(DxfSession, BadFilesAreRefusedAndTheDrawingStays)
{
    KaldoProcess kaldo;
    const std::filesystem::path broken = kaldo.writeFile("broken.dxf", "  0\nSECTION\n  2\nENTITIES\n  0\nLINE\n 10\nten\n");
    KaldoRun run = kaldo.runScript("", {str(broken)});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_THAT(run.err, HasSubstr("broken.dxf, line 8: group 10 needs a number, not \"ten\"."));

    // OPEN of a broken file keeps the drawing in hand, which still saves.
    const std::filesystem::path saved = kaldo.dir() / "kept.dxf";
    run = kaldo.runScript("LINE\n0,0\n10,0\n\nOPEN\n" + broken.string() + "\nLIST\n5,0\n\nSAVEAS\n" + saved.string() + "\n");
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out, HasSubstr("Cannot open the drawing: broken.dxf, line 8"));
    EXPECT_THAT(run.out, HasSubstr(listedLine("X=0.0000  Y=0.0000  Z=0.0000", "X=10.0000  Y=0.0000  Z=0.0000")));
    EXPECT_THAT(fileText(saved), HasSubstr("LINE"));

    // A save into a folder that does not exist says why and keeps the session.
    const std::string nowhere = (kaldo.dir() / "nowhere" / "x.dxf").string();
    run = kaldo.runScript("SAVEAS\n" + nowhere + "\n");
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out, HasSubstr("The drawing was not saved: cannot write '" + nowhere + "': No such file or directory."));
    run = kaldo.runScript("", {"--save", str(kaldo.dir() / "nowhere" / "x.dxf")});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_THAT(run.err, HasSubstr("the drawing was not saved"));
}
