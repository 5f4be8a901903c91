// The notifications a dialog hears from its items, raised from the Qt
// signals that report a change once the widget's state holds it: a handler
// always reads the new selection, text or check state. A person's mouse and
// keys and a script's actions change the widgets through the same Qt paths,
// so both raise the same notifications in the same order.
//
//   push button, check box, image button   clicked              BN_CLICKED
//   edit                                    text changed         EN_CHANGE
//                                           focus lost           EN_KILLFOCUS
//   list box                                selection changed    LBN_SELCHANGE
//                                           double click         LBN_DBLCLK
//   combo box (colour, linetype too)        entry chosen         CBN_SELCHANGE
//                                           its edit typed in    CBN_EDITCHANGE
//   list view                               selection changed    LVN_ITEMCHANGED (the selected row, -1: none)
//                                           double click         NM_DBLCLK (the row)
//   list view header                        section clicked      LVN_COLUMNCLICK (the column)
#pragma once

#include <functional>

class QHeaderView;
class QObject;
class QWidget;

namespace kaldo::dlg {

struct ItemNotices {
    std::function<void(int id, int code)> command;               // OnCommand
    std::function<void(int id, int code, int index)> listView;  // OnNotify
};

// Connects every item of window to notices for as long as context lives.
void connectItemNotifications(QWidget& window, QObject& context, const ItemNotices& notices);

// Remembers the sort arrow the program shows on header: a person's click on
// a section notifies the dialog and leaves the arrow as the program set it.
void keepSortIndicator(QHeaderView& header);

}  // namespace kaldo::dlg
