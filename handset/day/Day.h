// The script of a day: who takes part, what happens, and what must be seen of it.
#pragma once

#include <QtCore/QList>
#include <QtCore/QString>

#include <optional>

namespace zyn::handset {

/// A program that runs in the background.
struct Member
{
    QString name;
    QString from; ///< whom its lines come from, and to whom they go: it is one of them
    QString to;
    bool isWitness = false; ///< whether all that it shows must be called for
    QString command;
};

/// A line that must be seen.
struct Expectation
{
    int lineNumber = 0;
    int times = 1;
    QString who;
    QString line; ///< "*" stands for anything
};

enum class Verb {
    Starts,
    Tells,     ///< writes lines to its standard input
    Types,     ///< the same, key by key
    Asks,      ///< runs a command, whose exit code is to be 0
    CannotAsk, ///< the same, but not 0
    Kills,
    Ends, ///< asks it to end, which it is to do with exit code 0
};

/// Something that happens, and what must be seen then.
struct Step
{
    int lineNumber = 0;
    int times = 1;
    QString chapter; ///< that begins with it; empty when none does
    QString who;
    Verb verb = Verb::Starts;
    QString verbText;
    QString whom;
    QString what;
    QList<Expectation> expected;

    /// Whether a line is to be printed by the command that is run, and not seen elsewhere.
    bool isAnswer(const Expectation& expectation) const { return expectation.who == who; }
};

struct Day
{
    QList<Member> cast;
    QList<Step> steps;

    const Member* member(const QString& name) const;
};

/// Reads the script @p path, as its first lines explain it; nothing, and told on standard error, when it is wrong.
std::optional<Day> readDay(const QString& path);

} // namespace zyn::handset
