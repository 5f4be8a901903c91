#include "kaldo/util/FileWriting.h"

#include "kaldo/util/FileAccess.h"
#include "kaldo/util/SaveTemporary.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace kaldo {

namespace {

constexpr int kLinkDepth = 40;

// The file a save replaces, symbolic links followed, and what it was.
struct Existing {
    std::filesystem::path path;
    bool exists = false;
    struct stat info {};
};

Existing inspect(const std::filesystem::path& target, const std::filesystem::path& named)
{
    Existing found{target};
    for (int depth = 0;; ++depth) {
        if (::lstat(found.path.c_str(), &found.info) != 0)
            return found;  // a new file (or a folder that cannot be read: the write says why)
        if (!S_ISLNK(found.info.st_mode))
            break;
        if (depth == kLinkDepth)
            throw FileError(fileMessage("write", named, "too many symbolic links"));
        std::error_code ec;
        const std::filesystem::path link = std::filesystem::read_symlink(found.path, ec);
        if (ec)
            throw FileError(fileMessage("write", named, ec.message()));
        found.path = (found.path.parent_path() / link).lexically_normal();
    }
    if (const std::string reason = notRegularReason(found.info.st_mode); !reason.empty())
        throw FileError(fileMessage("write", named, reason));
    found.exists = true;
    return found;
}

bool readOnly(const Existing& existing)
{
    return existing.exists && !(existing.info.st_mode & S_IWUSR);
}

// The old file's mode, owner and group go to the new one; a new file gets
// the usual rights (the temporary is made private). Owner and group stay
// ours where changing them is not permitted.
void takeOver(int fd, const Existing& existing)
{
    if (!existing.exists) {
        const mode_t mask = ::umask(0);
        ::umask(mask);
        ::fchmod(fd, 0666 & ~mask);
        return;
    }
    if (::fchown(fd, existing.info.st_uid, existing.info.st_gid) != 0)
        static_cast<void>(::fchown(fd, static_cast<uid_t>(-1), existing.info.st_gid));
    ::fchmod(fd, existing.info.st_mode & 07777);
}

void syncFolder(const std::filesystem::path& folder)
{
    const FileDescriptor fd(::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (fd)
        ::fsync(fd.get());
}

// Writes content at the start of fd and cuts the file to it.
void overwrite(int fd, std::string_view content)
{
    if (::lseek(fd, 0, SEEK_SET) != 0)
        throw FileError(std::strerror(errno));
    writeAll(fd, content);
    if (::ftruncate(fd, static_cast<off_t>(content.size())) != 0 || ::fsync(fd) != 0)
        throw FileError(std::strerror(errno));
}

// Takes the room content needs before a byte of the file changes, so that a
// full disk is found while the old text is still whole. File systems that
// cannot say so in advance are written without it.
void reserveRoom(int fd, std::size_t oldSize, std::size_t size)
{
    if (size <= oldSize || ::fallocate(fd, 0, 0, static_cast<off_t>(size)) == 0)
        return;
    const int error = errno;
    if (error == EOPNOTSUPP || error == ENOSYS)
        return;
    static_cast<void>(::ftruncate(fd, static_cast<off_t>(oldSize)));
    throw FileError(std::strerror(error));
}

}  // namespace

void replaceFile(const std::filesystem::path& target, const std::function<void(int fd)>& write, bool replaceReadOnly)
{
    if (target.filename().empty())
        throw FileError(fileMessage("write", target, notRegularReason(S_IFDIR)));
    const Existing existing = inspect(std::filesystem::absolute(target), target);
    if (readOnly(existing) && !replaceReadOnly)
        throw FileError(fileMessage("write", target, "the file is read-only"));
    removeAbandonedTemporaries(existing.path);
    try {
        SaveTemporary temporary(existing.path);
        write(temporary.fd());
        takeOver(temporary.fd(), existing);
        temporary.commit(existing.path);
    } catch (const FileError& e) {
        throw FileError(fileMessage("write", target, e.what()));
    }
    syncFolder(existing.path.parent_path());
}

void replaceFile(const std::filesystem::path& target, std::string_view content)
{
    replaceFile(target, [content](int fd) { writeAll(fd, content); });
}

bool isReadOnlyFile(const std::filesystem::path& target)
{
    try {
        return readOnly(inspect(std::filesystem::absolute(target), target));
    } catch (const FileError&) {
        return false;
    }
}

void writeFileInPlace(const std::filesystem::path& path, std::string_view content)
{
    struct stat info {};
    const bool existed = ::stat(path.c_str(), &info) == 0;
    // Read and write: the old text is kept to be put back.
    const FileDescriptor fd = openRegularFile(path, O_RDWR | O_CREAT);
    const std::string old = readAll(fd.get(), path);
    std::string why;
    try {
        reserveRoom(fd.get(), old.size(), content.size());
        try {
            overwrite(fd.get(), content);
            return;
        } catch (const FileError& e) {
            why = e.what();
            overwrite(fd.get(), old);
        }
    } catch (const FileError& e) {
        if (why.empty())
            why = e.what();
        else if (existed)
            why += "; the old text could not be put back";
    }
    // A file made here and not written leaves nothing behind.
    if (!existed)
        ::unlink(path.c_str());
    throw FileError(fileMessage("write", path, why));
}

}  // namespace kaldo
