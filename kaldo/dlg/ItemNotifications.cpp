#include "kaldo/dlg/ItemNotifications.h"

#include "kaldo/dlg/DialogItems.h"
#include "kxuiwnd.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QFocusEvent>
#include <QHeaderView>
#include <QLineEdit>
#include <QListWidget>
#include <QSignalBlocker>
#include <QTreeWidget>

namespace kaldo::dlg {

namespace {

constexpr const char* kSortSection = "kxSortSection";
constexpr const char* kSortOrder = "kxSortOrder";

// Tells of edits that lose the focus to another place; a window that is
// deactivated (or closes) keeps its focus widget.
class FocusLoss : public QObject {
public:
    FocusLoss(QObject& owner, std::function<void(int id, int code)> command) : QObject(&owner), command_(std::move(command))
    {
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::FocusOut
            && static_cast<QFocusEvent*>(event)->reason() != Qt::ActiveWindowFocusReason)
            command_(itemId(static_cast<QWidget*>(watched)), EN_KILLFOCUS);
        return false;
    }

private:
    std::function<void(int id, int code)> command_;
};

// A click on a header section flips Qt's sort arrow; the class library's
// header shows only the arrow its owner sets.
void restoreSortIndicator(QHeaderView& header)
{
    const QVariant section = header.property(kSortSection);
    if (!section.isValid())
        return;
    const QSignalBlocker quiet(&header);
    header.setSortIndicator(section.toInt(), Qt::SortOrder(header.property(kSortOrder).toInt()));
}

void connectListBox(QListWidget& list, int id, QObject& context, const ItemNotices& notices)
{
    QObject::connect(&list, &QListWidget::itemSelectionChanged, &context, [&list, id, notices] {
        // A list box that selects one row keeps it: a Ctrl-click on the
        // selected row leaves it selected.
        if (selectedRow(&list) < 0 && list.currentItem()) {
            const QSignalBlocker quiet(&list);
            list.currentItem()->setSelected(true);
            return;
        }
        notices.command(id, LBN_SELCHANGE);
    });
    QObject::connect(&list, &QListWidget::itemDoubleClicked, &context,
                     [id, notices] { notices.command(id, LBN_DBLCLK); });
}

void connectListView(QTreeWidget& view, int id, QObject& context, const ItemNotices& notices)
{
    QObject::connect(&view, &QTreeWidget::itemSelectionChanged, &context,
                     [&view, id, notices] { notices.listView(id, LVN_ITEMCHANGED, selectedRow(&view)); });
    QObject::connect(&view, &QTreeWidget::itemDoubleClicked, &context, [&view, id, notices](QTreeWidgetItem* row) {
        notices.listView(id, NM_DBLCLK, view.indexOfTopLevelItem(row));
    });
    QHeaderView* header = view.header();
    header->setSectionsClickable(true);
    QObject::connect(header, &QHeaderView::sectionClicked, &context, [header, id, notices](int column) {
        restoreSortIndicator(*header);
        notices.listView(id, LVN_COLUMNCLICK, column);
    });
}

}  // namespace

void keepSortIndicator(QHeaderView& header)
{
    header.setProperty(kSortSection, header.sortIndicatorSection());
    header.setProperty(kSortOrder, int(header.sortIndicatorOrder()));
}

void connectItemNotifications(QWidget& window, QObject& context, const ItemNotices& notices)
{
    auto* focusLoss = new FocusLoss(context, notices.command);
    for (QWidget* item : items(&window)) {
        const int id = itemId(item);
        if (auto* button = qobject_cast<QAbstractButton*>(item)) {
            QObject::connect(button, &QAbstractButton::clicked, &context,
                             [id, notices] { notices.command(id, BN_CLICKED); });
        } else if (auto* edit = qobject_cast<QLineEdit*>(item)) {
            QObject::connect(edit, &QLineEdit::textChanged, &context, [id, notices] { notices.command(id, EN_CHANGE); });
            edit->installEventFilter(focusLoss);
        } else if (auto* combo = qobject_cast<QComboBox*>(item)) {
            QObject::connect(combo, &QComboBox::activated, &context,
                             [id, notices] { notices.command(id, CBN_SELCHANGE); });
            // Typed text only: choosing an entry also sets the edit's text.
            if (QLineEdit* comboEdit = combo->lineEdit())
                QObject::connect(comboEdit, &QLineEdit::textEdited, &context,
                                 [id, notices] { notices.command(id, CBN_EDITCHANGE); });
        } else if (auto* view = qobject_cast<QTreeWidget*>(item)) {
            connectListView(*view, id, context, notices);
        } else if (auto* list = qobject_cast<QListWidget*>(item)) {
            connectListBox(*list, id, context, notices);
        }
    }
}

}  // namespace kaldo::dlg
