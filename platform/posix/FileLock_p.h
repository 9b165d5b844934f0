// Lock files, and who holds them.
#pragma once

#include "platform/posix/UniqueFd_p.h"

#include <QtCore/QByteArray>

#include <chrono>
#include <optional>

namespace zyn::posix {

/// Whose a lock file may be: anybody's, or this user's and root's. Others could hold theirs for ever.
enum class LockOwner { Anybody, Trusted };

/**
 * The lock on a file, which goes with the object, or with the process, however that ends.
 *
 * The file is made for this user alone when it is missing, and removed at the end, unless it is another one by then.
 */
class FileLock
{
public:
    FileLock() = default;
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;
    ~FileLock() { unlock(); }

    /**
     * Locks the file @p path, waiting for its holder for at most @p timeout.
     *
     * False, and errno is the reason: EWOULDBLOCK while another process holds the lock, EEXIST if the path names
     * anything but a regular file, EPERM if the file's owner is not allowed. The kernel ends the lock of a process that
     * dies; process names and numbers do not matter.
     */
    bool lock(const QByteArray& path, LockOwner owner = LockOwner::Anybody, std::chrono::milliseconds timeout = {});
    bool isLocked() const { return m_fd.isValid(); }
    /// Whether the path still leads to the locked file: if not, the lock does not keep anybody out.
    bool isInPlace() const;
    /// Writes into the file which process holds it; the lock holds in any case.
    void sign(const QByteArray& program) const;
    void unlock();

private:
    bool lockOnce(const QByteArray& path, LockOwner owner);

    QByteArray m_path;
    UniqueFd m_fd;
};

/// What a lock file says of its holder.
struct LockHolder
{
    qint64 process = 0;
    QByteArray program;
};

/// The process that has signed the lock file @p path; nothing when none has.
std::optional<LockHolder> readLockHolder(const QByteArray& path);

} // namespace zyn::posix
