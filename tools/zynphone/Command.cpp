// The verbs of the tool: the rows of the verb table, and how they are found and run.
#include "tools/zynphone/Command.h"

#include "handset/common/Suggestion.h"
#include "handset/common/Text.h"
#include "tools/zynphone/Console.h"
#include "tools/zynphone/Table.h"

#include <algorithm>
#include <iterator>
#include <utility>

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

/// The columns of a terminal that everybody has.
constexpr qsizetype kUsageColumns = 80;

/// @p line, with line ends in place of blanks where it would be longer than a terminal's; what follows them begins at
/// the column @p indent. A word that is too long stays whole.
QString folded(QString line, qsizetype indent)
{
    QString lines;
    while (line.size() > kUsageColumns) {
        const qsizetype end = line.lastIndexOf(u' ', kUsageColumns);
        if (end <= indent)
            break;
        lines += line.first(line[end - 1] == u' ' ? end - 1 : end) + u'\n';
        line = QString(indent, u' ') + line.sliced(end + 1);
    }
    return lines + line + u'\n';
}

/// Where the last column of a row begins, or the row itself if that is too far to the right; 0 if it is no row.
qsizetype lastColumn(const QString& line)
{
    constexpr qsizetype kTooFar = 60;
    const qsizetype column = line.startsWith(u' ') ? line.lastIndexOf("  "_L1) + 2 : 0;
    return column <= kTooFar ? column : 2;
}

/// The lines of @p text, none longer than a terminal's. Sentences are filled; rows, which begin with a blank, are
/// folded in their last column.
QString wrapped(const QString& text)
{
    constexpr qsizetype kFull = 70; // a line as long as this goes on in the next one
    QString lines;
    QString line;
    bool goesOn = false;
    for (const QString& next : text.split(u'\n', Qt::SkipEmptyParts)) {
        const bool isRow = next.startsWith(u' ');
        if (goesOn && !isRow) {
            line += u' ' + next;
        } else {
            lines += line.isEmpty() ? QString() : folded(line, lastColumn(line));
            line = next;
        }
        goesOn = !isRow && next.size() >= kFull;
    }
    return line.isEmpty() ? lines : lines + folded(line, lastColumn(line));
}

QString section(const QString& title, const QList<QStringList>& rows)
{
    return rows.isEmpty() ? QString() : u'\n' + title + u":\n"_s + wrapped(alignedLines(rows));
}

/// The sections of @p verbs, one for each group.
QString verbSections(const std::vector<Command>& verbs)
{
    QString sections;
    QList<QStringList> rows;
    for (auto verb = verbs.begin(); verb != verbs.end(); ++verb) {
        rows += {u"  "_s + verb->name, verb->summary};
        if (const auto next = std::next(verb);
            next == verbs.end() || QLatin1String(next->group) != QLatin1String(verb->group))
            sections += section(QLatin1String(verb->group), std::exchange(rows, {}));
    }
    return sections;
}

/// The help of @p command, whose full name is @p path.
QString helpText(const Command& command, const QString& path)
{
    QList<QStringList> arguments;
    for (const Argument& argument : command.arguments)
        arguments += {u"  "_s + argument.name, argument.meaning};
    QList<QStringList> options;
    for (const QCommandLineOption& option : command.options + commonOptions())
        options += optionRow(option);
    return usageLine(command, path) + u'\n' + wrapped(command.summary + u".\n"_s) + wrapped(command.details)
           + verbSections(command.verbs) + section(u"Arguments"_s, arguments) + section(u"Options"_s, options);
}

/// Marks negative numbers, which the parser would read as options. Command lines do not contain this character.
constexpr QChar kNumberMark(QChar::Null);

QStringList marked(QStringList words)
{
    for (QString& word : words) {
        if (word.size() > 1 && word[0] == u'-' && word[1].isDigit())
            word.prepend(kNumberMark);
    }
    return words;
}

QString unmarked(QString word)
{
    return word.remove(kNumberMark);
}

/// The options of @p command, as they are typed.
QStringList optionWords(const Command& command)
{
    QStringList words;
    for (const QCommandLineOption& option : command.options + commonOptions())
        words += u"--"_s + option.names().constFirst();
    return words;
}

QString parseError(const Command& command, const QCommandLineParser& parser)
{
    const QStringList unknown = parser.unknownOptionNames();
    if (!unknown.isEmpty()) {
        const QString word = (unknown.first().size() == 1 ? u"-"_s : u"--"_s) + unknown.first();
        return u"unknown option '%1'"_s.arg(word) + handset::suggestion(word, optionWords(command));
    }
    QString text = parser.errorText();
    text.front() = text.front().toLower();
    return text.chopped(1);
}

void checkArguments(const Command& command, const QStringList& given)
{
    qsizetype place = 0;
    for (const Argument& argument : command.arguments) {
        const bool mayMiss = argument.count == Argument::Optional || argument.count == Argument::Any;
        if (place >= given.size() && !mayMiss)
            throw usageError(u"missing argument %1"_s.arg(argument.name));
        place = argument.isRepeatable() ? given.size() : place + 1;
    }
    if (place < given.size())
        throw usageError(u"superfluous argument '%1'"_s.arg(given[place]));
}

/// The verb of @p command of that name, or null.
const Command* verbNamed(const Command& command, const QString& name)
{
    const auto found = std::ranges::find(command.verbs, name, &Command::name);
    return found == command.verbs.end() ? nullptr : &*found;
}

const Command& findVerb(const Command& group, const QStringList& given)
{
    if (given.isEmpty())
        throw usageError(u"missing verb"_s);
    const Command* verb = verbNamed(group, given.first());
    if (!verb) {
        QStringList names;
        std::ranges::transform(group.verbs, std::back_inserter(names), &Command::name);
        throw usageError(u"unknown verb '%1'"_s.arg(given.first()) + handset::suggestion(given.first(), names));
    }
    return *verb;
}

ExitCode runInvocation(const Command& command, const QString& path, const Invocation& invocation, Console& console)
{
    if (invocation.isSet(u"trace"_s))
        console.showTrace();
    if (invocation.isSet(u"help"_s)) {
        console.write(helpText(command, path));
        return Done;
    }
    if (invocation.isSet(u"version"_s)) {
        console.write(u"zynphone %1\n"_s.arg(QCoreApplication::applicationVersion()));
        return Done;
    }
    if (command.run) {
        checkArguments(command, invocation.arguments());
        return command.run(invocation, console);
    }
    const QStringList given = invocation.arguments();
    const Command& verb = findVerb(command, given);
    return runCommand(verb, path + u' ' + verb.name, given.mid(1), console);
}

} // namespace

Invocation::Invocation(const Command& command, const QStringList& words)
{
    m_parser.addOptions(command.options + commonOptions());
    // Options behind a group's verb belong to that verb.
    if (!command.run)
        m_parser.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
    if (!m_parser.parse(QStringList{command.name} + marked(words)))
        throw usageError(parseError(command, m_parser));
}

QStringList Invocation::arguments() const
{
    QStringList given = m_parser.positionalArguments();
    std::ranges::transform(given, given.begin(), unmarked);
    return given;
}

QString Invocation::value(const QString& option) const
{
    return unmarked(m_parser.value(option));
}

QStringList Invocation::values(const QString& option) const
{
    QStringList given = m_parser.values(option);
    std::ranges::transform(given, given.begin(), unmarked);
    return given;
}

QList<QCommandLineOption> commonOptions()
{
    return {flagOption(u"trace"_s, u"show the library's trace text on standard error"_s),
            QCommandLineOption({u"help"_s, u"h"_s}, u"show this help"_s),
            flagOption(u"version"_s, u"show the version"_s)};
}

QCommandLineOption flagOption(const QString& name, const QString& meaning)
{
    return QCommandLineOption(name, meaning);
}

QCommandLineOption valueOption(const QString& name, const QString& valueName, const QString& meaning)
{
    return QCommandLineOption(name, meaning, valueName);
}

QCommandLineOption jsonOption()
{
    return flagOption(u"json"_s, u"write JSON, for programs"_s);
}

ExitCode runCommand(const Command& command, const QString& path, const QStringList& words, Console& console)
{
    if (const Command* verb = command.run ? verbNamed(command, words.value(0)) : nullptr)
        return runCommand(*verb, path + u' ' + verb->name, words.mid(1), console);
    try {
        return runInvocation(command, path, Invocation(command, words), console);
    } catch (const CommandError& error) {
        console.writeError(u"zynphone: "_s + error.message());
        if (error.code() == Usage)
            console.writeError(u"Try '%1 --help'."_s.arg(path));
        return error.code();
    }
}

TimeLimit::TimeLimit(const Invocation& invocation, const QString& option)
{
    if (!invocation.isSet(option))
        return;
    constexpr double kLeast = 0.001;
    constexpr int kMost = std::numeric_limits<int>::max() / 1000; // of QTimer
    const QString text = invocation.value(option);
    bool isNumber = false;
    const double seconds = text.toDouble(&isNumber);
    if (!isNumber || !(seconds >= kLeast && seconds <= kMost))
        throw usageError(u"--%1 '%2' is not a number of seconds from %3 to %4"_s.arg(
            option, text, QString::number(kLeast), QString::number(kMost)));
    m_time = std::chrono::milliseconds(static_cast<qint64>(seconds * 1000));
}

int wholeNumber(const QString& text, const QString& what, int lowest, int highest)
{
    const std::optional<int> number = handset::wholeNumber(text);
    if (!number || *number < lowest || *number > highest)
        throw usageError(u"%1 '%2' is not a whole number from %3 to %4"_s.arg(what, text, QString::number(lowest),
                                                                              QString::number(highest)));
    return *number;
}

int numberFrom(const Invocation& invocation, const QString& option, int byDefault, int lowest, int highest)
{
    return invocation.isSet(option) ? wholeNumber(invocation.value(option), u"--"_s + option, lowest, highest)
                                    : byDefault;
}

std::optional<int> limitFrom(const Invocation& invocation, const QString& option, int highest)
{
    if (!invocation.isSet(option))
        return std::nullopt;
    return wholeNumber(invocation.value(option), u"--"_s + option, 1, highest);
}

} // namespace zyn::tool
