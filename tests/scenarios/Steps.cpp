#include "Steps.h"

namespace scenario {

namespace {

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
    return {Step::Kind::Command, 0, line};
}

Step click(int item)
{
    return {Step::Kind::Click, item};
}

Step check(int item, bool on)
{
    return {Step::Kind::Check, item, {}, on ? 1 : 0};
}

Step type(int item, const QString& text)
{
    return {Step::Kind::Type, item, text};
}

Step select(int item, const QString& row, Hand hand)
{
    return {Step::Kind::Select, item, row, 0, hand};
}

Step doubleClick(int item, const QString& row)
{
    return {Step::Kind::DoubleClick, item, row};
}

Step header(int item, int column)
{
    return {Step::Kind::Header, item, {}, column};
}

Step key(int qtKey, const QString& scriptLine)
{
    return {Step::Kind::Key, 0, {}, qtKey, Hand::Mouse, scriptLine};
}

Step file(const QString& path)
{
    return {Step::Kind::File, 0, path};
}

std::string scriptOf(const std::vector<Step>& steps)
{
    QString script;
    for (const Step& step : steps)
        script += scriptLineOf(step) + QLatin1Char('\n');
    return script.toStdString();
}

}  // namespace scenario
