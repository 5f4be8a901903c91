// The style manager's actions check the rules for the style they act on
// when they run, not only through the buttons' state: clicks that reach
// Delete, Rename, Modify and Set Current for a style the rules protect
// (as a button state that did not follow would let them) change nothing
// and open nothing.
#include "StyleDrawingFixture.h"

#include "res/DialogItems.h"
#include "styledlg/MlineStyleDialog.h"

#include <gmock/gmock.h>

using ::testing::HasSubstr;
using ::testing::Not;

namespace {

using namespace kdml::styleManagerItem;

// A manager whose opening selects a style and clicks the actions at once,
// whatever their buttons show.
class ClickingManager : public kdml::CKaldMlineStyleDialog {
public:
    ClickingManager(const wchar_t* select, std::vector<int> clicks) : select_(select), clicks_(std::move(clicks)) {}

protected:
    bool OnInitDialog() override
    {
        const bool shown = CKaldMlineStyleDialog::OnInitDialog();
        CListBox list;
        list.SubclassDlgItem(kStyleList, this);
        list.SetCurSel(list.FindStringExact(-1, select_));
        for (const int id : clicks_)
            OnCommand(id, BN_CLICKED);
        return shown;
    }

private:
    std::wstring select_;
    std::vector<int> clicks_;
};

class ManagerRulesTest : public StyleDrawingFixture {
protected:
    ManagerRulesTest() { useStyle(addStyle(L"WALL")); }

    std::wstring currentStyle()
    {
        kxresbuf rb;
        kxedGetVar(L"CMLSTYLE", &rb);
        const std::wstring name = rb.resval.rstring;
        kxutDelBuffer(rb.resval.rstring);
        return name;
    }

    // No question, no rename and no editor came up.
    void expectNothingOpened() const
    {
        for (const wchar_t* opened : {L"Message: ", L"Dialog 105", L"Dialog 109"})
            EXPECT_THAT(transcript, Not(HasSubstr(opened)));
    }
};

}  // namespace

TEST_F(ManagerRulesTest, ProtectedStylesRefuseTheActionsWhenClicked)
{
    // The current style, in use: no Delete, Rename, Modify or Set Current.
    // The lines would answer a question or a rename if one came.
    setCurrentStyle(L"WALL");
    script("CLICK 6\nTEXT 1060 GONE\nCLICK 1\nCLICK 1\n");
    ClickingManager inUse(L"WALL", {kDelete, kRename, kModify, kSetCurrent});
    inUse.DoModal();
    EXPECT_TRUE(hasStyle(L"WALL"));
    EXPECT_FALSE(hasStyle(L"GONE"));
    expectNothingOpened();

    // STANDARD, neither current nor in use, is never renamed, yet made
    // current (the clicks reach the manager); an empty selection takes no
    // action at all.
    script("TEXT 1060 OTHER\nCLICK 1\nCLICK 1\n");
    ClickingManager standard(L"STANDARD", {kRename, kSetCurrent});
    standard.DoModal();
    EXPECT_TRUE(hasStyle(L"STANDARD"));
    EXPECT_EQ(currentStyle(), L"STANDARD");
    expectNothingOpened();
    script("CLICK 1\n");
    ClickingManager none(L"NO SUCH STYLE", {kDelete, kRename, kModify, kSetCurrent});
    none.DoModal();
    EXPECT_EQ(currentStyle(), L"STANDARD");
    expectNothingOpened();
}
