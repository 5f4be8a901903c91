// Saving a drawing file: the host's atomic replacement of a file
// (kaldo/util/FileWriting.h) with its failures as DxfError.
#pragma once

#include <filesystem>
#include <functional>

namespace kaldo::dxf {

// Calls write with the descriptor of the temporary file. Any exception
// leaves the target as it was and removes the temporary file; a DxfError
// from write, or a system error naming the cause, is passed on as DxfError.
void writeFileAtomically(const std::filesystem::path& target, const std::function<void(int fd)>& write,
                         bool replaceReadOnly = false);

}  // namespace kaldo::dxf
