// Dialog items: the widgets of a dialog that carry a dialog item id (the
// property "itemId" of the template), found by id and described by kind.
#pragma once

#include <QList>
#include <QString>

class QAbstractItemView;
class QWidget;

namespace kaldo::dlg {

// The item id of a widget, 0 when it has none.
int itemId(const QWidget* widget);
// The item of id below root (in template order), or null.
QWidget* findItem(const QWidget* root, int id);
// Every item below root, in template order.
QList<QWidget*> items(const QWidget* root);

// The selected row of a list or list view (they select one row at a time),
// -1 when none is: the current row alone is no selection. A person's click
// makes a row current before it selects it; notifications and handlers
// read the selection.
int selectedRow(const QAbstractItemView* view);

// The kind of an item as scripts and SHOW name it: "button", "check box",
// "radio button", "edit", "combo box", "list", "list view", "text",
// "group", "picture".
QString itemKind(const QWidget* item);

}  // namespace kaldo::dlg
