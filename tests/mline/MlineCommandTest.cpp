// The MLINE command in process: its results, a tilted user system, the
// file dialog when a person (not a script) types, and a session without a
// drawing (what scripts draw with it: MlineSession).
#include "MlnText.h"
#include "ed/EditorFixture.h"

#include "mline/MlineCommand.h"

#include "kaldo/ed/InputSource.h"

#include <gmock/gmock.h>

#include <QTemporaryDir>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <vector>

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;

namespace kdml {
namespace {

// Points compare within 1e-9 in every coordinate.
MATCHER_P3(IsPoint, x, y, z, "")
{
    return std::abs(arg.x - x) < 1e-9 && std::abs(arg.y - y) < 1e-9 && std::abs(arg.z - z) < 1e-9;
}

class MlineCommandTest : public kaldo::EditorFixture {
protected:
    // The multilines of the drawing that are not erased, oldest first.
    std::vector<const KxDbMline*> mlines() const
    {
        std::vector<const KxDbMline*> found;
        for (const KxDbObjectId id : db.objectIds()) {
            const KxDbMline* mline = KxDbMline::cast(db.peekObject(id));
            if (mline && !mline->isErased())
                found.push_back(mline);
        }
        return found;
    }

    std::vector<KxGePoint3d> vertices(const KxDbMline& mline) const
    {
        std::vector<KxGePoint3d> points;
        for (int i = 0; i < mline.numVertices(); ++i)
            points.push_back(mline.vertexAt(i));
        return points;
    }

    // Input typed by a person: commands ask for files in a dialog (here on
    // the command line, as there is no window system).
    void typed(const std::vector<std::wstring>& lines)
    {
        for (const std::wstring& line : lines)
            queue.push(line.empty() ? kaldo::InputEvent::enter() : kaldo::InputEvent::typed(line));
        queue.close();
        editor.setInputSource(&queue);
    }

    bool hasStyle(const wchar_t* name)
    {
        KxDbDictionary* opened = nullptr;
        if (db.getMLStyleDictionary(opened, KxDb::kForRead) != Kald::eOk)
            return false;
        const KxDbObjectPtr<KxDbDictionary> styles(opened);
        return styles->has(name);
    }

    kaldo::QueuedInputSource queue{false};
};

TEST_F(MlineCommandTest, ResultTellsHowTheCommandEnded)
{
    script("\n");
    EXPECT_EQ(CMLineCommand(&db).run(), RTNONE);
    script("^C\n");
    EXPECT_EQ(CMLineCommand(&db).run(), RTCAN);
    // A start point alone draws nothing, yet the point loop ran.
    script("J\nZ\n1,1\n\n");
    EXPECT_EQ(CMLineCommand(&db).run(), RTNORM);
}

TEST_F(MlineCommandTest, TiltedUserSystemGivesPlaneAndVertices)
{
    // Origin 1,2,3; X along the world X axis, Y turned 30 degrees up about it.
    const double c = std::cos(M_PI / 6), s = std::sin(M_PI / 6);
    ASSERT_EQ(db.setUcs({1, 2, 3}, {1, 0, 0}, {0, c, s}), Kald::eOk);
    script("0,0\n10,0\n10,10\n\n");
    EXPECT_EQ(CMLineCommand(&db).run(), RTNORM);
    const auto drawn = mlines();
    ASSERT_THAT(drawn, SizeIs(1));
    EXPECT_THAT(drawn[0]->normal(), IsPoint(0, -s, c));
    EXPECT_EQ(drawn[0]->layerId(), db.clayer());
    // The start point is converted as a point: the origin moves it too.
    EXPECT_THAT(vertices(*drawn[0]), ElementsAre(IsPoint(1, 2, 3), IsPoint(11, 2, 3), IsPoint(11, 2 + 10 * c, 3 + 10 * s)));
    // Miters lie in the multiline's plane.
    for (int i = 0; i < drawn[0]->numVertices(); ++i)
        EXPECT_NEAR(dot(drawn[0]->miterAt(i), drawn[0]->normal()), 0, 1e-12) << "vertex " << i;
}

// What the options write to the variables: MlineSession.
TEST_F(MlineCommandTest, SettersIgnoreBadCodesAndKeepAStyleTheDrawingLacks)
{
    script("");
    CMLineCommand command(&db);
    command.readSettings();
    // Codes outside 0..2 are ignored, -1 among them.
    EXPECT_EQ(command.setJustification(3), RTNORM);
    EXPECT_EQ(command.setJustification(-1), RTNORM);
    EXPECT_EQ(command.justification(), 0);
    EXPECT_EQ(db.cmljust(), 0);
    // A style the drawing lacks cannot become current: the variable write
    // fails, the command keeps the name.
    EXPECT_NE(command.setStyleName(L"nosuch"), RTNORM);
    EXPECT_EQ(command.styleName(), L"NOSUCH");
}

TEST_F(MlineCommandTest, TypedByAPersonTheStyleFileComesFromTheFileDialog)
{
    QTemporaryDir dir;
    const std::filesystem::path folder = dir.path().toStdString();
    // The dialog hands back "a|b.mln"; the bar stands for a blank, so the
    // style is read from "a b.mln".
    std::ofstream(folder / "a|b.mln") << "";
    std::ofstream(folder / "a b.mln") << mlnStyleBlock("WALL", "Wall", {0.1, -0.1});
    const std::wstring chosen = (folder / "a|b.mln").wstring();
    typed({L"ST", L"wall", L"", L"Wall", chosen, L""});
    EXPECT_EQ(CMLineCommand(&db).run(), RTNONE);
    // Enter in the dialog chose nothing: asked again for the style, silently.
    EXPECT_THAT(transcript, HasSubstr(L"Enter mline style name or [?]: wall\nEnter file name: \n"
                                      L"Enter mline style name or [?]: Wall\nEnter file name: "));
    EXPECT_THAT(transcript, Not(HasSubstr(L"Multiline style to load")));
    EXPECT_THAT(transcript, Not(HasSubstr(L"does not exist")));
    EXPECT_THAT(transcript, HasSubstr(L"Style = WALL\n"));
    EXPECT_TRUE(hasStyle(L"wall"));
    EXPECT_EQ(db.cmlstyleID().isNull(), false);
}

TEST_F(MlineCommandTest, WithoutADrawingNothingIsFoundAndNothingDrawn)
{
    kaldo::host().database = nullptr;
    script("J\n^C\n?\nST\n?\nSTANDARD\n^C\n0,0\n5,0\n\n");
    EXPECT_EQ(CMLineCommand(nullptr).run(), RTNORM);
    // Unreadable variables: no justification name, scale 0, no style.
    EXPECT_THAT(transcript, HasSubstr(L"Current settings: Justification = , Scale = 0.0000, Style = \n"));
    EXPECT_THAT(transcript, HasSubstr(L"Enter justification type [Top/Zero/Bottom] <>: "));
    // The listing prints nothing and a name is never found.
    EXPECT_THAT(transcript, HasSubstr(L"Enter mline style name or [?]: ?\nEnter mline style name or [?]: STANDARD\n"
                                      L"Enter mline style name or [?]: *Cancel*\n"));
    EXPECT_THAT(transcript, Not(HasSubstr(L"Multiline Style ")));
    kaldo::host().database = &db;
    EXPECT_THAT(mlines(), IsEmpty());
}

}  // namespace
}  // namespace kdml
