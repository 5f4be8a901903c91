// Bringing a named multiline style from a .mln file into a drawing's
// multiline-style dictionary.
#pragma once

#include "kxdbid.h"

class KxDbDatabase;

namespace kdml {

// The load dialog's loader: the style name in the dictionary is overwritten
// by what the file holds (properties the file does not state keep their
// values), or made (two by-layer elements at 0.5 and -0.5) and then read.
// Lenient reading under the fault guard. Returns the style's id, null when
// the dictionary does not take a new style.
KxDbObjectId loadMlnStyleIntoDictionary(KxDbObjectId dictionaryId, const wchar_t* name, const wchar_t* path);

// MLINE's loader: finds fileName with the host's file search (message 6018
// on the command line when it is missing), reads the block name in strict
// reading into a new style and adds it to the database's multiline-style
// dictionary under name, as the caller spells it. True when the style is
// now in the dictionary; the dictionary is unchanged otherwise.
bool loadMlnStyleIntoDatabase(KxDbDatabase* database, const wchar_t* name, const wchar_t* fileName);

}  // namespace kdml
