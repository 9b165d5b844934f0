// Why a directory or a file cannot be used.
#include "tools/doctor/Fault.h"

#include "platform/posix/Directory_p.h"

#include <QtCore/QFileInfo>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

constexpr mode_t kPermissions = 07777;
constexpr char kPlainCharacters[] = "/._-+:@%";

QString quotedName(const QByteArray& path)
{
    return QFile::decodeName(path);
}

bool isPlain(char character)
{
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z')
           || (character >= '0' && character <= '9') || (character != '\0' && std::strchr(kPlainCharacters, character));
}

/// errno's reason why a path cannot be examined.
Finding unreachable(const QByteArray& path, const QString& remedyWhenMissing)
{
    if (errno == ENOENT)
        return wrong(quotedName(path), u"it does not exist"_s, remedyWhenMissing);
    return wrong(quotedName(path), u"it cannot be reached: %1"_s.arg(QString::fromLocal8Bit(std::strerror(errno))),
                 u"look at the directories above it: namei -l %1"_s.arg(shellWord(path)));
}

Finding noDirectory(const QByteArray& path)
{
    return wrong(quotedName(path), u"it is not a directory"_s,
                 u"move it away: mv %1 %2"_s.arg(shellWord(path), shellWord(path + ".old")));
}

} // namespace

bool exists(const QByteArray& path)
{
    struct stat status = {};
    return ::lstat(path.constData(), &status) == 0 || (errno != ENOENT && errno != ENOTDIR);
}

QByteArray parentOf(const QByteArray& path)
{
    return QFile::encodeName(QFileInfo(quotedName(path)).path());
}

QByteArray existingPart(QByteArray path)
{
    while (!exists(path) && parentOf(path) != path)
        path = parentOf(path);
    return path;
}

std::optional<Finding> privateDirectoryFault(const QByteArray& path)
{
    const bool isPrivate = posix::openPrivateDirectory(path).isValid();
    if (isPrivate && ::access(path.constData(), R_OK | W_OK | X_OK) == 0)
        return std::nullopt;
    struct stat status = {};
    if (::lstat(path.constData(), &status) != 0)
        return unreachable(path, u"mkdir -m 700 %1"_s.arg(shellWord(path)));
    if (S_ISLNK(status.st_mode))
        return wrong(quotedName(path), u"it is a symbolic link, which is not followed"_s,
                     u"name the directory that it leads to"_s);
    if (!S_ISDIR(status.st_mode))
        return noDirectory(path);
    if (status.st_uid != ::geteuid())
        return wrong(quotedName(path),
                     u"it belongs to user %1, not to you, user %2"_s.arg(status.st_uid).arg(::geteuid()),
                     u"name a directory of your own, or run as its owner"_s);
    const QString harm = isPrivate ? u"you may not read, write and enter it"_s : u"other users could read along"_s;
    return wrong(quotedName(path),
                 u"its mode is %1, not 0700: %2"_s.arg(status.st_mode & kPermissions, 4, 8, '0'_L1).arg(harm),
                 u"chmod 700 %1"_s.arg(shellWord(path)));
}

std::optional<Finding> writableDirectoryFault(const QByteArray& path)
{
    struct stat status = {};
    if (::stat(path.constData(), &status) != 0)
        return unreachable(path, u"mkdir -p %1"_s.arg(shellWord(path)));
    if (!S_ISDIR(status.st_mode))
        return noDirectory(path);
    if (::access(path.constData(), W_OK | X_OK) != 0)
        return wrong(
            quotedName(path),
            u"you may not write in it; it belongs to user %1, you are user %2"_s.arg(status.st_uid).arg(::geteuid()),
            status.st_uid == ::geteuid() ? u"chmod u+rwx %1"_s.arg(shellWord(path))
                                         : u"run as its owner, or name another directory"_s);
    return std::nullopt;
}

std::optional<Finding> fileFault(const QByteArray& path, bool isWritten)
{
    struct stat status = {};
    if (::stat(path.constData(), &status) != 0)
        return unreachable(path, u"remove what is there: rm %1"_s.arg(shellWord(path)));
    if (!S_ISREG(status.st_mode))
        return wrong(quotedName(path), u"it is not a regular file"_s,
                     u"move it away: mv %1 %2"_s.arg(shellWord(path), shellWord(path + ".old")));
    if (::access(path.constData(), R_OK) != 0)
        return wrong(quotedName(path), u"you may not read it"_s, u"as its owner: chmod u+rw %1"_s.arg(shellWord(path)));
    if (isWritten && ::access(path.constData(), W_OK) != 0)
        return wrong(quotedName(path), u"you may not write it"_s,
                     u"as its owner: chmod u+rw %1"_s.arg(shellWord(path)));
    return std::nullopt;
}

QString shellWord(const QByteArray& path)
{
    QString name = quotedName(path);
    if (!path.isEmpty() && std::ranges::all_of(path, isPlain))
        return name;
    return u'\'' + name.replace(u'\'', u"'\\''"_s) + u'\'';
}

} // namespace zyn::tool
