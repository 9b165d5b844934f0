// Lock files, and who holds them.
#pragma once

#include "platform/posix/UniqueFd_p.h"

#include <QtCore/QByteArray>

#include <optional>

namespace zyn::posix {

/// Whose a lock file may be: anybody's, or this user's and root's. Others could hold theirs for ever.
enum class LockOwner { Anybody, Trusted };

/**
 * The lock on a file, which goes with the object, or with the process, however that ends.
 *
 * The file is made when it is missing, and removed at the end, unless it is another one by then.
 */
class FileLock
{
public:
    FileLock() = default;
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;
    ~FileLock() { release(); }

    /// Takes the lock on @p path, as lockFile() does; false, and errno tells why not: EPERM for the file of a user
    /// whose it may not be.
    bool take(const QByteArray& path, LockOwner owner = LockOwner::Anybody);
    bool isHeld() const { return m_fd.isValid(); }
    /// Whether the path still leads to the locked file: else the lock keeps nobody out.
    bool isInPlace() const;
    /// Writes into the file which process holds it; it is held in any case.
    void sign(const QByteArray& program) const;
    void release();

private:
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
