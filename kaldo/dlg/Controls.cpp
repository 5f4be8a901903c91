// Edits, list boxes, combo boxes, list views and headers over their Qt
// widgets. Setters block the widgets' signals: only people and scripts
// cause notifications. The selection of a list is its selected row (a
// person's click makes a row current before it selects it); deleting the
// selected row leaves no row selected, where Qt would select a neighbour.
#include "kaldo/dlg/DialogItems.h"
#include "kaldo/dlg/ItemNotifications.h"
#include "kxuictrl.h"

#include <QComboBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QListWidget>
#include <QResizeEvent>
#include <QSignalBlocker>
#include <QTreeWidget>

#include <algorithm>

namespace {

constexpr int kDataRole = Qt::UserRole;

template <class Widget>
Widget* widgetOf(const CWnd& window)
{
    return qobject_cast<Widget*>(window.GetSafeHwnd());
}

QString qt(const std::wstring& text)
{
    return QString::fromStdWString(text);
}

}  // namespace

void CEdit::SetLimitText(int count)
{
    if (auto* edit = widgetOf<QLineEdit>(*this))
        edit->setMaxLength(count > 0 ? count : 32767);
}

// Positions count the wide string's characters; the line edit counts
// UTF-16 code units.
void CEdit::SetSel(int start, int end)
{
    auto* edit = widgetOf<QLineEdit>(*this);
    if (!edit)
        return;
    const std::wstring text = edit->text().toStdWString();
    auto unitsBefore = [&text](int position) {
        return int(QString::fromStdWString(text.substr(0, std::size_t(std::clamp(position, 0, int(text.size())))))
                       .size());
    };
    start = unitsBefore(start);
    end = end < 0 ? int(edit->text().size()) : unitsBefore(end);
    edit->setSelection(start, end - start);
}

void CEdit::ReplaceSel(const std::wstring& text)
{
    if (auto* edit = widgetOf<QLineEdit>(*this)) {
        const QSignalBlocker quiet(edit);
        edit->insert(qt(text));
    }
}

int CListBox::GetCount() const
{
    const auto* list = widgetOf<QListWidget>(*this);
    return list ? list->count() : 0;
}

// A list box whose template marks it "sorted" puts an added row where it
// belongs alphabetically, case ignored; InsertString puts it where asked.
int CListBox::AddString(const std::wstring& text)
{
    const auto* list = widgetOf<QListWidget>(*this);
    if (!list || !list->property("sorted").toBool())
        return InsertString(-1, text);
    const QString added = qt(text);
    int below = 0;
    int above = list->count();
    while (below < above) {
        const int middle = below + (above - below) / 2;
        if (list->item(middle)->text().compare(added, Qt::CaseInsensitive) <= 0)
            below = middle + 1;
        else
            above = middle;
    }
    return InsertString(below, text);
}

int CListBox::InsertString(int index, const std::wstring& text)
{
    auto* list = widgetOf<QListWidget>(*this);
    if (!list)
        return -1;
    const QSignalBlocker quiet(list);
    if (index < 0 || index > list->count())
        index = list->count();
    list->insertItem(index, qt(text));
    return index;
}

int CListBox::DeleteString(int index)
{
    auto* list = widgetOf<QListWidget>(*this);
    if (!list || index < 0 || index >= list->count())
        return -1;
    const QSignalBlocker quiet(list);
    const bool selected = kaldo::dlg::selectedRow(list) == index;
    delete list->takeItem(index);
    if (selected)
        list->clearSelection();
    return list->count();
}

void CListBox::ResetContent()
{
    if (auto* list = widgetOf<QListWidget>(*this)) {
        const QSignalBlocker quiet(list);
        list->clear();
    }
}

int CListBox::GetCurSel() const
{
    return kaldo::dlg::selectedRow(widgetOf<QListWidget>(*this));
}

int CListBox::SetCurSel(int index)
{
    auto* list = widgetOf<QListWidget>(*this);
    if (!list)
        return -1;
    const QSignalBlocker quiet(list);
    if (index < 0 || index >= list->count()) {
        list->setCurrentRow(-1);
        list->clearSelection();
        return -1;
    }
    list->setCurrentRow(index, QItemSelectionModel::ClearAndSelect);
    return index;
}

std::wstring CListBox::GetText(int index) const
{
    const auto* list = widgetOf<QListWidget>(*this);
    const QListWidgetItem* item = list ? list->item(index) : nullptr;
    return item ? item->text().toStdWString() : std::wstring();
}

int CListBox::FindStringExact(int start, const std::wstring& text) const
{
    const QString wanted = qt(text);
    for (int i = std::max(start + 1, 0); i < GetCount(); ++i) {
        if (QString::fromStdWString(GetText(i)).compare(wanted, Qt::CaseInsensitive) == 0)
            return i;
    }
    return -1;
}

bool CListBox::SetItemData(int index, std::uintptr_t data)
{
    auto* list = widgetOf<QListWidget>(*this);
    QListWidgetItem* item = list ? list->item(index) : nullptr;
    if (!item)
        return false;
    item->setData(kDataRole, QVariant::fromValue<qulonglong>(data));
    return true;
}

std::uintptr_t CListBox::GetItemData(int index) const
{
    const auto* list = widgetOf<QListWidget>(*this);
    const QListWidgetItem* item = list ? list->item(index) : nullptr;
    return item ? std::uintptr_t(item->data(kDataRole).toULongLong()) : 0;
}

int CComboBox::GetCount() const
{
    const auto* combo = widgetOf<QComboBox>(*this);
    return combo ? combo->count() : 0;
}

int CComboBox::AddString(const std::wstring& text)
{
    return InsertString(-1, text);
}

int CComboBox::InsertString(int index, const std::wstring& text)
{
    auto* combo = widgetOf<QComboBox>(*this);
    if (!combo)
        return -1;
    const QSignalBlocker quiet(combo);
    if (index < 0 || index > combo->count())
        index = combo->count();
    combo->insertItem(index, qt(text));
    return index;
}

int CComboBox::DeleteString(int index)
{
    auto* combo = widgetOf<QComboBox>(*this);
    if (!combo || index < 0 || index >= combo->count())
        return -1;
    const QSignalBlocker quiet(combo);
    combo->removeItem(index);
    return combo->count();
}

void CComboBox::ResetContent()
{
    if (auto* combo = widgetOf<QComboBox>(*this)) {
        const QSignalBlocker quiet(combo);
        combo->clear();
    }
}

int CComboBox::GetCurSel() const
{
    const auto* combo = widgetOf<QComboBox>(*this);
    return combo ? combo->currentIndex() : -1;
}

int CComboBox::SetCurSel(int index)
{
    auto* combo = widgetOf<QComboBox>(*this);
    if (!combo)
        return -1;
    const QSignalBlocker quiet(combo);
    combo->setCurrentIndex(index >= 0 && index < combo->count() ? index : -1);
    return combo->currentIndex();
}

std::wstring CComboBox::GetLBText(int index) const
{
    const auto* combo = widgetOf<QComboBox>(*this);
    return combo && index >= 0 && index < combo->count() ? combo->itemText(index).toStdWString() : std::wstring();
}

int CComboBox::FindStringExact(int start, const std::wstring& text) const
{
    const QString wanted = qt(text);
    for (int i = std::max(start + 1, 0); i < GetCount(); ++i) {
        if (QString::fromStdWString(GetLBText(i)).compare(wanted, Qt::CaseInsensitive) == 0)
            return i;
    }
    return -1;
}

bool CComboBox::SetItemData(int index, std::uintptr_t data)
{
    auto* combo = widgetOf<QComboBox>(*this);
    if (!combo || index < 0 || index >= combo->count())
        return false;
    combo->setItemData(index, QVariant::fromValue<qulonglong>(data), kDataRole);
    return true;
}

std::uintptr_t CComboBox::GetItemData(int index) const
{
    const auto* combo = widgetOf<QComboBox>(*this);
    return combo ? std::uintptr_t(combo->itemData(index, kDataRole).toULongLong()) : 0;
}

int CHeaderCtrl::GetItemCount() const
{
    const auto* header = widgetOf<QHeaderView>(*this);
    return header ? header->count() : 0;
}

int CHeaderCtrl::GetItemWidth(int column) const
{
    const auto* header = widgetOf<QHeaderView>(*this);
    return header && column >= 0 && column < header->count() ? header->sectionSize(column) : 0;
}

void CHeaderCtrl::SetItemWidth(int column, int width)
{
    if (auto* header = widgetOf<QHeaderView>(*this); header && column >= 0 && column < header->count())
        header->resizeSection(column, width);
}

void CHeaderCtrl::SetSortIndicator(int column, bool ascending)
{
    auto* header = widgetOf<QHeaderView>(*this);
    if (!header)
        return;
    header->setSortIndicatorShown(column >= 0);
    header->setSortIndicator(column, ascending ? Qt::AscendingOrder : Qt::DescendingOrder);
    kaldo::dlg::keepSortIndicator(*header);
}

// The columns added so far are counted apart from the view's own count: a
// view from a template starts with one unnamed column.
int CListCtrl::InsertColumn(int column, const std::wstring& heading, int, int width)
{
    auto* view = widgetOf<QTreeWidget>(*this);
    if (!view || column < 0)
        return -1;
    const int count = GetColumnCount();
    column = std::min(column, count);
    QStringList headings;
    for (int c = 0; c < count; ++c)
        headings << view->headerItem()->text(c);
    headings.insert(column, qt(heading));
    view->setColumnCount(int(headings.size()));
    view->setHeaderLabels(headings);
    view->header()->resizeSection(column, width);
    view->setProperty("kxColumns", int(headings.size()));
    return column;
}

int CListCtrl::GetColumnCount() const
{
    const auto* view = widgetOf<QTreeWidget>(*this);
    return view ? view->property("kxColumns").toInt() : 0;
}

int CListCtrl::GetColumnWidth(int column) const
{
    const auto* view = widgetOf<QTreeWidget>(*this);
    return view && column >= 0 && column < GetColumnCount() ? view->header()->sectionSize(column) : 0;
}

int CListCtrl::GetItemCount() const
{
    const auto* view = widgetOf<QTreeWidget>(*this);
    return view ? view->topLevelItemCount() : 0;
}

int CListCtrl::InsertItem(int row, const std::wstring& text)
{
    auto* view = widgetOf<QTreeWidget>(*this);
    if (!view)
        return -1;
    const QSignalBlocker quiet(view);
    if (row < 0 || row > view->topLevelItemCount())
        row = view->topLevelItemCount();
    auto* item = new QTreeWidgetItem(QStringList{qt(text)});
    view->insertTopLevelItem(row, item);
    return row;
}

bool CListCtrl::SetItemText(int row, int column, const std::wstring& text)
{
    auto* view = widgetOf<QTreeWidget>(*this);
    QTreeWidgetItem* item = view ? view->topLevelItem(row) : nullptr;
    if (!item || column < 0 || column >= std::max(GetColumnCount(), 1))
        return false;
    const QSignalBlocker quiet(view);
    item->setText(column, qt(text));
    return true;
}

std::wstring CListCtrl::GetItemText(int row, int column) const
{
    const auto* view = widgetOf<QTreeWidget>(*this);
    const QTreeWidgetItem* item = view ? view->topLevelItem(row) : nullptr;
    return item ? item->text(column).toStdWString() : std::wstring();
}

bool CListCtrl::DeleteItem(int row)
{
    auto* view = widgetOf<QTreeWidget>(*this);
    if (!view || row < 0 || row >= view->topLevelItemCount())
        return false;
    const QSignalBlocker quiet(view);
    const bool selected = kaldo::dlg::selectedRow(view) == row;
    delete view->takeTopLevelItem(row);
    if (selected)
        view->clearSelection();
    return true;
}

bool CListCtrl::DeleteAllItems()
{
    auto* view = widgetOf<QTreeWidget>(*this);
    if (!view)
        return false;
    const QSignalBlocker quiet(view);
    view->clear();
    return true;
}

bool CListCtrl::SetItemData(int row, std::uintptr_t data)
{
    auto* view = widgetOf<QTreeWidget>(*this);
    QTreeWidgetItem* item = view ? view->topLevelItem(row) : nullptr;
    if (!item)
        return false;
    item->setData(0, kDataRole, QVariant::fromValue<qulonglong>(data));
    return true;
}

std::uintptr_t CListCtrl::GetItemData(int row) const
{
    const auto* view = widgetOf<QTreeWidget>(*this);
    const QTreeWidgetItem* item = view ? view->topLevelItem(row) : nullptr;
    return item ? std::uintptr_t(item->data(0, kDataRole).toULongLong()) : 0;
}

int CListCtrl::GetSelectedRow() const
{
    return kaldo::dlg::selectedRow(widgetOf<QTreeWidget>(*this));
}

bool CListCtrl::SelectRow(int row)
{
    auto* view = widgetOf<QTreeWidget>(*this);
    if (!view)
        return false;
    const QSignalBlocker quiet(view);
    QTreeWidgetItem* item = view->topLevelItem(row);
    if (!item) {
        view->clearSelection();
        return row < 0;
    }
    view->setCurrentItem(item, 0, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    return true;
}

bool CListCtrl::SortItems(Compare compare, std::uintptr_t context)
{
    auto* view = widgetOf<QTreeWidget>(*this);
    if (!view || !compare)
        return false;
    const QSignalBlocker quiet(view);
    const int selectedAt = kaldo::dlg::selectedRow(view);
    QTreeWidgetItem* selected = selectedAt >= 0 ? view->topLevelItem(selectedAt) : nullptr;
    QList<QTreeWidgetItem*> rows;
    while (view->topLevelItemCount() > 0)
        rows.push_back(view->takeTopLevelItem(0));
    std::stable_sort(rows.begin(), rows.end(), [&](const QTreeWidgetItem* a, const QTreeWidgetItem* b) {
        return compare(std::uintptr_t(a->data(0, kDataRole).toULongLong()),
                       std::uintptr_t(b->data(0, kDataRole).toULongLong()), context) < 0;
    });
    view->addTopLevelItems(rows);
    if (selected)
        view->setCurrentItem(selected, 0, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    return true;
}

bool CListCtrl::SubclassHeader(CHeaderCtrl& header)
{
    auto* view = widgetOf<QTreeWidget>(*this);
    if (!view || header.GetSafeHwnd())
        return false;
    header.Attach(view->header());
    return true;
}

// Hands the control's paint and size events to its owner.
class CStatic::Events : public QObject {
public:
    explicit Events(CStatic& owner) : owner_(owner) {}

protected:
    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::Paint)
            owner_.OnPaint();
        else if (event->type() == QEvent::Resize) {
            const QSize size = static_cast<QResizeEvent*>(event)->size();
            owner_.OnSize(SIZE_RESTORED, size.width(), size.height());
        }
        return false;
    }

private:
    CStatic& owner_;
};

CStatic::CStatic() = default;

CStatic::~CStatic()
{
    Detach();
}

void CStatic::OnSize(int, int, int) {}

void CStatic::OnAttached()
{
    m_events = std::make_unique<Events>(*this);
    GetSafeHwnd()->installEventFilter(m_events.get());
}

void CStatic::OnDetaching()
{
    m_events.reset();
}
