// What a thread sends on channels.
#include "platform/qcop/ChannelSender_p.h"

#include "platform/posix/ForkLocalFd_p.h"
#include "platform/qcop/ChannelFrame_p.h"
#include "platform/qcop/SenderLoop_p.h"

#include <algorithm>
#include <vector>

#include <poll.h>

namespace zyn {
namespace {

/// How often a sender that drains looks after listeners that accept no connection, which poll() cannot wait
/// for.
constexpr std::chrono::milliseconds kDrainStep{20};

/// How many channels a sender remembers, apart from those whose listeners have not received all.
constexpr size_t kChannelLimit = 4096;
/// The part of the process's descriptors that a sender uses for connections.
constexpr size_t kDescriptorPart = 4;
/// How many channels a sender looks at to give one up, and how many listeners that have yet to take something it tries
/// with a message for others: what a message costs must not grow with the number of channels.
constexpr int kCandidates = 4;
constexpr size_t kFlushedWithOthers = 16;

} // namespace

ChannelSender::Channel::Channel(ChannelSender& sender, std::list<Place>::iterator place)
    : recent(place)
    , peers(place->first, place->second, sender.m_watch, sender.m_connections)
{}

ChannelSender::ChannelSender()
    : m_loop(std::make_unique<SenderLoop>([this] { flushFromLoop(); }))
{}

ChannelSender::~ChannelSender() = default;

bool ChannelSender::send(const QCString& channel, const ChannelFrame& frame)
{
    m_watch.poll();
    followEnvironment();
    if (m_root.isEmpty())
        return false;
    const quint64 turn = m_loop ? m_loop->turn() : 0;
    const bool isTaken = channelAt({m_root, channel}).peers.send(frame, turn);
    if (m_connections.pending.empty())
        return isTaken;
    if (m_loop)
        m_loop->flushLater();
    if (turn == 0)
        flushSome(kFlushedWithOthers);
    return isTaken;
}

/// The environment may change while the process runs, and with it the place of the channels.
void ChannelSender::followEnvironment()
{
    // A place that was refused may have become usable, and the other way round.
    ChannelEnvironment environment = ChannelEnvironment::current();
    if (environment == m_environment && !m_root.isEmpty() && !m_watch.haveAllChanged(m_rootMoment))
        return;
    m_environment = std::move(environment);
    m_rootMoment = m_watch.now();
    const QByteArray oldRoot = std::exchange(m_root, m_environment.root());
    if (m_root != oldRoot && !m_root.isEmpty())
        forgetOtherRoots();
}

ChannelSender::Channel& ChannelSender::channelAt(const Place& place)
{
    if (const auto found = m_channels.find(place); found != m_channels.end()) {
        m_recent.splice(m_recent.end(), m_recent, found->second.recent);
        return found->second;
    }
    makeRoom();
    return m_channels.try_emplace(place, *this, m_recent.insert(m_recent.end(), place)).first->second;
}

void ChannelSender::makeRoom()
{
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

/// Writes what listeners take now of what is pending for @p most of them, others each time.
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
    for (auto& [place, channel] : m_channels) {
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
        std::vector<pollfd> waiting;
        for (const ChannelPeer* peer : m_connections.pending)
            waiting.push_back({peer->fd(), POLLOUT, 0});
        ::poll(waiting.data(), waiting.size(), static_cast<int>(kDrainStep.count()));
    }
}

} // namespace zyn
