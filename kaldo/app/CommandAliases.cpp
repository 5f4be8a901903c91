#include "kaldo/app/CommandAliases.h"

#include "kaldo/ed/Text.h"

#include <algorithm>

namespace kaldo {

namespace {

bool isName(std::wstring_view text)
{
    return !text.empty() && std::ranges::none_of(text, [](wchar_t c) { return c == L' ' || c == L'\t' || c == L','; });
}

}  // namespace

CommandAliases CommandAliases::parse(std::wstring_view text, std::vector<std::wstring>& problems)
{
    CommandAliases aliases;
    int number = 0;
    while (!text.empty()) {
        const std::size_t end = text.find(L'\n');
        std::wstring_view line = trimmed(text.substr(0, end));
        text = end == std::wstring_view::npos ? std::wstring_view() : text.substr(end + 1);
        ++number;
        if (line.empty() || line.front() == L';')
            continue;
        const std::size_t comma = line.find(L',');
        const std::wstring_view alias = trimmed(line.substr(0, comma));
        std::wstring_view command = comma == std::wstring_view::npos ? std::wstring_view() : trimmed(line.substr(comma + 1));
        const bool starred = !command.empty() && command.front() == L'*';
        if (starred)
            command.remove_prefix(1);
        const std::wstring where = L"line " + std::to_wstring(number) + L": ";
        if (!starred || !isName(alias) || !isName(command)) {
            problems.push_back(where + L"\"" + std::wstring(line) + L"\" is no alias (ALIAS,*COMMAND).");
            continue;
        }
        if (const auto earlier = std::ranges::find(aliases.m_aliases, toUpper(alias), &Alias::alias);
            earlier != aliases.m_aliases.end()) {
            problems.push_back(where + L"the alias " + toUpper(alias) + L" was given on line "
                               + std::to_wstring(earlier->line) + L" already.");
            continue;
        }
        aliases.m_aliases.push_back({toUpper(alias), std::wstring(command), number});
    }
    return aliases;
}

std::wstring CommandAliases::commandFor(std::wstring_view alias) const
{
    const std::wstring key = toUpper(alias);
    const auto it = std::ranges::find(m_aliases, key, &Alias::alias);
    return it == m_aliases.end() ? std::wstring() : it->command;
}

std::vector<std::wstring> CommandAliases::aliasesOf(std::wstring_view command) const
{
    std::vector<std::wstring> found;
    for (const Alias& a : m_aliases)
        if (equalsNoCase(a.command, command))
            found.push_back(a.alias);
    return found;
}

}  // namespace kaldo
