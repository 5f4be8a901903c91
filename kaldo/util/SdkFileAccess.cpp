// The SDK's named-file access (kxfile.h) on the host's checked file path.
#include "kaldo/util/FileAccess.h"
#include "kaldo/util/FileWriting.h"
#include "kxfile.h"
#include "kxstring.h"

#include <cerrno>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

namespace {

std::filesystem::path hostPath(const std::wstring& path)
{
    return kxutToMultiByte(path);
}

}  // namespace

KxFileReader::KxFileReader(const wchar_t* path) : path_(path ? path : L"")
{
    try {
        fd_ = kaldo::openForReading(hostPath(path_)).release();
    } catch (const kaldo::FileError& e) {
        struct stat info {};
        missing_ = ::stat(hostPath(path_).c_str(), &info) != 0 && errno == ENOENT;
        openProblem_ = kxutFromMultiByte(e.what());
    }
}

KxFileReader::~KxFileReader()
{
    if (fd_ >= 0)
        ::close(fd_);
}

long KxFileReader::read(char* buffer, std::size_t size)
{
    if (fd_ < 0)
        return -1;
    const long got = kaldo::readSome(fd_, buffer, size);
    if (got < 0)
        readError_ = errno;
    return got;
}

std::wstring KxFileReader::problem() const
{
    if (!openProblem_.empty())
        return openProblem_;
    if (readError_ != 0)
        return kxutFromMultiByte(kaldo::fileMessage("read", hostPath(path_), std::strerror(readError_)));
    return {};
}

bool kxutWriteFileInPlace(const wchar_t* path, const std::string& content, std::wstring& problem)
{
    try {
        kaldo::writeFileInPlace(hostPath(path ? path : L""), content);
        return true;
    } catch (const kaldo::FileError& e) {
        problem = kxutFromMultiByte(e.what());
        return false;
    }
}
