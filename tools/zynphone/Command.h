// The verbs of the tool: the rows of the verb table, and how they are found and run.
#pragma once

#include "handset/common/Completion.h"
#include "tools/zynphone/ExitCode.h"

#include <QtCore/QCommandLineOption>
#include <QtCore/QCommandLineParser>
#include <QtCore/QCoreApplication>
#include <QtCore/QList>
#include <QtCore/QMap>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QTimer>

#include <chrono>
#include <limits>
#include <optional>
#include <vector>

namespace zyn::tool {

using namespace Qt::StringLiterals;

struct Command;

class Console;

/// An argument of a verb.
struct Argument
{
    enum Count {
        One,
        Optional,
        Many, ///< one or more; the last of a verb's arguments
        Any,  ///< none or more; the last of a verb's arguments
    };

    QString name; ///< as in help and errors
    QString meaning;
    Count count = One;

    bool isRepeatable() const { return count == Many || count == Any; }
};

/// The words given to a verb, split into arguments and options.
class Invocation
{
public:
    /// Throws if @p words contain an unknown option, or lack an option's value.
    Invocation(const Command& command, const QStringList& words);

    QStringList arguments() const;
    /// The argument at @p index; null if it was not given.
    QString argument(qsizetype index) const { return arguments().value(index); }
    bool isSet(const QString& option) const { return m_parser.isSet(option); }
    QString value(const QString& option) const;
    /// The values of an option that may be given several times.
    QStringList values(const QString& option) const;

private:
    QCommandLineParser m_parser;
};

/// Tells what an argument or an option's value may be at this moment, behind the @p arguments of the verb: quickly, in
/// silence, and without a change of anything.
using CandidateSource = handset::Candidates (*)(const QStringList& arguments);

/// A verb: a group of verbs, a command that runs, or both, in which case the first word may name a verb of the group.
/// All levels of help are made from these rows.
struct Command
{
    QString name;
    QString summary;      ///< one sentence
    QString details = {}; ///< further lines of the help
    std::vector<Command> verbs = {};
    const char* group = "Verbs"; ///< the heading of the help under which it stands, beside those of the same group
    std::vector<Argument> arguments = {};
    QList<QCommandLineOption> options = {};
    /// Fixed words for arguments and option values, by their names in the help.
    QMap<QString, QStringList> words = {};
    /// The same for words that are known only when somebody asks.
    QMap<QString, CandidateSource> sources = {};
    ExitCode (*run)(const Invocation&, Console&) = nullptr; ///< null for a mere group
};

/// The options that every verb has.
QList<QCommandLineOption> commonOptions();

QCommandLineOption flagOption(const QString& name, const QString& meaning);
QCommandLineOption valueOption(const QString& name, const QString& valueName, const QString& meaning);
/// The option of every listing.
QCommandLineOption jsonOption();

/// The whole number given by @p option, or @p byDefault.
int numberFrom(const Invocation& invocation, const QString& option, int byDefault,
               int lowest = std::numeric_limits<int>::min(), int highest = std::numeric_limits<int>::max());

/// The whole number from 1 to @p highest given by @p option, if any.
std::optional<int> limitFrom(const Invocation& invocation, const QString& option,
                             int highest = std::numeric_limits<int>::max());

/// Runs the verb that @p words select below @p command, whose full name is @p path. Reports errors on the console.
ExitCode runCommand(const Command& command, const QString& path, const QStringList& words, Console& console);

/// @p text as a whole number in this range. A usage error, which names @p what, if it is not one.
int wholeNumber(const QString& text, const QString& what, int lowest = std::numeric_limits<int>::min(),
                int highest = std::numeric_limits<int>::max());

/// A limit on the event loop's run time, from an option in seconds, which may have a fraction.
class TimeLimit
{
public:
    static QCommandLineOption option(const QString& text = u"end after that time"_s)
    {
        return valueOption(u"for"_s, u"SECONDS"_s, text);
    }

    /// @param option  the option, if not option()
    explicit TimeLimit(const Invocation& invocation, const QString& option = u"for"_s);

    bool isSet() const { return m_time.has_value(); }

    /// Starts the timer, if a limit is set.
    void start() const
    {
        if (m_time)
            QTimer::singleShot(*m_time, QCoreApplication::instance(), &QCoreApplication::quit);
    }

private:
    std::optional<std::chrono::milliseconds> m_time;
};

} // namespace zyn::tool
