// What a thread sends on channels, and its event loop's part in that.
#pragma once

#include "platform/qcop/ChannelChanges_p.h"
#include "platform/qcop/ChannelDirectory_p.h"
#include "platform/qcop/ChannelFrame_p.h"
#include "platform/qcop/ChannelPeers_p.h"

#include <QtCore/QAbstractEventDispatcher>
#include <QtCore/QObject>
#include <QtCore/QPointer>

#include <chrono>
#include <functional>
#include <list>
#include <memory>
#include <unordered_map>
#include <utility>

namespace zyn {

/// The event loop of a sending thread: counts its turns, and has what was gathered in one written at its end.
class SenderLoop : public QObject
{
public:
    /// Calls @p flush at the end of each turn in which flushLater() was called.
    explicit SenderLoop(std::function<void()> flush);

    /// The turn that the thread's event loop is in. 0 when none runs, or when its dispatcher does not announce the end
    /// of every turn: nothing may be gathered then.
    quint64 turn();
    /// Also outside of a loop: the next one that starts has its first turn then.
    void flushLater();

private:
    void watch(QAbstractEventDispatcher* dispatcher);
    void noteTurn();
    void endTurn();

    const std::function<void()> m_flush;
    QPointer<QAbstractEventDispatcher> m_dispatcher;
    bool m_announcesTurns = false; ///< whether the dispatcher announces the end of every turn
    quint64 m_turn = 1;
    bool m_isFlushWanted = false;
};

/**
 * Sends the messages of one thread, each thread having a sender of its own, so that none waits for another.
 *
 * In a running event loop of a dispatcher that announces the end of every turn, what follows the first messages of a
 * turn on a channel is gathered and written at the turn's end. What listeners do not receive at once follows from the
 * loop, or, without one, with later messages on any channel, and at the latest when the thread or the process ends, for
 * which it waits for a bounded time.
 *
 * A thread may use any number of channels. Beyond what is reasonable to keep open, those that were not used for longest
 * are given up whose listeners have received all.
 */
class ChannelSender
{
public:
    ChannelSender();
    ChannelSender(const ChannelSender&) = delete;
    ChannelSender& operator=(const ChannelSender&) = delete;
    ~ChannelSender();

    /// Sends from the calling thread, whose sender lasts until the thread or the process ends, or until a fork.
    static bool sendFromThisThread(const QByteArray& channel, const ChannelFrame& frame);

    /// Sends to the listeners of @p channel, as QCopChannel::send() does.
    bool send(const QByteArray& channel, const ChannelFrame& frame);
    /// Waits until listeners have received all that is pending, at most for @p time. Needs nothing of Qt, which may be
    /// gone.
    void drain(std::chrono::nanoseconds time);

    /// The thread's event loop; null after leaveLoop().
    SenderLoop* loop() { return m_loop.get(); }
    /// Needs no event loop from now on: everything is written at once.
    void leaveLoop();

private:
    /// A channel's root and name.
    using Key = std::pair<QByteArray, QByteArray>;
    struct KeyHash
    {
        size_t operator()(const Key& key) const { return qHash(key.second); }
    };
    struct Channel
    {
        Channel(ChannelSender& sender, std::list<Key>::iterator key);

        std::list<Key>::iterator recent;
        ChannelPeers peers;
    };

    void followEnvironment(quint64 turn);
    posix::UniqueFd openRoot();
    Channel& channelOf(const QByteArray& channel);
    void makeRoom();
    void forgetOtherRoots();
    void flushFromLoop();
    void flushSome(size_t most);

    ChannelEnvironment m_environment;
    QByteArray m_root;
    quint64 m_turn = 0; ///< the one in which the environment was last looked at
    ChannelChanges m_changes;
    ChannelConnections m_connections;
    std::unordered_map<Key, Channel, KeyHash> m_channels;
    std::list<Key> m_recent;   ///< the keys of m_channels, the one last used at the end
    Channel* m_last = nullptr; ///< the one last used, if it is still there
    std::unique_ptr<SenderLoop> m_loop;
};

} // namespace zyn
