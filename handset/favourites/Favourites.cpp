// The favourites and their activity log, under the keys by which they are looked up.
#include "handset/favourites/Favourites.h"

#include "recentcall/utility/ActivityLog_ENG_RecordStore.h"
#include "recentcall/utility/FavouriteKey_p.h"

#include <QtCore/QFile>

#include <array>

using Store = ActivityLog_ENG_RecordStore;

namespace {

using namespace zyn::favourites;

Store& store()
{
    return *Store::instance();
}

/// Lets the library read again what is on disk, which is what holds.
void reload()
{
    Store::destroy();
}

/// Why @p oldKey cannot make room for @p newKey; Done when it can.
Change obstacle(const QString& oldKey, const QString& newKey)
{
    if (!oldKey.isEmpty() && !isFavourite(oldKey))
        return Change::NoFavourite;
    if (isFavourite(newKey))
        return oldKey == newKey ? Change::Same : Change::AlreadyFavourite;
    if (oldKey.isEmpty() && store().getValidIndexForTopPalFiles() < 0)
        return Change::NoPlace;
    if (!newKey.isEmpty() && store().getStoreFileName(newKey).isNull())
        return Change::Refused;
    return Change::Done;
}

/// Deletes what a favourite that is none any more has left: the library would refuse to register it again.
void removeLeftover(const QString& key)
{
    const QString path = store().getStoreFileName(key);
    if (store().checkTopPalsFile(path))
        QFile::remove(path);
}

/// Removes the oldest of @p entries of @p key that can be removed: what a damaged entry says of itself may be wrong.
void removeOldest(const Entries& entries, const QString& key)
{
    for (qsizetype i = entries.count() - 1; i >= 0; --i) {
        entries.at(i)->setPhoneNumber(key);
        if (store().removeTopPalsAvlItem(*entries.at(i)) == 1)
            return;
    }
}

} // namespace

namespace zyn::favourites {

QStringList keys()
{
    std::array<QString, Store::kFavourites> names;
    store().getCurrentTopPalsFileNames(names.data());
    return QStringList(names.begin(), names.end());
}

bool isFavourite(const QString& key)
{
    return store().getTopPalFileItem(key) >= 0;
}

bool readEntries(Entries& entries, const QString& key)
{
    entries.setAutoDelete(true);
    return store().readTopPalsAvlContactRecordList(entries, key) == 1;
}

Change replace(const QString& oldNumber, const QString& newNumber)
{
    const QString oldKey = favouriteKey(oldNumber);
    const QString newKey = favouriteKey(newNumber);
    if (const Change problem = obstacle(oldKey, newKey); problem != Change::Done)
        return problem;
    if (!newKey.isEmpty())
        removeLeftover(newKey);
    store().revampTopPalsAvlStorage(oldKey, newKey);
    reload();
    const bool isDone = newKey.isEmpty() ? !isFavourite(oldKey) : isFavourite(newKey) && isSound(newKey);
    return isDone ? Change::Done : Change::Refused;
}

QString describe(Change change, const QString& oldNumber, const QString& newNumber)
{
    const QString oldKey = favouriteKey(oldNumber);
    const QString newKey = favouriteKey(newNumber);
    switch (change) {
    case Change::Done:
        if (newKey.isEmpty())
            return QStringLiteral("%1 is no favourite any more").arg(oldKey);
        return oldKey.isEmpty() ? QStringLiteral("%1 is a favourite now").arg(newKey)
                                : QStringLiteral("%1 is a favourite now, in place of %2").arg(newKey, oldKey);
    case Change::Same:
        return QStringLiteral("%1 stays a favourite").arg(newKey);
    case Change::NoFavourite:
        return QStringLiteral("%1 is no favourite").arg(oldKey);
    case Change::AlreadyFavourite:
        return QStringLiteral("%1 is a favourite already").arg(newKey);
    case Change::NoPlace:
        return QStringLiteral("no place is free for %1").arg(newKey);
    case Change::Refused:
        break;
    }
    return QStringLiteral("%1 cannot be made a favourite: it can name no file, or the files cannot be written")
        .arg(newKey);
}

bool isSound(const QString& key)
{
    return store().checkTopPalsFile(store().getStoreFileName(key));
}

bool renew(const QString& key)
{
    Entries entries;
    readEntries(entries, key);
    store().revampTopPalsAvlStorage(key, key);
    for (qsizetype i = entries.count() - 1; i >= 0; --i) {
        entries.at(i)->setPhoneNumber(key);
        store().addTopPalsAvlItem(*entries.at(i));
    }
    return isSound(key);
}

bool addEntry(PHONE_ENG_ActivityLog& entry, const QString& key)
{
    entry.setPhoneNumber(key);
    entry.inUse = 1;
    // Read in any case: so the library learns which index comes next.
    Entries entries;
    readEntries(entries, key);
    if (isFavourite(key) && store().getAvailableTopPalsAvlPos(key) < 0)
        removeOldest(entries, key);
    return store().addTopPalsAvlItem(entry) == 1;
}

} // namespace zyn::favourites
