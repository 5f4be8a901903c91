// Push buttons, check boxes and image buttons drawn by their owner.
#include "kxuibutton.h"

#include <QAbstractButton>
#include <QEvent>
#include <QPainter>
#include <QPushButton>
#include <QSignalBlocker>
#include <QWidget>

int CButton::GetCheck() const
{
    const auto* button = qobject_cast<const QAbstractButton*>(GetSafeHwnd());
    return button && button->isChecked() ? BST_CHECKED : BST_UNCHECKED;
}

void CButton::SetCheck(int state)
{
    auto* button = qobject_cast<QAbstractButton*>(GetSafeHwnd());
    if (!button)
        return;
    const QSignalBlocker quiet(button);
    button->setChecked(state == BST_CHECKED);
}

// Paints the bound button through the owner-draw routine instead of the
// widget's own painting.
class CBitmapButton::Painter : public QObject {
public:
    explicit Painter(CBitmapButton& owner) : owner_(owner) {}

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() != QEvent::Paint)
            return false;
        auto* button = qobject_cast<QAbstractButton*>(watched);
        if (!button)
            return false;
        QPainter painter(button);
        DRAWITEMSTRUCT item;
        item.hDC = &painter;
        item.rcItem = {0, 0, button->width(), button->height()};
        if (button->isDown())
            item.itemState |= ODS_SELECTED;
        if (button->hasFocus())
            item.itemState |= ODS_FOCUS;
        if (!button->isEnabled())
            item.itemState |= ODS_DISABLED;
        owner_.DrawItem(&item);
        return true;
    }

private:
    CBitmapButton& owner_;
};

CBitmapButton::CBitmapButton() = default;

CBitmapButton::~CBitmapButton()
{
    Detach();
}

bool CBitmapButton::LoadBitmaps(const wchar_t* normal, const wchar_t* pressed, const wchar_t* focus,
                                const wchar_t* disabled)
{
    m_bitmap = kxLoadResourceBitmap(normal);
    m_bitmapSel = kxLoadResourceBitmap(pressed);
    m_bitmapFocus = kxLoadResourceBitmap(focus);
    m_bitmapDisabled = kxLoadResourceBitmap(disabled);
    return !m_bitmap.isNull();
}

const QImage& CBitmapButton::imageForState(unsigned itemState) const
{
    if ((itemState & ODS_SELECTED) && !m_bitmapSel.isNull())
        return m_bitmapSel;
    if ((itemState & ODS_FOCUS) && !m_bitmapFocus.isNull())
        return m_bitmapFocus;
    if ((itemState & ODS_DISABLED) && !m_bitmapDisabled.isNull())
        return m_bitmapDisabled;
    return m_bitmap;
}

void CBitmapButton::DrawItem(DRAWITEMSTRUCT* item)
{
    const QImage& image = imageForState(item->itemState);
    if (!image.isNull() && item->hDC)
        item->hDC->drawImage(QPoint(item->rcItem.left, item->rcItem.top), image);
}

// An owner-drawn button is never the dialog's default button: Enter with
// the focus on it is the dialog's OK; Space and a click press it.
void CBitmapButton::OnAttached()
{
    if (auto* button = qobject_cast<QPushButton*>(GetSafeHwnd()))
        button->setAutoDefault(false);
    m_painter = std::make_unique<Painter>(*this);
    GetSafeHwnd()->installEventFilter(m_painter.get());
    GetSafeHwnd()->update();
}

void CBitmapButton::OnDetaching()
{
    m_painter.reset();
}
