#include "Steps.h"

namespace scenario {

namespace {

Step step(Step::Kind kind, int item, const QString& text = {}, int number = 0)
{
    Step made;
    made.kind = kind;
    made.item = item;
    made.text = text;
    made.number = number;
    return made;
}

QString scriptLineOf(const Step& step)
{
    const QString id = QString::number(step.item);
    switch (step.kind) {
    case Step::Kind::Command:
    case Step::Kind::File: return step.text;
    case Step::Kind::Click: return QStringLiteral("CLICK ") + id;
    case Step::Kind::Check: return QStringLiteral("CHECK %1 %2").arg(id).arg(step.number);
    case Step::Kind::Type: return QStringLiteral("TEXT %1 %2").arg(id, step.text);
    case Step::Kind::Select: return QStringLiteral("SELECT %1 %2").arg(id, step.text);
    case Step::Kind::DoubleClick: return QStringLiteral("SELECT %1 %2\nDBLCLICK %1").arg(id, step.text);
    case Step::Kind::Header: return QStringLiteral("HEADER %1 %2").arg(id).arg(step.number);
    case Step::Kind::Key: return step.scriptLine;
    }
    return {};
}

}  // namespace

Step command(const QString& line)
{
    return step(Step::Kind::Command, 0, line);
}

Step click(int item)
{
    return step(Step::Kind::Click, item);
}

Step check(int item, bool on)
{
    return step(Step::Kind::Check, item, {}, on ? 1 : 0);
}

Step type(int item, const QString& text)
{
    return step(Step::Kind::Type, item, text);
}

Step select(int item, const QString& row, Hand hand)
{
    Step made = step(Step::Kind::Select, item, row);
    made.hand = hand;
    return made;
}

Step doubleClick(int item, const QString& row)
{
    return step(Step::Kind::DoubleClick, item, row);
}

Step header(int item, int column)
{
    return step(Step::Kind::Header, item, {}, column);
}

Step key(int qtKey, const QString& scriptLine)
{
    Step made = step(Step::Kind::Key, 0, {}, qtKey);
    made.scriptLine = scriptLine;
    return made;
}

Step file(const QString& path)
{
    return step(Step::Kind::File, 0, path);
}

std::string scriptOf(const std::vector<Step>& steps)
{
    QString script;
    for (const Step& step : steps)
        script += scriptLineOf(step) + QLatin1Char('\n');
    return script.toStdString();
}

}  // namespace scenario
