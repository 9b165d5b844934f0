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

    ChannelPeers(const QByteArray& root, const QCString& channel);

    /// Sends to every listener that exists now; false when the channel may not be used or a listener misses
    /// the message. What is sent first in @p turn is written at once, what follows is gathered; turn 0 is for
    /// a thread without turns.
    bool send(const ChannelFrame& frame, posix::DirectoryWatch& watch, quint64 turn);
    bool isPending() const;
    Map& peers() { return m_peers; }

private:
    bool refresh(posix::DirectoryWatch& watch);

    const QByteArray m_root;
    const QCString m_channel;
    Map m_peers;
    quint64 m_changes = 0; ///< of the watch, when the list was read
    quint64 m_turn = 0;    ///< the one in which something was last sent
};

} // namespace zyn
