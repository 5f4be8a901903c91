// "Select objects:" step by step: picks, windows typed with W and C and
// started by a pick that hits nothing (to the right a window, to the left a
// crossing), Last, Previous, Remove and Add, what each step says, what is
// highlighted, an implied selection taken without a prompt, and a
// transparent command run at the prompt.
#include "EditorFixture.h"

#include "kaldo/app/EntityEdits.h"
#include "kxdb.h"

#include <gmock/gmock.h>

#include <QString>

namespace kaldo {
namespace {

using ::testing::DoubleNear;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;
using ::testing::Pointwise;

class ObjectSelection : public EditorFixture {
protected:
    std::string said() const { return QString::fromStdWString(transcript).toStdString(); }
};

TEST_F(ObjectSelection, PicksWindowsCrossingsLastPreviousRemoveAndAdd)
{
    const KxDbObjectId bottom = addLine({0, 0, 0}, {10, 0, 0});
    const KxDbObjectId middle = addLine({0, 20, 0}, {10, 20, 0});
    const KxDbObjectId circle = add(new KxDbCircle({30, 10, 0}, 5));
    const KxDbObjectId across = addLine({-5, 40, 0}, {50, 40, 0});

    std::vector<std::pair<std::int64_t, int>> redrawn;
    editor.setRedrawListener([&](const std::int64_t* name, int mode) { redrawn.emplace_back(name ? name[0] : 0, mode); });
    script(
        // a pick; the same again; a window round the two short lines; a
        // crossing through the circle and the long line
        "5,0\n5,0\nW\n-1,-1\n11,21\nC\n28,0\n29,45\n"
        // take out the bottom line by a pick, the circle by a crossing
        // started on empty ground to the left; add the last entity again
        "R\n5,0\n33,30\n26,12\nA\nL\n\n");
    SelectionSet set;
    ASSERT_EQ(editor.selectObjects(set), RTNORM);
    EXPECT_THAT(set.ids(), ElementsAre(middle, across));
    const std::string text = said();
    EXPECT_THAT(text, HasSubstr("Select objects: 5,0\n1 found\n"));
    EXPECT_THAT(text, HasSubstr("Select objects: 5,0\n1 found (1 duplicate), 1 total\n"));
    EXPECT_THAT(text, HasSubstr("Select objects: W\nSpecify first corner: -1,-1\nSpecify opposite corner: 11,21\n"
                                "2 found (1 duplicate), 2 total\n"));
    EXPECT_THAT(text, HasSubstr("Specify opposite corner: 29,45\n2 found\n"));
    EXPECT_THAT(text, HasSubstr("Remove objects: 5,0\n1 found, 1 removed, 3 total\n"));
    EXPECT_THAT(text, HasSubstr("Remove objects: 33,30\nSpecify opposite corner: 26,12\n1 found, 1 removed, 2 total\n"));
    EXPECT_THAT(text, HasSubstr("Select objects: L\n1 found (1 duplicate), 2 total\n"));
    // Added entities are highlighted, removed ones no longer.
    const auto name = [](KxDbObjectId id) { return std::int64_t(id.asOldId()); };
    EXPECT_THAT(redrawn, ElementsAre(std::pair(name(bottom), 3), std::pair(name(middle), 3), std::pair(name(circle), 3),
                                     std::pair(name(across), 3), std::pair(name(bottom), 4), std::pair(name(circle), 4)));
    // The window and the crossing that added are kept for STRETCH; the
    // crossing that removed is not.
    const auto corners = [](const Box& b) { return std::vector<double>{b.minX, b.minY, b.maxX, b.maxY}; };
    ASSERT_EQ(set.windows().size(), 2u);
    EXPECT_THAT(corners(set.windows()[0]), Pointwise(DoubleNear(1e-10), {-1.0, -1.0, 11.0, 21.0}));
    EXPECT_THAT(corners(set.windows()[1]), Pointwise(DoubleNear(1e-10), {28.0, 0.0, 29.0, 45.0}));

    // A window to the right holds only what lies wholly inside it; Previous
    // brings back the set before; erased entities drop out of it.
    transcript.clear();
    script("-5,-5\n12,25\nP\n\n");
    SelectionSet next;
    ASSERT_EQ(editor.selectObjects(next), RTNORM);
    EXPECT_THAT(next.ids(), ElementsAre(bottom, middle, across));
    EXPECT_THAT(said(), HasSubstr("Specify opposite corner: 12,25\n2 found\n"));
    {
        KxDbObjectPtr<KxDbEntity> gone(across, KxDb::kForWrite);
        gone->erase();
    }
    script("P\n\n");
    SelectionSet previous;
    ASSERT_EQ(editor.selectObjects(previous), RTNORM);
    EXPECT_THAT(previous.ids(), ElementsAre(bottom, middle));

    // Cancel ends the selection.
    script("5,0\n^C\n");
    SelectionSet cancelled;
    EXPECT_EQ(editor.selectObjects(cancelled), RTCAN);
}

TEST_F(ObjectSelection, AnImpliedSelectionIsTakenWithoutAPromptAndTransparentCommandsRunAtThePrompt)
{
    const KxDbObjectId line = addLine({0, 0, 0}, {10, 0, 0});
    SelectionSet before;
    before.add(line);
    editor.setImpliedSelection(before);
    script("");
    SelectionSet set;
    ASSERT_EQ(editor.selectObjects(set), RTNORM);
    EXPECT_THAT(set.ids(), ElementsAre(line));
    EXPECT_TRUE(editor.impliedSelection().empty());
    EXPECT_EQ(said(), "1 found\n");

    std::vector<std::wstring> ran;
    editor.setTransparentHandler([&](std::wstring_view name) {
        ran.emplace_back(name);
        return name == L"HELP";
    });
    transcript.clear();
    script("'HELP\n'NOTHING\n\n");
    SelectionSet other;
    ASSERT_EQ(editor.selectObjects(other), RTNORM);
    EXPECT_THAT(ran, ElementsAre(L"HELP", L"NOTHING"));
    EXPECT_THAT(said(), HasSubstr("Select objects: 'HELP\nSelect objects: 'NOTHING\nInvalid point or option keyword.\n"));
}

TEST_F(ObjectSelection, WindowsAfterAMoveFindTheMovedEntitiesWhereTheyWent)
{
    // Enough lines for a tree of several levels; a window builds the index.
    std::vector<KxDbObjectId> lowest;
    for (int row = 0; row < 40; ++row)
        for (int column = 0; column < 40; ++column) {
            const KxDbObjectId id = addLine({column * 10.0, row * 10.0, 0}, {column * 10.0 + 5, row * 10.0, 0});
            if (row == 0)
                lowest.push_back(id);
        }
    const auto found = [&](const std::string& answers) {
        script(answers + "\n");
        SelectionSet set;
        EXPECT_EQ(editor.selectObjects(set), RTNORM);
        return set.ids();
    };
    EXPECT_EQ(found("W\n-1,-1\n400,400\n").size(), 1600u);

    // The lowest row moves up beyond the others, then part of it back down:
    // the windows find the lines where they are, and not where they were.
    const std::vector<KxDbObjectId> firstHalf(lowest.begin(), lowest.begin() + 20);
    EXPECT_EQ(moveEntities(lowest, {0, 1000, 0}, editor.pickIndex()).changed, 40);
    EXPECT_EQ(moveEntities(firstHalf, {3, -500, 0}, editor.pickIndex()).changed, 20);
    EXPECT_THAT(found("W\n-1,999\n400,1001\n"), ElementsAreArray(lowest.begin() + 20, lowest.end()));
    EXPECT_THAT(found("C\n-1,499\n400,501\n"), ElementsAreArray(firstHalf));
    EXPECT_TRUE(found("C\n-1,-1\n400,1\n").empty());
    EXPECT_EQ(found("W\n-1,-1\n400,400\n").size(), 1560u);

    // After another change the index is built anew.
    {
        KxDbObjectPtr<KxDbEntity> gone(lowest.back(), KxDb::kForWrite);
        gone->erase();
    }
    EXPECT_EQ(moveEntities(firstHalf, {0, 500, 0}, editor.pickIndex()).changed, 20);
    EXPECT_EQ(found("W\n-1,995\n400,1005\n").size(), 39u);
}

}  // namespace
}  // namespace kaldo
