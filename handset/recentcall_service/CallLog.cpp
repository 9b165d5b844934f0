// The log of recent calls: what each command does to the store.
#include "handset/recentcall_service/CallLog.h"

#include "handset/common/Log.h"
#include "platform/posix/File_p.h"
#include "recentcall/utility/RecentCall_Setup.h"
#include "recentcall/utility/RecordFile_p.h"
#include "recentcall/utility/StoreDirectory_p.h"
#include "recentcall/utility/StoreFile_p.h"

#include <algorithm>

namespace rc = zyn::recentcall;
using zyn::handset::log;

namespace {

using Lists = std::span<const RC_CALL_CATEGORY_T>;

constexpr RC_CALL_CATEGORY_T kMissed[] = {RC_CALL_CATEGORY_MISSED};

/// The lists that @p category names: one, all three, or none.
Lists listsOf(int32_t category)
{
    const Lists all(zyn::kRecordLists);
    if (category == RC_CALL_CATEGORY_ALL)
        return all;
    const auto found = std::find(all.begin(), all.end(), category);
    return found == all.end() ? Lists() : Lists(found, 1);
}

int limitOf(int32_t category)
{
    return RecentCall_Setup::instance()->getMaxRecordSize(static_cast<RC_CALL_CATEGORY_T>(category));
}

QByteArray pathOf(RC_CALL_CATEGORY_T category)
{
    return zyn::storeDirectoryPath() + zyn::recordFileName(category);
}

bool isSound(Lists lists)
{
    return std::ranges::all_of(
        lists, [](RC_CALL_CATEGORY_T list) { return zyn::isStoreFile(pathOf(list), zyn::kRecordFileSize); });
}

/// Writes into each call of a list the slot that it lies in. The store goes by what the record says: with a wrong slot
/// it would take the call's place for free.
void correctSlots(RC_CALL_CATEGORY_T list)
{
    const zyn::posix::UniqueFd file = zyn::posix::openForChanging(pathOf(list));
    const QByteArray image = zyn::posix::readWhole(pathOf(list), zyn::kRecordFileSize).value_or(QByteArray());
    for (int slot = 0; slot < zyn::recordCount(image); ++slot) {
        PHONE_ENG_RecentCall record = zyn::recordAt(image, slot);
        if (record.inUse == 0 || record.slot == slot)
            continue;
        log(QStringLiteral("the call in slot %1 of list %2 says slot %3: corrected")
                .arg(slot)
                .arg(list)
                .arg(record.slot));
        record.slot = slot;
        zyn::posix::writeAt(file.get(), std::as_bytes(std::span(&record, 1)), off_t{zyn::recordOffset(slot)});
    }
}

/// Whether the slot that @p record names holds it: in a damaged file it may hold another call.
bool isInItsSlot(const PHONE_ENG_RecentCall& record)
{
    const zyn::posix::UniqueFd fd = zyn::posix::openForReading(pathOf(record.category));
    PHONE_ENG_RecentCall stored;
    const auto bytes = std::as_writable_bytes(std::span(&stored, 1));
    const ssize_t n = zyn::posix::readAt(fd.get(), bytes, off_t{zyn::recordOffset(record.slot)});
    return n == ssize_t{sizeof stored} && stored.inUse != 0 && stored == record;
}

/// The call with the uid of @p record, or null.
const PHONE_ENG_RecentCall* find(const QSortedList<PHONE_ENG_RecentCall>& calls, const PHONE_ENG_RecentCall& record)
{
    const auto found = std::find_if(calls.begin(), calls.end(), [&](const auto* call) { return *call == record; });
    return found == calls.end() ? nullptr : *found;
}

} // namespace

CallLog::CallLog()
{
    open();
}

bool CallLog::add(PHONE_ENG_RecentCall record)
{
    const Lists list = listsOf(record.category);
    if (list.size() != 1 || limitOf(record.category) == 0) {
        log(QStringLiteral("a call of category %1 refused: no list keeps it").arg(record.category));
        return false;
    }
    record.inUse = 1;
    // The store writes into a damaged file too; with that the call would be lost when the store is next opened.
    if (makeSound(list) && store(record))
        return true;
    log(QStringLiteral("a call of list %1 is lost: its file cannot be written").arg(record.category));
    return false;
}

rc::Status CallLog::remove(const PHONE_ENG_RecentCall& record)
{
    return changeStored(record, &CallLog::erase);
}

rc::Status CallLog::markRead(const PHONE_ENG_RecentCall& record)
{
    return changeStored(record, &CallLog::setRead);
}

rc::Status CallLog::removeAll(const rc::Selection& selection)
{
    const Lists lists = listsOf(selection.category);
    if (lists.empty() || !makeSound(lists))
        return rc::Failure;
    rc::Status status = rc::Success;
    for (const PHONE_ENG_RecentCall* call : read(lists)) {
        if (call->callType == selection.callType && !erase(*call))
            status = rc::Failure;
    }
    return status;
}

std::optional<QByteArray> CallLog::list(const rc::Selection& selection)
{
    const Lists lists = listsOf(selection.category);
    if (lists.empty() || !makeSound(lists))
        return std::nullopt;
    const Calls calls = read(lists);
    const auto isSelected = [&](const PHONE_ENG_RecentCall* call) { return call->callType == selection.callType; };
    const auto count = std::count_if(calls.begin(), calls.end(), isSelected);
    QByteArray data;
    data.reserve(qsizetype{sizeof(rc::ListHeader)} + count * qsizetype{sizeof(PHONE_ENG_RecentCall)});
    data += zyn::bytesOf(rc::ListHeader{static_cast<int32_t>(count), limitOf(selection.category)});
    for (const PHONE_ENG_RecentCall* call : calls) {
        if (isSelected(call))
            data += zyn::bytesOf(*call);
    }
    return data;
}

void CallLog::open()
{
    m_store.emplace();
    for (const RC_CALL_CATEGORY_T list : zyn::kRecordLists) {
        if (isSound(Lists(&list, 1)))
            correctSlots(list);
    }
    read(zyn::kRecordLists);
}

/// Makes the files of @p lists anew when one has gone missing or is damaged; false when that cannot be done.
bool CallLog::makeSound(Lists lists)
{
    if (isSound(lists))
        return true;
    log(QStringLiteral("missing or damaged record files are made anew"));
    const bool wasMissedSound = isSound(kMissed);
    open();
    if (!wasMissedSound && isSound(kMissed))
        noteChange(RC_CALL_CATEGORY_MISSED);
    return isSound(lists);
}

CallLog::Calls CallLog::read(Lists lists)
{
    Calls calls;
    calls.setAutoDelete(true);
    for (const RC_CALL_CATEGORY_T category : lists) {
        Calls found;
        m_store->readDataList(found, category);
        countOf(category) = found.count();
        for (PHONE_ENG_RecentCall* call : found) {
            // The list that a call belongs to is the file that holds it, whatever a damaged record says.
            call->category = category;
            calls.append(call);
        }
    }
    calls.sort();
    return calls;
}

bool CallLog::store(PHONE_ENG_RecentCall& record)
{
    if (countOf(record.category) >= limitOf(record.category))
        eraseOldest(record.category);
    if (!m_store->addItem(record))
        return false;
    ++countOf(record.category);
    noteChange(record.category);
    return true;
}

bool CallLog::erase(const PHONE_ENG_RecentCall& record)
{
    if (!isInItsSlot(record) || !m_store->removeItem(record))
        return false;
    --countOf(record.category);
    noteChange(record.category);
    return true;
}

bool CallLog::setRead(const PHONE_ENG_RecentCall& record)
{
    PHONE_ENG_RecentCall seen = record;
    seen.readFlags |= PHONE_ENG_RecentCall::kRead;
    if (seen.readFlags == record.readFlags)
        return true;
    if (!isInItsSlot(record) || !m_store->modifyItem(seen))
        return false;
    noteChange(record.category);
    return true;
}

/// Does @p change to the stored call that @p record names by its category and uid.
rc::Status CallLog::changeStored(const PHONE_ENG_RecentCall& record, Change change)
{
    const Lists list = listsOf(record.category);
    if (list.size() != 1)
        return rc::NoSuchRecord;
    if (!makeSound(list))
        return rc::Failure;
    const Calls calls = read(list);
    const PHONE_ENG_RecentCall* stored = find(calls, record);
    if (!stored)
        return rc::NoSuchRecord;
    return (this->*change)(*stored) ? rc::Success : rc::Failure;
}

void CallLog::noteChange(RC_CALL_CATEGORY_T category)
{
    m_hasMissedChange |= category == RC_CALL_CATEGORY_MISSED;
}

void CallLog::eraseOldest(RC_CALL_CATEGORY_T category)
{
    const Calls calls = read(Lists(&category, 1));
    for (qsizetype i = calls.count() - 1; i >= 0; --i) {
        if (erase(*calls.at(i)))
            return;
    }
}
