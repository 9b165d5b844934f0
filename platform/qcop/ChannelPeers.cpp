// A sender's view of one channel: all its listeners.
#include "platform/qcop/ChannelPeers_p.h"

#include "platform/posix/DirectoryWatch_p.h"
#include "platform/qcop/ChannelDirectory_p.h"

#include <algorithm>
#include <cerrno>
#include <utility>

namespace zyn {
namespace {

/// How many messages of one turn are written at once. What is gathered is late when the turn takes long, and lost when
/// the process dies in it, so that it must be worth it.
constexpr unsigned kAtOnce = 16;

} // namespace

ChannelPeers::ChannelPeers(const QByteArray& root, const QCString& channel, posix::DirectoryWatch& watch,
                           ChannelConnections& connections)
    : m_root(root)
    , m_channel(channel)
    , m_watch(watch)
    , m_connections(connections)
    , m_watchId(posix::DirectoryWatch::kUnwatched)
{}

ChannelPeers::~ChannelPeers()
{
    m_watch.remove(m_watchId);
}

bool ChannelPeers::send(const ChannelFrame& frame, quint64 turn)
{
    // Noted before the list is read: what changes in between is noticed by the next send.
    if (const quint64 now = m_watch.now(); hasChanged()) {
        if (!refresh())
            return false;
        m_moment = now;
    }
    if (std::exchange(m_turn, turn) != turn)
        m_sentInTurn = 0;
    const bool gather = turn != 0 && m_sentInTurn >= kAtOnce;
    m_sentInTurn = std::min(m_sentInTurn + 1, kAtOnce);
    bool isTaken = true;
    for (auto it = m_peers.begin(); it != m_peers.end();) {
        const auto result = it->second.take(frame, gather);
        isTaken = isTaken && result != ChannelPeer::Result::Missed;
        it = result == ChannelPeer::Result::Gone ? m_peers.erase(it) : std::next(it);
    }
    return isTaken;
}

bool ChannelPeers::isIdle() const
{
    return std::all_of(m_peers.begin(), m_peers.end(), [](const auto& entry) { return entry.second.isIdle(); });
}

bool ChannelPeers::hasChanged() const
{
    return m_watch.haveAllChanged(m_moment) || (!m_isMissing && m_watch.hasChanged(m_watchId, m_moment));
}

bool ChannelPeers::refresh()
{
    ChannelDirectory::clean(m_root);
    // Before the list is read, so that no listener comes unseen in between.
    m_watch.addWay(m_root);
    const posix::UniqueFd root = ChannelDirectory::makeRoot(m_root);
    if (!root.isValid())
        return false;
    m_watch.addShared(root.get());
    const auto directory = ChannelDirectory::open(m_root, m_channel);
    m_isMissing = !directory && errno == ENOENT;
    if (!directory && !m_isMissing)
        return false;
    const int id = directory ? m_watch.add(directory->fd()) : posix::DirectoryWatch::kUnwatched;
    if (const int oldId = std::exchange(m_watchId, id); oldId != id)
        m_watch.remove(oldId);
    auto names = directory ? directory->listeners() : QList<QByteArray>();
    if (!names)
        return false;
    std::sort(names->begin(), names->end());
    // Where a listener's name was removed by somebody else, its connection is all that tells that it lives.
    std::erase_if(m_peers, [&](const auto& entry) {
        return !std::binary_search(names->begin(), names->end(), entry.first) && !entry.second.isAlive();
    });
    for (const QByteArray& name : std::as_const(*names))
        m_peers.try_emplace(name, m_root, m_channel, name, m_connections);
    return true;
}

} // namespace zyn
