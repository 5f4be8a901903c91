#include "kaldo/util/SaveTemporary.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <string_view>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace kaldo {

namespace {

// Longest file name the file systems in use take, in bytes.
constexpr std::size_t kNameMax = 255;
constexpr std::string_view kMark = ".kaldo-save-";
constexpr std::string_view kUniqueSuffix = "XXXXXX";
// The extended attribute that marks a file as a save's temporary. It is
// taken off before the file becomes the target.
constexpr const char* kMarker = "user.kaldo.save-temporary";
// A temporary taken away by a clean-up before its writer locked it is
// replaced by a new one; this many tries are more than any race needs.
constexpr int kCreateTries = 100;

// ".NAME.kaldo-save-", NAME cut so that the whole stays a valid file name.
std::string temporaryPrefix(const std::filesystem::path& target)
{
    std::string name = target.filename().string();
    name.resize(std::min(name.size(), kNameMax - 1 - kMark.size() - kUniqueSuffix.size()));
    return "." + name + std::string(kMark);
}

bool isTemporaryName(const std::string& prefix, const std::string& name)
{
    return name.size() == prefix.size() + kUniqueSuffix.size() && name.starts_with(prefix)
           && std::all_of(name.begin() + static_cast<std::ptrdiff_t>(prefix.size()), name.end(),
                          [](unsigned char c) { return std::isalnum(c) != 0; });
}

bool sameFile(const struct stat& a, const struct stat& b)
{
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

bool isMarked(int fd)
{
    char value = 0;
    return ::fgetxattr(fd, kMarker, &value, sizeof value) == 1 && value == '1';
}

// Removes path when it is a regular file marked as a temporary whose lock
// no process holds. The lock is held while the name is checked and
// removed, so a writer that created the file but has not locked it yet
// waits, then finds its file gone and makes another.
void removeWhenAbandoned(const std::filesystem::path& path)
{
    const FileDescriptor fd(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat opened {};
    if (!fd || ::fstat(fd.get(), &opened) != 0 || !S_ISREG(opened.st_mode) || !isMarked(fd.get()))
        return;
    if (::flock(fd.get(), LOCK_EX | LOCK_NB) != 0)
        return;  // its writer is still at work
    struct stat named {};
    if (::lstat(path.c_str(), &named) == 0 && sameFile(named, opened))
        ::unlink(path.c_str());
}

}  // namespace

SaveTemporary::SaveTemporary(const std::filesystem::path& target)
{
    const std::filesystem::path folder = target.parent_path();
    for (int attempt = 0; attempt < kCreateTries; ++attempt) {
        std::string pattern = (folder / (temporaryPrefix(target) + std::string(kUniqueSuffix))).string();
        FileDescriptor fd(::mkostemp(pattern.data(), O_CLOEXEC));
        if (!fd)
            throw FileError(std::strerror(errno));
        if (::flock(fd.get(), LOCK_EX) != 0) {
            const int error = errno;
            ::unlink(pattern.c_str());
            throw FileError(std::strerror(error));
        }
        struct stat info {};
        if (::fstat(fd.get(), &info) == 0 && info.st_nlink > 0) {
            // Where the file system keeps no such mark, a temporary left by
            // a killed save is never taken for ours: the user removes it.
            static_cast<void>(::fsetxattr(fd.get(), kMarker, "1", 1, 0));
            fd_ = std::move(fd);
            path_ = pattern;
            return;
        }
    }
    throw FileError("no temporary file could be kept in its folder");
}

SaveTemporary::~SaveTemporary()
{
    if (!path_.empty())
        ::unlink(path_.c_str());
}

void SaveTemporary::commit(const std::filesystem::path& target)
{
    static_cast<void>(::fremovexattr(fd_.get(), kMarker));
    if (::fsync(fd_.get()) != 0 || ::rename(path_.c_str(), target.c_str()) != 0)
        throw FileError(std::strerror(errno));
    path_.clear();
    // Closing releases the lock, now on the target.
    if (::close(fd_.release()) != 0)
        throw FileError(std::strerror(errno));
}

void removeAbandonedTemporaries(const std::filesystem::path& target)
{
    const std::string prefix = temporaryPrefix(target);
    std::error_code ec;
    for (const auto& entry : std::filesystem::directory_iterator(target.parent_path(), ec)) {
        if (isTemporaryName(prefix, entry.path().filename().string()))
            removeWhenAbandoned(entry.path());
    }
}

}  // namespace kaldo
