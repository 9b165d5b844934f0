// Files: opened without waiting, read and written whole.
#include "platform/posix/File_p.h"

#include "platform/posix/Retry_p.h"

#include <cstdio>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr mode_t kNewFileMode = 0666; // less the process's umask
constexpr mode_t kLockFileMode = 0600;

zyn::posix::UniqueFd openFile(const QByteArray& path, int flags, mode_t mode = kNewFileMode)
{
    if (path.contains('\0'))
        return {};
    return zyn::posix::UniqueFd(
        zyn::posix::retry([&] { return ::open(path.constData(), flags | O_CLOEXEC | O_NONBLOCK, mode); }));
}

/// Whether @p path is still the name of the open file @p fd.
bool isNamed(const zyn::posix::UniqueFd& fd, const QByteArray& path)
{
    struct stat open = {};
    struct stat named = {};
    return ::fstat(fd.get(), &open) == 0 && ::lstat(path.constData(), &named) == 0 && open.st_dev == named.st_dev
           && open.st_ino == named.st_ino;
}

} // namespace

namespace zyn::posix {

UniqueFd openForReading(const QByteArray& path)
{
    return openFile(path, O_RDONLY);
}

UniqueFd openForChanging(const QByteArray& path)
{
    return openFile(path, O_RDWR);
}

UniqueFd createNew(const QByteArray& path)
{
    return openFile(path, O_WRONLY | O_CREAT | O_EXCL);
}

UniqueFd lockFile(const QByteArray& path)
{
    for (;;) {
        UniqueFd fd = openFile(path, O_RDWR | O_CREAT | O_NOFOLLOW, kLockFileMode);
        if (!fd.isValid() || retry([&] { return ::flock(fd.get(), LOCK_EX | LOCK_NB); }) != 0)
            return {};
        // The holder of the lock may have removed the file after it was opened here: then this lock keeps nobody out.
        if (isNamed(fd, path))
            return fd;
    }
}

ssize_t readAt(int fd, std::span<std::byte> buffer, off_t offset)
{
    ssize_t total = 0;
    while (!buffer.empty()) {
        const ssize_t n = retry([&] { return ::pread(fd, buffer.data(), buffer.size(), offset); });
        if (n < 0)
            return -1;
        if (n == 0)
            break;
        buffer = buffer.subspan(static_cast<size_t>(n));
        offset += n;
        total += n;
    }
    return total;
}

bool writeAt(int fd, std::span<const std::byte> bytes, off_t offset)
{
    while (!bytes.empty()) {
        const ssize_t n = retry([&] { return ::pwrite(fd, bytes.data(), bytes.size(), offset); });
        if (n <= 0)
            return false;
        bytes = bytes.subspan(static_cast<size_t>(n));
        offset += n;
    }
    return true;
}

bool sync(int fd)
{
    // A file system that has nothing to bring to disk answers EINVAL.
    return retry([&] { return ::fsync(fd); }) == 0 || errno == EINVAL;
}

std::optional<QByteArray> readWhole(const QByteArray& path, qint64 limit)
{
    const UniqueFd fd = openForReading(path);
    struct stat status = {};
    if (!fd.isValid() || ::fstat(fd.get(), &status) != 0 || !S_ISREG(status.st_mode) || status.st_size > limit)
        return std::nullopt;
    QByteArray contents(static_cast<qsizetype>(status.st_size), Qt::Uninitialized);
    const ssize_t n = readAt(fd.get(), std::as_writable_bytes(std::span(contents.data(), size_t(contents.size()))), 0);
    if (n < 0)
        return std::nullopt;
    contents.truncate(n);
    return contents;
}

std::optional<qint64> regularFileSize(int fd)
{
    struct stat status = {};
    if (::fstat(fd, &status) != 0 || !S_ISREG(status.st_mode))
        return std::nullopt;
    return qint64{status.st_size};
}

bool leadsTo(const QByteArray& path, int fd)
{
    struct stat open = {};
    struct stat found = {};
    return ::fstat(fd, &open) == 0 && ::stat(path.constData(), &found) == 0 && open.st_dev == found.st_dev
           && open.st_ino == found.st_ino;
}

bool exchangeNames(const QByteArray& first, const QByteArray& second)
{
    if (::renameat2(AT_FDCWD, first.constData(), AT_FDCWD, second.constData(), RENAME_EXCHANGE) == 0)
        return true;
    // File systems that cannot exchange can replace.
    return (errno == EINVAL || errno == ENOSYS) && std::rename(first.constData(), second.constData()) == 0;
}

bool isMissing(const QByteArray& path)
{
    struct stat status = {};
    return ::stat(path.constData(), &status) != 0 && (errno == ENOENT || errno == ENOTDIR);
}

bool renameWithoutReplacing(const QByteArray& from, const QByteArray& to)
{
    if (::renameat2(AT_FDCWD, from.constData(), AT_FDCWD, to.constData(), RENAME_NOREPLACE) == 0)
        return true;
    if (errno != EINVAL && errno != ENOSYS)
        return false;
    // File systems that cannot rename this way can link, which never replaces.
    if (::link(from.constData(), to.constData()) != 0)
        return false;
    ::unlink(from.constData());
    return true;
}

} // namespace zyn::posix
