#include <gtest/gtest.h>

#include <numbers>

#include "kxdb.h"

TEST(NewDrawing, HoldsStandardStyleTablesAndSpaces)
{
    KxDbDatabase db;
    KxDbDictionary* styles = nullptr;
    ASSERT_EQ(db.getMLStyleDictionary(styles, KxDb::kForRead), Kald::eOk);
    KxDbObjectPtr<KxDbDictionary> stylesScope(styles);
    KxDbObjectId standardId;
    ASSERT_EQ(styles->getAt(L"Standard", standardId), Kald::eOk);
    EXPECT_EQ(db.cmlstyleID(), standardId);

    KxDbObjectPtr<KxDbMlineStyle> standard(standardId, KxDb::kForRead);
    ASSERT_TRUE(standard);
    EXPECT_STREQ(standard->name(), L"STANDARD");
    ASSERT_EQ(standard->numElements(), 2);
    double offset = 0;
    KxCmColor color;
    KxDbObjectId linetype;
    standard->getElementAt(0, offset, color, linetype);
    EXPECT_EQ(offset, 0.5);
    EXPECT_TRUE(color.isByLayer());
    EXPECT_EQ(linetype, db.byLayerLinetype());
    standard->getElementAt(1, offset, color, linetype);
    EXPECT_EQ(offset, -0.5);
    EXPECT_DOUBLE_EQ(standard->startAngle(), std::numbers::pi / 2);
    EXPECT_DOUBLE_EQ(standard->endAngle(), std::numbers::pi / 2);

    KxDbObjectPtr<KxDbLinetypeTable> linetypes(db.linetypeTableId(), KxDb::kForRead);
    for (const wchar_t* name : {L"BYLAYER", L"ByBlock", L"continuous"})
        EXPECT_TRUE(linetypes->has(name)) << name;
    KxDbObjectPtr<KxDbLayerTable> layers(db.layerTableId(), KxDb::kForRead);
    KxDbObjectId layer0;
    EXPECT_EQ(layers->getAt(L"0", layer0), Kald::eOk);
    EXPECT_EQ(db.clayer(), layer0);

    KxDbObjectPtr<KxDbBlockTable> blocks(db.blockTableId(), KxDb::kForRead);
    std::vector<std::wstring> names;
    for (auto it = blocks->newIterator(); !it->done(); it->step()) {
        KxDbSymbolTableRecord* record = nullptr;
        ASSERT_EQ(it->getRecord(record, KxDb::kForRead), Kald::eOk);
        names.push_back(record->name());
        record->close();
    }
    EXPECT_EQ(names, (std::vector<std::wstring>{L"*Model_Space", L"*Paper_Space"}));
    EXPECT_EQ(db.currentSpaceId(), db.modelSpaceId());

    EXPECT_EQ(db.cmljust(), 0);
    EXPECT_EQ(db.cmlscale(), 1.0);
    EXPECT_EQ(db.measurement(), 0);
    EXPECT_EQ(db.dimzin(), 0);
    EXPECT_EQ(db.ucsxdir().x, 1.0);
    EXPECT_EQ(db.ucsydir().y, 1.0);
    EXPECT_EQ(db.setCmljust(3), Kald::eOutOfRange);
    EXPECT_EQ(db.setCmlstyleID(db.layerTableId()), Kald::eInvalidInput);
    EXPECT_EQ(db.setUcs({}, {1, 0, 0}, {1, 1, 0}), Kald::eInvalidInput);
}

TEST(NewDrawing, BlockIteratorSkipsErasedEntities)
{
    KxDbDatabase db;
    KxDbObjectId ids[3];
    for (KxDbObjectId& id : ids) {
        auto* line = new KxDbLine;
        db.addToCurrentSpace(line, id);
        line->close();
    }
    {
        KxDbObjectPtr<KxDbLine> middle(ids[1], KxDb::kForWrite);
        middle->erase();
    }
    const auto visited = [&] {
        KxDbObjectPtr<KxDbBlockTableRecord> space(db.modelSpaceId(), KxDb::kForRead);
        std::vector<KxDbObjectId> seen;
        for (auto it = space->newIterator(); !it->done(); it->step())
            seen.push_back(it->getEntityId());
        return seen;
    };
    EXPECT_EQ(visited(), (std::vector<KxDbObjectId>{ids[0], ids[2]}));
    {
        KxDbObjectPtr<KxDbBlockTableRecord> space(db.modelSpaceId(), KxDb::kForRead);
        EXPECT_EQ(space->numEntities(), 2);
    }
    {
        KxDbObjectPtr<KxDbLine> middle(ids[1], KxDb::kForWrite, true);
        middle->erase(false);
    }
    EXPECT_EQ(visited(), (std::vector<KxDbObjectId>{ids[0], ids[1], ids[2]})) << "unerased, it is walked again";
}
