// The dialogs of the module and the host in one table of scenarios, each
// run by script and by a person's hand (mouse and keys on the real
// widgets): both runs must leave the same drawing, profile, style files and
// transcript. The drawing holds WALL_200MM, current and used by
// multilines, ROAD_7M, used by none, and STANDARD.
#include "MlnText.h"
#include "Scenario.h"

#include "kaldo/dlg/PlotDialog.h"
#include "kaldo/dxf/DxfFile.h"
#include "res/DialogItems.h"

#include "kxuiwnd.h"

#include <gmock/gmock.h>

#include <QTemporaryDir>

#include <fstream>

using ::testing::HasSubstr;
using ::testing::Not;
using namespace scenario;
using namespace kaldo::dlg;

namespace {

namespace manager = kdml::styleManagerItem;
namespace definition = kdml::styleDefinitionItem;
namespace names = kdml::styleNameItem;
namespace load = kdml::styleLoadItem;
namespace mledit = kdml::mleditItem;

class DialogScenarios : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        root_ = new QTemporaryDir;
        styles_ = root() / "styles.mln";
        std::ofstream(styles_) << mlnStyleBlock("WALL_200MM", "WALL_200MM from the file", {0.1, -0.1})
                               << mlnStyleBlock("ROAD_7M", "ROAD_7M from the file", {3.5, -3.5})
                               << mlnStyleBlock("PIPE", "PIPE from the file", {0.05, -0.05});
        const std::string mln = styles_.string();
        drawing_ = prepareDrawing("MLSTYLE\nCLICK 1032\nCLICK 1056\n" + mln + "\nSELECT 1058 WALL_200MM\nCLICK 1\n"
                                  "CLICK 1032\nSELECT 1058 ROAD_7M\nCLICK 1\nSELECT 1021 WALL_200MM\nCLICK 1026\n"
                                  "CLICK 1\nMLINE\n0,0\n100,0\n\nMLINE\n0,50\n100,50\n\nMLINE\n50,-20\n50,80\n\n",
                                  root() / "start");
    }
    static void TearDownTestSuite() { delete root_; }

    static std::filesystem::path root() { return root_->path().toStdString(); }

    static QString stylesFile() { return QString::fromStdString(styles_.string()); }

    Scenario scenario(std::vector<Step> steps, std::vector<std::string> writtenFiles = {}) const
    {
        return {::testing::UnitTest::GetInstance()->current_test_info()->name(), drawing_, std::move(steps),
                std::move(writtenFiles)};
    }

    // Runs it both ways and compares what they left; returns the script's.
    Outcome runBothWays(const Scenario& scenario) const
    {
        const Outcome byScript = runByScript(scenario, root() / "script");
        const Outcome byHand = runByHand(scenario, root() / "hand");
        EXPECT_TRUE(byHand.finished) << "a step was not taken or a dialog stayed open";
        EXPECT_EQ(byHand.commandLine, byScript.commandLine);
        EXPECT_TRUE(byHand.drawing == byScript.drawing) << "the drawings differ";
        EXPECT_EQ(byHand.profile, byScript.profile);
        EXPECT_EQ(byHand.files, byScript.files);
        // Whatever the dialogs did, the drawing saved opens again.
        EXPECT_NO_THROW(kaldo::dxf::readDxfFile(root() / "hand" / "drawing.dxf"));
        return byScript;
    }

private:
    static inline QTemporaryDir* root_ = nullptr;
    static inline std::filesystem::path styles_;
    static inline std::filesystem::path drawing_;
};

}  // namespace

// The current style in use, chosen after another row by the mouse, keeps
// Delete, Rename and Modify disabled: none of them acts, and WALL_200MM
// stays. Then each button on ROAD_7M, which nothing uses, and Set Current
// by a double click.
TEST_F(DialogScenarios, StyleManagerRowsByMouseThenEachButton)
{
    const Outcome outcome = runBothWays(scenario(
        {command("MLSTYLE"), select(manager::kStyleList, "STANDARD"), select(manager::kStyleList, "WALL_200MM"),
         click(manager::kDelete), click(IDYES), click(manager::kRename), click(manager::kModify), click(IDCANCEL),
         command("MLSTYLE"), select(manager::kStyleList, "ROAD_7M"), click(manager::kModify), click(IDCANCEL),
         click(manager::kRename), type(names::kRenameNew, "ROAD_8M"), click(IDOK), click(manager::kSave),
         file("%RUN%/road.mln"), click(manager::kDelete), click(IDNO), click(manager::kDelete), click(IDYES),
         click(manager::kNew), type(names::kNewName, "BRICK"), click(IDOK), click(IDOK),
         select(manager::kStyleList, "STANDARD"), click(manager::kSetCurrent),
         doubleClick(manager::kStyleList, "BRICK"), click(IDOK)},
        {"road.mln"}));
    EXPECT_THAT(outcome.drawing, HasSubstr("AcDbMlineStyle\n  2\nWALL_200MM\n"));
    EXPECT_THAT(outcome.drawing, Not(HasSubstr("ROAD_")));
    EXPECT_THAT(outcome.drawing, HasSubstr("$CMLSTYLE\n  2\nBRICK\n"));
    EXPECT_THAT(outcome.files[0], HasSubstr("\r\n ROAD_8M\r\n"));
    EXPECT_THAT(outcome.transcript, HasSubstr("Message: Delete the multiline style \"ROAD_8M\"?\nMessage closed: No\n"));
}

// Rows chosen with the arrow keys, Enter on a push button that has the
// focus (New, after Set Current) and Enter elsewhere (OK), Escape.
TEST_F(DialogScenarios, StyleManagerByKeys)
{
    const Outcome outcome = runBothWays(scenario(
        {command("MLSTYLE"), select(manager::kStyleList, "STANDARD", Hand::Keys),
         select(manager::kStyleList, "WALL_200MM", Hand::Keys), click(manager::kDelete),
         select(manager::kStyleList, "ROAD_7M", Hand::Keys), click(manager::kSetCurrent), key(Qt::Key_Return, ""),
         type(names::kNewName, "KEYED"), key(Qt::Key_Return, ""), key(Qt::Key_Escape, "^C"),
         select(manager::kStyleList, "STANDARD", Hand::Keys), key(Qt::Key_Return, "")}));
    EXPECT_THAT(outcome.drawing, HasSubstr("AcDbMlineStyle\n  2\nWALL_200MM\n"));
    EXPECT_THAT(outcome.drawing, HasSubstr("$CMLSTYLE\n  2\nROAD_7M\n"));
    EXPECT_THAT(outcome.drawing, Not(HasSubstr("KEYED")));
    EXPECT_THAT(outcome.transcript, HasSubstr("Dialog 107 closed: OK\nDialog 105: New Multiline Style: KEYED\n"
                                              "Dialog 105 closed: Cancel\n"));
    EXPECT_THAT(outcome.transcript, HasSubstr("Dialog 101 closed: OK\n"));
}

// Element rows by mouse and keys, Add and Delete (after which no row is
// selected and the element controls take nothing), typed offsets, the
// colour combos by mouse and keys, the linetype by the wheel, the headings,
// the caps, the fill and an angle.
TEST_F(DialogScenarios, NewModifyDialogElementsCombosAndHeadings)
{
    const Outcome outcome = runBothWays(scenario(
        {command("MLSTYLE"), select(manager::kStyleList, "STANDARD"), click(manager::kModify), click(definition::kAdd),
         type(definition::kOffset, "0.25"), select(definition::kElementColor, "Red"),
         select(definition::kLinetype, "Continuous", Hand::Wheel), select(definition::kElementList, "-0.5"),
         select(definition::kElementColor, "Blue", Hand::Keys), select(definition::kElementList, "0.25", Hand::Keys),
         click(definition::kDelete), type(definition::kOffset, "0.75"), select(definition::kElementColor, "Green"),
         header(definition::kElementList, 1), header(definition::kElementList, 0),
         select(definition::kElementList, "0.5"), type(definition::kOffset, "0.3"), check(definition::kStartLine, true),
         check(definition::kFill, true), select(definition::kFillColor, "Yellow"), type(definition::kStartAngle, "45"),
         type(definition::kDescription, "Edited by hand"), click(IDOK), click(IDOK)}));
    EXPECT_THAT(outcome.drawing, HasSubstr("  3\nEdited by hand\n"));
    // The deleted row took its offset and colour along; the typed 0.75 and
    // the green went nowhere.
    EXPECT_THAT(outcome.drawing, Not(HasSubstr("\n 49\n0.25\n")));
    EXPECT_THAT(outcome.drawing, Not(HasSubstr("\n 49\n0.75\n")));
    EXPECT_THAT(outcome.drawing, HasSubstr("\n 49\n0.3\n 62\n256\n"));
    EXPECT_THAT(outcome.drawing, HasSubstr("\n 49\n-0.5\n 62\n5\n"));
}

// Typed names with forbidden characters, spaces or a name in use keep OK
// disabled; the start style chosen by mouse in the editable combo box.
TEST_F(DialogScenarios, NameDialogsRefuseNamesWhileTyped)
{
    const Outcome outcome = runBothWays(scenario(
        {command("MLSTYLE"), click(manager::kNew), type(names::kNewName, "A#B"), click(IDOK),
         type(names::kNewName, "wall_200mm"), click(IDOK), type(names::kNewName, "HALL"),
         select(names::kStartStyle, "ROAD_7M"), click(IDOK), click(IDOK), select(manager::kStyleList, "HALL"),
         click(manager::kRename), type(names::kRenameNew, "NEW HALL"), click(IDOK), type(names::kRenameNew, "HALL?"),
         click(IDOK), type(names::kRenameNew, "HALL_2"), click(IDOK), click(IDOK)}));
    EXPECT_THAT(outcome.drawing, HasSubstr("AcDbMlineStyle\n  2\nHALL_2\n"));
    EXPECT_THAT(outcome.drawing, HasSubstr("  3\nROAD_7M from the file\n"));
    EXPECT_THAT(outcome.drawing, Not(HasSubstr("A#B")));
}

// The load dialog: a file chosen in the host's file dialog, rows by mouse
// and keys; Enter and Space close it without loading, a double click
// loads, OK on a style in use is refused and the dialog stays.
TEST_F(DialogScenarios, LoadDialogEnterAndSpaceNeverLoad)
{
    const Outcome outcome = runBothWays(scenario(
        {command("MLSTYLE"), click(manager::kLoad), click(load::kBrowse), file(stylesFile()),
         select(load::kStyleList, "PIPE"), key(Qt::Key_Return, ""), click(manager::kLoad),
         select(load::kStyleList, "PIPE"), key(Qt::Key_Space, "CLICK 2"), click(manager::kLoad),
         select(load::kStyleList, "WALL_200MM", Hand::Keys), click(IDOK), click(IDCANCEL), click(manager::kLoad),
         doubleClick(load::kStyleList, "PIPE"), click(IDOK)}));
    EXPECT_THAT(outcome.transcript, HasSubstr("Dialog 108 closed: Cancel\nDialog 108: Load Multiline Styles\n"
                                              "Dialog 108 closed: Cancel\nDialog 108: Load Multiline Styles\n"
                                              "Dialog 108 closed: Cancel\nDialog 108: Load Multiline Styles\n"
                                              "Dialog 108 closed: OK\n"));
    EXPECT_THAT(outcome.drawing, HasSubstr("AcDbMlineStyle\n  2\nPIPE\n"));
    EXPECT_THAT(outcome.profile, HasSubstr("MlstyleFile="));
}

// Each image button of the tool dialog chooses its tool (the tool's prompt
// answered with Enter); the plain button, Enter and Escape choose none; a
// closed cross by the dialog with typed picks.
TEST_F(DialogScenarios, ToolDialogImageButtons)
{
    std::vector<Step> steps;
    for (int button = 5759; button <= 5770; ++button)
        steps.insert(steps.end(), {command("MLEDIT"), click(button), command("")});
    steps.insert(steps.end(), {command("MLEDIT"), click(mledit::kPlainButton), command("MLEDIT"),
                               key(Qt::Key_Return, ""), command("MLEDIT"), key(Qt::Key_Escape, "^C"), command("MLEDIT"),
                               click(5759), command("20,0"), command("50,30"), command("")});
    const Outcome outcome = runBothWays(scenario(steps));
    for (const char* prompt : {"Select first mline: \n", "Select mline: \n"})
        EXPECT_THAT(outcome.transcript, HasSubstr(prompt));
    EXPECT_THAT(outcome.transcript, HasSubstr("Dialog 5758 closed: OK\nCommand: MLEDIT\nDialog 5758: Multiline Edit "
                                              "Tools\nDialog 5758 closed: OK\nCommand: MLEDIT\nDialog 5758: Multiline "
                                              "Edit Tools\nDialog 5758 closed: Cancel\n"));
    EXPECT_THAT(outcome.transcript, HasSubstr("Select first mline: 20,0\nSelect second mline: 50,30\n"));
}

// The Plot dialog: a paper by the mouse and a custom size typed, the
// orientation, a scale by the keys, the offset, monochrome and
// lineweights, a window picked in the drawing (the dialog closes for the
// corners and opens again), Plot and the file; OK refused while the width
// is no number; then Escape on a second run.
TEST_F(DialogScenarios, PlotDialogSheetWindowAndFile)
{
    const Outcome outcome = runBothWays(scenario(
        {command("PLOT"), select(kPlotPaper, "A3"), click(kPlotPortrait), select(kPlotScale, "1:500", Hand::Keys),
         check(kPlotCentre, false), type(kPlotOffsetX, "10"), type(kPlotOffsetY, "20"), check(kPlotMonochrome, true),
         check(kPlotLineWeights, false), type(kPlotDefaultLineWeight, "0.35"), click(kPlotPickWindow),
         command("-10,-30"), command("110,60"), select(kPlotPaper, "Custom"), type(kPlotPaperWidth, "wide"),
         click(IDOK), type(kPlotPaperWidth, "500"), type(kPlotPaperHeight, "300"), click(IDOK),
         file("%RUN%/walls.pdf"), command("PLOT"), key(Qt::Key_Escape, "^C")}));
    EXPECT_THAT(outcome.transcript, HasSubstr("Dialog 7000: Plot\nDialog 7000 closed: 7007\n"));
    EXPECT_THAT(outcome.transcript, HasSubstr("Specify first corner: -10,-30\nSpecify opposite corner: 110,60\n"
                                              "Dialog 7000: Plot\nDialog action refused: CLICK 1 (item 1 is disabled)\n"
                                              "Dialog 7000 closed: OK\n"));
    EXPECT_THAT(outcome.transcript, HasSubstr("Plotted \"%RUN%/walls.pdf\": 300 x 500 mm portrait, scale 1:500, "
                                              "monochrome.\n"));
    EXPECT_THAT(outcome.transcript, HasSubstr("Dialog 7000 closed: Cancel\n"));
    EXPECT_THAT(outcome.profile, HasSubstr("Paper=300 x 500"));
    EXPECT_THAT(outcome.profile, HasSubstr("Area=Window"));
    EXPECT_THAT(outcome.profile, HasSubstr("Offset=\"10,20\""));
    EXPECT_THAT(outcome.profile, HasSubstr("DefaultLineweight=0.35"));
    EXPECT_TRUE(std::filesystem::exists(root() / "hand" / "walls.pdf"));
}
