// The sending end of a channel: the connections to its listeners.
#pragma once

#include "platform/posix/ForkLocalFd_p.h"
#include "platform/posix/UnixSocket_p.h"

#include <QtCore/QByteArray>
#include <QtCore/QSocketNotifier>
#include <QtCore/QTimer>

#include <cstddef>
#include <list>
#include <map>
#include <memory>
#include <optional>

namespace zyn {

class ChannelChanges;
class ChannelDirectory;
class ChannelFrame;
class ChannelPeer;

/// What the connections of one sending thread have in common.
struct ChannelConnections
{
    std::list<ChannelPeer*> pending; ///< those with something to send
    size_t count = 0;                ///< the open ones
};

/// What is gathered for all listeners of a channel at once, rather than for each: a burst costs little more for many.
struct ChannelGathered
{
    QByteArray bytes;
    bool isOpen = false; ///< whether more may be added: all listeners are connected and are yet to take what is there
};

/**
 * Keeps the connection to one listener, and in order what is yet to be sent to it.
 *
 * Nothing here waits. A listener for which kQueueLimit bytes wait misses what does not fit, until it has read some of
 * them; what was accepted stays in order and follows.
 */
class ChannelPeer
{
public:
    /// The most bytes that wait in memory for one listener, unless a single message is larger.
    static constexpr qsizetype kQueueLimit = qsizetype{16} * 1024 * 1024;

    enum class Result {
        Accepted, ///< the listener got or will get the message
        Missed,   ///< it will not
        Coming,   ///< it does not listen yet
        Gone,     ///< there is no such listener any more
    };

    /// The listener @p name of @p channel, whose directory is under @p root. Connects with the first message.
    ChannelPeer(const QByteArray& root, const QByteArray& channel, const QByteArray& name, ChannelConnections& all,
                ChannelGathered& gathered);
    ChannelPeer(const ChannelPeer&) = delete;
    ChannelPeer& operator=(const ChannelPeer&) = delete;
    ~ChannelPeer();

    /// Sends a message, or with @p gather keeps it until flush() or until there is enough for one large write. Connects
    /// through @p directory, the channel's, if it is open.
    Result send(const ChannelFrame& frame, bool gather, const ChannelDirectory* directory = nullptr);
    /// Whether what is gathered for all may be kept for this one too.
    bool canGather() const;
    /// What is gathered for all from now on is to be sent to this one.
    void startGathering();
    /// Copies what was gathered for all, which is about to go.
    void takeGathered();
    /// Writes what is kept, as far as the socket has room.
    void flush();
    /// Has the calling thread's event loop write what is kept as soon as there is room.
    void flushFromLoop();
    /// Needs no event loop from now on.
    void leaveLoop();
    bool isPending() const { return m_isGathering || !m_queue.isEmpty(); }
    /// Whether the listener has received all. Only then may the connection be given up: what is sent over another would
    /// overtake what has not been received.
    bool isIdle() const;
    /// Whether a listener that cannot be found any more still receives what is sent to it.
    bool isAlive() const;
    /// The connection; -1 while there is none.
    int fd() const { return m_fd ? m_fd->get() : -1; }

private:
    enum class Link { Open, Waiting, Failed, Coming, Gone };

    Link link(const ChannelDirectory* directory = nullptr);
    Link connect();
    Link connect(const ChannelDirectory& directory);
    bool isAwaited();
    bool makeRoom(const ChannelFrame& frame);
    bool put(const ChannelFrame& frame, bool gather);
    bool putAtOnce(const ChannelFrame& frame);
    void retryFromLoop();
    void stopGathering();
    void disconnect();
    void notePending();

    const QByteArray m_root;
    const QByteArray m_channel;
    const QByteArray m_name;
    const unsigned m_generation;
    ChannelConnections& m_all;
    ChannelGathered& m_gathered;
    std::optional<posix::ForkLocalFd> m_fd; ///< a child's copy would seem to a listener to be a sender that lives
    std::optional<std::list<ChannelPeer*>::iterator> m_pendingPlace;
    std::optional<posix::Clock::time_point> m_goneSince; ///< when it was first not found, with something pending
    QByteArray m_queue;
    bool m_isGathering = false; ///< what is gathered for all follows the queue
    qsizetype m_nextFlush;
    std::unique_ptr<QSocketNotifier> m_notifier; ///< enabled while connected and pending
    std::unique_ptr<QTimer> m_retry;             ///< runs while pending without a connection
};

/// The listeners of one channel as one sending thread knows them. Their list is read again whenever it may have
/// changed.
class ChannelPeers
{
public:
    using Map = std::map<QByteArray, ChannelPeer>;

    /// Lives no longer than @p changes and @p connections, which those of other channels share.
    ChannelPeers(const QByteArray& root, const QByteArray& channel, const ChannelChanges& changes,
                 ChannelConnections& connections);
    ChannelPeers(const ChannelPeers&) = delete;
    ChannelPeers& operator=(const ChannelPeers&) = delete;

    /// Sends to every listener that exists now; false when the channel may not be used or a listener misses the
    /// message. The first messages of @p turn are written at once, each; what follows is gathered, as then many follow.
    /// Turn 0 is for a thread without turns. @p root is its directory if it is open.
    bool send(const ChannelFrame& frame, quint64 turn, posix::UniqueFd root);
    /// Whether all listeners have received all.
    bool isIdle() const;
    Map& peers() { return m_peers; }

private:
    bool gather(const ChannelFrame& frame);
    void takeGathered();
    bool refresh(const std::optional<ChannelDirectory>& directory);

    const QByteArray m_root;
    const QByteArray m_channel;
    const ChannelChanges& m_changes;
    ChannelConnections& m_connections;
    ChannelGathered m_gathered;
    Map m_peers;
    uint64_t m_moment = 0; ///< of the changes, when the list was read
    quint64 m_turn = 0;    ///< the one in which something was last sent
    unsigned m_sentInTurn = 0;
};

} // namespace zyn
