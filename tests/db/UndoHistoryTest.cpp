#include <gtest/gtest.h>

#include "kaldo/db/UndoHistory.h"
#include "kxdb.h"

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
