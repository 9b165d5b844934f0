// The favourites and their activity log, under the keys by which they are looked up.
#pragma once

#include "platform/QSortedList.h"
#include "recentcall/utility/PHONE_ENG_ActivityLog.h"

#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QtGlobal>

#include <optional>

/**
 * What an owner of the activity log does to it.
 *
 * A favourite is registered, logged and looked up under the key of its number (zyn::favouriteKey), and a key is what
 * these functions take, unless they say number. Whoever calls one that changes anything has the lock.
 */
namespace zyn::favourites {

/// Entries that the list deletes.
using Entries = QSortedList<PHONE_ENG_ActivityLog>;

/// The key of each place, empty for a free one. Makes the file that names the favourites when it is missing, and anew
/// when it is damaged.
QStringList keys();

/// The same for who only reads: no key when that file is missing, nothing when it is damaged or cannot be read.
std::optional<QStringList> readKeys();

/**
 * Lets what follows go by what is on disk now.
 *
 * @return false when the file that names the favourites is there but cannot be read: then none is known, and nothing
 * follows from that
 */
bool refresh();

bool isFavourite(const QString& key);

/**
 * Appends the entries of a favourite, newest first, each with the place where it lies; one that a damaged file says to
 * be another number's is left out.
 *
 * @return false when the file cannot be read whole
 */
bool readEntries(Entries& entries, const QString& key);

/**
 * The order of calls and entries by age: whether the first is older than the second, and goes before it when there is
 * no room for both.
 *
 * What a clock that was wrong once has dated into the future counts as older than all else: it would stay there for
 * years, while nothing new is taken. Of the same second, the older is what came first: by uid and, of entries that have
 * no other, by index and place.
 *
 * All that one object compares is compared with the same time.
 */
class AgeOrder
{
public:
    AgeOrder();

    bool operator()(const PHONE_ENG_RecentCall& one, const PHONE_ENG_RecentCall& other) const;
    bool operator()(const PHONE_ENG_ActivityLog& one, const PHONE_ENG_ActivityLog& other) const;

private:
    qint64 m_now;
};

/// Whether @p call would only take the place of a newer one of @p entries, which then fill a file.
bool isTooOld(const PHONE_ENG_RecentCall& call, const Entries& entries);

/// What came of a replacement.
enum class Change {
    Done,
    WithoutFile,      ///< done, but the new number's file cannot be made; it will be when an entry is added
    Same,             ///< both numbers are those of one favourite, which stays as it is
    NoFavourite,      ///< the old number is none
    AlreadyFavourite, ///< the new number is one
    NoPlace,          ///< every place is taken
    Refused,          ///< the new number cannot name a file, or the files cannot be written
};

/**
 * Replaces the favourite @p oldNumber by @p newNumber, of which one may be empty. Anything but Done and WithoutFile
 * changes nothing, unless a file could not be written.
 *
 * A file that a favourite of the new number has left goes, and so do the entries of the old one.
 */
Change replace(const QString& oldNumber, const QString& newNumber);

/// What @p change means for these numbers, as a sentence without a full stop.
QString describe(Change change, const QString& oldNumber, const QString& newNumber);

/**
 * Gives a favourite whose file the library takes for missing a new one, whole and at once, with the newest of the
 * entries that the old one holds. When that holds more, a copy of it stays beside it: the name, kFormerInfix, a number.
 *
 * @return false when it could not be written; also, as the old one must stay, when that cannot be read or copied, or
 * when the settings ask for a file without slots
 */
bool renew(const QString& key);

/// Whether a favourite's file is of the size that the settings ask for, with a valid header.
bool isSound(const QString& key);

/**
 * Adds @p entry under @p key, over the oldest entry when no slot is free; a file that the library takes for missing is
 * renewed before.
 *
 * @return false when the key is no favourite's or the entry could not be written
 */
bool addEntry(PHONE_ENG_ActivityLog& entry, const QString& key);

} // namespace zyn::favourites
