#include "styledlg/MlineStyleDialog.h"

#include "host/WorkingDatabase.h"
#include "mlnfile/MlnStyleSaver.h"
#include "res/DialogItems.h"
#include "styledlg/MlineStyleLoadDialog.h"
#include "styledlg/MlineStyleNameDialogs.h"
#include "styledlg/MlineStyleNewModifyDialog.h"
#include "styledlg/StyleUse.h"
#include "ui/DialogPlacement.h"

#include "kxcrash.h"
#include "kxdb.h"
#include "kxed.h"
#include "kxhost.h"
#include "kxstring.h"
#include "kxuimsgbox.h"

#include <QIcon>

#include <cwchar>

namespace kdml {

namespace {

using namespace styleManagerItem;

constexpr unsigned kDeleteQuestion = 13;
constexpr const wchar_t* kStandard = L"STANDARD";

bool sameName(const std::wstring& a, const std::wstring& b)
{
    return ::wcscasecmp(a.c_str(), b.c_str()) == 0;
}

bool startsWith(const std::wstring& text, const std::wstring& start)
{
    return text.size() >= start.size() && ::wcsncasecmp(text.c_str(), start.c_str(), start.size()) == 0;
}

}  // namespace

CKaldMlineStyleDialog::CKaldMlineStyleDialog() : CDialog(kTemplateId), m_preview(m_record) {}

void CKaldMlineStyleDialog::DoDataExchange(CDataExchange* dx)
{
    CDialog::DoDataExchange(dx);
    DDX_Control(dx, kStyleList, m_list);
    DDX_Control(dx, kPreview, m_preview);
}

bool CKaldMlineStyleDialog::OnInitDialog()
{
    CDialog::OnInitDialog();
    SetIcon(GetOemAppIcon());
    if (!findStyleDictionary(m_dictionary))
        return false;

    kxresbuf rb;
    if (kxedGetVar(L"CMLSTYLE", &rb) == RTNORM) {
        m_currentName = rb.resval.rstring ? rb.resval.rstring : L"";
        kxutDelBuffer(rb.resval.rstring);
    }

    {
        const KxDbObjectPtr<KxDbDictionary> dictionary(m_dictionary.id, KxDb::kForRead);
        if (dictionary) {
            for (auto it = dictionary->newIterator(); !it->done(); it->next())
                m_list.AddString(it->name());
        }
    }
    // CMLSTYLE may spell the name in other capitals (MLINE writes it in
    // capitals); the current style shows as the list spells it.
    const int currentRow = m_list.FindStringExact(-1, m_currentName);
    GetDlgItem(kCurrentName)->SetWindowText(currentRow >= 0 ? m_list.GetText(currentRow) : m_currentName);
    selectStartingWith(m_currentName);

    m_resizer.addItem(GetDlgItem(IDOK), CDlgItemResizer::kRight | CDlgItemResizer::kBottom);
    m_resizer.addItem(GetDlgItem(IDCANCEL), CDlgItemResizer::kRight | CDlgItemResizer::kBottom);
    m_resizer.addItem(&m_list, CDlgItemResizer::kLeft | CDlgItemResizer::kRight);
    for (const int id : {kSetCurrent, kNew, kModify, kRename, kDelete, kLoad, kSave})
        m_resizer.addItem(GetDlgItem(id), CDlgItemResizer::kRight | CDlgItemResizer::kTop);
    m_resizer.addItem(GetDlgItem(kDescriptionLabel), CDlgItemResizer::kLeft | CDlgItemResizer::kRight);
    m_resizer.addItem(GetDlgItem(kDescription), CDlgItemResizer::kLeft | CDlgItemResizer::kRight);
    m_resizer.addItem(&m_preview, CDlgItemResizer::kLeft | CDlgItemResizer::kRight | CDlgItemResizer::kTop
                                      | CDlgItemResizer::kBottom);

    restorePlacement(*this, kStyleManagerPlacement, true);
    m_resizer.layout(*this);
    refresh();
    return true;
}

bool CKaldMlineStyleDialog::OnCommand(int id, int code)
{
    if (id == kStyleList && code == LBN_SELCHANGE) {
        refresh();
        return true;
    }
    if (id == kStyleList && code == LBN_DBLCLK) {
        if (selectedName() != m_currentName)
            setCurrent(false);
        return true;
    }
    if (code != BN_CLICKED)
        return CDialog::OnCommand(id, code);
    switch (id) {
    case kSetCurrent: setCurrent(true); return true;
    case kNew: createStyle(); return true;
    case kModify: modifyStyle(); return true;
    case kRename: renameStyle(); return true;
    case kDelete: deleteStyle(); return true;
    case kLoad: loadStyle(); return true;
    case kSave: saveMlnStyle(m_dictionary.id, selectedName().c_str()); return true;
    default: return CDialog::OnCommand(id, code);
    }
}

void CKaldMlineStyleDialog::OnSize(int type, int cx, int cy)
{
    CDialog::OnSize(type, cx, cy);
    if (GetSafeHwnd() && IsWindowVisible())
        m_resizer.layout(*this);
}

void CKaldMlineStyleDialog::OnSizing(int edge, CRect* rect)
{
    CDialog::OnSizing(edge, rect);
    m_resizer.limitSizing(*this, rect);
    refreshPreview();
}

void CKaldMlineStyleDialog::OnOK()
{
    storePlacement(*this, kStyleManagerPlacement);
    EndDialog(IDOK);
}

std::wstring CKaldMlineStyleDialog::selectedName() const
{
    const int row = m_list.GetCurSel();
    return row < 0 ? std::wstring() : m_list.GetText(row);
}

void CKaldMlineStyleDialog::enableItem(int id, bool enable)
{
    if (CWnd* item = GetDlgItem(id))
        item->EnableWindow(enable);
}

void CKaldMlineStyleDialog::selectStartingWith(const std::wstring& name)
{
    for (int row = 0; row < m_list.GetCount(); ++row) {
        if (startsWith(m_list.GetText(row), name)) {
            m_list.SetCurSel(row);
            return;
        }
    }
}

CKaldMlineStyleDialog::Allowed CKaldMlineStyleDialog::allowedFor(const std::wstring& name) const
{
    if (name.empty())
        return {};
    const bool current = sameName(name, m_currentName);
    const bool inUse = isStyleInUse(workingDatabase(), name.c_str());
    return {!current, !current && !inUse, !sameName(name, kStandard) && !inUse, !inUse};
}

void CKaldMlineStyleDialog::refresh()
{
    const std::wstring name = selectedName();
    const Allowed allowed = allowedFor(name);
    enableItem(kSetCurrent, allowed.setCurrent);
    enableItem(kDelete, allowed.remove);
    enableItem(kModify, allowed.modify);
    enableItem(kRename, allowed.rename);
    KxDbObjectId styleId;
    {
        const KxDbObjectPtr<KxDbDictionary> dictionary(m_dictionary.id, KxDb::kForRead);
        if (dictionary)
            dictionary->getAt(name.c_str(), styleId);
    }
    showStyle(styleId, true);
    refreshPreview();
}

void CKaldMlineStyleDialog::refreshPreview()
{
    const KxDbObjectId styleId = searchDictionary(m_dictionary.name, selectedName());
    if (!styleId.isNull())
        showStyle(styleId, false);
}

void CKaldMlineStyleDialog::showStyle(KxDbObjectId styleId, bool withDescription)
{
    const KxDbObjectPtr<KxDbMlineStyle> style(styleId, KxDb::kForRead);
    if (!style)
        return;
    if (withDescription)
        GetDlgItem(kDescription)->SetWindowText(style->description());
    fillPreviewRecord(m_record, *style);
    m_preview.invalidatePreview();
}

void CKaldMlineStyleDialog::setCurrent(bool fromButton)
{
    const std::wstring name = selectedName();
    if (fromButton && !allowedFor(name).setCurrent) {
        refresh();
        return;
    }
    kxresbuf rb;
    rb.restype = RTSTR;
    rb.resval.rstring = kxutNewString(name.c_str());
    if (kxedSetVar(L"CMLSTYLE", &rb) == RTNORM) {
        GetDlgItem(kCurrentName)->SetWindowText(name);
        enableItem(kSetCurrent, false);
        m_currentName = name;
        refresh();
    }
    kxutDelBuffer(rb.resval.rstring);
    if (fromButton)
        GetDlgItem(kNew)->SetFocus();
}

void CKaldMlineStyleDialog::createStyle()
{
    CKaldMlineStyleNewDialog names(this);
    names.setStartStyle(selectedName());
    names.setDictionary(m_dictionary.id);
    if (names.DoModal() != IDOK)
        return;
    CKaldMlineStyleNewModifyDialog editor(this);
    editor.setNewMode(names.newName(), names.startStyle());
    editor.setDictionary(m_dictionary.id);
    if (editor.DoModal() == IDOK) {
        m_list.AddString(names.newName());
        selectStartingWith(names.newName());
        refresh();
    } else {
        refreshPreview();
    }
}

void CKaldMlineStyleDialog::modifyStyle()
{
    if (!allowedFor(selectedName()).modify) {
        refresh();
        return;
    }
    CKaldMlineStyleNewModifyDialog editor(this);
    editor.setModifyMode(selectedName());
    editor.setDictionary(m_dictionary.id);
    KxCrashRecorder* recorder = kaldGetCrashRecorder();
    if (!recorder)
        return;
    int result = 0;
    if (!recorder->runModal(&editor, &result)) {
        recorder->runModalFallback(&editor);
        refreshPreview();
    } else if (result == IDOK) {
        refresh();
    } else {
        refreshPreview();
    }
}

void CKaldMlineStyleDialog::renameStyle()
{
    if (m_list.GetCount() == 0)
        return;
    const std::wstring oldName = selectedName();
    if (!allowedFor(oldName).rename) {
        refresh();
        return;
    }
    CKaldMlineStyleRenameDialog names(this);
    names.setCurrentName(oldName);
    names.setDictionary(m_dictionary.id);
    if (names.DoModal() != IDOK || m_list.FindStringExact(-1, names.newName()) >= 0)
        return;
    const std::wstring newName = names.newName();
    {
        const KxDbObjectPtr<KxDbDictionary> dictionary(m_dictionary.id, KxDb::kForWrite);
        if (!dictionary)
            return;
        KxDbObjectId styleId;
        dictionary->getAt(oldName.c_str(), styleId);
        {
            const KxDbObjectPtr<KxDbMlineStyle> style(styleId, KxDb::kForWrite);
            if (!style)
                return;
            style->setName(newName.c_str());
        }
        dictionary->setName(oldName.c_str(), newName.c_str());
        m_list.DeleteString(m_list.GetCurSel());
        m_list.AddString(newName);
        selectStartingWith(newName);
        if (sameName(oldName, m_currentName)) {
            m_currentName = newName;
            GetDlgItem(kCurrentName)->SetWindowText(newName);
        }
    }
    refresh();
}

void CKaldMlineStyleDialog::deleteStyle()
{
    if (m_list.GetCount() == 0)
        return;
    const int row = m_list.GetCurSel();
    const std::wstring name = selectedName();
    if (row < 0 || sameName(name, kStandard))
        return;
    if (!allowedFor(name).remove) {
        refresh();
        return;
    }
    const std::wstring question = std::wstring(kxmdKxResourceString(kDeleteQuestion, L"Delete the multiline style "))
                                  + L"\"" + name + L"\"?";
    if (AfxMessageBox(question.c_str(), MB_YESNO | MB_ICONQUESTION) != IDYES)
        return;
    removeStyle(m_dictionary.id, name);
    m_list.DeleteString(row);
    m_list.SetCurSel(row > 0 ? row - 1 : 0);
    m_list.SetFocus();
    refresh();
}

void CKaldMlineStyleDialog::loadStyle()
{
    CKaldMlineStyleLoadDialog loader(this);
    loader.setDictionary(m_dictionary.id);
    if (loader.DoModal() == IDOK && !loader.styleName().empty()
        && m_list.FindStringExact(-1, loader.styleName()) < 0)
        m_list.AddString(loader.styleName());
    const int standard = m_list.FindStringExact(-1, kStandard);
    if (standard >= 0) {
        m_list.SetCurSel(standard);
        refresh();
    }
}

}  // namespace kdml
