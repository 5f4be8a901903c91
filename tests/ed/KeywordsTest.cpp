#include "kaldo/ed/Keywords.h"

#include <gtest/gtest.h>

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

TEST(Keywords, CapitalPartOrWholeWordInAnyCase)
{
    const wchar_t* list = L"Close Undo _Close Undo";
    EXPECT_EQ(selected(list, L"C"), L"Close");
    EXPECT_EQ(selected(list, L"c"), L"Close");
    EXPECT_EQ(selected(list, L"clo"), L"Close");
    EXPECT_EQ(selected(list, L"CLOSE"), L"Close");
    EXPECT_EQ(selected(list, L"u"), L"Undo");
    EXPECT_EQ(selected(list, L"_undo"), L"Undo");
    EXPECT_EQ(selected(list, L"closed"), std::nullopt);
    EXPECT_EQ(selected(list, L"x"), std::nullopt);
    EXPECT_EQ(selected(list, L""), std::nullopt);
    EXPECT_EQ(selected(list, L"_"), std::nullopt);
}

TEST(Keywords, AbbreviationsMustReachTheCapitals)
{
    const wchar_t* list = L"Justification Scale STyle _Justification Scale Style";
    EXPECT_EQ(selected(list, L"S"), L"Scale");
    EXPECT_EQ(selected(list, L"st"), L"Style");
    EXPECT_EQ(selected(list, L"ST"), L"Style");
    EXPECT_EQ(selected(list, L"sty"), L"Style");
    EXPECT_EQ(selected(list, L"sc"), L"Scale");
    EXPECT_EQ(selected(list, L"j"), L"Justification");
    EXPECT_EQ(selected(list, L"style"), L"Style");
    // Global words follow their own capitals: "Style" and "Scale" both
    // start with the single capital S.
    EXPECT_EQ(selected(list, L"_style"), L"Style");
    EXPECT_EQ(selected(list, L"_st"), L"Style");
    EXPECT_EQ(selected(list, L"_s"), std::nullopt);
}

TEST(Keywords, LocalWordsDifferFromGlobalOnes)
{
    const wchar_t* list = L"Oben Null Unten _Top Zero Bottom";
    EXPECT_EQ(selected(list, L"o"), L"Top");
    EXPECT_EQ(selected(list, L"unten"), L"Bottom");
    EXPECT_EQ(selected(list, L"_Top"), L"Top");
    EXPECT_EQ(selected(list, L"_b"), L"Bottom");
    EXPECT_EQ(selected(list, L"top"), std::nullopt);
}

TEST(Keywords, AmbiguousAndUnusualWords)
{
    EXPECT_EQ(selected(L"Scale Size", L"s"), std::nullopt);
    EXPECT_EQ(selected(L"Scale Size", L"si"), L"Size");
    EXPECT_EQ(selected(L"Scale Size", L"size"), L"Size");
    // A whole word wins over an abbreviation of another.
    EXPECT_EQ(selected(L"Ab ABc", L"ab"), L"Ab");
    // Capitals inside the word: only those or the whole word.
    EXPECT_EQ(selected(L"eXit", L"x"), L"eXit");
    EXPECT_EQ(selected(L"eXit", L"ex"), std::nullopt);
    EXPECT_EQ(selected(L"eXit", L"EXIT"), L"eXit");
    // No capitals: the whole word only; all capitals: the whole word only.
    EXPECT_EQ(selected(L"none UNDO", L"no"), std::nullopt);
    EXPECT_EQ(selected(L"none UNDO", L"none"), L"none");
    EXPECT_EQ(selected(L"none UNDO", L"un"), std::nullopt);
    EXPECT_EQ(selected(L"none UNDO", L"undo"), L"UNDO");
}

}  // namespace
}  // namespace kaldo
