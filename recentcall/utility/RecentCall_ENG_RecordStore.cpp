// The recent calls on disk.
#include "recentcall/utility/RecentCall_ENG_RecordStore.h"

#include "recentcall/utility/RecentCall_Setup.h"
#include "recentcall/utility/store/RecordFile_p.h"
#include "utility/PHONE_Log_p.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <iterator>
#include <limits>
#include <memory>

using zyn::RecordFile;
using zyn::posix::UniqueFd;

namespace {

using SlotBitmap = std::array<uint32_t, 5>;

constexpr qint64 kBitsPerWord = 32;

/// The uid of the next call that this process adds; it outlives the store.
int32_t s_nextUid = 0;

std::unique_ptr<RecentCall_ENG_RecordStore> s_instance;

int maximum(RC_CALL_CATEGORY_T category)
{
    return RecentCall_Setup::instance()->getMaxRecordSize(category);
}

bool passesSlotCheck(qint64 index)
{
    return index >= 0 && index < maximum(RC_CALL_CATEGORY_ALL);
}

/// A slot beyond its own list would spoil the file's size or another list's bits.
bool isSlotOf(RC_CALL_CATEGORY_T category, int slot)
{
    return passesSlotCheck(slot) && slot < std::min(maximum(category), zyn::kRecordSlots);
}

qint64 bitIndex(RC_CALL_CATEGORY_T category, int slot)
{
    switch (category) {
    case RC_CALL_CATEGORY_MISSED:
        return qint64{slot} + maximum(RC_CALL_CATEGORY_ANSWERED);
    case RC_CALL_CATEGORY_DIALED:
        return qint64{slot} + maximum(RC_CALL_CATEGORY_ANSWERED) + maximum(RC_CALL_CATEGORY_MISSED);
    default:
        return slot;
    }
}

bool isMarked(const SlotBitmap& bitmap, RC_CALL_CATEGORY_T category, int slot)
{
    const qint64 bit = bitIndex(category, slot);
    return passesSlotCheck(bit) && (bitmap[static_cast<size_t>(bit / kBitsPerWord)] >> (bit % kBitsPerWord) & 1U);
}

void mark(SlotBitmap& bitmap, RC_CALL_CATEGORY_T category, int slot, bool inUse)
{
    const qint64 bit = bitIndex(category, slot);
    if (!passesSlotCheck(bit))
        return;
    uint32_t& word = bitmap[static_cast<size_t>(bit / kBitsPerWord)];
    const uint32_t mask = 1U << (bit % kBitsPerWord);
    word = inUse ? word | mask : word & ~mask;
}

int freeSlot(const SlotBitmap& bitmap, RC_CALL_CATEGORY_T category)
{
    const int slots = maximum(category);
    for (int slot = 0; slot < slots; ++slot) {
        if (!isMarked(bitmap, category, slot))
            return slot;
    }
    return -1;
}

int32_t successor(int32_t uid)
{
    return uid == std::numeric_limits<int32_t>::max() ? uid : uid + 1;
}

QByteArray filePath(RC_CALL_CATEGORY_T category)
{
    QByteArray path = zyn::storeDirectoryPath() + zyn::recordFileName(category);
    std::printf("%s", path.constData());
    return path;
}

/// How many bytes the longest file of @p category has, whatever the limits in the settings, which are read for a valid
/// file only.
qint64 longestFile(RC_CALL_CATEGORY_T category)
{
    constexpr auto kLists = static_cast<int>(std::size(zyn::kRecordLists));
    return RecordFile::size(category == RC_CALL_CATEGORY_ALL ? kLists * zyn::kRecordSlots : zyn::kRecordSlots);
}

bool writeBlankSlot(const UniqueFd& file, int slot)
{
    return passesSlotCheck(slot) && RecordFile::writeBlank(file.get(), slot);
}

} // namespace

RecentCall_ENG_RecordStore* RecentCall_ENG_RecordStore::instance()
{
    if (!s_instance)
        s_instance = std::make_unique<RecentCall_ENG_RecordStore>();
    return s_instance.get();
}

void RecentCall_ENG_RecordStore::destroy()
{
    s_instance.reset();
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
    s_nextUid = successor(s_nextUid);
    record.slot = freeSlot(m_slotBitmap, record.category);
    record.print();
    if (!modifyItem(record))
        return false;
    mark(m_slotBitmap, record.category, record.slot, true);
    return true;
}

bool RecentCall_ENG_RecordStore::modifyItem(const PHONE_ENG_RecentCall& record)
{
    if (!isSlotOf(record.category, record.slot))
        return false;
    const UniqueFd file = zyn::openStoreFile(filePath(record.category));
    return file.isValid() && RecordFile::write(file.get(), record.slot, record);
}

bool RecentCall_ENG_RecordStore::removeItem(const PHONE_ENG_RecentCall& record)
{
    const QByteArray path = filePath(record.category);
    PHONE_Log(kPhoneLogLevel, "deleting item:");
    record.print();
    const UniqueFd file = zyn::openStoreFile(path);
    if (!file.isValid())
        return false;
    PHONE_Log(kPhoneLogLevel, "to remove tiem:index%d pos:%d", record.uid, record.slot);
    if (!isSlotOf(record.category, record.slot) || !writeBlankSlot(file, record.slot))
        return false;
    mark(m_slotBitmap, record.category, record.slot, false);
    return true;
}

bool RecentCall_ENG_RecordStore::removeItems(RC_CALL_CATEGORY_T category)
{
    const UniqueFd file = zyn::openStoreFile(filePath(category));
    if (!file.isValid())
        return false;
    const int slots = std::min(maximum(category), zyn::kRecordSlots);
    for (int slot = 0; slot < slots; ++slot) {
        if (isMarked(m_slotBitmap, category, slot) && writeBlankSlot(file, slot))
            mark(m_slotBitmap, category, slot, false);
    }
    return true;
}

void RecentCall_ENG_RecordStore::clearAllData()
{
    for (const RC_CALL_CATEGORY_T category : zyn::kRecordLists) {
        const UniqueFd file = zyn::openStoreFile(filePath(category));
        for (int slot = 0; file.isValid() && slot < zyn::kRecordSlots; ++slot)
            writeBlankSlot(file, slot);
    }
    s_nextUid = 0;
    m_slotBitmap.fill(0);
}

void RecentCall_ENG_RecordStore::readDataList(QSortedList<PHONE_ENG_RecentCall>& list, RC_CALL_CATEGORY_T category)
{
    const QByteArray path = filePath(category);
    const auto image = zyn::readStoreFile(path, longestFile(category));
    if (!image) {
        std::printf("PHONE_ENG_RecentCallManager::saveCallList. cannot open file %s", path.constData());
        return;
    }
    if (!zyn::hasValidHeader(*image))
        return;
    for (const int slot : RecordFile::usedSlots(*image, maximum(category))) {
        auto record = std::make_unique<PHONE_ENG_RecentCall>(RecordFile::at(*image, slot));
        if (record->uid >= s_nextUid)
            s_nextUid = successor(record->uid);
        mark(m_slotBitmap, category, record->slot, true);
        list.append(record.release());
    }
    list.sort();
}
