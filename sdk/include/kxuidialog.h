// Dialogs of the host's user-interface class library. A dialog object may be
// made on any thread; DoModal builds its window on the GUI thread from the
// template of its id in the current resource library (items found by their
// dialog item id), runs OnInitDialog, the notification handlers and the data
// exchange there while the caller waits, and destroys the window before it
// returns. While a script feeds input the dialog takes its actions from the
// script instead of a person.
#pragma once

#include "kxuiwnd.h"

#include <memory>
#include <string>
#include <vector>

class CDialog;

class CDataExchange {
public:
    CDataExchange(CDialog* dialog, bool saveAndValidate) : m_pDlgWnd(dialog), m_bSaveAndValidate(saveAndValidate) {}
    // Marks the exchange as failed: UpdateData then returns false.
    void Fail() { m_failed = true; }
    bool failed() const { return m_failed; }

    CDialog* m_pDlgWnd;
    bool m_bSaveAndValidate;

private:
    bool m_failed = false;
};

class CDialog : public CWnd {
public:
    explicit CDialog(unsigned templateId, CWnd* parent = nullptr);
    ~CDialog() override;

    unsigned templateId() const { return m_templateId; }

    // Runs the dialog modally and returns the value EndDialog was given, or
    // -1 when the template cannot be loaded. An exception thrown by a
    // handler ends the dialog (its window is destroyed) and is thrown again
    // from here.
    virtual int DoModal();
    // Ends the modal run with result.
    void EndDialog(int result);

    // A window object for item id, owned by the dialog and valid while its
    // window exists; null when there is no such item.
    CWnd* GetDlgItem(int id);
    // Runs DoDataExchange: from the items into the members when
    // saveAndValidate, else from the members into the items.
    bool UpdateData(bool saveAndValidate = true);

    // Called once the window and its items exist: runs UpdateData(false).
    virtual bool OnInitDialog();
    virtual void DoDataExchange(CDataExchange* dx);
    // OK: UpdateData(true), then EndDialog(IDOK) when it succeeded.
    virtual void OnOK();
    // Cancel: EndDialog(IDCANCEL).
    virtual void OnCancel();
    // A control notification; returns true when handled. The default
    // handles the clicks of IDOK and IDCANCEL (also Enter and Escape).
    virtual bool OnCommand(int id, int code);
    // A list-view notification: code, and the row (LVN_ITEMCHANGED,
    // NM_DBLCLK) or column (LVN_COLUMNCLICK) it concerns.
    virtual bool OnNotify(int id, int code, int index);
    // The client area changed size (type SIZE_RESTORED or SIZE_MINIMIZED).
    virtual void OnSize(int type, int cx, int cy);
    // The user drags edge: rect is the proposed window rectangle (screen
    // coordinates), which the handler may change.
    virtual void OnSizing(int edge, CRect* rect);
    // The window is about to be destroyed.
    virtual void OnDestroy();
    // Sees every keyboard message for the dialog or any of its items before
    // they do; returns true when it handled the message, which then goes no
    // further. The default handles nothing.
    virtual bool PreTranslateMessage(MSG* msg);

private:
    unsigned m_templateId;
    CWnd* m_parentWnd;
    std::vector<std::unique_ptr<CWnd>> m_items;
};

// Data exchange helpers for DoDataExchange.
void DDX_Control(CDataExchange* dx, int id, CWnd& control);
void DDX_Text(CDataExchange* dx, int id, std::wstring& value);
void DDX_Check(CDataExchange* dx, int id, int& value);
