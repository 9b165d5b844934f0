// Paths that only this user and root can lead elsewhere.
#include "platform/posix/PathAt_p.h"

#include "platform/posix/Directory_p.h"

#include <QtCore/QRandomGenerator>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <utility>

#include <fcntl.h>
#include <linux/openat2.h>
#include <pwd.h>
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

/// Splits the first name off @p path, and the slashes around it.
QByteArray splitName(QByteArray& path)
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

int openFlags(Access access)
{
    return access == Access::Read ? O_RDONLY : O_RDWR;
}

UniqueFd openTrustedWith(const QByteArray& path, int flags)
{
    // Most paths have no link: then one call does. The others are walked, as all are where the kernel lacks that call.
    if (!path.contains('\0')) {
        open_how how = {};
        // This call, unlike the others, accepts no flag that means nothing.
        how.flags = static_cast<unsigned int>(flags | ((flags & O_PATH) ? O_CLOEXEC : kOpenFlags | O_LARGEFILE));
        how.resolve = RESOLVE_NO_SYMLINKS;
        const long fd = retry([&] { return ::syscall(SYS_openat2, AT_FDCWD, path.constData(), &how, sizeof how); });
        if (fd >= 0 || (errno != ELOOP && errno != ENOSYS && errno != EPERM))
            return UniqueFd(static_cast<int>(fd));
    }
    const std::optional<PathAt> found = resolve(path);
    return found ? openAt(found->directory.get(), found->name, flags) : UniqueFd();
}

} // namespace

bool isTrustedUser(uid_t user)
{
    return user == currentUser() || user == 0;
}

uid_t currentUser()
{
    return ::geteuid();
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
    // A name that nobody can have taken before, not even with what was put aside earlier.
    const QByteArray aside = path + ".away." + QByteArray::number(QRandomGenerator::system()->generate64(), 16);
    if (::renameat2(AT_FDCWD, path.constData(), AT_FDCWD, aside.constData(), RENAME_NOREPLACE) != 0)
        return false;
    // Another process may have put its own there in between.
    if (!isOfOthers(aside)) {
        ::renameat2(AT_FDCWD, aside.constData(), AT_FDCWD, path.constData(), RENAME_NOREPLACE);
        return false;
    }
    if (::unlink(aside.constData()) != 0)
        ::rmdir(aside.constData());
    return true;
}

bool isTakenByOthers(const QByteArray& path)
{
    const std::optional<uid_t> owner = ownerOf(path);
    if (!owner || isTrustedUser(*owner))
        return false;
    struct stat status = {};
    return ::stat(parentOf(path).constData(), &status) == 0 && (status.st_mode & S_IWOTH) != 0;
}

std::optional<PathAt> resolve(const QByteArray& path, LastLink last)
{
    if (path.contains('\0'))
        return refused(ENOENT);
    QByteArray rest = path;
    UniqueFd directory = openParent(AT_FDCWD, rest.startsWith('/') ? "/" : ".", O_DIRECTORY);
    for (int links = 0; directory.isValid() && links <= kLinkLimit;) {
        const QByteArray name = splitName(rest);
        const bool isLast = rest.isEmpty();
        if (name.isEmpty()) // nothing but slashes, or nothing at all
            return path.isEmpty() ? refused(ENOENT) : std::optional(PathAt{std::move(directory), QByteArray(".")});
        UniqueFd entry = openParent(directory.get(), name.constData(), O_NOFOLLOW);
        if (!entry.isValid() && !(isLast && errno == ENOENT))
            return std::nullopt;
        struct stat status = {};
        if (entry.isValid() && ::fstat(entry.get(), &status) != 0)
            return std::nullopt;
        const bool isLink = S_ISLNK(status.st_mode);
        if (isLast && (!isLink || last == LastLink::Keep))
            return PathAt{std::move(directory), name};
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

UniqueFd openAt(const PathAt& path, Access access)
{
    return openAt(path.directory.get(), path.name, openFlags(access));
}

UniqueFd openTrusted(const QByteArray& path, Access access)
{
    return openTrustedWith(path, openFlags(access));
}

bool makeDirectory(const QByteArray& path, mode_t mode)
{
    const std::optional<PathAt> found = resolve(path);
    return found && ::mkdirat(found->directory.get(), found->name.constData(), mode) == 0;
}

bool isDirectory(const QByteArray& path)
{
    return openTrustedWith(path, O_PATH | O_DIRECTORY).isValid();
}

bool setDirectoryMode(const QByteArray& path, mode_t mode)
{
    // In a directory that is open to all, the name may be a second one of any file of ours.
    const UniqueFd directory(
        retry([&] { return ::open(path.constData(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC); }));
    return directory.isValid() && ::chmod(pathThrough(directory.get()).constData(), mode) == 0;
}

bool removeFile(const QByteArray& path)
{
    const std::optional<PathAt> found = resolve(path, LastLink::Keep);
    return found && ::unlinkat(found->directory.get(), found->name.constData(), 0) == 0;
}

} // namespace zyn::posix
