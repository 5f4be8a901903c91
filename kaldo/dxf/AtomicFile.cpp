#include "kaldo/dxf/AtomicFile.h"

#include "kaldo/dxf/DxfError.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace kaldo::dxf {

namespace {

// Longest file name the file systems in use take, in bytes.
constexpr std::size_t kNameMax = 255;
constexpr std::string_view kUniqueSuffix = "XXXXXX";
constexpr int kLinkDepth = 40;

// The file a save replaces, symbolic links followed, and what it was.
struct Existing {
    std::filesystem::path path;
    bool exists = false;
    struct stat info {};
};

Existing inspect(const std::filesystem::path& target)
{
    Existing found{target};
    for (int depth = 0;; ++depth) {
        if (::lstat(found.path.c_str(), &found.info) != 0)
            return found;  // a new file (or a folder that cannot be read: the write says why)
        if (!S_ISLNK(found.info.st_mode))
            break;
        if (depth == kLinkDepth)
            throw DxfError(0, "cannot write '" + target.string() + "': too many symbolic links.");
        std::error_code ec;
        const std::filesystem::path link = std::filesystem::read_symlink(found.path, ec);
        if (ec)
            throw DxfError(0, "cannot write '" + target.string() + "': " + ec.message() + ".");
        found.path = (found.path.parent_path() / link).lexically_normal();
    }
    if (S_ISDIR(found.info.st_mode))
        throw DxfError(0, "cannot write '" + target.string() + "': it is a folder.");
    if (!S_ISREG(found.info.st_mode))
        throw DxfError(0, "cannot write '" + target.string()
                              + "': it is a device, FIFO or socket, not a file a drawing can be saved in.");
    found.exists = true;
    return found;
}

bool readOnly(const Existing& existing)
{
    return existing.exists && !(existing.info.st_mode & S_IWUSR);
}

// ".name.XXXXXX" beside the target, the name cut so that the whole stays a
// valid file name.
std::string temporaryPrefix(const std::filesystem::path& target)
{
    std::string name = target.filename().string();
    name.resize(std::min(name.size(), kNameMax - 2 - kUniqueSuffix.size()));
    return "." + name + ".";
}

// Temporaries of this target that a save killed half-way left behind.
void removeStaleTemporaries(const std::filesystem::path& target)
{
    const std::string prefix = temporaryPrefix(target);
    std::error_code ec;
    for (const auto& entry : std::filesystem::directory_iterator(target.parent_path(), ec)) {
        const std::string name = entry.path().filename().string();
        if (name.size() == prefix.size() + kUniqueSuffix.size() && name.starts_with(prefix)
            && entry.is_regular_file(ec) && !entry.is_symlink(ec))
            std::filesystem::remove(entry.path(), ec);
    }
}

// The temporary file: removed on every way out unless it was renamed.
class TemporaryFile {
public:
    explicit TemporaryFile(const std::filesystem::path& target)
    {
        std::string pattern = (target.parent_path() / (temporaryPrefix(target) + std::string(kUniqueSuffix))).string();
        fd_ = ::mkstemp(pattern.data());
        if (fd_ < 0)
            throw DxfError(0, "cannot write in the folder '" + target.parent_path().string()
                                  + "': " + std::strerror(errno) + ".");
        path_ = pattern;
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile()
    {
        if (fd_ >= 0)
            ::close(fd_);
        if (!path_.empty())
            ::unlink(path_.c_str());
    }

    int fd() const { return fd_; }

    // The old file's mode, owner and group; a new file gets the usual rights
    // (mkstemp makes it private). Owner and group stay ours where changing
    // them is not permitted.
    void takeOver(const Existing& existing)
    {
        if (!existing.exists) {
            const mode_t mask = ::umask(0);
            ::umask(mask);
            ::fchmod(fd_, 0666 & ~mask);
            return;
        }
        if (::fchown(fd_, existing.info.st_uid, existing.info.st_gid) != 0)
            static_cast<void>(::fchown(fd_, static_cast<uid_t>(-1), existing.info.st_gid));
        ::fchmod(fd_, existing.info.st_mode & 07777);
    }

    void commit(const std::filesystem::path& target)
    {
        if (::fsync(fd_) != 0)
            fail(target);
        const int fd = fd_;
        fd_ = -1;
        if (::close(fd) != 0)
            fail(target);
        if (::rename(path_.c_str(), target.c_str()) != 0)
            fail(target);
        path_.clear();
    }

private:
    [[noreturn]] static void fail(const std::filesystem::path& target)
    {
        throw DxfError(0, "cannot write '" + target.string() + "': " + std::strerror(errno) + ".");
    }

    int fd_ = -1;
    std::string path_;
};

void syncFolder(const std::filesystem::path& folder)
{
    const int fd = ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY);
    if (fd >= 0) {
        ::fsync(fd);
        ::close(fd);
    }
}

}  // namespace

void writeFileAtomically(const std::filesystem::path& target, const std::function<void(int fd)>& write,
                         bool replaceReadOnly)
{
    if (target.filename().empty())
        throw DxfError(0, "cannot write '" + target.string() + "': it is a folder.");
    const Existing existing = inspect(std::filesystem::absolute(target));
    if (readOnly(existing) && !replaceReadOnly)
        throw DxfError(0, "cannot write '" + target.string() + "': the file is read-only.");
    removeStaleTemporaries(existing.path);
    TemporaryFile temp(existing.path);
    try {
        write(temp.fd());
    } catch (const DxfError& e) {
        throw DxfError(0, "cannot write '" + target.string() + "': " + e.what());
    }
    temp.takeOver(existing);
    temp.commit(existing.path);
    syncFolder(existing.path.parent_path());
}

bool isReadOnlyFile(const std::filesystem::path& target)
{
    try {
        return readOnly(inspect(std::filesystem::absolute(target)));
    } catch (const DxfError&) {
        return false;
    }
}

}  // namespace kaldo::dxf
