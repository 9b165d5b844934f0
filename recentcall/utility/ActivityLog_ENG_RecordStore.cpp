// The activity log of five favourites on disk.
#include "recentcall/utility/ActivityLog_ENG_RecordStore.h"

#include "recentcall/utility/store/ActivityLogFile_p.h"
#include "recentcall/utility/store/TopPalsSlots_p.h"
#include "utility/FixedText_p.h"

#include <QtCore/QByteArray>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <algorithm>
#include <cstdio>
#include <limits>
#include <memory>
#include <optional>
#include <queue>
#include <utility>
#include <vector>

using zyn::ContactFile;

namespace {

/// The index of the next entry that this process adds; it outlives the store.
int32_t gTopPalsAvlIndex = 0;

zyn::TopPalsSlots topPalsAvlFlags;

ActivityLog_ENG_RecordStore* s_instance = nullptr;

int32_t successor(int32_t index)
{
    return index == std::numeric_limits<int32_t>::max() ? index : index + 1;
}

int8_t freePlace(const zyn::TopPalsDetails& places)
{
    const auto place = std::find_if(places.begin(), places.end(), [](const TopPalNumberDetail& detail) {
        return detail.nthFileItem == TopPalNumberDetail::kFree;
    });
    return place == places.end() ? int8_t{-1} : static_cast<int8_t>(place - places.begin());
}

/// The number in a place, as long as that is there; empty in a free one.
QLatin1String numberOf(const TopPalNumberDetail& place)
{
    const auto length = static_cast<qsizetype>(qstrnlen(place.phoneNumber, sizeof place.phoneNumber));
    return QLatin1String(place.phoneNumber, length);
}

/// The slots in use in the file of @p number: of those that it holds whole, however many it should have. None when its
/// header is wrong.
std::vector<int> usedSlots(const QString& number)
{
    if (number.isEmpty()) // a free place, for which no line is printed
        return {};
    const QString path = zyn::contactPath(number);
    const qint64 size = std::min(QFileInfo(path).size(), ContactFile::size());
    const auto image = zyn::readStoreFile(QFile::encodeName(path), size);
    if (!image || !zyn::hasValidHeader(*image))
        return {};
    return ContactFile::usedSlots(*image, ContactFile::count(*image));
}

/// Appends the records in use, up to the end of @p image; whether it holds all @p slots slots.
bool appendRecords(const ActivityLog_ENG_RecordStore& store, QSortedList<PHONE_ENG_ActivityLog>& list,
                   const QByteArray& image, int slots)
{
    const int present = ContactFile::count(image);
    for (const int slot : ContactFile::usedSlots(image, present)) {
        auto record = std::make_unique<PHONE_ENG_ActivityLog>();
        ContactFile::read(*record, image, slot);
        if (record->getTopPalsAvlIndex() > gTopPalsAvlIndex) {
            std::printf("TP5_AVL:ActivityLog_ENG_RecordStore::readTopPalsAvlContactRecordList:"
                        "callData->getTopPalsAvlIndex() > gTopPalsAvlIndex\n");
            gTopPalsAvlIndex = successor(record->getTopPalsAvlIndex());
        }
        topPalsAvlFlags.setTopPalsAvlFlag(store.getTopPalFileItem(record->getPhoneNumber()), record->topPalsAvlPos,
                                          slots);
        list.append(record.release());
    }
    if (present == slots)
        return true;
    std::printf("TP5_AVL: ActivityLog_ENG_RecordStore::readTopPalsAvlContactRecordList:file.readBlock: "
                "callData failed\n");
    return false;
}

/// Orders @p list newest first, as a selection sort does, and keeps as many records as a file has slots.
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

bool dropFavourite(zyn::TopPalsDetails& places, int i, const QString& number, int slots)
{
    if (i < 0) {
        std::printf("TP5_AVL:ActivityLog_ENG_RecordStore:revampTopPalsAvlStorage: FAILURE: index = %d\n", i);
        return false;
    }
    places.at(size_t(i)) = {};
    const bool isStored = zyn::storeTopPalsDetailsInFile(places, i);
    std::printf("TP5_AVL:ActivityLog_ENG_RecordStore:revampTopPalsAvlStorage:storeTopPalsDetailsInFile-->ret = %d\n",
                isStored);
    if (!isStored)
        return false;
    std::printf("TP5_AVL:RC Store:createTopPalsDetailsFile:origin = %d\n", zyn::getTp5AvlRecordPos(i, 0, slots));
    topPalsAvlFlags.clear(i);
    const bool isRemoved = zyn::removeTopPalsAvlFile(number, slots);
    std::printf("TP5_AVL:ActivityLog_ENG_RecordStore:revampTopPalsAvlStorage:removeTopPalsAvlFile-->ret = %d\n",
                isRemoved);
    return isRemoved;
}

bool checkTopPalsFileData(zyn::TopPalsDetails& places, const QString& number, int slots)
{
    const QString path = zyn::contactPath(number);
    const QByteArray shownPath = path.toLatin1();
    std::printf("TP5_AVL:RC Store: checkTopPalsFileData, fileName = %s\n", shownPath.constData());
    if (path.isNull())
        return false;
    if (zyn::checkTopPalsFile(path, slots)) {
        std::printf("TP5_AVL: RC Store: checkTopPalsFileData, FILE ALREADY EXISTS fileName= %s\n",
                    shownPath.constData());
        return false;
    }
    zyn::makeStoreDirectory();
    zyn::createActivityLogTopPalsFile(path, slots);
    const int i = freePlace(places);
    if (i < 0) {
        std::printf("TP5_AVL: RC Store: checkTopPalsFileData, getValidIndexForTopPalFiles: FAILURE:--> ret= %d\n", 0);
        return false;
    }
    TopPalNumberDetail& entry = places.at(size_t(i));
    entry.nthFileItem = i;
    zyn::storeText(entry.phoneNumber, number.toLatin1());
    const bool isStored = zyn::storeTopPalsDetailsInFile(places, i);
    std::printf("TP5_AVL: RC Store: checkTopPalsFileData, storeTopPalsDetailsInFile--> ret= %d\n", isStored);
    std::printf("TP5_AVL:RC Store:topPalNumberDetails: cr_phoneNumber=%s, nthFileItem=%d\n", entry.phoneNumber,
                entry.nthFileItem);
    return isStored;
}

} // namespace

ActivityLog_ENG_RecordStore* ActivityLog_ENG_RecordStore::instance()
{
    if (!s_instance)
        s_instance = new ActivityLog_ENG_RecordStore;
    return s_instance;
}

void ActivityLog_ENG_RecordStore::destroy()
{
    delete std::exchange(s_instance, nullptr);
}

ActivityLog_ENG_RecordStore::ActivityLog_ENG_RecordStore()
{
    zyn::initTopPalNumberDetails(topPalNumberDetails);
    topPalsAvlFlags = {};
    for (int i = 0; i < kFavourites; ++i) {
        const QString number = numberOf(topPalNumberDetails.at(size_t(i)));
        for (const int slot : usedSlots(number))
            topPalsAvlFlags.mark(i, slot, true);
    }
}

int ActivityLog_ENG_RecordStore::addTopPalsAvlItem(PHONE_ENG_ActivityLog& rec)
{
    const QString number = rec.getPhoneNumber();
    std::printf("TP5_AVL:RC Store:addTopPalsAvlItem:ENTER:phoneNumber= %s\n", number.toLatin1().constData());
    rec.topPalsAvlIndex = gTopPalsAvlIndex;
    gTopPalsAvlIndex = successor(gTopPalsAvlIndex);
    const int slots = zyn::contactSlots();
    const int favourite = getTopPalFileItem(number);
    const int pos = topPalsAvlFlags.getAvailableTopPalsAvlPos(favourite, slots);
    if (pos < 0)
        return 0;
    rec.topPalsAvlPos = pos;
    std::printf("TP5_AVL:RC Store:addTopPalsAvlItem(), tp5AvlPos=%d\n", pos);
    rec.print();
    return zyn::modifyTopPalsAvlItem(rec, slots) && topPalsAvlFlags.setTopPalsAvlFlag(favourite, pos, slots);
}

int ActivityLog_ENG_RecordStore::modifyTopPalsAvlItem(const PHONE_ENG_ActivityLog& rec)
{
    return zyn::modifyTopPalsAvlItem(rec, zyn::contactSlots());
}

int ActivityLog_ENG_RecordStore::removeTopPalsAvlItem(PHONE_ENG_ActivityLog& rec)
{
    std::printf("TP5_AVL:RC Store: ENTER: removeTopPalsAvlItem()\n");
    const QString number = rec.getPhoneNumber();
    const QString path = zyn::contactPath(number);
    std::printf("deleting item from %s:", path.toLatin1().constData());
    rec.print();
    bool isRemoved = false;
    if (const auto file = zyn::openStoreFile(QFile::encodeName(path)); file.isValid()) {
        const int slots = zyn::contactSlots();
        std::printf("TP5_AVL:RC Store: removeTopPalsAvlItem: index= %d, pos= %d\n", rec.topPalsAvlIndex,
                    rec.topPalsAvlPos);
        if (zyn::removeTopPalsAvlFileItem(file.get(), rec.topPalsAvlPos, slots)) {
            std::printf("TP5_AVL:RC Store: removeTopPalsAvlItem: removeTopPalsAvlFileItem returns SUCCESS:\n");
            isRemoved = topPalsAvlFlags.clearTopPalsAvlFlag(getTopPalFileItem(number), rec.topPalsAvlPos, slots);
        }
    }
    std::printf("TP5_AVL: RC Store:  EXIT: removeTopPalsAvlItem()\n");
    return isRemoved;
}

int ActivityLog_ENG_RecordStore::readTopPalsAvlContactRecordList(QSortedList<PHONE_ENG_ActivityLog>& list,
                                                                 const QString& number)
{
    std::printf("TP5_AVL:RC Store:  ENTER: readTopPalsAvlContactRecordList()\n");
    bool isRead = false;
    if (number.isEmpty()) {
        std::printf("TP5_AVL: RC Store:  FAIL: readTopPalsAvlContactRecordList(), !cr_phoneNumber.isNULL() && "
                    "r_callList != NULL \n");
    } else {
        const QString path = zyn::contactPath(number);
        const QByteArray shownPath = path.toLatin1();
        std::printf("TP5_AVL:RC Store:  readTopPalsAvlContactRecordList(), fileName = %s\n", shownPath.constData());
        const int slots = zyn::contactSlots();
        if (const auto image = zyn::readStoreFile(QFile::encodeName(path), ContactFile::size(slots))) {
            std::printf("TP5_AVL:RC Store:readTopPalsAvlContactRecordList, SUCCESS: file.open()\n");
            isRead = zyn::hasValidHeader(*image) && appendRecords(*this, list, *image, slots);
            std::printf("TP5_AVL: RC Store: readTopPalsAvlContactRecordList(): r_callList.count() = %d\n",
                        static_cast<int>(list.count()));
            if (list.count() > 1)
                ::sortOnTimeStamp(list, slots);
        } else {
            std::printf("TP5_AVL: RC Store:  FAIL: readTopPalsAvlContactRecordList(), cannot open file %s\n",
                        shownPath.constData());
        }
    }
    std::printf("TP5_AVL: RC Store: EXIT: readTopPalsAvlContactRecordList() returns = %d\n", isRead);
    return isRead;
}

void ActivityLog_ENG_RecordStore::sortOnTimeStamp(QSortedList<PHONE_ENG_ActivityLog>& list)
{
    ::sortOnTimeStamp(list, zyn::contactSlots());
}

int ActivityLog_ENG_RecordStore::revampTopPalsAvlStorage(const QString& oldNumber, const QString& newNumber)
{
    bool result = false;
    if (oldNumber.isEmpty() && newNumber.isEmpty()) {
        std::printf("TP5_AVL:ActivityLog_ENG_RecordStore:revampTopPalsAvlStorage:returns = %d\n", result);
        return result;
    }
    const int slots = zyn::contactSlots();
    if (!oldNumber.isEmpty())
        result = dropFavourite(topPalNumberDetails, getTopPalFileItem(oldNumber), oldNumber, slots);
    if (!newNumber.isEmpty()) {
        result = checkTopPalsFileData(topPalNumberDetails, newNumber, slots);
        std::printf("TP5_AVL:ActivityLog_ENG_RecordStore:revampTopPalsAvlStorage:checkTopPalsFileData-->ret = %d\n",
                    result);
    }
    return result;
}

bool ActivityLog_ENG_RecordStore::getCurrentTopPalsFileNames(QString* names)
{
    if (!names)
        return false;
    for (const TopPalNumberDetail& place : topPalNumberDetails)
        *names++ = numberOf(place);
    return true;
}

int8_t ActivityLog_ENG_RecordStore::getTopPalFileItem(const QString& number) const
{
    for (int8_t i = 0; i < kFavourites; ++i) {
        if (numberOf(topPalNumberDetails.at(size_t(i))) == number)
            return i;
    }
    return -1;
}

int8_t ActivityLog_ENG_RecordStore::getValidIndexForTopPalFiles() const
{
    return freePlace(topPalNumberDetails);
}

QString ActivityLog_ENG_RecordStore::getStoreFileName(const QString& name)
{
    QString path = zyn::topPalsPath(name);
    if (!path.isNull())
        zyn::makeStoreDirectory();
    return path;
}

bool ActivityLog_ENG_RecordStore::checkTopPalsDetailsFile(const QString& fileName)
{
    return zyn::checkTopPalsDetailsFile(fileName);
}

bool ActivityLog_ENG_RecordStore::checkTopPalsFile(const QString& fileName)
{
    return zyn::checkTopPalsFile(fileName, zyn::contactSlots());
}

bool ActivityLog_ENG_RecordStore::setTopPalsAvlFlag(const QString& number, int pos)
{
    return topPalsAvlFlags.setTopPalsAvlFlag(getTopPalFileItem(number), pos, zyn::contactSlots());
}

bool ActivityLog_ENG_RecordStore::clearTopPalsAvlFlag(const QString& number, int pos)
{
    return topPalsAvlFlags.clearTopPalsAvlFlag(getTopPalFileItem(number), pos, zyn::contactSlots());
}

int ActivityLog_ENG_RecordStore::getAvailableTopPalsAvlPos(const QString& number)
{
    return topPalsAvlFlags.getAvailableTopPalsAvlPos(getTopPalFileItem(number), zyn::contactSlots());
}
