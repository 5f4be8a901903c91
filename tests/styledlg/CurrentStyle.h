// Makes a style current for the style dialogs' tests: CMLSTYLE set to
// name as SETVAR sets it.
#pragma once

#include "kxed.h"
#include "kxstring.h"

inline void setCurrentStyle(const wchar_t* name)
{
    kxresbuf rb;
    rb.restype = RTSTR;
    rb.resval.rstring = kxutNewString(name);
    kxedSetVar(L"CMLSTYLE", &rb);
    kxutDelBuffer(rb.resval.rstring);
}
