// The event loop of a sending thread.
#include "platform/qcop/SenderLoop_p.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QThread>

#include <algorithm>
#include <utility>

#include <pthread.h>

namespace {

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

SenderLoop::SenderLoop(std::function<void()> flush)
    : m_flush(std::move(flush))
{}

quint64 SenderLoop::turn()
{
    if (QAbstractEventDispatcher* dispatcher = QAbstractEventDispatcher::instance(); dispatcher != m_dispatcher)
        watch(dispatcher);
    return m_tellsTurns && loopLevel() > t_foreignLoops ? m_turn : 0;
}

/// A loop that is left in the middle of a turn delivers no more events. Only the GLib dispatcher tells the
/// end of that turn too; with another nothing is gathered, for it might wait for ever.
void SenderLoop::watch(QAbstractEventDispatcher* dispatcher)
{
    m_dispatcher = dispatcher;
    m_tellsTurns = dispatcher && dispatcher->inherits("QEventDispatcherGlib");
    if (m_tellsTurns)
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

} // namespace zyn
