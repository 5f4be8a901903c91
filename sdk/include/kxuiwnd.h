// Windows of the host's user-interface class library: the common base of
// dialogs and their controls. A window object is a plain C++ object; its
// widget exists only while it is bound (Attach, SubclassDlgItem), which for
// dialog items is the span of the dialog's modal run on the GUI thread.
#pragma once

#include <memory>
#include <string>
#include <vector>

class QIcon;
class QWidget;

// Item ids of the usual buttons, which are also the results of modal runs.
inline constexpr int IDOK = 1;
inline constexpr int IDCANCEL = 2;
inline constexpr int IDYES = 6;
inline constexpr int IDNO = 7;

// Notification codes a dialog receives in OnCommand (controls) and OnNotify
// (list views and their headers).
inline constexpr int BN_CLICKED = 0;
inline constexpr int EN_KILLFOCUS = 0x0200;
inline constexpr int EN_CHANGE = 0x0300;
inline constexpr int LBN_SELCHANGE = 1;
inline constexpr int LBN_DBLCLK = 2;
inline constexpr int CBN_SELCHANGE = 1;
inline constexpr int CBN_EDITCHANGE = 5;
inline constexpr int NM_DBLCLK = -3;
inline constexpr int LVN_ITEMCHANGED = -101;
inline constexpr int LVN_COLUMNCLICK = -108;

// Check states of check boxes and radio buttons.
inline constexpr int BST_UNCHECKED = 0;
inline constexpr int BST_CHECKED = 1;

// The edge being dragged (OnSizing) and the kind of a size change (OnSize).
inline constexpr int WMSZ_LEFT = 1;
inline constexpr int WMSZ_RIGHT = 2;
inline constexpr int WMSZ_TOP = 3;
inline constexpr int WMSZ_TOPLEFT = 4;
inline constexpr int WMSZ_TOPRIGHT = 5;
inline constexpr int WMSZ_BOTTOM = 6;
inline constexpr int WMSZ_BOTTOMLEFT = 7;
inline constexpr int WMSZ_BOTTOMRIGHT = 8;
inline constexpr int SIZE_RESTORED = 0;
inline constexpr int SIZE_MINIMIZED = 1;

// SetWindowPos flags.
inline constexpr unsigned SWP_NOSIZE = 0x1;
inline constexpr unsigned SWP_NOMOVE = 0x2;
inline constexpr unsigned SWP_NOZORDER = 0x4;

// Keyboard messages, as a dialog's PreTranslateMessage sees them: the key
// went down or came up, with its virtual-key code.
inline constexpr unsigned WM_KEYFIRST = 0x0100;
inline constexpr unsigned WM_KEYDOWN = 0x0100;
inline constexpr unsigned WM_KEYUP = 0x0101;
inline constexpr unsigned WM_KEYLAST = 0x0109;

// Virtual-key codes. Letters and digits are their upper-case ASCII codes.
inline constexpr unsigned VK_BACK = 0x08;
inline constexpr unsigned VK_TAB = 0x09;
inline constexpr unsigned VK_RETURN = 0x0D;
inline constexpr unsigned VK_ESCAPE = 0x1B;
inline constexpr unsigned VK_SPACE = 0x20;
inline constexpr unsigned VK_LEFT = 0x25;
inline constexpr unsigned VK_UP = 0x26;
inline constexpr unsigned VK_RIGHT = 0x27;
inline constexpr unsigned VK_DOWN = 0x28;

// A message on its way to a window: its id and, for keyboard messages, the
// virtual-key code (0 for a key without one).
struct MSG {
    unsigned message = 0;
    unsigned wParam = 0;
};

struct CRect {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
    int Width() const { return right - left; }
    int Height() const { return bottom - top; }
    friend bool operator==(const CRect&, const CRect&) = default;
};

class CWnd {
public:
    CWnd() = default;
    virtual ~CWnd();
    CWnd(const CWnd&) = delete;
    CWnd& operator=(const CWnd&) = delete;

    // The bound widget, null while the window does not exist.
    QWidget* GetSafeHwnd() const { return m_widget; }
    // The dialog item id of the bound widget, 0 when it has none.
    int GetDlgCtrlID() const;
    CWnd* GetParent() const { return m_parent; }

    // Binds this object to a widget (no notifications are connected: the
    // dialog receives them) and unbinds it; Detach unbinds the windows bound
    // through this one first.
    void Attach(QWidget* widget);
    void Detach();
    // Binds this object to the item id of parent; false when parent has no
    // such item or this object is bound already.
    bool SubclassDlgItem(int id, CWnd* parent);

    bool EnableWindow(bool enable = true);  // true when it was disabled
    bool IsWindowEnabled() const;
    bool IsWindowVisible() const;
    bool IsIconic() const;
    void ShowWindow(bool show);
    void SetWindowText(const std::wstring& text);
    std::wstring GetWindowText() const;
    // The window's rectangle in screen coordinates.
    void GetWindowRect(CRect* rect) const;
    // The client area, from (0, 0).
    void GetClientRect(CRect* rect) const;
    // Converts a rectangle from screen to this window's client coordinates.
    void ScreenToClient(CRect* rect) const;
    // Moves the window: in its parent's client coordinates, or on the
    // screen for a dialog (its frame's top-left corner and outer size).
    void MoveWindow(const CRect& rect, bool repaint = true);
    void SetWindowPos(int x, int y, int cx, int cy, unsigned flags);
    void Invalidate(bool erase = true);
    void SetFocus();
    void SetIcon(const QIcon& icon);

protected:
    // Called once the widget is bound and just before it is unbound.
    virtual void OnAttached() {}
    virtual void OnDetaching() {}

private:
    QWidget* m_widget = nullptr;
    CWnd* m_parent = nullptr;
    std::vector<CWnd*> m_bound;  // windows bound through SubclassDlgItem
};
