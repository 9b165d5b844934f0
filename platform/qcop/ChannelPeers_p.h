// A sender's view of one channel: all its listeners.
#pragma once

#include "platform/QCString.h"
#include "platform/qcop/ChannelPeer_p.h"

#include <map>

namespace zyn {

namespace posix {
class DirectoryWatch;
}

/// The listeners of one channel as one sending thread knows them. Their list is read again whenever it may
/// have changed.
class ChannelPeers
{
public:
    using Map = std::map<QByteArray, ChannelPeer>;

    /// Lives no longer than @p watch and @p connections, which those of other channels share.
    ChannelPeers(const QByteArray& root, const QCString& channel, posix::DirectoryWatch& watch,
                 ChannelConnections& connections);
    ChannelPeers(const ChannelPeers&) = delete;
    ChannelPeers& operator=(const ChannelPeers&) = delete;
    ~ChannelPeers();

    /// Sends to every listener that exists now; false when the channel may not be used or a listener misses
    /// the message. The first messages of @p turn are written at once, each; what follows is gathered, as then many
    /// follow. Turn 0 is for a thread without turns.
    bool send(const ChannelFrame& frame, quint64 turn);
    /// Whether all listeners have received all.
    bool isIdle() const;
    Map& peers() { return m_peers; }

private:
    bool hasChanged() const;
    bool refresh();

    const QByteArray m_root;
    const QCString m_channel;
    posix::DirectoryWatch& m_watch;
    ChannelConnections& m_connections;
    Map m_peers;
    quint64 m_moment = 0;     ///< of the watch, when the list was read
    bool m_isMissing = false; ///< whether there was no directory then, hence nothing to watch
    int m_watchId;
    quint64 m_turn = 0; ///< the one in which something was last sent
    unsigned m_sentInTurn = 0;
};

} // namespace zyn
