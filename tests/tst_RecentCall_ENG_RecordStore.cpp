// The recent calls on disk.
#include "support/Scenario.h"
#include "support/ScopedFileSizeLimit.h"
#include "support/StoreFixture.h"

#include <array>

#include <sys/socket.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

constexpr RC_CALL_CATEGORY_T kAnswered = RC_CALL_CATEGORY_ANSWERED;
constexpr RC_CALL_CATEGORY_T kMissed = RC_CALL_CATEGORY_MISSED;
constexpr RC_CALL_CATEGORY_T kDialed = RC_CALL_CATEGORY_DIALED;
constexpr char kCannotOpen[] = "PHONE_ENG_RecentCallManager::saveCallList. cannot open file ";

RC_CALL_CATEGORY_T listOf(const QStringList& words)
{
    const auto list = QStringList{u"none"_s, u"answered"_s, u"missed"_s, u"dialed"_s}.indexOf(words[0]);
    return RC_CALL_CATEGORY_T(list < 0 ? words[0].toInt() : int(list));
}

/// The slots of a list's file that are not blank, each as slot:uid.
QString shown(const QByteArray& file)
{
    QStringList calls;
    for (int slot = 0; slot < 50 && !file.isEmpty(); ++slot) {
        if (file.mid(8 + 228 * slot, 228) != freshList().mid(8, 228))
            calls += u"%1:%2"_s.arg(slot).arg(zyn::RecordFile::at(file, slot).uid);
    }
    return file.isEmpty() ? u"missing"_s : calls.join(u' ');
}

} // namespace

class tst_RecentCall_ENG_RecordStore : public StoreTest<StoreFixture>
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        begin();
        m_fixture->startAfresh();
        m_fixture->forgetSingletons();
    }
    void cleanup() { end(); }

    void findsItsDirectory()
    {
        const auto start = [](const QString& phone, const QByteArray& value) {
            StoreFixture::forgetSingletons();
            QDir(phone).removeRecursively();
            qputenv("ZYN_LOCAL_APP_WRITE_PATH", value);
            store();
            return QDir(phone).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden).join(u' ');
        };
        QCOMPARE(start(m_fixture->file(u""_s), " \t" + m_fixture->path().toUtf8() + "\n "), u"rc_a rc_d rc_m"_s);
        for (const auto category : zyn::kRecordLists)
            QCOMPARE(m_fixture->read(category), freshList());
        for (const char* value : {"", "  "})
            QCOMPARE(start(u"/tmp/phone"_s, value), u"rc_a rc_d rc_m"_s);
        QDir(u"/tmp/phone"_s).removeRecursively();
    }

    void replacesInvalidFiles()
    {
        const QByteArray valid = freshList().replace(8 + 64, 1, "\1");
        const auto with = [&](int offset, const char* hex) {
            return QByteArray(valid).replace(offset, 4, QByteArray::fromHex(hex));
        };
        // Too short, too long, a version with 5 in its high byte alone, and a magic reversed.
        for (const QByteArray& bytes :
             {valid, valid.chopped(1), valid + '\0', with(4, "00000005"), with(0, "a0b0c0d0")}) {
            m_fixture->write(kMissed, bytes);
            m_fixture->forgetSingletons();
            store();
            QCOMPARE(m_fixture->read(kMissed), bytes == valid ? valid : freshList());
            QCOMPARE(m_fixture->files(), u"rc_a rc_d rc_m"_s);
        }
    }

    void leavesWhatItCannotReplace()
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
        QVERIFY(uids.isEmpty() && QFileInfo(m_fixture->file(kMissed)).isDir());

        // A file where the store directory would be.
        const QString file = m_fixture->path() + u"/a/phone"_s;
        QVERIFY(QDir(m_fixture->path()).mkdir(u"a"_s) && QFile(file).open(QIODevice::WriteOnly));
        qputenv("ZYN_LOCAL_APP_WRITE_PATH", m_fixture->path().toUtf8() + "/a");
        m_fixture->forgetSingletons();
        QCOMPARE(m_fixture->add(kAnswered, "3").uid, -1);
        QVERIFY(QFileInfo(file).isFile() && QFileInfo(file).size() == 0);
    }

    void losesNoCallWhenProcessesStartTogether()
    {
        std::array<StoreFixture, 600> rounds; // without files and with invalid ones in turn
        for (size_t round = 0; round < rounds.size(); ++round) {
            QVERIFY(QDir().mkdir(rounds[round].path() + u"/phone"_s));
            for (size_t list = 0; round % 2 && list < std::size(zyn::kRecordLists); ++list)
                rounds[round].write(zyn::kRecordLists[list], "damaged");
        }
        int pair[2];
        QVERIFY(::socketpair(AF_UNIX, SOCK_STREAM, 0, pair) == 0);
        const zyn::posix::UniqueFd ends[] = {zyn::posix::UniqueFd(pair[0]), zyn::posix::UniqueFd(pair[1])};
        const auto addToEach = [&](RC_CALL_CATEGORY_T category) {
            return std::ranges::all_of(rounds, [&](const StoreFixture& round) {
                qputenv("ZYN_LOCAL_APP_WRITE_PATH", QFile::encodeName(round.path()));
                StoreFixture::forgetSingletons();
                char byte = 0; // the other process is here, too
                ::send(ends[category == kMissed].get(), &byte, 1, MSG_NOSIGNAL);
                ::recv(ends[category == kMissed].get(), &byte, 1, 0);
                return StoreFixture::add(category, "112").uid >= 0;
            });
        };
        QVERIFY(inAnotherProcess([&] {
            const pid_t other = ::fork();
            ::alarm(60); // of the new process as well
            const bool isAdded = addToEach(other == 0 ? kAnswered : kMissed);
            if (other == 0)
                ::_exit(isAdded ? EXIT_SUCCESS : EXIT_FAILURE);
            int status = -1;
            return isAdded && ::waitpid(other, &status, 0) == other && status == EXIT_SUCCESS;
        }));
        for (const StoreFixture& round : rounds) {
            QCOMPARE(round.recordIn(kAnswered, 0).getPhoneNumber(), u"112"_s);
            QCOMPARE(round.recordIn(kMissed, 0).getPhoneNumber(), u"112"_s);
        }
    }

    void changesOneSlotInPlace()
    {
        QByteArray expected = freshList();
        const auto put = [&](int slot, const PHONE_ENG_RecentCall& record) {
            return expected.replace(8 + 228 * slot, 228, zyn::bytesOf(record).toByteArray());
        };
        for (int slot = 0; slot < 4; ++slot)
            put(slot, m_fixture->add(kMissed, "0123"));
        QCOMPARE(m_fixture->read(kMissed), expected);
        QCOMPARE(expected.mid(464, 4), "0123");
        PHONE_ENG_RecentCall record = m_fixture->recordIn(kMissed, 2);
        record.readFlags = PHONE_ENG_RecentCall::kRead;
        record.reservedB = 0x55;
        QVERIFY(store().modifyItem(record));
        QCOMPARE(m_fixture->read(kMissed), put(2, record));
        QVERIFY(store().removeItem(record));
        QCOMPARE(m_fixture->read(kMissed), put(2, PHONE_ENG_RecentCall()));
        QCOMPARE(m_fixture->add(kMissed, "1").slot, 2); // the lowest free slot
    }

    void keepsCalls_data() { scenario::addRows(QFINDTESTDATA("data/record_store.txt")); }
    void keepsCalls()
    {
        using Words = const QStringList&;
        const auto record = [](Words words) {
            PHONE_ENG_RecentCall call = StoreFixture::call(listOf(words), "1");
            call.slot = words.value(1).toInt();
            call.uid = words.value(2).toInt();
            return call;
        };
        const auto add = [&](Words words) {
            PHONE_ENG_RecentCall call = record(words);
            return (store().addItem(call) ? u"%1:%2"_s : u"refused %1:%2"_s).arg(call.slot).arg(call.uid);
        };
        const auto uids = [](Words words) {
            QStringList texts;
            for (const int uid : StoreFixture::uids(listOf(words)))
                texts += QString::number(uid);
            return texts.join(u' ');
        };
        const auto put = [&](Words words) {
            const PHONE_ENG_RecentCall call = record({words[0], words[2], words[3]});
            const QByteArray bytes = zyn::bytesOf(call).toByteArray();
            m_fixture->write(kMissed, m_fixture->read(kMissed).replace(8 + 228 * words[1].toInt(), 228, bytes));
        };
        scenario::play({
            {u"limits"_s, [](Words n) { StoreFixture::setLimits(n[0].toInt(), n[1].toInt(), n[2].toInt()); }},
            {u"restart"_s, &StoreFixture::forgetSingletons},
            {u"lose"_s, [&](Words words) { return QFile::remove(m_fixture->file(listOf(words))); }},
            {u"put"_s, put},
            {u"add"_s, add},
            {u"modify"_s, [&](Words words) { return store().modifyItem(record(words)); }},
            {u"remove"_s, [&](Words words) { return store().removeItem(record(words)); }},
            {u"empty"_s, [&](Words words) { return store().removeItems(listOf(words)); }},
            {u"clear"_s, [] { store().clearAllData(); }},
            {u"uids"_s, uids},
            {u"file"_s, [&](Words words) { return shown(m_fixture->read(listOf(words))); }},
        });
    }

    void listsTheNewestFirst()
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
        QString numbers;
        for (const PHONE_ENG_RecentCall* record : list)
            numbers += record->getPhoneNumber() + u' ';
        QCOMPARE(numbers, u"444  333 222 "_s); // what the list held already comes before its equals
    }

    void readsDamagedFilesWithinTheirBounds()
    {
        for (int i = 0; i < 5; ++i)
            m_fixture->add(kAnswered, "1");
        const QByteArray whole = m_fixture->read(kAnswered);
        const auto countIn = [&](const QByteArray& bytes) {
            m_fixture->write(kAnswered, bytes);
            return m_fixture->uids(kAnswered).size();
        };
        for (qsizetype length = 0; length < 8 + 228 * 6; ++length) // a record counts from its in-use byte on
            QCOMPARE(countIn(whole.first(length)), length < 8 ? 0 : std::min<qsizetype>((length - 8 + 163) / 228, 5));
        for (int byte = 0; byte < 8; ++byte)
            QCOMPARE(countIn(QByteArray(whole).replace(byte, 1, QByteArray(1, char(whole[byte] ^ 0x40)))), 0);
        QCOMPARE(countIn(whole + whole.sliced(8, 228)), 5);
        m_fixture->setLimits(2, 50, 50); // a limit that was lowered hides the slots beyond it
        QCOMPARE(countIn(whole), 2);
        QCOMPARE(countIn(QByteArray(whole).replace(8 + 64, 1, "\x80")), 2); // an in-use byte is any but zero

        // What is left of a record, behind a slot that is free but not blank.
        PHONE_ENG_RecentCall record = m_fixture->call(kMissed, "112");
        record.setDisplayName(u"Dora"_s);
        const QByteArray call = zyn::bytesOf(record).toByteArray();
        m_fixture->write(kMissed, whole.first(8) + QByteArray(call).replace(64, 1, "\0", 1) + call.first(65));
        QSortedList<PHONE_ENG_RecentCall> list;
        list.setAutoDelete(true);
        store().readDataList(list, kMissed);
        QCOMPARE(list.count(), 1);
        QCOMPARE(zyn::bytesOf(*list.getFirst()).toByteArray(), call.first(65) + freshList().sliced(8 + 65, 228 - 65));
    }

    void printsWhatItDoes()
    {
        const QByteArray phone = m_fixture->path().toUtf8() + "/phone";
        const QByteArray a = phone + "/rc_a";
        const QByteArray m = phone + "/rc_m";
        const QByteArray d = phone + "/rc_d";
        const QByteArray e = phone + "/rc_e";
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
        QCOMPARE(output.take(), a + m + d + m + m + "deleting item:to remove tiem:index0 pos:0" + m
                                    + "deleting item:to remove tiem:index0 pos:99" + a + e + kCannotOpen + e + a + m
                                    + d);

        // The settings are read for a valid list only.
        const auto printedFor = [&](qsizetype length) {
            m_fixture->write(kMissed, freshList().first(length));
            RecentCall_Setup::destroy();
            StdoutCapture reading;
            m_fixture->uids(kMissed);
            return reading.take();
        };
        QCOMPARE(printedFor(4), m);
        QCOMPARE(printedFor(11'408), m + "RC settings: 50, 50,50,5,3");
    }

    void failsCleanlyOnAFullDisk()
    {
        for (int i = 0; i < 3; ++i)
            m_fixture->add(kAnswered, "1");
        const QByteArray before = m_fixture->read(kAnswered);
        QFile::remove(m_fixture->file(kMissed));
        RecentCall_ENG_RecordStore::destroy();
        {
            const ScopedFileSizeLimit limit(600); // inside slot 2
            QCOMPARE(m_fixture->uids(kAnswered), (QList{2, 1, 0}));
            QCOMPARE(m_fixture->add(kAnswered, "2").uid, -1);
            QVERIFY(store().modifyItem(m_fixture->recordIn(kAnswered, 1)));
        }
        QCOMPARE(m_fixture->read(kAnswered), before);
        QCOMPARE(m_fixture->files(), u"rc_a rc_d"_s);
        QCOMPARE(m_fixture->add(kAnswered, "3").slot, 3); // the slot that could not be written is free still
    }

private:
    static RecentCall_ENG_RecordStore& store() { return StoreFixture::store(); }
};

QTEST_GUILESS_MAIN(tst_RecentCall_ENG_RecordStore)
#include "tst_RecentCall_ENG_RecordStore.moc"
