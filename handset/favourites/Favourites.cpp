// The favourites, and the lock that guards changes to them.
#include "handset/favourites/Favourites.h"

#include "handset/favourites/ActivityLog.h"
#include "platform/posix/File_p.h"
#include "recentcall/utility/ActivityLog_ENG_RecordStore.h"
#include "recentcall/utility/store/ActivityLogFile_p.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>

#include <array>
#include <cerrno>

using namespace Qt::StringLiterals;
using Store = ActivityLog_ENG_RecordStore;

namespace zyn::handset {
namespace {

QString madeStoreDirectory()
{
    makeStoreDirectory();
    return QFile::decodeName(storeDirectoryPath());
}

/// The path of the file of favourites.
QByteArray detailsPath()
{
    return QFile::encodeName(storePath(QLatin1String(kTopPalsDetailsName)));
}

/// Why @p oldKey cannot be replaced by @p newKey, or Done.
FavouriteChange obstacle(const QString& oldKey, const QString& newKey)
{
    using enum FavouriteChange;
    if (!oldKey.isEmpty() && !isFavourite(oldKey))
        return NoFavourite;
    if (isFavourite(newKey))
        return oldKey == newKey ? Same : AlreadyFavourite;
    if (oldKey.isEmpty() && Store::instance()->getValidIndexForTopPalFiles() < 0)
        return NoPlace;
    if (!newKey.isEmpty() && Store::instance()->getStoreFileName(newKey).isNull())
        return Refused;
    return Done;
}

/// Deletes a file left by a former favourite, which would keep the library from registering the number again.
void removeLeftover(const QString& key)
{
    if (hasValidLog(key))
        posix::removeFile(QFile::encodeName(Store::instance()->getStoreFileName(key)));
}

} // namespace

ActivityLogLock::ActivityLogLock()
    : ActivityLogLock(madeStoreDirectory())
{}

ActivityLogLock::ActivityLogLock(const QString& directory)
    : m_path(directory + u'/' + QLatin1String(kActivityLogLockName))
{}

bool ActivityLogLock::lock()
{
    if (isStoreOthers())
        return false;
    const bool isLocked = m_lock.lock(QFile::encodeName(m_path));
    m_isOwned = !isLocked && errno == EWOULDBLOCK;
    if (isLocked)
        m_lock.sign(QCoreApplication::applicationName().toUtf8());
    return isLocked;
}

QString ActivityLogLock::problem() const
{
    if (isStoreOthers())
        return u"cannot make %1: another user has made its directory"_s.arg(m_path);
    if (!m_isOwned)
        return u"cannot make %1"_s.arg(m_path);
    const std::optional<posix::LockHolder> holder = posix::readLockHolder(QFile::encodeName(m_path));
    if (!holder)
        return u"another process owns the favourites"_s;
    return u"process %1 (%2) owns the favourites"_s.arg(QString::number(holder->process),
                                                        QString::fromUtf8(holder->program));
}

QStringList favouriteKeys()
{
    std::array<QString, Store::kFavourites> names;
    Store::instance()->getCurrentTopPalsFileNames(names.data());
    return QStringList(names.begin(), names.end());
}

std::optional<QStringList> readFavouriteKeys()
{
    if (DetailsFile::isAt(detailsPath()))
        return favouriteKeys();
    return posix::isMissing(detailsPath()) ? std::optional(QStringList()) : std::nullopt;
}

bool reloadFavourites()
{
    Store::destroy();
    return readStoreFile(detailsPath(), DetailsFile::size()) || posix::isMissing(detailsPath());
}

bool isFavourite(const QString& key)
{
    return !key.isEmpty() && Store::instance()->getTopPalFileItem(key) >= 0;
}

FavouriteChange replaceFavourite(const QString& oldNumber, const QString& newNumber)
{
    using enum FavouriteChange;
    const QString oldKey = favouriteKey(oldNumber);
    const QString newKey = favouriteKey(newNumber);
    if (!reloadFavourites())
        return Refused; // what looks like a leftover may be a favourite's file
    if (const FavouriteChange problem = obstacle(oldKey, newKey); problem != Done)
        return problem;
    if (!newKey.isEmpty())
        removeLeftover(newKey);
    Store::instance()->revampTopPalsAvlStorage(oldKey, newKey);
    Store::destroy();
    if (newKey.isEmpty())
        return isFavourite(oldKey) ? Refused : Done;
    if (!isFavourite(newKey))
        return Refused;
    return hasValidLog(newKey) ? Done : WithoutFile;
}

QString describe(FavouriteChange change, const QString& oldNumber, const QString& newNumber)
{
    using enum FavouriteChange;
    const QString oldKey = favouriteKey(oldNumber);
    const QString newKey = favouriteKey(newNumber);
    switch (change) {
    case Done:
        if (newKey.isEmpty())
            return u"%1 is no longer a favourite"_s.arg(oldKey);
        return oldKey.isEmpty() ? u"%1 is a favourite now"_s.arg(newKey)
                                : u"%1 is a favourite now, in place of %2"_s.arg(newKey, oldKey);
    case WithoutFile:
        return describe(Done, oldNumber, newNumber) + u", but its file cannot be made"_s;
    case Same:
        return u"%1 stays a favourite"_s.arg(newKey);
    case NoFavourite:
        return u"%1 is not a favourite"_s.arg(oldKey);
    case AlreadyFavourite:
        return u"%1 is a favourite already"_s.arg(newKey);
    case NoPlace:
        return u"no place is free for %1"_s.arg(newKey);
    case Refused:
        break;
    }
    if (newKey.isEmpty())
        return u"%1 stays a favourite: the files cannot be written"_s.arg(oldKey);
    return u"%1 cannot be made a favourite: it can name no file, or the files cannot be written"_s.arg(newKey);
}

} // namespace zyn::handset
