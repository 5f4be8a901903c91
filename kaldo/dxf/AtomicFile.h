// Writes a file so that it is either the complete new text or the old file
// untouched: the text goes into a temporary file beside the target (same
// folder, so the rename cannot cross file systems), is flushed and synced,
// then renamed over the target.
#pragma once

#include <filesystem>
#include <functional>

namespace kaldo::dxf {

// Calls write with the descriptor of the temporary file. Any exception
// (from write, or a system error naming the cause) leaves the target as it
// was and removes the temporary file; it is passed on as DxfError.
void writeFileAtomically(const std::filesystem::path& target, const std::function<void(int fd)>& write);

}  // namespace kaldo::dxf
