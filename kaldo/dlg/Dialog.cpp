// Dialogs: the modal run on the GUI thread and the data exchange.
#include "kaldo/dlg/DialogItems.h"
#include "kaldo/dlg/DialogRun.h"
#include "kaldo/dlg/ResourceFiles.h"
#include "kaldo/util/GuiThread.h"
#include "kxuidialog.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QSignalBlocker>

CDialog::CDialog(unsigned templateId, CWnd* parent) : m_templateId(templateId), m_parentWnd(parent) {}

CDialog::~CDialog() = default;

namespace {

// Nested dialogs open over the dialog they come from.
QWidget* ownerWidget(const CWnd* parent)
{
    if (parent && parent->GetSafeHwnd())
        return parent->GetSafeHwnd();
    if (QWidget* modal = QApplication::activeModalWidget())
        return modal;
    return QApplication::activeWindow();
}

}  // namespace

int CDialog::DoModal()
{
    int result = -1;
    // Widgets need the application of a program with a user interface.
    if (!qobject_cast<QApplication*>(QCoreApplication::instance()))
        return result;
    kaldo::runOnGuiThread([&] {
        std::unique_ptr<QDialog> window = kaldo::dlg::loadDialogTemplate(m_templateId, ownerWidget(m_parentWnd));
        if (!window)
            return;
        // The window exists with its frame before OnInitDialog, so that
        // window rectangles measured there are those of the shown window.
        window->winId();
        std::exception_ptr failure;
        Attach(window.get());
        {
            kaldo::dlg::DialogRun run(*this, *window);
            result = run.run();
            run.guard([this] { OnDestroy(); });
            failure = run.failure();
        }
        Detach();
        m_items.clear();
        window.reset();
        if (failure)
            std::rethrow_exception(failure);
    });
    return result;
}

void CDialog::EndDialog(int result)
{
    if (auto* window = qobject_cast<QDialog*>(GetSafeHwnd()))
        window->done(result);
}

CWnd* CDialog::GetDlgItem(int id)
{
    for (const auto& item : m_items) {
        if (item->GetDlgCtrlID() == id)
            return item.get();
    }
    auto item = std::make_unique<CWnd>();
    if (!item->SubclassDlgItem(id, this))
        return nullptr;
    return m_items.emplace_back(std::move(item)).get();
}

bool CDialog::UpdateData(bool saveAndValidate)
{
    CDataExchange dx(this, saveAndValidate);
    DoDataExchange(&dx);
    return !dx.failed();
}

bool CDialog::OnInitDialog()
{
    UpdateData(false);
    return true;
}

void CDialog::DoDataExchange(CDataExchange*) {}

void CDialog::OnOK()
{
    if (UpdateData(true))
        EndDialog(IDOK);
}

void CDialog::OnCancel()
{
    EndDialog(IDCANCEL);
}

bool CDialog::OnCommand(int id, int code)
{
    if (code != BN_CLICKED)
        return false;
    if (id == IDOK)
        OnOK();
    else if (id == IDCANCEL)
        OnCancel();
    else
        return false;
    return true;
}

bool CDialog::OnNotify(int, int, int)
{
    return false;
}

void CDialog::OnSize(int, int, int) {}

void CDialog::OnSizing(int, CRect*) {}

void CDialog::OnDestroy() {}

bool CDialog::PreTranslateMessage(MSG*)
{
    return false;
}

void DDX_Control(CDataExchange* dx, int id, CWnd& control)
{
    if (dx && !control.GetSafeHwnd())
        control.SubclassDlgItem(id, dx->m_pDlgWnd);
}

void DDX_Text(CDataExchange* dx, int id, std::wstring& value)
{
    CWnd* item = dx ? dx->m_pDlgWnd->GetDlgItem(id) : nullptr;
    if (!item)
        return;
    if (dx->m_bSaveAndValidate)
        value = item->GetWindowText();
    else
        item->SetWindowText(value);
}

void DDX_Check(CDataExchange* dx, int id, int& value)
{
    auto* button = dx ? qobject_cast<QAbstractButton*>(kaldo::dlg::findItem(dx->m_pDlgWnd->GetSafeHwnd(), id)) : nullptr;
    if (!button)
        return;
    if (dx->m_bSaveAndValidate) {
        value = button->isChecked() ? BST_CHECKED : BST_UNCHECKED;
    } else {
        const QSignalBlocker quiet(button);
        button->setChecked(value == BST_CHECKED);
    }
}
