// A person's gestures on widgets that QTest has no single call for: a
// double click as the mouse makes it, a wheel turned by notches, and where
// a person clicks a row or a check box.
#pragma once

#include <QAbstractItemView>
#include <QApplication>
#include <QCheckBox>
#include <QRadioButton>
#include <QStyleOptionButton>
#include <QTest>
#include <QWheelEvent>

#include <cstdlib>

namespace gesture {

// Where a person clicks a widget: a check box on its box.
inline QPoint clickPoint(QWidget& widget)
{
    const auto boxOf = [](QAbstractButton& button, QStyle::SubElement clickRect) {
        QStyleOptionButton option;
        option.initFrom(&button);
        option.text = button.text();
        return button.style()->subElementRect(clickRect, &option, &button).center();
    };
    if (auto* box = qobject_cast<QCheckBox*>(&widget))
        return boxOf(*box, QStyle::SE_CheckBoxClickRect);
    if (auto* radio = qobject_cast<QRadioButton*>(&widget))
        return boxOf(*radio, QStyle::SE_RadioButtonClickRect);
    return widget.rect().center();
}

inline QPoint rowCentre(QAbstractItemView& view, int row)
{
    return view.visualRect(view.model()->index(row, 0)).center();
}

// Press, release, the second press that makes it a double click, release.
inline void doubleClick(QWidget& widget, QPoint at)
{
    QTest::mousePress(&widget, Qt::LeftButton, {}, at);
    QTest::mouseRelease(&widget, Qt::LeftButton, {}, at);
    QTest::mouseDClick(&widget, Qt::LeftButton, {}, at);
    QTest::mouseRelease(&widget, Qt::LeftButton, {}, at);
}

// Notches towards the person (down a list) when positive, away when
// negative, with the pointer over the widget's middle.
inline void turnWheel(QWidget& widget, int notches)
{
    const QPointF at = widget.rect().center();
    for (int i = 0; i < std::abs(notches); ++i) {
        QWheelEvent wheel(at, widget.mapToGlobal(at), QPoint(), QPoint(0, notches > 0 ? -120 : 120), Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(&widget, &wheel);
    }
}

}  // namespace gesture
