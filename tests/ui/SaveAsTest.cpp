// Save As from the menu and SAVEAS typed share one file dialog: a name typed
// without an extension gets ".dxf", and a copy with every multiline exploded
// is a file type of its own. On the command line the prompt names SAVEAS's
// keyword.
#include "WindowFixture.h"

#include "../e2e/EzdxfReport.h"

#include <QJsonObject>
#include <QTest>

class SaveAs : public WindowFixture {
protected:
    [[nodiscard]] bool waitForTranscript(const QString& text)
    {
        return QTest::qWaitFor([&] { return transcript().contains(text); }, kWaitMs);
    }
};

TEST_F(SaveAs, TheDialogAddsTheExtensionAndOffersTheExplodedCopy)
{
    ASSERT_TRUE(runTyped({"MLINE", "0,0", "100,0", ""}));
    const QString dirName = QString::fromStdString(dir());
    QAction* saveAsItem = menuAction("Save &As...");
    ASSERT_NE(saveAsItem, nullptr);

    chooseInFileDialogSoon(dirName + "/plan-edited", 0);
    saveAsItem->trigger();
    const QString plan = dirName + "/plan-edited.dxf";
    ASSERT_TRUE(waitForTranscript("Saved \"" + plan + "\""));
    EXPECT_TRUE(QFileInfo::exists(plan));
    EXPECT_FALSE(QFileInfo::exists(dirName + "/plan-edited"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return window().drawing().path == plan; }, kWaitMs));

    // The copy's type writes the exploded copy; the drawing keeps its file.
    chooseInFileDialogSoon(dirName + "/copy", 1);
    saveAsItem->trigger();
    ASSERT_TRUE(waitForTranscript("Saved \"" + dirName + "/copy.dxf\" with 1 multilines exploded."));
    const EzdxfReport copy = readWithEzdxf(dir() + "/copy.dxf", "ezdxf_explode.py");
    ASSERT_TRUE(copy.ran) << copy.problem;
    EXPECT_FALSE(copy.file["kinds"].toObject().contains("MLINE"));
    EXPECT_TRUE(copy.file["kinds"].toObject().contains("LINE"));
    ASSERT_TRUE(runTyped({"LINE", "0,5", "10,5", ""}));
    ASSERT_TRUE(QTest::qWaitFor([&] { return window().drawing().modified; }, kWaitMs));
    EXPECT_EQ(window().drawing().path, plan);

    // SAVEAS typed opens the same dialog.
    chooseInFileDialogSoon(dirName + "/typed", 0);
    type("SAVEAS");
    ASSERT_TRUE(waitForTranscript("Saved \"" + dirName + "/typed.dxf\""));
    ASSERT_TRUE(waitForPrompt("Command: ", Kind::Command));

    // On the command line SAVEAS names its keyword.
    ASSERT_TRUE(runTyped({"FILEDIA", "0"}));
    type("SAVEAS");
    ASSERT_TRUE(waitForPrompt("Enter file name or [Exploded] <" + dirName + "/typed.dxf>: ", Kind::Text));
    press(Qt::Key_Escape);
    ASSERT_TRUE(waitForPrompt("Command: ", Kind::Command));
}
