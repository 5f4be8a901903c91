#include <gtest/gtest.h>

#include "FileText.h"
#include "dxf/AllocationMeter.h"
#include "kaldo/app/EntityEdits.h"
#include "kaldo/core/Host.h"
#include "kaldo/db/UndoHistory.h"
#include "kaldo/dxf/DxfFile.h"
#include "kaldo/ed/PickIndex.h"
#include "kxdb.h"

#include <QTemporaryDir>

#include <memory>

namespace {

constexpr int kVertices = 1000;
constexpr int kSteps = 30;

KxDbObjectId addLongMline(KxDbDatabase& db)
{
    auto* mline = new KxDbMline;
    mline->setDatabaseDefaults(&db);
    for (int v = 0; v < kVertices; ++v)
        mline->appendSeg(KxGePoint3d{double(v), double(v % 2), 0});
    KxDbObjectId id;
    db.addToCurrentSpace(mline, id);
    mline->close();
    return id;
}

std::unique_ptr<KxDbDatabase> drawingOfLines(int count)
{
    auto db = std::make_unique<KxDbDatabase>();
    for (int i = 0; i < count; ++i) {
        auto* line = new KxDbLine(KxGePoint3d{0, double(i), 0}, KxGePoint3d{1, double(i), 0});
        db->addToCurrentSpace(line);
        line->close();
    }
    return db;
}

KxDbObjectId lineStep(KxDbDatabase& db)
{
    db.undoHistory().beginStep(L"LINE");
    auto* line = new KxDbLine(KxGePoint3d{0, 0, 0}, KxGePoint3d{5, 5, 0});
    KxDbObjectId id;
    db.addToCurrentSpace(line, id);
    line->close();
    db.undoHistory().endStep();
    return id;
}

int modelSpaceCount(KxDbDatabase& db)
{
    return KxDbObjectPtr<KxDbBlockTableRecord>(db.modelSpaceId(), KxDb::kForRead)->numEntities();
}

// Multilines of six vertices at coordinates that a move and the move back
// do not give back exactly (0.1 + 0.1 - 0.1 is not 0.1 in binary), every
// tenth closed, and a line beside every tenth.
std::vector<KxDbObjectId> addUnevenMultilines(KxDbDatabase& db, int count)
{
    std::vector<KxDbObjectId> ids;
    for (int m = 0; m < count; ++m) {
        auto* mline = new KxDbMline;
        mline->setDatabaseDefaults(&db);
        for (int v = 0; v < 6; ++v)
            mline->appendSeg(KxGePoint3d{0.1 * m + v / 3.0, (v % 2) * 0.7 + m / 7.0, 0});
        mline->setClosedMline(m % 10 == 0);
        db.addToCurrentSpace(mline, ids.emplace_back());
        mline->close();
        if (m % 10 == 0) {
            auto* line = new KxDbLine(KxGePoint3d{0.1 * m, 0.3, 0}, KxGePoint3d{0.2 * m, 1 / 3.0, 0});
            line->setDatabaseDefaults(&db);
            db.addToCurrentSpace(line, ids.emplace_back());
            line->close();
        }
    }
    return ids;
}

double firstY(KxDbObjectId id)
{
    const KxDbObjectPtr<KxDbMline> mline(id, KxDb::kForRead);
    return mline->vertexAt(0).y;
}

}  // namespace

// Steps that each move a vertex of a long multiline fill the budget: the
// oldest go, the newest stay undoable exactly, and the bytes counted stay
// within the budget.
TEST(UndoHistory, OldestStepsDroppedPastTheBudget)
{
    KxDbDatabase db;
    kaldo::UndoHistory& history = db.undoHistory();
    const KxDbObjectId id = addLongMline(db);
    EXPECT_EQ(history.undoableSteps(), 0u) << "changes outside a step are not recorded";

    constexpr std::size_t kBudget = 1 << 20;
    history.setByteBudget(kBudget);
    for (int step = 1; step <= kSteps; ++step) {
        history.beginStep(L"MOVE");
        KxDbObjectPtr<KxDbMline> mline(id, KxDb::kForWrite);
        mline->moveVertexAt(0, KxGePoint3d{0, double(step), 0});
        mline.close();
        history.endStep();
        EXPECT_LE(history.bytes(), kBudget) << step;
    }
    const std::size_t kept = history.undoableSteps();
    EXPECT_GT(kept, 1u);
    EXPECT_LT(kept, std::size_t(kSteps));
    EXPECT_GT(history.bytes(), kBudget / 2) << "each step holds a copy of the multiline";

    const std::uint64_t changes = db.changeCount();
    EXPECT_EQ(history.undo(1), std::vector<std::wstring>{L"MOVE"});
    EXPECT_NEAR(firstY(id), kSteps - 1, 1e-10);
    EXPECT_NE(db.changeCount(), changes) << "a drawing taken back counts as changed";
    EXPECT_EQ(history.redo(), std::vector<std::wstring>{L"MOVE"});
    EXPECT_NEAR(firstY(id), kSteps, 1e-10);

    EXPECT_EQ(history.undo(kSteps).size(), kept);
    EXPECT_NEAR(firstY(id), double(kSteps - kept), 1e-10) << "the oldest kept step is the last taken back";

    // A budget below one step keeps only the newest, also when a mark
    // follows it.
    history.redo();
    history.mark();
    history.setByteBudget(1);
    EXPECT_EQ(history.undoableSteps(), 1u);
    history.undo(1);
    EXPECT_NEAR(firstY(id), kSteps - 1, 1e-10);
}

// A step that adds a line to model space records the line and what it
// appended, not the space's list: it holds and costs the same on a drawing
// of ten lines and on one of fifty thousand, taken back and restored.
TEST(UndoHistory, StepCostsWhatItChanges)
{
    const std::unique_ptr<KxDbDatabase> small = drawingOfLines(10);
    const std::unique_ptr<KxDbDatabase> large = drawingOfLines(50000);
    const auto stepBytes = [](KxDbDatabase& db) {
        const std::size_t before = db.undoHistory().bytes();
        lineStep(db);
        return db.undoHistory().bytes() - before;
    };
    EXPECT_EQ(stepBytes(*small), stepBytes(*large));

    KxDbObjectId added;
    const std::size_t peak = peakAllocation([&] {
        added = lineStep(*large);
        large->undoHistory().undo(1);
        EXPECT_EQ(large->peekObject(added), nullptr);
        EXPECT_EQ(modelSpaceCount(*large), 50001);
        large->undoHistory().redo();
    });
    EXPECT_LT(peak, std::size_t(16) << 10);
    EXPECT_NE(large->peekObject(added), nullptr);
    EXPECT_EQ(modelSpaceCount(*large), 50002);
    auto it = KxDbObjectPtr<KxDbBlockTableRecord>(large->modelSpaceId(), KxDb::kForRead)->newIterator();
    for (int i = 0; i < 50001; ++i)
        it->step();
    EXPECT_EQ(it->getEntityId(), added) << "the line comes back at the end of the list";

    // Small steps count what the history spends on them: with a budget of
    // 64 KiB a thousand of them do not all stay.
    small->undoHistory().setByteBudget(std::size_t(64) << 10);
    for (int i = 0; i < 1000; ++i)
        lineStep(*small);
    EXPECT_LE(small->undoHistory().bytes(), std::size_t(64) << 10);
    EXPECT_LT(small->undoHistory().undoableSteps(), 500u);
    EXPECT_GT(small->undoHistory().undoableSteps(), 20u);
}

// A MOVE of thousands of multilines (lines among them) keeps the
// multilines' vertex positions, not copies of them; U gives back the
// drawing byte for byte and REDO the moved one, also when the step changed
// some of them further after moving them and moved them all again.
TEST(UndoHistory, MoveKeepsPositionsAndUndoRestoresEveryByte)
{
    constexpr int kMultilines = 1500;
    KxDbDatabase db;
    kaldo::UndoHistory& history = db.undoHistory();
    const std::vector<KxDbObjectId> ids = addUnevenMultilines(db, kMultilines);
    kaldo::host().database = &db;
    QTemporaryDir dir;
    kaldo::dxf::KeptSections kept;
    const auto saved = [&](const char* name) {
        const std::filesystem::path path = dir.filePath(name).toStdString();
        kaldo::dxf::saveDxfFile(path, db, kept);
        return fileText(path);
    };
    // Files compared whole: a failure names the step, not megabytes of text.
    const std::string before = saved("before.dxf");
    const KxGeVector3d offset{0.1, -1 / 3.0, 0};
    kaldo::PickIndex index;

    const std::size_t bytesBefore = history.bytes();
    history.beginStep(L"MOVE");
    EXPECT_EQ(kaldo::moveEntities(ids, offset, index).changed, int(ids.size()));
    history.endStep();
    EXPECT_LT((history.bytes() - bytesBefore) / kMultilines, 400u) << "positions, not copies";
    const std::string moved = saved("moved.dxf");
    EXPECT_TRUE(moved != before);
    history.undo(1);
    EXPECT_TRUE(saved("undone.dxf") == before) << "U";
    history.redo();
    EXPECT_TRUE(saved("redone.dxf") == moved) << "REDO";
    history.undo(1);

    history.beginStep(L"MOVE");
    kaldo::moveEntities(ids, offset, index);
    for (std::size_t i = 0; i < 40; i += 4) {
        KxDbObjectPtr<KxDbEntity> entity(ids[i], KxDb::kForWrite);
        if (KxDbMline* mline = KxDbMline::cast(entity.get())) {
            mline->moveVertexAt(2, KxGePoint3d{-1.0 / 3, 0.1, 0});
            mline->setScale(2.5);
        } else
            entity->erase();
    }
    kaldo::moveEntities(ids, offset, index);
    history.endStep();
    const std::string changed = saved("changed.dxf");
    history.undo(1);
    EXPECT_TRUE(saved("changed-undone.dxf") == before) << "U of a step that changed them further";
    history.redo();
    EXPECT_TRUE(saved("changed-redone.dxf") == changed) << "REDO of a step that changed them further";
    kaldo::host().database = nullptr;
}
