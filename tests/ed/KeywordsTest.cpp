#include "kaldo/ed/Keywords.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace kaldo {
namespace {

std::optional<std::wstring> selected(const wchar_t* list, const wchar_t* input)
{
    const auto keywords = parseKeywordList(list);
    const auto index = matchKeyword(keywords, input);
    return index ? std::optional(keywords[*index].global) : std::nullopt;
}

TEST(Keywords, ListSplitsLocalAndGlobalWords)
{
    const auto keywords = parseKeywordList(L"Schliessen Zurueck _Close Undo");
    ASSERT_EQ(keywords.size(), 2u);
    EXPECT_EQ(keywords[0].local, L"Schliessen");
    EXPECT_EQ(keywords[0].global, L"Close");
    EXPECT_EQ(keywords[1].local, L"Zurueck");
    EXPECT_EQ(keywords[1].global, L"Undo");

    const auto plain = parseKeywordList(L"  Top   Zero Bottom ");
    ASSERT_EQ(plain.size(), 3u);
    EXPECT_EQ(plain[2].local, L"Bottom");
    EXPECT_EQ(plain[2].global, L"Bottom");

    EXPECT_TRUE(parseKeywordList(L"").empty());
}

// What each input selects from a list, as its global word; nothing where
// it is no keyword of the list.
TEST(Keywords, InputsSelectByCapitalsOrTheWholeWord)
{
    struct Row {
        const wchar_t* list;
        std::vector<std::pair<const wchar_t*, const wchar_t*>> inputs;  // input, selected (null: none)
    };
    const Row rows[] = {
        // The capital part or the whole word, in any case.
        {L"Close Undo _Close Undo",
         {{L"C", L"Close"}, {L"c", L"Close"}, {L"clo", L"Close"}, {L"CLOSE", L"Close"}, {L"u", L"Undo"},
          {L"_undo", L"Undo"}, {L"closed", nullptr}, {L"x", nullptr}, {L"", nullptr}, {L"_", nullptr}}},
        // Abbreviations must reach the capitals; global words follow their
        // own capitals: "Style" and "Scale" both start with the single S.
        {L"Justification Scale STyle _Justification Scale Style",
         {{L"S", L"Scale"}, {L"st", L"Style"}, {L"ST", L"Style"}, {L"sty", L"Style"}, {L"sc", L"Scale"},
          {L"j", L"Justification"}, {L"style", L"Style"}, {L"_style", L"Style"}, {L"_st", L"Style"},
          {L"_s", nullptr}}},
        // Local words differ from global ones.
        {L"Oben Null Unten _Top Zero Bottom",
         {{L"o", L"Top"}, {L"unten", L"Bottom"}, {L"_Top", L"Top"}, {L"_b", L"Bottom"}, {L"top", nullptr}}},
        // Ambiguous abbreviations select nothing.
        {L"Scale Size", {{L"s", nullptr}, {L"si", L"Size"}, {L"size", L"Size"}}},
        // A whole word wins over an abbreviation of another.
        {L"Ab ABc", {{L"ab", L"Ab"}}},
        // Capitals inside the word: only those or the whole word.
        {L"eXit", {{L"x", L"eXit"}, {L"ex", nullptr}, {L"EXIT", L"eXit"}}},
        // No capitals: the whole word only; all capitals: the whole word only.
        {L"none UNDO", {{L"no", nullptr}, {L"none", L"none"}, {L"un", nullptr}, {L"undo", L"UNDO"}}},
    };
    for (const Row& row : rows)
        for (const auto& [input, global] : row.inputs)
            EXPECT_EQ(selected(row.list, input), global ? std::optional<std::wstring>(global) : std::nullopt)
                << row.list << " / " << input;
}

}  // namespace
}  // namespace kaldo
