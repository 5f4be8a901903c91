// Feeds arbitrary bytes as a .mln file to the style list and to both
// reading modes: no crash, no sanitizer report, whatever the file holds.
#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <string>

#include "kxdb.h"
#include "mlnfile/MlnReader.h"

namespace {

// The bytes as a file in memory, reachable by path.
class MemoryFile {
public:
    MemoryFile(const std::uint8_t* data, std::size_t size) : fd_(memfd_create("fuzz.mln", 0))
    {
        for (std::size_t done = 0; fd_ >= 0 && done < size;) {
            const ssize_t written = write(fd_, data + done, size - done);
            if (written <= 0)
                break;
            done += static_cast<std::size_t>(written);
        }
        path_ = L"/proc/self/fd/" + std::to_wstring(fd_);
    }
    ~MemoryFile()
    {
        if (fd_ >= 0)
            close(fd_);
    }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    const wchar_t* path() const { return path_.c_str(); }

private:
    int fd_;
    std::wstring path_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const MemoryFile file(data, size);
    const std::vector<std::wstring> names = kdml::listMlnStyleNames(file.path());
    // The listed name (trimmed) and the same with a blank in front, which is
    // what reading compares when the name line has two leading blanks.
    const std::wstring name = names.empty() ? std::wstring(L"A") : names.front();
    KxDbDatabase database;
    for (const std::wstring& wanted : {name, L" " + name}) {
        for (kdml::MlnReadMode mode : {kdml::MlnReadMode::strict, kdml::MlnReadMode::lenient}) {
            KxDbMlineStyle style;
            kdml::readMlnStyle(file.path(), wanted.c_str(), &style, &database, mode);
        }
    }
    return 0;
}
