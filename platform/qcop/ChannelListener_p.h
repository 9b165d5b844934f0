// The socket under which a listener is found.
#pragma once

#include "platform/QCString.h"
#include "platform/posix/ForkLocalFd_p.h"

#include <QtCore/QObject>
#include <QtCore/QSocketNotifier>

#include <memory>

class QCopChannel;

namespace zyn {

/**
 * Makes one QCopChannel a listener for as long as it lives.
 *
 * Each listener has a socket of its own, also when a process has many: only so does none of them get what was
 * sent before it existed, and each gets its messages in its own thread, whatever the others do.
 */
class ChannelListener : public QObject
{
public:
    /// Every message sent from the constructor's return on reaches @p channel, from the event loop of its
    /// thread.
    ChannelListener(const QCString& name, QCopChannel& channel);
    ~ChannelListener() override;

    bool isListening() const { return m_socket.isValid(); }

private:
    void watch();
    void accept();

    const QByteArray m_root;
    const QCString m_channelName;
    const QByteArray m_name;
    QCopChannel& m_channel;
    posix::ForkLocalFd m_socket;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace zyn
