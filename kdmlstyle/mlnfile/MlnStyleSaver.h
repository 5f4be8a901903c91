// Saving a multiline style of the drawing into a .mln file (the style
// manager's Save).
#pragma once

#include "kxdbid.h"

namespace kdml {

// Asks for a .mln file (the host's save dialog, starting in the Support
// folder) and saves the style into it. Nothing happens when no file is
// chosen; see saveMlnStyleToFile for the rest.
void saveMlnStyle(KxDbObjectId dictionaryId, const wchar_t* styleName);

// Writes the style styleName of the dictionary into path: its block
// replaces the file's block of that name (without case) in place, or is
// appended; a new file holds just the block. False, with the file as it
// was, when the style cannot be opened or the file cannot be written.
bool saveMlnStyleToFile(KxDbObjectId dictionaryId, const wchar_t* styleName, const wchar_t* path);

}  // namespace kdml
