#include "mleditdlg/MlineEditDialog.h"

#include "mledit/MleditDispatch.h"
#include "res/DialogItems.h"

#include "kxhost.h"

#include <QIcon>

#include <string>

namespace kdml {

namespace {

struct ToolButton {
    int tool;
    int controlId;
    const wchar_t* bitmap;  // the images are bitmap + "_UP", "_DOWN", "_FOCUS"
};

// In tool order; add vertex is control 5767 and delete vertex 5766.
constexpr std::array<ToolButton, 12> kButtons{{
    {kClosedCross, 5759, L"IDB_CLOSE_CROSS"},
    {kOpenCross, 5760, L"IDB_OPEN_CROSS"},
    {kMergedCross, 5761, L"IDB_MERGED_CROSS"},
    {kClosedTee, 5762, L"IDB_CLOSE_TREE"},
    {kOpenTee, 5763, L"IDB_OPEN_TREE"},
    {kMergedTee, 5764, L"IDB_MERGED_TREE"},
    {kCornerJoint, 5765, L"IDB_CORNER_JOINT"},
    {kAddVertex, 5767, L"IDB_ADD_VERTEX"},
    {kDeleteVertex, 5766, L"IDB_DELETE_VERTEX"},
    {kCutSingle, 5768, L"IDB_CUT_SINGLE"},
    {kCutAll, 5769, L"IDB_CUT_ALL"},
    {kWeldAll, 5770, L"IDB_WELD_ALL"},
}};

}  // namespace

CKaldMlineEditDialog::CKaldMlineEditDialog() : CDialog(kTemplateId)
{
    for (std::size_t i = 0; i < kButtons.size(); ++i) {
        const std::wstring name = kButtons[i].bitmap;
        const std::wstring focus = name + L"_FOCUS";
        // The focus image also serves when the button is disabled.
        m_toolButtons[i].LoadBitmaps((name + L"_UP").c_str(), (name + L"_DOWN").c_str(), focus.c_str(), focus.c_str());
    }
}

int CKaldMlineEditDialog::toolControlId(int tool)
{
    return tool >= 1 && tool <= int(kButtons.size()) ? kButtons[std::size_t(tool - 1)].controlId : 0;
}

bool CKaldMlineEditDialog::OnInitDialog()
{
    for (std::size_t i = 0; i < kButtons.size(); ++i)
        m_toolButtons[i].SubclassDlgItem(kButtons[i].controlId, this);
    SetIcon(GetOemAppIcon());
    return CDialog::OnInitDialog();
}

void CKaldMlineEditDialog::DoDataExchange(CDataExchange* dx)
{
    CDialog::DoDataExchange(dx);
    for (std::size_t i = 0; i < kButtons.size(); ++i)
        DDX_Control(dx, kButtons[i].controlId, m_toolButtons[i]);
    DDX_Control(dx, mleditItem::kPlainButton, m_plainButton);
}

bool CKaldMlineEditDialog::OnCommand(int id, int code)
{
    if (code == BN_CLICKED) {
        for (const ToolButton& button : kButtons) {
            if (button.controlId == id) {
                m_selectedTool = button.tool;
                OnOK();
                return true;
            }
        }
        if (id == mleditItem::kPlainButton) {
            m_selectedTool = kPlainButton;
            OnOK();
            return true;
        }
    }
    return CDialog::OnCommand(id, code);
}

}  // namespace kdml
