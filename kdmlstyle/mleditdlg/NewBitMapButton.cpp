#include "mleditdlg/NewBitMapButton.h"

#include <QPainter>

namespace kdml {

void CNewBitMapButton::DrawItem(DRAWITEMSTRUCT* item)
{
    const QImage* image = &m_bitmap;
    if ((item->itemState & ODS_SELECTED) && !m_bitmapSel.isNull())
        image = &m_bitmapSel;
    else if ((item->itemState & ODS_FOCUS) && !m_bitmapFocus.isNull())
        image = &m_bitmapFocus;
    else if ((item->itemState & ODS_DISABLED) && !m_bitmapDisabled.isNull())
        image = &m_bitmapDisabled;
    if (image->isNull() || !item->hDC)
        return;
    const CRect& face = item->rcItem;
    item->hDC->setRenderHint(QPainter::SmoothPixmapTransform);
    item->hDC->drawImage(QRect(face.left, face.top, face.Width(), face.Height()), *image);
}

}  // namespace kdml
