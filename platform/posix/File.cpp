// Files: opened without waiting, read and written whole.
#include "platform/posix/File_p.h"

#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zyn::posix {
namespace {

std::optional<FileVersion> versionOf(const struct stat& status)
{
    if (!S_ISREG(status.st_mode))
        return std::nullopt;
    return FileVersion{{status.st_dev, status.st_ino},
                       status.st_size,
                       {status.st_mtim.tv_sec, status.st_mtim.tv_nsec},
                       {status.st_ctim.tv_sec, status.st_ctim.tv_nsec}};
}

} // namespace

UniqueFd openForReading(const QByteArray& path)
{
    if (path.contains('\0'))
        return {};
    return UniqueFd(retry([&] { return ::open(path.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK); }));
}

std::optional<FileId> fileId(const QByteArray& path)
{
    struct stat status = {};
    return ::lstat(path.constData(), &status) == 0 ? std::optional(FileId{status.st_dev, status.st_ino}) : std::nullopt;
}

std::optional<FileId> fileId(int fd)
{
    struct stat status = {};
    return ::fstat(fd, &status) == 0 ? std::optional(FileId{status.st_dev, status.st_ino}) : std::nullopt;
}

std::optional<FileVersion> fileVersion(const QByteArray& path)
{
    struct stat status = {};
    return ::stat(path.constData(), &status) == 0 ? versionOf(status) : std::nullopt;
}

std::optional<FileVersion> fileVersion(int fd)
{
    struct stat status = {};
    return ::fstat(fd, &status) == 0 ? versionOf(status) : std::nullopt;
}

bool isSettled(const FileVersion& version)
{
    constexpr long kTwoTicks = 20'000'000; // of the slowest clock there is
    constexpr long kSecond = 1'000'000'000;
    constexpr time_t kCoarse = 3; // for a file system that keeps even seconds only
    timespec now = {};
    if (::clock_gettime(CLOCK_REALTIME_COARSE, &now) != 0)
        return false;
    FileVersion::Moment latest = {now.tv_sec, now.tv_nsec};
    if (version.changed.nanoseconds == 0) {
        latest.seconds -= kCoarse;
    } else if (latest.nanoseconds >= kTwoTicks) {
        latest.nanoseconds -= kTwoTicks;
    } else {
        latest.seconds -= 1;
        latest.nanoseconds += kSecond - kTwoTicks;
    }
    return version.changed <= latest;
}

bool isNamed(int fd, const QByteArray& path)
{
    const std::optional<FileId> id = fileId(fd);
    return id && fileId(path) == id;
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

bool resize(int fd, qint64 size)
{
    return retry([&] { return ::ftruncate(fd, static_cast<off_t>(size)); }) == 0;
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
    return ::fstat(fd, &status) == 0 && status.st_nlink == 1 ? regularFileSize(fd) : std::nullopt;
}

off_t endOf(int fd)
{
    return ::lseek(fd, 0, SEEK_END);
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
    return ::stat(path.constData(), &found) == 0 && fileId(fd) == FileId{found.st_dev, found.st_ino};
}

bool isMissing(const QByteArray& path)
{
    struct stat status = {};
    return ::stat(path.constData(), &status) != 0 && (errno == ENOENT || errno == ENOTDIR);
}

} // namespace zyn::posix
