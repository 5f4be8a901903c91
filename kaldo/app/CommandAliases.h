// Command aliases from a plain-text file in the Support folder (kaldo.pgp):
// one alias a line, "ALIAS,*COMMAND" (blanks around either allowed); lines
// starting with ';' and empty lines are comments. Names are matched without
// regard to case. A command's own name wins over an alias of that name.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kaldo {

class CommandAliases {
public:
    struct Alias {
        std::wstring alias;    // upper case
        std::wstring command;  // as written, without the '*'
        int line = 0;
    };

    // Reads the aliases of text; a line of another form is left out and
    // named in problems ("line 3: ...").
    static CommandAliases parse(std::wstring_view text, std::vector<std::wstring>& problems);

    // The command an alias stands for, or empty.
    std::wstring commandFor(std::wstring_view alias) const;
    // The aliases of a command, in the file's order.
    std::vector<std::wstring> aliasesOf(std::wstring_view command) const;
    const std::vector<Alias>& aliases() const { return m_aliases; }

private:
    std::vector<Alias> m_aliases;
};

}  // namespace kaldo
