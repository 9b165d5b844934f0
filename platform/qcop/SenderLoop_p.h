// The event loop of a sending thread.
#pragma once

#include <QtCore/QAbstractEventDispatcher>
#include <QtCore/QObject>
#include <QtCore/QPointer>

#include <functional>

namespace zyn {

/// Tells a sender the turns of its thread's event loop, and when what it keeps is to be written.
class SenderLoop : public QObject
{
public:
    /// Calls @p flush at the end of each turn in which flushLater() was called.
    explicit SenderLoop(std::function<void()> flush);

    /// The turn that the thread's event loop is in. 0 when none runs, or when its dispatcher does not tell the end of
    /// every turn: nothing may be gathered then.
    quint64 turn();
    /// Also outside of a loop: the next one that starts has its first turn then.
    void flushLater();

private:
    void watch(QAbstractEventDispatcher* dispatcher);
    void noteTurn();
    void endTurn();

    const std::function<void()> m_flush;
    QPointer<QAbstractEventDispatcher> m_dispatcher;
    bool m_tellsTurns = false; ///< whether the dispatcher tells the end of every turn
    quint64 m_turn = 1;
    bool m_isFlushWanted = false;
};

} // namespace zyn
