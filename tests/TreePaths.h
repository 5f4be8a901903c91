// The source tree and the staged build a test reads, found at run time: the
// stage from the test program's own folder, as the build places both, and
// the source tree in KALDO_SOURCE_DIR, which ctest sets for every test (a test
// program run by hand needs it set the same way). Compiled in, their places
// would make every test object differ between clones of the tree, and the
// compiler cache could not share them.
#pragma once

#include "kaldo/app/SessionPaths.h"

#include <QString>

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

inline std::filesystem::path sourceDir()
{
    const char* value = std::getenv("KALDO_SOURCE_DIR");
    if (!value || !*value)
        throw std::runtime_error("KALDO_SOURCE_DIR is not set: ctest sets it; to run a test program by hand, "
                                 "set it to the source tree");
    return value;
}

// A file of the source tree, as Qt takes it.
inline QString sourceFile(const std::filesystem::path& relative)
{
    return QString::fromStdString((sourceDir() / relative).string());
}

inline std::filesystem::path stageDir()
{
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe");
    return (program.parent_path() / KALDO_STAGE_FROM_TESTS).lexically_normal();
}

// The staged host's Support and modules folders, found from its program as
// the host finds its own.
inline kaldo::SessionPaths stagedPaths()
{
    return kaldo::defaultSessionPaths(stageDir() / "bin");
}

// The staged Support folder, as Qt takes it.
inline QString stagedSupport()
{
    return QString::fromStdString(stagedPaths().supportDir.string());
}
