// Reads the script of a day: the programs that take part, what happens, and the lines that must then be seen.
#pragma once

#include <QtCore/QList>
#include <QtCore/QString>

#include <optional>

namespace zyn::handset {

/// A program that runs in the background.
struct Member
{
    QString name;
    QString from; ///< the sender of its lines; either this or `to` is the program itself
    QString to;
    bool isWitness = false; ///< whether the script must list all its lines
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
    Asks,      ///< runs a command, which must exit with 0
    CannotAsk, ///< the same, but it must not exit with 0
    Kills,
    Ends, ///< asks the program to end, which must exit with 0
};

/// Something that happens, and the lines that must be seen after it.
struct Step
{
    int lineNumber = 0;
    int times = 1;
    QString chapter; ///< the title of the chapter that starts here; empty within a chapter
    QString who;
    Verb verb = Verb::Starts;
    QString verbText;
    QString whom;
    QString what;
    QList<Expectation> expected;

    /// Whether the command that this step runs must print the line, rather than a member of the cast.
    bool isAnswer(const Expectation& expectation) const { return expectation.who == who; }
};

struct Day
{
    QList<Member> cast;
    QList<Step> steps;

    const Member* member(const QString& name) const;
};

/// Reads the script @p path, whose format is explained at the head of desk.day. Nothing if it is invalid, after a
/// message on standard error.
std::optional<Day> readDay(const QString& path);

} // namespace zyn::handset
