// Plays a day, and compares what is seen with what its script calls for.
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
    bool isSlow = false;             ///< as a person would, and could follow it
    std::chrono::milliseconds limit; ///< how long something may take to be seen
};

/**
 * Starts the programs of a day, lets its steps happen one after another and waits for what each must cause.
 *
 * What is not seen in time is told, and the day goes on. Everything waits for the programs' lines; the pauses of a slow
 * day are only for those who sync.
 */
class Player : public QObject
{
    Q_OBJECT

public:
    /// @param store  what "{store}" stands for
    Player(Day day, QString store, Pace pace);

    /// Plays the day, within the event loop; true when all has held. When the application is told to quit it ends
    /// early, and with false.
    bool play();

Q_SIGNALS:
    void changed();

private:
    /// A member of the cast while the day goes on.
    struct Actor
    {
        Program program;
        QSet<qsizetype> taken; ///< the lines that were called for
        QStringList called;    ///< what was called for, in its order
        bool isLate = false;   ///< whether it has been waited for in vain
    };

    void play(const Step& step, const QString& what);
    void start(const Step& step);
    void write(const Step& step, const QString& what);
    void ask(const Step& step, const QString& what);
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
