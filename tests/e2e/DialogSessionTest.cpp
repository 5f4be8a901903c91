// Dialogs driven by scripts through the real binary: the MLEDIT tool dialog
// chooses its tool as the -MLEDIT keyword does, every other way of closing
// it runs none, and SHOW, GRAB and refused actions print what they should.
#include "FileText.h"
#include "KaldoProcess.h"
#include "MleditScripts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QImage>

#include <string>

using ::testing::HasSubstr;
using ::testing::Not;

namespace {

// The picks of a closed cross: the horizontal one first.
const std::string kCrossPicks = "20,5\n45,30\n\n";

// Runs the script and returns the drawing it saved.
std::string savedDrawing(const KaldoProcess& kaldo, const std::string& script, const std::string& name,
                         KaldoRun* run = nullptr)
{
    const std::filesystem::path file = kaldo.dir() / name;
    const KaldoRun result = kaldo.runScript(script, {"--save", QString::fromStdString(file.string())});
    if (run)
        *run = result;
    return fileText(file);
}

}  // namespace

// The Cancel button and the script's end close it as Cancel and run no
// tool (the plain button, Enter and Escape, by script and by hand:
// DialogScenarios).
TEST(DialogSession, ToolDialogChoosesTheToolAsItsKeywordDoesOrNoneWhenCancelled)
{
    KaldoProcess kaldo;
    KaldoRun run;
    const std::string byDialog = savedDrawing(kaldo, kCrossingPair + "MLEDIT\nCLICK 5759\n" + kCrossPicks,
                                              "dialog.dxf", &run);
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("Command: MLEDIT\nDialog 5758: Multiline Edit Tools\n"
                                   "Dialog 5758 closed: OK\nSelect first mline: 20,5\n"));
    const std::string byKeyword = savedDrawing(kaldo, kCrossingPair + "-MLEDIT\nCC\n" + kCrossPicks, "keyword.dxf");
    const std::string unedited = savedDrawing(kaldo, kCrossingPair, "unedited.dxf");
    ASSERT_FALSE(byDialog.empty());
    EXPECT_EQ(byDialog, byKeyword);
    EXPECT_NE(byDialog, unedited) << "the cross was closed";

    // The command and the dialog's action on one line, as a person types.
    const std::string oneLine = savedDrawing(kaldo, kCrossingPair + "MLEDIT CLICK 5759\n" + kCrossPicks, "line.dxf");
    EXPECT_EQ(oneLine, byKeyword);

    for (const char* closing : {"CLICK 2\n", ""}) {
        const std::string drawing = savedDrawing(kaldo, kCrossingPair + "MLEDIT\n" + closing, "closed.dxf", &run);
        EXPECT_EQ(run.exitCode, 0) << run.err;
        EXPECT_THAT(run.out, HasSubstr("Dialog 5758 closed: Cancel\n")) << closing;
        EXPECT_THAT(run.out, Not(HasSubstr("Select"))) << closing;
        EXPECT_EQ(drawing, unedited) << closing;
    }
}

TEST(DialogSession, ShowGrabAndRefusedActions)
{
    KaldoProcess kaldo;
    const KaldoRun run = kaldo.runScript("MLEDIT\nSHOW\nGRAB tools.png\nCLICK 42\nCHECK 5759 1\nTEXT 5760 x\n"
                                         "SELECT 5761 x\nHEADER 5762 0\nDBLCLICK 5763\nPRESS 5759\nGRAB\n"
                                         "CLICK 5771\n");
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("Dialog 5758: Multiline Edit Tools\n"
                                   "Dialog 5758: Multiline Edit Tools\n"
                                   "  5759 button enabled \"Closed Cross\"\n"
                                   "  5760 button enabled \"Open Cross\"\n"));
    EXPECT_THAT(run.out, HasSubstr("  5767 button enabled \"Add Vertex\"\n  5766 button enabled \"Delete Vertex\"\n"));
    EXPECT_THAT(run.out, HasSubstr("  5771 button enabled \"Close\"\n"));
    for (const char* refused : {"CLICK 42 (no item 42 in this dialog)", "CHECK 5759 1 (a button cannot be checked)",
                                "TEXT 5760 x (a button takes no text)", "SELECT 5761 x (a button has no rows)",
                                "HEADER 5762 0 (a button has no header)", "DBLCLICK 5763 (a button has no rows)",
                                "PRESS 5759 (no such dialog action)", "GRAB (no file named)"})
        EXPECT_THAT(run.out, HasSubstr(std::string("Dialog action refused: ") + refused + "\n"));
    EXPECT_THAT(run.out, HasSubstr("Dialog 5758 closed: OK\n"));
    const QImage picture(QString::fromStdString((kaldo.dir() / "tools.png").string()));
    ASSERT_FALSE(picture.isNull());
    EXPECT_EQ(picture.size(), QSize(458, 330));
}
