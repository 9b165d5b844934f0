// What a thread sends on channels.
#pragma once

#include "platform/posix/DirectoryWatch_p.h"
#include "platform/qcop/ChannelDirectory_p.h"
#include "platform/qcop/ChannelPeers_p.h"

#include <QtCore/QAbstractEventDispatcher>
#include <QtCore/QObject>
#include <QtCore/QPointer>

#include <chrono>
#include <map>
#include <utility>

namespace zyn {

/**
 * Sends the messages of one thread, each thread having a sender of its own, so that none waits for another.
 *
 * In a running event loop of a dispatcher that tells the end of every turn, the first message of a turn on a
 * channel is written at once, the others are gathered and written at the turn's end. What listeners do not take at once
 * follows from the loop, or, without one, with later messages and at the latest when the thread or the process ends,
 * for which it waits for a bounded time.
 */
class ChannelSender : public QObject
{
public:
    /// Sends to the listeners of @p channel, as QCopChannel::send does.
    bool send(const QCString& channel, const ChannelFrame& frame);
    /// Waits until listeners have taken all that is pending, at most for @p time. Needs nothing of Qt, which
    /// may be gone.
    void drain(std::chrono::milliseconds time);

private:
    void followEnvironment();
    void forgetIdle();
    void watchTurns();
    void noteTurn();
    void endTurn();

    ChannelEnvironment m_environment;
    QByteArray m_root;
    posix::DirectoryWatch m_watch;
    std::map<std::pair<QByteArray, QCString>, ChannelPeers> m_channels; ///< by root and name
    QPointer<QAbstractEventDispatcher> m_dispatcher;
    bool m_tellsTurns = false; ///< whether the dispatcher tells the end of every turn
    quint64 m_turn = 1;
    bool m_isTurnOpen = false;
};

} // namespace zyn
