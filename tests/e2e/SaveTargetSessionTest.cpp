// SAVE and SAVEAS respect what stands at the path: a symbolic link is
// followed, a FIFO or a folder is refused, the old file's mode stays, a
// read-only file is replaced only after Yes, the user's files beside the
// target stay, and long file names work.
#include "FileText.h"
#include "KaldoProcess.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include <sys/stat.h>

using ::testing::HasSubstr;

namespace {

namespace fs = std::filesystem;

fs::perms permissions(const fs::path& path)
{
    return fs::status(path).permissions();
}

}  // namespace

TEST(SaveTargetSession, SavingRespectsWhatStandsAtThePath)
{
    KaldoProcess kaldo;
    const fs::path dir = kaldo.dir();
    const fs::path real = kaldo.writeFile("real.dxf", "old");
    fs::create_symlink("real.dxf", dir / "link.dxf");
    ASSERT_EQ(mkfifo((dir / "pipe.dxf").c_str(), 0644), 0);
    const fs::path secret = kaldo.writeFile("secret.dxf", "old");
    fs::permissions(secret, fs::perms::owner_read | fs::perms::owner_write);
    const fs::path locked = kaldo.writeFile("locked.dxf", "old");
    fs::permissions(locked, fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
    // Files of the user's beside the target, named as a save's temporary
    // might be: only temporaries of a save that died are removed (the
    // host's file tests make those).
    const fs::path backup = kaldo.writeFile(".stale.dxf.backup", "the user's");
    const fs::path copy = kaldo.writeFile(".stale.dxf.Ab12Cd", "the user's");
    fs::create_directory(dir / "folder");
    const fs::path longName = dir / (std::string(246, 'n') + ".dxf");

    const auto saveAs = [&](const fs::path& path, const std::string& answer = {}) {
        return "SAVEAS\n" + path.string() + "\n" + answer;
    };
    const KaldoRun run = kaldo.runScript("LINE\n0,0\n10,0\n\n" + saveAs(dir / "link.dxf") + saveAs(dir / "pipe.dxf")
                                         + saveAs(secret) + saveAs(locked, "N\n") + saveAs(dir / "stale.dxf")
                                         + saveAs(dir / "folder") + saveAs(longName) + saveAs(locked, "Y\n"));
    ASSERT_EQ(run.exitCode, 0) << run.err;

    // The link stays a link; its target holds the drawing.
    EXPECT_TRUE(fs::is_symlink(dir / "link.dxf"));
    EXPECT_THAT(fileText(real), HasSubstr("AcDbLine"));
    // A FIFO is no file to save in, nor is a folder (no "folder.dxf" either).
    EXPECT_THAT(run.out, HasSubstr("pipe.dxf': it is a FIFO, not a regular file."));
    EXPECT_TRUE(fs::is_fifo(dir / "pipe.dxf"));
    EXPECT_THAT(run.out, HasSubstr("folder': it is a folder."));
    EXPECT_FALSE(fs::exists(dir / "folder.dxf"));
    // The private file stays private.
    EXPECT_THAT(fileText(secret), HasSubstr("AcDbLine"));
    EXPECT_EQ(permissions(secret), fs::perms::owner_read | fs::perms::owner_write);
    // The read-only file: No keeps it, Yes replaces it and it stays read-only.
    EXPECT_THAT(run.out, HasSubstr("is read-only. Replace it? [Yes/No] <No>: N\n"
                                   "The drawing was not saved: \"" + locked.string() + "\" stays as it was.\n"));
    EXPECT_THAT(run.out, HasSubstr("<No>: Y\nSaved \"" + locked.string() + "\"."));
    EXPECT_THAT(fileText(locked), HasSubstr("AcDbLine"));
    EXPECT_EQ(permissions(locked), fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
    EXPECT_EQ(fileText(backup), "the user's");
    EXPECT_EQ(fileText(copy), "the user's");
    EXPECT_THAT(fileText(dir / "stale.dxf"), HasSubstr("AcDbLine"));
    EXPECT_THAT(fileText(longName), HasSubstr("AcDbLine"));
}
