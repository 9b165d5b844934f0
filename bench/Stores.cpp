// The stores: the log of calls and the activity log, beside bare system calls, hand-written code and SQLite.
#include "bench/Bench.h"
#include "bench/Lines.h"
#include "bench/Sqlite.h"
#include "platform/QSortedList.h"
#include "platform/SETUP_SET_Manager.h"
#include "recentcall/utility/ActivityLog_ENG_RecordStore.h"
#include "recentcall/utility/RecentCall_ENG_RecordStore.h"
#include "recentcall/utility/store/ActivityLogFile_p.h"
#include "recentcall/utility/store/RecordFile_p.h"
#include "utility/PHONE_Settings_p.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace bench {
namespace {

using Call = PHONE_ENG_RecentCall;
using Entry = PHONE_ENG_ActivityLog;

constexpr RC_CALL_CATEGORY_T kList = RC_CALL_CATEGORY_ANSWERED;
constexpr int kStart = 1'700'000'000;

QString favourite()
{
    return u"5551234"_s;
}

Call call(int i)
{
    Call record(u"0301112222"_s, QDateTime::fromSecsSinceEpoch(kStart + i), 60);
    record.category = kList;
    record.inUse = 1;
    return record;
}

QByteArray callFile(const QByteArray& directory)
{
    return directory + "/phone" + zyn::recordFileName(kList);
}

void useCalls(const QByteArray& directory)
{
    useStores(directory);
    SETUP_SET_Manager(zyn::kPhoneSettings, false)
        .setSettingInfo(u"RECENTCALL_SET"_s, u"maxAnsweredCall"_s, zyn::kRecordSlots);
    useStores(directory);
    RecentCall_ENG_RecordStore::instance();
}

/// Writes @p size bytes at @p offset as a file is opened for it: three system calls.
void writeBare(const QByteArray& path, const void* bytes, size_t size, qint64 offset)
{
    const int fd = ::open(path.constData(), O_RDWR | O_CLOEXEC);
    const ssize_t written = ::pwrite(fd, bytes, size, static_cast<off_t>(offset));
    ::close(fd);
    require(written == static_cast<ssize_t>(size), "a bare write");
}

/// The whole file in @p buffer, which has its size: three system calls.
void readBare(const QByteArray& path, std::vector<char>& buffer)
{
    const int fd = ::open(path.constData(), O_RDONLY | O_CLOEXEC);
    const ssize_t length = ::read(fd, buffer.data(), buffer.size());
    ::close(fd);
    require(length == static_cast<ssize_t>(buffer.size()), "a bare read");
}

Job addCall(const QByteArray& directory)
{
    useCalls(directory);
    const auto store = std::make_shared<std::unique_ptr<RecentCall_ENG_RecordStore>>();
    const auto renew = [store] { *store = std::make_unique<RecentCall_ENG_RecordStore>(); };
    renew();
    const auto run = [store, record = call(0)]() mutable { require((*store)->addItem(record), "addItem()"); };
    return {.run = run, .renew = renew, .often = zyn::kRecordSlots};
}

Job addCallBare(const QByteArray& directory)
{
    useCalls(directory);
    return {.run = [path = callFile(directory), record = call(0)] {
        writeBare(path, &record, sizeof record, zyn::RecordFile::offset(7));
    }};
}

Job replaceCall(const QByteArray& directory)
{
    useCalls(directory);
    const auto calls = std::make_shared<std::vector<Call>>();
    for (int i = 0; i < zyn::kRecordSlots; ++i) {
        calls->push_back(call(i));
        require(RecentCall_ENG_RecordStore::instance()->addItem(calls->back()), "addItem()");
    }
    return {.run = [calls, oldest = size_t{0}]() mutable {
        RecentCall_ENG_RecordStore* const store = RecentCall_ENG_RecordStore::instance();
        Call& record = calls->at(oldest);
        require(store->removeItem(record) && store->addItem(record), "removeItem() and addItem()");
        oldest = (oldest + 1) % calls->size();
    }};
}

Job replaceCallBare(const QByteArray& directory)
{
    useCalls(directory);
    return {.run = [path = callFile(directory), blank = Call(), record = call(0)] {
        writeBare(path, &blank, sizeof blank, zyn::RecordFile::offset(7));
        writeBare(path, &record, sizeof record, zyn::RecordFile::offset(7));
    }};
}

void fillCalls(const QByteArray& directory)
{
    useCalls(directory);
    for (int i = 0; i < zyn::kRecordSlots; ++i) {
        Call record = call(i);
        require(RecentCall_ENG_RecordStore::instance()->addItem(record), "addItem()");
    }
}

Job listCalls(const QByteArray& directory)
{
    fillCalls(directory);
    return {.run = [] {
        QSortedList<Call> list;
        list.setAutoDelete(true);
        RecentCall_ENG_RecordStore::instance()->readDataList(list, kList);
        require(list.count() == zyn::kRecordSlots, "readDataList()");
    }};
}

Job listCallsBare(const QByteArray& directory)
{
    fillCalls(directory);
    const auto buffer = std::make_shared<std::vector<char>>(static_cast<size_t>(zyn::RecordFile::size()));
    return {.run = [path = callFile(directory), buffer] { readBare(path, *buffer); }};
}

Job listCallsByHand(const QByteArray& directory)
{
    fillCalls(directory);
    const auto buffer = std::make_shared<std::vector<char>>(static_cast<size_t>(zyn::RecordFile::size()));
    return {.run = [path = callFile(directory), buffer] {
        readBare(path, *buffer);
        std::vector<std::unique_ptr<Call>> list;
        list.reserve(zyn::kRecordSlots);
        for (size_t at = sizeof(zyn::StoreFileHeader); at < buffer->size(); at += sizeof(Call)) {
            const auto* const record = reinterpret_cast<const Call*>(buffer->data() + at);
            if (record->inUse)
                list.push_back(std::make_unique<Call>(*record));
        }
        std::ranges::sort(list, [](const auto& a, const auto& b) { return a->uid > b->uid; });
        require(list.size() == zyn::kRecordSlots, "the list by hand");
    }};
}

/// The entry of a favourite's slot @p i: the start times are in no order.
Entry entry(int i)
{
    Entry record;
    record.setPhoneNumber(favourite());
    record.startTime = static_cast<int32_t>(kStart + (qint64{i} * 7919) % 40'009);
    record.inUse = 1;
    record.topPalsAvlIndex = i;
    record.topPalsAvlPos = i;
    return record;
}

QByteArray favouriteFile(const QByteArray& directory)
{
    return directory + "/phone/" + favourite().toLatin1();
}

/// A favourite with @p slots slots, @p used of them in use.
void useFavourite(const QByteArray& directory, int slots, int used)
{
    useStores(directory);
    SETUP_SET_Manager(QString::fromLocal8Bit(directory) + "/setup/zyn_toppals.cfg"_L1, false)
        .setSettingInfo(u"TopPals-UI"_s, u"MaxItemsToLog"_s, slots);
    ActivityLog_ENG_RecordStore* const log = ActivityLog_ENG_RecordStore::instance();
    require(log->revampTopPalsAvlStorage({}, favourite()) == 1, "a new favourite");
    QByteArray image = zyn::ContactFile::blankImage(slots);
    for (int i = 0; i < used; ++i)
        zyn::ContactFile::put(image, i, entry(i));
    writeBare(favouriteFile(directory), image.constData(), static_cast<size_t>(image.size()), 0);
    ActivityLog_ENG_RecordStore::destroy();
}

Prepare addEntryBare(int slots)
{
    return [slots](const QByteArray& directory) -> Job {
        useFavourite(directory, slots, 0);
        return {.run = [path = favouriteFile(directory), record = entry(0), slots] {
            writeBare(path, &record, sizeof record, zyn::ContactFile::offset(slots - 1));
        }};
    };
}

Prepare listEntriesBare(int slots)
{
    return [slots](const QByteArray& directory) -> Job {
        useFavourite(directory, slots, slots);
        const auto buffer = std::make_shared<std::vector<char>>(static_cast<size_t>(zyn::ContactFile::size(slots)));
        return {.run = [path = favouriteFile(directory), buffer] { readBare(path, *buffer); }};
    };
}

/// The list as the library orders it, with the lines that it writes for each entry and each exchange.
void listByHand(const QByteArray& path, std::vector<char>& buffer)
{
    Lines lines;
    readBare(path, buffer);
    std::vector<std::unique_ptr<Entry>> list;
    std::vector<std::pair<int32_t, int>> newest;
    list.reserve(buffer.size() / sizeof(Entry));
    newest.reserve(buffer.size() / sizeof(Entry));
    for (size_t at = sizeof(zyn::StoreFileHeader); at < buffer.size(); at += sizeof(Entry)) {
        auto record = std::make_unique<Entry>();
        std::memcpy(static_cast<void*>(record.get()), buffer.data() + at, sizeof(Entry));
        lines << "TP5_AVL:RC Store:  ENTER: setTopPalsAvlFlag():TP5_AVL:RC Store:nthFileItem = " << 0
              << "TP5_AVL: RC Store:getTp5AvlRecordPos() returns = " << record->topPalsAvlPos
              << "\nTP5_AVL:RC Store: getTp5AvlRecordPos returns value = " << record->topPalsAvlPos
              << "\nTP5_AVL:RC Store:  EXIT: setTopPalsAvlFlag(): returns " << 1 << "\n";
        newest.emplace_back(-record->startTime, static_cast<int>(list.size()));
        list.push_back(std::move(record));
    }
    // Where each entry is now, and who is at each place: an exchange moves two.
    std::ranges::sort(newest);
    std::vector<int> placeOf(list.size());
    std::vector<int> whoAt(list.size());
    for (size_t i = 0; i < list.size(); ++i)
        placeOf[i] = whoAt[i] = static_cast<int>(i);
    for (size_t i = 0; i < list.size(); ++i) {
        const auto from = static_cast<size_t>(placeOf[static_cast<size_t>(newest[i].second)]);
        if (from == i)
            continue;
        std::swap(list[i], list[from]);
        std::swap(whoAt[i], whoAt[from]);
        placeOf[static_cast<size_t>(whoAt[from])] = static_cast<int>(from);
        lines << "TP5_AVL:RC Store: sortOnTimeStamp(): swap(i = " << static_cast<int>(i)
              << ", max = " << static_cast<int>(from) << ")\n";
    }
}

Prepare listEntriesByHand(int slots)
{
    return [slots](const QByteArray& directory) -> Job {
        useFavourite(directory, slots, slots);
        const auto buffer = std::make_shared<std::vector<char>>(static_cast<size_t>(zyn::ContactFile::size(slots)));
        return {.run = [path = favouriteFile(directory), buffer] { listByHand(path, *buffer); }};
    };
}

/// Has the trace of a job go to a file, which is emptied after each operation.
Prepare traced(const Prepare& prepare)
{
    return [prepare](const QByteArray& directory) -> Job {
        const Job inner = prepare(directory);
        const int file = ::open((directory + "/trace").constData(), O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
        const int usual = ::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0);
        require(file >= 0 && usual >= 0, "a file for the trace");
        const auto run = [inner, file, usual] {
            ::dup2(file, STDOUT_FILENO);
            inner.run();
            std::fflush(stdout);
            ::dup2(usual, STDOUT_FILENO);
        };
        return {.run = run, .renew = [file] { require(::ftruncate(file, 0) == 0, "an empty trace"); }};
    };
}

Row favouriteList(int slots, const char* name)
{
    return {.name = name,
            .goal = 1.3,
            .base = kByHand,
            .columns = {{kOurs, listEntries(slots)},
                        {kLimit, listEntriesBare(slots)},
                        {kByHand, listEntriesByHand(slots)},
                        {sqlite::kName, sqlite::list(slots, sizeof(Entry))}}};
}

} // namespace

Prepare addEntry(int slots)
{
    return [slots](const QByteArray& directory) -> Job {
        constexpr int kOften = 10;
        useFavourite(directory, slots, slots - kOften);
        // What comes is made beforehand, as it is for the bare write: a copy of an entry prints.
        const auto coming = std::make_shared<std::vector<std::unique_ptr<Entry>>>();
        for (int i = 0; i < kOften; ++i)
            coming->push_back(std::make_unique<Entry>(entry(0)));
        const auto added = std::make_shared<size_t>(0);
        const auto run = [coming, added] {
            Entry& record = *coming->at((*added)++);
            require(ActivityLog_ENG_RecordStore::instance()->addTopPalsAvlItem(record) == 1, "adding an entry");
        };
        const auto renew = [coming, added] {
            for (; *added > 0; --*added)
                require(ActivityLog_ENG_RecordStore::instance()->removeTopPalsAvlItem(*coming->at(*added - 1)) == 1,
                        "removing it");
        };
        ActivityLog_ENG_RecordStore::instance();
        renew();
        return {.run = run, .renew = renew, .often = kOften};
    };
}

Prepare listEntries(int slots)
{
    return [slots](const QByteArray& directory) -> Job {
        useFavourite(directory, slots, slots);
        ActivityLog_ENG_RecordStore::instance();
        return {.run = [slots] {
            QSortedList<Entry> list;
            list.setAutoDelete(true);
            ActivityLog_ENG_RecordStore::instance()->readTopPalsAvlContactRecordList(list, favourite());
            require(list.count() == slots, "a favourite's list");
        }};
    };
}

std::vector<Row> storeRows()
{
    using sqlite::kName;
    return {
        {"add a call",
         1.15,
         kLimit,
         {{kOurs, addCall}, {kLimit, addCallBare}, {kName, sqlite::add(zyn::kRecordSlots, sizeof(Call))}}},
        {"add a call, list full", 1.15, kLimit, {{kOurs, replaceCall}, {kLimit, replaceCallBare}}},
        {"list of 50 calls",
         1.1,
         kByHand,
         {{kOurs, listCalls},
          {kLimit, listCallsBare},
          {kByHand, listCallsByHand},
          {kName, sqlite::list(zyn::kRecordSlots, sizeof(Call))}}},
        {"add an entry, M 15", 1.5, kLimit, {{kOurs, addEntry(15)}, {kLimit, addEntryBare(15)}}},
        {"add an entry, M 1000", 1.5, kLimit, {{kOurs, addEntry(1000)}, {kLimit, addEntryBare(1000)}}},
        {"add an entry, M 32767", 1.5, kLimit, {{kOurs, addEntry(32'767)}, {kLimit, addEntryBare(32'767)}}},
        favouriteList(15, "list of a favourite, M 15"),
        favouriteList(1000, "list of a favourite, M 1000"),
        favouriteList(32'767, "list of a favourite, M 32767"),
        {"list of a favourite, M 1000, trace in a file",
         1.3,
         kByHand,
         {{kOurs, traced(listEntries(1000))}, {kByHand, traced(listEntriesByHand(1000))}}},
    };
}

} // namespace bench
