// The file names MLINE loads a missing style from. A "|" stands for a blank
// in paths given to MLINE, so that a script line can hold a path with blanks.
#pragma once

#include <string>

namespace kdml {

// A name typed at the file-name prompt: ".mln" is appended when it holds no
// "." anywhere, then every "|" becomes a blank.
std::wstring typedMlnFileName(std::wstring text);

// The path with every "|" replaced by a blank.
std::wstring barsToBlanks(std::wstring path);

}  // namespace kdml
