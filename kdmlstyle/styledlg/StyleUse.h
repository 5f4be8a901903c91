// Whether a multiline style may still be renamed, deleted or modified: the
// style manager asks on every selection change, walking the whole drawing.
#pragma once

class KxDbDatabase;

namespace kdml {

// True when any multiline (not erased) in any block of database uses a
// style named name, case ignored. Every entity is opened for read in turn;
// the walk stops at the first use. A style is opened once however many
// multilines use it.
bool isStyleInUse(KxDbDatabase* database, const wchar_t* name);

}  // namespace kdml
