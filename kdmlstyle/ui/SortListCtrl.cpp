#include "ui/SortListCtrl.h"

#include "kxuiapp.h"

#include <algorithm>
#include <cwchar>
#include <string>

namespace kdml {

namespace {

constexpr const wchar_t* kProfileSection = L"ListCtrls";

double numberIn(const std::wstring& text)
{
    return std::wcstod(text.c_str(), nullptr);
}

}  // namespace

void CSortHeaderCtrl::Serialize(CArchive& archive)
{
    if (archive.IsStoring()) {
        archive << std::int32_t(GetItemCount());
        for (int column = 0; column < GetItemCount(); ++column)
            archive << std::int32_t(GetItemWidth(column));
        return;
    }
    std::int32_t count = 0;
    archive >> count;
    for (int column = 0; column < count && archive.good(); ++column) {
        std::int32_t width = 0;
        archive >> width;
        if (archive.good())
            SetItemWidth(column, width);
    }
}

CSortListCtrl::CSortListCtrl() = default;

CSortListCtrl::~CSortListCtrl()
{
    Detach();
}

void CSortListCtrl::OnAttached()
{
    SubclassHeader(m_header);
}

void CSortListCtrl::OnDetaching()
{
    m_header.Detach();
    m_rows.clear();
}

CSortListCtrl::Row* CSortListCtrl::rowAt(int row) const
{
    return reinterpret_cast<Row*>(CListCtrl::GetItemData(row));
}

bool CSortListCtrl::SetHeadings(const std::wstring& text)
{
    std::size_t start = 0;
    std::size_t comma = text.find(L',');
    while (comma != std::wstring::npos) {
        const std::size_t semicolon = text.find(L';', comma);
        const std::wstring heading = text.substr(start, comma - start);
        const int width = int(std::wcstol(text.substr(comma + 1, semicolon - comma - 1).c_str(), nullptr, 10));
        if (InsertColumn(m_columnCount, heading, LVCFMT_LEFT, width) < 0)
            return false;
        ++m_columnCount;
        if (semicolon == std::wstring::npos)
            break;
        start = semicolon + 1;
        comma = text.find(L',', start);
    }
    return true;
}

int CSortListCtrl::AddItem(const std::vector<std::wstring>& texts)
{
    if (texts.empty())
        return -1;
    const int row = InsertItem(GetItemCount(), texts.front());
    if (row < 0)
        return -1;
    auto record = std::make_unique<Row>();
    record->texts = texts;
    record->texts.resize(std::size_t(std::max(m_columnCount, 1)));
    for (int column = 1; column < m_columnCount; ++column)
        CListCtrl::SetItemText(row, column, record->texts[std::size_t(column)]);
    CListCtrl::SetItemData(row, reinterpret_cast<std::uintptr_t>(record.get()));
    m_rows.push_back(std::move(record));
    return row;
}

bool CSortListCtrl::DeleteItem(int row)
{
    Row* record = rowAt(row);
    if (!CListCtrl::DeleteItem(row))
        return false;
    std::erase_if(m_rows, [record](const std::unique_ptr<Row>& r) { return r.get() == record; });
    return true;
}

bool CSortListCtrl::SetItemText(int row, int column, const std::wstring& text)
{
    Row* record = rowAt(row);
    if (!record || column < 0 || column >= int(record->texts.size()) || !CListCtrl::SetItemText(row, column, text))
        return false;
    record->texts[std::size_t(column)] = text;
    return true;
}

bool CSortListCtrl::SetItemData(int row, void* pointer)
{
    Row* record = rowAt(row);
    if (!record)
        return false;
    record->user = pointer;
    return true;
}

void* CSortListCtrl::GetItemData(int row) const
{
    const Row* record = rowAt(row);
    return record ? record->user : nullptr;
}

void CSortListCtrl::Sort()
{
    m_sortColumn = 0;
    SortItems(
        [](std::uintptr_t first, std::uintptr_t second, std::uintptr_t column) {
            const double a = numberIn(reinterpret_cast<const Row*>(first)->texts[column]);
            const double b = numberIn(reinterpret_cast<const Row*>(second)->texts[column]);
            return a < b ? -1 : (a > b ? 1 : 0);
        },
        std::uintptr_t(m_sortColumn));
    m_header.SetSortIndicator(m_sortColumn, true);
}

void CSortListCtrl::LoadColumnInfo()
{
    std::vector<unsigned char> bytes;
    const std::wstring entry = std::to_wstring(GetDlgCtrlID());
    if (!AfxGetApp()->GetProfileBinary(kProfileSection, entry.c_str(), bytes) || bytes.empty())
        return;
    CArchive archive(bytes, false);
    m_header.Serialize(archive);
    m_header.Invalidate();
}

}  // namespace kdml
