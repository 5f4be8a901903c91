// The staged programs and the source tree a benchmark uses, found at run
// time: the programs beside the benchmark's own (the build stages both in
// one folder), the source tree in KALDO_SOURCE_DIR, which 'make bench' and
// bench/compare.sh set. Compiled in, their places would make every benchmark
// object differ between clones of the tree, and the compiler cache could not
// share them.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

inline std::filesystem::path stagedProgram(const std::string& name)
{
    return std::filesystem::read_symlink("/proc/self/exe").parent_path() / name;
}

// A file of the source tree; empty where KALDO_SOURCE_DIR is not set.
inline std::filesystem::path sourceFile(const std::string& relative)
{
    const char* dir = std::getenv("KALDO_SOURCE_DIR");
    return dir && *dir ? std::filesystem::path(dir) / relative : std::filesystem::path();
}
