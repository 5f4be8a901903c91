#include <gtest/gtest.h>

#include "dxf/AllocationMeter.h"
#include "kaldo/db/UndoHistory.h"
#include "kxdb.h"

#include <string>

namespace {

KxDbObjectId addLayer(KxDbLayerTable& table, const std::wstring& name)
{
    auto* layer = new KxDbLayerTableRecord;
    layer->setName(name.c_str());
    KxDbObjectId id;
    if (table.add(layer, id) != Kald::eOk) {
        delete layer;
        return {};
    }
    layer->close();
    return id;
}

KxDbObjectId layerNamed(KxDbDatabase& db, const wchar_t* name, bool getErased = false)
{
    KxDbObjectPtr<KxDbLayerTable> table(db.layerTableId(), KxDb::kForRead);
    KxDbObjectId id;
    table->getAt(name, id, getErased);
    return id;
}

void rename(KxDbObjectId id, const wchar_t* name)
{
    KxDbObjectPtr<KxDbLayerTableRecord> layer(id, KxDb::kForWrite);
    EXPECT_EQ(layer->setName(name), Kald::eOk);
}

}  // namespace

// Names are found without regard to case through adds, renames and erases;
// an erased record's name may be taken again and is still found when
// erased records are asked for, first, however many records follow.
TEST(SymbolTable, NamesFoundThroughRenamesAndErases)
{
    KxDbDatabase db;
    KxDbObjectId walls, doors;
    {
        KxDbObjectPtr<KxDbLayerTable> table(db.layerTableId(), KxDb::kForWrite);
        walls = addLayer(*table, L"Walls");
        doors = addLayer(*table, L"Doors");
        EXPECT_TRUE(addLayer(*table, L"WALLS").isNull()) << "a name taken in another case";
        EXPECT_TRUE(table->has(walls));
        EXPECT_FALSE(table->has(db.continuousLinetype()));
    }
    EXPECT_EQ(layerNamed(db, L"wALLS"), walls);
    {
        KxDbObjectPtr<KxDbLayerTableRecord> layer(doors, KxDb::kForWrite);
        EXPECT_EQ(layer->setName(L"walls"), Kald::eDuplicateKey);
        EXPECT_EQ(layer->setName(L"Windows"), Kald::eOk);
    }
    EXPECT_TRUE(layerNamed(db, L"Doors").isNull());
    EXPECT_EQ(layerNamed(db, L"WINDOWS"), doors);

    KxDbObjectPtr<KxDbLayerTableRecord>(walls, KxDb::kForWrite)->erase();
    EXPECT_TRUE(layerNamed(db, L"Walls").isNull());
    EXPECT_EQ(layerNamed(db, L"Walls", true), walls);
    KxDbObjectId newWalls;
    {
        KxDbObjectPtr<KxDbLayerTable> table(db.layerTableId(), KxDb::kForWrite);
        newWalls = addLayer(*table, L"walls");
        EXPECT_FALSE(table->has(walls));
    }
    ASSERT_FALSE(newWalls.isNull());
    // Through the index's growth too, past its first slots.
    int grown = 0;
    for (const int more : {0, 20, 40, 80, 160, 320}) {
        {
            KxDbObjectPtr<KxDbLayerTable> table(db.layerTableId(), KxDb::kForWrite);
            for (const int end = grown + more; grown < end; ++grown)
                addLayer(*table, L"Grown " + std::to_wstring(grown));
        }
        EXPECT_EQ(layerNamed(db, L"WALLS"), newWalls);
        EXPECT_EQ(layerNamed(db, L"WALLS", true), walls) << "the record added first";
    }
    EXPECT_FALSE(layerNamed(db, L"grown 619").isNull());
}

// Undo takes back added and renamed records and restores them; the names
// follow, also when the table was opened for write before the record was
// made.
TEST(SymbolTable, NamesFollowUndoAndRedo)
{
    KxDbDatabase db;
    kaldo::UndoHistory& history = db.undoHistory();
    history.beginStep(L"LAYER");
    KxDbObjectId stairs;
    {
        KxDbObjectPtr<KxDbLayerTable> table(db.layerTableId(), KxDb::kForWrite);
        stairs = addLayer(*table, L"Stairs");
    }
    history.endStep();
    history.beginStep(L"RENAME");
    rename(stairs, L"Steps");
    history.endStep();

    history.undo(1);
    EXPECT_EQ(layerNamed(db, L"STAIRS"), stairs);
    EXPECT_TRUE(layerNamed(db, L"Steps").isNull());
    history.undo(1);
    EXPECT_TRUE(layerNamed(db, L"Stairs").isNull());
    EXPECT_FALSE(KxDbObjectPtr<KxDbLayerTable>(db.layerTableId(), KxDb::kForRead)->has(stairs));
    EXPECT_EQ(db.peekObject(stairs), nullptr);

    history.redo();
    EXPECT_EQ(layerNamed(db, L"Stairs"), stairs);
    history.redo();
    EXPECT_EQ(layerNamed(db, L"steps"), stairs);
    EXPECT_TRUE(layerNamed(db, L"Stairs").isNull());
    int listed = 0;
    KxDbObjectPtr<KxDbLayerTable> table(db.layerTableId(), KxDb::kForRead);
    for (auto it = table->newIterator(); !it->done(); it->step())
        ++listed;
    EXPECT_EQ(listed, 2) << "layer 0 and Steps, once";
}

// A lookup, an add and a rename allocate a handful of times however many
// records the table holds: no record is visited by name.
TEST(SymbolTable, LookupsDoNotWalkTheTable)
{
    constexpr int kRecords = 5000;
    KxDbDatabase db;
    KxDbObjectPtr<KxDbLayerTable> table(db.layerTableId(), KxDb::kForWrite);
    for (int i = 0; i < kRecords; ++i)
        addLayer(*table, L"Layer number " + std::to_wstring(i));
    KxDbObjectId found;
    EXPECT_LT(allocationCount([&] { table->getAt(L"LAYER NUMBER 4321", found); }), 5u);
    EXPECT_FALSE(found.isNull());
    EXPECT_LT(allocationCount([&] { table->getAt(L"No such layer anywhere", found); }), 5u);
    EXPECT_LT(allocationCount([&] { EXPECT_TRUE(table->has(L"layer number 17")); }), 5u);
    KxDbObjectId added;
    EXPECT_LT(allocationCount([&] { added = addLayer(*table, L"One more layer"); }), 30u);
    EXPECT_FALSE(added.isNull());
    EXPECT_LT(allocationCount([&] { rename(added, L"Renamed layer"); }), 30u);
}
