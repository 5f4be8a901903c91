// The window base of dialogs and controls: a plain object bound to a widget
// while the widget exists.
#include "kaldo/dlg/DialogItems.h"
#include "kxuiwnd.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QGroupBox>
#include <QIcon>
#include <QLabel>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QWidget>

#include <algorithm>
#include <utility>

CWnd::~CWnd()
{
    Detach();
    if (m_parent)
        std::erase(m_parent->m_bound, this);
}

int CWnd::GetDlgCtrlID() const
{
    return kaldo::dlg::itemId(m_widget);
}

void CWnd::Attach(QWidget* widget)
{
    if (m_widget || !widget)
        return;
    m_widget = widget;
    OnAttached();
}

void CWnd::Detach()
{
    for (CWnd* child : std::exchange(m_bound, {})) {
        child->Detach();
        child->m_parent = nullptr;
    }
    if (!m_widget)
        return;
    OnDetaching();
    m_widget = nullptr;
}

bool CWnd::SubclassDlgItem(int id, CWnd* parent)
{
    if (m_widget || !parent)
        return false;
    QWidget* item = kaldo::dlg::findItem(parent->m_widget, id);
    if (!item)
        return false;
    m_parent = parent;
    parent->m_bound.push_back(this);
    Attach(item);
    return true;
}

bool CWnd::EnableWindow(bool enable)
{
    if (!m_widget)
        return false;
    const bool wasDisabled = !m_widget->isEnabled();
    m_widget->setEnabled(enable);
    return wasDisabled;
}

bool CWnd::IsWindowEnabled() const
{
    return m_widget && m_widget->isEnabled();
}

bool CWnd::IsWindowVisible() const
{
    return m_widget && m_widget->isVisible();
}

bool CWnd::IsIconic() const
{
    return m_widget && m_widget->isMinimized();
}

void CWnd::ShowWindow(bool show)
{
    if (m_widget)
        m_widget->setVisible(show);
}

void CWnd::SetWindowText(const std::wstring& text)
{
    if (!m_widget)
        return;
    const QString value = QString::fromStdWString(text);
    const QSignalBlocker quiet(m_widget);
    if (m_widget->isWindow())
        m_widget->setWindowTitle(value);
    else if (auto* button = qobject_cast<QAbstractButton*>(m_widget))
        button->setText(value);
    else if (auto* edit = qobject_cast<QLineEdit*>(m_widget))
        edit->setText(value);
    else if (auto* combo = qobject_cast<QComboBox*>(m_widget); combo && combo->isEditable())
        combo->setEditText(value);
    else if (auto* label = qobject_cast<QLabel*>(m_widget)) {
        // Texts come from drawings and files: markup in them is shown as
        // typed, never read as formatting.
        label->setTextFormat(Qt::PlainText);
        label->setText(value);
    }
    else if (auto* group = qobject_cast<QGroupBox*>(m_widget))
        group->setTitle(value);
}

std::wstring CWnd::GetWindowText() const
{
    if (!m_widget)
        return {};
    if (m_widget->isWindow())
        return m_widget->windowTitle().toStdWString();
    if (const auto* button = qobject_cast<const QAbstractButton*>(m_widget))
        return button->text().toStdWString();
    if (const auto* edit = qobject_cast<const QLineEdit*>(m_widget))
        return edit->text().toStdWString();
    if (const auto* combo = qobject_cast<const QComboBox*>(m_widget))
        return combo->currentText().toStdWString();
    if (const auto* label = qobject_cast<const QLabel*>(m_widget))
        return label->text().toStdWString();
    if (const auto* group = qobject_cast<const QGroupBox*>(m_widget))
        return group->title().toStdWString();
    return {};
}

namespace {

CRect toRect(const QRect& r)
{
    return {r.left(), r.top(), r.left() + r.width(), r.top() + r.height()};
}

}  // namespace

void CWnd::GetWindowRect(CRect* rect) const
{
    if (!rect || !m_widget)
        return;
    if (m_widget->isWindow())
        *rect = toRect(m_widget->frameGeometry());
    else
        *rect = toRect(QRect(m_widget->mapToGlobal(QPoint(0, 0)), m_widget->size()));
}

void CWnd::GetClientRect(CRect* rect) const
{
    if (rect && m_widget)
        *rect = {0, 0, m_widget->width(), m_widget->height()};
}

void CWnd::ScreenToClient(CRect* rect) const
{
    if (!rect || !m_widget)
        return;
    const QPoint topLeft = m_widget->mapFromGlobal(QPoint(rect->left, rect->top));
    *rect = {topLeft.x(), topLeft.y(), topLeft.x() + rect->Width(), topLeft.y() + rect->Height()};
}

void CWnd::MoveWindow(const CRect& rect, bool repaint)
{
    SetWindowPos(rect.left, rect.top, rect.Width(), rect.Height(), SWP_NOZORDER);
    if (repaint && m_widget)
        m_widget->update();
}

void CWnd::SetWindowPos(int x, int y, int cx, int cy, unsigned flags)
{
    if (!m_widget)
        return;
    if (m_widget->isWindow()) {
        // A window is placed by its frame; its size is the frame's.
        const QSize frame = m_widget->frameGeometry().size() - m_widget->size();
        if (!(flags & SWP_NOMOVE))
            m_widget->move(x, y);
        if (!(flags & SWP_NOSIZE))
            m_widget->resize(cx - frame.width(), cy - frame.height());
        return;
    }
    if (!(flags & SWP_NOMOVE))
        m_widget->move(x, y);
    if (!(flags & SWP_NOSIZE))
        m_widget->resize(cx, cy);
}

void CWnd::Invalidate(bool)
{
    if (m_widget)
        m_widget->update();
}

void CWnd::SetFocus()
{
    if (m_widget)
        m_widget->setFocus(Qt::OtherFocusReason);
}

void CWnd::SetIcon(const QIcon& icon)
{
    if (m_widget)
        m_widget->setWindowIcon(icon);
}
