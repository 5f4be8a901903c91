// Save As from the menu and SAVEAS typed share one file dialog: a name typed
// without an extension gets ".dxf", and a copy with every multiline exploded
// is a file type of its own. On the command line the prompt names SAVEAS's
// keyword.
#include "WindowFixture.h"

#include "../e2e/EzdxfReport.h"

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QFileDialog>
#include <QJsonObject>
#include <QLineEdit>
#include <QMenuBar>
#include <QTest>

namespace {

// Pastes path into the file name of the file dialog about to open, under
// its file type at index type (chosen with the arrow keys), and presses
// Enter. Pasted whole, the path never names a folder on its way, which the
// dialog would select (and take) while its folder listing loads.
void saveInFileDialogSoon(const QString& path, int type)
{
    actOnDialogSoon<QFileDialog>([path, type](QFileDialog& dialog) {
        auto* types = dialog.findChild<QComboBox*>("fileTypeCombo");
        auto* edit = dialog.findChild<QLineEdit*>("fileNameEdit");
        ASSERT_TRUE(types && edit);
        EXPECT_EQ(types->count(), 3);
        for (int i = types->currentIndex(); i < type; ++i)
            QTest::keyClick(types, Qt::Key_Down);
        // The name field holds the focus as the user types, so that the
        // typed name replaces the file the dialog selected at first.
        dialog.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
        QTest::mouseClick(edit, Qt::LeftButton);
        QApplication::clipboard()->setText(path);
        QTest::keySequence(edit, QKeySequence::SelectAll);
        QTest::keySequence(edit, QKeySequence::Paste);
        QTest::keyClick(edit, Qt::Key_Return);
    });
}

}  // namespace

class SaveAs : public WindowFixture {
protected:
    QAction* saveAsAction()
    {
        for (QAction* action : window().menuBar()->findChildren<QAction*>())
            if (action->text() == "Save &As...")
                return action;
        return nullptr;
    }
    [[nodiscard]] bool waitForTranscript(const QString& text)
    {
        return QTest::qWaitFor([&] { return transcript().contains(text); }, kWaitMs);
    }
};

TEST_F(SaveAs, TheDialogAddsTheExtensionAndOffersTheExplodedCopy)
{
    ASSERT_TRUE(runTyped({"MLINE", "0,0", "100,0", ""}));
    const QString dirName = QString::fromStdString(dir());
    QAction* saveAsItem = saveAsAction();
    ASSERT_NE(saveAsItem, nullptr);

    saveInFileDialogSoon(dirName + "/plan-edited", 0);
    saveAsItem->trigger();
    const QString plan = dirName + "/plan-edited.dxf";
    ASSERT_TRUE(waitForTranscript("Saved \"" + plan + "\""));
    EXPECT_TRUE(QFileInfo::exists(plan));
    EXPECT_FALSE(QFileInfo::exists(dirName + "/plan-edited"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return window().drawing().path == plan; }, kWaitMs));

    // The copy's type writes the exploded copy; the drawing keeps its file.
    saveInFileDialogSoon(dirName + "/copy", 1);
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
    saveInFileDialogSoon(dirName + "/typed", 0);
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
