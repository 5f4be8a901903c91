#include "kaldo/dlg/SheetPreview.h"

#include "kaldo/view/PlotPainter.h"

#include <QPainter>

#include <algorithm>

namespace kaldo::dlg {

namespace {

constexpr double kDeskMargin = 10;
constexpr double kShadow = 3;

}  // namespace

SheetPreview::SheetPreview(const view::Scene& scene, QWidget* parent) : QWidget(parent), m_scene(scene)
{
    setMinimumSize(320, 240);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void SheetPreview::showPlot(const view::SheetPlacement& placement, const view::PlotLook& look)
{
    m_placement = placement;
    m_look = look;
    update();
}

QRectF SheetPreview::sheetRect() const
{
    if (m_placement.width <= 0 || m_placement.height <= 0)
        return {};
    const double room = std::min((width() - 2 * kDeskMargin) / m_placement.width,
                                 (height() - 2 * kDeskMargin) / m_placement.height);
    const double pixelsPerMillimetre = std::max(room, 0.0);
    const QSizeF size(m_placement.width * pixelsPerMillimetre, m_placement.height * pixelsPerMillimetre);
    return {QPointF((width() - size.width()) / 2, (height() - size.height()) / 2), size};
}

void SheetPreview::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), QColor(0x80, 0x86, 0x8C));
    const QRectF sheet = sheetRect();
    if (sheet.isEmpty())
        return;
    painter.fillRect(sheet.translated(kShadow, kShadow), QColor(0x40, 0x44, 0x48));
    painter.fillRect(sheet, Qt::white);
    view::paintPlot(painter, m_scene, m_placement, sheet, m_look);
    QPen outline(QColor(0x1E, 0x78, 0xD2));
    outline.setStyle(Qt::DashLine);
    outline.setCosmetic(true);
    painter.setPen(outline);
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(view::printableRect(m_placement, sheet));
}

}  // namespace kaldo::dlg
