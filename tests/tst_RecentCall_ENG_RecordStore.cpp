// The recent calls on disk.
#include "support/ForkedChild.h"
#include "support/Scenario.h"
#include "support/StoreFixture.h"

#include <array>

#include <sys/socket.h>

using namespace Qt::StringLiterals;

namespace {

constexpr RC_CALL_CATEGORY_T kAnswered = RC_CALL_CATEGORY_ANSWERED;
constexpr RC_CALL_CATEGORY_T kMissed = RC_CALL_CATEGORY_MISSED;
constexpr RC_CALL_CATEGORY_T kDialed = RC_CALL_CATEGORY_DIALED;

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
            ::alarm(forkedChildTime()); // of the new process as well
            const bool isAdded = addToEach(other == 0 ? kAnswered : kMissed);
            if (other == 0)
                endForkedChild(isAdded ? EXIT_SUCCESS : EXIT_FAILURE);
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
        const auto record = [](Words w) {
            PHONE_ENG_RecentCall call = StoreFixture::call(listOf(w), "1");
            call.slot = w.value(1).toInt();
            call.uid = w.value(2).toInt();
            return call;
        };
        const auto add = [&](Words w) {
            PHONE_ENG_RecentCall call = record(w);
            return (store().addItem(call) ? u"%1:%2"_s : u"refused %1:%2"_s).arg(call.slot).arg(call.uid);
        };
        const auto uids = [](Words w) {
            QStringList texts;
            for (const int uid : StoreFixture::uids(listOf(w)))
                texts += QString::number(uid);
            return texts.join(u' ');
        };
        const auto put = [&](Words w) {
            const PHONE_ENG_RecentCall call = record({w[0], w[2], w[3]});
            m_fixture->patch(u"rc_m"_s, 8 + 228 * w[1].toInt(), zyn::bytesOf(call).toByteArray());
        };
        scenario::Verbs verbs = {
            {u"limits"_s, [](Words n) { StoreFixture::setLimits(n[0].toInt(), n[1].toInt(), n[2].toInt()); }},
            {u"restart"_s, &StoreFixture::forgetSingletons},
            {u"start"_s, [] { StoreFixture::forgetSingletons(), store(); }},
            {u"directory"_s, [&](Words w) { setDirectory(w[0]); }},
            {u"sh"_s, [&](Words w) { return scenario::shell(m_fixture->path() + u"/phone"_s, w); }},
            {u"put"_s, put},
            {u"patch"_s, [&](Words w) { m_fixture->patch(w[0], w[1].toInt(), QByteArray::fromHex(w[2].toLatin1())); }},
            {u"is-fresh"_s, [&](Words w) { return m_fixture->read(w[0]) == freshList(); }},
            {u"add"_s, add},
            {u"modify"_s, [&](Words w) { return store().modifyItem(record(w)); }},
            {u"remove"_s, [&](Words w) { return store().removeItem(record(w)); }},
            {u"empty"_s, [&](Words w) { return store().removeItems(listOf(w)); }},
            {u"clear"_s, [] { store().clearAllData(); }},
            {u"uids"_s, uids},
            {u"file"_s, [&](Words w) { return shown(m_fixture->read(listOf(w))); }},
        };
        verbs.emplace(u"says"_s, [verbs, this](Words w) {
            StdoutCapture output;
            verbs.at(w[0])(w.mid(1));
            return QString::fromUtf8(output.take()).replace(m_fixture->path() + u"/phone"_s, u"@"_s);
        });
        scenario::play(verbs);
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

private:
    /// Sets the place of the store, "@" for the test's folder.
    void setDirectory(QString text) const
    {
        qputenv("ZYN_LOCAL_APP_WRITE_PATH", scenario::bytes(text.replace(u'@', m_fixture->path())));
        StoreFixture::forgetSingletons();
    }
    static RecentCall_ENG_RecordStore& store() { return StoreFixture::store(); }
};

QTEST_GUILESS_MAIN(tst_RecentCall_ENG_RecordStore)
#include "tst_RecentCall_ENG_RecordStore.moc"
