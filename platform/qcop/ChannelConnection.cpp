// One sender's connection to a listener.
#include "platform/qcop/ChannelConnection_p.h"

#include "platform/QCopChannel.h"
#include "platform/posix/UnixSocket_p.h"

#include <QtCore/QPointer>

namespace zyn {

ChannelConnection::ChannelConnection(posix::ForkLocalFd fd, QCopChannel& channel, QObject* parent)
    : QObject(parent)
    , m_fd(std::move(fd))
    , m_notifier(m_fd.get(), QSocketNotifier::Read, this)
    , m_channel(channel)
{
    connect(&m_notifier, &QSocketNotifier::activated, this, &ChannelConnection::read);
}

/// Reads once and no more: a sender that never stops must not keep the loop from its other work.
void ChannelConnection::read()
{
    const ssize_t n = posix::receiveSome(m_fd.get(), m_reader.room());
    if (n < 0)
        return;
    m_reader.add(n);
    m_hasEnded = n == 0;
    deliver();
}

void ChannelConnection::deliver()
{
    const QPointer<ChannelConnection> self(this);
    QCString name;
    QByteArray data;
    // A receiver may have forked: what is left is for the parent's listener alone.
    while (m_fd.isOwn() && m_reader.next(name, data)) {
        if (m_reader.hasMore())
            deliverInNestedLoop();
        m_channel.receive(name, data);
        if (!self)
            return; // the receiver has destroyed the listener
    }
    if (m_hasEnded || m_reader.isBroken())
        close();
}

/// A receiver may run a loop of its own to wait for an answer that has already been read: what is left then
/// goes on from there.
void ChannelConnection::deliverInNestedLoop()
{
    if (m_isDeliveryPosted)
        return;
    m_isDeliveryPosted = true;
    const auto goOn = [this] {
        m_isDeliveryPosted = false;
        deliver();
    };
    QMetaObject::invokeMethod(this, goOn, Qt::QueuedConnection);
}

void ChannelConnection::close()
{
    m_notifier.setEnabled(false);
    m_fd.reset();
    deleteLater();
}

} // namespace zyn
