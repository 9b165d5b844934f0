// What a thread sends on channels, and its event loop's part in that.
#include "platform/qcop/ChannelSender_p.h"

#include "platform/posix/ForkLocalFd_p.h"
#include "platform/posix/UnixSocket_p.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QThread>

#include <algorithm>
#include <utility>
#include <vector>

#include <pthread.h>

namespace zyn {
namespace {

/// How often a sender that drains tries listeners that accept no connection: nothing can wait for these.
constexpr std::chrono::milliseconds kDrainStep{20};

/// How many channels a sender remembers, apart from those whose listeners have not received all.
constexpr size_t kChannelLimit = 4096;
/// The part of the process's descriptors that a sender uses for connections.
constexpr size_t kDescriptorPart = 4;
/// How many channels a sender examines to give one up, and how many listeners with something pending it tries with a
/// message for others: what a message costs must not grow with the number of channels.
constexpr int kCandidates = 4;
constexpr size_t kFlushedWithOthers = 16;

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

SenderLoop::SenderLoop(std::function<void()> flush)
    : m_flush(std::move(flush))
{}

quint64 SenderLoop::turn()
{
    if (QAbstractEventDispatcher* dispatcher = QAbstractEventDispatcher::instance(); dispatcher != m_dispatcher)
        watch(dispatcher);
    return m_announcesTurns && loopLevel() > t_foreignLoops ? m_turn : 0;
}

/// A loop that is left in the middle of a turn delivers no more events. Only the GLib dispatcher announces the end of
/// that turn too; with another nothing is gathered, for it might wait for ever.
void SenderLoop::watch(QAbstractEventDispatcher* dispatcher)
{
    m_dispatcher = dispatcher;
    m_announcesTurns = dispatcher && dispatcher->inherits("QEventDispatcherGlib");
    if (m_announcesTurns)
        connect(dispatcher, &QAbstractEventDispatcher::awake, this, &SenderLoop::noteTurn);
}

void SenderLoop::flushLater()
{
    if (std::exchange(m_isFlushWanted, true))
        return;
    // Every kind of loop delivers an event, if need be one that starts later.
    QMetaObject::invokeMethod(this, &SenderLoop::endTurn, Qt::QueuedConnection);
}

void SenderLoop::noteTurn()
{
    t_foreignLoops = std::clamp(loopLevel() - 1, 0, t_foreignLoops);
    endTurn();
}

void SenderLoop::endTurn()
{
    ++m_turn;
    if (std::exchange(m_isFlushWanted, false))
        m_flush();
}

ChannelSender::Channel::Channel(ChannelSender& sender, std::list<Key>::iterator key)
    : recent(key)
    , peers(key->first, key->second, sender.m_changes, sender.m_connections)
{}

ChannelSender::ChannelSender()
    : m_loop(std::make_unique<SenderLoop>([this] { flushFromLoop(); }))
{}

ChannelSender::~ChannelSender() = default;

bool ChannelSender::send(const QByteArray& channel, const ChannelFrame& frame)
{
    const quint64 turn = m_loop ? m_loop->turn() : 0;
    followEnvironment(turn);
    posix::UniqueFd root;
    if (!m_changes.isCurrent()) {
        root = openRoot();
        if (!root.isValid())
            return false;
        m_changes.update(root.get());
    }
    const bool isAccepted = channelOf(channel).peers.send(frame, turn, std::move(root));
    if (m_connections.pending.empty())
        return isAccepted;
    if (m_loop)
        m_loop->flushLater();
    if (turn == 0)
        flushSome(kFlushedWithOthers);
    return isAccepted;
}

/// The environment may change while the process runs, from one turn to the next, and with it where the channels are.
void ChannelSender::followEnvironment(quint64 turn)
{
    if (std::exchange(m_turn, turn) == turn && turn != 0)
        return;
    ChannelEnvironment environment = ChannelEnvironment::current();
    if (environment == m_environment)
        return;
    m_environment = std::move(environment);
    m_changes.forget();
}

/// Where the channels are, open; none while it may not be used.
posix::UniqueFd ChannelSender::openRoot()
{
    // A directory that was refused may have become usable, and the other way round.
    const QByteArray oldRoot = std::exchange(m_root, m_environment.root());
    if (m_root != oldRoot) {
        m_changes.forget();
        if (!m_root.isEmpty())
            forgetOtherRoots();
    }
    return ChannelDirectory::makeRoot(m_root);
}

ChannelSender::Channel& ChannelSender::channelOf(const QByteArray& channel)
{
    if (m_last && m_recent.back().second == channel && m_recent.back().first == m_root)
        return *m_last;
    const Key key(m_root, channel);
    if (const auto found = m_channels.find(key); found != m_channels.end()) {
        m_recent.splice(m_recent.end(), m_recent, found->second.recent);
        m_last = &found->second;
        return *m_last;
    }
    makeRoom();
    m_last = &m_channels.try_emplace(key, *this, m_recent.insert(m_recent.end(), key)).first->second;
    return *m_last;
}

void ChannelSender::makeRoom()
{
    m_last = nullptr;
    const size_t limit = posix::descriptorLimit() / kDescriptorPart;
    const auto isFull = [&] { return m_channels.size() >= kChannelLimit || m_connections.count >= limit; };
    for (int i = 0; i < kCandidates && !m_recent.empty() && isFull(); ++i) {
        const auto oldest = m_channels.find(m_recent.front());
        if (oldest == m_channels.end() || !oldest->second.peers.isIdle()) {
            m_recent.splice(m_recent.end(), m_recent, m_recent.begin()); // others have their turn first
            continue;
        }
        m_channels.erase(oldest);
        m_recent.pop_front();
    }
}

/// What listeners there have not received stays, and follows in its old place.
void ChannelSender::forgetOtherRoots()
{
    m_last = nullptr;
    flushSome(m_connections.pending.size());
    std::erase_if(m_channels, [&](const auto& entry) {
        const bool isForgotten = entry.first.first != m_root && entry.second.peers.isIdle();
        if (isForgotten)
            m_recent.erase(entry.second.recent);
        return isForgotten;
    });
}

void ChannelSender::flushFromLoop()
{
    for (auto it = m_connections.pending.begin(); it != m_connections.pending.end();) {
        ChannelPeer* peer = *it++; // which leaves the list when nothing is pending any more
        peer->flushFromLoop();
    }
}

/// Writes what is pending for @p most listeners, others each time, as far as they read now.
void ChannelSender::flushSome(size_t most)
{
    std::list<ChannelPeer*>& pending = m_connections.pending;
    for (size_t left = std::min(most, pending.size()); left > 0; --left) {
        ChannelPeer* peer = pending.front();
        pending.splice(pending.end(), pending, pending.begin());
        peer->flush();
    }
}

void ChannelSender::leaveLoop()
{
    m_loop.reset();
    for (auto& [key, channel] : m_channels) {
        for (auto& [name, peer] : channel.peers.peers())
            peer.leaveLoop();
    }
}

void ChannelSender::drain(std::chrono::nanoseconds time)
{
    const auto deadline = std::chrono::steady_clock::now() + time;
    for (;;) {
        flushSome(m_connections.pending.size());
        if (m_connections.pending.empty() || std::chrono::steady_clock::now() >= deadline)
            return;
        std::vector<int> waiting;
        for (const ChannelPeer* peer : m_connections.pending)
            waiting.push_back(peer->fd());
        posix::waitUntilAnyWritable(waiting, kDrainStep);
    }
}

} // namespace zyn
