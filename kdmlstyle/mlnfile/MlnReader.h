// Readers of multiline style files (.mln): the names a file holds, and one
// named style copied into a style object.
#pragma once

#include <string>
#include <vector>

#include "mlnfile/MlnReadMode.h"

class KxDbDatabase;
class KxDbMlineStyle;

namespace kdml {

// The names of the styles in the file, in file order, duplicates kept: the
// line after every "2" key line, trimmed of white space. Nothing for a file
// that cannot be opened. problem, when given, receives why a file that
// stands at the path could not be opened or read to its end (the names are
// then those read before); it stays empty otherwise.
std::vector<std::wstring> listMlnStyleNames(const wchar_t* path, std::wstring* problem = nullptr);

// Finds the first block whose name equals name (without case) and sets its
// properties on style, an object open for write; element linetypes are
// resolved in database. Lenient reading closes style on every way out and
// runs under the fault guard: a hardware fault or an exception while the
// file is read goes to the host's crash recorder, and what was set so far
// stays set. Strict reading leaves style open for its caller, who discards
// it unless the result is found; a file that cannot be read to the block's
// end reads as broken.
MlnReadResult readMlnStyle(const wchar_t* path, const wchar_t* name, KxDbMlineStyle* style,
                           KxDbDatabase* database, MlnReadMode mode);

// Tells the host's crash recorder (if there is one) that reading path failed
// with a fault: code and machine context (may be null) of the fault, the
// message and the file attached to the report.
void reportMlnReadFault(int code, const void* context, const wchar_t* path);

}  // namespace kdml
