#include "kaldo/app/RuntimeFolder.h"

#include <cstdlib>
#include <filesystem>
#include <string>

#include <sys/stat.h>
#include <unistd.h>

namespace kaldo {

void provideRuntimeFolder()
{
    if (std::getenv("XDG_RUNTIME_DIR"))
        return;
    std::error_code ec;
    const std::filesystem::path temp = std::filesystem::temp_directory_path(ec);
    if (ec)
        return;
    const std::string dir = (temp / ("runtime-" + std::to_string(getuid()))).string();
    mkdir(dir.c_str(), 0700);
    struct stat info {};
    if (lstat(dir.c_str(), &info) == 0 && S_ISDIR(info.st_mode) && info.st_uid == getuid()
        && (info.st_mode & 0777) == 0700)
        setenv("XDG_RUNTIME_DIR", dir.c_str(), 1);
}

}  // namespace kaldo
