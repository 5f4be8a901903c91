// Keyword lists of the form "Local words _Global words" and the matching of
// typed input against them.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kaldo {

// One keyword: the word shown to the user (its capital letters form the
// shortest accepted abbreviation) and the language-independent word a
// command receives.
struct Keyword {
    std::wstring local;
    std::wstring global;
};

// Splits a list such as "Close Undo _Close Undo". The first word that starts
// with '_' opens the global section; its words pair with the local words by
// position. Without a global section each word is its own global word. A
// global word without a local partner can only be typed with '_'.
std::vector<Keyword> parseKeywordList(std::wstring_view list);

// Whether input (already trimmed) selects the keyword word: the whole word,
// or - when the word starts with its capital letters - any prefix at least as
// long as those capitals, or - when the capitals stand elsewhere ("eXit") -
// exactly the capitals. Case is ignored. A word without capitals must be
// typed whole.
bool keywordAccepts(std::wstring_view word, std::wstring_view input);

// The position of the keyword that input selects among the local words, or
// among the global words when input starts with '_'. A whole-word match wins;
// otherwise exactly one keyword must accept the input (no match and an
// ambiguous input both give nothing).
std::optional<std::size_t> matchKeyword(const std::vector<Keyword>& keywords, std::wstring_view input);

}  // namespace kaldo
