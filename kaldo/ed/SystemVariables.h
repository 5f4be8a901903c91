// The system variables the command line knows: their types, defaults, ranges
// and where they live. Host variables (PICKBOX, FILEDIA, LASTPOINT, ERRNO,
// units ...) are kept here; drawing variables (CMLSTYLE, CMLJUST, CMLSCALE,
// MEASUREMENT, DIMZIN, UCSXDIR, UCSYDIR) are read from and written to the
// host's working drawing and are unknown while there is none.
// LISPCOMMANDHASMORE, UCSXDIR and UCSYDIR are read-only.
#pragma once

#include "kxtypes.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace kaldo {

class Editor;

// A value typed as the result buffers type it: RTSHORT, RTREAL, RTSTR or
// RT3DPOINT, in that order of the alternatives.
using VariableValue = std::variant<short, double, std::wstring, KxGePoint3d>;

class SystemVariables {
public:
    explicit SystemVariables(const Editor& editor);

    bool exists(std::wstring_view name) const;
    // The value, or nothing for an unknown name (or a drawing variable
    // without a drawing).
    std::optional<VariableValue> get(std::wstring_view name) const;
    // RTNORM, or RTERROR for an unknown or read-only name, a value of the
    // wrong type or out of range. A real variable also takes a short value.
    int set(std::wstring_view name, const VariableValue& value);

    // The names of all variables, in alphabetical order.
    std::vector<std::wstring> names() const;

    // Values of variables the host itself relies on; fallback when unknown.
    short shortValue(std::wstring_view name, short fallback) const;
    double realValue(std::wstring_view name, double fallback) const;
    KxGePoint3d pointValue(std::wstring_view name) const;

private:
    const Editor& editor_;
    std::map<std::wstring, VariableValue, std::less<>> hostValues_;
};

// The result-buffer type of a value.
short resultTypeOf(const VariableValue& value);
// Fills a result buffer (a string becomes a host string).
void toResultBuffer(const VariableValue& value, kxresbuf& out);
// A value from a result buffer; nothing for a type no variable has.
std::optional<VariableValue> fromResultBuffer(const kxresbuf& rb);

}  // namespace kaldo
