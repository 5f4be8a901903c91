#include "kaldo/ui/CommandLine.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QToolButton>
#include <QVBoxLayout>

namespace kaldo::ui {

namespace {
// Lines of transcript kept in the dock.
constexpr int kTranscriptLines = 5000;
}

CommandLine::CommandLine(QWidget* parent)
    : QWidget(parent), transcript_(new QPlainTextEdit(this)), input_(new QLineEdit(this)),
      keywordRow_(new QHBoxLayout)
{
    transcript_->setReadOnly(true);
    transcript_->setMaximumBlockCount(kTranscriptLines);
    transcript_->setFocusPolicy(Qt::NoFocus);
    transcript_->setObjectName("transcript");
    input_->setObjectName("commandInput");
    input_->installEventFilter(this);
    keywordRow_->setContentsMargins(0, 0, 0, 0);
    auto* inputRow = new QHBoxLayout;
    inputRow->addWidget(input_, 1);
    inputRow->addLayout(keywordRow_);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(2, 2, 2, 2);
    layout->addWidget(transcript_, 1);
    layout->addLayout(inputRow);
    connect(input_, &QLineEdit::returnPressed, this, &CommandLine::answer);
}

void CommandLine::appendTranscript(const QString& text)
{
    QTextCursor cursor(transcript_->document());
    cursor.movePosition(QTextCursor::End);
    cursor.insertText(text);
    transcript_->verticalScrollBar()->setValue(transcript_->verticalScrollBar()->maximum());
}

QString CommandLine::transcript() const
{
    return transcript_->toPlainText();
}

void CommandLine::setPrompt(const QStringList& keywords, bool acceptBlanks)
{
    acceptBlanks_ = acceptBlanks;
    while (QLayoutItem* item = keywordRow_->takeAt(0)) {
        delete item->widget();
        delete item;
    }
    for (const QString& keyword : keywords) {
        auto* button = new QToolButton(this);
        button->setText(keyword);
        button->setAutoRaise(true);
        button->setFocusPolicy(Qt::NoFocus);
        connect(button, &QToolButton::clicked, this, [this, keyword] { emit answered(keyword); });
        keywordRow_->addWidget(button);
    }
}

void CommandLine::answer()
{
    const QString text = input_->text();
    input_->clear();
    if (!text.trimmed().isEmpty() && (history_.isEmpty() || history_.back() != text))
        history_ << text;
    historyAt_ = int(history_.size());
    emit answered(text);
}

void CommandLine::recall(int step)
{
    if (history_.isEmpty())
        return;
    historyAt_ = std::clamp(historyAt_ + step, 0, int(history_.size()));
    input_->setText(historyAt_ < history_.size() ? history_[historyAt_] : QString());
}

bool CommandLine::eventFilter(QObject* watched, QEvent* event)
{
    if (watched != input_)
        return QWidget::eventFilter(watched, event);
    // With nothing typed, the undo and redo keys belong to the window's
    // commands rather than to the line's own editing.
    if (event->type() == QEvent::ShortcutOverride) {
        const auto* key = static_cast<QKeyEvent*>(event);
        return input_->text().isEmpty() && (key->matches(QKeySequence::Undo) || key->matches(QKeySequence::Redo));
    }
    if (event->type() != QEvent::KeyPress)
        return QWidget::eventFilter(watched, event);
    const auto* key = static_cast<QKeyEvent*>(event);
    switch (key->key()) {
    case Qt::Key_Escape:
        input_->clear();
        emit cancelled();
        return true;
    case Qt::Key_Up: recall(-1); return true;
    case Qt::Key_Down: recall(1); return true;
    case Qt::Key_Space:
        if (acceptBlanks_)
            return false;
        answer();
        return true;
    default: return false;
    }
}

}  // namespace kaldo::ui
