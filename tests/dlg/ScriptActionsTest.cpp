// Script actions on every kind of dialog item and the notifications the
// dialog receives from them: a dialog run over a window built here with one
// item of each kind.
#include "DialogFixture.h"

#include "kaldo/dlg/DialogRun.h"
#include "kxuictrl.h"
#include "kxuidialog.h"

#include <gmock/gmock.h>

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTreeWidget>

using ::testing::ElementsAre;
using ::testing::HasSubstr;

namespace {

class RecordingDialog : public CDialog {
public:
    RecordingDialog() : CDialog(0) {}

    std::vector<std::string> events;
    std::wstring name = L"WALL";
    int fill = BST_CHECKED;

protected:
    void DoDataExchange(CDataExchange* dx) override
    {
        DDX_Text(dx, 1001, name);
        DDX_Check(dx, 1002, fill);
    }
    bool OnCommand(int id, int code) override
    {
        events.push_back("command " + std::to_string(id) + " " + std::to_string(code));
        return CDialog::OnCommand(id, code);
    }
    bool OnNotify(int id, int code, int index) override
    {
        events.push_back("notify " + std::to_string(id) + " " + std::to_string(code) + " " + std::to_string(index));
        return true;
    }
};

template <class Widget>
Widget* item(QDialog& window, int id)
{
    auto* widget = new Widget(&window);
    widget->setProperty("itemId", id);
    return widget;
}

class ScriptActionsTest : public DialogFixture {};

}  // namespace

TEST_F(ScriptActionsTest, EveryItemKindAndItsNotifications)
{
    QDialog window;
    window.setWindowTitle(QStringLiteral("Items"));
    item<QLineEdit>(window, 1001);
    item<QCheckBox>(window, 1002)->setText(QStringLiteral("Fill"));
    item<QListWidget>(window, 1003)->addItems({QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C")});
    auto* view = item<QTreeWidget>(window, 1004);
    view->setColumnCount(2);
    for (const char* row : {"0.5", "-0.5"})
        view->addTopLevelItem(new QTreeWidgetItem(QStringList{QString::fromLatin1(row), QStringLiteral("BYLAYER")}));
    item<QComboBox>(window, 1005)->addItems({QStringLiteral("alpha"), QStringLiteral("beta")});
    item<QPushButton>(window, 1006)->hide();
    item<QPushButton>(window, 1007)->setEnabled(false);
    item<QPushButton>(window, 1)->setText(QStringLiteral("OK"));

    RecordingDialog dialog;
    dialog.Attach(&window);
    script("TEXT 1001 BRICK WALL\nCHECK 1002 0\nCHECK 1002 0\nSELECT 1003 B\nDBLCLICK 1003\nSELECT 1004 #1\n"
           "HEADER 1004 1\nSELECT 1005 beta\nCLICK 1006\nCLICK 1007\nSELECT 1003 b\nHEADER 1004 2\nCHECK 1002 2\n"
           "SHOW\nCLICK 1\n");
    int result = 0;
    {
        kaldo::dlg::DialogRun run(dialog, window);
        result = run.run();
        EXPECT_FALSE(run.failure());
    }
    dialog.Detach();
    EXPECT_EQ(result, IDOK);
    EXPECT_EQ(dialog.name, L"BRICK WALL") << "OK takes the items' values";
    EXPECT_EQ(dialog.fill, BST_UNCHECKED);
    // The data exchange that filled the items sent nothing; one change and
    // one focus loss for the typed text; an unchanged check box no click.
    EXPECT_THAT(dialog.events, ElementsAre("command 1001 768", "command 1001 512", "command 1002 0", "command 1003 1",
                                           "command 1003 2", "notify 1004 -101 1", "notify 1004 -108 1",
                                           "command 1005 1", "command 1 0"));
    const std::string text = kxutToMultiByte(transcript);
    for (const char* refused : {"CLICK 1006 (item 1006 is hidden)", "CLICK 1007 (item 1007 is disabled)",
                                "SELECT 1003 b (no row \"b\")", "HEADER 1004 2 (no column 2)",
                                "CHECK 1002 2 (the state must be 0 or 1)"})
        EXPECT_THAT(text, HasSubstr(std::string("Dialog action refused: ") + refused + "\n"));
    EXPECT_THAT(text, HasSubstr("Dialog 0: Items\n"
                                "  1001 edit enabled \"BRICK WALL\"\n"
                                "  1002 check box enabled \"Fill\" unchecked\n"
                                "  1003 list enabled \"\" selected 1\n"
                                "    0: A\n    1: B\n    2: C\n"
                                "  1004 list view enabled \"\" selected 1\n"
                                "    0: 0.5 | BYLAYER\n    1: -0.5 | BYLAYER\n"
                                "  1005 combo box enabled \"beta\" selected 1\n"
                                "  1006 button enabled hidden \"\"\n"
                                "  1007 button disabled \"\"\n"));
    EXPECT_THAT(text, HasSubstr("Dialog 0 closed: OK\n"));
}

TEST_F(ScriptActionsTest, SettersChangeItemsWithoutNotifications)
{
    QDialog window;
    auto* listWidget = item<QListWidget>(window, 1003);
    auto* editWidget = item<QLineEdit>(window, 1001);
    RecordingDialog dialog;
    dialog.Attach(&window);
    CListBox list;
    CEdit edit;
    ASSERT_TRUE(list.SubclassDlgItem(1003, &dialog));
    ASSERT_TRUE(edit.SubclassDlgItem(1001, &dialog));
    EXPECT_FALSE(list.SubclassDlgItem(1003, &dialog)) << "bound already";
    int notified = 0;
    QObject::connect(listWidget, &QListWidget::currentRowChanged, [&] { ++notified; });
    QObject::connect(editWidget, &QLineEdit::textChanged, [&] { ++notified; });

    EXPECT_EQ(list.AddString(L"STANDARD"), 0);
    EXPECT_EQ(list.AddString(L"WALL"), 1);
    EXPECT_EQ(list.InsertString(1, L"PIPE"), 1);
    EXPECT_EQ(list.FindStringExact(-1, L"wall"), 2) << "without regard to case";
    EXPECT_EQ(list.FindStringExact(2, L"WALL"), -1) << "only after the start row";
    EXPECT_TRUE(list.SetItemData(2, 77));
    EXPECT_EQ(list.GetCurSel(), -1);
    EXPECT_EQ(list.SetCurSel(2), 2);
    EXPECT_EQ(list.GetCurSel(), 2);
    EXPECT_EQ(list.GetItemData(list.GetCurSel()), 77u);
    EXPECT_EQ(list.DeleteString(0), 2);
    EXPECT_EQ(list.GetText(1), L"WALL");
    EXPECT_EQ(list.GetItemData(1), 77u) << "data stays with its row";
    edit.SetWindowText(L"DUCT");
    edit.SetLimitText(4);
    edit.SetSel(0, -1);
    edit.ReplaceSel(L"PIPES");
    EXPECT_EQ(edit.GetWindowText(), L"PIPE") << "the limit holds for replaced text";
    list.ResetContent();
    EXPECT_EQ(list.GetCount(), 0);
    EXPECT_EQ(notified, 0);
    EXPECT_TRUE(dialog.events.empty());

    dialog.Detach();
    EXPECT_EQ(list.GetSafeHwnd(), nullptr) << "items go with their dialog's window";
    EXPECT_EQ(list.GetCount(), 0);
}
