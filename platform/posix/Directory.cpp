// Directories: those that belong to this user alone, and what is in them.
#include "platform/posix/Directory_p.h"

#include "platform/posix/PathAt_p.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <ctime>
#include <memory>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zyn::posix {
namespace {

constexpr mode_t kOwnerOnly = 0700;
constexpr mode_t kEverybodyElse = 0077;
constexpr mode_t kAllModeBits = 07777;

struct CloseDirectory
{
    void operator()(DIR* stream) const { ::closedir(stream); }
};

mode_t formatOf(EntryType type)
{
    switch (type) {
    case EntryType::Directory:
        return S_IFDIR;
    case EntryType::File:
        return S_IFREG;
    case EntryType::Socket:
        return S_IFSOCK;
    }
    return 0;
}

bool isOfFormat(int directory, const dirent& entry, mode_t format)
{
    // Most file systems give the type with the name, which spares a system call for each of thousands.
    if (entry.d_type != DT_UNKNOWN)
        return static_cast<mode_t>(DTTOIF(entry.d_type)) == format;
    struct stat status = {};
    return ::fstatat(directory, entry.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0 && (status.st_mode & S_IFMT) == format;
}

} // namespace

QByteArray parentOf(const QByteArray& path)
{
    const qsizetype end = path.lastIndexOf('/');
    return end < 0 ? QByteArray(".") : path.first(std::max<qsizetype>(end, 1));
}

UniqueFd openPrivateDirectory(const QByteArray& path)
{
    return openPrivateDirectory(AT_FDCWD, path);
}

UniqueFd openPrivateDirectory(int parent, const QByteArray& name)
{
    UniqueFd fd(
        retry([&] { return ::openat(parent, name.constData(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC); }));
    struct stat status = {};
    if (!fd.isValid() || ::fstat(fd.get(), &status) != 0)
        return {};
    if (status.st_uid != ::geteuid() || (status.st_mode & kEverybodyElse) != 0) {
        errno = EACCES;
        return {};
    }
    return fd;
}

UniqueFd makePrivateDirectory(const QByteArray& path)
{
    return makePrivateDirectory(AT_FDCWD, path);
}

UniqueFd makePrivateDirectory(int parent, const QByteArray& name)
{
    UniqueFd fd = openPrivateDirectory(parent, name);
    if (fd.isValid() || errno != ENOENT)
        return fd;
    ::mkdirat(parent, name.constData(), kOwnerOnly);
    return openPrivateDirectory(parent, name);
}

bool makeDirectories(const QByteArray& path)
{
    if (isDirectory(path))
        return true;
    const QByteArray parent = parentOf(path);
    return parent != path && makeDirectories(parent) && (makeDirectory(path, kOwnerOnly) || isDirectory(path))
           && sync(openForReading(parent).get());
}

std::optional<QList<QByteArray>> entries(int directory, EntryType type)
{
    const mode_t format = formatOf(type);
    UniqueFd fd(retry([&] { return ::openat(directory, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
    const std::unique_ptr<DIR, CloseDirectory> stream(::fdopendir(fd.get()));
    if (!stream)
        return std::nullopt;
    fd.release(); // the stream's now
    QList<QByteArray> result;
    errno = 0; // without that, readdir()'s errors look like the end
    while (const dirent* entry = ::readdir(stream.get())) {
        if (isOfFormat(directory, *entry, format))
            result.append(entry->d_name);
        errno = 0;
    }
    if (errno != 0)
        return std::nullopt;
    return result;
}

std::optional<EntryStatus> entryStatus(int directory, const QByteArray& name)
{
    struct stat status = {};
    if (::fstatat(directory, name.constData(), &status, AT_SYMLINK_NOFOLLOW) != 0)
        return std::nullopt;
    return EntryStatus{
        {status.st_dev, status.st_ino},
        status.st_mode & kAllModeBits,
        std::chrono::seconds(qint64{::time(nullptr)} - qint64{status.st_ctime}),
    };
}

bool setEntryMode(int directory, const QByteArray& name, mode_t mode)
{
    return ::fchmodat(directory, name.constData(), mode, 0) == 0;
}

void removeEntry(int directory, const QByteArray& name)
{
    ::unlinkat(directory, name.constData(), 0);
}

void removeEmptyDirectory(int directory, const QByteArray& name)
{
    ::unlinkat(directory, name.constData(), AT_REMOVEDIR);
}

QByteArray linkTarget(int directory, const QByteArray& name)
{
    std::array<char, 255> target = {};
    const ssize_t size = ::readlinkat(directory, name.constData(), target.data(), target.size());
    return {target.data(), std::max<qsizetype>(size, 0)};
}

bool replaceLink(int directory, const QByteArray& name, const QByteArray& target)
{
    if (!linkTarget(directory, name).isEmpty())
        removeEntry(directory, name);
    return ::symlinkat(target.constData(), directory, name.constData()) == 0;
}

QByteArray pathOf(int directory)
{
    QByteArray path(PATH_MAX, Qt::Uninitialized);
    const ssize_t size = ::readlink(pathThrough(directory).constData(), path.data(), size_t(path.size()));
    return path.first(std::max<qsizetype>(size, 0));
}

QByteArray pathThrough(int directory, const QByteArray& name)
{
    const QByteArray path = "/proc/self/fd/" + QByteArray::number(directory);
    return name.isEmpty() ? path : path + '/' + name;
}

} // namespace zyn::posix
