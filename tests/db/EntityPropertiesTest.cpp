#include <gtest/gtest.h>

#include "kaldo/db/ObjectRegistry.h"
#include "kaldo/db/UndoHistory.h"
#include "kxdb.h"

#include <cmath>
#include <memory>
#include <vector>

// An entity holds its common properties in a few bytes and the rare ones
// apart (book names, a linetype scale other than 1, a normal other than
// the z axis, references beyond 32 bits; a polyline's widths, bulges,
// elevation and thickness): every value reads back as set, through clones
// and copies, which keep their own owner, and going back to a common
// value leaves nothing of the rare one behind.
TEST(EntityProperties, RareValuesReadBackThroughCopies)
{
    auto line = std::make_unique<KxDbLine>(KxGePoint3d{0, 0, 0}, KxGePoint3d{1, 0, 0});
    EXPECT_EQ(line->lineWeight(), KxDb::kLnWtByLayer);
    EXPECT_EQ(line->linetypeScale(), 1.0);
    EXPECT_TRUE(line->color().isByLayer());
    EXPECT_TRUE(line->layerId().isNull());

    for (const int weight : {int(KxDb::kLnWtByLwDefault), int(KxDb::kLnWtByBlock), int(KxDb::kLnWtByLayer), 0, 13, 211}) {
        ASSERT_EQ(line->setLineWeight(weight), Kald::eOk);
        EXPECT_EQ(line->lineWeight(), weight);
    }
    EXPECT_EQ(line->setLineWeight(212), Kald::eInvalidInput);
    EXPECT_EQ(line->setLineWeight(-4), Kald::eInvalidInput);
    EXPECT_EQ(line->lineWeight(), 211);

    KxCmColor booked;
    booked.setRGB(10, 20, 30);
    booked.setNames(L"Sky", L"Paints");
    line->setColor(booked);
    EXPECT_TRUE(line->color() == booked);
    ASSERT_EQ(line->setColorIndex(5), Kald::eOk);
    EXPECT_EQ(line->colorIndex(), 5);
    EXPECT_STREQ(line->color().getDictionaryKey(), L"Paints$Sky");
    EXPECT_EQ(line->setColorIndex(300), Kald::eOutOfRange);
    EXPECT_EQ(line->colorIndex(), 5);

    // Serials past 32 bits, and the one serial whose low word marks them.
    const KxDbObjectId far = KxDbObjectId::fromOldId((std::uint64_t(1) << 32) + 5);
    const KxDbObjectId marker = KxDbObjectId::fromOldId(0xFFFFFFFFu);
    line->setLayer(far);
    line->setLinetype(marker);
    ASSERT_EQ(line->setLinetypeScale(0.25), Kald::eOk);
    EXPECT_EQ(line->setLinetypeScale(0), Kald::eInvalidInput);
    line->setKeptGroups(KxDbPackedGroups({{1001, 255, "APP"}}));
    ASSERT_EQ(line->setNormal({0, 3, 4}), Kald::eOk);
    EXPECT_EQ(line->setNormal({0, 0, 0}), Kald::eInvalidInput);
    line->setOwnerId(far);
    EXPECT_EQ(line->ownerId(), far);
    const std::unique_ptr<KxDbObject> copy = line->clone();
    const auto* copied = KxDbLine::cast(copy.get());
    ASSERT_NE(copied, nullptr);

    const KxDbObjectId nearLayer = KxDbObjectId::fromOldId(7);
    line->setLayer(nearLayer);
    line->setLinetype(KxDbObjectId::kNull);
    line->setLinetypeScale(1.0);
    line->setColor(KxCmColor());
    line->setKeptGroups({});
    line->setNormal({0, 0, 1});
    line->setOwnerId(nearLayer);
    EXPECT_EQ(line->ownerId(), nearLayer);
    EXPECT_EQ(line->layerId(), nearLayer);
    EXPECT_TRUE(line->linetypeId().isNull());
    EXPECT_EQ(line->linetypeScale(), 1.0);
    EXPECT_TRUE(line->color() == KxCmColor());
    EXPECT_TRUE(line->keptGroups().empty());

    line->setOwnerId(far);
    ASSERT_EQ(line->copyFrom(copied), Kald::eOk);
    for (const KxDbLine* entity : {copied, static_cast<const KxDbLine*>(line.get())}) {
        EXPECT_EQ(entity->layerId(), far);
        EXPECT_EQ(entity->linetypeId(), marker);
        EXPECT_EQ(entity->linetypeScale(), 0.25);
        EXPECT_EQ(entity->lineWeight(), 211);
        EXPECT_EQ(entity->colorIndex(), 5);
        EXPECT_STREQ(entity->color().bookName(), L"Paints");
        EXPECT_EQ(KxDbPackedGroups(entity->keptGroups()), KxDbPackedGroups({{1001, 255, "APP"}}));
        EXPECT_NEAR(entity->normal().y, 0.6, 1e-10);
        EXPECT_NEAR(entity->normal().z, 0.8, 1e-10);
    }
    EXPECT_TRUE(copied->ownerId().isNull());
    EXPECT_EQ(line->ownerId(), far);

    // A polyline grown vertex by vertex, its shape added on the way; a copy
    // of every value, and the source taken back to the common values: -0
    // stays as set.
    auto pline = std::make_unique<KxDbPolyline>();
    std::vector<KxDbPolyline::Vertex> vertices;
    for (int i = 0; i < 37; ++i) {
        vertices.push_back({double(i), 0.5 * i, 0, i == 30 ? 0.25 : 0, i == 20 ? -1.0 : 0});
        pline->addVertexAt(vertices.back());
    }
    pline->setConstantWidth(0.125);
    pline->setElevation(-0.0);
    pline->setThickness(3);
    ASSERT_EQ(pline->setNormal({0, 0, -2}), Kald::eOk);
    const std::unique_ptr<KxDbObject> plineCopy = pline->clone();
    const auto* copiedPline = KxDbPolyline::cast(plineCopy.get());
    ASSERT_NE(copiedPline, nullptr);
    pline->setVertices({{1, 2}});
    pline->setConstantWidth(0);
    pline->setThickness(0);
    pline->setNormal({0, 0, 1});
    EXPECT_EQ(pline->vertices(), (std::vector<KxDbPolyline::Vertex>{{1, 2}}));
    EXPECT_EQ(pline->vertexBytes(), 16u);
    EXPECT_TRUE(std::signbit(pline->elevation()));
    pline->setElevation(0);
    EXPECT_EQ(pline->constantWidth(), 0);
    EXPECT_EQ(pline->normal().z, 1);
    EXPECT_EQ(copiedPline->vertices(), vertices);
    EXPECT_EQ(copiedPline->vertexBytes(), 37u * 16 + 37u * 24);
    // Set at once, the same vertices and shapes as grown one by one.
    KxDbPolyline setAtOnce;
    setAtOnce.setVertices(vertices);
    EXPECT_EQ(setAtOnce.vertices(), vertices);
    EXPECT_EQ(setAtOnce.vertexBytes(), copiedPline->vertexBytes());
    EXPECT_EQ(copiedPline->constantWidth(), 0.125);
    EXPECT_TRUE(std::signbit(copiedPline->elevation()));
    EXPECT_EQ(copiedPline->thickness(), 3);
    EXPECT_EQ(copiedPline->normal().z, -1);
    ASSERT_EQ(pline->copyFrom(copiedPline), Kald::eOk);
    EXPECT_EQ(pline->vertices(), vertices);
    EXPECT_EQ(pline->thickness(), 3);
    // Made with room for two vertices in its own allocation: set within
    // it, then grown past it.
    const std::unique_ptr<KxDbPolyline> roomy = KxDbPolyline::withRoom(2);
    roomy->setClosed(true);
    std::vector<KxDbPolyline::Vertex> grown{{1, 2}, {3, 4}};
    roomy->setVertices(grown);
    EXPECT_EQ(roomy->vertices(), grown);
    for (const KxDbPolyline::Vertex& v : vertices) {
        grown.push_back(v);
        roomy->addVertexAt(v);
    }
    EXPECT_EQ(roomy->vertices(), grown);
    EXPECT_TRUE(roomy->isClosed());

    // An unmodelled entity and its copy, each record in its object's own
    // allocation.
    const auto text = KxDbUnmodelledEntity::make("TEXT", KxDbPackedGroups({{1, 0, "words"}}).view());
    ASSERT_EQ(text->setColorIndex(3), Kald::eOk);
    const std::unique_ptr<KxDbObject> textCopy = text->clone();
    for (const auto* entity : {text.get(), KxDbUnmodelledEntity::cast(textCopy.get())}) {
        ASSERT_NE(entity, nullptr);
        EXPECT_EQ(entity->dxfName(), "TEXT");
        EXPECT_EQ(entity->groups(), (std::vector<KxDbFileGroup>{{1, 0, "words"}}));
        EXPECT_EQ(entity->colorIndex(), 3);
    }
}

// An object's database and handle are the table's, not the object's: they
// answer while it is in the database, and an addition taken back and
// restored comes back under its id and its handle.
TEST(EntityProperties, DatabaseAndHandleFollowTheObject)
{
    KxDbDatabase db;
    auto* kept = new KxDbLine;
    EXPECT_EQ(kept->database(), nullptr);
    EXPECT_EQ(kept->handle(), 0u);
    EXPECT_TRUE(kept->isWriteEnabled());
    db.undoHistory().beginStep(L"LINE");
    ASSERT_EQ(db.addObject(kept, 0x2A0), Kald::eOk);
    const KxDbObjectId id = kept->objectId();
    kept->close();
    db.undoHistory().endStep();
    EXPECT_EQ(kept->database(), &db);
    EXPECT_EQ(id.database(), &db);
    EXPECT_EQ(kept->handle(), 0x2A0u);
    EXPECT_FALSE(kept->isWriteEnabled());

    db.undoHistory().undo(1);
    EXPECT_FALSE(id.isValid());
    EXPECT_EQ(id.database(), nullptr);
    EXPECT_TRUE(db.objectIdFromHandle(0x2A0).isNull());
    db.undoHistory().redo();
    EXPECT_EQ(db.objectIdFromHandle(0x2A0), id);
    KxDbObjectPtr<KxDbLine> back(id, KxDb::kForRead);
    ASSERT_TRUE(back);
    EXPECT_EQ(back->handle(), 0x2A0u);
    EXPECT_EQ(back->database(), &db);

    // Readers are counted in sixteen bits: one more is refused, not wrapped.
    std::vector<KxDbLine*> readers;
    for (int attempt = 0; attempt < 70000; ++attempt) {
        KxDbLine* reader = nullptr;
        const Kald::ErrorStatus es = kxdbOpenObject(reader, id, KxDb::kForRead);
        if (es != Kald::eOk) {
            EXPECT_EQ(es, Kald::eOutOfRange);
            break;
        }
        readers.push_back(reader);
    }
    EXPECT_EQ(readers.size(), 65534u);  // besides the scope's own
    for (KxDbLine* reader : readers)
        EXPECT_EQ(reader->close(), Kald::eOk);
    back.close();
    EXPECT_FALSE(KxDbObjectPtr<KxDbLine>(id, KxDb::kForRead)->isWriteEnabled());
    EXPECT_TRUE(KxDbObjectPtr<KxDbLine>(id, KxDb::kForWrite)->isWriteEnabled());

    // An object whose own serial passes 32 bits opens and closes, keeps
    // its id and owner through a copy of another's data, and its handle
    // and id through undo.
    const std::uint64_t farSerial = (std::uint64_t(1) << 32) + 100;
    kaldo::skipSerialsTo(farSerial);
    auto* farLine = new KxDbLine;
    db.undoHistory().beginStep(L"LINE");
    ASSERT_EQ(db.addObject(farLine, 0x2B0), Kald::eOk);
    const KxDbObjectId farId = farLine->objectId();
    EXPECT_EQ(farId.asOldId(), farSerial + 1);
    farLine->setOwnerId(id);
    const KxDbLine source({1, 2, 3}, {4, 5, 6});
    ASSERT_EQ(farLine->copyFrom(&source), Kald::eOk);
    EXPECT_EQ(farLine->objectId(), farId);
    EXPECT_EQ(farLine->ownerId(), id);
    farLine->close();
    db.undoHistory().endStep();
    EXPECT_FALSE(farLine->isWriteEnabled());
    EXPECT_EQ(farLine->handle(), 0x2B0u);
    db.undoHistory().undo(1);
    EXPECT_FALSE(farId.isValid());
    db.undoHistory().redo();
    KxDbObjectPtr<KxDbLine> farBack(farId, KxDb::kForRead);
    ASSERT_TRUE(farBack);
    EXPECT_EQ(farBack->objectId(), farId);
    EXPECT_EQ(farBack->ownerId(), id);
    EXPECT_EQ(farBack->handle(), 0x2B0u);
    EXPECT_EQ(farBack->endPoint().z, 6);
    EXPECT_FALSE(farBack->isWriteEnabled());
}
