// The favourites and their activity log, under the keys by which they are looked up.
#include "handset/favourites/Favourites.h"

#include "platform/posix/File_p.h"
#include "platform/posix/StagedFile_p.h"
#include "recentcall/utility/ActivityLogFile_p.h"
#include "recentcall/utility/ActivityLog_ENG_RecordStore.h"
#include "recentcall/utility/FavouriteKey_p.h"
#include "recentcall/utility/StoreDirectory_p.h"
#include "recentcall/utility/TopPalsSlots_p.h"

#include <QtCore/QDateTime>
#include <QtCore/QFile>

#include <algorithm>
#include <array>
#include <cerrno>
#include <compare>
#include <limits>
#include <memory>
#include <optional>
#include <tuple>
#include <utility>
#include <vector>

#include <fcntl.h>

using Store = ActivityLog_ENG_RecordStore;

namespace zyn::favourites {
namespace {

Store& store()
{
    return *Store::instance();
}

/// Lets the library read again what is on disk, which is what holds.
void reload()
{
    Store::destroy();
}

/// The path of the file of @p key; null when that can name none.
QString pathOf(const QString& key)
{
    return key == QLatin1String(zyn::kTopPalsDetailsName) ? QString() : store().getStoreFileName(key);
}

std::optional<QByteArray> readFile(const QString& path)
{
    const zyn::posix::UniqueFd fd = zyn::posix::openTrusted(QFile::encodeName(path), O_RDONLY);
    return zyn::posix::readWhole(fd.get(), zyn::contactFileSize(zyn::kMaxContactSlots));
}

/// Appends the entries in the first @p slots slots of @p image. What a damaged one says of itself may lead to a slot
/// that is another's: that with another number than @p key is left out, and the place of each is where it lies. Under
/// a header that is wrong, only a flag that is 1 says that a slot is in use.
void appendEntries(Entries& entries, const QByteArray& image, const QString& key, int slots)
{
    const bool isTrusted = zyn::hasValidHeader(image);
    for (int slot = 0; slot < slots; ++slot) {
        if (!zyn::isContactRecordInUse(image, slot))
            continue;
        auto entry = std::make_unique<PHONE_ENG_ActivityLog>();
        zyn::readContactRecord(*entry, image, slot);
        entry->topPalsAvlPos = slot;
        if (entry->getPhoneNumber() == key && (isTrusted || entry->inUse == 1))
            entries.append(entry.release());
    }
}

/// How many slots of @p image are in use, whatever they hold.
int usedSlots(const QByteArray& image)
{
    int used = 0;
    for (int slot = 0; slot < zyn::contactRecordCount(image); ++slot)
        used += zyn::isContactRecordInUse(image, slot) ? 1 : 0;
    return used;
}

/// Makes a file of @p contents, those of the file @p path, beside it under a name that is free; that name, or null when
/// it cannot be made.
QByteArray keepCopy(const QByteArray& path, const QByteArray& contents)
{
    const zyn::posix::UniqueFd original = zyn::posix::openTrusted(path, O_RDONLY);
    for (int number = 1;; ++number) {
        QByteArray copy = path + zyn::kFormerInfix + QByteArray::number(number);
        if (zyn::posix::createFile(copy, contents, original.get()))
            return copy;
        if (errno != EEXIST)
            return {};
    }
}

/// The order of @p one and @p other by age, at the time @p now, as far as what they have as calls tells it.
std::strong_ordering compareAge(const PHONE_ENG_RecentCall& one, const PHONE_ENG_RecentCall& other, qint64 now)
{
    const auto age = [now](const PHONE_ENG_RecentCall& call) {
        return std::tuple(call.startTime <= now, call.startTime, call.uid);
    };
    return age(one) <=> age(other);
}

/// Puts @p entries in order, the oldest first, and removes the oldest of those that @p slots slots do not hold.
void keepNewest(Entries& entries, int slots)
{
    std::ranges::stable_sort(
        entries, [isOlder = AgeOrder()](const auto* one, const auto* other) { return isOlder(*one, *other); });
    while (entries.count() > slots)
        entries.removeFirst();
}

/// The entry of @p entries that goes first; null when there is none.
const PHONE_ENG_ActivityLog* oldestOf(const Entries& entries)
{
    const auto oldest =
        std::min_element(entries.begin(), entries.end(),
                         [isOlder = AgeOrder()](const auto* one, const auto* other) { return isOlder(*one, *other); });
    return oldest == entries.end() ? nullptr : *oldest;
}

/// The index behind the greatest of @p entries.
int32_t nextIndex(const Entries& entries)
{
    int32_t next = 0;
    for (const PHONE_ENG_ActivityLog* entry : entries)
        next = std::max(next, std::min(entry->topPalsAvlIndex, std::numeric_limits<int32_t>::max() - 1) + 1);
    return next;
}

/// A file of @p slots slots that holds @p entries, from the first slot on.
QByteArray freshImage(const Entries& entries, int slots)
{
    QByteArray image = zyn::bytesOf(zyn::StoreFileHeader{}).toByteArray();
    for (int slot = 0; slot < entries.count(); ++slot) {
        entries.at(slot)->topPalsAvlPos = slot;
        image += zyn::contactRecordBytes(*entries.at(slot));
    }
    const PHONE_ENG_ActivityLog blank;
    return image + zyn::contactRecordBytes(blank).toByteArray().repeated(slots - entries.count());
}

/// The slot of a full file that can best be spared, when @p entries are those of its favourite: one that holds none of
/// them, or else the oldest one's; -1 when there is none.
int slotToSpare(const Entries& entries)
{
    std::vector<bool> isTaken(static_cast<size_t>(zyn::contactSlots()));
    for (const PHONE_ENG_ActivityLog* entry : entries) {
        if (zyn::isContactSlot(entry->topPalsAvlPos, static_cast<int>(isTaken.size())))
            isTaken[static_cast<size_t>(entry->topPalsAvlPos)] = true;
    }
    const auto other = std::ranges::find(isTaken, false);
    if (other != isTaken.end())
        return static_cast<int>(other - isTaken.begin());
    const PHONE_ENG_ActivityLog* const oldest = oldestOf(entries);
    return oldest ? oldest->topPalsAvlPos : -1;
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
    const QString path = pathOf(key);
    if (store().checkTopPalsFile(path))
        zyn::posix::removeFile(QFile::encodeName(path));
}

/// Lets the library know which index comes next.
void learnIndex(const QString& key)
{
    Entries entries;
    entries.setAutoDelete(true);
    store().readTopPalsAvlContactRecordList(entries, key);
    // It has marked the slots that the entries name; anew, it marks those that are used.
    reload();
}

} // namespace

QStringList keys()
{
    std::array<QString, Store::kFavourites> names;
    store().getCurrentTopPalsFileNames(names.data());
    return QStringList(names.begin(), names.end());
}

std::optional<QStringList> readKeys()
{
    const QString path = zyn::storePath(QLatin1String(zyn::kTopPalsDetailsName));
    if (zyn::isStoreFile(QFile::encodeName(path), zyn::kTopPalsDetailsSize))
        return keys();
    return zyn::posix::isMissing(QFile::encodeName(path)) ? std::optional(QStringList()) : std::nullopt;
}

bool refresh()
{
    reload();
    const QByteArray path = QFile::encodeName(zyn::storePath(QLatin1String(zyn::kTopPalsDetailsName)));
    return zyn::readStoreFile(path, zyn::kTopPalsDetailsSize) || zyn::posix::isMissing(path);
}

bool isFavourite(const QString& key)
{
    return !key.isEmpty() && store().getTopPalFileItem(key) >= 0;
}

bool readEntries(Entries& entries, const QString& key)
{
    entries.setAutoDelete(true);
    const int slots = zyn::contactSlots();
    const auto image = readFile(pathOf(key));
    if (!image || !zyn::hasValidHeader(*image) || zyn::contactRecordCount(*image) < slots)
        return false;
    appendEntries(entries, *image, key, slots);
    store().sortOnTimeStamp(entries);
    return true;
}

AgeOrder::AgeOrder()
    : m_now(QDateTime::currentSecsSinceEpoch())
{}

bool AgeOrder::operator()(const PHONE_ENG_RecentCall& one, const PHONE_ENG_RecentCall& other) const
{
    return std::is_lt(compareAge(one, other, m_now));
}

bool AgeOrder::operator()(const PHONE_ENG_ActivityLog& one, const PHONE_ENG_ActivityLog& other) const
{
    const auto order = compareAge(one, other, m_now);
    return std::is_lt(order)
           || (std::is_eq(order)
               && std::tie(one.topPalsAvlIndex, one.topPalsAvlPos)
                      < std::tie(other.topPalsAvlIndex, other.topPalsAvlPos));
}

bool isTooOld(const PHONE_ENG_RecentCall& call, const Entries& entries)
{
    const PHONE_ENG_RecentCall* const oldest = oldestOf(entries);
    return oldest && entries.count() >= zyn::contactSlots() && !AgeOrder()(*oldest, call);
}

Change replace(const QString& oldNumber, const QString& newNumber)
{
    const QString oldKey = favouriteKey(oldNumber);
    const QString newKey = favouriteKey(newNumber);
    if (!refresh())
        return Change::Refused; // the file of one that seems to be no favourite may be no leftover
    if (const Change problem = obstacle(oldKey, newKey); problem != Change::Done)
        return problem;
    if (!newKey.isEmpty())
        removeLeftover(newKey);
    store().revampTopPalsAvlStorage(oldKey, newKey);
    reload();
    const bool isDone = newKey.isEmpty() ? !isFavourite(oldKey) : isFavourite(newKey);
    if (!isDone)
        return Change::Refused;
    return newKey.isEmpty() || isSound(newKey) ? Change::Done : Change::WithoutFile;
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
    case Change::WithoutFile:
        return describe(Change::Done, oldNumber, newNumber) + QStringLiteral(", but its file cannot be made");
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
    if (newKey.isEmpty())
        return QStringLiteral("%1 stays a favourite: the files cannot be written").arg(oldKey);
    return QStringLiteral("%1 cannot be made a favourite: it can name no file, or the files cannot be written")
        .arg(newKey);
}

bool isSound(const QString& key)
{
    return store().checkTopPalsFile(pathOf(key));
}

bool renew(const QString& key)
{
    const int slots = zyn::contactSlots();
    const QString path = pathOf(key);
    const auto old = readFile(path);
    if (slots == 0 || path.isNull() || (!old && QFile::exists(path)))
        return false;
    Entries entries;
    entries.setAutoDelete(true);
    if (old)
        appendEntries(entries, *old, key, zyn::contactRecordCount(*old));
    keepNewest(entries, slots);
    const QByteArray image = freshImage(entries, slots);
    const bool isLosing = old && entries.count() < usedSlots(*old);
    const QByteArray name = QFile::encodeName(path);
    const QByteArray copy = isLosing ? keepCopy(name, *old) : QByteArray();
    if (isLosing && copy.isNull())
        return false;
    const bool isMade = posix::replaceFile(name, image);
    if (!isMade && isLosing)
        posix::removeFile(copy); // else each attempt would leave one
    reload();
    return isMade && isSound(key);
}

bool addEntry(PHONE_ENG_ActivityLog& entry, const QString& key)
{
    entry.setPhoneNumber(key);
    entry.inUse = 1;
    if (!isFavourite(key) || (!isSound(key) && !renew(key)))
        return false;
    Entries others;
    if (!readEntries(others, key))
        return false;
    const int32_t index = nextIndex(others);
    learnIndex(key);
    if (store().addTopPalsAvlItem(entry) == 1) {
        // The library begins with 0 in each process, and gives that again while no entry has a greater one.
        if (entry.topPalsAvlIndex < index) {
            entry.topPalsAvlIndex = index;
            store().modifyTopPalsAvlItem(entry);
        }
        return true;
    }
    if (store().getAvailableTopPalsAvlPos(key) >= 0)
        return false;
    // The library has refused the entry for want of a slot, but has given it its index. One write puts it over another,
    // so that nothing is lost when that fails.
    entry.topPalsAvlIndex = std::max(entry.topPalsAvlIndex, index);
    entry.topPalsAvlPos = slotToSpare(others);
    return store().modifyTopPalsAvlItem(entry) == 1;
}

} // namespace zyn::favourites
