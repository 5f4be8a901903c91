// Reading linetype files (.lin): 8-bit text in the process's locale.
//   ;; comment           (any line starting with ';')
//   *NAME,description    starts a definition
//   A,dash,gap,...       its pattern: dashes positive, gaps negative, dots 0
// Embedded shapes and texts ("[...]" items) are not supported and skipped.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kaldo {

struct LinetypeDefinition {
    std::wstring name;
    std::wstring description;
    std::vector<double> dashes;
};

// Every complete definition (a name line followed by its pattern line).
std::vector<LinetypeDefinition> parseLinetypeFile(std::string_view text);

}  // namespace kaldo
