#include "host/ShortVariableScope.h"

#include "kxed.h"

namespace kdml {

namespace {

void setShort(const wchar_t* name, short value)
{
    kxresbuf buffer;
    buffer.restype = RTSHORT;
    buffer.resval.rint = value;
    kxedSetVar(name, &buffer);
}

}  // namespace

ShortVariableScope::ShortVariableScope(const wchar_t* name, short value) : name_(name)
{
    kxresbuf current;
    if (kxedGetVar(name, &current) != RTNORM || current.restype != RTSHORT)
        return;
    saved_ = current.resval.rint;
    restore_ = true;
    setShort(name, value);
}

ShortVariableScope::~ShortVariableScope()
{
    if (restore_)
        setShort(name_, saved_);
}

}  // namespace kdml
