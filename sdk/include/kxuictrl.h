// Controls of the host's user-interface class library: static texts, edits,
// list boxes, combo boxes, list views (report style, one row per item) and
// their headers, and the archive that header widths are kept in. Setters
// send no notification; the dialog hears of changes a person (or a script)
// makes.
#pragma once

#include "kxuiwnd.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

// A static control; pictures drawn by the module hook its painting and
// sizing.
class CStatic : public CWnd {
public:
    CStatic();
    ~CStatic() override;

protected:
    // The control paints (before anything laid over it) or changed size.
    virtual void OnPaint() {}
    virtual void OnSize(int type, int cx, int cy);

    void OnAttached() override;
    void OnDetaching() override;

private:
    class Events;
    std::unique_ptr<Events> m_events;
};

// An edit. What a person types and a script's TEXT pass through the
// validator of the bound line edit (a filter of refused characters sets one
// on GetSafeHwnd()); ReplaceSel does too.
class CEdit : public CWnd {
public:
    // The most characters a person can type (0: no limit).
    void SetLimitText(int count);
    // Selects from start to end, counted in the text's wide characters
    // (end -1: to the end); start equal to end places the caret.
    void SetSel(int start, int end);
    void ReplaceSel(const std::wstring& text);
};

// Rows of a list box or combo box: text and one integer of item data.
class CListBox : public CWnd {
public:
    int GetCount() const;
    // Index of the new row: the last, or in a list its template marks
    // "sorted" the row's place in alphabetical order, case ignored.
    int AddString(const std::wstring& text);
    int InsertString(int index, const std::wstring& text);
    int DeleteString(int index);  // rows left, -1 for a bad index
    void ResetContent();
    int GetCurSel() const;  // -1: none
    int SetCurSel(int index);
    std::wstring GetText(int index) const;
    // The first row from start + 1 on whose text equals text without regard
    // to case (start -1: from the first row); -1 when there is none.
    int FindStringExact(int start, const std::wstring& text) const;
    bool SetItemData(int index, std::uintptr_t data);
    std::uintptr_t GetItemData(int index) const;
};

class CComboBox : public CWnd {
public:
    int GetCount() const;
    int AddString(const std::wstring& text);
    int InsertString(int index, const std::wstring& text);
    int DeleteString(int index);
    void ResetContent();
    int GetCurSel() const;
    int SetCurSel(int index);
    std::wstring GetLBText(int index) const;
    int FindStringExact(int start, const std::wstring& text) const;
    bool SetItemData(int index, std::uintptr_t data);
    std::uintptr_t GetItemData(int index) const;
};

// A growing byte buffer written or read as 32-bit integers.
class CArchive {
public:
    CArchive(std::vector<unsigned char>& bytes, bool storing) : m_bytes(bytes), m_storing(storing) {}
    bool IsStoring() const { return m_storing; }
    bool IsLoading() const { return !m_storing; }
    // False once a read ran past the end (such reads give 0).
    bool good() const { return m_good; }

    CArchive& operator<<(std::int32_t value)
    {
        const auto bits = static_cast<std::uint32_t>(value);
        for (int i = 0; i < 4; ++i)
            m_bytes.push_back(static_cast<unsigned char>(bits >> (8 * i)));
        return *this;
    }
    CArchive& operator>>(std::int32_t& value)
    {
        std::uint32_t bits = 0;
        if (m_read + 4 > m_bytes.size()) {
            m_good = false;
        } else {
            for (int i = 0; i < 4; ++i)
                bits |= std::uint32_t(m_bytes[m_read + std::size_t(i)]) << (8 * i);
            m_read += 4;
        }
        value = static_cast<std::int32_t>(bits);
        return *this;
    }

private:
    std::vector<unsigned char>& m_bytes;
    bool m_storing;
    std::size_t m_read = 0;
    bool m_good = true;
};

class CHeaderCtrl : public CWnd {
public:
    int GetItemCount() const;
    int GetItemWidth(int column) const;
    void SetItemWidth(int column, int width);
    // Shows the sort arrow on column (-1: none).
    void SetSortIndicator(int column, bool ascending);
};

inline constexpr int LVCFMT_LEFT = 0;

class CListCtrl : public CWnd {
public:
    // Compares the item data of two rows: below 0 when the first goes first.
    using Compare = int (*)(std::uintptr_t first, std::uintptr_t second, std::uintptr_t context);

    // Adds a column at position column; its index, -1 on failure.
    int InsertColumn(int column, const std::wstring& heading, int format, int width);
    int GetColumnCount() const;
    int GetColumnWidth(int column) const;
    int GetItemCount() const;
    // Inserts a row with the text of its first column; its index.
    int InsertItem(int row, const std::wstring& text);
    bool SetItemText(int row, int column, const std::wstring& text);
    std::wstring GetItemText(int row, int column) const;
    bool DeleteItem(int row);
    bool DeleteAllItems();
    bool SetItemData(int row, std::uintptr_t data);
    std::uintptr_t GetItemData(int row) const;
    // The selected row, -1 when none; selecting a row makes it current.
    int GetSelectedRow() const;
    bool SelectRow(int row);
    // Sorts the rows by their item data; the selected row stays selected.
    bool SortItems(Compare compare, std::uintptr_t context);
    // Binds header to the list's own header control.
    bool SubclassHeader(CHeaderCtrl& header);
};
