#include "kaldo/dlg/DialogLabel.h"

#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QTextDocument>
#include <QToolTip>

namespace kaldo::dlg {

namespace {

constexpr const char* kElideProperty = "elide";

// text shortened in the middle to fit width, its last part after a '/'
// kept whole while that part fits.
QString elidedPath(const QFontMetrics& metrics, const QString& text, int width)
{
    if (metrics.horizontalAdvance(text) <= width)
        return text;
    const qsizetype slash = text.lastIndexOf(QLatin1Char('/'));
    if (slash > 0) {
        const QString name = text.mid(slash);
        const int room = width - metrics.horizontalAdvance(name);
        if (room >= metrics.horizontalAdvance(QChar(0x2026)))
            return metrics.elidedText(text.left(slash), Qt::ElideMiddle, room) + name;
    }
    return metrics.elidedText(text, Qt::ElideMiddle, width);
}

}  // namespace

bool DialogLabel::elides() const
{
    return textFormat() == Qt::PlainText && !wordWrap() && property(kElideProperty).isValid();
}

QRect DialogLabel::textArea() const
{
    return contentsRect().adjusted(margin(), margin(), -margin(), -margin());
}

QString DialogLabel::shownText() const
{
    if (!elides())
        return text();
    const int width = textArea().width();
    if (property(kElideProperty).toString() == QLatin1String("path"))
        return elidedPath(fontMetrics(), text(), width);
    return fontMetrics().elidedText(text(), Qt::ElideRight, width);
}

bool DialogLabel::event(QEvent* event)
{
    if (event->type() != QEvent::ToolTip || !toolTip().isEmpty() || !elides())
        return QLabel::event(event);
    if (shownText() != text())
        QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(),
                           Qt::convertFromPlainText(text(), Qt::WhiteSpaceNormal), this);
    else
        QToolTip::hideText();
    return true;
}

void DialogLabel::paintEvent(QPaintEvent* event)
{
    if (!elides()) {
        QLabel::paintEvent(event);
        return;
    }
    // As a plain label paints its text, with the shortened text.
    const bool rightToLeft = text().isRightToLeft();
    const int flags = int(QStyle::visualAlignment(rightToLeft ? Qt::RightToLeft : Qt::LeftToRight, alignment()))
                      | (rightToLeft ? Qt::TextForceRightToLeft : Qt::TextForceLeftToRight);
    QPainter painter(this);
    drawFrame(&painter);
    style()->drawItemText(&painter, textArea(), flags, palette(), isEnabled(), shownText(), foregroundRole());
}

}  // namespace kaldo::dlg
