#include "EditorFixture.h"

#include "kxed.h"
#include "kxgs.h"

#include <vector>

namespace kaldo {
namespace {

class EntitySelection : public EditorFixture {
protected:
    KxDbObjectId picked(const kxds_name name)
    {
        KxDbObjectId id;
        kxdbGetObjectId(id, name);
        return id;
    }
    short errNo() { return editor.variables().shortValue(L"ERRNO", -1); }
};

TEST_F(EntitySelection, HitMissEnterAndCancel)
{
    const KxDbObjectId low = addLine({0, 0, 0}, {10, 0, 0});
    const KxDbObjectId high = addLine({0, 4, 0}, {10, 4, 0});
    script("5,1\n5,2.5\n5,2\n\n^C\n");
    kxds_name name;
    double point[3];
    ASSERT_EQ(kxedEntSel(L"\nSelect object: ", name, point), RTNORM);
    EXPECT_EQ(picked(name), low);
    EXPECT_EQ(point[1], 1);
    EXPECT_EQ(errNo(), 0);
    ASSERT_EQ(kxedEntSel(L"\nSelect object: ", name, point), RTNORM);
    EXPECT_EQ(picked(name), high);
    // Both lines lie 2 units away, within the pick box of 3 pixels: the
    // first one found stays when no other is nearer.
    ASSERT_EQ(kxedEntSel(L"\nSelect object: ", name, point), RTNORM);
    EXPECT_EQ(picked(name), low);
    EXPECT_EQ(kxedEntSel(L"\nSelect object: ", name, point), RTERROR);
    EXPECT_EQ(errNo(), OL_ENTSELNULL);
    EXPECT_EQ(name[0], 0);
    EXPECT_EQ(kxedEntSel(L"\nSelect object: ", name, point), RTCAN);
}

// The pick box follows the view's scale; picks go through an index of the
// drawing: they must see every change.
TEST_F(EntitySelection, PickBoxFollowsTheViewScaleAndPicksFollowChangesToTheDrawing)
{
    const KxDbObjectId line = addLine({0, 0, 0}, {10, 0, 0});
    script("5,2\n5,2\n5,2\n5,0\n5,50\n105,0\n");
    kxds_name name;
    double point[3];
    ASSERT_EQ(kxedEntSel(L"", name, point), RTNORM);
    editor.view().unitsPerPixel = 0.5;
    EXPECT_EQ(kxgsActiveView()->unitSquarePerPixel(), 0.5);
    EXPECT_EQ(kxedEntSel(L"", name, point), RTERROR);
    EXPECT_EQ(errNo(), OL_ENTSELPICK);
    EXPECT_EQ(name[0], 0);
    EXPECT_EQ(point[1], 2);
    // A miss says so for every command that picks.
    EXPECT_TRUE(transcript.ends_with(L"5,2\nNo object found.\n"));
    editor.variables().set(L"PICKBOX", short(4));
    ASSERT_EQ(kxedEntSel(L"", name, point), RTNORM);
    EXPECT_EQ(picked(name), line);

    {
        KxDbObjectPtr<KxDbLine> moved(line, KxDb::kForWrite);
        moved->setStartPoint({0, 50, 0});
        moved->setEndPoint({10, 50, 0});
    }
    EXPECT_EQ(kxedEntSel(L"", name, point), RTERROR);
    ASSERT_EQ(kxedEntSel(L"", name, point), RTNORM);
    EXPECT_EQ(picked(name), line);
    const KxDbObjectId added = addLine({100, 0, 0}, {110, 0, 0});
    ASSERT_EQ(kxedEntSel(L"", name, point), RTNORM);
    EXPECT_EQ(picked(name), added);
}

TEST_F(EntitySelection, ErasedEntitiesKeywordsAndUserCoordinates)
{
    const KxDbObjectId line = addLine({0, 0, 0}, {10, 0, 0});
    const KxDbObjectId other = addLine({0, 0, 0}, {0, 10, 0});
    {
        KxDbObjectPtr<KxDbLine> erased(other, KxDb::kForWrite);
        ASSERT_TRUE(erased);
        erased->erase();
    }
    // User x along world y: the typed point (5, 0) lies on the erased line.
    ASSERT_EQ(db.setUcs({0, 0, 0}, {0, 1, 0}, {-1, 0, 0}), Kald::eOk);
    script("5,0\n0,-5\nU\n");
    kxds_name name;
    double point[3];
    EXPECT_EQ(kxedEntSel(L"", name, point), RTERROR);
    ASSERT_EQ(kxedEntSel(L"", name, point), RTNORM);
    EXPECT_EQ(picked(name), line);
    kxedInitGet(0, L"Undo _UNDO");
    ASSERT_EQ(kxedEntSel(L"", name, point), RTKWORD);
    wchar_t word[KXED_TEXT_SIZE];
    ASSERT_EQ(kxedGetInput(word), RTNORM);
    EXPECT_STREQ(word, L"UNDO");
}

// While a pick waits in a window, each cursor motion is looked up by the
// pick's own rule; the listener hears the entity a click there would take,
// and null once the pick has ended. A clicked point is echoed as typed.
TEST_F(EntitySelection, CursorMotionShowsWhatAClickWouldTake)
{
    const KxDbObjectId line = addLine({0, 0, 0}, {10, 0, 0});
    std::vector<KxDbObjectId> heard;
    editor.setHoverListener([&heard](const KxDbObjectId& entity) { heard.push_back(entity); });
    QueuedInputSource window;
    editor.setInputSource(&window);
    window.push(InputEvent::moved({5, 2, 0}));
    window.push(InputEvent::picked({5, 3.5, 0}));
    window.push(InputEvent::moved({5, 4, 0}));
    window.push(InputEvent::picked({5, 1, 0}));
    kxds_name name;
    double point[3];
    EXPECT_EQ(kxedEntSel(L"\nSelect object: ", name, point), RTERROR);
    ASSERT_EQ(kxedEntSel(L"\nSelect object: ", name, point), RTNORM);
    EXPECT_EQ(picked(name), line);
    EXPECT_EQ(heard, std::vector<KxDbObjectId>({line, KxDbObjectId(), KxDbObjectId(), KxDbObjectId()}));
    EXPECT_EQ(transcript, L"Select object: 5.0000,3.5000\nNo object found.\n"
                          L"Select object: 5.0000,1.0000\n");
}

}  // namespace
}  // namespace kaldo
