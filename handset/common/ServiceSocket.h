// The listening socket of a service, which one process at a time owns.
#pragma once

#include "platform/posix/FileLock_p.h"
#include "platform/posix/File_p.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>

namespace zyn::handset {

/**
 * A Unix-domain stream socket at a path that survives the death of its owner.
 *
 * The lock file beside it, "<path>.lock", tells a live owner from a dead one, whose place the next one takes. The
 * directory is open to all users; what a user other than root puts at these paths is replaced. Failures are logged,
 * with the user whose directory or file is in the way.
 */
class ServiceSocket
{
public:
    /// @param path  in a directory that exists when the socket is acquired
    explicit ServiceSocket(const QString& path);
    ServiceSocket(const ServiceSocket&) = delete;
    ServiceSocket& operator=(const ServiceSocket&) = delete;
    /// Releases the socket.
    ~ServiceSocket();

    /// The socket and its lock file.
    QStringList files() const;

    /// Makes this process the owner, in place of one that died. False if another owner, of this user or of root, is
    /// alive.
    bool acquire();
    /// Listens for processes of this user only. The socket must have been acquired.
    bool listen();
    bool isListening() const { return m_listener.isValid(); }
    /// Whether the socket and its lock are still the files that this process made: a cleaner may have removed them.
    bool isInPlace() const;
    /// Makes the socket, its lock and its directory again where they are missing; false on failure. All clients that
    /// wait at the old socket must have been accepted.
    bool recreate();
    /// The listening descriptor.
    int descriptor() const { return m_listener.get(); }

    /// The next client, non-blocking; clients of other users are closed. None on failure, with errno set: EAGAIN if no
    /// client waits.
    posix::UniqueFd accept();

    /// Refuses new connections; pending ones can still be accepted.
    void stopAccepting();
    /// Removes the socket and its lock, unless they have been replaced by another process's.
    void release();

private:
    bool lock();
    bool claim();
    bool open();
    bool restore();
    bool report(bool isDone) const;

    const QString m_path;
    posix::FileLock m_lock;
    posix::UniqueFd m_listener;
    std::optional<posix::FileId> m_socketId; ///< the socket's file
    bool m_isLost = false;                   ///< its loss has been logged
};

} // namespace zyn::handset
