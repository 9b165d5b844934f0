// The activity log of five favourites on disk.
#include "recentcall/utility/ActivityLog_ENG_RecordStore.h"

#include "platform/posix/File_p.h"
#include "platform/posix/PathAt_p.h"
#include "recentcall/utility/store/ActivityLogFile_p.h"
#include "recentcall/utility/store/TopPalsSlots_p.h"
#include "utility/FixedText_p.h"

#include <QtCore/QByteArray>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <algorithm>
#include <array>
#include <cstdio>
#include <functional>
#include <limits>
#include <memory>
#include <numeric>
#include <optional>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

using zyn::ContactFile;

namespace {

/// The index of the next entry that this process adds; it outlives the store.
int32_t gTopPalsAvlIndex = 0;

zyn::TopPalsSlots topPalsAvlFlags;

ActivityLog_ENG_RecordStore* s_activityLog = nullptr;

int32_t nextIndex(int32_t index)
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
    return zyn::fieldText(place.phoneNumber);
}

using Numbers = std::array<QLatin1String, TopPalNumberDetail::kPlaces>;

Numbers numbersOf(const zyn::TopPalsDetails& places)
{
    Numbers numbers;
    std::ranges::transform(places, numbers.begin(), numberOf);
    return numbers;
}

/// The first place that has @p number; -1 when none does.
template<typename Text>
int8_t placeOf(const Numbers& numbers, const Text& number)
{
    const auto* const place = std::find(numbers.begin(), numbers.end(), number);
    return place == numbers.end() ? int8_t{-1} : static_cast<int8_t>(place - numbers.begin());
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

/// How many slots are read at a time: most files whole, and larger ones in parts that need little memory.
constexpr int kSlotsAtATime = 200;

/// The bytes of the open file @p fd from its start, or from @p first slots behind it, so that slot @p first is the
/// first slot of the image. Nothing if the file cannot be read.
std::optional<QByteArray> readSlots(int fd, int first, int slots, QByteArray image = {})
{
    image.resize(static_cast<qsizetype>(ContactFile::size(std::min(slots - first, kSlotsAtATime))));
    const auto buffer = std::as_writable_bytes(std::span(image.data(), static_cast<size_t>(image.size())));
    const auto offset = static_cast<off_t>(ContactFile::offset(first) - ContactFile::offset(0));
    const ssize_t length = zyn::posix::readAt(fd, buffer, offset);
    if (length < 0)
        return std::nullopt;
    image.truncate(length);
    return image;
}

/// Appends the records in use of @p image.
void appendEntries(zyn::Trace& trace, const Numbers& numbers, QSortedList<PHONE_ENG_ActivityLog>& list,
                   const QByteArray& image, int slots)
{
    const int count = ContactFile::count(image);
    for (int slot = 0; slot < count; ++slot) {
        if (!ContactFile::isInUse(image, slot))
            continue;
        auto record = std::make_unique<PHONE_ENG_ActivityLog>();
        ContactFile::read(*record, image, slot);
        if (record->getTopPalsAvlIndex() > gTopPalsAvlIndex) {
            trace << "TP5_AVL:ActivityLog_ENG_RecordStore::readTopPalsAvlContactRecordList:"
                     "callData->getTopPalsAvlIndex() > gTopPalsAvlIndex\n";
            gTopPalsAvlIndex = nextIndex(record->getTopPalsAvlIndex());
        }
        topPalsAvlFlags.setTopPalsAvlFlag(trace, placeOf(numbers, zyn::fieldText(record->phoneNumber)),
                                          record->topPalsAvlPos, slots);
        list.append(record.release());
    }
}

/// Appends the records in use of the open file @p fd, which begins with @p image; whether it holds all @p slots slots.
bool appendAllRecords(zyn::Trace& trace, const Numbers& numbers, QSortedList<PHONE_ENG_ActivityLog>& list, int fd,
                      QByteArray image, int slots)
{
    list.reserve(list.count() + ContactFile::count(image));
    int present = 0;
    while (true) {
        const int count = ContactFile::count(image);
        appendEntries(trace, numbers, list, image, slots);
        present += count;
        if (count < kSlotsAtATime || present == slots)
            break;
        image = readSlots(fd, present, slots, std::move(image)).value_or(QByteArray());
    }
    if (present == slots)
        return true;
    trace << "TP5_AVL: ActivityLog_ENG_RecordStore::readTopPalsAvlContactRecordList:file.readBlock: "
             "callData failed\n";
    return false;
}

/**
 * The exchanges of a selection sort that brings the newest record to the front, without its searches.
 *
 * It takes records by their time, and those of one time by the places where they are when their turn comes: exchanges
 * for them move none of them, only records whose turn comes later.
 */
class NewestFirst
{
public:
    explicit NewestFirst(const QSortedList<PHONE_ENG_ActivityLog>& list)
        : m_placeOf(static_cast<size_t>(list.count()))
        , m_recordAt(m_placeOf.size())
    {
        m_order.reserve(m_placeOf.size());
        for (const PHONE_ENG_ActivityLog* record : list)
            m_order.push_back(Turn{record->startTime, static_cast<uint32_t>(m_order.size())});
        std::ranges::sort(m_order, std::greater());
        std::iota(m_placeOf.begin(), m_placeOf.end(), 0);
        std::iota(m_recordAt.begin(), m_recordAt.end(), 0);
    }

    /// Where the record for place @p i is, after the exchanges for those in front of it.
    size_t find(size_t i)
    {
        if (i == m_tiesEnd)
            orderTies(i);
        return m_placeOf[m_order[i].record];
    }

    /// Notes that the records of the places @p i and @p max, which find() gave for it, change places.
    void exchange(size_t i, size_t max)
    {
        const size_t moved = m_recordAt[i];
        m_recordAt[max] = moved;
        m_placeOf[moved] = max;
    }

private:
    struct Turn
    {
        int32_t time;
        uint32_t record; ///< its place in the list as it was

        auto operator<=>(const Turn&) const = default; // NOLINT(*-zero-as-null-pointer-constant): generated
    };

    void orderTies(size_t i)
    {
        m_tiesEnd = i;
        while (m_tiesEnd < m_order.size() && m_order[m_tiesEnd].time == m_order[i].time)
            ++m_tiesEnd;
        if (m_tiesEnd - i > 1)
            std::ranges::sort(std::span(m_order).subspan(i, m_tiesEnd - i), {},
                              [this](const Turn& turn) { return m_placeOf[turn.record]; });
    }

    std::vector<Turn> m_order;
    std::vector<size_t> m_placeOf;  ///< of each record
    std::vector<size_t> m_recordAt; ///< of each place whose turn is still to come
    size_t m_tiesEnd = 0;           ///< where records of another time begin
};

/// Orders @p list newest first, as a selection sort does, and keeps as many records as a file has slots.
void sortOnTimeStamp(zyn::Trace& trace, QSortedList<PHONE_ENG_ActivityLog>& list, int slots)
{
    trace << "TP5_AVL:RC Store: ENTER: sortOnTimeStamp():TP5_AVL:RC Store: sortOnTimeStamp(): Before sort count = "
          << list.count() << "\n";
    NewestFirst order(list);
    const auto records = list.begin();
    const auto kept = std::min(list.count(), qsizetype{slots});
    for (qsizetype i = 0; i < kept; ++i) {
        const size_t max = order.find(static_cast<size_t>(i));
        if (max == static_cast<size_t>(i))
            continue;
        std::swap(records[i], records[static_cast<qsizetype>(max)]);
        order.exchange(static_cast<size_t>(i), max);
        trace << "TP5_AVL:RC Store: sortOnTimeStamp(): swap(i = " << i << ", max = " << max << ")\n";
    }
    while (list.count() > kept)
        list.removeLast();
    trace << "TP5_AVL:RC Store: sortOnTimeStamp(): After sort count = " << list.count()
          << "\nTP5_AVL:RC Store: EXIT: sortOnTimeStamp()\n";
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
    {
        zyn::Trace trace;
        const int origin = zyn::getTp5AvlRecordPos(trace, i, 0, slots);
        trace << "TP5_AVL:RC Store:createTopPalsDetailsFile:origin = " << origin << "\n";
    }
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
    if (!s_activityLog)
        s_activityLog = new ActivityLog_ENG_RecordStore;
    return s_activityLog;
}

void ActivityLog_ENG_RecordStore::destroy()
{
    delete std::exchange(s_activityLog, nullptr);
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
    zyn::Trace trace;
    const QLatin1String number = zyn::fieldText(rec.phoneNumber);
    trace << "TP5_AVL:RC Store:addTopPalsAvlItem:ENTER:phoneNumber= "
          << std::string_view(number.data(), static_cast<size_t>(number.size())) << "\n";
    trace.flush();
    rec.topPalsAvlIndex = gTopPalsAvlIndex;
    gTopPalsAvlIndex = nextIndex(gTopPalsAvlIndex);
    const int slots = zyn::contactSlots();
    const int favourite = placeOf(numbersOf(topPalNumberDetails), number);
    const int pos = topPalsAvlFlags.getAvailableTopPalsAvlPos(trace, favourite, slots);
    if (pos < 0)
        return 0;
    rec.topPalsAvlPos = pos;
    trace << "TP5_AVL:RC Store:addTopPalsAvlItem(), tp5AvlPos=" << pos << "\n";
    rec.print();
    return zyn::modifyTopPalsAvlItem(trace, rec, slots)
           && topPalsAvlFlags.setTopPalsAvlFlag(trace, favourite, pos, slots);
}

int ActivityLog_ENG_RecordStore::modifyTopPalsAvlItem(const PHONE_ENG_ActivityLog& rec)
{
    const int slots = zyn::contactSlots();
    zyn::Trace trace;
    return zyn::modifyTopPalsAvlItem(trace, rec, slots);
}

int ActivityLog_ENG_RecordStore::removeTopPalsAvlItem(PHONE_ENG_ActivityLog& rec)
{
    std::printf("TP5_AVL:RC Store: ENTER: removeTopPalsAvlItem()\n");
    const QString number = rec.getPhoneNumber();
    const QString path = zyn::contactPath(number);
    std::printf("deleting item from %s:", path.toLatin1().constData());
    rec.print();
    bool isRemoved = false;
    zyn::Trace trace;
    if (const auto file = zyn::openStoreFile(QFile::encodeName(path)); file.isValid()) {
        const int slots = zyn::contactSlots();
        trace << "TP5_AVL:RC Store: removeTopPalsAvlItem: index= " << rec.topPalsAvlIndex
              << ", pos= " << rec.topPalsAvlPos << "\n";
        if (zyn::removeTopPalsAvlFileItem(trace, file.get(), rec.topPalsAvlPos, slots)) {
            trace << "TP5_AVL:RC Store: removeTopPalsAvlItem: removeTopPalsAvlFileItem returns SUCCESS:\n";
            isRemoved = topPalsAvlFlags.clearTopPalsAvlFlag(trace, getTopPalFileItem(number), rec.topPalsAvlPos, slots);
        }
    }
    trace << "TP5_AVL: RC Store:  EXIT: removeTopPalsAvlItem()\n";
    return isRemoved;
}

int ActivityLog_ENG_RecordStore::readTopPalsAvlContactRecordList(QSortedList<PHONE_ENG_ActivityLog>& list,
                                                                 const QString& number)
{
    zyn::Trace trace;
    trace << "TP5_AVL:RC Store:  ENTER: readTopPalsAvlContactRecordList()\n";
    bool isRead = false;
    if (number.isEmpty()) {
        trace << "TP5_AVL: RC Store:  FAIL: readTopPalsAvlContactRecordList(), !cr_phoneNumber.isNULL() && "
                 "r_callList != NULL \n";
    } else {
        const QByteArray path = zyn::contactFile(trace, number);
        trace << "TP5_AVL:RC Store:  readTopPalsAvlContactRecordList(), fileName = "
              << std::string_view(zyn::shownPath(path).constData()) << "\n";
        trace.flush();
        const int slots = zyn::contactSlots();
        const auto file = zyn::openStoreFile(path, zyn::posix::Access::Read);
        if (auto image = readSlots(file.get(), 0, slots)) {
            trace << "TP5_AVL:RC Store:readTopPalsAvlContactRecordList, SUCCESS: file.open()\n";
            isRead =
                zyn::hasValidHeader(*image)
                && appendAllRecords(trace, numbersOf(topPalNumberDetails), list, file.get(), *std::move(image), slots);
            trace << "TP5_AVL: RC Store: readTopPalsAvlContactRecordList(): r_callList.count() = " << list.count()
                  << "\n";
            if (list.count() > 1)
                ::sortOnTimeStamp(trace, list, slots);
        } else {
            trace << "TP5_AVL: RC Store:  FAIL: readTopPalsAvlContactRecordList(), cannot open file "
                  << std::string_view(zyn::shownPath(path).constData()) << "\n";
        }
    }
    trace << "TP5_AVL: RC Store: EXIT: readTopPalsAvlContactRecordList() returns = " << int{isRead} << "\n";
    return isRead;
}

void ActivityLog_ENG_RecordStore::sortOnTimeStamp(QSortedList<PHONE_ENG_ActivityLog>& list)
{
    const int slots = zyn::contactSlots();
    zyn::Trace trace;
    ::sortOnTimeStamp(trace, list, slots);
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
    return placeOf(numbersOf(topPalNumberDetails), number);
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
    const int slots = zyn::contactSlots();
    zyn::Trace trace;
    return topPalsAvlFlags.setTopPalsAvlFlag(trace, getTopPalFileItem(number), pos, slots);
}

bool ActivityLog_ENG_RecordStore::clearTopPalsAvlFlag(const QString& number, int pos)
{
    const int slots = zyn::contactSlots();
    zyn::Trace trace;
    return topPalsAvlFlags.clearTopPalsAvlFlag(trace, getTopPalFileItem(number), pos, slots);
}

int ActivityLog_ENG_RecordStore::getAvailableTopPalsAvlPos(const QString& number)
{
    const int slots = zyn::contactSlots();
    zyn::Trace trace;
    return topPalsAvlFlags.getAvailableTopPalsAvlPos(trace, getTopPalFileItem(number), slots);
}
