// Writing whole named files, in the two ways the host uses. Both refuse
// what is no regular file (a symbolic link is followed), check every byte
// and leave the old file whole when they fail; failures throw FileError
// naming the file.
//
// Replacing (drawings, pictures): the new text goes into a temporary file
// beside the target (same folder, so the rename cannot cross file systems),
// is synced and renamed over the target; the new file keeps the old one's
// mode (and owner and group where permitted). A file without write
// permission for its owner is replaced only when the caller says so. Other
// links of a file with several keep the old text.
//
// Writing in place (style files): the same file is rewritten, so its mode,
// owner, group and links stay, and a writable file in a folder that is not
// writable can be saved. Room for the new text is taken before a byte
// changes; a write that fails after that puts the old text back.
#pragma once

#include <filesystem>
#include <functional>
#include <string_view>

namespace kaldo {

// Calls write with the descriptor of the temporary file (exceptions from it
// leave the target as it was and are passed on; a FileError from it gets the
// target's name).
void replaceFile(const std::filesystem::path& target, const std::function<void(int fd)>& write,
                 bool replaceReadOnly = false);
void replaceFile(const std::filesystem::path& target, std::string_view content);

// Whether target (symbolic links followed) is an existing file without
// write permission for its owner.
bool isReadOnlyFile(const std::filesystem::path& target);

// Makes the file at path (created when missing) hold exactly content.
void writeFileInPlace(const std::filesystem::path& path, std::string_view content);

}  // namespace kaldo
