// The listening socket of a service, of which one process at a time is the owner.
#pragma once

#include "platform/posix/FileLock_p.h"
#include "platform/posix/File_p.h"

#include <QtCore/QString>

#include <optional>

namespace zyn::handset {

/**
 * A Unix-domain stream socket at a path that outlives its owner's death.
 *
 * Beside the path lies a lock file, named with ".lock" behind it: it tells a dead owner, in whose place the next one
 * steps, from a live one. The directory is open to all; what another user has put there, except root, is replaced as
 * well. Failures are told in the log, with the user whose directory or file does not make way.
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

    const QString& path() const { return m_path; }

    /// Makes this process the owner, in place of one that died; false when another one of this user or of root lives.
    bool acquire();
    /// Listens, for this user's processes alone; the socket must have been acquired.
    bool listen();
    bool isListening() const { return m_listener.isValid(); }
    /// Whether socket and lock are still those that were made: whoever cleans up may have removed them.
    bool isInPlace() const;
    /// Makes again what is gone, along with the directory; false when it cannot be had. Who waits at the old socket
    /// must have been accepted.
    bool makeAgain();
    /// The listening descriptor.
    int descriptor() const { return m_listener.get(); }

    /// The next client that waits, non-blocking, other users' passed over; none, and errno tells why: EAGAIN when none
    /// waits.
    posix::UniqueFd accept();

    /// From here on connecting fails; who is connected already can still be accepted.
    void turnAway();
    /// Removes the socket and its lock, for the next owner. What another one has put there stays.
    void release();

private:
    bool lock();
    bool occupy();
    bool open();
    bool restore();
    bool report(bool isDone) const;

    const QString m_path;
    posix::FileLock m_lock;
    posix::UniqueFd m_listener;
    std::optional<posix::FileId> m_made; ///< the socket's file
    bool m_isLost = false;               ///< and could not be made again, which has been told
};

} // namespace zyn::handset
