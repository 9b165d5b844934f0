// A sender's connection to one listener.
#pragma once

#include "platform/QCString.h"
#include "platform/posix/UniqueFd_p.h"

#include <QtCore/QSocketNotifier>
#include <QtCore/QTimer>

#include <memory>

namespace zyn {

class ChannelFrame;

/**
 * Keeps the connection to one listener, and in order what the listener has yet to take.
 *
 * Nothing here waits. A listener that leaves more than kQueueLimit bytes untaken is cut off: it gets the
 * messages up to some point, then none, until it has read all it got and closed the connection in answer.
 */
class ChannelPeer
{
public:
    /// The most bytes that wait in memory for one listener, unless a single message is larger.
    static constexpr qsizetype kQueueLimit = qsizetype{16} * 1024 * 1024;

    enum class Result {
        Taken,  ///< the listener got or will get the message
        Missed, ///< it will not
        Gone,   ///< there is no such listener any more
    };

    /// The listener @p name of @p channel, whose directory is under @p root. Connects with the first message.
    ChannelPeer(const QByteArray& root, const QCString& channel, const QByteArray& name);

    /// Sends a message, or with @p gather keeps it until flush() or until there is enough for one large
    /// write.
    Result take(const ChannelFrame& frame, bool gather);
    /// Writes what the socket takes of what is kept.
    void flush();
    /// Lets the calling thread's event loop write what is kept as soon as the listener takes it.
    void flushFromLoop();
    bool isPending() const { return !m_queue.isEmpty(); }
    /// The connection; -1 while there is none.
    int fd() const { return m_fd.get(); }

private:
    enum class Link { Open, Waiting, Failed, Gone };

    Link link();
    Link connect();
    bool put(const ChannelFrame& frame, bool gather);
    bool putAtOnce(const ChannelFrame& frame);
    void retryFromLoop();
    void cutOff();
    void disconnect();
    void discard();

    const QByteArray m_root;
    const QCString m_channel;
    const QByteArray m_name;
    posix::UniqueFd m_fd;
    QByteArray m_queue;
    qsizetype m_nextFlush;
    bool m_isCutOff = false;
    std::unique_ptr<QSocketNotifier> m_notifier; ///< enabled while connected and pending
    std::unique_ptr<QTimer> m_retry;             ///< runs while pending without a connection
};

} // namespace zyn
