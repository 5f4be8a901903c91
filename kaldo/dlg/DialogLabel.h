// The labels of dialog templates. A label whose template gives it the
// property "elide" shows a text too long for it shortened with an ellipsis:
// "right" cuts the end, "path" keeps a path's last part (the file name)
// whole and shortens the folders before it in the middle. The label's text
// stays the whole text, and a shortened label shows it as its tool tip.
#pragma once

#include <QLabel>

namespace kaldo::dlg {

class DialogLabel : public QLabel {
    Q_OBJECT

public:
    using QLabel::QLabel;

    // The text as the label shows it now.
    QString shownText() const;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    bool elides() const;
    QRect textArea() const;
};

}  // namespace kaldo::dlg
