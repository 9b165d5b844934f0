// Who the favourites are, and the lock of whoever changes them.
#pragma once

#include "platform/posix/FileLock_p.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>

/**
 * A favourite is registered, logged and looked up under the key of its number (zyn::favouriteKey). These functions
 * expect a key unless they say number. Whoever changes anything holds an ActivityLogLock.
 */
namespace zyn::handset {

/**
 * The right to change the favourites and their activity log, which one process at a time has: a lock file in the store
 * directory. It ends with the object, and with the process, however that ends.
 */
class ActivityLogLock
{
public:
    ActivityLogLock();
    /// Of the store in @p directory, which exists.
    explicit ActivityLogLock(const QString& directory);

    /// False when another process holds the lock, or when something that is no file has its name.
    bool lock();

    /// Why lock() failed, with the process that holds the lock.
    QString problem() const;

private:
    const QString m_path;
    posix::FileLock m_lock;
    bool m_isOwned = false; ///< by another process, when it was last tried
};

/// The key of each place, empty for a free one. Makes the file that names the favourites when it is missing, and anew
/// when it is damaged.
QStringList favouriteKeys();

/// The same for readers: no key when that file is missing, nothing when it is damaged or cannot be read.
std::optional<QStringList> readFavouriteKeys();

/**
 * Drops what the library remembers, so that what follows goes by what is on disk now.
 *
 * @return false when the file that names the favourites is there but cannot be read: they are unknown then
 */
bool reloadFavourites();

bool isFavourite(const QString& key);

/// The outcome of a replacement.
enum class FavouriteChange {
    Done,
    WithoutFile,      ///< done, but the new number's file cannot be made; it will be when an entry is added
    Same,             ///< both numbers are those of one favourite, which stays as it is
    NoFavourite,      ///< the old number is no favourite
    AlreadyFavourite, ///< the new number is one already
    NoPlace,          ///< every place is taken
    Refused,          ///< the new number cannot name a file, or the files cannot be written
};

/**
 * Replaces the favourite @p oldNumber by @p newNumber, of which one may be empty. Anything but Done and WithoutFile
 * changes nothing, unless a file could not be written.
 *
 * A file that is left from a former favourite of the new number is deleted, and so are the entries of the old one.
 */
FavouriteChange replaceFavourite(const QString& oldNumber, const QString& newNumber);

/// What @p change means for these numbers, as a sentence without a full stop.
QString describe(FavouriteChange change, const QString& oldNumber, const QString& newNumber);

} // namespace zyn::handset
