// Every kind of control stand-in, worked by a person's hand (QTest's mouse,
// keys and wheel on the real widgets) and by the matching script action:
// both must reach the dialog as the same notifications, in the same order,
// with the control's state already updated when the handler reads it.
#include "DialogFixture.h"

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
#include <QStyleOptionButton>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>
#include <QWheelEvent>

#include <functional>

using ::testing::ElementsAreArray;

namespace {

enum Item : int { kEdit = 1001, kCheck = 1002, kList = 1003, kView = 1004, kCombo = 1005, kButton = 1006, kImage = 1008 };

// Records each notification with what the control holds when it comes.
class RecordingDialog : public CDialog {
public:
    explicit RecordingDialog(int focusItem) : CDialog(0), focusItem_(focusItem) {}

    std::vector<std::string> events;

protected:
    void DoDataExchange(CDataExchange* dx) override
    {
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

QPoint rowCentre(QAbstractItemView& view, int row)
{
    return view.visualRect(view.model()->index(row, 0)).center();
}

void wheel(QWidget& widget, int notches)
{
    const QPointF at = widget.rect().center();
    for (int i = 0; i < notches; ++i) {
        QWheelEvent event(at, widget.mapToGlobal(at), QPoint(), QPoint(0, -120), Qt::NoButton, Qt::NoModifier,
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(&widget, &event);
    }
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

class HandNotificationsTest : public DialogFixture {
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

TEST_F(HandNotificationsTest, EveryGestureNotifiesAsItsScriptActionDoes)
{
    const std::string cancel = "command 2 0";
    const Gesture gestures[] = {
        {"list box: a click on a row", kList,
         [](QDialog& w) { QTest::mouseClick(find<QListWidget>(w, kList).viewport(), Qt::LeftButton, {},
                                            rowCentre(find<QListWidget>(w, kList), 2)); },
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
             QWidget* rows = find<QListWidget>(w, kList).viewport();
             const QPoint at = rowCentre(find<QListWidget>(w, kList), 1);
             QTest::mousePress(rows, Qt::LeftButton, {}, at);
             QTest::mouseRelease(rows, Qt::LeftButton, {}, at);
             QTest::mouseDClick(rows, Qt::LeftButton, {}, at);
             QTest::mouseRelease(rows, Qt::LeftButton, {}, at);
         },
         "SELECT 1003 B\nDBLCLICK 1003\n", {"command 1003 1 selected 1", "command 1003 2 selected 1"}},
        {"list box: Ctrl and a click on its selected row, the wheel, a double click on it", kList,
         [](QDialog& w) {
             auto& list = find<QListWidget>(w, kList);
             QTest::mouseClick(list.viewport(), Qt::LeftButton, Qt::ControlModifier, rowCentre(list, 0));
             wheel(list, 2);
             QTest::mousePress(list.viewport(), Qt::LeftButton, {}, rowCentre(list, 0));
             QTest::mouseRelease(list.viewport(), Qt::LeftButton, {}, rowCentre(list, 0));
             QTest::mouseDClick(list.viewport(), Qt::LeftButton, {}, rowCentre(list, 0));
             QTest::mouseRelease(list.viewport(), Qt::LeftButton, {}, rowCentre(list, 0));
         },
         "DBLCLICK 1003\n", {"command 1003 2 selected 0"}},
        {"list view: a click on a row", kList,
         [](QDialog& w) { QTest::mouseClick(find<QTreeWidget>(w, kView).viewport(), Qt::LeftButton, {},
                                            rowCentre(find<QTreeWidget>(w, kView), 2)); },
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
             const QPoint at = rowCentre(view, 1);
             QTest::mousePress(view.viewport(), Qt::LeftButton, {}, at);
             QTest::mouseRelease(view.viewport(), Qt::LeftButton, {}, at);
             QTest::mouseDClick(view.viewport(), Qt::LeftButton, {}, at);
             QTest::mouseRelease(view.viewport(), Qt::LeftButton, {}, at);
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
             QTest::mouseClick(combo.view()->viewport(), Qt::LeftButton, {}, rowCentre(*combo.view(), 2));
         },
         "SELECT 1005 gamma\n", {"command 1005 1 selected 2"}},
        {"combo box: arrow down, End, the wheel up", kCombo,
         [](QDialog& w) {
             auto& combo = find<QComboBox>(w, kCombo);
             QTest::keyClick(&combo, Qt::Key_Down);
             QTest::keyClick(&combo, Qt::Key_End);
             const QPointF at = combo.rect().center();
             QWheelEvent up(at, combo.mapToGlobal(at), QPoint(), QPoint(0, 120), Qt::NoButton, Qt::NoModifier,
                            Qt::NoScrollPhase, false);
             QApplication::sendEvent(&combo, &up);
         },
         "SELECT 1005 beta\nSELECT 1005 gamma\nSELECT 1005 beta\n",
         {"command 1005 1 selected 1", "command 1005 1 selected 2", "command 1005 1 selected 1"}},
        {"edit: a click into it, a key, Tab", kList,
         [](QDialog& w) {
             auto& edit = find<QLineEdit>(w, kEdit);
             QTest::mouseClick(&edit, Qt::LeftButton);
             QTest::keyClicks(&edit, QStringLiteral("7"));
             QTest::keyClick(&edit, Qt::Key_Tab);
         },
         "TEXT 1001 7\n", {"command 1001 768 text 7", "command 1001 512 text 7"}},
        {"check box: a click on its box, then Space", kList,
         [](QDialog& w) {
             auto& box = find<QCheckBox>(w, kCheck);
             QStyleOptionButton option;
             option.initFrom(&box);
             QTest::mouseClick(&box, Qt::LeftButton, {},
                               box.style()->subElementRect(QStyle::SE_CheckBoxClickRect, &option, &box).center());
             QTest::keyClick(&box, Qt::Key_Space);
         },
         "CHECK 1002 1\nCHECK 1002 0\n", {"command 1002 0 check 1", "command 1002 0 check 0"}},
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
TEST_F(HandNotificationsTest, DeletedRowsLeaveNoSelectionAndHeadersKeepTheirArrow)
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
