#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <filesystem>
#include <fstream>

#include "TreePaths.h"
#include "kaldo/core/Host.h"
#include "kaldo/db/LinetypeFile.h"
#include "kxdb.h"

namespace {

// A temporary Support folder made the host's for the test's span.
class SupportFolder {
public:
    SupportFolder() : m_saved(kaldo::host().supportDir) { kaldo::host().supportDir = path(); }
    ~SupportFolder() { kaldo::host().supportDir = m_saved; }
    std::filesystem::path path() const { return m_dir.path().toStdString(); }
    void write(const char* name, const char* text) const { std::ofstream(path() / name) << text; }

private:
    QTemporaryDir m_dir;
    std::filesystem::path m_saved;
};

}  // namespace

TEST(LinetypeFile, ParsesDefinitionsAndSkipsWhatItCannotUse)
{
    const auto defs = kaldo::parseLinetypeFile(
        ";; comment\n"
        "*DASHED,Dashed __ __ __\n"
        "A,.5,-.25\n"
        "\n"
        "*BROKEN,no pattern line follows\n"
        "*DOTS,Dots\r\n"
        "A, 0, -0.25 \r\n"
        "*BAD,Bad number\n"
        "A,x,-1\n"
        "*WITHTEXT,Text inside\n"
        "A,1,-.5,[\"T\",STANDARD,S=.1],-.5\n");
    ASSERT_EQ(defs.size(), 3u);
    EXPECT_EQ(defs[0].name, L"DASHED");
    EXPECT_EQ(defs[0].description, L"Dashed __ __ __");
    EXPECT_EQ(defs[0].dashes, (std::vector<double>{0.5, -0.25}));
    EXPECT_EQ(defs[1].name, L"DOTS");
    EXPECT_EQ(defs[1].dashes, (std::vector<double>{0.0, -0.25}));
    EXPECT_EQ(defs[2].dashes, (std::vector<double>{1.0, -0.5, -0.5}));
}

TEST(LinetypeFile, LoadsFromSupportFolderOnce)
{
    SupportFolder support;
    support.write("test.lin", "*HIDDEN,Hidden _ _ _\nA,.25,-.125\n*CENTER,Center\nA,1.25,-.25,.25,-.25\n");
    KxDbDatabase db;

    KxDbObjectId id;
    ASSERT_EQ(kxdbLoadLinetypeFromFile(L"test.lin", L"center", id, &db, 1), Kald::eOk);
    {
        KxDbObjectPtr<KxDbLinetypeTableRecord> record(id, KxDb::kForRead);
        ASSERT_TRUE(record);
        EXPECT_EQ(record->name(), L"CENTER");
        EXPECT_EQ(record->numDashes(), 4);
        EXPECT_DOUBLE_EQ(record->patternLength(), 2.0);
        EXPECT_EQ(record->dashLengthAt(1), -0.25);
    }
    KxDbObjectId again;
    EXPECT_EQ(kxdbLoadLinetypeFromFile(L"test.lin", L"CENTER", again, &db, 1), Kald::eOk);
    EXPECT_EQ(again, id);

    const std::wstring fullPath = (support.path() / "test.lin").wstring();
    EXPECT_EQ(kxdbLoadLinetypeFromFile(fullPath.c_str(), L"HIDDEN", id, &db, 1), Kald::eOk);
    EXPECT_EQ(kxdbLoadLinetypeFromFile(L"test.lin", L"PHANTOM", id, &db, 1), Kald::eKeyNotFound);
    EXPECT_TRUE(id.isNull());
    EXPECT_EQ(kxdbLoadLinetypeFromFile(L"missing.lin", L"HIDDEN", id, &db, 1), Kald::eFileNotFound);

    KxDbObjectPtr<KxDbLinetypeTable> table(db.linetypeTableId(), KxDb::kForRead);
    int count = 0;
    for (auto it = table->newIterator(); !it->done(); it->step())
        ++count;
    EXPECT_EQ(count, 5);  // ByBlock, ByLayer, Continuous, CENTER, HIDDEN
}

TEST(LinetypeFile, ShippedFilesHoldTheSameNames)
{
    const std::filesystem::path support = sourceDir() / "support";
    auto names = [](const std::filesystem::path& file) {
        std::ifstream in(file);
        const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        std::vector<std::wstring> out;
        for (const auto& def : kaldo::parseLinetypeFile(text)) {
            EXPECT_FALSE(def.dashes.empty()) << file;
            out.push_back(def.name);
        }
        return out;
    };
    const auto inch = names(support / "kaldo.lin");
    EXPECT_EQ(inch, names(support / "kaldoiso.lin"));
    for (const wchar_t* name : {L"DASHED", L"DASHED2", L"DASHEDX2", L"HIDDEN", L"HIDDEN2", L"CENTER", L"CENTER2",
                                L"DOT", L"DASHDOT", L"BORDER", L"PHANTOM"})
        EXPECT_NE(std::find(inch.begin(), inch.end(), name), inch.end()) << name;
}

TEST(LinetypeFile, ReservedStrings)
{
    EXPECT_STREQ(kxdbGetReservedString(0, true), L"ByLayer");
    EXPECT_STREQ(kxdbGetReservedString(1, false), L"ByBlock");
    EXPECT_STREQ(kxdbGetReservedString(3, true), L"Continuous");
    EXPECT_EQ(kxdbGetReservedString(2, true), nullptr);
}
