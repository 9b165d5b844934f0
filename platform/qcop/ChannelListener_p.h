// The receiving end of a channel: the socket under which a listener is found.
#pragma once

#include "platform/posix/DirectoryWatch_p.h"
#include "platform/posix/File_p.h"
#include "platform/posix/ForkLocalFd_p.h"
#include "platform/posix/SharedCounter_p.h"
#include "platform/qcop/ChannelDirectory_p.h"
#include "platform/qcop/ChannelOrigin_p.h"

#include <QtCore/QObject>

#include <functional>
#include <memory>
#include <optional>
#include <utility>

namespace zyn {

class ListenerWatch;

/**
 * One listener on a channel, for as long as it lives.
 *
 * Each listener has a socket of its own, also when a process has many: only so does none of them get what was sent
 * before it existed, and each gets its messages in its own thread, whatever the others do.
 *
 * When somebody else removes the socket it is made again under the same name: connections that senders have stay as
 * they are, and no sender mistakes it for another listener.
 */
class ChannelListener : public QObject
{
public:
    /// Is given the name and the payload of each message. It may destroy the listener.
    using Receive = std::function<void(const QByteArray& message, const QByteArray& data)>;

    /// Every message that is sent on @p channel after the constructor has returned reaches @p receive, from the event
    /// loop of the object's thread.
    ChannelListener(const QByteArray& channel, Receive receive, QObject* parent);
    ~ChannelListener() override;

    /// Whether senders find it now.
    bool isListening() const;

    /// Who has sent the message that is being received; unknown when none is.
    ChannelOrigin origin() const { return m_origin ? *m_origin : ChannelOrigin(); }
    /// Makes @p origin, which may be null and stays the caller's, that of the message being received; the one before.
    const ChannelOrigin* exchangeOrigin(const ChannelOrigin* origin) { return std::exchange(m_origin, origin); }

    /// Registers again when senders do not find it any more; whether they do now, and a change would be noticed.
    bool restore();
    void forgetWatch();

protected:
    bool event(QEvent* event) override;

private:
    struct Entrance;

    std::unique_ptr<Entrance> makeEntrance();
    posix::UniqueFd openSocket();
    void enterLoop();
    void startAccepting();
    void watchFile();
    void leaveWatch();
    bool acceptNext(Entrance& entrance);

    const ChannelEnvironment m_environment;
    const QByteArray m_channel;
    const QByteArray m_name;
    const Receive m_receive;
    const ChannelOrigin* m_origin = nullptr; ///< of the message that is being received
    std::optional<posix::FileId> m_file;     ///< the socket's
    std::optional<posix::SharedCounter> m_announced;
    std::unique_ptr<Entrance> m_entrance;
    std::unique_ptr<Entrance> m_oldEntrance; ///< for senders that have found it before its name was removed
    ListenerWatch* m_watch = nullptr;
    int m_watchId = posix::DirectoryWatch::kUnwatched;
};

} // namespace zyn
