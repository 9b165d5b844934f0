// The sending end of a channel: the connections to its listeners.
#include "platform/qcop/ChannelPeers_p.h"

#include "platform/qcop/ChannelChanges_p.h"
#include "platform/qcop/ChannelDirectory_p.h"
#include "platform/qcop/ChannelFrame_p.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <utility>

namespace zyn {
namespace {

/// How much is gathered before it is written: large writes stop paying off beyond it.
constexpr qsizetype kGatherSize = qsizetype{64} * 1024;
/// The most memory that is kept while nothing is pending.
constexpr qsizetype kIdleQueue = 4 * kGatherSize;
/// How often a listener too busy to accept is tried again.
constexpr std::chrono::milliseconds kRetryInterval{20};
/// How soon a listener makes its socket again that somebody has removed.
constexpr std::chrono::seconds kReturnTime{5};
/// How many messages of one turn are written at once. What is gathered is late when the turn takes long, and lost when
/// the process dies in it, so that it must be worth it.
constexpr unsigned kAtOnce = 16;
/// The most that is gathered for all listeners at once: it is written from kGatherSize on.
constexpr qsizetype kGatheredLimit = 2 * kGatherSize;

} // namespace

ChannelPeer::ChannelPeer(const QByteArray& root, const QByteArray& channel, const QByteArray& name,
                         ChannelConnections& all, ChannelGathered& gathered)
    : m_root(root)
    , m_channel(channel)
    , m_name(name)
    , m_generation(posix::forkGeneration())
    , m_all(all)
    , m_gathered(gathered)
    , m_nextFlush(kGatherSize)
{}

ChannelPeer::~ChannelPeer()
{
    disconnect();
}

ChannelPeer::Result ChannelPeer::send(const ChannelFrame& frame, bool gather, const ChannelDirectory* directory)
{
    // A lost connection does not prove that the listener is dead; that a new one is refused does.
    for (int attempt = 0; attempt < 2; ++attempt) {
        const Link state = link(directory);
        if (state == Link::Gone || state == Link::Coming)
            return state == Link::Gone ? Result::Gone : Result::Coming;
        if (state == Link::Failed || !makeRoom(frame))
            return Result::Missed;
        if (put(frame, gather))
            return Result::Accepted;
    }
    return Result::Missed;
}

/// Makes the connection unless there is one.
ChannelPeer::Link ChannelPeer::link(const ChannelDirectory* directory)
{
    if (m_fd)
        return Link::Open;
    return directory ? connect(*directory) : connect();
}

ChannelPeer::Link ChannelPeer::connect()
{
    const auto directory = ChannelDirectory::open(m_root, m_channel);
    if (!directory)
        return errno != ENOENT ? Link::Failed : isAwaited() ? Link::Waiting : Link::Gone;
    return connect(*directory);
}

ChannelPeer::Link ChannelPeer::connect(const ChannelDirectory& directory)
{
    int error = 0;
    m_fd.emplace([&] {
        posix::UniqueFd fd = directory.connectTo(m_name);
        error = fd.isValid() ? 0 : errno;
        return fd;
    });
    if (m_fd->isValid() && posix::isPeerTrusted(fd())) {
        ++m_all.count;
        m_goneSince.reset();
        m_queue.prepend(introductionFrame());
        notePending();
        return Link::Open;
    }
    m_fd.reset();
    switch (error) {
    case ECONNREFUSED:
        if (!directory.removeIfDead(m_name))
            return isPending() ? Link::Waiting : Link::Coming;
        directory.removeIfEmpty();
        return Link::Gone;
    case ENOENT:
        return isAwaited() ? Link::Waiting : Link::Gone;
    case EAGAIN:
        return Link::Waiting;
    default:
        return Link::Failed;
    }
}

/// Whether a listener that is not found may come back for what waits for it: the socket of one that was too busy to
/// accept may have been removed.
bool ChannelPeer::isAwaited()
{
    if (!isPending())
        return false;
    const auto now = posix::Clock::now();
    return now - *(m_goneSince ? m_goneSince : m_goneSince = now) < kReturnTime;
}

bool ChannelPeer::canGather() const
{
    return m_fd && m_queue.size() + kGatheredLimit <= kQueueLimit;
}

void ChannelPeer::startGathering()
{
    m_isGathering = true;
    notePending();
}

void ChannelPeer::takeGathered()
{
    if (!m_isGathering)
        return;
    m_queue.append(m_gathered.bytes);
    stopGathering();
}

void ChannelPeer::stopGathering()
{
    if (std::exchange(m_isGathering, false))
        m_gathered.isOpen = false;
}

/// Whether the message fits into what may wait, if need be after a write.
bool ChannelPeer::makeRoom(const ChannelFrame& frame)
{
    const auto fits = [&] { return !isPending() || m_queue.size() + frame.size() <= kQueueLimit; };
    if (!fits() && m_fd)
        flush();
    return fits();
}

/// Writes or keeps the message; false when the connection turns out to be lost.
bool ChannelPeer::put(const ChannelFrame& frame, bool gather)
{
    const bool isConnected = m_fd.has_value();
    if (isConnected && !isPending() && !gather)
        return putAtOnce(frame);
    frame.appendTo(m_queue);
    notePending();
    if (isConnected && (!gather || m_queue.size() >= m_nextFlush))
        flush();
    return m_fd.has_value() == isConnected;
}

bool ChannelPeer::putAtOnce(const ChannelFrame& frame)
{
    const ssize_t n = frame.sendTo(fd());
    if (n < 0) {
        disconnect();
        return false;
    }
    frame.appendTo(m_queue, n);
    notePending();
    return true;
}

void ChannelPeer::flush()
{
    if (!isPending())
        return;
    if (const Link state = link(); state != Link::Open) {
        if (state == Link::Gone)
            disconnect();
        return;
    }
    if (!m_queue.isEmpty())
        takeGathered();
    const QByteArray& source = m_isGathering ? m_gathered.bytes : m_queue;
    const ssize_t n = posix::sendSome(fd(), std::as_bytes(std::span(source.constData(), size_t(source.size()))));
    if (n < 0)
        return disconnect();
    if (m_isGathering) {
        m_queue = source.sliced(n); // which others may be yet to write
        stopGathering();
    } else {
        m_queue.remove(0, n);
    }
    notePending();
    if (!isPending() && m_queue.capacity() > kIdleQueue)
        m_queue = QByteArray();
    m_nextFlush = m_queue.size() + kGatherSize;
}

void ChannelPeer::flushFromLoop()
{
    if (m_generation != posix::forkGeneration()) // a forked child's loop: what waits here is its parent's
        return disconnect();
    flush();
    const bool isConnected = m_fd.has_value();
    if (isPending() && isConnected && !m_notifier) {
        m_notifier = std::make_unique<QSocketNotifier>(fd(), QSocketNotifier::Write);
        QObject::connect(m_notifier.get(), &QSocketNotifier::activated, [this] { flushFromLoop(); });
    }
    if (m_notifier)
        m_notifier->setEnabled(isPending());
    if (isPending() && !isConnected)
        retryFromLoop();
}

void ChannelPeer::retryFromLoop()
{
    if (!m_retry) {
        m_retry = std::make_unique<QTimer>();
        m_retry->setSingleShot(true);
        m_retry->callOnTimeout([this] { flushFromLoop(); });
    }
    m_retry->start(kRetryInterval);
}

void ChannelPeer::leaveLoop()
{
    m_notifier.reset();
    m_retry.reset();
}

bool ChannelPeer::isIdle() const
{
    return !isPending() && (!m_fd || posix::isAllReceived(fd()));
}

bool ChannelPeer::isAlive() const
{
    return m_fd ? !posix::waitUntilClosed(fd(), posix::Clock::now()) : isPending();
}

void ChannelPeer::disconnect()
{
    m_notifier.reset();
    stopGathering();
    m_queue = QByteArray();
    notePending();
    m_nextFlush = kGatherSize;
    if (m_fd)
        --m_all.count;
    m_fd.reset();
}

void ChannelPeer::notePending()
{
    if (isPending() == m_pendingPlace.has_value())
        return;
    if (m_pendingPlace)
        m_all.pending.erase(*m_pendingPlace);
    m_pendingPlace.reset();
    if (isPending())
        m_pendingPlace = m_all.pending.insert(m_all.pending.end(), this);
}

ChannelPeers::ChannelPeers(const QByteArray& root, const QByteArray& channel, const ChannelChanges& changes,
                           ChannelConnections& connections)
    : m_root(root)
    , m_channel(channel)
    , m_changes(changes)
    , m_connections(connections)
{}

bool ChannelPeers::send(const ChannelFrame& frame, quint64 turn, posix::UniqueFd root)
{
    std::optional<ChannelDirectory> directory;
    if (m_moment != m_changes.moment()) {
        takeGathered();   // which is not for new listeners
        if (m_moment > 0) // a process that sends once does not clean up
            ChannelDirectory::clean(m_root);
        directory = root.isValid() ? ChannelDirectory::open(std::move(root), m_channel)
                                   : ChannelDirectory::open(m_root, m_channel);
        if (!refresh(directory))
            return false;
        m_moment = m_changes.moment();
    }
    if (std::exchange(m_turn, turn) != turn)
        m_sentInTurn = 0;
    const bool gather = turn != 0 && m_sentInTurn >= kAtOnce;
    m_sentInTurn = std::min(m_sentInTurn + 1, kAtOnce);
    if (gather && this->gather(frame))
        return true;
    takeGathered();
    bool isAccepted = true;
    for (auto it = m_peers.begin(); it != m_peers.end();) {
        const auto result = it->second.send(frame, gather, directory ? &*directory : nullptr);
        isAccepted = isAccepted && result != ChannelPeer::Result::Missed;
        if (result == ChannelPeer::Result::Coming)
            m_moment = 0; // is looked for with every message until it listens
        const bool isThere = result == ChannelPeer::Result::Accepted || result == ChannelPeer::Result::Missed;
        it = isThere ? std::next(it) : m_peers.erase(it);
    }
    return isAccepted;
}

/// Gathers the message for all listeners; false when that is not possible.
bool ChannelPeers::gather(const ChannelFrame& frame)
{
    if (frame.size() > kGatherSize)
        return false;
    if (!m_gathered.isOpen) {
        takeGathered();
        if (!std::ranges::all_of(m_peers, [](const auto& entry) { return entry.second.canGather(); }))
            return false;
        for (auto& [name, peer] : m_peers)
            peer.startGathering();
        m_gathered.isOpen = !m_peers.empty();
    }
    if (!m_gathered.isOpen) // nobody listens
        return true;
    frame.appendTo(m_gathered.bytes);
    if (m_gathered.bytes.size() >= kGatherSize) {
        for (auto& [name, peer] : m_peers) {
            peer.flush();
            if (peer.fd() < 0) // a lost connection, as in ChannelPeer::send()
                peer.send(frame, true);
        }
    }
    return true;
}

/// Has each listener that is yet to write what was gathered keep it itself.
void ChannelPeers::takeGathered()
{
    if (m_gathered.bytes.isEmpty())
        return;
    for (auto& [name, peer] : m_peers)
        peer.takeGathered();
    m_gathered.bytes.resize(0);
}

bool ChannelPeers::isIdle() const
{
    return std::all_of(m_peers.begin(), m_peers.end(), [](const auto& entry) { return entry.second.isIdle(); });
}

/// Reads the list anew; false when it may not be, or cannot all be, read. Without a directory there are no listeners.
bool ChannelPeers::refresh(const std::optional<ChannelDirectory>& directory)
{
    if (!directory && errno != ENOENT)
        return false;
    auto names = directory ? directory->listeners() : QList<QByteArray>();
    if (!names)
        return false;
    std::sort(names->begin(), names->end());
    // Where a listener's name was removed by somebody else, only its connection proves that it lives.
    std::erase_if(m_peers, [&](const auto& entry) {
        return !std::binary_search(names->begin(), names->end(), entry.first) && !entry.second.isAlive();
    });
    for (const QByteArray& name : std::as_const(*names))
        m_peers.try_emplace(name, m_root, m_channel, name, m_connections, m_gathered);
    return true;
}

} // namespace zyn
