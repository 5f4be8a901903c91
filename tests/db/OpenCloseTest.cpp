#include <gtest/gtest.h>

#include "kxdb.h"

namespace {

KxDbObjectId addLine(KxDbDatabase& db)
{
    auto* line = new KxDbLine({0, 0, 0}, {1, 0, 0});
    KxDbObjectId id;
    EXPECT_EQ(db.addToCurrentSpace(line, id), Kald::eOk);
    EXPECT_TRUE(line->isWriteEnabled());  // handed over still open for write
    line->close();
    return id;
}

// Opens for read and leaves early; the scope must still close.
bool readLineStartsAtOrigin(KxDbObjectId id)
{
    KxDbObjectPtr<KxDbLine> line(id, KxDb::kForRead);
    if (!line)
        return false;
    if (line->startPoint().x == 0)
        return true;
    return false;
}

}  // namespace

TEST(OpenClose, WriteExcludesEveryOtherOpen)
{
    KxDbDatabase db;
    const KxDbObjectId id = addLine(db);
    KxDbLine* writer = nullptr;
    ASSERT_EQ(kxdbOpenObject(writer, id, KxDb::kForWrite), Kald::eOk);
    KxDbLine* other = nullptr;
    EXPECT_EQ(kxdbOpenObject(other, id, KxDb::kForWrite), Kald::eWasOpenForWrite);
    EXPECT_EQ(other, nullptr);
    EXPECT_EQ(kxdbOpenObject(other, id, KxDb::kForRead), Kald::eWasOpenForWrite);
    writer->close();

    KxDbLine* r1 = nullptr;
    KxDbLine* r2 = nullptr;
    ASSERT_EQ(kxdbOpenObject(r1, id, KxDb::kForRead), Kald::eOk);
    ASSERT_EQ(kxdbOpenObject(r2, id, KxDb::kForRead), Kald::eOk);
    EXPECT_EQ(kxdbOpenObject(other, id, KxDb::kForWrite), Kald::eWasOpenForRead);
    EXPECT_FALSE(r1->isWriteEnabled());
    r1->close();
    r2->close();
    EXPECT_EQ(kxdbOpenObject(writer, id, KxDb::kForWrite), Kald::eOk);
    writer->close();
}

TEST(OpenClose, ErasedAndWrongClassAndNull)
{
    KxDbDatabase db;
    const KxDbObjectId id = addLine(db);
    {
        KxDbObjectPtr<KxDbLine> line(id, KxDb::kForWrite);
        ASSERT_TRUE(line);
        EXPECT_EQ(line->erase(), Kald::eOk);
    }
    KxDbLine* line = nullptr;
    EXPECT_EQ(kxdbOpenObject(line, id, KxDb::kForRead), Kald::eWasErased);
    EXPECT_EQ(kxdbOpenObject(line, id, KxDb::kForRead, true), Kald::eOk);
    EXPECT_TRUE(line->isErased());
    line->close();

    KxDbMline* mline = nullptr;
    EXPECT_EQ(kxdbOpenObject(mline, id, KxDb::kForRead, true), Kald::eWrongObjectType);
    EXPECT_EQ(mline, nullptr);
    KxDbEntity* entity = nullptr;  // a base class is accepted
    EXPECT_EQ(kxdbOpenObject(entity, id, KxDb::kForRead, true), Kald::eOk);
    EXPECT_TRUE(entity->isKindOf(KxDbLine::desc()));
    EXPECT_FALSE(entity->isA()->isDerivedFrom(KxDbMline::desc()));
    entity->close();
    EXPECT_EQ(kxdbOpenObject(entity, KxDbObjectId::kNull, KxDb::kForRead), Kald::eNullObjectId);
    // The id answers for the class without an open, erased or not.
    EXPECT_EQ(id.objectClass(), KxDbLine::desc());
    EXPECT_EQ(KxDbObjectId::kNull.objectClass(), nullptr);
}

TEST(OpenClose, ScopeClosesOnEveryWayOut)
{
    KxDbDatabase db;
    const KxDbObjectId id = addLine(db);
    EXPECT_TRUE(readLineStartsAtOrigin(id));
    KxDbObjectPtr<KxDbLine> writer(id, KxDb::kForWrite);
    EXPECT_EQ(writer.openStatus(), Kald::eOk);
    EXPECT_FALSE(readLineStartsAtOrigin(id));
    writer.close();
    EXPECT_TRUE(readLineStartsAtOrigin(id));
}

TEST(OpenClose, EntityNamesAndHandles)
{
    KxDbDatabase db;
    const KxDbObjectId a = addLine(db);
    const KxDbObjectId b = addLine(db);
    kxds_name name{};
    ASSERT_EQ(kxdbGetEntityName(name, b), Kald::eOk);
    KxDbObjectId back;
    ASSERT_EQ(kxdbGetObjectId(back, name), Kald::eOk);
    EXPECT_EQ(back, b);

    KxDbObjectPtr<KxDbLine> la(a, KxDb::kForRead);
    KxDbObjectPtr<KxDbLine> lb(b, KxDb::kForRead);
    EXPECT_EQ(lb->handle(), la->handle() + 1);
    EXPECT_EQ(db.objectIdFromHandle(lb->handle()), b);
    EXPECT_EQ(db.handseed(), lb->handle() + 1);
    EXPECT_EQ(db.setHandseed(lb->handle()), Kald::eInvalidInput);

    auto* kept = new KxDbLine;
    ASSERT_EQ(db.addObject(kept, 0x2A0), Kald::eOk);
    EXPECT_EQ(kept->handleText(), L"2A0");
    kept->close();
}
