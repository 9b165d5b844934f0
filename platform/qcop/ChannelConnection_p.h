// One sender's connection to a listener.
#pragma once

#include "platform/posix/ForkLocalFd_p.h"
#include "platform/qcop/ChannelFrame_p.h"

#include <QtCore/QObject>
#include <QtCore/QSocketNotifier>

class QCopChannel;

namespace zyn {

/// Hands the messages that come over a connection to the channel, in the order sent, and ends itself with the
/// connection, or when what comes is no message.
class ChannelConnection : public QObject
{
public:
    ChannelConnection(posix::ForkLocalFd fd, QCopChannel& channel, QObject* parent);

private:
    void read();
    void deliver();
    void deliverInNestedLoop();
    void close();

    posix::ForkLocalFd m_fd;
    QSocketNotifier m_notifier;
    QCopChannel& m_channel;
    ChannelFrameReader m_reader;
    bool m_hasEnded = false;
    bool m_isDeliveryPosted = false;
};

} // namespace zyn
