// The recent calls on disk.
#include "recentcall/utility/RecentCall_ENG_RecordStore.h"

#include "platform/posix/File_p.h"
#include "recentcall/utility/RecentCall_Setup.h"
#include "recentcall/utility/store/RecordFile_p.h"
#include "utility/PHONE_Log_p.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdio>
#include <iterator>
#include <limits>
#include <memory>
#include <span>

using zyn::RecordFile;
using zyn::posix::UniqueFd;

namespace {

using SlotBitmap = std::array<uint32_t, 5>;

constexpr int kBitsPerWord = 32;

/// The uid of the next call that this process adds; it outlives the store.
int32_t s_nextUid = 0;

std::unique_ptr<RecentCall_ENG_RecordStore> s_callStore;

/// The slots of one list, as its limit is now.
struct ListSlots
{
    int count; ///< how many calls the list keeps
    int base;  ///< the bit of slot 0
    int bits;  ///< how many bits there are: as many as the three lists keep calls

    explicit ListSlots(RC_CALL_CATEGORY_T category)
    {
        const RecentCall_Setup& setup = *RecentCall_Setup::instance();
        count = setup.getMaxRecordSize(category);
        bits = setup.getMaxRecordSize(RC_CALL_CATEGORY_ALL);
        base = 0;
        if (category == RC_CALL_CATEGORY_MISSED || category == RC_CALL_CATEGORY_DIALED)
            base += setup.getMaxRecordSize(RC_CALL_CATEGORY_ANSWERED);
        if (category == RC_CALL_CATEGORY_DIALED)
            base += setup.getMaxRecordSize(RC_CALL_CATEGORY_MISSED);
    }

    /// How many of the file's slots the list has: one beyond would spoil the file's size or another list's bits.
    int inFile() const { return std::min(count, zyn::kRecordSlots); }
    bool has(int slot) const { return slot >= 0 && slot < inFile(); }
};

void mark(SlotBitmap& bitmap, const ListSlots& slots, int slot, bool inUse)
{
    const qint64 bit = qint64{slots.base} + slot;
    if (bit < 0 || bit >= slots.bits)
        return;
    uint32_t& word = bitmap[static_cast<size_t>(bit / kBitsPerWord)];
    const uint32_t mask = 1U << (bit % kBitsPerWord);
    word = inUse ? word | mask : word & ~mask;
}

/// The first slot from @p slot on whose bit is clear, or set with @p inUse; the number of slots if there is none.
int findSlot(const SlotBitmap& bitmap, const ListSlots& slots, bool inUse, int slot = 0)
{
    while (slot < slots.count) {
        const int bit = slots.base + slot;
        const uint32_t word = bitmap[static_cast<size_t>(bit / kBitsPerWord)];
        const uint32_t others = (inUse ? ~word : word) >> (bit % kBitsPerWord);
        const int passed = std::countr_one(others);
        slot += passed;
        if (bit % kBitsPerWord + passed < kBitsPerWord)
            break;
    }
    return std::min(slot, slots.count);
}

int32_t nextUid(int32_t uid)
{
    return uid == std::numeric_limits<int32_t>::max() ? uid : uid + 1;
}

QByteArray filePath(RC_CALL_CATEGORY_T category)
{
    QByteArray path = zyn::storeFilePath(zyn::recordFileName(category));
    std::fputs(path.constData(), stdout);
    return path;
}

/// How many bytes the longest file of @p category has, whatever the limits in the settings, which are read for a valid
/// file only.
constexpr size_t longestFile(RC_CALL_CATEGORY_T category)
{
    constexpr auto kLists = static_cast<int>(std::size(zyn::kRecordLists));
    return static_cast<size_t>(
        RecordFile::size(category == RC_CALL_CATEGORY_ALL ? kLists * zyn::kRecordSlots : zyn::kRecordSlots));
}

bool writeRecord(const PHONE_ENG_RecentCall& record, const ListSlots& slots)
{
    if (!slots.has(record.slot))
        return false;
    const UniqueFd file = zyn::openStoreFile(filePath(record.category));
    return file.isValid() && RecordFile::write(file.get(), record.slot, record);
}

} // namespace

RecentCall_ENG_RecordStore* RecentCall_ENG_RecordStore::instance()
{
    if (!s_callStore)
        s_callStore = std::make_unique<RecentCall_ENG_RecordStore>();
    return s_callStore.get();
}

void RecentCall_ENG_RecordStore::destroy()
{
    s_callStore.reset();
}

RecentCall_ENG_RecordStore::RecentCall_ENG_RecordStore()
{
    zyn::makeStoreDirectory();
    for (const RC_CALL_CATEGORY_T category : zyn::kRecordLists) {
        const QByteArray path = filePath(category);
        zyn::removeLeftovers(path);
        if (!RecordFile::isAt(path))
            RecordFile::create(path);
    }
}

bool RecentCall_ENG_RecordStore::addItem(PHONE_ENG_RecentCall& record)
{
    record.uid = s_nextUid;
    s_nextUid = nextUid(s_nextUid);
    const ListSlots slots(record.category);
    const int slot = findSlot(m_slotBitmap, slots, false);
    record.slot = slot < slots.count ? slot : -1;
    record.print();
    if (!writeRecord(record, slots))
        return false;
    mark(m_slotBitmap, slots, slot, true);
    return true;
}

bool RecentCall_ENG_RecordStore::modifyItem(const PHONE_ENG_RecentCall& record)
{
    return writeRecord(record, ListSlots(record.category));
}

bool RecentCall_ENG_RecordStore::removeItem(const PHONE_ENG_RecentCall& record)
{
    const QByteArray path = filePath(record.category);
    zyn::LogText log;
    log << "deleting item:";
    record.print();
    const UniqueFd file = zyn::openStoreFile(path);
    if (!file.isValid())
        return false;
    log << "to remove tiem:index" << record.uid << " pos:" << record.slot;
    log.flush();
    const ListSlots slots(record.category);
    if (!slots.has(record.slot) || !RecordFile::writeBlank(file.get(), record.slot))
        return false;
    mark(m_slotBitmap, slots, record.slot, false);
    return true;
}

bool RecentCall_ENG_RecordStore::removeItems(RC_CALL_CATEGORY_T category)
{
    const UniqueFd file = zyn::openStoreFile(filePath(category));
    if (!file.isValid())
        return false;
    const ListSlots slots(category);
    for (int slot = 0; slots.has(slot = findSlot(m_slotBitmap, slots, true, slot)); ++slot) {
        if (RecordFile::writeBlank(file.get(), slot))
            mark(m_slotBitmap, slots, slot, false);
    }
    return true;
}

void RecentCall_ENG_RecordStore::clearAllData()
{
    for (const RC_CALL_CATEGORY_T category : zyn::kRecordLists) {
        const UniqueFd file = zyn::openStoreFile(filePath(category));
        const int slots = file.isValid() ? ListSlots(RC_CALL_CATEGORY_ALL).inFile() : 0;
        for (int slot = 0; slot < slots; ++slot)
            RecordFile::writeBlank(file.get(), slot);
    }
    s_nextUid = 0;
    m_slotBitmap.fill(0);
}

void RecentCall_ENG_RecordStore::readDataList(QSortedList<PHONE_ENG_RecentCall>& list, RC_CALL_CATEGORY_T category)
{
    const QByteArray path = filePath(category);
    std::array<std::byte, longestFile(RC_CALL_CATEGORY_ALL)> buffer; // NOLINT: only what is read is used
    const UniqueFd file = zyn::openStoreFile(path, zyn::posix::Access::Read);
    const ssize_t length = zyn::posix::readAt(file.get(), std::span(buffer).first(longestFile(category)), 0);
    if (length < 0) {
        std::printf("PHONE_ENG_RecentCallManager::saveCallList. cannot open file %s", path.constData());
        return;
    }
    const QByteArrayView image(buffer.data(), qsizetype{length});
    if (!zyn::hasValidHeader(image))
        return;
    const ListSlots slots(category);
    list.reserve(list.count() + slots.count);
    for (int slot = 0; slot < slots.count; ++slot) {
        if (!RecordFile::isInUse(image, slot))
            continue;
        auto record = std::make_unique<PHONE_ENG_RecentCall>(RecordFile::at(image, slot));
        if (record->uid >= s_nextUid)
            s_nextUid = nextUid(record->uid);
        mark(m_slotBitmap, slots, record->slot, true);
        list.append(record.release());
    }
    list.sort();
}
