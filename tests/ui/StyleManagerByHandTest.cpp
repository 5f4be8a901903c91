// The style manager in the window, used by hand as a new user would: a
// style loaded from a file through the host's file dialog and made current
// with the mouse, multilines drawn with it by clicks, and then the mouse on
// another style and back, and on Delete. The style in use stays; the drawing
// saved reopens and an independent reader finds nothing to repair.
#include "WindowFixture.h"

#include "MlnText.h"
#include "res/DialogItems.h"
#include "scenarios/HandDriver.h"

#include "kxuiwnd.h"

#include <QJsonArray>
#include <QTest>

#include <fstream>

using namespace scenario;

namespace manager = kdml::styleManagerItem;
namespace load = kdml::styleLoadItem;

class StyleManagerByHand : public WindowFixture {
protected:
    // Makes the gestures on the dialogs MLSTYLE opens, then waits for the
    // command prompt.
    [[nodiscard]] bool mlstyleByHand(const std::vector<Step>& steps)
    {
        HandDriver hand(steps);
        hand.start();
        type("MLSTYLE");
        const bool ended = QTest::qWaitFor([&] { return hand.idle(); }, kWaitMs)
                           && waitForPrompt("Command: ", Kind::Command);
        return hand.finish() && ended;
    }
};

TEST_F(StyleManagerByHand, TheCurrentStyleInUseSurvivesMouseClicksOnAnotherRowAndBack)
{
    const std::string styles = dir() + "/walls.mln";
    std::ofstream(styles) << mlnStyleBlock("WALL_200MM", "Wall", {0.1, -0.1});
    ASSERT_TRUE(mlstyleByHand({click(manager::kLoad), click(load::kBrowse), file(QString::fromStdString(styles)),
                               select(load::kStyleList, "WALL_200MM"), click(IDOK),
                               select(manager::kStyleList, "WALL_200MM"), click(manager::kSetCurrent), click(IDOK)}));
    ASSERT_TRUE(runTyped({"ZOOM", "W", "-10,-10", "110,110"}));
    for (int row = 0; row < 10; ++row) {
        type("MLINE");
        ASSERT_TRUE(waitForPrompt("Specify start point or [Justification/Scale/STyle]: ", Kind::Point));
        clickAt(pixelOf(0, 10 * row));
        ASSERT_TRUE(waitForPrompt("Next point :", Kind::Drag));
        clickAt(pixelOf(100, 10 * row));
        ASSERT_TRUE(waitForPrompt("Specify next point or [Undo]:", Kind::Drag));
        type("");
        ASSERT_TRUE(waitForPrompt("Command: ", Kind::Command));
    }

    // STANDARD by the mouse, then WALL_200MM: Delete and Rename stay
    // disabled, and clicks on them do nothing.
    ASSERT_TRUE(mlstyleByHand({select(manager::kStyleList, "STANDARD"), select(manager::kStyleList, "WALL_200MM"),
                               click(manager::kDelete), click(IDYES), click(manager::kRename), click(IDOK)}));
    EXPECT_FALSE(transcript().contains("Message: "));

    const QJsonObject read = savedAndRead("after.dxf");
    const QJsonArray mlines = read["mlines"].toArray();
    ASSERT_EQ(mlines.size(), 10);
    for (const auto& mline : mlines)
        EXPECT_EQ(mline.toObject()["style"].toString(), "WALL_200MM");
    EXPECT_EQ(read["cmlstyle"].toString(), "WALL_200MM");
    ASSERT_TRUE(runTyped({"FILEDIA", "0", "OPEN", QString::fromStdString(dir() + "/after.dxf")}));
    EXPECT_TRUE(transcript().contains("Opened")) << transcript().toStdString();
}
