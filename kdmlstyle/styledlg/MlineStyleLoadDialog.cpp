#include "styledlg/MlineStyleLoadDialog.h"

#include "host/WorkingDatabase.h"
#include "mlnfile/MlnReader.h"
#include "mlnfile/MlnStyleLoader.h"
#include "res/DialogItems.h"
#include "styledlg/StyleUse.h"
#include "ui/DialogPlacement.h"

#include "kxed.h"
#include "kxhost.h"
#include "kxstring.h"
#include "kxuiapp.h"
#include "kxuimsgbox.h"

#include <QIcon>

#include <array>
#include <filesystem>
#include <system_error>

namespace kdml {

namespace {

using namespace styleLoadItem;

constexpr const wchar_t* kSettings = L"Settings";
constexpr const wchar_t* kLastFileKey = L"MlstyleFile";
constexpr const wchar_t* kDefaultFile = L"KALDO.mln";
constexpr unsigned kInUseMessage = 16;
constexpr unsigned kBrowseTitle = 26;
// Open mode of the host's file dialog.
constexpr int kOpenDialogFlags = 0x18180102;

// The default style file in the host's Support folder (the host's file
// search looks there first); the bare name when the host has none.
std::wstring defaultStyleFile()
{
    std::array<wchar_t, KXED_TEXT_SIZE> found{};
    return kxedFindFile(kDefaultFile, found.data(), found.size()) == RTNORM ? std::wstring(found.data())
                                                                           : std::wstring(kDefaultFile);
}

}  // namespace

CKaldMlineStyleLoadDialog::CKaldMlineStyleLoadDialog(CWnd* parent) : CDialog(kTemplateId, parent) {}

void CKaldMlineStyleLoadDialog::DoDataExchange(CDataExchange* dx)
{
    CDialog::DoDataExchange(dx);
    DDX_Control(dx, kStyleList, m_list);
}

bool CKaldMlineStyleLoadDialog::OnInitDialog()
{
    CDialog::OnInitDialog();
    GetDlgItem(kMessage)->SetWindowText(L"");
    const std::wstring stored = AfxGetApp()->GetProfileString(kSettings, kLastFileKey, L"");
    if (!stored.empty()) {
        GetDlgItem(kFileName)->SetWindowText(stored);
        listFileStyles(stored);
    } else {
        GetDlgItem(kFileName)->SetWindowText(kDefaultFile);
        listFileStyles(defaultStyleFile());
    }
    restorePlacement(*this, kLoadDialogPlacement);
    SetIcon(GetOemAppIcon());
    GetDlgItem(IDOK)->EnableWindow(false);
    return true;
}

void CKaldMlineStyleLoadDialog::listFileStyles(const std::wstring& path)
{
    std::wstring problem;
    const std::vector<std::wstring> names = listMlnStyleNames(path.c_str(), &problem);
    if (!problem.empty())
        AfxMessageBox(problem.c_str(), MB_OK | MB_ICONEXCLAMATION);
    std::error_code missing;
    if (!problem.empty() || !std::filesystem::exists(std::filesystem::path(path), missing))
        return;
    m_list.ResetContent();
    for (const std::wstring& name : names)
        m_list.AddString(name);
    GetDlgItem(kFileName)->SetWindowText(path);
    m_path = path;
    if (!names.empty())
        GetDlgItem(IDOK)->EnableWindow(false);
}

bool CKaldMlineStyleLoadDialog::OnCommand(int id, int code)
{
    if (id == kBrowse && code == BN_CLICKED) {
        browse();
        return true;
    }
    if (id == kStyleList && code == LBN_SELCHANGE) {
        GetDlgItem(IDOK)->EnableWindow(m_list.GetCurSel() >= 0);
        return true;
    }
    if (id == kStyleList && code == LBN_DBLCLK) {
        OnOK();
        return true;
    }
    return CDialog::OnCommand(id, code);
}

void CKaldMlineStyleLoadDialog::browse()
{
    const std::wstring start = defaultStyleFile();
    wchar_t* chosen = nullptr;
    int preset = 0;
    if (getFileNameByFileDialog(kxmdKxResourceString(kBrowseTitle, L"Load Multiline Style From File"),
                                start.c_str(), L"mln", kOpenDialogFlags, chosen, nullptr, &preset, nullptr)
            != 0
        || !chosen)
        return;
    const std::wstring path = chosen;
    kald_free(chosen);
    listFileStyles(path);
    AfxGetApp()->WriteProfileString(kSettings, kLastFileKey, path.c_str());
}

void CKaldMlineStyleLoadDialog::OnOK()
{
    const int row = m_list.GetCurSel();
    if (row < 0)
        return;
    m_name = m_list.GetText(row);
    if (isStyleInUse(workingDatabase(), m_name.c_str())) {
        GetDlgItem(kMessage)->SetWindowText(kxmdKxResourceString(kInUseMessage, L""));
        return;
    }
    if (!m_name.empty())
        m_styleId = loadMlnStyleIntoDictionary(m_dictionaryId, m_name.c_str(), m_path.c_str());
    storePlacement(*this, kLoadDialogPlacement);
    EndDialog(IDOK);
}

bool CKaldMlineStyleLoadDialog::PreTranslateMessage(MSG* msg)
{
    const bool key = msg->message >= WM_KEYFIRST && msg->message <= WM_KEYLAST;
    if (key && (msg->wParam == VK_RETURN || msg->wParam == VK_SPACE)) {
        OnCancel();
        return true;
    }
    return CDialog::PreTranslateMessage(msg);
}

}  // namespace kdml
