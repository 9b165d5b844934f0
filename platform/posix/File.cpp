// Files: opened without waiting, read and written whole.
#include "platform/posix/File_p.h"

#include "platform/posix/Place_p.h"
#include "platform/posix/Retry_p.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>

#include <fcntl.h>
#include <pwd.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zyn::posix {
namespace {

constexpr mode_t kLockFileMode = 0600;

zyn::posix::UniqueFd openFile(const QByteArray& path, int flags, mode_t mode = 0)
{
    if (path.contains('\0'))
        return {};
    return zyn::posix::UniqueFd(
        zyn::posix::retry([&] { return ::open(path.constData(), flags | O_CLOEXEC | O_NONBLOCK, mode); }));
}

FileId idOf(const struct stat& status)
{
    return {status.st_dev, status.st_ino};
}

/// Whether something else than a regular file has the name @p path. To open a device may do more than to open it.
bool isNoFile(const QByteArray& path)
{
    struct stat status = {};
    return ::lstat(path.constData(), &status) == 0 && !S_ISREG(status.st_mode);
}

} // namespace

UniqueFd openForReading(const QByteArray& path)
{
    return openFile(path, O_RDONLY);
}

UniqueFd openForChanging(const QByteArray& path)
{
    return openTrusted(path, O_RDWR);
}

std::optional<FileId> fileId(const QByteArray& path)
{
    struct stat status = {};
    return ::lstat(path.constData(), &status) == 0 ? std::optional(idOf(status)) : std::nullopt;
}

std::optional<FileId> fileId(int fd)
{
    struct stat status = {};
    return ::fstat(fd, &status) == 0 ? std::optional(idOf(status)) : std::nullopt;
}

bool isNamed(int fd, const QByteArray& path)
{
    const std::optional<FileId> open = fileId(fd);
    return open && fileId(path) == open;
}

UniqueFd lockFile(const QByteArray& path)
{
    for (;;) {
        if (isNoFile(path)) {
            errno = EEXIST;
            return {};
        }
        UniqueFd fd = openFile(path, O_RDWR | O_CREAT | O_NOFOLLOW, kLockFileMode);
        if (!fd.isValid() || retry([&] { return ::flock(fd.get(), LOCK_EX | LOCK_NB); }) != 0)
            return {};
        // The holder of the lock may have removed the file after it was opened here: then this lock keeps nobody out.
        if (isNamed(fd.get(), path))
            return fd;
    }
}

ssize_t readAt(int fd, std::span<std::byte> buffer, off_t offset)
{
    ssize_t total = 0;
    while (!buffer.empty()) {
        const ssize_t n = readOnceAt(fd, buffer, offset);
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

ssize_t readOnceAt(int fd, std::span<std::byte> buffer, off_t offset)
{
    return retry([&] { return ::pread(fd, buffer.data(), buffer.size(), offset); });
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
    return readWhole(openForReading(path).get(), limit);
}

std::optional<QByteArray> readWhole(int fd, qint64 limit)
{
    struct stat status = {};
    if (::fstat(fd, &status) != 0 || !S_ISREG(status.st_mode) || status.st_size > limit)
        return std::nullopt;
    QByteArray contents(static_cast<qsizetype>(status.st_size), Qt::Uninitialized);
    const ssize_t n = readAt(fd, std::as_writable_bytes(std::span(contents.data(), size_t(contents.size()))), 0);
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

std::optional<qint64> soleFileSize(int fd)
{
    struct stat status = {};
    return ::fstat(fd, &status) == 0 && status.st_nlink == 1 ? std::optional(qint64{status.st_size}) : std::nullopt;
}

bool resize(int fd, qint64 size)
{
    return ::ftruncate(fd, static_cast<off_t>(size)) == 0;
}

off_t nextData(int fd, off_t offset)
{
    const off_t next = ::lseek(fd, offset, SEEK_DATA);
    if (next >= 0 || errno != ENXIO)
        return std::max(next, offset); // a file system that knows no holes has none
    return std::max(static_cast<off_t>(regularFileSize(fd).value_or(0)), offset);
}

bool leadsTo(const QByteArray& path, int fd)
{
    struct stat found = {};
    return ::stat(path.constData(), &found) == 0 && fileId(fd) == idOf(found);
}

bool isMissing(const QByteArray& path)
{
    struct stat status = {};
    return ::stat(path.constData(), &status) != 0 && (errno == ENOENT || errno == ENOTDIR);
}

bool isTrustedUser(uid_t user)
{
    return user == ::geteuid() || user == 0;
}

QByteArray userName(uid_t user)
{
    const passwd* entry = ::getpwuid(user);
    return entry ? QByteArray(entry->pw_name) : QByteArray::number(user);
}

std::optional<uid_t> ownerOf(const QByteArray& path)
{
    struct stat status = {};
    return ::lstat(path.constData(), &status) == 0 ? std::optional(status.st_uid) : std::nullopt;
}

bool clearOfOthers(const QByteArray& path)
{
    const auto isOfOthers = [](const QByteArray& name) {
        const std::optional<uid_t> owner = ownerOf(name);
        return owner && !isTrustedUser(*owner);
    };
    if (!isOfOthers(path))
        return false;
    const QByteArray aside = path + ".away." + QByteArray::number(::getpid());
    if (::renameat2(AT_FDCWD, path.constData(), AT_FDCWD, aside.constData(), RENAME_NOREPLACE) != 0)
        return false;
    // Another process may have put its own there after the look.
    if (!isOfOthers(aside)) {
        ::renameat2(AT_FDCWD, aside.constData(), AT_FDCWD, path.constData(), RENAME_NOREPLACE);
        return false;
    }
    if (::unlink(aside.constData()) != 0)
        ::rmdir(aside.constData());
    return true;
}

} // namespace zyn::posix
