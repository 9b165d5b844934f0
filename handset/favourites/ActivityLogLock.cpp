// The right to change the activity log.
#include "handset/favourites/ActivityLogLock.h"

#include "recentcall/utility/ActivityLogFile_p.h"
#include "recentcall/utility/StoreDirectory_p.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>

#include <cerrno>
#include <optional>

namespace zyn::favourites {
namespace {

QString madeStoreDirectory()
{
    zyn::makeStoreDirectory();
    return QFile::decodeName(zyn::storeDirectoryPath());
}

} // namespace

ActivityLogLock::ActivityLogLock()
    : ActivityLogLock(madeStoreDirectory())
{}

ActivityLogLock::ActivityLogLock(const QString& directory)
    : m_path(directory + QLatin1Char('/') + QLatin1String(kActivityLogLockName))
{}

bool ActivityLogLock::take()
{
    const bool isTaken = m_lock.take(QFile::encodeName(m_path));
    m_isOwned = !isTaken && errno == EWOULDBLOCK;
    if (isTaken)
        m_lock.sign(QCoreApplication::applicationName().toUtf8());
    return isTaken;
}

QString ActivityLogLock::problem() const
{
    if (!m_isOwned)
        return QStringLiteral("cannot make %1").arg(m_path);
    const std::optional<posix::LockHolder> holder = posix::readLockHolder(QFile::encodeName(m_path));
    if (!holder)
        return QStringLiteral("another process owns the favourites");
    return QStringLiteral("process %1 (%2) owns the favourites")
        .arg(QString::number(holder->process), QString::fromUtf8(holder->program));
}

} // namespace zyn::favourites
