// The right to change the activity log.
#include "handset/favourites/ActivityLogLock.h"

#include "recentcall/utility/ActivityLogFile_p.h"
#include "recentcall/utility/StoreDirectory_p.h"

#include <QtCore/QFile>

#include <chrono>

#include <sys/stat.h>

using namespace std::chrono_literals;

namespace {

/// How long a process may take from making the lock file to writing its number into it.
constexpr auto kBirth = 200ms;

/// Whether @p path is the name of something else than a regular file: to read that could take for ever.
bool isNoFile(const QString& path)
{
    struct stat status = {};
    return ::lstat(QFile::encodeName(path).constData(), &status) == 0 && !S_ISREG(status.st_mode);
}

QString madeStoreDirectory()
{
    zyn::makeStoreDirectory();
    return QFile::decodeName(zyn::storeDirectoryPath());
}

} // namespace

namespace zyn::favourites {

ActivityLogLock::ActivityLogLock()
    : ActivityLogLock(madeStoreDirectory())
{}

ActivityLogLock::ActivityLogLock(const QString& directory)
    : m_file(directory + QLatin1Char('/') + QLatin1String(kActivityLogLockName))
{
    m_file.setStaleLockTime(0);
}

bool ActivityLogLock::take()
{
    if (isNoFile(m_file.fileName()))
        return false;
    if (m_file.tryLock(0))
        return true;
    if (m_file.error() != QLockFile::LockFailedError)
        return false;
    qint64 process = 0;
    if (!m_file.getLockInfo(&process, nullptr, nullptr) && m_file.tryLock(int(kBirth.count())))
        return true;
    // The file may name no process, as one that was killed too early leaves it, or a number that another process, or
    // this one, has now. The kernel knows better: this fails while the one that made the file lives.
    return m_file.removeStaleLockFile() && m_file.tryLock(0);
}

QString ActivityLogLock::problem() const
{
    if (m_file.error() != QLockFile::LockFailedError)
        return QStringLiteral("cannot make %1").arg(m_file.fileName());
    qint64 process = 0;
    QString program;
    if (!m_file.getLockInfo(&process, nullptr, &program))
        return QStringLiteral("another process owns the favourites");
    return QStringLiteral("process %1 (%2) owns the favourites").arg(process).arg(program);
}

} // namespace zyn::favourites
