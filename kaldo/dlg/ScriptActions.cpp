#include "kaldo/dlg/ScriptActions.h"

#include "kaldo/dlg/DialogItems.h"
#include "kaldo/dlg/ModalLoop.h"
#include "kaldo/ed/Editor.h"
#include "kaldo/view/SaveFile.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QCoreApplication>
#include <QDialog>
#include <QFileInfo>
#include <QFocusEvent>
#include <QGroupBox>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPixmap>
#include <QTreeWidget>

#include <optional>

namespace kaldo::dlg {

namespace {

// A refusal: why the line was skipped.
struct Refusal {
    QString reason;
};
using Outcome = std::optional<Refusal>;

Outcome refuse(const QString& reason)
{
    return Refusal{reason};
}

// The line split at its first blank: the word and the rest.
std::pair<QString, QString> splitWord(const QString& text)
{
    const QString trimmed = text.trimmed();
    const qsizetype blank = trimmed.indexOf(QLatin1Char(' '));
    if (blank < 0)
        return {trimmed, {}};
    return {trimmed.left(blank), trimmed.mid(blank + 1)};
}

std::optional<int> number(const QString& text)
{
    bool ok = false;
    const int value = text.trimmed().toInt(&ok);
    return ok ? std::optional(value) : std::nullopt;
}

// The item of an action, or why there is none to act on.
struct Target {
    QWidget* item = nullptr;
    Outcome refusal;
};

Target actionItem(const ModalSubject& subject, const QString& idText)
{
    const auto id = number(idText);
    if (!id)
        return {nullptr, refuse(QStringLiteral("no item id"))};
    QWidget* item = findItem(subject.window, *id);
    if (!item)
        return {nullptr, refuse(QStringLiteral("no item %1 in this dialog").arg(*id))};
    if (!item->isVisibleTo(subject.window))
        return {nullptr, refuse(QStringLiteral("item %1 is hidden").arg(*id))};
    if (!item->isEnabled())
        return {nullptr, refuse(QStringLiteral("item %1 is disabled").arg(*id))};
    return {item, std::nullopt};
}

// A person's click gives the item the focus first (the focus lost
// elsewhere tells the item that had it), as a press of the mouse does.
void touch(QWidget* item)
{
    if (item->focusPolicy() & Qt::ClickFocus)
        item->setFocus(Qt::MouseFocusReason);
}

Outcome click(ModalSubject& subject, const QString& args)
{
    const auto id = number(args);
    if (id && !findItem(subject.window, *id) && subject.standardButton && subject.standardButton(*id))
        return std::nullopt;
    const Target target = actionItem(subject, args);
    if (target.refusal)
        return target.refusal;
    auto* button = qobject_cast<QAbstractButton*>(target.item);
    if (!button)
        return refuse(QStringLiteral("a %1 cannot be clicked").arg(itemKind(target.item)));
    touch(button);
    button->click();
    return std::nullopt;
}

// Leaving an item by Tab: the focus moves to the next item and the item's
// focus-lost handling runs once (a handler may give it the focus back). A
// window that is not active moves no focus; the item is told of the loss
// all the same.
void leave(QWidget* item)
{
    if (item->isActiveWindow() && item->hasFocus()) {
        pressKey(*item, Qt::Key_Tab);
        return;
    }
    QFocusEvent focusOut(QEvent::FocusOut, Qt::TabFocusReason);
    QCoreApplication::sendEvent(item, &focusOut);
}

Outcome text(ModalSubject& subject, const QString& args)
{
    const auto [idText, words] = splitWord(args);
    const Target target = actionItem(subject, idText);
    if (target.refusal)
        return target.refusal;
    QLineEdit* edit = qobject_cast<QLineEdit*>(target.item);
    if (auto* combo = qobject_cast<QComboBox*>(target.item))
        edit = combo->lineEdit();
    if (!edit || edit->isReadOnly())
        return refuse(QStringLiteral("a %1 takes no text").arg(itemKind(target.item)));
    // Typed over the whole text: the edit's filters see the new text.
    touch(target.item);
    edit->selectAll();
    edit->insert(words);
    leave(edit);
    return std::nullopt;
}

Outcome check(ModalSubject& subject, const QString& args)
{
    const auto [idText, stateText] = splitWord(args);
    const Target target = actionItem(subject, idText);
    if (target.refusal)
        return target.refusal;
    auto* button = qobject_cast<QAbstractButton*>(target.item);
    const auto state = number(stateText);
    if (!button || !button->isCheckable())
        return refuse(QStringLiteral("a %1 cannot be checked").arg(itemKind(target.item)));
    if (!state || (*state != 0 && *state != 1))
        return refuse(QStringLiteral("the state must be 0 or 1"));
    if (button->isChecked() != (*state == 1)) {
        touch(button);
        button->click();
        if (button->isChecked() != (*state == 1))
            return refuse(QStringLiteral("a %1 cannot be unchecked").arg(itemKind(target.item)));
    }
    return std::nullopt;
}

// The row of a list whose first-column text is wanted exactly, or "#n".
std::optional<int> rowOf(const QString& wanted, const QStringList& rows)
{
    if (wanted.startsWith(QLatin1Char('#'))) {
        const auto n = number(wanted.mid(1));
        if (n && *n >= 0 && *n < rows.size())
            return n;
        return std::nullopt;
    }
    const qsizetype row = rows.indexOf(wanted);
    return row < 0 ? std::nullopt : std::optional(int(row));
}

QStringList rowTexts(const QWidget* item)
{
    QStringList rows;
    if (const auto* list = qobject_cast<const QListWidget*>(item)) {
        for (int i = 0; i < list->count(); ++i)
            rows << list->item(i)->text();
    } else if (const auto* view = qobject_cast<const QTreeWidget*>(item)) {
        for (int i = 0; i < view->topLevelItemCount(); ++i)
            rows << view->topLevelItem(i)->text(0);
    } else if (const auto* combo = qobject_cast<const QComboBox*>(item)) {
        for (int i = 0; i < combo->count(); ++i)
            rows << combo->itemText(i);
    }
    return rows;
}

Outcome select(ModalSubject& subject, const QString& args)
{
    const auto [idText, wanted] = splitWord(args);
    const Target target = actionItem(subject, idText);
    if (target.refusal)
        return target.refusal;
    QWidget* item = target.item;
    if (!qobject_cast<QListWidget*>(item) && !qobject_cast<QTreeWidget*>(item) && !qobject_cast<QComboBox*>(item))
        return refuse(QStringLiteral("a %1 has no rows").arg(itemKind(item)));
    const auto row = rowOf(wanted, rowTexts(item));
    if (!row)
        return refuse(QStringLiteral("no row \"%1\"").arg(wanted));
    touch(item);
    if (auto* list = qobject_cast<QListWidget*>(item)) {
        list->setCurrentRow(*row, QItemSelectionModel::ClearAndSelect);
    } else if (auto* view = qobject_cast<QTreeWidget*>(item)) {
        view->setCurrentItem(view->topLevelItem(*row), 0, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    } else if (auto* combo = qobject_cast<QComboBox*>(item)) {
        combo->setCurrentIndex(*row);
        emit combo->activated(*row);
    }
    return std::nullopt;
}

Outcome doubleClick(ModalSubject& subject, const QString& args)
{
    const Target target = actionItem(subject, args);
    if (target.refusal)
        return target.refusal;
    auto* rows = qobject_cast<QAbstractItemView*>(target.item);
    const int row = selectedRow(rows);
    if (!rows || (!qobject_cast<QListWidget*>(rows) && !qobject_cast<QTreeWidget*>(rows)))
        return refuse(QStringLiteral("a %1 has no rows").arg(itemKind(target.item)));
    if (row < 0)
        return refuse(QStringLiteral("no row is selected"));
    touch(rows);
    // What the view does with a double click on the row: its double-click
    // signal for the row's index.
    emit rows->doubleClicked(rows->model()->index(row, 0));
    return std::nullopt;
}

Outcome header(ModalSubject& subject, const QString& args)
{
    const auto [idText, columnText] = splitWord(args);
    const Target target = actionItem(subject, idText);
    if (target.refusal)
        return target.refusal;
    auto* view = qobject_cast<QTreeWidget*>(target.item);
    if (!view)
        return refuse(QStringLiteral("a %1 has no header").arg(itemKind(target.item)));
    const auto column = number(columnText);
    if (!column || *column < 0 || *column >= view->columnCount())
        return refuse(QStringLiteral("no column %1").arg(columnText));
    emit view->header()->sectionClicked(*column);
    return std::nullopt;
}

Outcome size(ModalSubject& subject, const QString& args)
{
    const auto [widthText, heightText] = splitWord(args);
    const auto width = number(widthText);
    const auto height = number(heightText);
    if (!width || !height || *width <= 0 || *height <= 0)
        return refuse(QStringLiteral("a size is two positive numbers"));
    QWidget* window = subject.window;
    if (window->minimumSize() == window->maximumSize())
        return refuse(QStringLiteral("the dialog cannot be resized"));
    // Dragging the bottom-right corner: the top-left corner stays.
    QRect proposed(window->frameGeometry().topLeft(), QSize(*width, *height));
    if (subject.sizing)
        subject.sizing(proposed);
    const QSize frame = window->frameGeometry().size() - window->size();
    window->move(proposed.topLeft());
    window->resize(proposed.size() - frame);
    return std::nullopt;
}

Outcome grab(ModalSubject& subject, const QString& args)
{
    const QString file = args.trimmed();
    if (file.isEmpty())
        return refuse(QStringLiteral("no file named"));
    const std::string problem = view::saveImage(file.toStdString(), subject.window->grab().toImage(),
                                                QFileInfo(file).suffix().toLower().toLatin1());
    if (!problem.empty())
        return refuse(QString::fromStdString(problem));
    return std::nullopt;
}

QString stateOf(const QWidget* item)
{
    QStringList parts{itemKind(item), item->isEnabled() ? QStringLiteral("enabled") : QStringLiteral("disabled")};
    if (!item->isVisible())
        parts << QStringLiteral("hidden");
    QString text;
    if (const auto* button = qobject_cast<const QAbstractButton*>(item))
        text = button->text();
    else if (const auto* edit = qobject_cast<const QLineEdit*>(item))
        text = edit->text();
    else if (const auto* combo = qobject_cast<const QComboBox*>(item))
        text = combo->currentText();
    else if (const auto* label = qobject_cast<const QLabel*>(item))
        text = label->text();
    else if (const auto* group = qobject_cast<const QGroupBox*>(item))
        text = group->title();
    parts << QLatin1Char('"') + text + QLatin1Char('"');
    if (const auto* button = qobject_cast<const QAbstractButton*>(item); button && button->isCheckable())
        parts << (button->isChecked() ? QStringLiteral("checked") : QStringLiteral("unchecked"));
    if (qobject_cast<const QListWidget*>(item) || qobject_cast<const QTreeWidget*>(item))
        parts << QStringLiteral("selected %1").arg(selectedRow(static_cast<const QAbstractItemView*>(item)));
    if (const auto* combo = qobject_cast<const QComboBox*>(item))
        parts << QStringLiteral("selected %1").arg(combo->currentIndex());
    return parts.join(QLatin1Char(' '));
}

// The rows of a list or list view, a line each ("| " between columns).
QString rowLines(const QWidget* item)
{
    QString lines;
    if (const auto* list = qobject_cast<const QListWidget*>(item)) {
        for (int i = 0; i < list->count(); ++i)
            lines += QStringLiteral("    %1: %2\n").arg(i).arg(list->item(i)->text());
    } else if (const auto* view = qobject_cast<const QTreeWidget*>(item)) {
        for (int i = 0; i < view->topLevelItemCount(); ++i) {
            QStringList cells;
            for (int c = 0; c < view->columnCount(); ++c)
                cells << view->topLevelItem(i)->text(c);
            lines += QStringLiteral("    %1: %2\n").arg(i).arg(cells.join(QStringLiteral(" | ")));
        }
    }
    return lines;
}

}  // namespace

void pressKey(QWidget& receiver, Qt::Key key)
{
    QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
    QCoreApplication::sendEvent(&receiver, &press);
    QKeyEvent release(QEvent::KeyRelease, key, Qt::NoModifier);
    QCoreApplication::sendEvent(&receiver, &release);
}

void pressEnter(ModalSubject& subject)
{
    QWidget* focus = subject.window->focusWidget();
    pressKey(focus ? *focus : *subject.window, Qt::Key_Return);
}

std::wstring describeDialog(const ModalSubject& subject)
{
    QString text = QString::fromStdWString(subject.title) + QLatin1Char('\n');
    for (const QWidget* item : items(subject.window))
        text += QStringLiteral("  %1 %2\n").arg(itemId(item)).arg(stateOf(item)) + rowLines(item);
    return text.toStdWString();
}

void performScriptAction(const std::wstring& line, ModalSubject& subject, Editor& editor)
{
    const auto [word, args] = splitWord(QString::fromStdWString(line));
    const QString action = word.toUpper();
    Outcome outcome;
    if (action == QLatin1String("CLICK"))
        outcome = click(subject, args);
    else if (action == QLatin1String("TEXT"))
        outcome = text(subject, args);
    else if (action == QLatin1String("CHECK"))
        outcome = check(subject, args);
    else if (action == QLatin1String("SELECT"))
        outcome = select(subject, args);
    else if (action == QLatin1String("DBLCLICK"))
        outcome = doubleClick(subject, args);
    else if (action == QLatin1String("HEADER"))
        outcome = header(subject, args);
    else if (action == QLatin1String("SIZE"))
        outcome = size(subject, args);
    else if (action == QLatin1String("SHOW"))
        editor.write(L"\n" + describeDialog(subject));
    else if (action == QLatin1String("GRAB"))
        outcome = grab(subject, args);
    else
        outcome = refuse(QStringLiteral("no such dialog action"));
    if (outcome)
        editor.write(L"\nDialog action refused: " + line + L" (" + outcome->reason.toStdWString() + L")\n");
}

}  // namespace kaldo::dlg
