// Plays a day, and compares the lines of its programs with those that the script expects.
#pragma once

#include "handset/day/Day.h"
#include "handset/day/Program.h"
#include "handset/day/View.h"

#include <QtCore/QObject>
#include <QtCore/QSet>

#include <chrono>
#include <functional>
#include <map>

namespace zyn::handset {

/// How a day is played.
struct Pace
{
    bool isSlow = false;             ///< at a person's pace
    std::chrono::milliseconds limit; ///< how long to wait for a line
};

/**
 * Starts the programs of a day, carries out its steps one after another, and waits for the lines that each must cause.
 *
 * A line that does not come in time is reported, and the day goes on. Nothing relies on pauses: those of a slow day are
 * for the people who watch it.
 */
class Player : public QObject
{
    Q_OBJECT

public:
    /// @param store  the value of "{store}" in the script
    Player(Day day, QString store, Pace pace);

    /// Plays the day, within the event loop; true if every check passed. Ends early, with false, if the application
    /// quits.
    bool play();

Q_SIGNALS:
    void changed();

private:
    /// A member of the cast while the day goes on.
    struct Actor
    {
        Program program;
        QSet<qsizetype> matched; ///< indexes of the lines that an expectation has matched
        QStringList called;      ///< the expected lines, in the order of the script
        bool isLate = false;     ///< whether an expected line did not come in time
    };

    void play(const Step& step, const QString& what);
    void start(const Step& step);
    void write(const Step& step, const QString& what);
    void runCommand(const Step& step, const QString& what);
    void end(const Step& step);
    void expect(const Expectation& expectation, const Member& member, Actor& actor);
    qsizetype find(const Actor& actor, const QString& line) const;
    void compare(const Member& member, const Actor& actor);

    QString filled(QString text, int number = 1) const;
    bool waitUntil(const std::function<bool()>& isMet, std::chrono::milliseconds limit);
    void pause(std::chrono::milliseconds time);

    const Day m_day;
    const QString m_store;
    const Pace m_pace;
    View m_view;
    std::map<QString, Actor> m_actors;
    bool m_isInterrupted = false;
};

} // namespace zyn::handset
