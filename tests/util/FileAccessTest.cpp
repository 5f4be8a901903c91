// The host's one path for named files: what is no regular file is refused
// without waiting, a failed read is no end of file, a full disk is
// reported and leaves the old file whole, writing in place keeps mode and
// links, and the clean-up of a killed save's temporary takes nothing else.
#include "FileText.h"
#include "kaldo/util/FileAccess.h"
#include "kaldo/util/FileWriting.h"
#include "kaldo/util/SaveTemporary.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <algorithm>
#include <csignal>
#include <fstream>
#include <set>
#include <string>
#include <vector>

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

using ::testing::HasSubstr;

namespace {

namespace fs = std::filesystem;

void writeText(const fs::path& path, const std::string& text)
{
    std::ofstream(path, std::ios::binary) << text;
}

std::string errorOf(const std::function<void()>& action)
{
    try {
        action();
    } catch (const kaldo::FileError& e) {
        return e.what();
    }
    return {};
}

std::set<std::string> namesIn(const fs::path& folder)
{
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder))
        names.insert(entry.path().filename().string());
    return names;
}

// Writes of this process fail past limit bytes, as on a full disk, while
// it lives.
class FullDisk {
public:
    explicit FullDisk(rlim_t limit)
    {
        ::getrlimit(RLIMIT_FSIZE, &saved_);
        oldHandler_ = std::signal(SIGXFSZ, SIG_IGN);
        const rlimit small{limit, saved_.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &small);
    }
    ~FullDisk()
    {
        ::setrlimit(RLIMIT_FSIZE, &saved_);
        std::signal(SIGXFSZ, oldHandler_);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

private:
    rlimit saved_{};
    void (*oldHandler_)(int) = nullptr;
};

// Runs action in a child process and waits for it to end.
template <class Action>
void inChild(Action action)
{
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        action();
        ::_exit(0);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
}

}  // namespace

TEST(FileAccess, WhatIsNoRegularFileIsRefusedWithoutWaiting)
{
    QTemporaryDir dir;
    const fs::path folder = dir.path().toStdString();
    const fs::path fifo = folder / "pipe";
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0644), 0);
    fs::create_symlink("/dev/null", folder / "device");

    // Reading and writing a FIFO that nobody holds, a device and a folder.
    EXPECT_EQ(errorOf([&] { kaldo::readFile(fifo); }),
              "cannot read '" + fifo.string() + "': it is a FIFO, not a regular file.");
    EXPECT_THAT(errorOf([&] { kaldo::writeFileInPlace(fifo, "text"); }), HasSubstr("it is a FIFO"));
    EXPECT_THAT(errorOf([&] { kaldo::replaceFile(fifo, "text"); }), HasSubstr("it is a FIFO"));
    for (const fs::path& device : {fs::path("/dev/null"), folder / "device"}) {
        EXPECT_THAT(errorOf([&] { kaldo::readFile(device); }), HasSubstr("it is a device, not a regular file."));
        EXPECT_THAT(errorOf([&] { kaldo::writeFileInPlace(device, "text"); }), HasSubstr("it is a device"));
        EXPECT_THAT(errorOf([&] { kaldo::replaceFile(device, "text"); }), HasSubstr("it is a device"));
    }
    EXPECT_THAT(errorOf([&] { kaldo::readFile(folder); }), HasSubstr("it is a folder."));
    EXPECT_THAT(errorOf([&] { kaldo::writeFileInPlace(folder, "text"); }), HasSubstr("it is a folder."));
    EXPECT_TRUE(fs::is_fifo(fifo));
    EXPECT_TRUE(fs::is_symlink(folder / "device"));
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
    EXPECT_EQ(namesIn(folder), (std::set<std::string>{"pipe", "device"}));
}

TEST(FileAccess, AFailedReadIsNoEndOfFileAndAFullDiskIsReported)
{
    // Reading this process's memory from address 0 fails: a regular file
    // whose read reports an error.
    EXPECT_THAT(errorOf([] { kaldo::readFile("/proc/self/mem"); }),
                HasSubstr("cannot read '/proc/self/mem': Input/output error."));
    const kaldo::FileDescriptor full(::open("/dev/full", O_WRONLY | O_CLOEXEC));
    ASSERT_TRUE(full);
    EXPECT_EQ(errorOf([&] { kaldo::writeAll(full.get(), "text"); }), "No space left on device");

    QTemporaryDir dir;
    const fs::path folder = dir.path().toStdString();
    const fs::path replaced = folder / "picture.png";
    const fs::path inPlace = folder / "styles.mln";
    const std::string old(100, 'o');
    writeText(replaced, old);
    writeText(inPlace, old);
    fs::permissions(inPlace, fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
    {
        const FullDisk disk(1000);
        const std::string larger(5000, 'n');
        EXPECT_THAT(errorOf([&] { kaldo::replaceFile(replaced, larger); }),
                    HasSubstr("cannot write '" + replaced.string() + "': File too large."));
        EXPECT_THAT(errorOf([&] { kaldo::writeFileInPlace(inPlace, larger); }),
                    HasSubstr("cannot write '" + inPlace.string() + "': File too large."));
        EXPECT_THAT(errorOf([&] { kaldo::replaceFile(folder / "new.png", larger); }), HasSubstr("File too large."));
        EXPECT_THAT(errorOf([&] { kaldo::writeFileInPlace(folder / "new.mln", larger); }), HasSubstr("File too large."));
    }
    // The old files are whole, nothing new stays behind.
    EXPECT_EQ(fileText(replaced), old);
    EXPECT_EQ(fileText(inPlace), old);
    EXPECT_EQ(fs::status(inPlace).permissions(),
              fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
    EXPECT_EQ(namesIn(folder), (std::set<std::string>{"picture.png", "styles.mln"}));
}

// A file written in streams holds every byte written, in pieces that
// straddle its windows of 8 MB, while the windows two behind its end have
// left memory (where the file system's pages can leave it: not in tmpfs).
TEST(FileAccess, AStreamedFileLeavesMemoryBehindItsEnd)
{
    QTemporaryDir dir;
    const fs::path path = fs::path(dir.path().toStdString()) / "large.dxf";
    const kaldo::FileDescriptor fd(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
    ASSERT_TRUE(fd);
    constexpr std::size_t kWindow = std::size_t(8) << 20;
    std::string expected;
    for (char c = 'a'; expected.size() < 3 * kWindow + 1; ++c) {
        const std::string piece(kWindow / 3 + 1, c);
        kaldo::writeAllStreamed(fd.get(), piece);
        expected += piece;
    }
    EXPECT_EQ(fileText(path), expected);

    struct statfs where {};
    ASSERT_EQ(::fstatfs(fd.get(), &where), 0);
    if (where.f_type == TMPFS_MAGIC)
        GTEST_SKIP() << "tmpfs keeps its pages";
    // fileText read the file again: write its windows once more.
    ASSERT_EQ(::lseek(fd.get(), 0, SEEK_SET), 0);
    kaldo::writeAllStreamed(fd.get(), expected);
    void* const mapped = ::mmap(nullptr, expected.size(), PROT_READ, MAP_SHARED, fd.get(), 0);
    ASSERT_NE(mapped, MAP_FAILED);
    const std::size_t page = std::size_t(::sysconf(_SC_PAGESIZE));
    std::vector<unsigned char> resident((expected.size() + page - 1) / page);
    ASSERT_EQ(::mincore(mapped, expected.size(), resident.data()), 0);
    ::munmap(mapped, expected.size());
    const auto residentIn = [&](std::size_t window) {
        return std::count_if(resident.begin() + long(window * kWindow / page),
                             resident.begin() + long((window + 1) * kWindow / page),
                             [](unsigned char flags) { return flags & 1; });
    };
    EXPECT_EQ(residentIn(0), 0);
    EXPECT_GT(residentIn(2), 0);
}

TEST(FileAccess, WritingInPlaceKeepsModeAndLinks)
{
    QTemporaryDir dir;
    const fs::path folder = dir.path().toStdString();
    const fs::path file = folder / "styles.mln";
    writeText(file, "a much longer old text than the new one");
    fs::create_hard_link(file, folder / "linked.mln");
    fs::create_symlink("styles.mln", folder / "symbolic.mln");
    fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write);

    kaldo::writeFileInPlace(folder / "symbolic.mln", "new");
    EXPECT_EQ(fileText(file), "new");
    EXPECT_EQ(fileText(folder / "linked.mln"), "new");
    EXPECT_TRUE(fs::is_symlink(folder / "symbolic.mln"));
    EXPECT_EQ(fs::status(file).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    kaldo::writeFileInPlace(file, "longer than before, and again");
    EXPECT_EQ(fileText(folder / "linked.mln"), "longer than before, and again");
    // A file without write permission: the system decides whether it may be
    // written (root may); either way it keeps its mode.
    const fs::path readOnly = folder / "read-only.mln";
    writeText(readOnly, "old");
    fs::permissions(readOnly, fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
    const bool mayWrite = ::access(readOnly.c_str(), W_OK) == 0;
    EXPECT_EQ(errorOf([&] { kaldo::writeFileInPlace(readOnly, "new"); }),
              mayWrite ? "" : "cannot write '" + readOnly.string() + "': Permission denied.");
    EXPECT_EQ(fileText(readOnly), mayWrite ? "new" : "old");
    EXPECT_EQ(fs::status(readOnly).permissions(),
              fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
    // A replaced file, by contrast, leaves its other links with the old text.
    kaldo::replaceFile(file, "replaced");
    EXPECT_EQ(fileText(file), "replaced");
    EXPECT_EQ(fileText(folder / "linked.mln"), "longer than before, and again");
    EXPECT_EQ(fs::status(file).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST(FileAccess, OnlyTemporariesOfDeadSavesAreCleanedUp)
{
    QTemporaryDir dir;
    const fs::path folder = dir.path().toStdString();
    const fs::path target = folder / "plan.dxf";
    writeText(target, "old");
    // The user's own files, whatever they look like.
    const std::set<std::string> users{".plan.dxf.backup", ".plan.dxf.v2copy", ".plan.dxf.Ab12Cd",
                                      ".plan.dxf.kaldo-save-backup", ".plan.dxf.kaldo-save-Ab1"};
    for (const std::string& name : users)
        writeText(folder / name, "the user's");
    // Temporaries are marked with an extended attribute; a file system
    // that keeps none leaves every temporary to the user.
    const bool marks = ::setxattr((folder / "plan.dxf").c_str(), "user.probe", "1", 1, 0) == 0;

    // A save killed while it wrote leaves its temporary.
    inChild([&] {
        kaldo::replaceFile(target, [](int fd) {
            kaldo::writeAll(fd, "half");
            std::raise(SIGKILL);
        });
    });
    // A save still at work in another process, held until told to go on.
    int proceed[2];
    int ready[2];
    ASSERT_EQ(::pipe(proceed), 0);
    ASSERT_EQ(::pipe(ready), 0);
    const pid_t writer = ::fork();
    ASSERT_GE(writer, 0);
    if (writer == 0) {
        const kaldo::SaveTemporary working(target);
        char go = 0;
        static_cast<void>(::write(ready[1], "r", 1));
        static_cast<void>(::read(proceed[0], &go, 1));
        ::_exit(0);
    }
    char started = 0;
    ASSERT_EQ(::read(ready[0], &started, 1), 1);
    std::set<std::string> temporaries = namesIn(folder);
    for (const std::string& name : users)
        temporaries.erase(name);
    temporaries.erase("plan.dxf");
    ASSERT_EQ(temporaries.size(), 2u);
    for (const std::string& name : temporaries)
        EXPECT_TRUE(name.starts_with(".plan.dxf.kaldo-save-")) << name;

    kaldo::replaceFile(target, "new");
    EXPECT_EQ(fileText(target), "new");
    EXPECT_LT(::getxattr(target.c_str(), "user.kaldo.save-temporary", nullptr, 0), 0) << "the saved file is unmarked";
    for (const std::string& name : users)
        EXPECT_EQ(fileText(folder / name), "the user's") << name;
    // The killed save's temporary went; the working one stays.
    std::set<std::string> left = namesIn(folder);
    for (const std::string& name : users)
        left.erase(name);
    left.erase("plan.dxf");
    ASSERT_EQ(left.size(), marks ? 1u : 2u);
    EXPECT_TRUE(temporaries.contains(*left.begin()));

    static_cast<void>(::write(proceed[1], "g", 1));
    int status = 0;
    ::waitpid(writer, &status, 0);
    for (const int fd : {proceed[0], proceed[1], ready[0], ready[1]})
        ::close(fd);
    kaldo::replaceFile(target, "again");
    EXPECT_EQ(namesIn(folder).size(), users.size() + (marks ? 1 : 3));
    EXPECT_EQ(fileText(target), "again");
}
