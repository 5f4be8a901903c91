#include "mleditdlg/NewBitMapButton.h"

#include <QPainter>

namespace kdml {

void CNewBitMapButton::DrawItem(DRAWITEMSTRUCT* item)
{
    const QImage& image = imageForState(item->itemState);
    if (image.isNull() || !item->hDC)
        return;
    const CRect& face = item->rcItem;
    item->hDC->setRenderHint(QPainter::SmoothPixmapTransform);
    item->hDC->drawImage(QRect(face.left, face.top, face.Width(), face.Height()), image);
}

}  // namespace kdml
