#include "styledlg/MlineStyleNameDialogs.h"

#include "res/DialogItems.h"
#include "styledlg/StyleNameRules.h"

#include "kxhost.h"

#include <QIcon>

#include <algorithm>
#include <cwchar>

namespace kdml {

namespace {

constexpr int kMaxNameLength = 31;

using namespace styleNameItem;

}  // namespace

CKaldMlineStyleNameDialog::CKaldMlineStyleNameDialog(unsigned templateId, int nameItem, int stylesItem,
                                                     const PlacementKeys& placement, CWnd* parent)
    : CDialog(templateId, parent), m_nameItem(nameItem), m_stylesItem(stylesItem), m_placement(placement)
{
    m_nameEdit.setMaxChars(kMaxNameLength);
}

void CKaldMlineStyleNameDialog::DoDataExchange(CDataExchange* dx)
{
    CDialog::DoDataExchange(dx);
    DDX_Control(dx, m_nameItem, m_nameEdit);
    DDX_Control(dx, m_stylesItem, m_styles);
    DDX_Text(dx, m_nameItem, m_newName);
}

bool CKaldMlineStyleNameDialog::OnInitDialog()
{
    CDialog::OnInitDialog();
    addStyleNames(m_styles, m_dictionaryId);
    restorePlacement(*this, m_placement);
    SetIcon(GetOemAppIcon());
    return true;
}

bool CKaldMlineStyleNameDialog::OnCommand(int id, int code)
{
    if (id == m_nameItem && code == EN_CHANGE) {
        if (m_nameEdit.onTextChanged())
            GetDlgItem(IDOK)->EnableWindow(isAcceptableStyleName(m_nameEdit.GetWindowText(), m_styles));
        return true;
    }
    return CDialog::OnCommand(id, code);
}

void CKaldMlineStyleNameDialog::OnOK()
{
    if (!UpdateData(true))
        return;
    storePlacement(*this, m_placement);
    EndDialog(IDOK);
}

CKaldMlineStyleNewDialog::CKaldMlineStyleNewDialog(CWnd* parent)
    : CKaldMlineStyleNameDialog(kTemplateId, kNewName, kStartStyle, kNewStylePlacement, parent)
{
}

void CKaldMlineStyleNewDialog::DoDataExchange(CDataExchange* dx)
{
    CKaldMlineStyleNameDialog::DoDataExchange(dx);
    if (dx->m_bSaveAndValidate)
        m_startStyle = m_styles.GetWindowText();
}

bool CKaldMlineStyleNewDialog::OnInitDialog()
{
    CKaldMlineStyleNameDialog::OnInitDialog();
    int start = -1;
    for (int row = 0; row < m_styles.GetCount() && start < 0; ++row) {
        const std::wstring text = m_styles.GetLBText(row);
        if (::wcsncasecmp(text.c_str(), m_startStyle.c_str(), m_startStyle.size()) == 0)
            start = row;
    }
    // The combo box offers the drawing's styles only: without a style of
    // that beginning, the first is the one to start with.
    m_styles.SetCurSel(std::max(start, 0));
    return true;
}

CKaldMlineStyleRenameDialog::CKaldMlineStyleRenameDialog(CWnd* parent)
    : CKaldMlineStyleNameDialog(kTemplateId, kRenameNew, kRenameStyles, kRenamePlacement, parent)
{
}

void CKaldMlineStyleRenameDialog::DoDataExchange(CDataExchange* dx)
{
    CKaldMlineStyleNameDialog::DoDataExchange(dx);
    DDX_Text(dx, kRenameCurrent, m_currentName);
}

bool CKaldMlineStyleRenameDialog::OnInitDialog()
{
    CKaldMlineStyleNameDialog::OnInitDialog();
    m_styles.SetCurSel(0);
    return true;
}

}  // namespace kdml
