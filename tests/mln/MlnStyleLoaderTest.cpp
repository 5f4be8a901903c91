#include <gtest/gtest.h>

#include <string>

#include "MlnFixture.h"
#include "mlnfile/MlnStyleLoader.h"

using mlntest::elementOf;
using mlntest::IsElement;

namespace {

class MlnStyleLoaderTest : public mlntest::MlnFixture {
protected:
    int elementCount(KxDbObjectId id) const
    {
        KxDbObjectPtr<KxDbMlineStyle> style(id, KxDb::kForRead);
        return style ? style->numElements() : -1;
    }
};

const std::string kThreeElements = "MLSTYLE\n2\n STANDARD\n3\n three\n71\n 3\n"
                                   "49\n 1\n62\n 1\n6\n DASHED\n"
                                   "49\n 0\n62\n 2\n6\n Continuous\n"
                                   "49\n -1\n62\n 3\n6\n Continuous\n0\n";

}  // namespace

TEST_F(MlnStyleLoaderTest, DialogLoaderOverwritesInPlaceAndLoadsMissingLinetypes)
{
    const std::wstring three = writeFile("three.mln", kThreeElements);
    const std::wstring one = writeFile("one.mln", "MLSTYLE\n2\n Standard\n71\n 1\n49\n 0\n62\n 256\n6\n Continuous\n0\n");
    const KxDbObjectId standard = styleId(kxdbStandardStyleName);

    EXPECT_EQ(kdml::loadMlnStyleIntoDictionary(db.mlineStyleDictionaryId(), L"standard", three.c_str()), standard);
    ASSERT_EQ(elementCount(standard), 3);
    {
        KxDbObjectPtr<KxDbMlineStyle> style(standard, KxDb::kForRead);
        EXPECT_STREQ(style->description(), L"three");
        // DASHED came from kaldo.lin (MEASUREMENT 0): half-inch dashes.
        EXPECT_EQ(elementOf(*style, 0).linetype, L"DASHED");
        EXPECT_EQ(elementOf(*style, 2).color.colorIndex(), 3);
    }
    KxDbObjectId dashed;
    {
        KxDbObjectPtr<KxDbLinetypeTable> table(db.linetypeTableId(), KxDb::kForRead);
        ASSERT_EQ(table->getAt(L"DASHED", dashed), Kald::eOk);
    }
    KxDbObjectPtr<KxDbLinetypeTableRecord> record(dashed, KxDb::kForRead);
    EXPECT_DOUBLE_EQ(record->dashLengthAt(0), 0.5);
    record.close();

    EXPECT_EQ(kdml::loadMlnStyleIntoDictionary(db.mlineStyleDictionaryId(), L"STANDARD", one.c_str()), standard);
    EXPECT_EQ(elementCount(standard), 1);
}

TEST_F(MlnStyleLoaderTest, DialogLoaderMakesADefaultStyleForANewName)
{
    const std::wstring noList = writeFile("nolist.mln", "MLSTYLE\n2\n FRESH\n3\n no elements here\n0\n");
    const KxDbObjectId id = kdml::loadMlnStyleIntoDictionary(db.mlineStyleDictionaryId(), L"FRESH", noList.c_str());
    ASSERT_FALSE(id.isNull());
    EXPECT_EQ(styleId(L"fresh"), id);
    KxDbObjectPtr<KxDbMlineStyle> style(id, KxDb::kForRead);
    ASSERT_TRUE(style);
    EXPECT_STREQ(style->description(), L"no elements here");
    ASSERT_EQ(style->numElements(), 2);
    EXPECT_THAT(elementOf(*style, 0), IsElement(0.5, 256, L"ByLayer"));
    EXPECT_THAT(elementOf(*style, 1), IsElement(-0.5, 256, L"ByLayer"));

    EXPECT_TRUE(kdml::loadMlnStyleIntoDictionary(KxDbObjectId::kNull, L"X", noList.c_str()).isNull());
}

TEST_F(MlnStyleLoaderTest, MlineLoaderAddsUnderTheCallersNameOnlyWhenTheBlockIsWhole)
{
    const std::wstring path = writeFile("walls.mln", mlntest::wallBlock() + "MLSTYLE\n2\n CUT\n71\n 1\n49\n 1\n");
    ASSERT_TRUE(kdml::loadMlnStyleIntoDatabase(&db, L"wall", path.c_str()));
    const KxDbObjectId wall = styleId(L"WALL");
    ASSERT_FALSE(wall.isNull());
    {
        KxDbObjectPtr<KxDbMlineStyle> style(wall, KxDb::kForRead);
        EXPECT_STREQ(style->name(), L"wall");
        EXPECT_EQ(style->numElements(), 2);
        std::wstring key;
        KxDbObjectPtr<KxDbDictionary> dictionary(db.mlineStyleDictionaryId(), KxDb::kForRead);
        dictionary->nameAt(wall, key);
        EXPECT_EQ(key, L"wall");
    }
    EXPECT_FALSE(kdml::loadMlnStyleIntoDatabase(&db, L"CUT", path.c_str()));
    EXPECT_FALSE(kdml::loadMlnStyleIntoDatabase(&db, L"ABSENT", path.c_str()));
    EXPECT_TRUE(styleId(L"CUT").isNull());
    EXPECT_TRUE(styleId(L"ABSENT").isNull());
    EXPECT_FALSE(kdml::loadMlnStyleIntoDatabase(nullptr, L"wall", path.c_str()));
    EXPECT_TRUE(transcript.empty());
}

TEST_F(MlnStyleLoaderTest, MlineLoaderReportsAFileItCannotFind)
{
    KxDbObjectPtr<KxDbDictionary> dictionary(db.mlineStyleDictionaryId(), KxDb::kForRead);
    const int before = dictionary->numEntries();
    dictionary.close();

    EXPECT_FALSE(kdml::loadMlnStyleIntoDatabase(&db, L"WALL", L"nowhere-to-be-found.mln"));
    EXPECT_NE(transcript.find(L"Unable to find file \"nowhere-to-be-found.mln\"."), std::wstring::npos)
        << std::string(transcript.begin(), transcript.end());
    dictionary.open(db.mlineStyleDictionaryId(), KxDb::kForRead);
    EXPECT_EQ(dictionary->numEntries(), before);
}
