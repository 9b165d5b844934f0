// The verbs of the tool: what a row of the verb table holds, and how it is found and run.
#pragma once

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

/// What a verb takes besides its options.
struct Argument
{
    enum Count {
        One,
        Optional,
        Many, ///< one or more; the last of a verb's arguments
        Any,  ///< none or more; the last of a verb's arguments
    };

    QString name; ///< as help and errors write it
    QString meaning;
    Count count = One;

    bool isRepeatable() const { return count == Many || count == Any; }
};

/// The words given to a verb, told apart into arguments and options.
class Invocation
{
public:
    /// Throws when @p words hold an option that @p command does not have, or miss an option's value.
    Invocation(const Command& command, const QStringList& words);

    QStringList arguments() const;
    /// The argument at @p index; null when it was not given.
    QString argument(qsizetype index) const { return arguments().value(index); }
    bool isSet(const QString& option) const { return m_parser.isSet(option); }
    QString value(const QString& option) const;
    /// The values of an option that may be given several times.
    QStringList values(const QString& option) const;

private:
    QCommandLineParser m_parser;
};

/// One verb: a group of further verbs, or one that runs, or both: then its first word may name a further verb. Every
/// level of help is made from these rows.
struct Command
{
    QString name;
    QString summary;      ///< one sentence
    QString details = {}; ///< further lines of the help
    std::vector<Command> verbs = {};
    std::vector<Argument> arguments = {};
    QList<QCommandLineOption> options = {};
    /// What an argument or an option's value may be, by its name as help writes it, where that is fixed.
    QMap<QString, QStringList> words = {};
    ExitCode (*run)(const Invocation&, Console&) = nullptr; ///< null for a mere group
};

/// The options that every verb has.
QList<QCommandLineOption> commonOptions();

QCommandLineOption flagOption(const QString& name, const QString& meaning);
QCommandLineOption valueOption(const QString& name, const QString& valueName, const QString& meaning);
/// The option of every listing.
QCommandLineOption jsonOption();

/// The whole number that @p option sets, or @p byDefault when it is not set.
int numberFrom(const Invocation& invocation, const QString& option, int byDefault,
               int lowest = std::numeric_limits<int>::min(), int highest = std::numeric_limits<int>::max());

/// The whole number from 1 to @p highest that @p option sets; nothing when it is not set.
std::optional<int> limitFrom(const Invocation& invocation, const QString& option,
                             int highest = std::numeric_limits<int>::max());

/// Runs what @p words ask of @p command, whose name with that of its groups is @p path. Tells errors on the console.
ExitCode runCommand(const Command& command, const QString& path, const QStringList& words, Console& console);

/// The whole number that @p text stands for; a usage error that names @p what when it is none or out of range.
int wholeNumber(const QString& text, const QString& what, int lowest = std::numeric_limits<int>::min(),
                int highest = std::numeric_limits<int>::max());

/// How many seconds the event loop may run, as the option says.
class TimeLimit
{
public:
    static QCommandLineOption option(const QString& text = u"end after that time"_s)
    {
        return valueOption(u"for"_s, u"SECONDS"_s, text);
    }

    /// @param option  the one that sets it, if not option()
    explicit TimeLimit(const Invocation& invocation, const QString& option = u"for"_s)
        : m_seconds(limitFrom(invocation, option, kMaxSeconds))
    {}

    bool isSet() const { return m_seconds.has_value(); }

    /// From now on the time runs; nothing ends when none is set.
    void start() const
    {
        if (m_seconds)
            QTimer::singleShot(std::chrono::seconds(*m_seconds), QCoreApplication::instance(), &QCoreApplication::quit);
    }

private:
    /// The longest time that a timer takes.
    static constexpr int kMaxSeconds = std::numeric_limits<int>::max() / 1000;

    std::optional<int> m_seconds;
};

} // namespace zyn::tool
