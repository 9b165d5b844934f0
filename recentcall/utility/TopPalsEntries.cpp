// The entries in a contact's file.
#include "recentcall/utility/TopPalsEntries_p.h"

#include "platform/posix/File_p.h"
#include "recentcall/utility/ActivityLogFile_p.h"
#include "recentcall/utility/TopPalsFile_p.h"
#include "recentcall/utility/TopPalsSlots_p.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <algorithm>
#include <cstdio>
#include <queue>
#include <span>
#include <utility>

namespace zyn {
namespace {

bool writeSlot(int fd, int slot, const PHONE_ENG_ActivityLog& record)
{
    return zyn::posix::writeAt(fd, std::as_bytes(std::span(&record, 1)), off_t{zyn::getTopPalsAvlFilePos(slot)});
}

} // namespace

bool modifyTopPalsAvlItem(const PHONE_ENG_ActivityLog& record, int slots)
{
    std::printf("TP5_AVL:RC Store:  ENTER: modifyTopPalsAvlItem()\n");
    bool isWritten = false;
    if (isContactSlot(record.topPalsAvlPos, slots)) {
        const posix::UniqueFd file = openStoreFile(QFile::encodeName(contactPath(record.getPhoneNumber())));
        if (!file.isValid())
            std::printf("TP5_AVL:RC Store: FAIL: file.open(IO_Raw|IO_ReadWrite):\n");
        isWritten = file.isValid() && writeSlot(file.get(), record.topPalsAvlPos, record);
    } else {
        std::printf("TP5_AVL:RC Store:  FAIL: isTopPalsAvlLawyalPos:FALSE:\n");
    }
    std::printf("TP5_AVL:RC Store:  EXIT: modifyTopPalsAvlItem()\n");
    return isWritten;
}

bool removeTopPalsAvlFileItem(int fd, int pos, int slots)
{
    std::printf("TP5_AVL: RC Store: ENTER: removeTopPalsAvlFileItem()\n");
    const bool isRemoved = isContactSlot(pos, slots) && writeSlot(fd, pos, PHONE_ENG_ActivityLog());
    std::printf("TP5_AVL:RC Store:  EXIT: removeTopPalsAvlFileItem()\n");
    return isRemoved;
}

void sortOnTimeStamp(QSortedList<PHONE_ENG_ActivityLog>& list, int slots)
{
    std::printf("TP5_AVL:RC Store: ENTER: sortOnTimeStamp():");
    std::printf("TP5_AVL:RC Store: sortOnTimeStamp(): Before sort count = %d\n", static_cast<int>(list.count()));
    // A selection sort whose search for the newest is a queue. The seconds are in the order of the date-times that they
    // stand for; of equal ones the lowest place is the greatest, counted downwards.
    using Candidate = std::pair<int32_t, qsizetype>;
    std::vector<Candidate> starts;
    starts.reserve(static_cast<size_t>(list.count()));
    for (const PHONE_ENG_ActivityLog* record : std::as_const(list))
        starts.emplace_back(record->startTime, -static_cast<qsizetype>(starts.size()));
    std::priority_queue<Candidate> candidates({}, std::move(starts));

    const auto records = list.begin();
    const qsizetype kept = std::min(list.count(), qsizetype{slots});
    for (qsizetype i = 0; i < kept; ++i) {
        while (-candidates.top().second < i) // swapped away, and in the queue with its new place
            candidates.pop();
        const qsizetype max = -candidates.top().second;
        candidates.pop();
        if (max == i)
            continue;
        std::swap(records[i], records[max]);
        candidates.emplace(records[max]->startTime, -max);
        std::printf("TP5_AVL:RC Store: sortOnTimeStamp(): swap(i = %d, max = %d)\n", static_cast<int>(i),
                    static_cast<int>(max));
    }
    while (list.count() > kept)
        list.removeLast();
    std::printf("TP5_AVL:RC Store: sortOnTimeStamp(): After sort count = %d\n", static_cast<int>(list.count()));
    std::printf("TP5_AVL:RC Store: EXIT: sortOnTimeStamp()\n");
}

std::vector<int> usedSlots(const QString& number)
{
    std::vector<int> used;
    if (number.isEmpty()) // a free place, which is nothing to print a line about
        return used;
    const QString path = contactPath(number);
    const qint64 size = std::min(QFileInfo(path).size(), contactFileSize(kMaxContactSlots));
    const auto image = readStoreFile(QFile::encodeName(path), size);
    if (!image || !hasValidHeader(*image))
        return used;
    for (int slot = 0; slot < contactRecordCount(*image); ++slot) {
        if (isContactRecordInUse(*image, slot))
            used.push_back(slot);
    }
    return used;
}

} // namespace zyn
