// The notifications a dialog receives from every kind of item: by script
// actions, and by a person's hand (QTest's mouse, keys and wheel on the real
// widgets), which must give the same notifications in the same order, with
// the item's state already updated when the handler reads it; what the
// refused actions and SHOW print; setters that notify nothing.
#include "DialogFixture.h"

#include "scenarios/Gestures.h"

#include "kaldo/dlg/DialogItems.h"
#include "kaldo/dlg/DialogRun.h"
#include "kxuibutton.h"
#include "kxuictrl.h"
#include "kxuidialog.h"

#include <gmock/gmock.h>

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QHeaderView>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>

#include <functional>

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;

namespace {

enum Item : int { kEdit = 1001, kCheck = 1002, kList = 1003, kView = 1004, kCombo = 1005, kButton = 1006, kImage = 1008 };

// Records each notification with what the control holds when it comes.
class RecordingDialog : public CDialog {
public:
    explicit RecordingDialog(int focusItem = 0) : CDialog(0), focusItem_(focusItem) {}

    std::vector<std::string> events;
    std::wstring name = L"WALL";
    int fill = BST_CHECKED;

protected:
    void DoDataExchange(CDataExchange* dx) override
    {
        DDX_Text(dx, kEdit, name);
        DDX_Check(dx, kCheck, fill);
        DDX_Control(dx, kEdit, edit_);
        DDX_Control(dx, kCheck, check_);
        DDX_Control(dx, kList, list_);
        DDX_Control(dx, kView, view_);
        DDX_Control(dx, kCombo, combo_);
        DDX_Control(dx, kImage, image_);
    }
    bool OnInitDialog() override
    {
        CDialog::OnInitDialog();
        list_.SetCurSel(0);
        view_.SelectRow(0);
        combo_.SetCurSel(0);
        if (CWnd* focus = GetDlgItem(focusItem_))
            focus->SetFocus();
        return true;
    }
    bool OnCommand(int id, int code) override
    {
        std::string state;
        if (id == kEdit)
            state = " text " + kxutToMultiByte(edit_.GetWindowText());
        else if (id == kCheck)
            state = " check " + std::to_string(check_.GetCheck());
        else if (id == kList)
            state = " selected " + std::to_string(list_.GetCurSel());
        else if (id == kCombo)
            state = " selected " + std::to_string(combo_.GetCurSel());
        events.push_back("command " + std::to_string(id) + " " + std::to_string(code) + state);
        return CDialog::OnCommand(id, code);
    }
    bool OnNotify(int id, int code, int index) override
    {
        events.push_back("notify " + std::to_string(id) + " " + std::to_string(code) + " " + std::to_string(index)
                         + " selected " + std::to_string(view_.GetSelectedRow()));
        return true;
    }

private:
    int focusItem_;
    CEdit edit_;
    CButton check_;
    CListBox list_;
    CListCtrl view_;
    CComboBox combo_;
    CBitmapButton image_;
};

template <class Widget>
Widget* item(QDialog& window, int id)
{
    auto* widget = new Widget(&window);
    widget->setProperty("itemId", id);
    return widget;
}

// A window with one item of each kind, laid out so that none covers
// another.
std::unique_ptr<QDialog> itemsWindow()
{
    auto window = std::make_unique<QDialog>();
    window->resize(400, 400);
    item<QLineEdit>(*window, kEdit)->setGeometry(10, 10, 120, 24);
    item<QCheckBox>(*window, kCheck)->setGeometry(10, 40, 120, 24);
    item<QListWidget>(*window, kList)->addItems({QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C")});
    window->findChild<QListWidget*>()->setGeometry(10, 70, 120, 100);
    auto* view = item<QTreeWidget>(*window, kView);
    view->setGeometry(140, 10, 250, 150);
    view->setColumnCount(2);
    view->setRootIsDecorated(false);
    for (const char* row : {"0.5", "0", "-0.5"})
        view->addTopLevelItem(new QTreeWidgetItem(QStringList{QString::fromLatin1(row), QStringLiteral("BYLAYER")}));
    auto* combo = item<QComboBox>(*window, kCombo);
    combo->addItems({QStringLiteral("alpha"), QStringLiteral("beta"), QStringLiteral("gamma")});
    combo->setGeometry(140, 170, 120, 24);
    item<QPushButton>(*window, kButton)->setGeometry(10, 200, 80, 24);
    item<QPushButton>(*window, kImage)->setGeometry(100, 200, 80, 24);
    item<QPushButton>(*window, IDOK)->setGeometry(300, 360, 80, 24);
    return window;
}

template <class Widget>
Widget& find(QDialog& window, int id)
{
    return *qobject_cast<Widget*>(kaldo::dlg::findItem(&window, id));
}

struct Gesture {
    const char* name;
    int focus;  // the item that has the focus before it
    std::function<void(QDialog&)> byHand;
    std::string script;  // its lines ("\n" alone: Enter)
    std::vector<std::string> expected;  // before Escape's Cancel
};

class ScriptActionsTest : public DialogFixture {
protected:
    // The notifications of one run; the dialog ends by Escape.
    std::vector<std::string> run(const Gesture& gesture, bool byHand)
    {
        const std::unique_ptr<QDialog> window = itemsWindow();
        RecordingDialog dialog(gesture.focus);
        dialog.Attach(window.get());
        if (byHand)
            editor.setInputSource(nullptr);
        else
            script(gesture.script + "^C\n");
        if (byHand) {
            QTimer::singleShot(0, window.get(), [&] {
                // A person acts on the window once it is active.
                ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
                gesture.byHand(*window);
                if (window->isVisible())
                    QTest::keyClick(window->focusWidget() ? window->focusWidget() : window.get(), Qt::Key_Escape);
            });
        }
        {
            kaldo::dlg::DialogRun modal(dialog, *window);
            modal.run();
            EXPECT_FALSE(modal.failure());
        }
        dialog.Detach();
        return dialog.events;
    }
};

}  // namespace

TEST_F(ScriptActionsTest, EveryItemKindAndItsNotifications)
{
    const std::unique_ptr<QDialog> items = itemsWindow();
    QDialog& window = *items;
    window.setWindowTitle(QStringLiteral("Items"));
    find<QCheckBox>(window, kCheck).setText(QStringLiteral("Fill"));
    find<QPushButton>(window, kButton).hide();
    item<QPushButton>(window, 1007)->setEnabled(false);

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
    EXPECT_THAT(dialog.events,
                ElementsAre("command 1001 768 text BRICK WALL", "command 1001 512 text BRICK WALL",
                            "command 1002 0 check 0", "command 1003 1 selected 1", "command 1003 2 selected 1",
                            "notify 1004 -101 1 selected 1", "notify 1004 -108 1 selected 1",
                            "command 1005 1 selected 1", "command 1 0"));
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
                                "    0: 0.5 | BYLAYER\n    1: 0 | BYLAYER\n    2: -0.5 | BYLAYER\n"
                                "  1005 combo box enabled \"beta\" selected 1\n"
                                "  1006 button enabled hidden \"\"\n  1008 button enabled \"\"\n"
                                "  1 button enabled \"\"\n  1007 button disabled \"\"\n"));
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

TEST_F(ScriptActionsTest, EveryGestureNotifiesAsItsScriptActionDoes)
{
    const std::string cancel = "command 2 0";
    const Gesture gestures[] = {
        {"list box: a click on a row", kList,
         [](QDialog& w) { QTest::mouseClick(find<QListWidget>(w, kList).viewport(), Qt::LeftButton, {},
                                            gesture::rowCentre(find<QListWidget>(w, kList), 2)); },
         "SELECT 1003 C\n", {"command 1003 1 selected 2"}},
        {"list box: arrow down, End, Home", kList,
         [](QDialog& w) {
             for (const Qt::Key key : {Qt::Key_Down, Qt::Key_End, Qt::Key_Home})
                 QTest::keyClick(&find<QListWidget>(w, kList), key);
         },
         "SELECT 1003 B\nSELECT 1003 C\nSELECT 1003 A\n",
         {"command 1003 1 selected 1", "command 1003 1 selected 2", "command 1003 1 selected 0"}},
        {"list box: a double click", kList,
         [](QDialog& w) {
             auto& list = find<QListWidget>(w, kList);
             gesture::doubleClick(*list.viewport(), gesture::rowCentre(list, 1));
         },
         "SELECT 1003 B\nDBLCLICK 1003\n", {"command 1003 1 selected 1", "command 1003 2 selected 1"}},
        {"list box: Ctrl and a click on its selected row, the wheel, a double click on it", kList,
         [](QDialog& w) {
             auto& list = find<QListWidget>(w, kList);
             QTest::mouseClick(list.viewport(), Qt::LeftButton, Qt::ControlModifier, gesture::rowCentre(list, 0));
             gesture::turnWheel(list, 2);
             gesture::doubleClick(*list.viewport(), gesture::rowCentre(list, 0));
         },
         "DBLCLICK 1003\n", {"command 1003 2 selected 0"}},
        {"list view: a click on a row", kList,
         [](QDialog& w) { QTest::mouseClick(find<QTreeWidget>(w, kView).viewport(), Qt::LeftButton, {},
                                            gesture::rowCentre(find<QTreeWidget>(w, kView), 2)); },
         "SELECT 1004 -0.5\n", {"notify 1004 -101 2 selected 2"}},
        {"list view: arrow down and End", kView,
         [](QDialog& w) {
             QTest::keyClick(&find<QTreeWidget>(w, kView), Qt::Key_Down);
             QTest::keyClick(&find<QTreeWidget>(w, kView), Qt::Key_End);
         },
         "SELECT 1004 #1\nSELECT 1004 #2\n", {"notify 1004 -101 1 selected 1", "notify 1004 -101 2 selected 2"}},
        {"list view: a double click and a click on a heading", kView,
         [](QDialog& w) {
             auto& view = find<QTreeWidget>(w, kView);
             gesture::doubleClick(*view.viewport(), gesture::rowCentre(view, 1));
             QHeaderView* header = view.header();
             QTest::mouseClick(header->viewport(), Qt::LeftButton, {},
                               QPoint(header->sectionViewportPosition(1) + 5, header->height() / 2));
         },
         "SELECT 1004 0\nDBLCLICK 1004\nHEADER 1004 1\n",
         {"notify 1004 -101 1 selected 1", "notify 1004 -3 1 selected 1", "notify 1004 -108 1 selected 1"}},
        {"combo box: its list opened and a row clicked", kCombo,
         [](QDialog& w) {
             auto& combo = find<QComboBox>(w, kCombo);
             QTest::mouseClick(&combo, Qt::LeftButton);
             QTest::qWait(QApplication::doubleClickInterval() + 100);
             QTest::mouseClick(combo.view()->viewport(), Qt::LeftButton, {}, gesture::rowCentre(*combo.view(), 2));
         },
         "SELECT 1005 gamma\n", {"command 1005 1 selected 2"}},
        {"combo box: arrow down, End, the wheel up", kCombo,
         [](QDialog& w) {
             auto& combo = find<QComboBox>(w, kCombo);
             QTest::keyClick(&combo, Qt::Key_Down);
             QTest::keyClick(&combo, Qt::Key_End);
             gesture::turnWheel(combo, -1);
         },
         "SELECT 1005 beta\nSELECT 1005 gamma\nSELECT 1005 beta\n",
         {"command 1005 1 selected 1", "command 1005 1 selected 2", "command 1005 1 selected 1"}},
        {"edit: a click into it, Ctrl+A, a key, Tab", kList,
         [](QDialog& w) {
             auto& edit = find<QLineEdit>(w, kEdit);
             QTest::mouseClick(&edit, Qt::LeftButton);
             QTest::keyClick(&edit, Qt::Key_A, Qt::ControlModifier);
             QTest::keyClicks(&edit, QStringLiteral("7"));
             QTest::keyClick(&edit, Qt::Key_Tab);
         },
         "TEXT 1001 7\n", {"command 1001 768 text 7", "command 1001 512 text 7"}},
        {"check box: a click on its box, then Space", kList,
         [](QDialog& w) {
             auto& box = find<QCheckBox>(w, kCheck);
             QTest::mouseClick(&box, Qt::LeftButton, {}, gesture::clickPoint(box));
             QTest::keyClick(&box, Qt::Key_Space);
         },
         "CHECK 1002 0\nCHECK 1002 1\n", {"command 1002 0 check 0", "command 1002 0 check 1"}},
        {"push button: a click; Enter with the focus on it", kList,
         [](QDialog& w) {
             auto& button = find<QPushButton>(w, kButton);
             QTest::mouseClick(&button, Qt::LeftButton);
             QTest::keyClick(&button, Qt::Key_Return);
         },
         "CLICK 1006\n\n", {"command 1006 0", "command 1006 0"}},
        {"image button: Enter with the focus on it is OK", kImage,
         [](QDialog& w) { QTest::keyClick(&find<QPushButton>(w, kImage), Qt::Key_Return); }, "\n",
         {"command 1 0"}},
        {"image button: Space and a click press it", kImage,
         [](QDialog& w) {
             QTest::keyClick(&find<QPushButton>(w, kImage), Qt::Key_Space);
             QTest::mouseClick(&find<QPushButton>(w, kImage), Qt::LeftButton);
         },
         "CLICK 1008\nCLICK 1008\n", {"command 1008 0", "command 1008 0"}},
        {"Enter in an edit is OK", kEdit, [](QDialog& w) { QTest::keyClick(&find<QLineEdit>(w, kEdit), Qt::Key_Return); },
         "\n", {"command 1 0"}},
    };
    for (const Gesture& gesture : gestures) {
        std::vector<std::string> expected = gesture.expected;
        // A dialog that Enter closed hears no Escape.
        if (expected.empty() || expected.back() != "command 1 0")
            expected.push_back(cancel);
        EXPECT_THAT(run(gesture, true), ElementsAreArray(expected)) << gesture.name << ", by hand";
        EXPECT_THAT(run(gesture, false), ElementsAreArray(expected)) << gesture.name << ", by script";
    }
}

// A deleted row leaves no other row selected, in list views and list
// boxes alike; a header keeps the sort arrow its owner set.
TEST_F(ScriptActionsTest, DeletedRowsLeaveNoSelectionAndHeadersKeepTheirArrow)
{
    const std::unique_ptr<QDialog> window = itemsWindow();
    RecordingDialog dialog(kList);
    dialog.Attach(window.get());
    CListCtrl view;
    CListBox list;
    CHeaderCtrl header;
    ASSERT_TRUE(view.SubclassDlgItem(kView, &dialog));
    ASSERT_TRUE(list.SubclassDlgItem(kList, &dialog));
    ASSERT_TRUE(view.SubclassHeader(header));
    view.SelectRow(1);
    ASSERT_TRUE(view.DeleteItem(1));
    EXPECT_EQ(view.GetSelectedRow(), -1);
    view.SelectRow(1);
    ASSERT_TRUE(view.DeleteItem(0));
    EXPECT_EQ(view.GetSelectedRow(), 0) << "another row's deletion keeps the selection";
    list.SetCurSel(2);
    EXPECT_EQ(list.DeleteString(2), 2);
    EXPECT_EQ(list.GetCurSel(), -1);

    header.SetSortIndicator(0, true);
    script("HEADER 1004 1\n");
    bool arrowKept = false;
    QTimer::singleShot(0, window.get(), [&] {
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
        QHeaderView* shown = window->findChild<QTreeWidget*>()->header();
        QTest::mouseClick(shown->viewport(), Qt::LeftButton, {},
                          QPoint(shown->sectionViewportPosition(1) + 5, shown->height() / 2));
        arrowKept = shown->sortIndicatorSection() == 0 && shown->sortIndicatorOrder() == Qt::AscendingOrder;
    });
    {
        kaldo::dlg::DialogRun modal(dialog, *window);
        modal.run();
    }
    dialog.Detach();
    EXPECT_TRUE(arrowKept);
    EXPECT_THAT(dialog.events, ElementsAreArray({"notify 1004 -108 1 selected 0", "notify 1004 -108 1 selected 0",
                                                 "command 2 0"}));
}
