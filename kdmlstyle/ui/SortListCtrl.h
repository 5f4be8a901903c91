// The report list of the new/modify style dialog: it keeps its own copy of
// every cell's text and one user pointer per row, sorts its rows by the
// number in the first column, and restores its column widths from the
// profile (section "ListCtrls", entry: the list's item id).
#pragma once

#include "kxuictrl.h"

#include <memory>
#include <string>
#include <vector>

namespace kdml {

// The list's header: its column widths as an archive of a 32-bit column
// count and one 32-bit width per column.
class CSortHeaderCtrl : public CHeaderCtrl {
public:
    void Serialize(CArchive& archive);
};

class CSortListCtrl : public CListCtrl {
public:
    CSortListCtrl();
    ~CSortListCtrl() override;

    // Adds the columns of a text "heading,width;heading,width;...": false
    // when a column cannot be added; a text without "," adds none.
    bool SetHeadings(const std::wstring& text);
    // Appends a row with one text per column; its index.
    int AddItem(const std::vector<std::wstring>& texts);
    bool DeleteItem(int row);
    bool SetItemText(int row, int column, const std::wstring& text);
    // The row's user pointer (not owned by the list).
    bool SetItemData(int row, void* pointer);
    void* GetItemData(int row) const;
    // Sorts the rows by the number in column 0, ascending (a text that is
    // no number counts as 0).
    void Sort();
    // Sets the column widths stored in the profile, when there are any.
    void LoadColumnInfo();

    int columnCount() const { return m_columnCount; }
    int sortColumn() const { return m_sortColumn; }

protected:
    void OnAttached() override;
    void OnDetaching() override;

private:
    struct Row {
        std::vector<std::wstring> texts;
        void* user = nullptr;
    };
    Row* rowAt(int row) const;

    CSortHeaderCtrl m_header;
    int m_columnCount = 0;
    int m_sortColumn = -1;
    std::vector<std::unique_ptr<Row>> m_rows;
};

}  // namespace kdml
