// The activity log of the favourites, and which calls have been considered for it.
#include "handset/favourites/ActivityLog.h"

#include "platform/posix/File_p.h"
#include "platform/posix/StagedFile_p.h"
#include "recentcall/utility/ActivityLog_ENG_RecordStore.h"
#include "recentcall/utility/store/ActivityLogFile_p.h"

#include <QtCore/QDateTime>
#include <QtCore/QFile>

#include <algorithm>
#include <cerrno>
#include <compare>
#include <cstring>
#include <limits>
#include <memory>
#include <optional>
#include <tuple>
#include <utility>
#include <vector>

using Store = ActivityLog_ENG_RecordStore;

namespace zyn::handset {
namespace {

/// More than the call log can hold.
constexpr qsizetype kSeenCallsLimit = qsizetype{1024} * 1024;

Store& store()
{
    return *Store::instance();
}

/// The path of the file of @p key; null if the key cannot name a file.
QString pathOf(const QString& key)
{
    return key == QLatin1String(kTopPalsDetailsName) ? QString() : store().getStoreFileName(key);
}

std::optional<QByteArray> readFile(const QString& path)
{
    const posix::UniqueFd fd = posix::openTrusted(QFile::encodeName(path));
    return posix::readWhole(fd.get(), ContactFile::size());
}

/// Appends the entries in the first @p slots slots of @p image. A damaged entry must not refer to another slot or file:
/// it gets its actual slot, and is skipped if its number is not @p key. Under an invalid header, only slots with the
/// flag 1 are in use.
void appendEntries(ActivityEntries& entries, const QByteArray& image, const QString& key, int slots)
{
    const bool isTrusted = hasValidHeader(image);
    for (const int slot : ContactFile::usedSlots(image, slots)) {
        auto entry = std::make_unique<PHONE_ENG_ActivityLog>();
        ContactFile::read(*entry, image, slot);
        entry->topPalsAvlPos = slot;
        if (entry->getPhoneNumber() == key && (isTrusted || entry->inUse == 1))
            entries.append(entry.release());
    }
}

/// Copies @p contents of the file @p path to a new file beside it. Returns its name, or null on failure.
QByteArray keepCopy(const QByteArray& path, const QByteArray& contents)
{
    const posix::UniqueFd original = posix::openTrusted(path);
    for (int number = 1;; ++number) {
        QByteArray copy = path + kFormerInfix + QByteArray::number(number);
        if (posix::createFile(copy, contents, original.get()))
            return copy;
        if (errno != EEXIST)
            return {};
    }
}

/// The order of @p one and @p other by age at the time @p now.
std::strong_ordering compareAge(const PHONE_ENG_RecentCall& one, const PHONE_ENG_RecentCall& other, qint64 now)
{
    const auto age = [now](const PHONE_ENG_RecentCall& call) {
        return std::tuple(call.startTime <= now, call.startTime, call.uid);
    };
    return age(one) <=> age(other);
}

auto olderFirst()
{
    return [isOlder = AgeOrder()](const auto* one, const auto* other) { return isOlder(*one, *other); };
}

/// Sorts @p entries, oldest first, and removes the oldest that do not fit into @p slots slots.
void keepNewest(ActivityEntries& entries, int slots)
{
    std::ranges::stable_sort(entries, olderFirst());
    while (entries.count() > slots)
        entries.removeFirst();
}

/// The oldest of @p entries, or null.
const PHONE_ENG_ActivityLog* oldestOf(const ActivityEntries& entries)
{
    const auto oldest = std::ranges::min_element(entries, olderFirst());
    return oldest == entries.end() ? nullptr : *oldest;
}

/// The next index after those of @p entries.
int32_t nextIndex(const ActivityEntries& entries)
{
    int32_t next = 0;
    for (const PHONE_ENG_ActivityLog* entry : entries)
        next = std::max(next, std::min(entry->topPalsAvlIndex, std::numeric_limits<int32_t>::max() - 1) + 1);
    return next;
}

/// A file of @p slots slots, with @p entries in the first ones.
QByteArray freshImage(const ActivityEntries& entries, int slots)
{
    QByteArray image = ContactFile::blankImage(slots);
    for (int slot = 0; slot < entries.count(); ++slot) {
        entries.at(slot)->topPalsAvlPos = slot;
        ContactFile::put(image, slot, *entries.at(slot));
    }
    return image;
}

/// The slot to overwrite in the full file of a favourite with these @p entries: one without a valid entry, or else that
/// of the oldest; -1 if there are no slots.
int slotToSpare(const ActivityEntries& entries)
{
    std::vector<bool> isUsed(static_cast<size_t>(contactSlots()));
    for (const PHONE_ENG_ActivityLog* entry : entries) {
        if (isContactSlot(entry->topPalsAvlPos, static_cast<int>(isUsed.size())))
            isUsed[static_cast<size_t>(entry->topPalsAvlPos)] = true;
    }
    const auto other = std::ranges::find(isUsed, false);
    if (other != isUsed.end())
        return static_cast<int>(other - isUsed.begin());
    const PHONE_ENG_ActivityLog* const oldest = oldestOf(entries);
    return oldest ? oldest->topPalsAvlPos : -1;
}

/// Makes the library assign the next index.
void learnIndex(const QString& key)
{
    ActivityEntries entries;
    entries.setAutoDelete(true);
    store().readTopPalsAvlContactRecordList(entries, key);
    // It takes the slots that the entries name for used; a new read corrects that.
    Store::destroy();
}

} // namespace

bool readEntries(ActivityEntries& entries, const QString& key)
{
    entries.setAutoDelete(true);
    const int slots = contactSlots();
    const auto image = readFile(pathOf(key));
    if (!image || !hasValidHeader(*image) || ContactFile::count(*image) < slots)
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

bool isTooOld(const PHONE_ENG_RecentCall& call, const ActivityEntries& entries)
{
    const PHONE_ENG_RecentCall* const oldest = oldestOf(entries);
    return oldest && entries.count() >= contactSlots() && !AgeOrder()(*oldest, call);
}

bool hasValidLog(const QString& key)
{
    return store().checkTopPalsFile(pathOf(key));
}

bool renewLog(const QString& key)
{
    const int slots = contactSlots();
    const QString path = pathOf(key);
    const auto old = readFile(path);
    if (slots == 0 || path.isNull() || (!old && QFile::exists(path)))
        return false;
    ActivityEntries entries;
    entries.setAutoDelete(true);
    if (old)
        appendEntries(entries, *old, key, ContactFile::count(*old));
    keepNewest(entries, slots);
    const QByteArray image = freshImage(entries, slots);
    const bool isLosing =
        old && entries.count() < qsizetype(ContactFile::usedSlots(*old, ContactFile::count(*old)).size());
    const QByteArray name = QFile::encodeName(path);
    const QByteArray copy = isLosing ? keepCopy(name, *old) : QByteArray();
    if (isLosing && copy.isNull())
        return false;
    const bool isMade = posix::replaceFile(name, image);
    if (!isMade && isLosing)
        posix::removeFile(copy); // otherwise each attempt would leave a copy
    Store::destroy();
    return isMade && hasValidLog(key);
}

bool addEntry(PHONE_ENG_ActivityLog& entry, const QString& key)
{
    entry.setPhoneNumber(key);
    entry.inUse = 1;
    const bool isFavourite = !key.isEmpty() && store().getTopPalFileItem(key) >= 0;
    if (!isFavourite || (!hasValidLog(key) && !renewLog(key)))
        return false;
    ActivityEntries others;
    if (!readEntries(others, key))
        return false;
    const int32_t index = nextIndex(others);
    learnIndex(key);
    if (store().addTopPalsAvlItem(entry) == 1) {
        // In each process the library starts at 0, and repeats indexes until an entry has a greater one.
        if (entry.topPalsAvlIndex < index) {
            entry.topPalsAvlIndex = index;
            store().modifyTopPalsAvlItem(entry);
        }
        return true;
    }
    if (store().getAvailableTopPalsAvlPos(key) >= 0)
        return false;
    // No slot was free, but the entry has its index now. A single write puts it over another one, so a failure loses
    // nothing.
    entry.topPalsAvlIndex = std::max(entry.topPalsAvlIndex, index);
    entry.topPalsAvlPos = slotToSpare(others);
    return store().modifyTopPalsAvlItem(entry) == 1;
}

SeenCalls::SeenCalls(QString path)
    : m_path(std::move(path))
{
    const QByteArray image = posix::readWhole(QFile::encodeName(m_path), kSeenCallsLimit).value_or(QByteArray());
    if (!hasValidHeader(image))
        return;
    Mark mark = {};
    constexpr qsizetype kSize = sizeof mark;
    for (qsizetype at = sizeof(StoreFileHeader); at + kSize <= image.size(); at += kSize) {
        std::memcpy(&mark, image.constData() + at, sizeof mark);
        m_marks.insert(mark);
    }
}

bool SeenCalls::replaceBy(std::span<const PHONE_ENG_RecentCall> calls)
{
    QSet<Mark> marks;
    for (const PHONE_ENG_RecentCall& call : calls)
        marks.insert(markOf(call));
    if (m_isStored && marks == m_marks)
        return true;
    m_marks = marks;
    QByteArray image = bytesOf(StoreFileHeader{}).toByteArray();
    for (const Mark& mark : marks)
        image += bytesOf(mark);
    m_isStored = posix::replaceFile(QFile::encodeName(m_path), image);
    return m_isStored;
}

} // namespace zyn::handset
