// Turns a linetype name into a linetype of a drawing, loading it from the
// host's linetype file when the drawing lacks it.
#pragma once

#include "kxdbid.h"

class KxDbDatabase;

namespace kdml {

// The drawing's linetype of that name (the linetype table's own name
// rules); else the one loaded from "kaldo.lin" (MEASUREMENT 0) or
// "kaldoiso.lin" (otherwise); else the drawing's "Continuous"; else the null
// id. The null id too when MEASUREMENT cannot be read.
KxDbObjectId resolveLinetype(const wchar_t* name, KxDbDatabase* database);

}  // namespace kdml
