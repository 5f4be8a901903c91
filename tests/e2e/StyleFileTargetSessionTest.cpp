// What stands at the path of a style file or a dialog picture, through the
// real binary run as a user who keeps to file permissions: the style
// manager's Save refuses FIFOs, devices and files it cannot read whole
// (naming them, losing no style), writes the file in place (mode, links and
// a read-only folder are no obstacle), and Load and GRAB never wait on a
// FIFO or leave an empty picture on a full disk.
#include "FileText.h"
#include "KaldoProcess.h"
#include "TreePaths.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iterator>
#include <string>

#include <sys/stat.h>
#include <sys/sysmacros.h>

using ::testing::HasSubstr;
using ::testing::Not;

namespace {

namespace fs = std::filesystem;

// The manager's Save of its selected style (STANDARD) into path.
std::string saveInto(const fs::path& path)
{
    return "CLICK 1033\n" + path.string() + "\n";
}

}  // namespace

TEST(StyleFileTargetSession, SaveKeepsWhatItCannotReadAndWritesInPlace)
{
    KaldoProcess kaldo;
    kaldo.keepToFilePermissions();
    const fs::path dir = kaldo.dir();
    const std::string nineStyles = fileText(stagedPaths().supportDir / "KALDO.mln");
    ASSERT_EQ(QString::fromStdString(nineStyles).count("MLSTYLE"), 9);
    const std::string keep = "MLSTYLE\r\n2\r\n KEEP\r\n70\r\n 0\r\n3\r\n \r\n71\r\n 0\r\n0\r\n";

    const fs::path fifo = dir / "pipe.mln";
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0644), 0);
    // A device node of our own (the null device) where that may be made,
    // else a link to the system's.
    const fs::path device = dir / "device.mln";
    if (::mknod(device.c_str(), S_IFCHR | 0666, ::makedev(1, 3)) != 0)
        fs::create_symlink("/dev/null", device);
    const fs::path writeOnly = kaldo.writeFile("write-only.mln", nineStyles);
    fs::permissions(writeOnly, fs::perms::owner_write);
    const fs::path readOnly = kaldo.writeFile("read-only.mln", keep);
    fs::permissions(readOnly, fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
    fs::create_directory(dir / "closed");
    const fs::path inClosedFolder = kaldo.writeFile("closed/styles.mln", keep);
    fs::permissions(dir / "closed", fs::perms::owner_read | fs::perms::owner_exec);
    const fs::path linked = kaldo.writeFile("linked.mln", keep);
    fs::create_hard_link(linked, dir / "other-link.mln");
    fs::permissions(linked, fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);

    // Each refusal is a message box, closed with OK.
    const KaldoRun run = kaldo.runScript("MLSTYLE\n" + saveInto(fifo) + "CLICK 1\n" + saveInto(device) + "CLICK 1\n"
                                         + saveInto(writeOnly) + "CLICK 1\n" + saveInto(readOnly) + "CLICK 1\n"
                                         + saveInto(inClosedFolder) + saveInto(linked) + "CLICK 1\n");
    fs::permissions(dir / "closed", fs::perms::owner_all);
    fs::permissions(writeOnly, fs::perms::owner_read | fs::perms::owner_write);
    ASSERT_EQ(run.exitCode, 0) << run.err;

    // Neither the FIFO nor the device is waited on or replaced.
    EXPECT_THAT(run.out, HasSubstr("Message: cannot read '" + fifo.string() + "': it is a FIFO, not a regular file."));
    EXPECT_TRUE(fs::is_fifo(fifo));
    EXPECT_THAT(run.out, HasSubstr("Message: cannot read '" + device.string() + "': it is a device"));
    EXPECT_TRUE(fs::is_character_file(device));
    // A file whose old styles cannot be read keeps all nine.
    EXPECT_THAT(run.out, HasSubstr("Message: cannot read '" + writeOnly.string() + "': Permission denied."));
    EXPECT_EQ(fileText(writeOnly), nineStyles);
    // A read-only file stays as it was, read-only.
    EXPECT_THAT(run.out, HasSubstr("Message: cannot write '" + readOnly.string() + "': Permission denied."));
    EXPECT_EQ(fileText(readOnly), keep);
    EXPECT_EQ(fs::status(readOnly).permissions(),
              fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
    // Written in place: a writable file in a closed folder, a file with two
    // links (both see the new text, its mode stays). Nothing else appears.
    EXPECT_EQ(fileText(inClosedFolder).find(keep + "MLSTYLE\r\n2\r\n STANDARD\r\n"), 0u);
    const std::string merged = fileText(linked);
    EXPECT_EQ(merged.find(keep + "MLSTYLE\r\n2\r\n STANDARD\r\n"), 0u);
    EXPECT_EQ(fileText(dir / "other-link.mln"), merged);
    EXPECT_EQ(fs::hard_link_count(linked), 2u);
    EXPECT_EQ(fs::status(linked).permissions(),
              fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
    EXPECT_EQ(std::distance(fs::directory_iterator(dir / "closed"), {}), 1);
    EXPECT_EQ(QString::fromStdString(run.out).count("Message: "), 4) << run.out;
}

TEST(StyleFileTargetSession, LoadAndPicturesNeverWaitOnAFifoNorLeaveAnEmptyPicture)
{
    KaldoProcess kaldo;
    const fs::path dir = kaldo.dir();
    const fs::path fifo = dir / "pipe.mln";
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0644), 0);
    const fs::path fifoPicture = dir / "pipe.png";
    ASSERT_EQ(::mkfifo(fifoPicture.c_str(), 0644), 0);
    const fs::path picture = kaldo.writeFile("manager.png", "an old picture");

    // Load's file button naming the FIFO: a message, the list stays.
    const KaldoRun load = kaldo.runScript("MLSTYLE\nCLICK 1032\nCLICK 1056\n" + fifo.string()
                                          + "\nCLICK 1\nSHOW\nCLICK 2\nGRAB " + fifoPicture.string() + "\nCLICK 2\n");
    ASSERT_EQ(load.exitCode, 0) << load.err;
    EXPECT_THAT(load.out, HasSubstr("Message: cannot read '" + fifo.string() + "': it is a FIFO, not a regular file."));
    EXPECT_THAT(load.out, HasSubstr("WALL_4IN")) << "the default file's styles are still listed";
    EXPECT_THAT(load.out, HasSubstr("Dialog action refused: GRAB " + fifoPicture.string()));
    EXPECT_THAT(load.out, HasSubstr("it is a FIFO, not a regular file."));
    EXPECT_TRUE(fs::is_fifo(fifo));
    EXPECT_TRUE(fs::is_fifo(fifoPicture));

    // A full disk: the picture is refused and the old one stays whole.
    kaldo.limitFileSize(2000);
    const KaldoRun full = kaldo.runScript("MLSTYLE\nGRAB " + picture.string() + "\nCLICK 2\n");
    ASSERT_EQ(full.exitCode, 0) << full.err;
    EXPECT_THAT(full.out, HasSubstr("Dialog action refused: GRAB " + picture.string()));
    EXPECT_THAT(full.out, HasSubstr("File too large."));
    EXPECT_EQ(fileText(picture), "an old picture");
    for (const auto& entry : fs::directory_iterator(dir))
        EXPECT_THAT(entry.path().filename().string(), Not(HasSubstr("manager.png."))) << "no temporary stays";
}
