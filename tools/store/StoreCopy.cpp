// A copy of a store directory.
#include "tools/store/StoreCopy.h"

#include "platform/posix/PathAt_p.h"
#include "recentcall/utility/store/ActivityLogFile_p.h"
#include "tools/zynphone/ExitCode.h"

#include <QtCore/QDateTime>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <fcntl.h>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

/// Copies one file; why it could not, or nothing. What is no regular file, or lies behind a link of another user, is no
/// file of the store.
QString copyFile(const QString& from, const QString& to)
{
    const posix::UniqueFd fd = posix::openTrusted(QFile::encodeName(from));
    if (!fd.isValid() && QFileInfo(from).isSymLink())
        return {};
    QFile file(fd.isValid() ? u"/proc/self/fd/%1"_s.arg(fd.get()) : from);
    if (!QFileInfo(file.fileName()).isFile())
        return {};
    return file.copy(to) ? QString() : u"cannot copy %1: %2"_s.arg(from, file.errorString());
}

} // namespace

QString copyStore(const StoreFiles& files)
{
    QString path = files.directory() + QDateTime::currentDateTime().toString(u".yyyyMMdd-HHmmss"_s);
    // Another repair may have been in the same second.
    if (QFileInfo::exists(path))
        path += QDateTime::currentDateTime().toString(u"zzz"_s);
    if (!QDir().mkdir(path, QFileInfo(files.directory()).permissions()))
        throw failure(u"cannot make %1 for a copy, so nothing was changed"_s.arg(path));
    for (const auto& [name, image] : files.images()) {
        if (name == QLatin1String(kActivityLogLockName))
            continue;
        const QString problem = copyFile(files.path(name), path + u'/' + name);
        if (!problem.isEmpty()) {
            QDir(path).removeRecursively();
            throw failure(problem + u", so nothing was changed"_s);
        }
    }
    return path;
}

} // namespace zyn::tool
