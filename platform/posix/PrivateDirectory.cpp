// Directories that belong to this user alone.
#include "platform/posix/PrivateDirectory_p.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <memory>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zyn::posix {
namespace {

constexpr mode_t kOwnerOnly = 0700;
constexpr mode_t kEverybodyElse = 0077;

struct CloseDirectory
{
    void operator()(DIR* stream) const { ::closedir(stream); }
};

bool isOfType(int directory, const dirent& entry, mode_t type)
{
    // Most file systems tell with the name, which spares a look at each of thousands.
    if (entry.d_type != DT_UNKNOWN)
        return static_cast<mode_t>(DTTOIF(entry.d_type)) == type;
    struct stat status = {};
    return ::fstatat(directory, entry.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0 && (status.st_mode & S_IFMT) == type;
}

} // namespace

UniqueFd openPrivateDirectory(int parent, const QByteArray& name)
{
    UniqueFd fd(::openat(parent, name.constData(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat status = {};
    if (!fd.isValid() || ::fstat(fd.get(), &status) != 0)
        return {};
    if (status.st_uid != ::geteuid() || (status.st_mode & kEverybodyElse) != 0) {
        errno = EACCES;
        return {};
    }
    return fd;
}

UniqueFd makePrivateDirectory(int parent, const QByteArray& name)
{
    ::mkdirat(parent, name.constData(), kOwnerOnly);
    return openPrivateDirectory(parent, name);
}

std::optional<QList<QByteArray>> entries(int directory, mode_t type)
{
    UniqueFd fd(::openat(directory, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    const std::unique_ptr<DIR, CloseDirectory> stream(::fdopendir(fd.get()));
    if (!stream)
        return std::nullopt;
    fd.release(); // the stream's now
    QList<QByteArray> result;
    errno = 0; // only so does readdir() tell an error from the end
    while (const dirent* entry = ::readdir(stream.get())) {
        if (isOfType(directory, *entry, type))
            result.append(entry->d_name);
        errno = 0;
    }
    if (errno != 0)
        return std::nullopt;
    return result;
}

std::optional<FileId> entryId(int directory, const QByteArray& name)
{
    struct stat status = {};
    if (::fstatat(directory, name.constData(), &status, AT_SYMLINK_NOFOLLOW) != 0)
        return std::nullopt;
    return FileId{status.st_dev, status.st_ino};
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
