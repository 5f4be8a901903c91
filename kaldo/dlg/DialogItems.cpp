#include "kaldo/dlg/DialogItems.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QTreeWidget>

namespace kaldo::dlg {

namespace {

constexpr const char* kItemIdProperty = "itemId";

}  // namespace

int itemId(const QWidget* widget)
{
    return widget ? widget->property(kItemIdProperty).toInt() : 0;
}

QList<QWidget*> items(const QWidget* root)
{
    QList<QWidget*> found;
    if (!root)
        return found;
    for (QWidget* child : root->findChildren<QWidget*>()) {
        if (itemId(child) != 0)
            found.push_back(child);
    }
    return found;
}

QWidget* findItem(const QWidget* root, int id)
{
    if (id == 0 || !root)
        return nullptr;
    for (QWidget* child : root->findChildren<QWidget*>()) {
        if (itemId(child) == id)
            return child;
    }
    return nullptr;
}

int selectedRow(const QAbstractItemView* view)
{
    const QItemSelectionModel* selection = view ? view->selectionModel() : nullptr;
    if (!selection)
        return -1;
    const QModelIndexList selected = selection->selectedIndexes();
    return selected.isEmpty() ? -1 : selected.front().row();
}

QString itemKind(const QWidget* item)
{
    if (qobject_cast<const QCheckBox*>(item))
        return QStringLiteral("check box");
    if (qobject_cast<const QRadioButton*>(item))
        return QStringLiteral("radio button");
    if (qobject_cast<const QAbstractButton*>(item))
        return QStringLiteral("button");
    if (qobject_cast<const QLineEdit*>(item))
        return QStringLiteral("edit");
    if (qobject_cast<const QComboBox*>(item))
        return QStringLiteral("combo box");
    if (qobject_cast<const QTreeWidget*>(item))
        return QStringLiteral("list view");
    if (qobject_cast<const QListWidget*>(item))
        return QStringLiteral("list");
    if (qobject_cast<const QLabel*>(item))
        return QStringLiteral("text");
    if (qobject_cast<const QGroupBox*>(item))
        return QStringLiteral("group");
    return QStringLiteral("picture");
}

}  // namespace kaldo::dlg
