#include "kaldo/ed/Keywords.h"

#include "kaldo/ed/Text.h"

#include <algorithm>
#include <cwctype>

namespace kaldo {

std::vector<Keyword> parseKeywordList(std::wstring_view list)
{
    std::vector<std::wstring> locals;
    std::vector<std::wstring> globals;
    bool inGlobal = false;
    for (std::wstring_view word : splitWords(list)) {
        if (!inGlobal && word.front() == L'_') {
            inGlobal = true;
            word.remove_prefix(1);
        }
        if (word.empty())
            continue;
        (inGlobal ? globals : locals).emplace_back(word);
    }
    if (!inGlobal)
        globals = locals;
    std::vector<Keyword> keywords(std::max(locals.size(), globals.size()));
    for (std::size_t i = 0; i < keywords.size(); ++i) {
        if (i < locals.size())
            keywords[i].local = locals[i];
        if (i < globals.size())
            keywords[i].global = globals[i];
    }
    return keywords;
}

bool keywordAccepts(std::wstring_view word, std::wstring_view input)
{
    if (input.empty() || word.empty())
        return false;
    if (equalsNoCase(word, input))
        return true;
    const auto isCapital = [](wchar_t c) { return !std::iswlower(static_cast<wint_t>(c)); };
    std::wstring capitals;
    std::copy_if(word.begin(), word.end(), std::back_inserter(capitals), isCapital);
    if (capitals.empty())
        return false;
    const auto leading = static_cast<std::size_t>(
        std::find_if_not(word.begin(), word.end(), isCapital) - word.begin());
    if (leading == capitals.size())
        return input.size() >= leading && input.size() <= word.size()
            && equalsNoCase(word.substr(0, input.size()), input);
    return equalsNoCase(capitals, input);
}

std::optional<std::size_t> matchKeyword(const std::vector<Keyword>& keywords, std::wstring_view input)
{
    const bool global = !input.empty() && input.front() == L'_';
    if (global)
        input.remove_prefix(1);
    if (input.empty())
        return std::nullopt;
    const auto wordOf = [global](const Keyword& k) -> std::wstring_view { return global ? k.global : k.local; };
    for (std::size_t i = 0; i < keywords.size(); ++i) {
        if (!wordOf(keywords[i]).empty() && equalsNoCase(wordOf(keywords[i]), input))
            return i;
    }
    std::optional<std::size_t> found;
    for (std::size_t i = 0; i < keywords.size(); ++i) {
        if (!keywordAccepts(wordOf(keywords[i]), input))
            continue;
        if (found)
            return std::nullopt;
        found = i;
    }
    return found;
}

}  // namespace kaldo
