// The command line dock's content: the transcript, the keywords of the
// current prompt as buttons, and the line the user types in. Enter answers
// (an empty line is Enter, which at the command prompt repeats the last
// command); Space answers too unless the prompt takes blanks; Escape
// cancels; Up and Down walk through the lines typed before.
#pragma once

#include <QStringList>
#include <QWidget>

class QHBoxLayout;
class QLineEdit;
class QPlainTextEdit;

namespace kaldo::ui {

class CommandLine : public QWidget {
    Q_OBJECT
public:
    explicit CommandLine(QWidget* parent = nullptr);

    void appendTranscript(const QString& text);
    QString transcript() const;
    // The keywords of the prompt that waits now, and whether a blank is
    // part of its answer.
    void setPrompt(const QStringList& keywords, bool acceptBlanks);
    QLineEdit* input() const { return input_; }

signals:
    // The typed line; empty for Enter.
    void answered(const QString& text);
    void cancelled();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void answer();
    void recall(int step);

    QPlainTextEdit* transcript_;
    QLineEdit* input_;
    QHBoxLayout* keywordRow_;
    QStringList history_;
    int historyAt_ = 0;
    bool acceptBlanks_ = false;
};

}  // namespace kaldo::ui
