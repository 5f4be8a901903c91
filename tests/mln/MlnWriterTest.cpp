#include <gtest/gtest.h>

#include <numbers>
#include <sstream>
#include <string>

#include "TestMlines.h"
#include "MlnFixture.h"
#include "kaldo/ed/InputSource.h"
#include "kxstring.h"
#include "mlnfile/MlnFileMerge.h"
#include "mlnfile/MlnReader.h"
#include "mlnfile/MlnStyleSaver.h"

using mlntest::elementOf;

namespace {

class MlnWriterTest : public mlntest::MlnFixture {
protected:
    void addWall(const wchar_t* name)
    {
        addMlineStyle(db, name, [&](KxDbMlineStyle& s) { addElements(s, {0.5, -0.5}, db.continuousLinetype()); });
    }

    bool save(const wchar_t* name, const std::wstring& path)
    {
        problem.clear();
        return kdml::saveMlnStyleToFile(db.mlineStyleDictionaryId(), name, path.c_str(), problem);
    }

    short dimzin() const { return static_cast<short>(db.dimzin()); }

    // Why the last save could not read or write its file.
    std::wstring problem;
};

std::string crlf(std::initializer_list<const char*> lines)
{
    std::string out;
    for (const char* line : lines)
        out += std::string(line) + "\r\n";
    return out;
}

}  // namespace

TEST_F(MlnWriterTest, WritesTheWallBlockByteForByte)
{
    addWall(L"WALL");
    db.setDimzin(8);
    const std::wstring path = (folder() / "wall.mln").wstring();
    ASSERT_TRUE(save(L"wall", path));
    EXPECT_EQ(fileText(path), mlntest::wallBlock("\r\n"));
    EXPECT_EQ(dimzin(), 8);
}

TEST_F(MlnWriterTest, RoundTripKeepsEveryProperty)
{
    KxDbObjectId dashed;
    ASSERT_EQ(kxdbLoadLinetypeFromFile(L"kaldo.lin", L"DASHED", dashed, &db), Kald::eOk);
    addMlineStyle(db, L"ROUND", [&](KxDbMlineStyle& s) {
        s.setDescription(L"100% round, 5%d");
        s.setFilled(true);
        s.setShowMiters(true);
        s.setStartInnerArcs(true);
        s.setEndRoundCap(true);
        s.setEndSquareCap(true);
        KxCmColor fill;
        fill.setRGB(10, 20, 30);
        fill.setNames(L"SKY", L"PAINTS");
        s.setFillColor(fill);
        s.setStartAngle(std::numbers::pi / 4);
        s.setEndAngle(3 * std::numbers::pi / 4);
        KxCmColor red;
        red.setColorIndex(1);
        KxCmColor rgb;
        rgb.setRGB(1, 2, 3);
        rgb.setNames(L"GREY", L"BOOK");
        addElements(s, {1.125}, dashed, red);
        addElements(s, {0.0}, db.continuousLinetype(), rgb);
        addElements(s, {-2.0 / 3.0}, db.byLayerLinetype());
    });
    const std::wstring path = (folder() / "round.mln").wstring();
    ASSERT_TRUE(save(L"ROUND", path));

    KxDbMlineStyle back;
    ASSERT_EQ(kdml::readMlnStyle(path.c_str(), L"ROUND", &back, &db, kdml::MlnReadMode::strict),
              kdml::MlnReadResult::found);
    KxDbObjectPtr<KxDbMlineStyle> original(styleId(L"ROUND"), KxDb::kForRead);
    ASSERT_TRUE(original);
    EXPECT_STREQ(back.description(), original->description());
    EXPECT_EQ(back.filled(), original->filled());
    EXPECT_EQ(back.showMiters(), original->showMiters());
    EXPECT_EQ(back.startSquareCap(), original->startSquareCap());
    EXPECT_EQ(back.startInnerArcs(), original->startInnerArcs());
    EXPECT_EQ(back.startRoundCap(), original->startRoundCap());
    EXPECT_EQ(back.endSquareCap(), original->endSquareCap());
    EXPECT_EQ(back.endInnerArcs(), original->endInnerArcs());
    EXPECT_EQ(back.endRoundCap(), original->endRoundCap());
    EXPECT_EQ(back.fillColor(), original->fillColor());
    EXPECT_NEAR(back.startAngle(), original->startAngle(), 1e-13);
    EXPECT_NEAR(back.endAngle(), original->endAngle(), 1e-13);
    ASSERT_EQ(back.numElements(), original->numElements());
    for (int i = 0; i < back.numElements(); ++i) {
        const auto written = elementOf(*original, i);
        const auto read = elementOf(back, i);
        EXPECT_NEAR(read.offset, written.offset, 1e-14) << i;
        EXPECT_EQ(read.color, written.color) << i;
        EXPECT_EQ(read.linetype, written.linetype) << i;
    }
    const std::string text = fileText(path);
    EXPECT_NE(text.find("62\r\n 5\r\n420\r\n 660510\r\n430\r\n PAINTS$SKY\r\n"), std::string::npos) << text;
    EXPECT_NE(text.find("49\r\n -0.66666666666667\r\n"), std::string::npos) << text;
}

TEST_F(MlnWriterTest, MergeReplacesInPlaceAppendsAndKeepsOtherLines)
{
    addWall(L"WALL");
    const std::string before = "first line, kept\nMLSTYLE\n2\n wall\n3\n old\n0\n";
    const std::string other = "MLSTYLE\n2\n OTHER\n3\n caf\xE9 \n0\n";
    const std::wstring path = writeFile("two.mln", before + other);
    ASSERT_TRUE(save(L"WALL", path));
    ASSERT_TRUE(save(L"Wall", path));
    const std::string merged = fileText(path);
    EXPECT_EQ(merged, "first line, kept\r\n" + mlntest::wallBlock("\r\n") +
                          crlf({"MLSTYLE", "2", " OTHER", "3", " caf\xE9 ", "0"}));
    EXPECT_EQ(kdml::listMlnStyleNames(path.c_str()), (std::vector<std::wstring>{L"WALL", L"OTHER"}));

    // A new name is appended; a new file holds just the block.
    addWall(L"SECOND");
    ASSERT_TRUE(save(L"SECOND", path));
    EXPECT_EQ(kdml::listMlnStyleNames(path.c_str()), (std::vector<std::wstring>{L"WALL", L"OTHER", L"SECOND"}));
    const std::wstring fresh = (folder() / "fresh.mln").wstring();
    ASSERT_TRUE(save(L"SECOND", fresh));
    EXPECT_EQ(kdml::listMlnStyleNames(fresh.c_str()), std::vector<std::wstring>{L"SECOND"});

    // An old block without its "0" takes everything after it along.
    const std::wstring open = writeFile("open.mln", other + "MLSTYLE\n2\n WALL\n3\n cut off\nMLSTYLE\n2\n GONE\n");
    ASSERT_TRUE(save(L"WALL", open));
    EXPECT_EQ(kdml::listMlnStyleNames(open.c_str()), (std::vector<std::wstring>{L"OTHER", L"WALL"}));

    // "MLSTYLE" not followed by "2", and a name that differs, are passed over.
    const std::vector<std::string> block = {"NEW"};
    EXPECT_EQ(kdml::mergeMlnStyleBlock({"MLSTYLE", "MLSTYLE", "2", " X", "0"}, block, L"X"),
              (std::vector<std::string>{"MLSTYLE", "MLSTYLE", "2", " X", "0", "NEW"}));
    EXPECT_EQ(kdml::mergeMlnStyleBlock({"MLSTYLE", "2", " Y", "MLSTYLE", "2", " X"}, block, L"x"),
              (std::vector<std::string>{"MLSTYLE", "2", " Y", "NEW"}));
}

TEST_F(MlnWriterTest, FailuresLeaveTheFileAsItWas)
{
    const std::wstring path = writeFile("keep.mln", "MLSTYLE\n2\n KEEP\n0\n");
    EXPECT_FALSE(save(L"NOSUCHSTYLE", path));
    EXPECT_EQ(problem, L"") << "a style that is not there is no problem of the file";
    EXPECT_EQ(fileText(path), "MLSTYLE\n2\n KEEP\n0\n");
    addWall(L"WALL");
    const std::wstring noFolder = (folder() / "no" / "such" / "folder.mln").wstring();
    EXPECT_FALSE(save(L"WALL", noFolder));
    EXPECT_EQ(problem, L"cannot write '" + noFolder + L"': No such file or directory.");
    EXPECT_FALSE(save(L"WALL", folder().wstring()));
    EXPECT_EQ(problem, L"cannot read '" + folder().wstring() + L"': it is a folder.");
    // A file whose read fails (this process's memory read from address 0)
    // is not taken for an empty one.
    EXPECT_FALSE(save(L"WALL", L"/proc/self/mem"));
    EXPECT_EQ(problem, L"cannot read '/proc/self/mem': Input/output error.");
    EXPECT_EQ(fileText(path), "MLSTYLE\n2\n KEEP\n0\n");
}

TEST_F(MlnWriterTest, SaveAsksForTheFileOnTheCommandLineInScripts)
{
    addWall(L"WALL");
    const std::wstring path = (folder() / "chosen").wstring();
    kaldo::ScriptInputSource script(std::make_unique<std::istringstream>(kxutToMultiByte(path) + "\n"));
    editor.setInputSource(&script);
    kdml::saveMlnStyle(db.mlineStyleDictionaryId(), L"WALL");
    // The dialog starts in the Support folder.
    const std::wstring start = (kaldo::host().supportDir / "").wstring();
    EXPECT_NE(transcript.find(L"Enter file name <" + start + L">"), std::wstring::npos)
        << std::string(transcript.begin(), transcript.end());
    EXPECT_EQ(fileText(path + L".mln"), mlntest::wallBlock("\r\n"));

    kaldo::ScriptInputSource cancelled(std::make_unique<std::istringstream>("^C\n"));
    editor.setInputSource(&cancelled);
    kdml::saveMlnStyle(db.mlineStyleDictionaryId(), L"WALL");
    EXPECT_EQ(fileText(path + L".mln"), mlntest::wallBlock("\r\n"));
}
