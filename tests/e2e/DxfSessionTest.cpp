// Drawings on disk through the real binary: the drawing argument, a script,
// --save, OPEN and SAVEAS with names typed on the command line, and files
// that cannot be read or written.
#include "FileText.h"
#include "KaldoProcess.h"
#include "ListedMlines.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

using ::testing::HasSubstr;
using ::testing::Not;

namespace {

QString str(const std::filesystem::path& path)
{
    return QString::fromStdString(path.string());
}

// The ENTITIES section of a saved drawing.
std::string entitiesOf(const std::string& dxf)
{
    const std::size_t begin = dxf.find("ENTITIES\n");
    return dxf.substr(begin, dxf.find("ENDSEC\n", begin) - begin);
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

    // OPEN of a broken file keeps the drawing in hand (its changes not to
    // be saved), which still saves.
    const std::filesystem::path saved = kaldo.dir() / "kept.dxf";
    run = kaldo.runScript("LINE\n0,0\n10,0\n\nOPEN\n" + broken.string() + "\nNo\nLIST\n5,0\n\nSAVEAS\n" + saved.string()
                          + "\n");
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

// OPEN and NEW on a drawing with unsaved changes ask on the command line,
// as the window asks: Cancel keeps everything, No drops the changes, Yes
// (also Enter) saves them first, to the drawing's file or, for a new
// drawing, to a file asked for as SAVE asks.
TEST(DxfSession, OpenAndNewAskToSaveChanges)
{
    KaldoProcess kaldo;
    const std::filesystem::path other = kaldo.dir() / "other.dxf";
    KaldoRun run = kaldo.runScript("LINE\n0,0\n10,0\n\n", {"--save", str(other)});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    const std::string open = "OPEN\n" + other.string() + "\n";
    const std::string question = "Save changes to Drawing1.dxf? [Yes/No/Cancel] <Yes>: ";

    run = kaldo.runScript("LINE\n0,0\n0,10\n\n" + open + "Cancel\nLIST\n0,5\n\n" + open + "No\nLIST\n5,0\n\n" + open);
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr(question + "Cancel\nOpen cancelled.\n"));
    EXPECT_THAT(run.out, HasSubstr(listedLine("X=0.0000  Y=0.0000  Z=0.0000", "X=0.0000  Y=10.0000  Z=0.0000")));
    EXPECT_THAT(run.out, HasSubstr(question + "No\nOpened \"" + other.string() + "\"."));
    EXPECT_THAT(run.out, HasSubstr(listedLine("X=0.0000  Y=0.0000  Z=0.0000", "X=10.0000  Y=0.0000  Z=0.0000")));
    EXPECT_EQ(run.out.find("Save changes", run.out.rfind("Command: OPEN")), std::string::npos)
        << "a drawing just opened holds no changes";

    const std::filesystem::path named = kaldo.dir() / "new.dxf";
    run = kaldo.runScript("LINE\n0,0\n0,10\n\n" + open + "\n" + named.string() + "\n");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr(question + "\nEnter file name <Drawing1.dxf>: "));
    EXPECT_THAT(run.out, HasSubstr("Saved \"" + named.string() + "\".\nOpened"));
    EXPECT_THAT(fileText(named), HasSubstr("\n 11\n0\n 21\n10\n"));

    run = kaldo.runScript("LINE\n0,20\n5,20\n\n" + open + "y\nLIST\n5,0\n", {str(named)});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("Save changes to new.dxf? [Yes/No/Cancel] <Yes>: y\nSaved \"" + named.string()
                                   + "\".\nOpened"));
    EXPECT_THAT(fileText(named), HasSubstr("\n 11\n5\n 21\n20\n"));

    // NEW: the drawing opened, with a line added, stays on Cancel; No
    // leaves an empty drawing without a file.
    run = kaldo.runScript("LINE\n0,20\n5,20\n\nNEW\nCancel\nLIST\nL\n\nNEW\nNo\nLIST\nL\n\nSAVE\n", {str(other)});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("Save changes to other.dxf? [Yes/No/Cancel] <Yes>: Cancel\nNew drawing cancelled.\n"));
    EXPECT_THAT(run.out, HasSubstr(listedLine("X=0.0000  Y=20.0000  Z=0.0000", "X=5.0000  Y=20.0000  Z=0.0000")));
    EXPECT_THAT(run.out, HasSubstr("Save changes to other.dxf? [Yes/No/Cancel] <Yes>: No\nNew drawing.\n"
                                   "Command: LIST\nSelect objects: L\n0 found\n"));
    EXPECT_THAT(run.out, HasSubstr("Command: SAVE\nEnter file name <Drawing1.dxf>: "));
}

// Records of a kind the host only keeps, given without handles, are held
// together as they are read, yet each is an entity of its own to the user:
// Last takes them one by one from the end, U brings each back, listing
// one changes nothing, and the file saved is the one every record read
// as an object of its own gives (consecutive new handles; a later record
// naming one of them gets a new one).
TEST(DxfSession, RecordsKeptWithoutHandlesAreTakenOneByOne)
{
    KaldoProcess kaldo;
    std::string entities;
    for (const char* value : {"a", "b", "c"})
        entities += std::string("0\nX\n100\nAcDbEntity\n8\n0\n1\n") + value + "\n";
    entities += "0\nY\n5\n108\n100\nAcDbEntity\n8\n0\n";
    for (const char* value : {"d", "e", "f", "g", "h"})
        entities += std::string("0\nX\n100\nAcDbEntity\n8\n0\n1\n") + value + "\n";
    const std::filesystem::path drawing = kaldo.writeFile(
        "records.dxf", "0\nSECTION\n2\nHEADER\n9\n$HANDSEED\n5\n100\n0\nENDSEC\n0\nSECTION\n2\nENTITIES\n" + entities
                           + "0\nENDSEC\n0\nEOF\n");
    const std::filesystem::path saved = kaldo.dir() / "saved.dxf";
    KaldoRun run = kaldo.runScript("LIST\nL\n\nOPEN\n" + drawing.string() + "\n", {"--save", str(saved), str(drawing)});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("X  handle: 10F\n"));
    EXPECT_THAT(run.out, Not(HasSubstr("Save changes"))) << "listing changes nothing";
    const std::string asRead = fileText(saved);
    const std::string readBack = entitiesOf(asRead);
    std::string handles;
    for (std::size_t at = 0; (at = readBack.find("\n  5\n", at)) != std::string::npos; at += 5)
        handles += readBack.substr(at + 5, readBack.find('\n', at + 5) - at - 5) + " ";
    EXPECT_EQ(handles, "107 108 109 10A 10B 10C 10D 10E 10F ");

    const std::filesystem::path erased = kaldo.dir() / "erased.dxf";
    const std::filesystem::path undone = kaldo.dir() / "undone.dxf";
    // A line drawn and taken back after the records were split apart
    // leaves every one of them in place.
    run = kaldo.runScript("LINE\n0,0\n1,1\n\nERASE\nL\n\nERASE\nL\n\nERASE\nL\n\nLIST\nL\n\nSAVEAS\n"
                              + erased.string() + "\nU\nLIST\nL\n\nU\nU\nU\nU\nSAVEAS\n" + undone.string() + "\n",
                          {str(drawing)});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("Command: LIST\nSelect objects: L\n1 found\nSelect objects: \nX  handle: 10D\n"));
    EXPECT_THAT(run.out, HasSubstr("ERASE undone.\nCommand: LIST\nSelect objects: L\n1 found\nSelect objects: \n"
                                   "X  handle: 10E\nCommand: U\nERASE undone.\nCommand: U\nERASE undone.\n"
                                   "Command: U\nLINE undone.\nCommand: U\nNothing to undo.\n"));
    EXPECT_THAT(fileText(erased), HasSubstr("\n  1\nf\n"));
    EXPECT_THAT(fileText(erased), Not(HasSubstr("\n  1\ng\n")));
    EXPECT_EQ(entitiesOf(fileText(undone)), entitiesOf(asRead));
}
