// The recent calls on disk.
#include "support/Descriptors.h"
#include "support/ScopedFileSizeLimit.h"
#include "support/StdoutCapture.h"
#include "support/StoreFixture.h"

#include <QtTest/QTest>

#include <array>
#include <limits>
#include <optional>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>

using namespace Qt::StringLiterals;

namespace {

constexpr RC_CALL_CATEGORY_T kAnswered = RC_CALL_CATEGORY_ANSWERED;
constexpr RC_CALL_CATEGORY_T kMissed = RC_CALL_CATEGORY_MISSED;
constexpr RC_CALL_CATEGORY_T kDialed = RC_CALL_CATEGORY_DIALED;
constexpr qsizetype kShownOutput = 1000;
constexpr int kLargest = std::numeric_limits<int>::max();
constexpr char kCannotOpen[] = "PHONE_ENG_RecentCallManager::saveCallList. cannot open file ";

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

/// Waits until the process at the other end of the connection has come here, too.
void meet(int connection)
{
    char byte = 0;
    ::send(connection, &byte, 1, MSG_NOSIGNAL);
    ::recv(connection, &byte, 1, 0);
}

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

    void findsItsDirectory();
    void replacesInvalidFiles();
    void leavesWhatItCannotReplace();
    void losesNoCallWhenProcessesStartTogether();
    void changesOneSlotInPlace();
    void refusesACallForAFullList();
    void refusesCategoriesWithoutAList();
    void refusesSlotsBeyondTheList();
    void clearsWhatItKnows();
    void listsTheNewestFirst();
    void goesOnCountingAfterTheLargestUid();
    void readsDamagedFilesWithinTheirBounds();
    void readsWhatIsLeftOfARecord();
    void asksForTheLimitOfASoundListOnly_data();
    void asksForTheLimitOfASoundListOnly();
    void tellsWhatItDoes();
    void failsCleanlyOnAFullDisk();

private:
    static RecentCall_ENG_RecordStore& store() { return StoreFixture::store(); }

    std::optional<StdoutCapture> m_output;
    std::optional<StoreFixture> m_fixture;
    qsizetype m_descriptors = 0;
};

void tst_RecentCall_ENG_RecordStore::findsItsDirectory()
{
    const auto start = [](const QString& phone, const QByteArray& value) {
        StoreFixture::forgetSingletons();
        QDir(phone).removeRecursively();
        qputenv("ZYN_LOCAL_APP_WRITE_PATH", value);
        StoreFixture::store();
        return QDir(phone).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden).join(u' ');
    };
    const QString phone = u"/phone"_s;
    const QByteArray blanksAroundIt = " \t" + m_fixture->path().toUtf8() + "\n ";
    QCOMPARE(start(m_fixture->path() + phone, blanksAroundIt), u"rc_a rc_d rc_m"_s);
    for (const auto category : zyn::kRecordLists)
        QCOMPARE(m_fixture->read(category), freshFile());
    for (const char* value : {"", "  "})
        QCOMPARE(start(u"/tmp/phone"_s, value), u"rc_a rc_d rc_m"_s);
    QDir(u"/tmp/phone"_s).removeRecursively();
}

void tst_RecentCall_ENG_RecordStore::replacesInvalidFiles()
{
    QByteArray valid = freshFile();
    valid[8 + 64] = 1;
    const auto with = [&](int offset, const char* hex) {
        return QByteArray(valid).replace(offset, 4, QByteArray::fromHex(hex));
    };
    // Too short, too long, a version with 5 in its high byte alone, and a magic reversed.
    for (const QByteArray& bytes : {valid, valid.chopped(1), valid + '\0', with(4, "00000005"), with(0, "a0b0c0d0")}) {
        m_fixture->write(kMissed, bytes);
        m_fixture->forgetSingletons();
        store();
        QCOMPARE(m_fixture->read(kMissed), bytes == valid ? valid : freshFile());
        QCOMPARE(QDir(m_fixture->path() + u"/phone"_s).entryList(QDir::Files | QDir::Hidden).size(), 3);
    }
}

void tst_RecentCall_ENG_RecordStore::leavesWhatItCannotReplace()
{
    // A directory and a FIFO in the place of a file; the FIFO must not keep anybody waiting.
    const QByteArray missed = QFile::encodeName(m_fixture->file(kMissed));
    QVERIFY(QFile::remove(m_fixture->file(kMissed)) && QDir().mkdir(m_fixture->file(kMissed)));
    QVERIFY(QFile::remove(m_fixture->file(kDialed)));
    QCOMPARE(::mkfifo(QFile::encodeName(m_fixture->file(kDialed)).constData(), 0600), 0);
    m_fixture->forgetSingletons();
    QVERIFY(m_fixture->add(kAnswered, "1").uid >= 0);
    QCOMPARE(m_fixture->add(kMissed, "2").uid, -1);
    StdoutCapture output;
    const QList<int> uids = m_fixture->uids(kMissed);
    QCOMPARE(output.take(), missed + kCannotOpen + missed);
    QCOMPARE(uids, QList<int>());
    QVERIFY(QFileInfo(m_fixture->file(kMissed)).isDir());

    // A file where the store directory would be.
    const QString file = m_fixture->path() + u"/a/phone"_s;
    QVERIFY(QDir(m_fixture->path()).mkdir(u"a"_s) && QFile(file).open(QIODevice::WriteOnly));
    qputenv("ZYN_LOCAL_APP_WRITE_PATH", m_fixture->path().toUtf8() + "/a");
    m_fixture->forgetSingletons();
    QCOMPARE(m_fixture->add(kAnswered, "3").uid, -1);
    QVERIFY(QFileInfo(file).isFile() && QFileInfo(file).size() == 0);
}

void tst_RecentCall_ENG_RecordStore::losesNoCallWhenProcessesStartTogether()
{
    constexpr int kRounds = 600;           // without files and with invalid ones in turn
    constexpr unsigned int kPatience = 60; // a process that is left alone goes, in seconds
    std::array<StoreFixture, kRounds> rounds;
    for (size_t round = 0; round < kRounds; ++round) {
        QVERIFY(QDir().mkdir(rounds[round].path() + u"/phone"_s));
        for (size_t list = 0; round % 2 && list < std::size(zyn::kRecordLists); ++list)
            rounds[round].write(zyn::kRecordLists[list], "damaged");
    }
    int pair[2];
    QVERIFY(::socketpair(AF_UNIX, SOCK_STREAM, 0, pair) == 0);
    const zyn::posix::UniqueFd ends[] = {zyn::posix::UniqueFd(pair[0]), zyn::posix::UniqueFd(pair[1])};
    for (const auto category : {kAnswered, kMissed}) {
        if (::fork() != 0)
            continue;
        ::alarm(kPatience);
        int added = 0;
        for (const StoreFixture& round : rounds) {
            qputenv("ZYN_LOCAL_APP_WRITE_PATH", QFile::encodeName(round.path()));
            StoreFixture::forgetSingletons();
            meet(ends[category == kMissed].get());
            added += StoreFixture::add(category, "112").uid >= 0;
        }
        ::_exit(added == kRounds ? EXIT_SUCCESS : EXIT_FAILURE);
    }
    for (int child = 0; child < 2; ++child) {
        int status = -1;
        ::wait(&status);
        QCOMPARE(status, EXIT_SUCCESS);
    }
    for (const StoreFixture& round : rounds) {
        QCOMPARE(round.recordIn(kAnswered, 0).getPhoneNumber(), u"112"_s);
        QCOMPARE(round.recordIn(kMissed, 0).getPhoneNumber(), u"112"_s);
    }
}

void tst_RecentCall_ENG_RecordStore::changesOneSlotInPlace()
{
    QByteArray expected = freshFile();
    const auto put = [&](int slot, const PHONE_ENG_RecentCall& record) {
        return expected.replace(8 + 228 * slot, 228, zyn::bytesOf(record).toByteArray());
    };
    for (int slot = 0; slot < 4; ++slot)
        put(slot, m_fixture->add(kMissed, "1"));
    PHONE_ENG_RecentCall record = m_fixture->recordIn(kMissed, 2);
    record.readFlags = PHONE_ENG_RecentCall::kRead;
    record.reservedB = 0x55;
    QVERIFY(store().modifyItem(record));
    QCOMPARE(m_fixture->read(kMissed), put(2, record));
    QVERIFY(store().removeItem(record));
    QCOMPARE(m_fixture->read(kMissed), put(2, PHONE_ENG_RecentCall()));
    const PHONE_ENG_RecentCall added = m_fixture->add(kMissed, "0123"); // to the lowest free slot
    QCOMPARE(added.slot, 2);
    QCOMPARE(added.uid, 4);
    QCOMPARE(m_fixture->read(kMissed), put(2, added));
    QCOMPARE(expected.mid(464, 4), "0123");
    // The lists' slots do not touch each other.
    QCOMPARE(m_fixture->add(kAnswered, "1").slot, 0);
    QCOMPARE(m_fixture->add(kDialed, "1").slot, 0);
    QCOMPARE(m_fixture->add(kMissed, "1").slot, 4);

    QFile::remove(m_fixture->file(kMissed));
    QVERIFY(!store().modifyItem(record) && !store().removeItem(record));
    QVERIFY(!QFile::exists(m_fixture->file(kMissed)));
}

void tst_RecentCall_ENG_RecordStore::refusesACallForAFullList()
{
    m_fixture->setLimits(3, 0, 50);
    for (int slot = 0; slot < 3; ++slot)
        QCOMPARE(m_fixture->add(kAnswered, "1").slot, slot);
    const QByteArray full = m_fixture->read(kAnswered);
    PHONE_ENG_RecentCall refused = m_fixture->call(kAnswered, "2");
    QVERIFY(!store().addItem(refused));
    QCOMPARE(refused.slot, -1);
    QCOMPARE(refused.uid, 3);
    QCOMPARE(m_fixture->read(kAnswered), full);
    QCOMPARE(m_fixture->add(kMissed, "1").uid, -1);
    QCOMPARE(m_fixture->add(kDialed, "1").uid, 5);
    QVERIFY(store().removeItem(m_fixture->recordIn(kAnswered, 1)));
    QCOMPARE(m_fixture->add(kAnswered, "3").slot, 1);
}

void tst_RecentCall_ENG_RecordStore::refusesCategoriesWithoutAList()
{
    for (const int category : {0, 4, 5, 6, -1, kLargest, -kLargest - 1}) {
        const auto value = RC_CALL_CATEGORY_T(category);
        QCOMPARE(m_fixture->add(value, "1").uid, -1);
        QVERIFY(!store().removeItem(m_fixture->call(value, "1")) && !store().removeItems(value));
        QCOMPARE(m_fixture->uids(value), QList<int>());
        QVERIFY(!QFile::exists(m_fixture->file(value)));
    }
    QCOMPARE(m_fixture->add(kAnswered, "1").slot, 0);
}

void tst_RecentCall_ENG_RecordStore::refusesSlotsBeyondTheList()
{
    m_fixture->setLimits(10, 50, 50);
    m_fixture->add(kMissed, "1");
    PHONE_ENG_RecentCall record = m_fixture->call(kAnswered, "1");
    const QByteArray before = m_fixture->read(kAnswered);
    for (const int slot : {0, 9, 10, 49, 50, -1, kLargest, -kLargest - 1}) {
        record.slot = slot;
        const bool accepted = slot == 0 || slot == 9;
        QCOMPARE(store().modifyItem(record), accepted);
        QCOMPARE(m_fixture->read(kAnswered) != before, accepted);
        QCOMPARE(store().removeItem(record), accepted);
        QCOMPARE(m_fixture->read(kAnswered), before);
    }
    // No bit of the missed list was cleared.
    QCOMPARE(m_fixture->add(kMissed, "2").slot, 1);
}

void tst_RecentCall_ENG_RecordStore::clearsWhatItKnows()
{
    for (const auto category : {kAnswered, kMissed})
        m_fixture->add(category, "1");
    RecentCall_ENG_RecordStore::destroy();
    // A store that has read nothing knows of no slot in use.
    QVERIFY(store().removeItems(kMissed));
    QCOMPARE(m_fixture->uids(kMissed), QList<int>{1});
    QVERIFY(store().removeItems(kMissed));
    QCOMPARE(m_fixture->read(kMissed), freshFile());
    QCOMPARE(m_fixture->uids(kAnswered), QList<int>{0});

    // To clear all it need not know.
    for (const auto category : {kDialed, kMissed})
        m_fixture->add(category, "1");
    RecentCall_ENG_RecordStore::destroy();
    m_fixture->uids(kDialed);
    QFile::remove(m_fixture->file(kAnswered));
    store().clearAllData();
    QVERIFY(!QFile::exists(m_fixture->file(kAnswered)));
    QCOMPARE(m_fixture->read(kMissed) + m_fixture->read(kDialed), freshFile() + freshFile());
    const PHONE_ENG_RecentCall added = m_fixture->add(kDialed, "1");
    QCOMPARE(std::pair(added.uid, added.slot), std::pair(0, 0));
}

void tst_RecentCall_ENG_RecordStore::listsTheNewestFirst()
{
    for (const char* number : {"111", "222", "333"})
        m_fixture->add(kDialed, number);
    QVERIFY(store().removeItem(m_fixture->recordIn(kDialed, 0)));
    m_fixture->add(kDialed, "444");
    QSortedList<PHONE_ENG_RecentCall> list;
    list.setAutoDelete(true);
    list.append(new PHONE_ENG_RecentCall);
    list.getFirst()->uid = 2;
    store().readDataList(list, kDialed);
    QStringList numbers;
    for (const PHONE_ENG_RecentCall* record : list)
        numbers += record->getPhoneNumber();
    // What the list held already is sorted with the rest, before its equals.
    QCOMPARE(numbers.join(u' '), u"444  333 222"_s);
}

void tst_RecentCall_ENG_RecordStore::goesOnCountingAfterTheLargestUid()
{
    PHONE_ENG_RecentCall record = m_fixture->call(kMissed, "1");
    // Neither the slots nor the uids of a file are trusted.
    QByteArray bytes = freshFile();
    int place = 0;
    for (const int slot : {-1, kLargest, -kLargest - 1, 150, 159, 160}) {
        record.uid = -5 - place;
        record.slot = slot;
        bytes.replace(8 + 228 * place++, 228, zyn::bytesOf(record).toByteArray());
    }
    m_fixture->write(kMissed, bytes);
    QCOMPARE(m_fixture->uids(kMissed), (QList<int>{-5, -6, -7, -8, -9, -10}));
    QCOMPARE(m_fixture->add(kDialed, "2").uid, 0);

    record.slot = 0;
    const auto nextAfter = [&](int uid) {
        record.uid = uid;
        store().modifyItem(record);
        m_fixture->uids(kMissed);
        return m_fixture->add(kDialed, "2").uid;
    };
    QCOMPARE(nextAfter(41), 42);
    RecentCall_ENG_RecordStore::destroy();
    QCOMPARE(m_fixture->add(kDialed, "2").uid, 43);
    QCOMPARE(nextAfter(44), 45); // 44 would have been the next
    QCOMPARE(nextAfter(kLargest), kLargest);
    QCOMPARE(m_fixture->add(kDialed, "4").uid, kLargest);
}

void tst_RecentCall_ENG_RecordStore::readsDamagedFilesWithinTheirBounds()
{
    for (int i = 0; i < 5; ++i)
        m_fixture->add(kAnswered, "1");
    const QByteArray whole = m_fixture->read(kAnswered);
    for (qsizetype length = 0; length < 8 + 228 * 6; ++length) {
        // A record counts from its in-use byte on.
        m_fixture->write(kAnswered, whole.first(length));
        QCOMPARE(m_fixture->uids(kAnswered).size(), length < 8 ? 0 : std::min<qsizetype>((length - 8 + 163) / 228, 5));
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

void tst_RecentCall_ENG_RecordStore::readsWhatIsLeftOfARecord()
{
    PHONE_ENG_RecentCall record = m_fixture->call(kMissed, "112");
    record.uid = 7;
    record.setDisplayName(u"Dora"_s);
    // Behind a slot that is free but not blank.
    PHONE_ENG_RecentCall leftover = record;
    leftover.inUse = 0;
    const QByteArray whole = zyn::bytesOf(record).toByteArray();
    store();
    const QByteArray bytes = freshFile().first(8) + zyn::bytesOf(leftover).toByteArray() + whole;
    m_fixture->write(kMissed, bytes.chopped(228 - 65));
    QSortedList<PHONE_ENG_RecentCall> list;
    list.setAutoDelete(true);
    store().readDataList(list, kMissed);
    QCOMPARE(list.count(), 1);
    QCOMPARE(zyn::bytesOf(*list.getFirst()).toByteArray(), whole.first(65) + blankSlot().sliced(65));
}

void tst_RecentCall_ENG_RecordStore::asksForTheLimitOfASoundListOnly_data()
{
    QTest::addColumn<int>("length");
    QTest::addColumn<bool>("asks");
    QTest::newRow("a missing file") << -1 << false;
    QTest::newRow("half a header") << 4 << false;
    QTest::newRow("a sound file") << 11'408 << true;
}

void tst_RecentCall_ENG_RecordStore::asksForTheLimitOfASoundListOnly()
{
    QFETCH(int, length);
    QFETCH(bool, asks);
    store();
    m_fixture->write(kMissed, freshFile().first(std::max(length, 0)));
    if (length < 0)
        QVERIFY(QFile::remove(m_fixture->file(kMissed)));
    RecentCall_Setup::destroy();
    const QByteArray path = QFile::encodeName(m_fixture->file(kMissed));
    StdoutCapture output;
    m_fixture->uids(kMissed);
    QCOMPARE(output.take(),
             path + (length < 0 ? kCannotOpen + path : QByteArray()) + (asks ? "RC settings: 50, 50,50,5,3" : ""));
}

void tst_RecentCall_ENG_RecordStore::tellsWhatItDoes()
{
    const QByteArray phone = m_fixture->path().toUtf8() + "/phone";
    m_fixture->setLimits(50, 50, 50);
    RecentCall_Setup::instance();
    StdoutCapture output;
    PHONE_ENG_RecentCall record = m_fixture->call(kMissed, "1");
    store().addItem(record);
    store().removeItem(record);
    record.slot = 99;
    store().removeItem(record);
    store().modifyItem(record);
    store().removeItems(kAnswered);
    m_fixture->uids(RC_CALL_CATEGORY_ALL);
    store().clearAllData();
    const QByteArray a = phone + "/rc_a";
    const QByteArray m = phone + "/rc_m";
    const QByteArray d = phone + "/rc_d";
    const QByteArray e = phone + "/rc_e";
    QCOMPARE(output.take(), a + m + d + m + m + "deleting item:to remove tiem:index0 pos:0" + m
                                + "deleting item:to remove tiem:index0 pos:99" + a + e + kCannotOpen + e + a + m + d);
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
        QVERIFY(!store().addItem(*std::make_unique<PHONE_ENG_RecentCall>(m_fixture->call(kAnswered, "2"))));
        QVERIFY(store().modifyItem(m_fixture->recordIn(kAnswered, 1)));
        QVERIFY(!QFile::exists(m_fixture->file(kMissed)));
    }
    QCOMPARE(m_fixture->read(kAnswered), before);
    QCOMPARE(QDir(m_fixture->path() + u"/phone"_s).entryList(QDir::Files | QDir::Hidden).size(), 2);
    // The slot that could not be written is free still.
    QCOMPARE(m_fixture->add(kAnswered, "3").slot, 3);
}

QTEST_GUILESS_MAIN(tst_RecentCall_ENG_RecordStore)
#include "tst_RecentCall_ENG_RecordStore.moc"
