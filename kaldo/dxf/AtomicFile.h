// Writes a file so that it is either the complete new text or the old file
// untouched: the text goes into a temporary file beside the target (same
// folder, so the rename cannot cross file systems), is flushed and synced,
// then renamed over the target.
//
// What stands at the path is respected: a symbolic link is followed and its
// target replaced; a folder, device, FIFO or socket is refused; the new file
// keeps the old one's mode (and owner and group where permitted); a file
// without write permission for its owner is replaced only when the caller
// says so. Temporaries that a killed save left beside the target are
// removed.
#pragma once

#include <filesystem>
#include <functional>

namespace kaldo::dxf {

// Calls write with the descriptor of the temporary file. Any exception
// (from write, or a system error naming the cause) leaves the target as it
// was and removes the temporary file; it is passed on as DxfError.
void writeFileAtomically(const std::filesystem::path& target, const std::function<void(int fd)>& write,
                         bool replaceReadOnly = false);

// Whether target (symbolic links followed) is an existing file without
// write permission for its owner.
bool isReadOnlyFile(const std::filesystem::path& target);

}  // namespace kaldo::dxf
