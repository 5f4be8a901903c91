// Putting a style block into an existing .mln file: the file's lines are
// kept as the bytes they were, the block replaces the old block of its name
// in place or is appended, and the result is written as a whole.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace kdml {

// The file's lines without their line ends (LF, or CR LF); no lines when
// nothing stands at the path yet. Nothing, with problem set, when a file
// stands there that cannot be read whole (a merge must then not write).
std::optional<std::vector<std::string>> readMlnFileLines(const wchar_t* path, std::wstring& problem);

// Replaces the first block named name (its "MLSTYLE", "2" and " " + name
// lines, compared without case, up to and including the next "0" line, or
// to the last line when there is none) by block, or appends block when the
// lines hold no such block.
std::vector<std::string> mergeMlnStyleBlock(std::vector<std::string> lines, const std::vector<std::string>& block,
                                            const wchar_t* name);

// Writes the lines, each ended by CR LF, into the file at path in place:
// the whole text is made first, then the same file is rewritten, so that
// its mode, owner and links stay (a failed write leaves the old text). False,
// with problem set, when the file cannot be written.
bool writeMlnFileLines(const wchar_t* path, const std::vector<std::string>& lines, std::wstring& problem);

}  // namespace kdml
