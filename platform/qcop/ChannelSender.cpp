// What a thread sends on channels.
#include "platform/qcop/ChannelSender_p.h"

#include "platform/posix/ForkLocalFd_p.h"
#include "platform/qcop/ChannelFrame_p.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QThread>

#include <vector>

#include <poll.h>

namespace {

/// How often a sender that drains looks after listeners that accept no connection, which poll() cannot wait
/// for.
constexpr std::chrono::milliseconds kDrainStep{20};

/// The fork generation in which the application object was made: a loop found running in a later one is the
/// parent's.
unsigned s_applicationGeneration = 0;

void noteApplication()
{
    s_applicationGeneration = zyn::posix::forkGeneration();
}

/// Whether the code running now was called by an event loop, which gets control back when it is done.
bool isLoopRunning()
{
    return s_applicationGeneration == zyn::posix::forkGeneration() &&
           QThread::currentThread()->loopLevel() > 0;
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(noteApplication)

namespace zyn {

bool ChannelSender::send(const QCString& channel, const ChannelFrame& frame)
{
    followEnvironment();
    ChannelPeers& peers = m_channels.try_emplace(channel, m_root, channel).first->second;
    const bool hasTurns = isLoopRunning();
    const bool isTaken = peers.send(frame, m_watch, hasTurns ? m_turn : 0);
    if (!m_isTurnOpen && (hasTurns || peers.isPending()))
        endTurnLater();
    return isTaken;
}

/// The environment may change while the process runs, and with it the place of the channels.
void ChannelSender::followEnvironment()
{
    ChannelEnvironment environment = ChannelEnvironment::current();
    if (environment == m_environment && !m_root.isNull())
        return;
    drain(std::chrono::milliseconds::zero());
    m_channels.clear();
    m_root = environment.root();
    m_environment = std::move(environment);
}

void ChannelSender::endTurnLater()
{
    m_isTurnOpen = true;
    // Every kind of loop delivers an event, if need be one that starts later.
    QMetaObject::invokeMethod(this, &ChannelSender::endTurn, Qt::QueuedConnection);
    // A loop that is left in this turn delivers none. The application's own tells that it ends, and the GLib
    // dispatcher tells after each turn; with another, what a local loop leaves waits for the next loop,
    // message or thread's end.
    if (QAbstractEventDispatcher* dispatcher = QAbstractEventDispatcher::instance();
        dispatcher != m_dispatcher) {
        m_dispatcher = dispatcher;
        connect(dispatcher, &QAbstractEventDispatcher::awake, this, &ChannelSender::endTurn);
        if (qApp)
            connect(qApp, &QCoreApplication::aboutToQuit, this, &ChannelSender::endTurn,
                    Qt::UniqueConnection);
    }
}

void ChannelSender::endTurn()
{
    if (!m_isTurnOpen)
        return;
    m_isTurnOpen = false;
    ++m_turn;
    for (auto& [channel, peers] : m_channels) {
        for (auto& [name, peer] : peers.peers())
            peer.flushFromLoop();
    }
}

void ChannelSender::drain(std::chrono::milliseconds time)
{
    const auto deadline = std::chrono::steady_clock::now() + time;
    for (;;) {
        std::vector<pollfd> pending;
        for (auto& [channel, peers] : m_channels) {
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
