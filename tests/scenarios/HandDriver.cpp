#include "HandDriver.h"

#include "Gestures.h"

#include "kaldo/dlg/DialogItems.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QFileDialog>
#include <QHeaderView>
#include <QLineEdit>
#include <QListWidget>
#include <QStyleOptionComboBox>
#include <QTest>
#include <QTreeWidget>
#include <QWindow>

namespace scenario {

namespace {

constexpr int kTickMs = 5;
// A dialog still open (or still not active) this long after the last
// gesture was left open.
constexpr int kLeftOpenMs = 10000;

QWidget* itemOf(QWidget& dialog, int id)
{
    return kaldo::dlg::findItem(&dialog, id);
}

// Where a person clicks to open a combo box's list: its arrow (an
// editable combo box takes a click elsewhere as one into its text).
QPoint arrowOf(QComboBox& combo)
{
    QStyleOptionComboBox option;
    option.initFrom(&combo);
    option.editable = combo.isEditable();
    option.subControls = QStyle::SC_All;
    return combo.style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxArrow, &combo).center();
}

// The row of a list, list view or combo box whose first text is wanted,
// or "#n".
int rowOf(const QAbstractItemModel& model, const QString& wanted)
{
    if (wanted.startsWith(QLatin1Char('#')))
        return wanted.mid(1).toInt();
    for (int row = 0; row < model.rowCount(); ++row) {
        if (model.index(row, 0).data().toString() == wanted)
            return row;
    }
    return -1;
}

void pressRepeatedly(QWidget& widget, int from, int to)
{
    for (int at = from; at != to; at += to > from ? 1 : -1)
        QTest::keyClick(&widget, to > from ? Qt::Key_Down : Qt::Key_Up);
}

void clickRow(QAbstractItemView& view, int row)
{
    if (row < 0)
        return;
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, gesture::rowCentre(view, row));
}

void selectInView(QAbstractItemView& view, int row, Hand hand)
{
    if (row < 0)
        return;
    if (hand == Hand::Mouse) {
        clickRow(view, row);
        return;
    }
    // The list reached by Tab, then the arrows from the selected row (Home
    // first when none is).
    view.setFocus(Qt::TabFocusReason);
    int from = kaldo::dlg::selectedRow(&view);
    if (from < 0) {
        QTest::keyClick(&view, Qt::Key_Home);
        from = 0;
    }
    pressRepeatedly(view, from, row);
}

QLineEdit* lineEditOf(QWidget* item)
{
    if (auto* combo = qobject_cast<QComboBox*>(item))
        return combo->lineEdit();
    return qobject_cast<QLineEdit*>(item);
}

// A click into the edit, all of its text selected and typed over, then the
// key that leaves it.
void typeOver(QLineEdit& edit, const QString& text, Qt::Key leaving)
{
    QTest::mouseClick(&edit, Qt::LeftButton);
    QTest::keyClick(&edit, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(&edit, text);
    QTest::keyClick(&edit, leaving);
}

// A person acts on a dialog once it shows and is active.
bool shown(QWidget& dialog)
{
    return dialog.isVisible() && dialog.windowHandle() && dialog.windowHandle()->isExposed()
           && dialog.isActiveWindow();
}

}  // namespace

HandDriver::HandDriver(const std::vector<Step>& steps)
{
    for (const Step& step : steps) {
        if (step.kind != Step::Kind::Command)
            add(step);
    }
    timer_.setSingleShot(true);
    connect(&timer_, &QTimer::timeout, this, [this] { tick(); });
}

void HandDriver::add(const Step& step)
{
    const int id = step.item;
    switch (step.kind) {
    case Step::Kind::Command: break;
    case Step::Kind::Click:
        gestures_.push_back([id](QWidget& dialog) {
            if (QWidget* item = itemOf(dialog, id))
                QTest::mouseClick(item, Qt::LeftButton, {}, gesture::clickPoint(*item));
            return 0;
        });
        break;
    case Step::Kind::Check:
        gestures_.push_back([id, on = step.number != 0](QWidget& dialog) {
            auto* box = qobject_cast<QAbstractButton*>(itemOf(dialog, id));
            if (box && box->isChecked() != on)
                QTest::mouseClick(box, Qt::LeftButton, {}, gesture::clickPoint(*box));
            return 0;
        });
        break;
    case Step::Kind::Type:
        gestures_.push_back([id, text = step.text](QWidget& dialog) {
            if (QLineEdit* edit = lineEditOf(itemOf(dialog, id)))
                typeOver(*edit, text, Qt::Key_Tab);
            return 0;
        });
        break;
    case Step::Kind::Select:
        if (step.hand == Hand::Mouse) {
            // A combo box opens its list on the click; the person then
            // looks for the row before clicking it.
            gestures_.push_back([id](QWidget& dialog) {
                auto* combo = qobject_cast<QComboBox*>(itemOf(dialog, id));
                if (!combo)
                    return 0;
                QTest::mouseClick(combo, Qt::LeftButton, {}, arrowOf(*combo));
                return QApplication::doubleClickInterval() + 100;
            });
            gestures_.push_back([id, row = step.text](QWidget& dialog) {
                QWidget* item = itemOf(dialog, id);
                if (auto* combo = qobject_cast<QComboBox*>(item)) {
                    if (combo->view()->isVisible())
                        clickRow(*combo->view(), rowOf(*combo->model(), row));
                } else if (auto* view = qobject_cast<QAbstractItemView*>(item)) {
                    clickRow(*view, rowOf(*view->model(), row));
                }
                return 0;
            });
            break;
        }
        gestures_.push_back([id, row = step.text, hand = step.hand](QWidget& dialog) {
            QWidget* item = itemOf(dialog, id);
            if (auto* combo = qobject_cast<QComboBox*>(item)) {
                const int to = rowOf(*combo->model(), row);
                if (to < 0)
                    return 0;
                if (hand == Hand::Wheel) {
                    gesture::turnWheel(*combo, to - combo->currentIndex());
                } else {
                    combo->setFocus(Qt::TabFocusReason);
                    pressRepeatedly(*combo, combo->currentIndex(), to);
                }
            } else if (auto* view = qobject_cast<QAbstractItemView*>(item)) {
                selectInView(*view, rowOf(*view->model(), row), hand);
            }
            return 0;
        });
        break;
    case Step::Kind::DoubleClick:
        gestures_.push_back([id, row = step.text](QWidget& dialog) {
            auto* view = qobject_cast<QAbstractItemView*>(itemOf(dialog, id));
            const int at = view ? rowOf(*view->model(), row) : -1;
            if (at < 0)
                return 0;
            gesture::doubleClick(*view->viewport(), gesture::rowCentre(*view, at));
            return 0;
        });
        break;
    case Step::Kind::Header:
        gestures_.push_back([id, column = step.number](QWidget& dialog) {
            auto* view = qobject_cast<QTreeWidget*>(itemOf(dialog, id));
            if (!view)
                return 0;
            QHeaderView* header = view->header();
            const int x = header->sectionViewportPosition(column) + header->sectionSize(column) / 2;
            QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, QPoint(x, header->height() / 2));
            return 0;
        });
        break;
    case Step::Kind::Key:
        gestures_.push_back([key = step.number](QWidget& dialog) {
            QWidget* focus = dialog.focusWidget();
            QTest::keyClick(focus ? focus : &dialog, Qt::Key(key));
            return 0;
        });
        break;
    case Step::Kind::File:
        gestures_.push_back([path = step.text](QWidget& dialog) {
            if (qobject_cast<QFileDialog*>(&dialog))
                typeOver(*dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit")), path, Qt::Key_Return);
            return 0;
        });
        break;
    }
}

void HandDriver::start()
{
    sinceLast_.start();
    timer_.start(kTickMs);
}

// The timer is started again before a gesture is made: a gesture that
// opens a dialog returns only when that dialog closes, and the dialog's
// own loop needs the next look.
void HandDriver::tick()
{
    timer_.start(kTickMs);
    QWidget* dialog = QApplication::activeModalWidget();
    if (!dialog || !dialog->isVisible())
        return;
    // A dialog that never becomes active, or stays open after the last
    // gesture, was left open: Escape closes it.
    if (!shown(*dialog) || gestures_.empty()) {
        if (sinceLast_.elapsed() > kLeftOpenMs) {
            leftOpen_ = true;
            sinceLast_.restart();
            QTest::keyClick(dialog, Qt::Key_Escape);
        }
        return;
    }
    if (sinceLast_.elapsed() < pauseMs_)
        return;
    const Gesture gesture = gestures_.front();
    gestures_.pop_front();
    sinceLast_.restart();
    pauseMs_ = 0;  // for the looks inside a dialog the gesture opens
    pauseMs_ = gesture(*dialog);
}

bool HandDriver::idle() const
{
    return gestures_.empty() && !QApplication::activeModalWidget();
}

bool HandDriver::finish()
{
    timer_.stop();
    return gestures_.empty() && !leftOpen_;
}

}  // namespace scenario
