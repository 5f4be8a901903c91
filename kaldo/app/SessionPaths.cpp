#include "kaldo/app/SessionPaths.h"

#include <cstdlib>

namespace kaldo {

namespace {

// $variable when it is set to an absolute path, else $HOME/fallback.
std::filesystem::path baseDir(const char* variable, const char* fallback)
{
    const char* value = std::getenv(variable);
    if (value && *value && std::filesystem::path(value).is_absolute())
        return value;
    const char* home = std::getenv("HOME");
    return std::filesystem::path(home && *home ? home : ".") / fallback;
}

}  // namespace

SessionPaths defaultSessionPaths(const std::filesystem::path& exeDir)
{
    SessionPaths paths;
    paths.profile = baseDir("XDG_CONFIG_HOME", ".config") / "kaldo" / "kaldo.ini";
    paths.supportDir = (exeDir / KALDO_SUPPORT_FROM_BIN).lexically_normal();
    paths.modulesDir = (exeDir / KALDO_MODULES_FROM_BIN).lexically_normal();
    paths.crashDir = baseDir("XDG_STATE_HOME", ".local/state") / "kaldo" / "crash";
    return paths;
}

}  // namespace kaldo

namespace kaldo {

std::filesystem::path resolveModulePath(const std::filesystem::path& given,
                                        const std::filesystem::path& modulesDir)
{
    std::filesystem::path name = given;
    if (!name.has_extension())
        name += ".krx";
    std::error_code ec;
    for (const std::filesystem::path& candidate : {name, modulesDir / name}) {
        if (std::filesystem::is_regular_file(candidate, ec))
            return std::filesystem::absolute(candidate, ec).lexically_normal();
        if (name.is_absolute())
            break;
    }
    return {};
}

}  // namespace kaldo
