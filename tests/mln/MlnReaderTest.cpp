#include <gtest/gtest.h>

#include <clocale>
#include <numbers>
#include <string>
#include <vector>

#include "MlnFixture.h"
#include "mlnfile/MlnReader.h"

using kdml::MlnReadMode;
using kdml::MlnReadResult;
using mlntest::elementOf;
using mlntest::IsElement;

namespace {

std::string lines(std::initializer_list<std::string> items, const std::string& eol = "\n")
{
    std::string out;
    for (const std::string& item : items)
        out += item + eol;
    return out;
}

// A block with a description, flags and the given element list lines.
std::string block(const std::string& name, const std::string& description, int flags, const std::string& elements)
{
    return lines({"MLSTYLE", "2", " " + name, "70", " " + std::to_string(flags), "3", " " + description, "62",
                  " 256", "51", " 90", "52", " 90"})
        + elements + "0\n";
}

std::string element(double offset, int color, const std::string& linetype)
{
    return lines({"49", " " + std::to_string(offset), "62", " " + std::to_string(color), "6", " " + linetype});
}

class MlnReaderTest : public mlntest::MlnFixture {
protected:
    MlnReadResult read(const std::wstring& path, const wchar_t* name, MlnReadMode mode)
    {
        style.initMlineStyle();
        return kdml::readMlnStyle(path.c_str(), name, &style, &db, mode);
    }

    KxDbMlineStyle style;
};

}  // namespace

TEST_F(MlnReaderTest, ListsAndReadsOneOfSeveralBlocks)
{
    const std::wstring path = writeFile(
        "three.mln", block("FIRST", "one", 0, "71\n 1\n" + element(1, 1, "Continuous"))
                         + "between blocks\n"
                         + block("SECOND", "two", 0x1 | 0x10 | 0x400,
                                 "71\n 2\n" + element(0.25, 3, "Continuous") + element(-0.75, 5, "ByLayer"))
                         + block("THIRD", "three", 0, "71\n 0\n"));
    EXPECT_EQ(kdml::listMlnStyleNames(path.c_str()), (std::vector<std::wstring>{L"FIRST", L"SECOND", L"THIRD"}));

    for (MlnReadMode mode : {MlnReadMode::lenient, MlnReadMode::strict}) {
        ASSERT_EQ(read(path, L"second", mode), MlnReadResult::found);
        EXPECT_STREQ(style.description(), L"two");
        EXPECT_TRUE(style.filled());
        EXPECT_TRUE(style.startSquareCap());
        EXPECT_TRUE(style.endRoundCap());
        EXPECT_FALSE(style.showMiters());
        EXPECT_FALSE(style.endSquareCap());
        EXPECT_NEAR(style.startAngle(), std::numbers::pi / 2, 1e-12);
        ASSERT_EQ(style.numElements(), 2);
        EXPECT_THAT(elementOf(style, 0), IsElement(0.25, 3, L"Continuous"));
        EXPECT_THAT(elementOf(style, 1), IsElement(-0.75, 5, L"ByLayer"));
    }
    EXPECT_EQ(read(path, L"FOURTH", MlnReadMode::strict), MlnReadResult::notFound);
    EXPECT_EQ(read(folder().wstring() + L"/missing.mln", L"FIRST", MlnReadMode::lenient), MlnReadResult::notFound);
    std::wstring problem;
    EXPECT_TRUE(kdml::listMlnStyleNames((folder().wstring() + L"/missing.mln").c_str(), &problem).empty());
    EXPECT_EQ(problem, L"") << "a missing file is no problem to report";
    // A failed read (this process's memory from address 0) is no end of
    // file: the listing names it, strict reading finds the file broken.
    EXPECT_TRUE(kdml::listMlnStyleNames(L"/proc/self/mem", &problem).empty());
    EXPECT_EQ(problem, L"cannot read '/proc/self/mem': Input/output error.");
    EXPECT_EQ(read(L"/proc/self/mem", L"FIRST", MlnReadMode::strict), MlnReadResult::broken);
}

TEST_F(MlnReaderTest, KeyLinesMatchWholeAndWithoutCase)
{
    const std::wstring path = writeFile("keys.mln", lines({" MLSTYLE", "2", " BLANKED", "3", " wrong", "0"})
                                                        + lines({"mlstyle", "2", " lower", "3", " right", "0"})
                                                        + lines({"MLSTYLE", "2", "  TWO BLANKS", "3", " x", "0"}));
    EXPECT_EQ(read(path, L"BLANKED", MlnReadMode::lenient), MlnReadResult::notFound);
    ASSERT_EQ(read(path, L"LOWER", MlnReadMode::strict), MlnReadResult::found);
    EXPECT_STREQ(style.description(), L"right");
    // The list trims the name; reading drops only one character of it.
    EXPECT_EQ(kdml::listMlnStyleNames(path.c_str()),
              (std::vector<std::wstring>{L"BLANKED", L"lower", L"TWO BLANKS"}));
    EXPECT_EQ(read(path, L"TWO BLANKS", MlnReadMode::lenient), MlnReadResult::notFound);
    EXPECT_EQ(read(path, L" TWO BLANKS", MlnReadMode::lenient), MlnReadResult::found);

    // Listing takes the line after any "2" key line, inside a block or not;
    // reading wants "MLSTYLE" right before it.
    const std::wstring stray = writeFile("stray.mln", lines({"2", " LOOSE", "MLSTYLE", "3", "2", " INNER", "0"}));
    EXPECT_EQ(kdml::listMlnStyleNames(stray.c_str()), (std::vector<std::wstring>{L"LOOSE", L"INNER"}));
    EXPECT_EQ(read(stray, L"LOOSE", MlnReadMode::lenient), MlnReadResult::notFound);
    EXPECT_EQ(read(stray, L"INNER", MlnReadMode::lenient), MlnReadResult::notFound);
}

TEST_F(MlnReaderTest, ValuesAreTakenLiterallyAndNumbersAsTheRuntimeReadsThem)
{
    const std::wstring path =
        writeFile("values.mln", lines({"MLSTYLE", "2", " P", "3", " 100% sure %s %d", "70", "  3junk", "51",
                                       " not an angle", "52", " 45", "unknown key", "0"}));
    ASSERT_EQ(read(path, L"P", MlnReadMode::strict), MlnReadResult::found);
    EXPECT_STREQ(style.description(), L"100% sure %s %d");
    EXPECT_TRUE(style.filled());
    EXPECT_TRUE(style.showMiters());
    EXPECT_EQ(style.startAngle(), 0.0);
    EXPECT_NEAR(style.endAngle(), std::numbers::pi / 4, 1e-12);

    // A missing 70 leaves the flags as they were.
    const std::wstring noFlags = writeFile("noflags.mln", lines({"MLSTYLE", "2", " Q", "3", " d", "0"}));
    KxDbMlineStyle flagged;
    flagged.setFilled(true);
    flagged.setEndInnerArcs(true);
    ASSERT_EQ(kdml::readMlnStyle(noFlags.c_str(), L"Q", &flagged, &db, MlnReadMode::strict), MlnReadResult::found);
    EXPECT_TRUE(flagged.filled());
    EXPECT_TRUE(flagged.endInnerArcs());
}

TEST_F(MlnReaderTest, FillColourBuildsOnIndexTrueColourAndBookKey)
{
    const std::wstring path = writeFile(
        "fill.mln", lines({"MLSTYLE", "2", " ALL", "62", " 5", "420", " 16711680", "430", " PAINTS$SIGNAL RED", "0",
                           "MLSTYLE", "2", " INDEX", "62", " 5", "0", "MLSTYLE", "2", " TRUE", "62", " 5", "420",
                           " 65280", "0"}));
    ASSERT_EQ(read(path, L"ALL", MlnReadMode::strict), MlnReadResult::found);
    EXPECT_TRUE(style.fillColor().isByColor());
    EXPECT_EQ(style.fillColor().color() & 0xFFFFFFu, 0xFF0000u);
    EXPECT_STREQ(style.fillColor().getDictionaryKey(), L"PAINTS$SIGNAL RED");

    ASSERT_EQ(read(path, L"INDEX", MlnReadMode::strict), MlnReadResult::found);
    EXPECT_TRUE(style.fillColor().isByACI());
    EXPECT_EQ(style.fillColor().colorIndex(), 5);
    EXPECT_STREQ(style.fillColor().getDictionaryKey(), L"");

    ASSERT_EQ(read(path, L"TRUE", MlnReadMode::strict), MlnReadResult::found);
    EXPECT_TRUE(style.fillColor().isByColor());
    EXPECT_EQ(style.fillColor().green(), 255);
}

TEST_F(MlnReaderTest, ElementColoursLinetypesAndSkippedSlots)
{
    const std::wstring path = writeFile(
        "elements.mln",
        lines({"MLSTYLE", "2", " E", "71", " 3", "49", " 0.5", "62", " 1", "420", " 255", "430", " BOOK$BLUE", "6",
               " Continuous", "not 49", "49", " -0.5", "62", " 300", "6", " NOSUCHTYPE", "0"}));
    ASSERT_EQ(read(path, L"E", MlnReadMode::lenient), MlnReadResult::found);
    ASSERT_EQ(style.numElements(), 3);
    const auto first = elementOf(style, 0);
    EXPECT_DOUBLE_EQ(first.offset, 0.5);
    EXPECT_TRUE(first.color.isByColor());
    EXPECT_EQ(first.color.blue(), 255);
    EXPECT_STREQ(first.color.getDictionaryKey(), L"BOOK$BLUE");
    EXPECT_EQ(first.linetype, L"Continuous");
    // The skipped slot: offset 0, colour index 0 then true colour 0 (black).
    const auto skipped = elementOf(style, 1);
    EXPECT_DOUBLE_EQ(skipped.offset, 0.0);
    EXPECT_TRUE(skipped.color.isByColor());
    EXPECT_EQ(skipped.color.color() & 0xFFFFFFu, 0u);
    // Index 300 becomes by layer; an unknown linetype falls back to Continuous.
    const auto last = elementOf(style, 2);
    EXPECT_DOUBLE_EQ(last.offset, -0.5);
    EXPECT_TRUE(last.color.isByLayer());
    EXPECT_EQ(last.linetype, L"Continuous");
}

TEST_F(MlnReaderTest, ElementCountOfZeroOrLessRemovesEveryElement)
{
    const std::wstring path = writeFile("count.mln", lines({"MLSTYLE", "2", " Z", "71", " 0", "3", " after zero", "0",
                                                            "MLSTYLE", "2", " N", "71", " -4", "3", " after", "0"}));
    for (const wchar_t* name : {L"Z", L"N"}) {
        style.initMlineStyle();
        int index = 0;
        style.addElement(index, 1.0, KxCmColor(), KxDbObjectId::kNull);
        ASSERT_EQ(kdml::readMlnStyle(path.c_str(), name, &style, &db, MlnReadMode::strict), MlnReadResult::found);
        EXPECT_EQ(style.numElements(), 0);
        EXPECT_EQ(std::wstring(style.description()).substr(0, 5), L"after");
    }
}

TEST_F(MlnReaderTest, MissingLinetypeKeyAndColourKeyInEachMode)
{
    const std::wstring noSix = writeFile(
        "nosix.mln", lines({"MLSTYLE", "2", " S", "71", " 1", "49", " 0.5", "62", " 2", "x", " Continuous", "0"}));
    EXPECT_EQ(read(noSix, L"S", MlnReadMode::strict), MlnReadResult::broken);
    // Lenient reading takes the line after the colour index as key line and
    // the next one as the linetype value.
    ASSERT_EQ(read(noSix, L"S", MlnReadMode::lenient), MlnReadResult::found);
    ASSERT_EQ(style.numElements(), 1);
    EXPECT_EQ(elementOf(style, 0).color.colorIndex(), 2);
    EXPECT_EQ(elementOf(style, 0).linetype, L"Continuous");

    const std::wstring noSixtyTwo = writeFile(
        "no62.mln", lines({"MLSTYLE", "2", " C", "71", " 1", "49", " 0.5", "63", " 2", "6", " Continuous", "0"}));
    EXPECT_EQ(read(noSixtyTwo, L"C", MlnReadMode::strict), MlnReadResult::broken);
    EXPECT_EQ(read(noSixtyTwo, L"C", MlnReadMode::lenient), MlnReadResult::found);

    // A skipped slot costs lenient reading one line and strict reading two.
    const std::wstring skip = writeFile(
        "skip.mln", lines({"MLSTYLE", "2", " K", "71", " 1", "48", "3", " described", "0"}));
    ASSERT_EQ(read(skip, L"K", MlnReadMode::lenient), MlnReadResult::found);
    EXPECT_STREQ(style.description(), L"described");
    ASSERT_EQ(read(skip, L"K", MlnReadMode::strict), MlnReadResult::found);
    EXPECT_STREQ(style.description(), L"");
}

TEST_F(MlnReaderTest, FileEndingWithoutEndItem)
{
    const std::string cut = "MLSTYLE\n2\n W\n3\n kept\n70\n 1";
    const std::wstring withoutBreak = writeFile("nobreak.mln", cut);
    const std::wstring withBreak = writeFile("break.mln", cut + "\n");
    for (MlnReadMode mode : {MlnReadMode::lenient, MlnReadMode::strict}) {
        ASSERT_EQ(read(withoutBreak, L"W", mode), MlnReadResult::found);
        EXPECT_STREQ(style.description(), L"kept");
        EXPECT_TRUE(style.filled());
    }
    ASSERT_EQ(read(withBreak, L"W", MlnReadMode::lenient), MlnReadResult::found);
    EXPECT_TRUE(style.filled());
    EXPECT_EQ(read(withBreak, L"W", MlnReadMode::strict), MlnReadResult::broken);

    // Cut inside the element list.
    const std::wstring inList = writeFile("inlist.mln", "MLSTYLE\n2\n L\n71\n 2\n49\n 0.5\n62\n 1\n6\n Continuous\n");
    EXPECT_EQ(read(inList, L"L", MlnReadMode::strict), MlnReadResult::broken);
    EXPECT_EQ(read(inList, L"L", MlnReadMode::lenient), MlnReadResult::found);
}

TEST_F(MlnReaderTest, LongLinesAreReadInPiecesOf2047Characters)
{
    const std::string longText(2047 + 10, 'd');
    const std::wstring path = writeFile(
        "long.mln", lines({"MLSTYLE", "2", " LONG", "3", " " + longText, "70", " 1", "0"}));
    ASSERT_EQ(read(path, L"LONG", MlnReadMode::strict), MlnReadResult::found);
    // The value line's first 2047 characters, less the blank.
    EXPECT_EQ(std::wstring(style.description()), std::wstring(2046, L'd'));
    EXPECT_TRUE(style.filled());

    // A line of exactly 2047 characters is followed by an empty line, which
    // is read as a key line and ignored.
    const std::wstring exact = writeFile(
        "exact.mln", lines({"MLSTYLE", "2", " X", "3", " " + std::string(2046, 'e'), "70", " 2", "0"}));
    ASSERT_EQ(read(exact, L"X", MlnReadMode::strict), MlnReadResult::found);
    EXPECT_EQ(std::wstring(style.description()), std::wstring(2046, L'e'));
    EXPECT_TRUE(style.showMiters());
}

TEST_F(MlnReaderTest, ThreeHundredElementsKeepTheFirst256)
{
    std::string elements;
    for (int i = 0; i < 300; ++i)
        elements += element(300 - i, 1 + i % 255, "Continuous");
    const std::wstring path = writeFile("many.mln", lines({"MLSTYLE", "2", " MANY", "71", " 300"}) + elements
                                                        + lines({"3", " after the list", "0"}));
    for (MlnReadMode mode : {MlnReadMode::lenient, MlnReadMode::strict}) {
        ASSERT_EQ(read(path, L"MANY", mode), MlnReadResult::found);
        ASSERT_EQ(style.numElements(), 256);
        EXPECT_DOUBLE_EQ(elementOf(style, 0).offset, 300);
        EXPECT_DOUBLE_EQ(elementOf(style, 255).offset, 45);
        EXPECT_EQ(elementOf(style, 254).color.colorIndex(), 255);
        EXPECT_STREQ(style.description(), L"after the list");
    }
}

TEST_F(MlnReaderTest, CrLfAndBareLfReadAlike)
{
    const std::wstring crlf = writeFile("crlf.mln", mlntest::wallBlock("\r\n"));
    const std::wstring lf = writeFile("lf.mln", mlntest::wallBlock("\n"));
    const std::wstring strayCr = writeFile("cr.mln", lines({"MLSTYLE", "2\r\r", " WALL", "0"}));
    for (const std::wstring& path : {crlf, lf}) {
        EXPECT_EQ(kdml::listMlnStyleNames(path.c_str()), std::vector<std::wstring>{L"WALL"});
        ASSERT_EQ(read(path, L"WALL", MlnReadMode::strict), MlnReadResult::found);
        ASSERT_EQ(style.numElements(), 2);
        EXPECT_THAT(elementOf(style, 1), IsElement(-0.5, 256, L"Continuous"));
    }
    EXPECT_EQ(read(strayCr, L"WALL", MlnReadMode::strict), MlnReadResult::notFound);
}

TEST_F(MlnReaderTest, NonAsciiNamesInUtf8Locale)
{
    const std::string saved = std::setlocale(LC_CTYPE, nullptr);
    ASSERT_NE(std::setlocale(LC_CTYPE, "C.UTF-8"), nullptr);
    const std::wstring path = writeFile(
        "utf8.mln", lines({"MLSTYLE", "2", " MAUER\xC3\x84", "3", " \xC3\xBC" "ber", "0", "MLSTYLE", "2",
                           "\xC3\xA9x\xC3\xA9", "3", " accent", "0", "MLSTYLE", "2", " bad\xFF", "0"}));
    EXPECT_EQ(kdml::listMlnStyleNames(path.c_str()),
              (std::vector<std::wstring>{L"MAUER\u00C4", L"\u00E9x\u00E9", L"bad?"}));
    EXPECT_EQ(read(path, L"mauer\u00E4", MlnReadMode::strict), MlnReadResult::found);
    EXPECT_STREQ(style.description(), L"\u00FCber");
    // The first character dropped is a whole (two-byte) character.
    ASSERT_EQ(read(path, L"x\u00E9", MlnReadMode::strict), MlnReadResult::found);
    EXPECT_STREQ(style.description(), L"accent");
    std::setlocale(LC_CTYPE, saved.c_str());
}

TEST_F(MlnReaderTest, LenientReadingClosesTheStyleStrictReadingDoesNot)
{
    const std::wstring path = writeFile("wall.mln", mlntest::wallBlock());
    const KxDbObjectId id = styleId(kxdbStandardStyleName);
    for (MlnReadMode mode : {MlnReadMode::lenient, MlnReadMode::strict}) {
        KxDbMlineStyle* opened = nullptr;
        ASSERT_EQ(kxdbOpenObject(opened, id, KxDb::kForWrite), Kald::eOk);
        EXPECT_EQ(kdml::readMlnStyle(path.c_str(), L"WALL", opened, &db, mode), MlnReadResult::found);
        KxDbObjectPtr<KxDbMlineStyle> again(id, KxDb::kForRead);
        EXPECT_EQ(again.openStatus() == Kald::eOk, mode == MlnReadMode::lenient);
        if (mode == MlnReadMode::strict)
            opened->close();
    }
}
