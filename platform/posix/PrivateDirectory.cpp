// Directories that belong to this user alone.
#include "platform/posix/PrivateDirectory_p.h"

#include <cerrno>
#include <memory>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr mode_t kOwnerOnly = 0700;
constexpr mode_t kEverybodyElse = 0077;

struct CloseDirectory
{
    void operator()(DIR* stream) const { ::closedir(stream); }
};

bool isOfType(int directory, const char* name, mode_t type)
{
    struct stat status = {};
    return ::fstatat(directory, name, &status, AT_SYMLINK_NOFOLLOW) == 0 && (status.st_mode & S_IFMT) == type;
}

} // namespace

namespace zyn::posix {

UniqueFd openPrivateDirectory(int parent, const QByteArray& name)
{
    UniqueFd fd(::openat(parent, name.constData(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat status = {};
    if (!fd.isValid() || ::fstat(fd.get(), &status) != 0)
        return {};
    if (status.st_uid != ::geteuid() || (status.st_mode & kEverybodyElse) != 0)
        return {};
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
        if (isOfType(directory, entry->d_name, type))
            result.append(entry->d_name);
        errno = 0;
    }
    if (errno != 0)
        return std::nullopt;
    return result;
}

QByteArray pathThrough(int directory, const QByteArray& name)
{
    return "/proc/self/fd/" + QByteArray::number(directory) + '/' + name;
}

} // namespace zyn::posix
