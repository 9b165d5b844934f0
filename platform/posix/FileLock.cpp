// Lock files, and who holds them.
#include "platform/posix/FileLock_p.h"

#include "platform/posix/File_p.h"
#include "platform/posix/PathAt_p.h"

#include <QtCore/QDeadlineTimer>
#include <QtCore/QList>
#include <QtCore/QThread>

#include <array>
#include <cerrno>
#include <span>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zyn::posix {
namespace {

constexpr mode_t kLockMode = 0600;
constexpr qint64 kSizeLimit = 4096;
/// How often a lock that another process holds is tried.
constexpr std::chrono::milliseconds kRetryPause{2};

QByteArray hostName()
{
    std::array<char, 256> name = {};
    return ::gethostname(name.data(), name.size() - 1) == 0 ? QByteArray(name.data()) : QByteArray();
}

/// Locks the file without waiting; none, with errno set, when that fails.
UniqueFd lockFile(const QByteArray& path)
{
    for (;;) {
        // To open a device may do more than to open it.
        struct stat status = {};
        if (::lstat(path.constData(), &status) == 0 && !S_ISREG(status.st_mode)) {
            errno = EEXIST;
            return {};
        }
        UniqueFd fd = openAt(AT_FDCWD, path, O_RDWR | O_CREAT, kLockMode);
        if (!fd.isValid() || retry([&] { return ::flock(fd.get(), LOCK_EX | LOCK_NB); }) != 0)
            return {};
        // The holder of the lock may have removed the file after it was opened here: then this lock keeps nobody out.
        const std::optional<FileId> locked = fileId(fd.get());
        const std::optional<FileId> named = locked ? fileId(path) : std::nullopt;
        if (locked && locked == named)
            return fd;
        // A file that cannot be inspected is no reason to try for ever.
        if (!locked || (!named && errno != ENOENT))
            return {};
    }
}

} // namespace

bool FileLock::lock(const QByteArray& path, LockOwner owner, std::chrono::milliseconds timeout)
{
    const QDeadlineTimer deadline(timeout);
    while (!lockOnce(path, owner)) {
        if (errno != EWOULDBLOCK || deadline.hasExpired())
            return false;
        QThread::msleep(static_cast<unsigned long>(kRetryPause.count()));
    }
    return true;
}

bool FileLock::lockOnce(const QByteArray& path, LockOwner owner)
{
    unlock();
    if (owner == LockOwner::Trusted && !isTrustedUser(ownerOf(path).value_or(currentUser()))) {
        errno = EPERM;
        return false;
    }
    m_path = path;
    m_fd = lockFile(path);
    return isLocked();
}

bool FileLock::isInPlace() const
{
    return isLocked() && isNamed(m_fd.get(), m_path);
}

void FileLock::sign(const QByteArray& program) const
{
    // What a predecessor has left is longer, maybe.
    if (::ftruncate(m_fd.get(), 0) != 0)
        return;
    const QByteArray text = QByteArray::number(::getpid()) + '\n' + program + '\n' + hostName() + '\n';
    writeAt(m_fd.get(), std::as_bytes(std::span(text.constData(), static_cast<size_t>(text.size()))), 0);
}

void FileLock::unlock()
{
    if (isInPlace())
        ::unlink(m_path.constData());
    m_fd.reset();
}

std::optional<LockHolder> readLockHolder(const QByteArray& path)
{
    const QList<QByteArray> lines = readWhole(path, kSizeLimit).value_or(QByteArray()).split('\n');
    bool isNumber = false;
    const qint64 process = lines.first().toLongLong(&isNumber);
    if (!isNumber || lines.size() < 2)
        return std::nullopt;
    return LockHolder{process, lines.at(1)};
}

} // namespace zyn::posix
