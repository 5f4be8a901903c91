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

// A block's list holds its ids as runs of serials a step apart (one, two
// when a record was made for each entity, or any other): any order
// reads back as appended, and a cut anywhere (undo taking back what was
// appended) keeps the ids before it and hands back those after, in order,
// after which appending them again gives the list back. An id taken out
// anywhere (the database's list, undo taking back an added object) leaves
// the others in order, a run around it split.
TEST(NewDrawing, IdRunsKeepAnyOrderAndCutAnywhere)
{
    std::vector<KxDbObjectId> ids;
    for (const std::uint64_t serial : {5ull, 6ull, 7ull, 8ull, 20ull, 9ull, 10ull, 11ull, 30ull, 31ull, 2ull, 1ull,
                                       100ull, 101ull, 102ull, 200ull, 202ull, 204ull, 206ull, 300ull, 305ull, 310ull,
                                       311ull, 312ull, 1ull << 30, 5ull << 30, 9ull << 30})
        ids.push_back(KxDbObjectId::fromOldId(serial));
    const auto listed = [](const KxDbIdRuns& runs) { return std::vector<KxDbObjectId>(runs.begin(), runs.end()); };
    for (std::size_t keep = 0; keep <= ids.size() + 1; ++keep) {
        KxDbIdRuns runs;
        for (const KxDbObjectId id : ids)
            runs.push_back(id);
        EXPECT_EQ(runs.size(), ids.size());
        EXPECT_EQ(listed(runs), ids);
        const std::vector<KxDbObjectId> cut = runs.cutAfter(keep);
        const auto at = ids.begin() + std::ptrdiff_t(std::min(keep, ids.size()));
        EXPECT_EQ(runs.size(), std::size_t(at - ids.begin())) << keep;
        EXPECT_EQ(listed(runs), std::vector<KxDbObjectId>(ids.begin(), at)) << keep;
        EXPECT_EQ(cut, std::vector<KxDbObjectId>(at, ids.end())) << keep;
        for (const KxDbObjectId id : cut)
            runs.push_back(id);
        EXPECT_EQ(listed(runs), ids) << keep;
        if (keep >= ids.size())
            continue;
        std::vector<KxDbObjectId> rest = ids;
        rest.erase(rest.begin() + std::ptrdiff_t(keep));
        EXPECT_TRUE(runs.eraseLast(ids[keep])) << keep;
        EXPECT_FALSE(runs.eraseLast(ids[keep])) << keep;
        EXPECT_EQ(listed(runs), rest) << keep;
        EXPECT_EQ(runs.size(), rest.size()) << keep;
        EXPECT_EQ(runs.back(), rest.back()) << keep;
    }
}
