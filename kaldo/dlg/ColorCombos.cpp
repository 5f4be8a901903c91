// The colour and linetype combo boxes.
#include "kaldo/core/Host.h"
#include "kaldo/view/ColorPalette.h"
#include "kxdb.h"
#include "kxuicolorcombo.h"

#include <QComboBox>
#include <QPixmap>

#include <algorithm>

namespace {

constexpr int kMostRecent = 8;

bool sameColor(const KxCmColor& a, const KxCmColor& b)
{
    return a.color() == b.color() && std::wstring_view(a.colorName()) == b.colorName()
        && std::wstring_view(a.bookName()) == b.bookName();
}

QString colorText(const KxCmColor& color)
{
    if (color.isByLayer())
        return QString::fromWCharArray(kxdbGetReservedString(0, true));
    if (color.isByBlock())
        return QString::fromWCharArray(kxdbGetReservedString(1, true));
    if (color.hasColorBookNames())
        return QString::fromWCharArray(color.bookName()) + QLatin1Char('$') + QString::fromWCharArray(color.colorName());
    if (color.isByColor())
        return QStringLiteral("%1,%2,%3").arg(color.red()).arg(color.green()).arg(color.blue());
    static const char* const basic[] = {"Red", "Yellow", "Green", "Cyan", "Blue", "Magenta", "White"};
    const int index = color.colorIndex();
    return index >= 1 && index <= 7 ? QString::fromLatin1(basic[index - 1]) : QStringLiteral("Color %1").arg(index);
}

QIcon swatch(const KxCmColor& color)
{
    QPixmap pixmap(16, 12);
    std::uint32_t rgb = 0xffffff;
    if (color.isByColor())
        rgb = (std::uint32_t(color.red()) << 16) | (std::uint32_t(color.green()) << 8) | color.blue();
    else if (color.isByACI())
        rgb = kaldo::view::colorIndexRgb(color.colorIndex());
    pixmap.fill(QColor::fromRgb(rgb));
    return QIcon(pixmap);
}

}  // namespace

int CKxUiTrueColorComboBox::addRow(const KxCmColor& color)
{
    auto* combo = qobject_cast<QComboBox*>(GetSafeHwnd());
    const int row = AddString(colorText(color).toStdWString());
    if (row < 0)
        return row;
    SetItemData(row, m_colors.size());
    m_colors.push_back(color);
    if (!color.isByLayer() && !color.isByBlock())
        combo->setItemIcon(row, swatch(color));
    return row;
}

void CKxUiTrueColorComboBox::OnAttached()
{
    ResetContent();
    m_colors.clear();
    KxCmColor color;
    addRow(color);
    color.setColorMethod(KxCmColor::kByBlock);
    addRow(color);
    for (int index = 1; index <= 7; ++index) {
        color.setColorIndex(index);
        addRow(color);
    }
    for (const KxCmColor& recent : m_recent) {
        if (FindItemByColor(recent) < 0)
            addRow(recent);
    }
}

void CKxUiTrueColorComboBox::AddColorToMRU(const KxCmColor& color)
{
    std::erase_if(m_recent, [&](const KxCmColor& c) { return sameColor(c, color); });
    m_recent.insert(m_recent.begin(), color);
    if (m_recent.size() > std::size_t(kMostRecent))
        m_recent.pop_back();
    if (GetSafeHwnd() && FindItemByColor(color) < 0)
        addRow(color);
}

int CKxUiTrueColorComboBox::FindItemByColor(const KxCmColor& color) const
{
    for (int row = 0; row < GetCount(); ++row) {
        const std::size_t at = GetItemData(row);
        if (at < m_colors.size() && sameColor(m_colors[at], color))
            return row;
    }
    return -1;
}

KxCmColor CKxUiTrueColorComboBox::GetCurrentItemColor() const
{
    const int row = GetCurSel();
    const std::size_t at = row >= 0 ? GetItemData(row) : m_colors.size();
    return at < m_colors.size() ? m_colors[at] : KxCmColor();
}

void CKxUiLineTypeComboBox::OnAttached()
{
    if (const KxDbDatabase* database = kaldo::host().database)
        Fill(*database);
}

void CKxUiLineTypeComboBox::Fill(const KxDbDatabase& database)
{
    ResetContent();
    m_linetypes.clear();
    auto add = [this](KxDbObjectId id, const std::wstring& name) {
        const int row = AddString(name);
        SetItemData(row, m_linetypes.size());
        m_linetypes.push_back(id);
    };
    add(database.byLayerLinetype(), kxdbGetReservedString(0, true));
    add(database.byBlockLinetype(), kxdbGetReservedString(1, true));
    const KxDbObjectPtr<KxDbLinetypeTable> table(database.linetypeTableId(), KxDb::kForRead);
    if (!table)
        return;
    const auto it = table->newIterator();
    for (it->start(); !it->done(); it->step()) {
        const KxDbObjectId id = it->getRecordId();
        if (id == database.byLayerLinetype() || id == database.byBlockLinetype())
            continue;
        KxDbSymbolTableRecord* opened = nullptr;
        if (it->getRecord(opened, KxDb::kForRead) != Kald::eOk)
            continue;
        const KxDbObjectPtr<KxDbSymbolTableRecord> record(opened);
        add(id, id == database.continuousLinetype() ? std::wstring(kxdbGetReservedString(3, true)) : record->name());
    }
}

int CKxUiLineTypeComboBox::FindItemByLinetype(KxDbObjectId linetype) const
{
    for (int row = 0; row < GetCount(); ++row) {
        const std::size_t at = GetItemData(row);
        if (at < m_linetypes.size() && m_linetypes[at] == linetype)
            return row;
    }
    return -1;
}

KxDbObjectId CKxUiLineTypeComboBox::GetCurrentLinetype() const
{
    const int row = GetCurSel();
    const std::size_t at = row >= 0 ? GetItemData(row) : m_linetypes.size();
    return at < m_linetypes.size() ? m_linetypes[at] : KxDbObjectId();
}
