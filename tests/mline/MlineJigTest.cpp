// The MLINE point loop on its own: vertices added, given up and closed as
// the prompts say, LASTPOINT after Undo and what reaches the drawing (the
// normal from the user coordinate system: MlineCommandTest).
#include "MlineFixture.h"

#include "mline/MlineJig.h"

#include "kaldo/ed/InputSource.h"

#include <gmock/gmock.h>

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

namespace kdml {
namespace {

class MlineJigTest : public MlineFixture {
protected:
    // Runs the jig from a start point on the script's input.
    int draw(const KxGePoint3d& start, const std::string& input, int justification = 0, double scale = 1.0,
             const wchar_t* style = L"STANDARD")
    {
        script(input);
        KaldMLineJig jig;
        jig.setUp(&db, start, justification, scale, style);
        return jig.run();
    }
};

TEST_F(MlineJigTest, EnterAndCancelKeepTheFixedSegmentsOnly)
{
    // Before a segment: nothing is added, also after a point taken back by
    // Undo.
    EXPECT_EQ(draw({0, 0, 0}, "\n"), KxEdJig::kNull);
    EXPECT_EQ(draw({0, 0, 0}, "^C\n"), KxEdJig::kCancel);
    EXPECT_EQ(draw({0, 0, 0}, ""), KxEdJig::kCancel);
    EXPECT_EQ(draw({0, 0, 0}, "5,0\nU\n\n"), KxEdJig::kNull);
    EXPECT_THAT(mlines(), IsEmpty());

    draw({1, 2, 0}, "5,2\n\n");
    draw({0, 10, 0}, "10,10\n10,20\n^C\n");
    const auto drawn = mlines();
    ASSERT_THAT(drawn, SizeIs(2));
    EXPECT_THAT(vertices(*drawn[0]), ElementsAre(IsPoint(1, 2, 0), IsPoint(5, 2, 0)));
    EXPECT_THAT(vertices(*drawn[1]), ElementsAre(IsPoint(0, 10, 0), IsPoint(10, 10, 0), IsPoint(10, 20, 0)));
    EXPECT_FALSE(drawn[1]->closedMline());
    // Every point is taken, the same one twice too: a zero-length segment.
    draw({0, 0, 0}, "3,0\n3,0\n\n");
    EXPECT_THAT(vertices(*mlines().back()), ElementsAre(IsPoint(0, 0, 0), IsPoint(3, 0, 0), IsPoint(3, 0, 0)));
}

TEST_F(MlineJigTest, PromptsFollowTheFixedVertices)
{
    draw({0, 0, 0}, "1,0\nU\n2,0\n2,2\n3,3\nU\nU\n\n");
    EXPECT_EQ(transcript,
              L"Next point :1,0\n"
              L"Specify next point or [Undo]:U\n"
              L"Next point :2,0\n"
              L"Specify next point or [Undo]:2,2\n"
              L"Specify next point or [Close/Undo]: 3,3\n"
              L"Specify next point or [Close/Undo]: U\n"
              L"Specify next point or [Close/Undo]: U\n"
              L"Specify next point or [Undo]:\n");
    // Two Undos gave up 3,3 and 2,2: the rubber band went back to 2,0.
    EXPECT_THAT(vertices(*mlines().at(0)), ElementsAre(IsPoint(0, 0, 0), IsPoint(2, 0, 0)));
}

TEST_F(MlineJigTest, RubberBandVertexFollowsTheCursor)
{
    // What the window sees while the cursor moves: the vertex count and the
    // last vertex of the multiline being dragged.
    std::vector<std::pair<int, KxGePoint3d>> seen;
    editor.setDragListener([&](std::span<const KxDbEntity* const> entities) {
        ASSERT_EQ(entities.size(), 1u);
        const KxDbMline* mline = KxDbMline::cast(entities.front());
        ASSERT_NE(mline, nullptr);
        seen.emplace_back(mline->numVertices(), mline->vertexAt(mline->numVertices() - 1));
    });
    kaldo::QueuedInputSource window;
    for (const kaldo::InputEvent& event :
         {kaldo::InputEvent::moved({3, 4, 0}), kaldo::InputEvent::moved({6, 8, 0}), kaldo::InputEvent::picked({10, 0, 0}),
          kaldo::InputEvent::moved({10, 5, 0}), kaldo::InputEvent::enter()})
        window.push(event);
    window.close();
    editor.setInputSource(&window);
    KaldMLineJig jig;
    jig.setUp(&db, {0, 0, 0}, 0, 1.0, L"STANDARD");
    jig.run();
    // The queue keeps only the newer of the two motions nobody read yet.
    ASSERT_THAT(seen, SizeIs(2));
    EXPECT_EQ(seen[0].first, 2);
    EXPECT_THAT(seen[0].second, IsPoint(6, 8, 0));
    // After the pick the band runs from the new fixed vertex.
    EXPECT_EQ(seen[1].first, 3);
    EXPECT_THAT(seen[1].second, IsPoint(10, 5, 0));
    // Enter took the band away and kept the picked point.
    EXPECT_THAT(vertices(*mlines().at(0)), ElementsAre(IsPoint(0, 0, 0), IsPoint(10, 0, 0)));
}

TEST_F(MlineJigTest, CloseNeedsThreeFixedVertices)
{
    // "C" is no keyword before the third fixed vertex: it is refused as a point.
    EXPECT_EQ(draw({0, 0, 0}, "10,0\nC\n10,10\nC\n"), KxEdJig::kNull);
    const auto drawn = mlines();
    ASSERT_THAT(drawn, SizeIs(1));
    EXPECT_TRUE(drawn[0]->closedMline());
    EXPECT_THAT(vertices(*drawn[0]), ElementsAre(IsPoint(0, 0, 0), IsPoint(10, 0, 0), IsPoint(10, 10, 0)));
    EXPECT_THAT(transcript, HasSubstr(L"Specify next point or [Undo]:C\nInvalid point."));
}

TEST_F(MlineJigTest, UndoWritesTheFixedPointBeforeToLastpointInUserCoordinates)
{
    db.setUcs({100, 0, 0}, {0, 1, 0}, {-1, 0, 0});
    // Cancel right after the Undo: LASTPOINT is still what Undo wrote.
    draw({100, 0, 0}, "0,10\n0,20\n0,30\nU\n");
    // Undo gave up 0,30: the rubber band starts again from 0,20.
    EXPECT_THAT(lastPoint(), IsPoint(0, 20, 0));
    // World positions of the typed user points (x along world Y).
    EXPECT_THAT(vertices(*mlines().at(0)), ElementsAre(IsPoint(100, 0, 0), IsPoint(90, 0, 0), IsPoint(80, 0, 0)));

    draw({97, 3, 0}, "5,5\nU\n");
    // Undo back to the start point: LASTPOINT is the start in user coordinates.
    EXPECT_THAT(lastPoint(), IsPoint(3, 3, 0));
}

TEST_F(MlineJigTest, SetUpTakesStyleScaleJustificationAndLayer)
{
    KxDbObjectId standard;
    {
        KxDbDictionary* opened = nullptr;
        ASSERT_EQ(db.getMLStyleDictionary(opened, KxDb::kForRead), Kald::eOk);
        const KxDbObjectPtr<KxDbDictionary> styles(opened);
        ASSERT_EQ(styles->getAt(L"standard", standard), Kald::eOk);
    }
    draw({0, 0, 0}, "10,0\n\n", 2, -1.5, L"standard");
    const auto drawn = mlines();
    ASSERT_THAT(drawn, SizeIs(1));
    EXPECT_EQ(drawn[0]->style(), standard);
    EXPECT_EQ(drawn[0]->scale(), -1.5);
    EXPECT_EQ(drawn[0]->justification(), 2);
    EXPECT_EQ(drawn[0]->layerId(), db.clayer());

    // A style the drawing lacks leaves the drawing's current one.
    draw({0, 0, 0}, "0,10\n\n", 1, 1.0, L"NOSUCH");
    EXPECT_EQ(mlines().back()->style(), db.cmlstyleID());
}

}  // namespace
}  // namespace kdml
