#include "kaldo/launch/HeapPages.h"

#include <cstdlib>
#include <fstream>
#include <iterator>

#include <unistd.h>

namespace kaldo {

namespace {

constexpr std::string_view kHugePageTunable = "glibc.malloc.hugetlb";

}  // namespace

std::optional<std::string> hugeHeapPageTunables(std::string_view tunables, std::string_view systemMode)
{
    if (systemMode.find("[madvise]") == std::string_view::npos)
        return std::nullopt;
    if (tunables.find(kHugePageTunable) != std::string_view::npos)
        return std::nullopt;
    std::string result(tunables);
    if (!result.empty())
        result += ':';
    result += kHugePageTunable;
    result += "=1";
    return result;
}

void restartWithHugeHeapPages(char** argv)
{
    // A preloaded library may bring its own heap (valgrind's, a profiler's),
    // on which the tunable does nothing; valgrind cannot follow the restart.
    if (const char* preloaded = std::getenv("LD_PRELOAD"); preloaded && *preloaded)
        return;
    std::ifstream modeFile("/sys/kernel/mm/transparent_hugepage/enabled");
    const std::string systemMode((std::istreambuf_iterator<char>(modeFile)), std::istreambuf_iterator<char>());
    const char* current = std::getenv("GLIBC_TUNABLES");
    const std::optional<std::string> previous = current ? std::optional<std::string>(current) : std::nullopt;
    const std::optional<std::string> tunables = hugeHeapPageTunables(previous.value_or(""), systemMode);
    if (!tunables)
        return;
    setenv("GLIBC_TUNABLES", tunables->c_str(), 1);
    execv("/proc/self/exe", argv);
    if (previous)
        setenv("GLIBC_TUNABLES", previous->c_str(), 1);
    else
        unsetenv("GLIBC_TUNABLES");
}

}  // namespace kaldo
