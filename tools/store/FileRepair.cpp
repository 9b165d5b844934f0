// Repairs single files of a store: lists of calls, contact files, the file of favourites.
#include "tools/store/FileRepair.h"

#include "recentcall/utility/store/ActivityLogFile_p.h"
#include "recentcall/utility/store/StoreFile_p.h"
#include "tools/store/FileCheck.h"
#include "tools/zynphone/RecordText.h"
#include "tools/zynphone/Text.h"
#include "utility/FixedText_p.h"

#include <QtCore/QSet>

#include <algorithm>
#include <cstring>
#include <utility>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

constexpr qsizetype kHeaderSize = sizeof(StoreFileHeader);

bool isInUse(const QByteArray& record)
{
    return record.at(qsizetype{offsetof(PHONE_ENG_RecentCall, inUse)}) != 0;
}

using Call = PHONE_ENG_RecentCall;

Call callOf(const QByteArray& record)
{
    return toPlain<Call>(std::as_bytes(std::span(record.constData(), static_cast<size_t>(record.size()))));
}

using Images = std::map<QString, QByteArray>;

/// The calls of all lists, by list and slot.
std::vector<Call> callsIn(const Images& images)
{
    std::vector<Call> calls;
    for (const RC_CALL_CATEGORY_T list : kRecordLists) {
        const auto file = images.find(recordFile(list));
        if (file == images.end())
            continue;
        for (const int slot : RecordFile::usedSlots(file->second))
            calls.push_back(RecordFile::at(file->second, slot));
    }
    return calls;
}

/// The number of @p calls that repeat an earlier uid.
int32_t countEqual(const std::vector<Call>& calls)
{
    QSet<int32_t> uids;
    for (const Call& call : calls)
        uids.insert(call.uid);
    return static_cast<int32_t>(qsizetype(calls.size()) - uids.size());
}

/// Writes @p call, whose uid was @p old, to @p images, and logs it.
void put(const Call& call, int32_t old, const QString& why, Images& images, Findings& log)
{
    const QString name = recordFile(call.category);
    log.add(name, {kSlotWord, call.slot}, u"uid %1, %2: now %3"_s.arg(old).arg(why).arg(call.uid));
    RecordFile::put(images.at(name), call.slot, call);
}

using Entry = PHONE_ENG_ActivityLog;

/// Copies @p record to @p entry, by reference: copying an entry writes trace text.
void read(Entry& entry, const QByteArray& record)
{
    std::memcpy(static_cast<void*>(&entry), record.constData(), sizeof entry);
}

using Detail = TopPalNumberDetail;

const QString& fileName()
{
    static const QString name = QLatin1String(kTopPalsDetailsName);
    return name;
}

QString numberOf(const Detail& detail)
{
    return latin1Text(detail.phoneNumber);
}

} // namespace

SlotRepair::SlotRepair(QString name, QByteArray blank, Findings& log)
    : m_name(std::move(name))
    , m_blank(std::move(blank))
    , m_log(log)
{}

QByteArray SlotRepair::repaired(const QByteArray& image)
{
    std::vector<Placed> records = recordsIn(image);
    m_recordCount = static_cast<int>(records.size());
    m_slots = slotsFor(image, m_recordCount);
    dropOldest(records);
    QByteArray result = arrange(records);
    reportSize(image, result);
    return result;
}

std::vector<SlotRepair::Placed> SlotRepair::recordsIn(const QByteArray& image)
{
    std::vector<Placed> records;
    const bool isTrusted = hasValidHeader(image);
    const auto count = static_cast<int>(std::max<qsizetype>(image.size() - kHeaderSize, 0) / m_blank.size());
    for (int slot = 0; slot < count; ++slot) {
        QByteArray record = image.sliced(kHeaderSize + slot * m_blank.size(), m_blank.size());
        if (isInUse(record) && (isTrusted || isLikely(record, slot)))
            records.push_back({slot, std::move(record)});
        else if (isInUse(record))
            report(slot, u"unlikely to be a record, left in the copy"_s);
        else if (record != m_blank && isTrusted)
            report(slot, u"made blank, as it is free"_s);
    }
    return records;
}

void SlotRepair::dropOldest(std::vector<Placed>& records)
{
    if (records.size() <= static_cast<size_t>(m_slots))
        return;
    std::ranges::stable_sort(records, [this](const Placed& a, const Placed& b) { return isNewer(a.record, b.record); });
    const auto kept = records.begin() + m_slots;
    for (auto dropped = kept; dropped != records.end(); ++dropped)
        report(dropped->slot, u"the record, older than those of %1 other slots, was left in the copy"_s.arg(m_slots));
    records.erase(kept, records.end());
}

QByteArray SlotRepair::arrange(std::vector<Placed>& records)
{
    std::vector<QByteArray> slots(static_cast<size_t>(m_slots));
    // Records with their own slot come first.
    std::ranges::stable_sort(records, {}, [this](const Placed& placed) { return placed.slot >= m_slots; });
    for (auto& [from, record] : records) {
        const auto free = std::ranges::find_if(slots, [](const QByteArray& slot) { return slot.isEmpty(); });
        const int to = from < m_slots ? from : static_cast<int>(free - slots.begin());
        if (to != from)
            report(from, u"moved to slot %1"_s.arg(to));
        correct(record, from, to);
        slots[static_cast<size_t>(to)] = record;
    }
    QByteArray result = bytesOf(StoreFileHeader{}).toByteArray();
    for (const QByteArray& slot : slots)
        result += slot.isEmpty() ? m_blank : slot;
    return result;
}

void SlotRepair::reportSize(const QByteArray& image, const QByteArray& result)
{
    if (!hasValidHeader(image))
        m_log.add(m_name, u"given a new header"_s);
    const qsizetype behind = std::max<qsizetype>(image.size() - kHeaderSize, 0) % m_blank.size();
    if (behind != 0)
        m_log.add(m_name, u"left the last %1, no whole record, in the copy"_s.arg(counted(behind, "byte")));
    if (image.size() < result.size())
        m_log.add(m_name, u"completed with blank slots to %1 bytes"_s.arg(result.size()));
    if (image.size() > result.size())
        m_log.add(m_name, u"cut to %1 bytes"_s.arg(result.size()));
}

void SlotRepair::report(int slot, const QString& text)
{
    m_log.add(m_name, {kSlotWord, slot}, text);
}

void SlotRepair::correctCall(PHONE_ENG_RecentCall& call, int slot)
{
    for (const QString& problem : flagProblems(call))
        report(slot, problem + u": put right"_s);
    call.inUse = 1;
    call.readFlags &= kKnownReadFlags;
    call.completed = std::min<uint8_t>(call.completed, 1);
    endText(call.phoneNumber, slot, u"number"_s);
    endText(call.displayName, slot, u"name"_s);
    endText(call.pttSessionId, slot, u"session id"_s);
}

void SlotRepair::endText(std::span<char> field, int slot, const QString& what)
{
    if (isTerminated(field))
        return;
    field.back() = '\0';
    report(slot, u"the %1 was cut by a character, for its NUL"_s.arg(what));
}

CallsRepair::CallsRepair(const QString& name, Findings& log)
    : SlotRepair(name, bytesOf(Call()).toByteArray(), log)
    , m_list(listOfFile(name))
{}

int CallsRepair::slotsFor(const QByteArray& /*image*/, int /*records*/) const
{
    return kRecordSlots;
}

bool CallsRepair::isLikely(const QByteArray& record, int slot) const
{
    const Call call = callOf(record);
    return int{call.inUse == 1} + int{call.slot == slot} + int{call.category == m_list} >= 2;
}

bool CallsRepair::isNewer(const QByteArray& record, const QByteArray& other) const
{
    return callOf(record) < callOf(other);
}

void CallsRepair::correct(QByteArray& record, int from, int to)
{
    Call call = callOf(record);
    if (call.slot != from)
        report(from, u"the record names slot %1: put right"_s.arg(call.slot));
    call.slot = to;
    if (call.category != m_list)
        report(from, u"the category is %1: put right"_s.arg(categoryWord(call.category)));
    call.category = m_list;
    correctCall(call, from);
    record = bytesOf(call).toByteArray();
}

RenumberedCalls renumberCalls(std::map<QString, QByteArray>& images, Findings& log)
{
    std::vector<Call> calls = callsIn(images);
    RenumberedCalls renumbered = lowerUids(calls, countEqual(calls) + 1);
    for (const auto& [old, call] : renumbered)
        put(call, old, u"above which too few are left"_s, images, log);

    calls = callsIn(images);
    const auto newest = std::ranges::max_element(calls, {}, &Call::uid);
    int32_t last = newest == calls.end() ? -1 : newest->uid;
    QSet<int32_t> seen;
    for (Call& call : calls) {
        if (seen.contains(call.uid)) {
            const int32_t old = std::exchange(call.uid, ++last);
            put(call, old, u"of another call too"_s, images, log);
            renumbered.push_back({old, call});
        }
        seen.insert(call.uid);
    }
    return renumbered;
}

ContactRepair::ContactRepair(const QString& name, Findings& log)
    : SlotRepair(name, ContactFile::bytes(Entry()).toByteArray(), log)
{}

int ContactRepair::slotsFor(const QByteArray& image, int records) const
{
    const int present = ContactFile::count(image);
    const bool isWhole =
        hasValidHeader(image) && (image.size() - ContactFile::size(present)) % qint64{sizeof(Entry)} == 0;
    return std::min(std::max({contactSlots(), records, isWhole ? present : 0}), kMaxContactSlots);
}

bool ContactRepair::isLikely(const QByteArray& record, int slot) const
{
    Entry entry;
    read(entry, record);
    return int{entry.inUse == 1} + int{entry.topPalsAvlPos == slot} + int{entry.getPhoneNumber() == name()} >= 2;
}

bool ContactRepair::isNewer(const QByteArray& record, const QByteArray& other) const
{
    Entry entry;
    Entry otherEntry;
    read(entry, record);
    read(otherEntry, other);
    return m_isOlder(otherEntry, entry);
}

void ContactRepair::correct(QByteArray& record, int from, int to)
{
    Entry entry;
    read(entry, record);
    if (entry.topPalsAvlPos != from)
        report(from, u"the entry names slot %1: put right"_s.arg(entry.topPalsAvlPos));
    entry.topPalsAvlPos = to;
    if (entry.topPalsAvlIndex < 0) {
        report(from, u"the index is %1: now 0"_s.arg(entry.topPalsAvlIndex));
        entry.topPalsAvlIndex = 0;
    }
    correctCall(entry, from);
    endText(entry.msgString, from, u"message"_s);
    if (isContactFileName(name()) && entry.getPhoneNumber() != name()) {
        report(from, u"the number is '%1': put right"_s.arg(entry.getPhoneNumber()));
        entry.setPhoneNumber(name());
    }
    record = ContactFile::bytes(entry).toByteArray();
}

void renumberEntries(QByteArray& image, const QString& name, const RenumberedCalls& calls, Findings& log)
{
    for (int slot = 0; !calls.empty() && slot < ContactFile::count(image); ++slot) {
        Entry entry;
        ContactFile::read(entry, image, slot);
        const auto made = std::ranges::find_if(calls, [&](const RenumberedCall& renumbered) {
            const PHONE_ENG_RecentCall& call = renumbered.call;
            return renumbered.oldUid == entry.uid && call.startTime == entry.startTime
                   && call.category == entry.category && favouriteKey(call.getPhoneNumber()) == name;
        });
        if (entry.inUse == 0 || entry.msgType != 0 || made == calls.end())
            continue;
        entry.uid = made->call.uid;
        log.add(name, {kSlotWord, slot}, u"uid %1, as its call: now %2"_s.arg(made->oldUid).arg(entry.uid));
        ContactFile::put(image, slot, entry);
    }
}

FavouritesRepair::FavouritesRepair(const StoreFiles& files, Findings& log)
    : m_files(files)
    , m_log(log)
{
    if (!files.images().contains(fileName()))
        return;
    const QByteArray image = files.image(fileName());
    const bool isTrusted = hasValidHeader(image);
    for (int place = 0; place < DetailsFile::count(image); ++place)
        keep(DetailsFile::at(image, place), place, isTrusted);
    if (!isTrusted)
        m_log.add(fileName(), u"given a new header"_s);
    if (image.size() != DetailsFile::size())
        m_log.add(fileName(), u"given its size of %1 bytes"_s.arg(DetailsFile::size()));
}

bool FavouritesRepair::add(const QString& number)
{
    const auto free = std::ranges::find(m_places, Detail::kFree, &Detail::nthFileItem);
    Detail detail;
    storeText(detail.phoneNumber, number.toLatin1());
    if (free == m_places.end() || numberOf(detail) != number)
        return false;
    detail.nthFileItem = static_cast<int32_t>(free - m_places.begin());
    *free = detail;
    report(detail.nthFileItem, u"taken by %1, whose file has entries"_s.arg(number));
    return true;
}

QByteArray FavouritesRepair::image() const
{
    QByteArray image = bytesOf(StoreFileHeader{}).toByteArray();
    for (const Detail& place : m_places)
        image += bytesOf(place);
    return image;
}

void FavouritesRepair::keep(const Detail& found, int place, bool isTrusted)
{
    Detail detail = found;
    if (!isTerminated(detail.phoneNumber)) {
        std::end(detail.phoneNumber)[-1] = '\0';
        report(place, u"the number was cut by a character, for its NUL"_s);
    }
    const QString number = numberOf(detail);
    if (detail.nthFileItem == Detail::kFree && number.isEmpty())
        return;
    // Under an invalid header the rest may be anything.
    const bool isLikely = detail.nthFileItem == place || (isTrusted && detail.nthFileItem != Detail::kFree);
    if (!(isLikely || hasFile(number)) || !canNameContactFile(number) || isTaken(number)) {
        report(place, u"made free, of the number '%1'"_s.arg(number));
        return;
    }
    if (detail.nthFileItem != place)
        report(place, u"it names place %1: put right"_s.arg(detail.nthFileItem));
    detail.nthFileItem = place;
    m_places[static_cast<size_t>(place)] = detail;
}

void FavouritesRepair::report(int place, const QString& text)
{
    m_log.add(fileName(), {kPlaceWord, place}, text);
}

bool FavouritesRepair::hasFile(const QString& number) const
{
    const auto file = m_files.images().find(number);
    return file != m_files.images().end() && file->second;
}

bool FavouritesRepair::isTaken(const QString& number) const
{
    return std::ranges::any_of(
        m_places, [&](const Detail& place) { return place.nthFileItem != Detail::kFree && numberOf(place) == number; });
}

} // namespace zyn::tool
