// The steps of a dialog scenario, written once: each has its script line
// (the dialog actions of a script) and its gesture by a person's hand (see
// HandDriver).
#pragma once

#include <QString>

#include <string>
#include <utility>
#include <vector>

namespace scenario {

// How a person makes a choice in a list or combo box.
enum class Hand { Mouse, Keys, Wheel };

struct Step {
    enum class Kind { Command, Click, Check, Type, Select, DoubleClick, Header, Key, File };
    Step(Kind kind, int item, QString text = {}, int number = 0, Hand hand = Hand::Mouse, QString scriptLine = {})
        : kind(kind), item(item), text(std::move(text)), number(number), hand(hand), scriptLine(std::move(scriptLine))
    {
    }
    Kind kind;
    int item;
    QString text;  // the command line, the typed text, the row's text, the path
    int number;  // the check state, the column, the key
    Hand hand;
    QString scriptLine;  // Key: the script line that stands for the key
};

// A line typed at the command prompt, the same both ways.
Step command(const QString& line);
// A click on a button, check box or image button (CLICK).
Step click(int item);
// A check box set on or off: clicked when it is not so already (CHECK).
Step check(int item, bool on);
// An edit's whole text replaced by typing, then Tab (TEXT): by hand a click
// into it, Ctrl+A, the keys, Tab.
Step type(int item, const QString& text);
// A row of a list, list view or combo box chosen (SELECT).
Step select(int item, const QString& row, Hand hand = Hand::Mouse);
// A row of a list double-clicked (SELECT, then DBLCLICK).
Step doubleClick(int item, const QString& row);
// A click on a column heading of a list view (HEADER).
Step header(int item, int column);
// A key pressed in the dialog; scriptLine is what a script writes for it
// (the empty line for Enter, "^C" for Escape).
Step key(int qtKey, const QString& scriptLine);
// A file chosen in the file dialog: its path typed there, then Enter (the
// path as a script line). In paths and command lines "%RUN%" stands for
// the run's own folder.
Step file(const QString& path);

// The lines a script writes for the steps.
std::string scriptOf(const std::vector<Step>& steps);

}  // namespace scenario
