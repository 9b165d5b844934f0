// The help of a verb, made from its row of the verb table.
#include "tools/zynphone/Help.h"

#include "tools/zynphone/Command.h"
#include "tools/zynphone/Table.h"

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

QString syntax(const Argument& argument)
{
    switch (argument.count) {
    case Argument::Optional:
        return u'[' + argument.name + u']';
    case Argument::Many:
        return argument.name + u"..."_s;
    case Argument::Any:
        return u'[' + argument.name + u"...]"_s;
    default:
        return argument.name;
    }
}

QString usageLine(const Command& command, const QString& path)
{
    QStringList words{u"Usage:"_s, path};
    if (!command.run)
        words += u"VERB"_s;
    for (const Argument& argument : command.arguments)
        words += syntax(argument);
    const QString line = words.join(u' ') + u" [OPTION...]\n"_s;
    return command.run && !command.verbs.empty() ? line + u"       %1 VERB [OPTION...]\n"_s.arg(path) : line;
}

QStringList optionRow(const QCommandLineOption& option)
{
    QString synopsis = u"  --"_s + option.names().constFirst();
    if (!option.valueName().isEmpty())
        synopsis += u' ' + option.valueName();
    return {synopsis, option.description()};
}

QString section(const QString& title, const QList<QStringList>& rows)
{
    return rows.isEmpty() ? QString() : u'\n' + title + u":\n"_s + alignedLines(rows);
}

} // namespace

QString helpText(const Command& command, const QString& path)
{
    QList<QStringList> verbs;
    for (const Command& verb : command.verbs)
        verbs += {u"  "_s + verb.name, verb.summary};
    QList<QStringList> arguments;
    for (const Argument& argument : command.arguments)
        arguments += {u"  "_s + argument.name, argument.meaning};
    QList<QStringList> options;
    for (const QCommandLineOption& option : command.options + commonOptions())
        options += optionRow(option);
    return usageLine(command, path) + u'\n' + command.summary + u".\n"_s + command.details + section(u"Verbs"_s, verbs)
           + section(u"Arguments"_s, arguments) + section(u"Options"_s, options);
}

} // namespace zyn::tool
