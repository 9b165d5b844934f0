// The socket under which a listener is found.
#pragma once

#include "platform/QCString.h"
#include "platform/posix/DirectoryWatch_p.h"
#include "platform/posix/ForkLocalFd_p.h"
#include "platform/posix/PrivateDirectory_p.h"
#include "platform/qcop/ChannelDirectory_p.h"

#include <QtCore/QObject>
#include <QtCore/QSocketNotifier>

#include <memory>
#include <optional>

class QCopChannel;

namespace zyn {

class ListenerWatch;

/**
 * Makes one QCopChannel a listener for as long as it lives.
 *
 * Each listener has a socket of its own, also when a process has many: only so does none of them get what was
 * sent before it existed, and each gets its messages in its own thread, whatever the others do.
 *
 * When the socket is removed by somebody else it is made again under the same name: connections that senders
 * have stay as they are, and none takes it for another listener.
 */
class ChannelListener : public QObject
{
public:
    /// Every message sent from the constructor's return on reaches @p channel, from the event loop of its
    /// thread.
    ChannelListener(const QCString& name, QCopChannel& channel);
    ~ChannelListener() override;

    /// Whether senders find it now.
    bool isListening() const;

    /// Registers again if senders find it no more; whether they do, and a change would be noticed.
    bool look();
    void loseWatch()
    {
        m_watch = nullptr;
        m_watchId = posix::DirectoryWatch::kUnwatched;
    }

protected:
    bool event(QEvent* event) override;

private:
    /// A socket and what accepts its connections.
    struct Door
    {
        posix::ForkLocalFd socket;
        std::unique_ptr<QSocketNotifier> notifier;
    };

    std::unique_ptr<Door> makeDoor();
    posix::UniqueFd openSocket();
    void enterLoop();
    void watchDoor();
    void watchFile();
    void leaveWatch();
    void accept(Door& door);
    bool acceptNext(Door& door);

    const ChannelEnvironment m_environment;
    const QCString m_channelName;
    const QByteArray m_name;
    QCopChannel& m_channel;
    std::optional<posix::FileId> m_file; ///< the socket's
    std::unique_ptr<Door> m_door;
    std::unique_ptr<Door> m_oldDoor; ///< for senders that have found it before its name was removed
    ListenerWatch* m_watch = nullptr;
    int m_watchId = posix::DirectoryWatch::kUnwatched;
};

} // namespace zyn
