// What a thread sends on channels.
#include "platform/qcop/ChannelSender_p.h"

#include "platform/qcop/ChannelFrame_p.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QThread>

#include <algorithm>
#include <vector>

#include <poll.h>
#include <pthread.h>

namespace {

/// How often a sender that drains looks after listeners that accept no connection, which poll() cannot wait
/// for.
constexpr std::chrono::milliseconds kDrainStep{20};

/// How many channels a sender remembers, apart from those on which something is pending.
constexpr size_t kChannelLimit = 64;

/// How many of the loops that seem to run in this thread are, as far as known, a forking parent's.
thread_local int t_foreignLoops = 0;

int loopLevel()
{
    return QThread::currentThread()->loopLevel();
}

void followForks()
{
    ::pthread_atfork(nullptr, nullptr, [] { t_foreignLoops = loopLevel(); });
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(followForks)

namespace zyn {

bool ChannelSender::send(const QCString& channel, const ChannelFrame& frame)
{
    followEnvironment();
    watchTurns();
    const auto place = std::make_pair(m_root, channel);
    if (m_channels.size() >= kChannelLimit && !m_channels.contains(place))
        forgetIdle();
    ChannelPeers& peers = m_channels.try_emplace(place, m_root, channel).first->second;
    const bool hasTurns = m_tellsTurns && loopLevel() > t_foreignLoops;
    const bool isTaken = peers.send(frame, m_watch, hasTurns ? m_turn : 0);
    if (!m_isTurnOpen && (hasTurns || peers.isPending())) {
        m_isTurnOpen = true;
        // Every kind of loop delivers an event, if need be one that starts later.
        QMetaObject::invokeMethod(this, &ChannelSender::endTurn, Qt::QueuedConnection);
    }
    return isTaken;
}

/// The environment may change while the process runs, and with it the place of the channels.
void ChannelSender::followEnvironment()
{
    // A place that was refused may have become usable.
    if (ChannelEnvironment::current() == m_environment && !m_root.isEmpty())
        return;
    m_environment = ChannelEnvironment::current();
    if (const QByteArray root = m_environment.root(); root != m_root) {
        m_root = root;
        forgetIdle();
    }
}

/// What is pending stays, and follows in its old place.
void ChannelSender::forgetIdle()
{
    drain(std::chrono::milliseconds::zero());
    std::erase_if(m_channels, [](const auto& entry) { return !entry.second.isPending(); });
    m_watch.restart();
}

/// A loop that is left in the middle of a turn delivers no more events. Only the GLib dispatcher tells the
/// end of that turn too; with another nothing is gathered, for it might wait for ever.
void ChannelSender::watchTurns()
{
    QAbstractEventDispatcher* dispatcher = QAbstractEventDispatcher::instance();
    if (dispatcher == m_dispatcher)
        return;
    m_dispatcher = dispatcher;
    m_tellsTurns = dispatcher && dispatcher->inherits("QEventDispatcherGlib");
    if (m_tellsTurns)
        connect(dispatcher, &QAbstractEventDispatcher::awake, this, &ChannelSender::noteTurn);
}

void ChannelSender::noteTurn()
{
    t_foreignLoops = std::clamp(loopLevel() - 1, 0, t_foreignLoops);
    endTurn();
}

void ChannelSender::endTurn()
{
    if (!m_isTurnOpen)
        return;
    m_isTurnOpen = false;
    ++m_turn;
    for (auto& [place, peers] : m_channels) {
        for (auto& [name, peer] : peers.peers())
            peer.flushFromLoop();
    }
}

void ChannelSender::drain(std::chrono::milliseconds time)
{
    const auto deadline = std::chrono::steady_clock::now() + time;
    for (;;) {
        std::vector<pollfd> pending;
        for (auto& [place, peers] : m_channels) {
            for (auto& [name, peer] : peers.peers()) {
                peer.flush();
                if (peer.isPending())
                    pending.push_back({peer.fd(), POLLOUT, 0});
            }
        }
        if (pending.empty() || std::chrono::steady_clock::now() >= deadline)
            return;
        ::poll(pending.data(), pending.size(), static_cast<int>(kDrainStep.count()));
    }
}

} // namespace zyn
