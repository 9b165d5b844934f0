// The favourites, and the lock that guards changes to them.
#pragma once

#include "platform/posix/FileLock_p.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>

/**
 * A favourite is registered, logged and looked up by the key of its number (zyn::favouriteKey). These functions expect
 * a key unless a parameter is called number. Changes require an ActivityLogLock.
 */
namespace zyn::handset {

/**
 * The exclusive right to change the favourites and their activity log: a lock file in the store directory. It is
 * released with the object, or when the process ends.
 */
class ActivityLogLock
{
public:
    ActivityLogLock();
    /// For the store in @p directory, which exists.
    explicit ActivityLogLock(const QString& directory);

    /// False if another process holds the lock, or something other than a file has its name.
    bool lock();

    /// Why lock() failed, with the process that holds the lock.
    QString problem() const;

private:
    const QString m_path;
    posix::FileLock m_lock;
    bool m_isOwned = false; ///< another process owned it at the last attempt
};

/// The key of each place, empty for a free one. Creates the file of favourites if it is missing or damaged.
QStringList favouriteKeys();

/// The same for readers: no keys if the file is missing, nothing if it is damaged or unreadable.
std::optional<QStringList> readFavouriteKeys();

/**
 * Drops the library's cache, so that the next access reads the disk.
 *
 * @return false if the file of favourites exists but cannot be read
 */
bool reloadFavourites();

bool isFavourite(const QString& key);

/// The outcome of a replacement.
enum class FavouriteChange {
    Done,
    WithoutFile,      ///< done, but the new number's file cannot be created now; adding an entry creates it
    Same,             ///< both numbers belong to one favourite, which stays as it is
    NoFavourite,      ///< the old number is not a favourite
    AlreadyFavourite, ///< the new number already is a favourite
    NoPlace,          ///< all places are taken
    Refused,          ///< the new number cannot name a file, or the files cannot be written
};

/**
 * Replaces the favourite @p oldNumber by @p newNumber; one of them may be empty. Except for Done and WithoutFile
 * nothing has changed, unless a file could not be written.
 *
 * Deletes the entries of the old number, and a file that a former favourite has left for the new one.
 */
FavouriteChange replaceFavourite(const QString& oldNumber, const QString& newNumber);

/// @p change in words, as a sentence without a full stop.
QString describe(FavouriteChange change, const QString& oldNumber, const QString& newNumber);

} // namespace zyn::handset
