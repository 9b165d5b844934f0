// The recent calls on disk.
#include "support/Descriptors.h"
#include "support/ScopedFileSizeLimit.h"
#include "support/StdoutCapture.h"
#include "support/StoreFixture.h"

#include <QtTest/QTest>

#include <limits>
#include <optional>

#include <pthread.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>

namespace {

constexpr RC_CALL_CATEGORY_T kAnswered = RC_CALL_CATEGORY_ANSWERED;
constexpr RC_CALL_CATEGORY_T kMissed = RC_CALL_CATEGORY_MISSED;
constexpr RC_CALL_CATEGORY_T kDialed = RC_CALL_CATEGORY_DIALED;
constexpr qsizetype kShownOutput = 1000;
constexpr int kLargest = std::numeric_limits<int>::max();

QByteArray blankSlot()
{
    QByteArray slot(228, '\0');
    slot[80] = 1;
    return slot;
}

QByteArray freshFile()
{
    return QByteArray::fromHex("d0c0b0a005000000") + blankSlot().repeated(50);
}

/// A barrier that processes share; it goes with the object.
class SharedBarrier
{
public:
    explicit SharedBarrier(unsigned int parties)
        : m_barrier(static_cast<pthread_barrier_t*>(::mmap(nullptr, sizeof(pthread_barrier_t), PROT_READ | PROT_WRITE,
                                                           MAP_SHARED | MAP_ANONYMOUS, -1, 0)))
    {
        pthread_barrierattr_t attributes;
        pthread_barrierattr_init(&attributes);
        pthread_barrierattr_setpshared(&attributes, PTHREAD_PROCESS_SHARED);
        pthread_barrier_init(m_barrier, &attributes, parties);
        pthread_barrierattr_destroy(&attributes);
    }
    SharedBarrier(const SharedBarrier&) = delete;
    SharedBarrier& operator=(const SharedBarrier&) = delete;
    ~SharedBarrier() { ::munmap(m_barrier, sizeof(pthread_barrier_t)); }

    void wait() { pthread_barrier_wait(m_barrier); }

private:
    pthread_barrier_t* m_barrier;
};

} // namespace

class tst_RecentCall_ENG_RecordStore : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_output.emplace();
        m_fixture.emplace();
        m_fixture->startAfresh();
        m_fixture->forgetSingletons();
        m_descriptors = openDescriptors();
    }
    void cleanup()
    {
        QCOMPARE(openDescriptors(), m_descriptors);
        m_fixture.reset();
        const QByteArray output = m_output->take();
        m_output.reset();
        if (QTest::currentTestFailed()) // what failed was written to the captured output, too
            qInfo("%s", output.right(kShownOutput).constData());
    }

    void findsItsDirectory_data();
    void findsItsDirectory();
    void replacesInvalidFiles_data();
    void replacesInvalidFiles();
    void leavesWhatItCannotReplace();
    void losesNoCallWhenProcessesStartTogether_data();
    void losesNoCallWhenProcessesStartTogether();
    void writesACallIntoTheLowestFreeSlot();
    void refusesACallForAFullList();
    void refusesCategoriesWithoutAList();
    void refusesSlotsBeyondTheList_data();
    void refusesSlotsBeyondTheList();
    void changesOneSlotInPlace();
    void removesOnlyWhatItKnows();
    void clearsEverything();
    void listsTheNewestFirst();
    void goesOnCountingAfterTheLargestUid();
    void trustsNoSlotOrUidFromAFile();
    void readsDamagedFilesWithinTheirBounds();
    void tellsWhatItDoes();
    void failsCleanlyOnAFullDisk();

private:
    std::optional<StdoutCapture> m_output;
    std::optional<StoreFixture> m_fixture;
    qsizetype m_descriptors = 0;
};

void tst_RecentCall_ENG_RecordStore::findsItsDirectory_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");

    QTest::newRow("as it is") << QByteArray() << QByteArray();
    QTest::newRow("blanks around it") << QByteArray(" \t") << QByteArray("\n ");
}

void tst_RecentCall_ENG_RecordStore::findsItsDirectory()
{
    QFETCH(const QByteArray, before);
    QFETCH(const QByteArray, after);
    QTemporaryDir directory;
    qputenv("ZYN_LOCAL_APP_WRITE_PATH", before + QFile::encodeName(directory.path()) + after);
    m_fixture->store();
    for (const char* name : {"/phone/rc_a", "/phone/rc_m", "/phone/rc_d"}) {
        QFile file(directory.path() + QLatin1String(name));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), freshFile());
    }
    QCOMPARE(QDir(directory.path() + QLatin1String("/phone")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden),
             (QStringList{QStringLiteral("rc_a"), QStringLiteral("rc_d"), QStringLiteral("rc_m")}));
    for (const char* value : {"", "  "}) {
        m_fixture->forgetSingletons();
        QDir(QStringLiteral("/tmp/phone")).removeRecursively();
        qputenv("ZYN_LOCAL_APP_WRITE_PATH", value);
        m_fixture->store();
        QCOMPARE(QFileInfo(QStringLiteral("/tmp/phone/rc_m")).size(), 11'408);
    }
    QDir(QStringLiteral("/tmp/phone")).removeRecursively();
}

void tst_RecentCall_ENG_RecordStore::replacesInvalidFiles_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("kept");

    QByteArray used = freshFile();
    used[8 + 64] = 1;
    QTest::newRow("valid") << used << true;
    QTest::newRow("one byte short") << used.chopped(1) << false;
    QTest::newRow("one byte long") << used + '\0' << false;
    QTest::newRow("empty") << QByteArray("") << false;
    QTest::newRow("version 4") << QByteArray(used).replace(4, 1, "\x04") << false;
    QTest::newRow("version 5 in its high byte alone") << QByteArray(used).replace(4, 4, QByteArray::fromHex("00000005"))
                                                      << false;
    QTest::newRow("magic reversed") << QByteArray(used).replace(0, 4, QByteArray::fromHex("a0b0c0d0")) << false;
}

void tst_RecentCall_ENG_RecordStore::replacesInvalidFiles()
{
    QFETCH(const QByteArray, bytes);
    QFETCH(const bool, kept);
    m_fixture->write(kMissed, bytes);
    m_fixture->store();
    QCOMPARE(m_fixture->read(kMissed), kept ? bytes : freshFile());
    QCOMPARE(QDir(m_fixture->path() + QLatin1String("/phone")).entryList(QDir::Files | QDir::Hidden).size(), 3);
}

void tst_RecentCall_ENG_RecordStore::leavesWhatItCannotReplace()
{
    // A directory and a FIFO in the place of a file; the FIFO must not keep anybody waiting.
    QFile::remove(m_fixture->file(kMissed));
    QVERIFY(QDir().mkdir(m_fixture->file(kMissed)));
    QFile::remove(m_fixture->file(kDialed));
    QCOMPARE(::mkfifo(QFile::encodeName(m_fixture->file(kDialed)).constData(), 0600), 0);
    m_fixture->forgetSingletons();
    QVERIFY(m_fixture->add(kAnswered, "1").uid >= 0);
    QCOMPARE(m_fixture->add(kMissed, "2").uid, -1);
    QCOMPARE(m_fixture->uids(kMissed), QList<int>());
    QVERIFY(QFileInfo(m_fixture->file(kMissed)).isDir());

    // A file where the store directory would be.
    QTemporaryDir directory;
    qputenv("ZYN_LOCAL_APP_WRITE_PATH", QFile::encodeName(directory.path()));
    QVERIFY(QFile(directory.path() + QLatin1String("/phone")).open(QIODevice::WriteOnly));
    m_fixture->forgetSingletons();
    QCOMPARE(m_fixture->add(kAnswered, "3").uid, -1);
    QCOMPARE(QFileInfo(directory.path() + QLatin1String("/phone")).size(), 0);
}

void tst_RecentCall_ENG_RecordStore::losesNoCallWhenProcessesStartTogether_data()
{
    QTest::addColumn<QByteArray>("bytes");

    QTest::newRow("no files yet") << QByteArray();
    QTest::newRow("invalid files") << QByteArray("damaged");
}

void tst_RecentCall_ENG_RecordStore::losesNoCallWhenProcessesStartTogether()
{
    QFETCH(const QByteArray, bytes);
    constexpr int kRounds = 300;
    constexpr unsigned int kPatience = 60; // a process that is left alone at the barrier goes, in seconds
    QList<StoreFixture*> rounds;
    for (int round = 0; round < kRounds; ++round) {
        rounds.append(new StoreFixture);
        QVERIFY(QDir().mkdir(rounds.last()->path() + QLatin1String("/phone")));
        for (const auto category : zyn::kRecordLists) {
            if (!bytes.isNull())
                rounds.last()->write(category, bytes);
        }
    }
    SharedBarrier barrier(2);
    for (const auto category : {kAnswered, kMissed}) {
        if (::fork() != 0)
            continue;
        ::alarm(kPatience);
        int added = 0;
        for (const StoreFixture* round : std::as_const(rounds)) {
            qputenv("ZYN_LOCAL_APP_WRITE_PATH", QFile::encodeName(round->path()));
            StoreFixture::forgetSingletons();
            barrier.wait();
            added += StoreFixture::add(category, "112").uid >= 0;
        }
        ::_exit(added == kRounds ? EXIT_SUCCESS : EXIT_FAILURE);
    }
    for (int child = 0; child < 2; ++child) {
        int status = -1;
        ::wait(&status);
        QCOMPARE(status, EXIT_SUCCESS);
    }
    for (const StoreFixture* round : std::as_const(rounds)) {
        QCOMPARE(round->recordIn(kAnswered, 0).getPhoneNumber(), QStringLiteral("112"));
        QCOMPARE(round->recordIn(kMissed, 0).getPhoneNumber(), QStringLiteral("112"));
    }
    qDeleteAll(rounds);
}

void tst_RecentCall_ENG_RecordStore::writesACallIntoTheLowestFreeSlot()
{
    for (int i = 0; i < 4; ++i)
        m_fixture->add(kMissed, "1");
    QVERIFY(m_fixture->store().removeItem(m_fixture->recordIn(kMissed, 2)));
    const PHONE_ENG_RecentCall added = m_fixture->add(kMissed, "0123");
    QCOMPARE(added.slot, 2);
    QCOMPARE(added.uid, 4);

    QByteArray expected = freshFile();
    for (int slot = 0; slot < 4; ++slot)
        expected.replace(8 + 228 * slot, 228, zyn::bytesOf(m_fixture->recordIn(kMissed, slot)).toByteArray());
    QCOMPARE(m_fixture->read(kMissed), expected);
    QCOMPARE(expected.mid(464, 228), zyn::bytesOf(added).toByteArray());
    // The lists' slots do not touch each other.
    QCOMPARE(m_fixture->add(kAnswered, "1").slot, 0);
    QCOMPARE(m_fixture->add(kDialed, "1").slot, 0);
    QCOMPARE(m_fixture->add(kMissed, "1").slot, 4);
}

void tst_RecentCall_ENG_RecordStore::refusesACallForAFullList()
{
    m_fixture->setLimits(3, 0, 50);
    for (int slot = 0; slot < 3; ++slot)
        QCOMPARE(m_fixture->add(kAnswered, "1").slot, slot);
    const QByteArray full = m_fixture->read(kAnswered);
    PHONE_ENG_RecentCall refused = m_fixture->call(kAnswered, "2");
    QVERIFY(!m_fixture->store().addItem(refused));
    QCOMPARE(refused.slot, -1);
    QCOMPARE(refused.uid, 3);
    QCOMPARE(m_fixture->read(kAnswered), full);
    QCOMPARE(m_fixture->add(kMissed, "1").uid, -1);
    QCOMPARE(m_fixture->add(kDialed, "1").uid, 5);
    // Room for one more.
    QVERIFY(m_fixture->store().removeItem(m_fixture->recordIn(kAnswered, 1)));
    QCOMPARE(m_fixture->add(kAnswered, "3").slot, 1);
}

void tst_RecentCall_ENG_RecordStore::refusesCategoriesWithoutAList()
{
    for (const int category : {0, 4, 5, 6, -1, kLargest, -kLargest - 1}) {
        const auto value = RC_CALL_CATEGORY_T(category);
        QCOMPARE(m_fixture->add(value, "1").uid, -1);
        QVERIFY(!m_fixture->store().removeItem(m_fixture->call(value, "1")));
        QVERIFY(!m_fixture->store().removeItems(value));
        QCOMPARE(m_fixture->uids(value), QList<int>());
        QVERIFY(!QFile::exists(m_fixture->file(value)));
    }
    QCOMPARE(m_fixture->add(kAnswered, "1").slot, 0);
}

void tst_RecentCall_ENG_RecordStore::refusesSlotsBeyondTheList_data()
{
    QTest::addColumn<int>("slot");
    QTest::addColumn<bool>("accepted");

    QTest::newRow("the first") << 0 << true;
    QTest::newRow("the list's last") << 9 << true;
    QTest::newRow("the next list's first") << 10 << false;
    QTest::newRow("the file's last") << 49 << false;
    QTest::newRow("beyond the file") << 50 << false;
    QTest::newRow("-1") << -1 << false;
    QTest::newRow("the largest") << kLargest << false;
    QTest::newRow("the least") << -kLargest - 1 << false;
}

void tst_RecentCall_ENG_RecordStore::refusesSlotsBeyondTheList()
{
    QFETCH(const int, slot);
    m_fixture->setLimits(10, 50, 50);
    m_fixture->add(kMissed, "1");
    PHONE_ENG_RecentCall record = m_fixture->call(kAnswered, "1");
    record.slot = slot;
    const QByteArray before = m_fixture->read(kAnswered);
    QTEST(m_fixture->store().modifyItem(record), "accepted");
    QTEST(m_fixture->read(kAnswered) != before, "accepted");
    QTEST(m_fixture->store().removeItem(record), "accepted");
    QCOMPARE(m_fixture->read(kAnswered), before);
    // No bit of the missed list was cleared.
    QCOMPARE(m_fixture->add(kMissed, "2").slot, 1);
}

void tst_RecentCall_ENG_RecordStore::changesOneSlotInPlace()
{
    for (int i = 0; i < 5; ++i)
        m_fixture->add(kDialed, "1");
    QByteArray expected = m_fixture->read(kDialed);
    PHONE_ENG_RecentCall record = m_fixture->recordIn(kDialed, 3);
    record.readFlags = PHONE_ENG_RecentCall::kRead;
    record.reservedB = 0x55;
    QVERIFY(m_fixture->store().modifyItem(record));
    QCOMPARE(m_fixture->read(kDialed), expected.replace(692, 228, zyn::bytesOf(record).toByteArray()));
    QVERIFY(m_fixture->store().removeItem(record));
    QCOMPARE(m_fixture->read(kDialed), expected.replace(692, 228, blankSlot()));
    QFile::remove(m_fixture->file(kDialed));
    QVERIFY(!m_fixture->store().modifyItem(record));
    QVERIFY(!m_fixture->store().removeItem(record));
    QVERIFY(!QFile::exists(m_fixture->file(kDialed)));
}

void tst_RecentCall_ENG_RecordStore::removesOnlyWhatItKnows()
{
    m_fixture->add(kAnswered, "1");
    const PHONE_ENG_RecentCall missed = m_fixture->add(kMissed, "2");
    RecentCall_ENG_RecordStore::destroy();
    // A store that has read nothing knows of no slot in use.
    QVERIFY(m_fixture->store().removeItems(kMissed));
    QCOMPARE(m_fixture->uids(kMissed), QList<int>{missed.uid});
    QVERIFY(m_fixture->store().removeItems(kMissed));
    QCOMPARE(m_fixture->read(kMissed), freshFile());
    QCOMPARE(m_fixture->uids(kAnswered), QList<int>{0});
}

void tst_RecentCall_ENG_RecordStore::clearsEverything()
{
    for (const auto category : zyn::kRecordLists)
        m_fixture->add(category, "1");
    RecentCall_ENG_RecordStore::destroy();
    m_fixture->store();
    QFile::remove(m_fixture->file(kAnswered));
    m_fixture->store().clearAllData();
    QVERIFY(!QFile::exists(m_fixture->file(kAnswered)));
    QCOMPARE(m_fixture->read(kMissed), freshFile());
    QCOMPARE(m_fixture->read(kDialed), freshFile());
    const PHONE_ENG_RecentCall added = m_fixture->add(kDialed, "1");
    QCOMPARE(added.uid, 0);
    QCOMPARE(added.slot, 0);
}

void tst_RecentCall_ENG_RecordStore::listsTheNewestFirst()
{
    for (const char* number : {"111", "222", "333"})
        m_fixture->add(kDialed, number);
    QVERIFY(m_fixture->store().removeItem(m_fixture->recordIn(kDialed, 0)));
    m_fixture->add(kDialed, "444");
    QSortedList<PHONE_ENG_RecentCall> list;
    list.setAutoDelete(true);
    list.append(new PHONE_ENG_RecentCall);
    list.getFirst()->uid = 2;
    m_fixture->store().readDataList(list, kDialed);
    QStringList numbers;
    for (const PHONE_ENG_RecentCall* record : list)
        numbers += record->getPhoneNumber();
    // What the list held already is sorted with the rest, before its equals.
    QCOMPARE(numbers.join(u' '), QStringLiteral("444  333 222"));
}

void tst_RecentCall_ENG_RecordStore::goesOnCountingAfterTheLargestUid()
{
    PHONE_ENG_RecentCall record = m_fixture->call(kMissed, "1");
    record.uid = 41;
    record.slot = 0;
    QVERIFY(m_fixture->store().modifyItem(record));
    m_fixture->uids(kMissed);
    QCOMPARE(m_fixture->add(kMissed, "2").uid, 42);
    RecentCall_ENG_RecordStore::destroy();
    QCOMPARE(m_fixture->add(kDialed, "2").uid, 43);

    record.uid = kLargest;
    QVERIFY(m_fixture->store().modifyItem(record));
    m_fixture->uids(kMissed);
    QCOMPARE(m_fixture->add(kDialed, "3").uid, kLargest);
    QCOMPARE(m_fixture->add(kDialed, "4").uid, kLargest);
}

void tst_RecentCall_ENG_RecordStore::trustsNoSlotOrUidFromAFile()
{
    QByteArray bytes = freshFile();
    const int slots[] = {-1, kLargest, -kLargest - 1, 150, 159, 160};
    int place = 0;
    for (const int slot : slots) {
        PHONE_ENG_RecentCall record = m_fixture->call(kDialed, "1");
        record.uid = -5 - place;
        record.slot = slot;
        bytes.replace(8 + 228 * place++, 228, zyn::bytesOf(record).toByteArray());
    }
    m_fixture->write(kDialed, bytes);
    QCOMPARE(m_fixture->uids(kDialed), (QList<int>{-5, -6, -7, -8, -9, -10}));
    QCOMPARE(m_fixture->add(kDialed, "2").uid, 0);
}

void tst_RecentCall_ENG_RecordStore::readsDamagedFilesWithinTheirBounds()
{
    for (int i = 0; i < 5; ++i)
        m_fixture->add(kAnswered, "1");
    const QByteArray whole = m_fixture->read(kAnswered);
    for (qsizetype length = 0; length < 8 + 228 * 6; ++length) {
        m_fixture->write(kAnswered, whole.first(length));
        QCOMPARE(m_fixture->uids(kAnswered).size(), length < 8 ? 0 : std::min<qsizetype>((length - 8) / 228, 5));
    }
    for (int byte = 0; byte < 8; ++byte) {
        QByteArray flipped = whole;
        flipped[byte] = char(flipped[byte] ^ 0x40);
        m_fixture->write(kAnswered, flipped);
        QCOMPARE(m_fixture->uids(kAnswered), QList<int>());
    }
    m_fixture->write(kAnswered, whole + blankSlot().replace(64, 1, "\x01"));
    QCOMPARE(m_fixture->uids(kAnswered).size(), 5);
    // A limit that was lowered hides the slots beyond it.
    m_fixture->write(kAnswered, whole);
    m_fixture->setLimits(2, 50, 50);
    QCOMPARE(m_fixture->uids(kAnswered).size(), 2);
    // An in-use byte is any but zero.
    m_fixture->write(kAnswered, QByteArray(whole).replace(8 + 64, 1, "\x80"));
    QCOMPARE(m_fixture->uids(kAnswered).size(), 2);
}

void tst_RecentCall_ENG_RecordStore::tellsWhatItDoes()
{
    const QByteArray phone = QFile::encodeName(m_fixture->path()) + "/phone";
    m_fixture->setLimits(50, 50, 50);
    RecentCall_Setup::instance();
    StdoutCapture output;
    PHONE_ENG_RecentCall record = m_fixture->call(kMissed, "1");
    m_fixture->store().addItem(record);
    m_fixture->store().removeItem(record);
    record.slot = 99;
    m_fixture->store().removeItem(record);
    m_fixture->store().modifyItem(record);
    m_fixture->store().removeItems(kAnswered);
    m_fixture->uids(RC_CALL_CATEGORY_ALL);
    m_fixture->store().clearAllData();
    const QByteArray a = phone + "/rc_a";
    const QByteArray m = phone + "/rc_m";
    const QByteArray d = phone + "/rc_d";
    const QByteArray e = phone + "/rc_e";
    QCOMPARE(output.take(), a + m + d + m + m + "deleting item:to remove tiem:index0 pos:0" + m
                                   + "deleting item:to remove tiem:index0 pos:99" + a + e
                                   + "PHONE_ENG_RecentCallManager::saveCallList. cannot open file " + e + a + m + d);
}

void tst_RecentCall_ENG_RecordStore::failsCleanlyOnAFullDisk()
{
    for (int i = 0; i < 3; ++i)
        m_fixture->add(kAnswered, "1");
    const QByteArray before = m_fixture->read(kAnswered);
    QFile::remove(m_fixture->file(kMissed));
    RecentCall_ENG_RecordStore::destroy();
    {
        const ScopedFileSizeLimit limit(600); // inside slot 2
        QCOMPARE(m_fixture->uids(kAnswered), (QList<int>{2, 1, 0}));
        QVERIFY(!m_fixture->store().addItem(*std::make_unique<PHONE_ENG_RecentCall>(m_fixture->call(kAnswered, "2"))));
        QVERIFY(m_fixture->store().modifyItem(m_fixture->recordIn(kAnswered, 1)));
        QVERIFY(!QFile::exists(m_fixture->file(kMissed)));
    }
    QCOMPARE(m_fixture->read(kAnswered), before);
    QCOMPARE(QDir(m_fixture->path() + QLatin1String("/phone")).entryList(QDir::Files | QDir::Hidden).size(), 2);
    // The slot that could not be written is free still.
    QCOMPARE(m_fixture->add(kAnswered, "3").slot, 3);
}

QTEST_GUILESS_MAIN(tst_RecentCall_ENG_RecordStore)
#include "tst_RecentCall_ENG_RecordStore.moc"
