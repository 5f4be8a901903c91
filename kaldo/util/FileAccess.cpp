#include "kaldo/util/FileAccess.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kaldo {

namespace {

constexpr std::size_t kReadChunk = 64 * 1024;
constexpr off_t kStreamWindow = off_t(8) << 20;

std::string_view verbOf(int flags)
{
    return (flags & O_ACCMODE) == O_RDONLY ? "read" : "write";
}

}  // namespace

FileDescriptor& FileDescriptor::operator=(FileDescriptor&& other) noexcept
{
    if (this != &other) {
        if (fd_ >= 0)
            ::close(fd_);
        fd_ = other.release();
    }
    return *this;
}

FileDescriptor::~FileDescriptor()
{
    if (fd_ >= 0)
        ::close(fd_);
}

std::string notRegularReason(mode_t mode)
{
    if (S_ISREG(mode))
        return {};
    if (S_ISDIR(mode))
        return "it is a folder";
    if (S_ISFIFO(mode))
        return "it is a FIFO, not a regular file";
    if (S_ISCHR(mode) || S_ISBLK(mode))
        return "it is a device, not a regular file";
    if (S_ISSOCK(mode))
        return "it is a socket, not a regular file";
    return "it is no regular file";
}

std::string fileMessage(std::string_view verb, const std::filesystem::path& path, std::string_view reason)
{
    // A reason that is a sentence of its own (a writer's refusal) ends itself.
    const bool ended = reason.ends_with('.') || reason.ends_with('?') || reason.ends_with('!');
    return "cannot " + std::string(verb) + " '" + path.string() + "': " + std::string(reason) + (ended ? "" : ".");
}

FileDescriptor openRegularFile(const std::filesystem::path& path, int flags, mode_t mode)
{
    const std::string_view verb = verbOf(flags);
    // Looked at first, so that a device is never opened: opening one may
    // act on it (a tape rewinds, a line is raised).
    struct stat info {};
    if (::stat(path.c_str(), &info) == 0) {
        if (const std::string reason = notRegularReason(info.st_mode); !reason.empty())
            throw FileError(fileMessage(verb, path, reason));
    }
    // Without waiting: what took the path's place since cannot block here.
    FileDescriptor fd(::open(path.c_str(), flags | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, mode));
    if (!fd)
        throw FileError(fileMessage(verb, path, errno == ENXIO ? notRegularReason(S_IFIFO) : std::strerror(errno)));
    if (::fstat(fd.get(), &info) != 0)
        throw FileError(fileMessage(verb, path, std::strerror(errno)));
    if (const std::string reason = notRegularReason(info.st_mode); !reason.empty())
        throw FileError(fileMessage(verb, path, reason));
    ::fcntl(fd.get(), F_SETFL, ::fcntl(fd.get(), F_GETFL) & ~O_NONBLOCK);
    return fd;
}

FileDescriptor openForReading(const std::filesystem::path& path)
{
    return openRegularFile(path, O_RDONLY);
}

long readSome(int fd, char* buffer, std::size_t size)
{
    for (;;) {
        const ssize_t got = ::read(fd, buffer, size);
        if (got >= 0)
            return static_cast<long>(got);
        if (errno != EINTR)
            return -1;
    }
}

std::string readAll(int fd, const std::filesystem::path& path)
{
    std::string bytes;
    for (;;) {
        const std::size_t used = bytes.size();
        bytes.resize(used + kReadChunk);
        const long got = readSome(fd, bytes.data() + used, kReadChunk);
        if (got < 0)
            throw FileError(fileMessage("read", path, std::strerror(errno)));
        bytes.resize(used + static_cast<std::size_t>(got));
        if (got == 0)
            return bytes;
    }
}

std::string readFile(const std::filesystem::path& path)
{
    const FileDescriptor fd = openForReading(path);
    return readAll(fd.get(), path);
}

void writeAll(int fd, std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t written = ::write(fd, bytes.data(), bytes.size());
        if (written < 0) {
            if (errno == EINTR)
                continue;
            throw FileError(std::strerror(errno));
        }
        if (written == 0)
            throw FileError("nothing more could be written");
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
}

void writeAllStreamed(int fd, std::string_view bytes)
{
    const off_t start = ::lseek(fd, 0, SEEK_CUR);
    writeAll(fd, bytes);
    if (start < 0)
        return;
    // Failures here only leave pages in memory: an error of the disk's
    // writing is reported by the sync.
    const off_t end = start + static_cast<off_t>(bytes.size());
    for (off_t passed = (start / kStreamWindow + 1) * kStreamWindow; passed <= end; passed += kStreamWindow) {
        static_cast<void>(::sync_file_range(fd, passed - kStreamWindow, kStreamWindow, SYNC_FILE_RANGE_WRITE));
        const off_t before = passed - 2 * kStreamWindow;
        if (before < 0)
            continue;
        static_cast<void>(::sync_file_range(
            fd, before, kStreamWindow,
            SYNC_FILE_RANGE_WAIT_BEFORE | SYNC_FILE_RANGE_WRITE | SYNC_FILE_RANGE_WAIT_AFTER));
        static_cast<void>(::posix_fadvise(fd, before, kStreamWindow, POSIX_FADV_DONTNEED));
    }
}

}  // namespace kaldo
