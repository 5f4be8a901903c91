#include "styledlg/MlineStyleNameDialogs.h"

#include "styledlg/StyleNameRules.h"
#include "ui/DialogPlacement.h"

#include "kxhost.h"

#include <QIcon>

#include <cwchar>

namespace kdml {

namespace {

constexpr int kMaxNameLength = 31;

enum Item : int {
    kNewName = 1035,
    kStartStyle = 1036,
    kRenameCurrent = 1059,
    kRenameNew = 1060,
    kRenameStyles = 1065,
};

// OK follows the naming rules for the name as it is now.
void enableOkForName(CDialog& dialog, const std::wstring& name, const CComboBox& existing)
{
    dialog.GetDlgItem(IDOK)->EnableWindow(isAcceptableStyleName(name, existing));
}

}  // namespace

CKaldMlineStyleNewDialog::CKaldMlineStyleNewDialog(CWnd* parent) : CDialog(kTemplateId, parent)
{
    m_nameEdit.setMaxChars(kMaxNameLength);
}

void CKaldMlineStyleNewDialog::DoDataExchange(CDataExchange* dx)
{
    CDialog::DoDataExchange(dx);
    DDX_Control(dx, kNewName, m_nameEdit);
    DDX_Control(dx, kStartStyle, m_styles);
    DDX_Text(dx, kNewName, m_newName);
    if (dx->m_bSaveAndValidate)
        m_startStyle = m_styles.GetWindowText();
}

bool CKaldMlineStyleNewDialog::OnInitDialog()
{
    CDialog::OnInitDialog();
    addStyleNames(m_styles, m_dictionaryId);
    int start = -1;
    for (int row = 0; row < m_styles.GetCount() && start < 0; ++row) {
        const std::wstring text = m_styles.GetLBText(row);
        if (::wcsncasecmp(text.c_str(), m_startStyle.c_str(), m_startStyle.size()) == 0)
            start = row;
    }
    if (start >= 0)
        m_styles.SetCurSel(start);
    else
        m_styles.SetWindowText(m_startStyle);
    restorePlacement(*this, kNewStylePlacement);
    SetIcon(GetOemAppIcon());
    return true;
}

bool CKaldMlineStyleNewDialog::OnCommand(int id, int code)
{
    if (id == kNewName && code == EN_CHANGE) {
        if (m_nameEdit.onTextChanged())
            enableOkForName(*this, m_nameEdit.GetWindowText(), m_styles);
        return true;
    }
    return CDialog::OnCommand(id, code);
}

void CKaldMlineStyleNewDialog::OnOK()
{
    if (!UpdateData(true))
        return;
    storePlacement(*this, kNewStylePlacement);
    EndDialog(IDOK);
}

CKaldMlineStyleRenameDialog::CKaldMlineStyleRenameDialog(CWnd* parent) : CDialog(kTemplateId, parent)
{
    m_nameEdit.setMaxChars(kMaxNameLength);
}

void CKaldMlineStyleRenameDialog::DoDataExchange(CDataExchange* dx)
{
    CDialog::DoDataExchange(dx);
    DDX_Control(dx, kRenameNew, m_nameEdit);
    DDX_Control(dx, kRenameStyles, m_styles);
    DDX_Text(dx, kRenameCurrent, m_currentName);
    DDX_Text(dx, kRenameNew, m_newName);
}

bool CKaldMlineStyleRenameDialog::OnInitDialog()
{
    CDialog::OnInitDialog();
    addStyleNames(m_styles, m_dictionaryId);
    m_styles.SetCurSel(0);
    restorePlacement(*this, kRenamePlacement);
    SetIcon(GetOemAppIcon());
    return true;
}

bool CKaldMlineStyleRenameDialog::OnCommand(int id, int code)
{
    if (id == kRenameNew && code == EN_CHANGE) {
        if (m_nameEdit.onTextChanged())
            enableOkForName(*this, m_nameEdit.GetWindowText(), m_styles);
        return true;
    }
    return CDialog::OnCommand(id, code);
}

void CKaldMlineStyleRenameDialog::OnOK()
{
    if (!UpdateData(true))
        return;
    storePlacement(*this, kRenamePlacement);
    EndDialog(IDOK);
}

}  // namespace kdml
