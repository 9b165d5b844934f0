// Files found without following links that somebody else has laid.
#include "platform/posix/Place_p.h"

#include "platform/posix/File_p.h"
#include "platform/posix/Retry_p.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <utility>

#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace zyn::posix {
namespace {

constexpr int kLinkLimit = 40; // the kernel's own

/// How everything is opened: not beyond an exec, and without waiting.
constexpr int kOpenFlags = O_CLOEXEC | O_NONBLOCK | O_NOCTTY;

UniqueFd openParent(int directory, const char* name, int flags = 0)
{
    return UniqueFd(retry([&] { return ::openat(directory, name, O_PATH | O_CLOEXEC | flags); }));
}

std::nullopt_t refused(int error)
{
    errno = error;
    return std::nullopt;
}

/// Takes the first name off @p path, and the slashes around it.
QByteArray takeName(QByteArray& path)
{
    const auto begin = std::ranges::find_if(path, [](char c) { return c != '/'; });
    const auto end = std::find(begin, path.end(), '/');
    const auto next = std::find_if(end, path.end(), [](char c) { return c != '/'; });
    QByteArray name(begin, end - begin);
    path = QByteArray(next, path.end() - next);
    return name;
}

/// The text of the link @p fd; nothing, and errno, when it is somebody else's.
std::optional<QByteArray> targetOf(const UniqueFd& fd, uid_t owner)
{
    if (!isTrustedUser(owner))
        return refused(EACCES);
    QByteArray target(PATH_MAX, Qt::Uninitialized);
    const ssize_t length = ::readlinkat(fd.get(), "", target.data(), static_cast<size_t>(target.size()));
    if (length <= 0)
        return refused(ENOENT);
    target.truncate(length);
    return target;
}

} // namespace

std::optional<Place> placeOf(const QByteArray& path, LastLink last)
{
    if (path.contains('\0'))
        return refused(ENOENT);
    QByteArray rest = path;
    UniqueFd directory = openParent(AT_FDCWD, rest.startsWith('/') ? "/" : ".", O_DIRECTORY);
    for (int links = 0; directory.isValid() && links <= kLinkLimit;) {
        const QByteArray name = takeName(rest);
        const bool isLast = rest.isEmpty();
        if (name.isEmpty()) // nothing but slashes, or nothing at all
            return path.isEmpty() ? refused(ENOENT) : std::optional(Place{std::move(directory), QByteArray(".")});
        UniqueFd entry = openParent(directory.get(), name.constData(), O_NOFOLLOW);
        if (!entry.isValid() && !(isLast && errno == ENOENT))
            return std::nullopt;
        struct stat status = {};
        if (entry.isValid() && ::fstat(entry.get(), &status) != 0)
            return std::nullopt;
        const bool isLink = S_ISLNK(status.st_mode);
        if (isLast && (!isLink || last == LastLink::Keep))
            return Place{std::move(directory), name};
        if (!isLink) {
            directory = std::move(entry);
            continue;
        }
        const std::optional<QByteArray> target = targetOf(entry, status.st_uid);
        if (!target)
            return std::nullopt;
        if (target->startsWith('/'))
            directory = openParent(AT_FDCWD, "/", O_DIRECTORY);
        rest = isLast ? *target : *target + '/' + rest;
        ++links;
    }
    return directory.isValid() ? refused(ELOOP) : std::nullopt;
}

UniqueFd openAt(int directory, const QByteArray& name, int flags, mode_t mode)
{
    return UniqueFd(
        retry([&] { return ::openat(directory, name.constData(), flags | O_NOFOLLOW | kOpenFlags, mode); }));
}

UniqueFd openAt(const Place& place, int flags)
{
    return openAt(place.directory.get(), place.name, flags);
}

UniqueFd openForChanging(const Place& place)
{
    return openAt(place, O_RDWR);
}

UniqueFd openTrusted(const QByteArray& path, int flags)
{
    // Most paths have no link: then one call does. The others are walked, as all are where the kernel lacks that call.
    if (!path.contains('\0')) {
        open_how how = {};
        // This call, unlike the others, takes no flag that means nothing.
        how.flags = static_cast<unsigned int>(flags | ((flags & O_PATH) ? O_CLOEXEC : kOpenFlags | O_LARGEFILE));
        how.resolve = RESOLVE_NO_SYMLINKS;
        const long fd = retry([&] { return ::syscall(SYS_openat2, AT_FDCWD, path.constData(), &how, sizeof how); });
        if (fd >= 0 || (errno != ELOOP && errno != ENOSYS && errno != EPERM))
            return UniqueFd(static_cast<int>(fd));
    }
    const std::optional<Place> place = placeOf(path);
    return place ? openAt(*place, flags) : UniqueFd();
}

bool makeDirectory(const QByteArray& path, mode_t mode)
{
    const std::optional<Place> place = placeOf(path);
    return place && ::mkdirat(place->directory.get(), place->name.constData(), mode) == 0;
}

bool removeFile(const QByteArray& path)
{
    const std::optional<Place> place = placeOf(path, LastLink::Keep);
    return place && ::unlinkat(place->directory.get(), place->name.constData(), 0) == 0;
}

} // namespace zyn::posix
