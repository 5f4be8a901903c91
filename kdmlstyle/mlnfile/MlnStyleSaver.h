// Saving a multiline style of the drawing into a .mln file (the style
// manager's Save).
#pragma once

#include <string>

#include "kxdbid.h"

namespace kdml {

// Asks for a .mln file (the host's save dialog, starting in the Support
// folder) and saves the style into it. Nothing happens when no file is
// chosen; a file that cannot be read whole or written is named in a message
// box. See saveMlnStyleToFile for the rest.
void saveMlnStyle(KxDbObjectId dictionaryId, const wchar_t* styleName);

// Writes the style styleName of the dictionary into path: its block
// replaces the file's block of that name (without case) in place, or is
// appended; a new file holds just the block. The file is rewritten in place
// once the whole new text is made, so it keeps its mode, owner and links.
// False, with the file as it was, when the style cannot be opened, or when
// the old file cannot be read whole or the file cannot be written (then
// with problem set, naming the file).
bool saveMlnStyleToFile(KxDbObjectId dictionaryId, const wchar_t* styleName, const wchar_t* path,
                        std::wstring& problem);

}  // namespace kdml
