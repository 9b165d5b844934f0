// The requests to the recent-call service: what they send, and what they make of every answer.
#include "recentcall/utility/PHONE_RecentCall.h"
#include "recentcall/utility/PHONE_RecentCallInterface.h"
#include "recentcall/utility/RC_Interface.h"
#include "support/Descriptors.h"
#include "support/ScriptedService.h"
#include "support/StdoutCapture.h"
#include "support/StoreFixture.h"

#include <QtTest/QTest>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr char kSocketPath[] = "/tmp/zynrecentcallcom/recentcall_interface";
constexpr uid_t kNobody = 65534;

/// A record that no reader may take for one of its own kind.
class OtherRecord : public RC_RecordInterface
{
public:
    void setCategory(RC_CALL_CATEGORY_T) override {}
    RC_CALL_CATEGORY_T getCategory() const override { return RC_CALL_CATEGORY_NONE; }
    void setPhoneNumber(const QString&) override {}
    QString getPhoneNumber() const override { return {}; }
    void setStartDateTime(const QDateTime&) override {}
    QDateTime getStartDateTime() const override { return {}; }
    void setDuration(int) override {}
    int getDuration() const override { return 0; }
    void setCompletedStatus(bool) override {}
    bool getCompletedStatus() const override { return false; }
    bool isRead() const override { return false; }
    int getUID() const override { return 0; }
    RC_CALL_TYPE_T getCallType() const override { return RC_CALL_TYPE_VOICE; }
};

QByteArray number(int value)
{
    QByteArray bytes(4, '\0');
    qToLittleEndian(int32_t{value}, bytes.data());
    return bytes;
}

QByteArray recordBytes(int uid)
{
    PHONE_ENG_RecentCall record;
    record.uid = uid;
    return zyn::bytesOf(record).toByteArray();
}

QByteArray listAnswer(int count, int limit, int records, int code = 0)
{
    QByteArray data = number(count) + number(limit);
    for (int uid = 0; uid < records; ++uid)
        data += recordBytes(uid);
    return ScriptedService::frame(code, data);
}

} // namespace

class tst_RC_Interface : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { RecentCall_dataDir(); }
    void init() { m_descriptors = openDescriptors(); }
    void cleanup() { QCOMPARE(openDescriptors(), m_descriptors); }

    void makesTheSocketDirectoryOpenToAll()
    {
        QVERIFY(QDir().rmdir(u"/tmp/zynrecentcallcom"_s));
        const mode_t oldMask = ::umask(077);
        QCOMPARE(RecentCall_dataDir(), u"/tmp/zynrecentcallcom/"_s);
        ::umask(oldMask);
        struct stat status = {};
        QCOMPARE(::stat("/tmp/zynrecentcallcom", &status), 0);
        QCOMPARE(status.st_mode & 07777U, 0777U);

        // A link of that name is nobody's leave to open another directory.
        QTemporaryDir elsewhere;
        QVERIFY(QDir().rmdir(u"/tmp/zynrecentcallcom"_s));
        QVERIFY(QFile::link(elsewhere.path(), u"/tmp/zynrecentcallcom"_s));
        RecentCall_dataDir();
        QCOMPARE(::stat(QFile::encodeName(elsewhere.path()).constData(), &status), 0);
        QCOMPARE(status.st_mode & 0777U, 0700U);
        QVERIFY(QFile::remove(u"/tmp/zynrecentcallcom"_s));
        RecentCall_dataDir();
    }

    void sendsEachRequestToTheByte()
    {
        PHONE_ENG_RecentCall record(u"112"_s, QDateTime::fromSecsSinceEpoch(1), 2);
        record.uid = 9;
        const QByteArray bytes = zyn::bytesOf(record).toByteArray();
        const auto sent = [](const auto& request) {
            ScriptedService service(kSocketPath, ScriptedService::frame(0));
            request();
            return service.received().toHex();
        };
        const QByteArray greeting = "000000000400000000000000";
        const QByteArray add = greeting + "01000000e4000000" + bytes.toHex();
        const QByteArray remove = greeting + "02000000e4000000" + bytes.toHex();
        const RC_RecordInterfaceImpl wrapper(new PHONE_ENG_RecentCall(record));
        QPtrList<RC_RecordInterface> list;

        QCOMPARE(sent([&] { PHONE_RecentCall_Interface().rc_add(record); }), add);
        QCOMPARE(sent([&] { RC_Interface().addRecord(wrapper); }), add);
        QCOMPARE(sent([&] { PHONE_RecentCall_Interface().rc_delete(record); }), remove);
        QCOMPARE(sent([&] { RC_Interface().deleteRecord(wrapper); }), remove);
        QCOMPARE(sent([&] { PHONE_RecentCall_Interface().rc_deleteAll(RC_CALL_CATEGORY_MISSED); }),
                 greeting + "03000000080000000200000001000000");
        QCOMPARE(sent([&] { RC_Interface().deleteRecordAll(RC_CALL_CATEGORY_ALL, RC_CALL_TYPE_PTT2); }),
                 greeting + "03000000080000000400000004000000");
        QCOMPARE(sent([&] { RC_Interface().getRecordList(list, RC_CALL_CATEGORY_DIALED, RC_CALL_TYPE_PTT1); }),
                 greeting + "00000000080000000300000003000000");
    }

    void mapsTheAnswers_data()
    {
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<int>("plain");     // the result of a function
        QTest::addColumn<int>("interface"); // that of a class
        QTest::newRow("success, with data that nobody asked for") << ScriptedService::frame(0, "data") << 0 << 0;
        QTest::newRow("no such record") << ScriptedService::frame(1) << 1 << 1;
        QTest::newRow("failure") << ScriptedService::frame(2) << 2 << 3;
        QTest::newRow("an unknown code") << ScriptedService::frame(-1) << 2 << 3;
        QTest::newRow("no answer") << QByteArray() << 2 << 3;
        QTest::newRow("data cut short") << ScriptedService::frame(0, "cut short").chopped(1) << 2 << 3;
        QTest::newRow("a negative length") << QByteArray::fromHex("00000000ffffffff") << 2 << 3;
        QTest::newRow("a length above the limit") << QByteArray::fromHex("0000000001001000") << 2 << 3;
    }

    void mapsTheAnswers()
    {
        QFETCH(const QByteArray, answer);
        QFETCH(const int, plain);
        QFETCH(const int, interface);
        PHONE_ENG_RecentCall record;
        const RC_RecordInterfaceImpl wrapper;
        const auto result = [&](const auto& request) {
            const ScriptedService service(kSocketPath, answer);
            return request();
        };
        constexpr auto kAll = RC_CALL_CATEGORY_ALL;
        QCOMPARE(result([&] { return PHONE_RecentCall_DeleteRecord(record); }), plain);
        QCOMPARE(result([] { return PHONE_RecentCall_DeleteAll(kAll, RC_CALL_TYPE_VOICE); }), plain);
        QCOMPARE(result([&] { return RC_Interface().deleteRecord(wrapper); }), interface);
        QCOMPARE(result([] { return RC_Interface().deleteRecordAll(kAll, RC_CALL_TYPE_VOICE); }), interface);
        QCOMPARE(result([&] { return PHONE_RecentCall_Interface().rc_delete(record); }), interface);
        QCOMPARE(result([&] { return RC_Interface().addRecord(wrapper); }), 0); // it reads no answer
    }

    void failsWithoutAService()
    {
        PHONE_ENG_RecentCall record;
        const RC_RecordInterfaceImpl wrapper;
        QPtrList<RC_RecordInterface> list;
        for (const bool isSocketLeft : {false, true}) {
            if (isSocketLeft) { // by a service that died
                const auto address = zyn::posix::unixAddress(kSocketPath);
                QCOMPARE(::bind(zyn::posix::unixSocket().get(), address.get(), address.length), 0);
            }
            QCOMPARE(PHONE_RecentCall_AddRecord(record), 2);
            QCOMPARE(PHONE_RecentCall_DeleteRecord(record), 2);
            QCOMPARE(PHONE_RecentCall_DeleteAll(RC_CALL_CATEGORY_ALL, RC_CALL_TYPE_VOICE), 2);
            QCOMPARE(RC_Interface().addRecord(wrapper), 3);
            QCOMPARE(RC_Interface().getRecordList(list, RC_CALL_CATEGORY_ALL, RC_CALL_TYPE_VOICE), 3);
            QVERIFY(!list.autoDelete());
            QCOMPARE(PHONE_RecentCall_Interface().rc_add(record), 3);
        }
        QFile::remove(QLatin1String(kSocketPath));
        QCOMPARE(RC_Interface().addRecord(OtherRecord()), 3);
        QCOMPARE(RC_Interface().deleteRecord(OtherRecord()), 3);
    }

    void fetchesAList_data()
    {
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<int>("result");
        QTest::addColumn<int>("items"); // -1: the list keeps the one that it had

        QTest::newRow("three records") << listAnswer(3, 50, 3) << 0 << 3;
        QTest::newRow("none") << listAnswer(0, 50, 0) << 0 << 0;
        QTest::newRow("more than the limit") << listAnswer(5, 3, 5) << 0 << 3;
        QTest::newRow("fewer than the count claims") << listAnswer(2147483647, 2147483647, 2) << 0 << 2;
        QTest::newRow("a last record cut short")
            << ScriptedService::frame(0, number(2) + number(2) + recordBytes(0) + recordBytes(1).chopped(1)) << 0 << 1;
        QTest::newRow("a negative count") << listAnswer(-1, 50, 2) << 0 << 0;
        QTest::newRow("a negative limit") << listAnswer(2, -50, 2) << 0 << 0;
        QTest::newRow("no count and limit") << ScriptedService::frame(0, number(1)) << 0 << 0;
        QTest::newRow("code 1") << listAnswer(1, 50, 1, 1) << 1 << -1;
        QTest::newRow("code 2") << listAnswer(1, 50, 1, 2) << 3 << -1;
        QTest::newRow("no answer") << QByteArray() << 3 << -1;
        QTest::newRow("an answer cut short") << listAnswer(3, 50, 3).chopped(1) << 3 << -1;
    }

    void fetchesAList()
    {
        QFETCH(const QByteArray, answer);
        QFETCH(const int, items);
        QPtrList<RC_RecordInterface> list;
        list.append(new RC_RecordInterfaceImpl(u"old"_s, {}, 0));
        const ScriptedService service(kSocketPath, answer);
        QTEST(RC_Interface().getRecordList(list, RC_CALL_CATEGORY_ALL, RC_CALL_TYPE_VOICE), "result");
        QVERIFY(list.autoDelete());
        QCOMPARE(list.count(), items < 0 ? 1 : items);
        QCOMPARE(!list.isEmpty() && list.getFirst()->getPhoneNumber() == QLatin1String("old"), items < 0);
        for (int uid = 0; uid < items; ++uid)
            QCOMPARE(list.at(uid)->getUID(), uid);
    }

    void trustsOnlyItsOwnUsersServices()
    {
        // The service's user is the one that it began to listen as.
        if (::seteuid(kNobody) != 0)
            QSKIP("only root can play another user");
        ScriptedService service(kSocketPath, ScriptedService::frame(0));
        QCOMPARE(::seteuid(0), 0);
        PHONE_ENG_RecentCall record;
        QCOMPARE(PHONE_RecentCall_DeleteRecord(record), 2);
        QCOMPARE(service.received(), QByteArray());
    }

    void readsTheLastDialedNumber()
    {
        StdoutCapture output;
        const StoreFixture fixture;
        QString number = u"unchanged"_s;
        QVERIFY(!RC_Interface().getLastDialedNumber(number));
        QCOMPARE(number, u"unchanged"_s);
        fixture.add(RC_CALL_CATEGORY_DIALED, "111");
        fixture.add(RC_CALL_CATEGORY_DIALED, "222");
        QVERIFY(RC_Interface().getLastDialedNumber(number));
        QCOMPARE(number, u"222"_s);
        QVERIFY(PHONE_RecentCall_Interface().getLastDialedNumber(number));
        QVERIFY(PHONE_RecentCallInterface().getLastDialedNumber(number));
        fixture.write(RC_CALL_CATEGORY_DIALED, "damaged");
        QVERIFY(!PHONE_RecentCallInterface().getLastDialedNumber(number));
    }

private:
    qsizetype m_descriptors = 0;
};

QTEST_GUILESS_MAIN(tst_RC_Interface)
#include "tst_RC_Interface.moc"
