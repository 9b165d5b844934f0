// A sender's view of one channel: all its listeners.
#include "platform/qcop/ChannelPeers_p.h"

#include "platform/posix/DirectoryWatch_p.h"
#include "platform/qcop/ChannelDirectory_p.h"

#include <algorithm>
#include <utility>

namespace zyn {

ChannelPeers::ChannelPeers(const QByteArray& root, const QCString& channel)
    : m_root(root)
    , m_channel(channel)
{}

bool ChannelPeers::send(const ChannelFrame& frame, posix::DirectoryWatch& watch, quint64 turn)
{
    // Counted before the list is read: what changes in between is noticed by the next send.
    if (const quint64 changes = watch.changes(); changes != m_changes) {
        if (!refresh(watch))
            return false;
        m_changes = changes;
    }
    const bool gather = std::exchange(m_turn, turn) == turn && turn != 0;
    bool isTaken = true;
    for (auto it = m_peers.begin(); it != m_peers.end();) {
        const auto result = it->second.take(frame, gather);
        isTaken = isTaken && result != ChannelPeer::Result::Missed;
        it = result == ChannelPeer::Result::Gone ? m_peers.erase(it) : std::next(it);
    }
    return isTaken;
}

bool ChannelPeers::isPending() const
{
    return std::any_of(m_peers.begin(), m_peers.end(), [](const auto& entry) { return entry.second.isPending(); });
}

bool ChannelPeers::refresh(posix::DirectoryWatch& watch)
{
    const auto directory = ChannelDirectory::make(m_root, m_channel);
    if (!directory)
        return false;
    // Before the list is read, so that no listener comes unseen in between.
    watch.add(directory->root());
    watch.add(directory->fd());
    const auto names = directory->listeners();
    if (!names)
        return false;
    std::erase_if(m_peers, [&](const auto& entry) { return !names->contains(entry.first); });
    for (const QByteArray& name : *names)
        m_peers.try_emplace(name, m_root, m_channel, name);
    return true;
}

} // namespace zyn
