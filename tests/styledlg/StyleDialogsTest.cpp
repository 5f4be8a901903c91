// The style manager's dialogs on their real templates, driven by scripts:
// the manager's buttons and preview, the name dialogs' rules, the new/modify
// dialog's element list, checks and live preview, and the load dialog.
#include "StyleDrawingFixture.h"

#include "styledlg/MlineStyleDialog.h"
#include "styledlg/MlineStyleLoadDialog.h"
#include "styledlg/MlineStyleNameDialogs.h"
#include "styledlg/MlineStyleNewModifyDialog.h"

#include "kxed.h"
#include "kxuiapp.h"

#include <gmock/gmock.h>

#include <QImage>

#include <fstream>
#include <numbers>
#include <regex>

using ::testing::ElementsAre;
using ::testing::HasSubstr;

namespace {

constexpr double kTol = 1e-10;
constexpr double kDegree = std::numbers::pi / 180.0;

class StyleDialogsTest : public StyleDrawingFixture {
protected:
    // The printed state of item id in each SHOW, in order: "enabled" or
    // "disabled", then its text.
    std::vector<std::string> shown(int id) const
    {
        std::vector<std::string> states;
        const std::string text = kxutToMultiByte(transcript);
        const std::regex line("\n  " + std::to_string(id) + " [a-z ]+ ((?:en|dis)abled) \"([^\"]*)\"");
        for (auto it = std::sregex_iterator(text.begin(), text.end(), line); it != std::sregex_iterator(); ++it)
            states.push_back((*it)[1].str() + " " + (*it)[2].str());
        return states;
    }
};

}  // namespace

TEST_F(StyleDialogsTest, ManagerButtonsFollowTheSelectedStyleAndTheListAfterDelete)
{
    const KxDbObjectId walls = addStyle(L"Walls", 0x2 | 0x10);
    addStyle(L"Roads");
    addStyle(L"Alpha");
    useStyle(walls);
    setCurrentStyle(L"ROADS");
    script("SHOW\nSELECT 1021 STANDARD\nSHOW\nSELECT 1021 Walls\nSHOW\nSELECT 1021 Alpha\nCLICK 1031\nCLICK 7\n"
           "CLICK 1031\nCLICK 6\nSHOW\nSELECT 1021 Walls\nGRAB " + (root() / "walls.png").string() + "\n^C\n");
    kdml::CKaldMlineStyleDialog dialog;
    EXPECT_EQ(dialog.DoModal(), IDCANCEL);

    // Current (selected on opening, case ignored), STANDARD, in use, and
    // the entry below a deleted first entry.
    EXPECT_THAT(shown(1021), ElementsAre("enabled ", "enabled ", "enabled ", "enabled "));
    EXPECT_THAT(transcript, HasSubstr(L"selected 1\n    0: Alpha\n    1: Roads\n"));
    EXPECT_THAT(shown(1026), ElementsAre("disabled Set Current", "enabled Set Current", "enabled Set Current",
                                         "disabled Set Current"));
    EXPECT_THAT(shown(1031), ElementsAre("disabled Delete", "enabled Delete", "disabled Delete", "disabled Delete"));
    EXPECT_THAT(shown(1030), ElementsAre("enabled Rename", "disabled Rename", "disabled Rename", "enabled Rename"));
    EXPECT_THAT(shown(1029), ElementsAre("enabled Modify...", "enabled Modify...", "disabled Modify...",
                                         "enabled Modify..."));
    EXPECT_THAT(transcript, HasSubstr(L"Message: Delete the multiline style \"Alpha\"?\nMessage closed: No\n"));
    EXPECT_THAT(transcript, HasSubstr(L"selected 0\n    0: Roads\n    1: STANDARD\n    2: Walls\n"));
    EXPECT_FALSE(hasStyle(L"Alpha"));

    // The preview of Walls drew its two element lines, the joint in two
    // halves and the start line cap in two halves.
    EXPECT_FALSE(QImage(QString::fromStdString((root() / "walls.png").string())).isNull());
    EXPECT_EQ(dialog.preview().drawer().drawables().size(), 6);
    for (const KxGiDrawable* drawable : dialog.preview().drawer().drawables()) {
        EXPECT_EQ(drawable->lineWeight(), KxDb::kLnWtByLwDefault);
        EXPECT_NEAR(drawable->linetypeScale(), 1.0, kTol);
    }
    EXPECT_EQ(dialog.previewRecord().elements.size(), 2u);
}

// Names are cut to 31 characters as NameEditCutsAfterTheLastWholeCharacter
// shows; a cut name may be taken. Control characters (C0 and C1) are
// refused, by the rule both name dialogs share (typed by hand into both:
// DialogScenarios).
TEST_F(StyleDialogsTest, NameDialogsRefuseBrokenNamesAndTakeCutOnes)
{
    addStyle(L"Roads");
    const std::string tooLong(40, 'x');
    script("SHOW\nTEXT 1035 " + tooLong + "\nSHOW\nTEXT 1035 ROADS\nSHOW\nTEXT 1035 a\u00B7b\nSHOW\n"
           "TEXT 1035 a\uFF0Cb\nSHOW\nTEXT 1035 a\u3002b\nSHOW\nTEXT 1035 a b\nSHOW\nTEXT 1035 a.b\nSHOW\n"
           "TEXT 1035 Wall\x1bX\nSHOW\nTEXT 1035 Wall\u009BX\nSHOW\nTEXT 1035 New-1_$\nSHOW\nCLICK 1\n");
    kdml::CKaldMlineStyleNewDialog created;
    created.setStartStyle(L"roa");
    created.setDictionary(db.mlineStyleDictionaryId());
    ASSERT_EQ(created.DoModal(), IDOK);
    EXPECT_EQ(created.newName(), L"New-1_$");
    EXPECT_EQ(created.startStyle(), L"Roads") << "the first entry beginning with the start name";
    const std::vector<std::string> ok = shown(1);
    EXPECT_THAT(ok, ElementsAre("disabled OK", "enabled OK", "disabled OK", "disabled OK", "disabled OK",
                                "disabled OK", "disabled OK", "disabled OK", "disabled OK", "disabled OK",
                                "enabled OK"));

    script("SHOW\nTEXT 1060 STANDARD\nCLICK 1\nTEXT 1060 Streets\nCLICK 1\n");
    kdml::CKaldMlineStyleRenameDialog renamed;
    renamed.setCurrentName(L"Roads");
    renamed.setDictionary(db.mlineStyleDictionaryId());
    ASSERT_EQ(renamed.DoModal(), IDOK);
    EXPECT_EQ(renamed.newName(), L"Streets");
    EXPECT_THAT(shown(1059), ElementsAre("enabled Roads"));
    EXPECT_THAT(transcript, HasSubstr(L"Dialog action refused: CLICK 1"));
    EXPECT_EQ(AfxGetApp()->GetProfileInt(L"Settings", L"MlstyleRenamePosRight", -10000) != -10000, true);
}

TEST_F(StyleDialogsTest, NewModifyDialogEditsTheWorkingCopyAndThePreviewFollows)
{
    addStyle(L"Roads");
    kdml::CKaldMlineStyleDialog manager;
    script("SHOW\nCLICK 1051\nTEXT 1050 0.25\nSELECT 1049 Red\nSELECT 1055 Continuous\nTEXT 1044 5\n"
           "TEXT 1044 45\nCLICK 1054\nCLICK 1038\nTEXT 1050 1..2\nSHOW\nCLICK 2\n");
    kdml::CKaldMlineStyleNewModifyDialog modify(&manager);
    modify.setModifyMode(L"Roads");
    modify.setDictionary(db.mlineStyleDictionaryId());
    ASSERT_EQ(modify.DoModal(), IDCANCEL);
    EXPECT_THAT(transcript, HasSubstr(L"Dialog 105: Modify Multiline Style: Roads\n"));
    EXPECT_THAT(transcript, HasSubstr(L"    0: -0.5 | ByLayer | ByLayer\n    1: 0.5 | ByLayer | ByLayer\n"));
    // The added row sorted in at its offset and stayed selected; a text
    // with two full stops left it as it was.
    EXPECT_THAT(transcript, HasSubstr(L"selected 1\n    0: -0.5 | ByLayer | ByLayer\n    1: 0.25 | Continuous | red\n"
                                      L"    2: 0.5 | ByLayer | ByLayer\n"));
    EXPECT_THAT(shown(1048), ElementsAre("disabled ByLayer", "enabled ByLayer"));
    EXPECT_THAT(shown(1044), ElementsAre("enabled 90.00", "enabled 45"));

    const kdml::StylePreviewData& record = manager.previewRecord();
    ASSERT_EQ(record.elements.size(), 3u);
    EXPECT_NEAR(record.elements[1].offset, 0.25, kTol);
    EXPECT_EQ(record.elements[1].color.colorIndex(), 1);
    EXPECT_EQ(record.elements[1].linetype, db.continuousLinetype());
    EXPECT_EQ(record.flags, 0x1u | 0x10u);
    EXPECT_NEAR(record.startAngle, 45 * kDegree, kTol);
    EXPECT_EQ(offsetsOf(L"Roads").size(), 2u) << "Cancel leaves the style as it was";

    // OK refuses an end angle outside 10 to 170; deleting down to one row
    // disables Delete.
    script("TEXT 1045 171\nCLICK 1\nTEXT 1045 170\nSELECT 1046 #0\nCLICK 1052\nSELECT 1046 #0\nSHOW\nCLICK 1\n");
    kdml::CKaldMlineStyleNewModifyDialog confirmed(&manager);
    confirmed.setModifyMode(L"Roads");
    confirmed.setDictionary(db.mlineStyleDictionaryId());
    ASSERT_EQ(confirmed.DoModal(), IDOK);
    EXPECT_THAT(shown(1052), ElementsAre("disabled Delete"));
    ASSERT_EQ(offsetsOf(L"Roads").size(), 1u);
    EXPECT_NEAR(openStyle(L"Roads")->endAngle(), 170 * kDegree, kTol);

    // New mode: the style exists while the dialog is open and goes on
    // Cancel.
    script("CLICK 2\n");
    kdml::CKaldMlineStyleNewModifyDialog created(&manager);
    created.setNewMode(L"Fresh", L"Roads");
    created.setDictionary(db.mlineStyleDictionaryId());
    EXPECT_EQ(created.DoModal(), IDCANCEL);
    EXPECT_FALSE(hasStyle(L"Fresh"));

    // A style at the element limit refuses one more.
    std::vector<StyleElement> elements;
    for (int i = 0; i < kdml::CKaldMlineStyleNewModifyDialog::kMaxElements; ++i)
        elements.push_back({0.001 * i});
    addStyle(L"Full", 0, elements);
    script("CLICK 1051\nCLICK 1\nCLICK 2\n");
    kdml::CKaldMlineStyleNewModifyDialog full(&manager);
    full.setModifyMode(L"Full");
    full.setDictionary(db.mlineStyleDictionaryId());
    full.DoModal();
    EXPECT_THAT(transcript, HasSubstr(L"Message: A multiline style cannot hold more elements."));
    EXPECT_EQ(manager.previewRecord().elements.size(), 1u) << "nothing was pushed";
}

TEST_F(StyleDialogsTest, LoadDialogListsAFileAndRefusesAStyleInUse)
{
    useStyle(addStyle(L"Walls"));
    const std::filesystem::path file = root() / "styles.mln";
    std::ofstream(file) << "MLSTYLE\n2\n WALLS\n70\n 0\n3\n from file\n71\n 1\n49\n 0\n0\n"
                           "MLSTYLE\n2\n EXTRA\n70\n 0\n3\n extra\n71\n 1\n49\n 0\n0\n";

    AfxGetApp()->WriteProfileString(L"Settings", L"MlstyleFile", (root() / "gone.mln").wstring().c_str());
    script("SHOW\nCLICK 1056\n" + file.string() + "\nSHOW\nSELECT 1058 WALLS\nCLICK 1\nSHOW\nSELECT 1058 EXTRA\n"
           "CLICK 1\n");
    kdml::CKaldMlineStyleLoadDialog dialog;
    dialog.setDictionary(db.mlineStyleDictionaryId());
    ASSERT_EQ(dialog.DoModal(), IDOK);
    EXPECT_THAT(shown(1057), ElementsAre("enabled " + (root() / "gone.mln").string(), "enabled " + file.string(),
                                         "enabled " + file.string()));
    EXPECT_THAT(shown(1), ElementsAre("disabled OK", "disabled OK", "enabled OK"));
    EXPECT_THAT(shown(1064)[2], HasSubstr("uses a style of this name"));
    EXPECT_EQ(dialog.styleName(), L"EXTRA");
    EXPECT_TRUE(hasStyle(L"EXTRA"));
    EXPECT_EQ(AfxGetApp()->GetProfileString(L"Settings", L"MlstyleFile", L""), file.wstring());
}
