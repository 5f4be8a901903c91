// The small text rules of MLINE: file names typed or chosen for a missing
// style, and prompts formatted with values (the casing of style names:
// MlineSession).
#include "host/FormattedText.h"
#include "mline/MlnFileName.h"

#include <gtest/gtest.h>

#include <string>

namespace kdml {
namespace {

TEST(MlineTexts, TypedFileNamesGetTheExtensionOnlyWithoutAnyDot)
{
    EXPECT_EQ(typedMlnFileName(L"walls"), L"walls.mln");
    EXPECT_EQ(typedMlnFileName(L"walls.txt"), L"walls.txt");
    EXPECT_EQ(typedMlnFileName(L"walls."), L"walls.");
    // A dot in a folder name counts as well.
    EXPECT_EQ(typedMlnFileName(L"/home/a.b/walls"), L"/home/a.b/walls");
    // The extension goes on before bars turn into blanks.
    EXPECT_EQ(typedMlnFileName(L"my|walls"), L"my walls.mln");
    EXPECT_EQ(typedMlnFileName(L"/x/my|styles|v2.mln"), L"/x/my styles v2.mln");
    EXPECT_EQ(barsToBlanks(L"/x|y/||z.mln"), L"/x y/  z.mln");
    EXPECT_EQ(barsToBlanks(L"/plain/path.mln"), L"/plain/path.mln");
}

TEST(MlineTexts, PromptsCarryTheirValues)
{
    EXPECT_EQ(formattedText(L"Enter mline scale <%.4f> :", -0.5), L"Enter mline scale <-0.5000> :");
    EXPECT_EQ(formattedText(L"<%ls>", L""), L"<>");
    // Longer than the first buffer: still whole.
    const std::wstring longName(1000, L'w');
    EXPECT_EQ(formattedText(L"[%ls]", longName.c_str()), L"[" + longName + L"]");
}

}  // namespace
}  // namespace kdml
