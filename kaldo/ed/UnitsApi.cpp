// The SDK's number formatting: the units, precisions and zero suppression
// come from the system variables when the caller passes -1.
#include "kxedunits.h"

#include "kaldo/ed/Editor.h"
#include "kaldo/ed/Text.h"
#include "kaldo/ed/Units.h"
#include "kxtypes.h"

namespace {

short variable(const wchar_t* name, short fallback)
{
    kaldo::Editor* editor = kaldo::currentEditor();
    return editor ? editor->variables().shortValue(name, fallback) : fallback;
}

int orVariable(int value, const wchar_t* name, short fallback)
{
    return value < 0 ? variable(name, fallback) : value;
}

}  // namespace

int kxdbRToS(double value, int unit, int precision, wchar_t* out)
{
    if (!out)
        return RTERROR;
    unit = orVariable(unit, L"LUNITS", 2);
    if (unit < 1 || unit > 5)
        return RTERROR;
    const std::wstring text =
        kaldo::formatDistance(value, unit, orVariable(precision, L"LUPREC", 4), variable(L"DIMZIN", 0));
    kaldo::copyToBuffer(text, out, KXED_NUMBER_SIZE);
    return RTNORM;
}

int kxdbAngToS(double radians, int unit, int precision, wchar_t* out)
{
    if (!out)
        return RTERROR;
    unit = orVariable(unit, L"AUNITS", 0);
    if (unit < 0 || unit > 4)
        return RTERROR;
    const std::wstring text =
        kaldo::formatAngle(radians, unit, orVariable(precision, L"AUPREC", 0), variable(L"DIMZIN", 0));
    kaldo::copyToBuffer(text, out, KXED_NUMBER_SIZE);
    return RTNORM;
}

int kxdbAngToF(const wchar_t* text, int unit, double* out)
{
    if (!text || !out)
        return RTERROR;
    const auto radians = kaldo::parseAngle(text, orVariable(unit, L"AUNITS", 0));
    if (!radians)
        return RTERROR;
    *out = *radians;
    return RTNORM;
}
