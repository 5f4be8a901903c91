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

// The temporary file: removed on every way out unless it was renamed.
class TemporaryFile {
public:
    explicit TemporaryFile(const std::filesystem::path& target)
    {
        std::string pattern = (target.parent_path() / ("." + target.filename().string() + ".XXXXXX")).string();
        fd_ = ::mkstemp(pattern.data());
        if (fd_ < 0)
            throw DxfError(0, "cannot write in the folder '" + target.parent_path().string()
                                  + "': " + std::strerror(errno) + ".");
        path_ = pattern;
        // mkstemp makes the file private; a drawing gets the usual rights.
        const mode_t mask = ::umask(0);
        ::umask(mask);
        ::fchmod(fd_, 0666 & ~mask);
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

void writeFileAtomically(const std::filesystem::path& target, const std::function<void(int fd)>& write)
{
    const std::filesystem::path absolute = std::filesystem::absolute(target);
    TemporaryFile temp(absolute);
    try {
        write(temp.fd());
    } catch (const DxfError& e) {
        throw DxfError(0, "cannot write '" + target.string() + "': " + e.what());
    }
    temp.commit(absolute);
    syncFolder(absolute.parent_path());
}

}  // namespace kaldo::dxf
