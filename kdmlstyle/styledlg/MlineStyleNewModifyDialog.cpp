#include "styledlg/MlineStyleNewModifyDialog.h"

#include "host/ShortVariableScope.h"
#include "host/WorkingDatabase.h"
#include "mlnfile/MlnElementTable.h"
#include "mlnfile/StyleElementSetters.h"
#include "res/DialogItems.h"
#include "styledlg/MlineStyleDialog.h"
#include "styledlg/StyleDictionary.h"
#include "ui/DialogPlacement.h"

#include "kxdb.h"
#include "kxedunits.h"
#include "kxhost.h"
#include "kxuimsgbox.h"

#include <QIcon>

#include <QApplication>

#include <algorithm>
#include <array>
#include <cmath>
#include <cwchar>

namespace kdml {

namespace {

using namespace styleDefinitionItem;

enum Column : int { kOffsetColumn = 0, kLinetypeColumn = 1, kColorColumn = 2 };

// Check box and flag bit, in the order the flag word is rebuilt; fill
// comes first.
constexpr std::array<std::pair<int, int>, 8> kFlagBoxes{{
    {kFill, kMlnFill},
    {kJoints, kMlnShowJoints},
    {kStartLine, kMlnStartLineCap},
    {kStartInnerArcs, kMlnStartInnerArcs},
    {kStartOuterArc, kMlnStartOuterArc},
    {kEndLine, kMlnEndLineCap},
    {kEndInnerArcs, kMlnEndInnerArcs},
    {kEndOuterArc, kMlnEndOuterArc},
}};

constexpr unsigned kNewTitle = 4;
constexpr unsigned kModifyTitle = 5;
constexpr unsigned kColorNumber = 27;
constexpr unsigned kTooManyElements = 25;
constexpr const wchar_t* kZeroOffset = L"0.000";
constexpr double kMinAngle = 10.0;
constexpr double kMaxAngle = 170.0;

bool angleTextInRange(const std::wstring& text)
{
    const double degrees = std::wcstod(text.c_str(), nullptr);
    return isValidNumberText(text) && degrees >= kMinAngle && degrees <= kMaxAngle;
}

// Reserved linetype and colour names as users see them, and back.
std::wstring localisedReservedName(const std::wstring& name, std::initializer_list<int> kinds)
{
    for (const int kind : kinds) {
        if (::wcscasecmp(name.c_str(), kxdbGetReservedString(kind, false)) == 0)
            return kxdbGetReservedString(kind, true);
    }
    return name;
}

std::wstring storedLinetypeName(const std::wstring& text)
{
    for (const int kind : {0, 1, 3}) {
        if (::wcscasecmp(text.c_str(), kxdbGetReservedString(kind, true)) == 0)
            return kxdbGetReservedString(kind, false);
    }
    return text;
}

std::wstring linetypeName(KxDbObjectId id)
{
    const KxDbObjectPtr<KxDbLinetypeTableRecord> record(id, KxDb::kForRead);
    return record ? localisedReservedName(record->name(), {0, 1, 3}) : std::wstring();
}

std::wstring colorText(const KxCmColor& color)
{
    return localisedReservedName(color.colorNameForDisplay(), {0, 1});
}

}  // namespace

bool isValidNumberText(const std::wstring& text)
{
    const std::wstring considered = text.substr(0, 511);
    if (considered.empty())
        return false;
    bool stop = false;
    for (std::size_t i = 0; i < considered.size(); ++i) {
        const wchar_t c = considered[i];
        if (c == L'-' && i == 0)
            continue;
        if (c == L'.' && !stop) {
            stop = true;
            continue;
        }
        if (c < L'0' || c > L'9')
            return false;
    }
    // Digits alone can name a number beyond the largest double; the value
    // is read from the whole text, as the rows read it.
    return std::isfinite(std::wcstod(text.c_str(), nullptr));
}

CKaldMlineStyleNewModifyDialog::CKaldMlineStyleNewModifyDialog(CKaldMlineStyleDialog* manager)
    : CDialog(kTemplateId, manager), m_manager(manager)
{
}

CKaldMlineStyleNewModifyDialog::~CKaldMlineStyleNewModifyDialog() = default;

void CKaldMlineStyleNewModifyDialog::setNewMode(const std::wstring& newName, const std::wstring& startStyle)
{
    m_modify = false;
    m_newName = newName;
    m_styleName = startStyle;
}

void CKaldMlineStyleNewModifyDialog::setModifyMode(const std::wstring& styleName)
{
    m_modify = true;
    m_newName.clear();
    m_styleName = styleName;
}

void CKaldMlineStyleNewModifyDialog::DoDataExchange(CDataExchange* dx)
{
    CDialog::DoDataExchange(dx);
    DDX_Control(dx, kElementList, m_elements);
    DDX_Control(dx, kFillColor, m_fillColor);
    DDX_Control(dx, kElementColor, m_elementColor);
    DDX_Control(dx, kLinetype, m_linetype);
    DDX_Control(dx, kOffset, m_offset);
    for (std::size_t i = 0; i < kFlagBoxes.size(); ++i)
        DDX_Control(dx, kFlagBoxes[i].first, m_flagBoxes[i]);
    DDX_Text(dx, kDescription, m_description);
    DDX_Text(dx, kStartAngle, m_startAngleText);
    DDX_Text(dx, kEndAngle, m_endAngleText);
    if (!dx->m_bSaveAndValidate)
        return;
    // The first field that fails keeps the focus; the rest are not checked.
    const std::pair<int, bool> checks[] = {
        {kOffset, isValidNumberText(m_offset.GetWindowText())},
        {kStartAngle, angleTextInRange(m_startAngleText)},
        {kEndAngle, angleTextInRange(m_endAngleText)},
    };
    for (const auto& [id, valid] : checks) {
        if (!valid) {
            QApplication::beep();
            GetDlgItem(id)->SetFocus();
            dx->Fail();
            return;
        }
    }
}

bool CKaldMlineStyleNewModifyDialog::OnInitDialog()
{
    CDialog::OnInitDialog();
    SetWindowText(std::wstring(kxmdKxResourceString(m_modify ? kModifyTitle : kNewTitle, L""))
                  + (m_modify ? m_styleName : m_newName));
    {
        const KxDbObjectPtr<KxDbDictionary> dictionary(m_dictionaryId, KxDb::kForRead);
        if (dictionary)
            dictionary->getAt(m_styleName.c_str(), m_styleId);
    }
    fillControls(m_styleId);
    // A new style copies a style of the drawing; without one there is
    // nothing to edit and nothing is added.
    if (!m_modify && !addStyleToDictionary(m_styleId)) {
        EndDialog(IDCANCEL);
        return true;
    }
    m_working = std::make_unique<KxDbMlineStyle>();
    m_working->initMlineStyle();
    {
        const KxDbObjectPtr<KxDbMlineStyle> edited(m_styleId, KxDb::kForRead);
        if (edited)
            m_working->set(*edited, false);
    }
    restorePlacement(*this, kNewModifyPlacement);
    SetIcon(GetOemAppIcon());
    return true;
}

bool CKaldMlineStyleNewModifyDialog::addStyleToDictionary(KxDbObjectId startId)
{
    const KxDbObjectPtr<KxDbDictionary> dictionary(m_dictionaryId, KxDb::kForWrite);
    const KxDbObjectPtr<KxDbMlineStyle> start(startId, KxDb::kForRead);
    if (!dictionary || !start)
        return false;
    auto style = std::make_unique<KxDbMlineStyle>();
    style->initMlineStyle();
    style->set(*start, true);
    style->setName(m_newName.c_str());
    KxDbObjectId added;
    if (dictionary->setAt(m_newName.c_str(), style.get(), added) != Kald::eOk)
        return false;
    style.release()->close();
    m_styleId = added;
    return true;
}

void CKaldMlineStyleNewModifyDialog::fillControls(KxDbObjectId styleId)
{
    const KxDbObjectPtr<KxDbMlineStyle> style(styleId, KxDb::kForRead);
    if (!style)
        return;
    m_description = style->description();
    const int flags = styleFlags(*style);
    for (std::size_t i = 0; i < kFlagBoxes.size(); ++i)
        m_flagBoxes[i].SetCheck(flags & kFlagBoxes[i].second ? BST_CHECKED : BST_UNCHECKED);
    m_fillColor.EnableWindow(style->filled());
    int fillRow = m_fillColor.FindItemByColor(style->fillColor());
    if (fillRow < 0) {
        m_fillColor.AddColorToMRU(style->fillColor());
        fillRow = m_fillColor.FindItemByColor(style->fillColor());
    }
    if (fillRow >= 0)
        m_fillColor.SetCurSel(fillRow);
    {
        const ShortVariableScope plainAngles(L"DIMZIN", 0);
        std::array<wchar_t, KXED_NUMBER_SIZE> text{};
        kxdbAngToS(style->startAngle(), 0, 2, text.data());
        m_startAngleText = text.data();
        kxdbAngToS(style->endAngle(), 0, 2, text.data());
        m_endAngleText = text.data();
    }
    CRect client;
    m_elements.GetClientRect(&client);
    const std::wstring width = std::to_wstring(client.Width() / 3);
    m_elements.SetHeadings(std::wstring(kxmdKxResourceString(1, L"Offset")) + L"," + width + L";"
                           + kxmdKxResourceString(3, L"Linetype") + L"," + width + L";"
                           + kxmdKxResourceString(2, L"Color") + L"," + width);
    m_elements.LoadColumnInfo();
    fillElementRows(*style);
    m_offset.SetWindowText(kZeroOffset);
    m_elements.Sort();
    UpdateData(false);
}

void CKaldMlineStyleNewModifyDialog::fillElementRows(const KxDbMlineStyle& style)
{
    const ShortVariableScope noTrailingZeros(L"DIMZIN", 8);
    for (int i = 0; i < style.numElements(); ++i) {
        double offset = 0.0;
        KxCmColor color;
        KxDbObjectId linetype;
        style.getElementAt(i, offset, color, linetype);
        std::array<wchar_t, KXED_NUMBER_SIZE> text{};
        kxdbRToS(offset, 2, 8, text.data());
        addRow(text.data(), color, linetypeName(linetype));
    }
}

int CKaldMlineStyleNewModifyDialog::addRow(const std::wstring& offset, const KxCmColor& color,
                                           const std::wstring& linetype)
{
    const int row = m_elements.AddItem({offset, linetype, colorText(color)});
    m_rowColors.push_back(std::make_unique<KxCmColor>(color));
    m_elements.SetItemData(row, m_rowColors.back().get());
    return row;
}

bool CKaldMlineStyleNewModifyDialog::OnNotify(int id, int code, int index)
{
    if (id == kElementList && code == LVN_ITEMCHANGED) {
        showRow();
        return true;
    }
    return CDialog::OnNotify(id, code, index);
}

bool CKaldMlineStyleNewModifyDialog::OnCommand(int id, int code)
{
    if (id == kOffset && code == EN_CHANGE) {
        onOffsetChanged();
        return true;
    }
    if (id == kOffset && code == EN_KILLFOCUS) {
        UpdateData(true);
        m_elements.Sort();
        pushRows(m_working.get());
        pushPreview();
        return true;
    }
    if ((id == kStartAngle || id == kEndAngle) && code == EN_KILLFOCUS) {
        onAnglesLeft();
        return true;
    }
    if (code == CBN_SELCHANGE && id == kElementColor) {
        onElementColor();
        return true;
    }
    if (code == CBN_SELCHANGE && id == kLinetype) {
        onElementLinetype();
        return true;
    }
    if (code == CBN_SELCHANGE && id == kFillColor) {
        KxCmColor color = m_fillColor.GetCurrentItemColor();
        color.setColorIndex(color.colorIndex());
        m_working->setFillColor(color);
        return true;
    }
    if (code != BN_CLICKED)
        return CDialog::OnCommand(id, code);
    if (id == kAdd) {
        addElement();
        return true;
    }
    if (id == kDelete) {
        deleteElement();
        return true;
    }
    if (std::any_of(kFlagBoxes.begin(), kFlagBoxes.end(), [id](const auto& box) { return box.first == id; })) {
        if (id == kFill)
            m_fillColor.EnableWindow(m_flagBoxes[0].GetCheck() == BST_CHECKED);
        onFlagsClicked();
        return true;
    }
    return CDialog::OnCommand(id, code);
}

void CKaldMlineStyleNewModifyDialog::enableElementControls(bool enable)
{
    for (const int id : {kDelete, kLinetype, kOffset, kElementColor})
        GetDlgItem(id)->EnableWindow(enable);
    if (m_elements.GetItemCount() == 1)
        GetDlgItem(kDelete)->EnableWindow(false);
}

void CKaldMlineStyleNewModifyDialog::showRow()
{
    const int row = m_elements.GetSelectedRow();
    if (row < 0) {
        enableElementControls(false);
        m_offset.SetWindowText(kZeroOffset);
        return;
    }
    enableElementControls(true);
    m_offset.SetWindowText(m_elements.GetItemText(row, kOffsetColumn));
    const std::wstring linetype = m_elements.GetItemText(row, kLinetypeColumn);
    for (int i = 0; i < m_linetype.GetCount(); ++i) {
        if (::wcsncasecmp(m_linetype.GetLBText(i).c_str(), linetype.c_str(), linetype.size()) == 0) {
            m_linetype.SetCurSel(i);
            break;
        }
    }
    const auto* color = static_cast<const KxCmColor*>(m_elements.GetItemData(row));
    std::wstring text = m_elements.GetItemText(row, kColorColumn);
    if (color && color->isByACI() && color->colorIndex() > 7) {
        std::array<wchar_t, 64> numbered{};
        std::swprintf(numbered.data(), numbered.size(), kxmdKxResourceString(kColorNumber, L"Color %d"),
                      color->colorIndex());
        text = numbered.data();
    }
    int entry = m_elementColor.FindStringExact(-1, text);
    if (entry < 0 && color) {
        m_elementColor.AddColorToMRU(*color);
        entry = m_elementColor.FindItemByColor(*color);
    }
    if (entry >= 0)
        m_elementColor.SetCurSel(entry);
}

int CKaldMlineStyleNewModifyDialog::checkedFlags() const
{
    int flags = 0;
    for (std::size_t i = 0; i < kFlagBoxes.size(); ++i) {
        if (m_flagBoxes[i].GetCheck() == BST_CHECKED)
            flags |= kFlagBoxes[i].second;
    }
    return flags;
}

void CKaldMlineStyleNewModifyDialog::onFlagsClicked()
{
    setStyleFlags(m_working.get(), checkedFlags());
    pushPreview();
}

void CKaldMlineStyleNewModifyDialog::onOffsetChanged()
{
    const int row = m_elements.GetSelectedRow();
    const std::wstring text = m_offset.GetWindowText();
    if (row >= 0 && isValidNumberText(text))
        m_elements.SetItemText(row, kOffsetColumn, text);
}

void CKaldMlineStyleNewModifyDialog::onAnglesLeft()
{
    if (!UpdateData(true) || !angleTextInRange(m_startAngleText) || !angleTextInRange(m_endAngleText))
        return;
    double start = 0.0;
    double end = 0.0;
    if (kxdbAngToF(m_startAngleText.c_str(), 0, &start) != RTNORM || kxdbAngToF(m_endAngleText.c_str(), 0, &end) != RTNORM)
        return;
    m_working->setStartAngle(start);
    m_working->setEndAngle(end);
    pushPreview();
}

void CKaldMlineStyleNewModifyDialog::onElementColor()
{
    const int row = m_elements.GetSelectedRow();
    if (row < 0)
        return;
    const KxCmColor color = m_elementColor.GetCurrentItemColor();
    m_elements.SetItemText(row, kColorColumn, colorText(color));
    if (auto* owned = static_cast<KxCmColor*>(m_elements.GetItemData(row)))
        *owned = color;
    pushRows(m_working.get());
    pushPreview();
}

void CKaldMlineStyleNewModifyDialog::onElementLinetype()
{
    const int row = m_elements.GetSelectedRow();
    const int entry = m_linetype.GetCurSel();
    if (row < 0 || entry < 0)
        return;
    m_elements.SetItemText(row, kLinetypeColumn, m_linetype.GetLBText(entry));
    pushRows(m_working.get());
    pushPreview();
}

void CKaldMlineStyleNewModifyDialog::addElement()
{
    if (m_elements.GetItemCount() >= kMaxElements) {
        AfxMessageBox(kxmdKxResourceString(kTooManyElements, L""), MB_OK);
        return;
    }
    m_elements.SetFocus();
    const std::wstring byLayer = kxdbGetReservedString(0, true);
    KxCmColor color;
    color.setColorIndex(256);
    const int row = addRow(L"0", color, byLayer);
    m_elements.SelectRow(row);
    enableElementControls(true);
    showRow();
    enableElementControls(true);
    m_elements.Sort();
    pushRows(m_working.get());
    pushPreview();
}

void CKaldMlineStyleNewModifyDialog::deleteElement()
{
    const int row = m_elements.GetSelectedRow();
    if (row < 0)
        return;
    const auto* color = static_cast<const KxCmColor*>(m_elements.GetItemData(row));
    m_elements.DeleteItem(row);
    std::erase_if(m_rowColors, [color](const auto& owned) { return owned.get() == color; });
    enableElementControls(m_elements.GetSelectedRow() >= 0);
    pushRows(m_working.get());
    pushPreview();
}

void CKaldMlineStyleNewModifyDialog::pushRows(KxDbMlineStyle* style)
{
    const int count = m_elements.GetItemCount();
    MlnElementTable table(std::size_t(std::max(count, 1)));
    for (int row = 0; row < count; ++row) {
        const auto i = std::size_t(row);
        table.offsets[i] = std::wcstod(m_elements.GetItemText(row, kOffsetColumn).c_str(), nullptr);
        table.linetypeNames[i] = storedLinetypeName(m_elements.GetItemText(row, kLinetypeColumn));
        KxCmColor color;
        if (const auto* owned = static_cast<const KxCmColor*>(m_elements.GetItemData(row)))
            color = *owned;
        table.colorIndices[i] = color.colorIndex();
        table.trueColors[i] = color.isByColor() ? std::int32_t(color.color() & 0xFFFFFF) : -1;
        if (color.dictionaryKeyLength() > 0)
            table.colorBookKeys[i] = std::wstring(color.getDictionaryKey());
    }
    applyMlnElementTable(style, table, count, workingDatabase());
}

void CKaldMlineStyleNewModifyDialog::pushPreview()
{
    if (!m_manager)
        return;
    fillPreviewRecord(m_manager->previewRecord(), *m_working);
    m_manager->invalidatePreview();
}

void CKaldMlineStyleNewModifyDialog::OnOK()
{
    if (!UpdateData(true))
        return;
    if (!angleTextInRange(m_startAngleText) || !angleTextInRange(m_endAngleText))
        return;
    const int flags = checkedFlags();
    {
        const KxDbObjectPtr<KxDbMlineStyle> style(m_styleId, KxDb::kForWrite);
        if (style) {
            setStyleFlags(style.get(), flags);
            style->setDescription(m_description.c_str());
            style->setFillColor(m_fillColor.GetCurrentItemColor());
            pushRows(style.get());
            double angle = 0.0;
            if (kxdbAngToF(m_startAngleText.c_str(), 0, &angle) == RTNORM)
                style->setStartAngle(angle);
            if (kxdbAngToF(m_endAngleText.c_str(), 0, &angle) == RTNORM)
                style->setEndAngle(angle);
        }
    }
    storePlacement(*this, kNewModifyPlacement);
    EndDialog(IDOK);
}

void CKaldMlineStyleNewModifyDialog::OnCancel()
{
    if (!m_modify && !removeStyle(m_dictionaryId, m_newName))
        return;
    EndDialog(IDCANCEL);
}

void CKaldMlineStyleNewModifyDialog::OnDestroy()
{
    m_rowColors.clear();
    CDialog::OnDestroy();
}

}  // namespace kdml
