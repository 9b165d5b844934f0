// A user who is neither this one nor root, and what belongs to them.
#pragma once

#include <QtCore/QFile>
#include <QtCore/QString>

#include <sys/stat.h>
#include <unistd.h>

namespace otheruser {

inline constexpr uid_t kNumber = 65534;

/// Gives a file or a link to the other user, which only root can do.
inline bool give(const QString& path)
{
    return ::lchown(QFile::encodeName(path).constData(), kNumber, kNumber) == 0;
}

/// Makes this process the other user's for good.
inline bool become()
{
    return ::setgid(kNumber) == 0 && ::setuid(kNumber) == 0;
}

/// Owner and permissions of a file, as a text.
inline QString ownership(const QString& path)
{
    struct stat status = {};
    ::lstat(QFile::encodeName(path).constData(), &status);
    return QStringLiteral("%1 %2 %3").arg(status.st_uid).arg(status.st_gid).arg(status.st_mode, 0, 8);
}

} // namespace otheruser
