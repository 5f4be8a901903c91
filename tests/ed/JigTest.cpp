#include "EditorFixture.h"

#include "kxedjig.h"

#include <vector>

namespace kaldo {
namespace {

// Draws a line from a start point to the cursor.
class LineJig : public KxEdJig {
public:
    explicit LineJig(const KxGePoint3d& start) : line_(new KxDbLine(start, start)), start_(start) {}
    ~LineJig() override
    {
        if (!appended_)
            delete line_;
    }

    DragStatus sampler() override
    {
        setUserInputControls(acceptEnter ? kNullResponseAccepted : 0);
        setSpecialCursorType(kRubberBand);
        return acquirePoint(cursor_, start_);
    }
    bool update() override
    {
        updates.push_back(cursor_);
        line_->setEndPoint(cursor_);
        return true;
    }
    KxDbEntity* entity() const override { return line_; }

    KxDbObjectId appendLine()
    {
        appended_ = true;
        return append();
    }

    bool acceptEnter = true;
    std::vector<KxGePoint3d> updates;

private:
    KxDbLine* line_;
    KxGePoint3d start_;
    KxGePoint3d cursor_;
    bool appended_ = false;
};

class Jig : public EditorFixture {};

TEST_F(Jig, PointsKeywordsEnterAndCancel)
{
    script("5,0\nbogus\nc\nU\n@0,3\n\n^C\n");
    LineJig jig({1, 1, 0});
    jig.setDispPrompt(L"\nSpecify next point or [Close/Undo]: ");
    jig.setKeywordList(L"Close Undo _Close Undo");
    EXPECT_EQ(jig.drag(), KxEdJig::kNormal);
    ASSERT_EQ(jig.updates.size(), 1u);
    EXPECT_EQ(jig.updates[0].x, 5);
    EXPECT_EQ(editor.variables().pointValue(L"LASTPOINT").x, 5);
    EXPECT_EQ(jig.drag(), KxEdJig::kKW1);
    EXPECT_EQ(jig.drag(), KxEdJig::kKW2);
    std::wstring word;
    ASSERT_EQ(editor.lastKeyword(word), RTNORM);
    EXPECT_EQ(word, L"Undo");
    // Relative input is taken from the rubber band's base point.
    EXPECT_EQ(jig.drag(), KxEdJig::kNormal);
    EXPECT_EQ(jig.updates.back().x, 1);
    EXPECT_EQ(jig.updates.back().y, 4);
    EXPECT_EQ(jig.drag(), KxEdJig::kNull);
    EXPECT_EQ(jig.drag(), KxEdJig::kCancel);
    EXPECT_EQ(jig.drag(), KxEdJig::kCancel);
    EXPECT_EQ(jig.updates.size(), 2u);
    EXPECT_NE(transcript.find(L"[Close/Undo]: bogus\nInvalid point.\nSpecify next point or [Close/Undo]: c\n"),
              std::wstring::npos);
}

TEST_F(Jig, EnterAsksAgainUnlessAccepted)
{
    script("\n2,2\n");
    LineJig jig({0, 0, 0});
    jig.acceptEnter = false;
    jig.setDispPrompt(L"\nNext point :");
    EXPECT_EQ(jig.drag(), KxEdJig::kNormal);
    EXPECT_EQ(jig.updates.back().x, 2);
    EXPECT_EQ(transcript, L"Next point :\nNext point :2,2\n");
}

TEST_F(Jig, CursorMotionUpdatesUntilAPointIsGiven)
{
    QueuedInputSource window;
    editor.setInputSource(&window);
    std::vector<KxGePoint3d> drawn;
    editor.setDragListener([&drawn](std::span<const KxDbEntity* const> entities) {
        ASSERT_EQ(entities.size(), 1u);
        drawn.push_back(static_cast<const KxDbLine*>(entities.front())->endPoint());
    });
    window.push(InputEvent::moved({1, 0, 0}));
    window.push(InputEvent::moved({2, 0, 0}));
    window.push(InputEvent::picked({3, 0, 0}));
    LineJig jig({0, 0, 0});
    jig.setDispPrompt(L"\nNext point: ");
    EXPECT_EQ(jig.drag(), KxEdJig::kNormal);
    // The queue keeps only the newer of two motions nobody read yet.
    ASSERT_EQ(jig.updates.size(), 2u);
    EXPECT_EQ(jig.updates[1].x, 3);
    ASSERT_EQ(drawn.size(), 1u);
    EXPECT_EQ(drawn[0].x, 2);
    // The prompt is shown once however often the cursor moves; the clicked
    // point follows it as typed coordinates.
    EXPECT_EQ(transcript, L"Next point: 3.0000,0.0000\n");
}

TEST_F(Jig, AppendHandsTheEntityToTheDrawing)
{
    script("4,4\n");
    LineJig jig({0, 0, 0});
    ASSERT_EQ(jig.drag(), KxEdJig::kNormal);
    const KxDbObjectId id = jig.appendLine();
    ASSERT_FALSE(id.isNull());
    KxDbObjectPtr<KxDbLine> line(id, KxDb::kForRead);
    ASSERT_TRUE(line);
    EXPECT_EQ(line->endPoint().y, 4);
    EXPECT_EQ(line->ownerId(), db.currentSpaceId());
}

}  // namespace
}  // namespace kaldo
