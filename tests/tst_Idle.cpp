// What programs cost that have nothing to do: they are not woken up; and their memory, which much work leaves as it is.
#include "platform/QCopChannel.h"
#include "recentcall/utility/PHONE_RecentCall.h"
#include "recentcall/utility/RecentCall_MsgClient.h"
#include "tests/support/Process.h"
#include "tests/support/StoreFixture.h"
#include "utility/PHONE_AsyncMsgReceiver.h"
#include "utility/PHONE_MsgClient.h"
#include "utility/PHONE_VoiceCallReceiver.h"

#include <QtCore/QDir>
#include <QtCore/QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/// How long a process is watched at a time, and how often until it has settled: right after its start it still has
/// things to do, such as to look for what it has missed.
constexpr int kWatched = 1500; // milliseconds
constexpr int kWatchedOften = 8;

/// The sum of the numbers behind the names that @p form matches, in a file of /proc.
qint64 sum(const QString& path, const QString& form)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return -1;
    const QString text = QString::fromLatin1(file.readAll());
    qint64 all = 0;
    for (auto match = QRegularExpression(u"\\b"_s + form + u":\\s*(\\d+)"_s).globalMatch(text); match.hasNext();)
        all += match.next().captured(1).toLongLong();
    return all;
}

/// How often the threads of a process went to sleep, which each had to be woken up for before; less than 0 when it is
/// gone.
qint64 sleeps(qint64 process)
{
    // One that has ended, and was not waited for, has no program any more.
    const bool isThere = !QFile::symLinkTarget(u"/proc/%1/exe"_s.arg(process)).isEmpty();
    const QString tasks = u"/proc/%1/task/"_s.arg(process);
    qint64 all = isThere ? 0 : -1;
    for (const QString& task : QDir(tasks).entryList(QDir::Dirs | QDir::NoDotAndDotDot))
        all += sum(tasks + task + u"/status"_s, u"voluntary_ctxt_switches"_s);
    return all;
}

/// The fewest wake-ups of a process while it is watched: what comes again and again comes each time. Less than 0 of one
/// that is gone.
qint64 wakeUpsAtRest(qint64 process)
{
    qint64 fewest = -1;
    for (int i = 0; i < kWatchedOften && fewest != 0; ++i) {
        const qint64 before = sleeps(process);
        QTest::qSleep(kWatched);
        const qint64 after = sleeps(process);
        if (before < 0 || after < 0)
            return -1;
        const qint64 more = after - before;
        if (more >= 0) // a thread that ended takes its number along
            fewest = fewest < 0 ? more : std::min(fewest, more);
    }
    return fewest;
}

/// In KiB, of what the process has written: pages of a library are private or not as other processes come and go.
qint64 privateMemory(qint64 process)
{
    return sum(u"/proc/%1/smaps_rollup"_s.arg(process), u"Private_Dirty"_s);
}

/// The role of an application that has a client of the kind @p kind, and waits.
int idleRole(const QStringList& arguments)
{
    const QString kind = arguments.value(0);
    std::unique_ptr<QObject> client;
    if (kind == u"QCopChannel")
        client = std::make_unique<QCopChannel>("/ZYN/idle");
    else if (kind == u"PHONE_MsgClient")
        client = std::make_unique<PHONE_MsgClient>();
    else if (kind == u"PHONE_VoiceCallReceiver")
        client = std::make_unique<PHONE_VoiceCallReceiver>();
    else if (kind == u"PHONE_AsyncMsgReceiver")
        PHONE_AsyncMsgReceiver::instance();
    else if (kind == u"RecentCall_MsgClient")
        RecentCall_MsgClient::instance();
    role::sayReady();
    return QCoreApplication::exec();
}

} // namespace

class tst_Idle : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void service_data()
    {
        QTest::addColumn<QByteArray>("program");
        for (const char* const program : {ZYN_RECENTCALLD, ZYN_PHONED, ZYN_FAVOURITES})
            QTest::newRow(QFileInfo(QString::fromLocal8Bit(program)).fileName().toLatin1()) << QByteArray(program);
    }
    void service()
    {
        QFETCH(const QByteArray, program);
        const StoreFixture store;
        ServiceProcess service;
        QVERIFY(service.start(program));
        QCOMPARE(wakeUpsAtRest(service.id()), 0);
        QCOMPARE(service.stop(), EXIT_SUCCESS);
    }

    void application_data()
    {
        QTest::addColumn<QString>("client");
        for (const char* const client : {"QCopChannel", "PHONE_MsgClient", "PHONE_VoiceCallReceiver",
                                         "PHONE_AsyncMsgReceiver", "RecentCall_MsgClient"})
            QTest::newRow(client) << QString::fromLatin1(client);
    }
    void application()
    {
        QFETCH(const QString, client);
        const auto process = role::start(u"idle"_s, {client});
        QVERIFY(role::waitReady(*process));
        QCOMPARE(wakeUpsAtRest(process->processId()), 0);
        process->kill();
        role::finish(*process);
    }

    void memoryOfTheStoresIsBounded()
    {
        constexpr int kTimes = 20'000;
        constexpr int kWarm = 500;
        constexpr qint64 kBound = 256; // KiB: 16 bytes lost each time are more
        const StoreFixture fixture;
        StdoutCapture trace; // which would hide what the test has to say, too
        RecentCall_ENG_RecordStore& store = *RecentCall_ENG_RecordStore::instance();
        PHONE_ENG_RecentCall call(u"0301112222"_s, QDateTime::fromSecsSinceEpoch(1'700'000'000), 60);
        call.category = RC_CALL_CATEGORY_ANSWERED;
        call.inUse = 1;
        qint64 before = 0;
        int failures = 0;
        for (int i = 0; i < kTimes + kWarm; ++i) {
            if (i == kWarm)
                before = privateMemory(QCoreApplication::applicationPid());
            failures += store.addItem(call) ? 0 : 1;
            QSortedList<PHONE_ENG_RecentCall> list;
            list.setAutoDelete(true);
            store.readDataList(list, RC_CALL_CATEGORY_ANSWERED);
            failures += list.count() == 1 && store.removeItem(call) ? 0 : 1;
        }
        const qint64 more = privateMemory(QCoreApplication::applicationPid()) - before;
        trace.take();
        QCOMPARE(failures, 0);
        QVERIFY2(more < kBound, qPrintable(u"%1 KiB more"_s.arg(more)));
    }

    void memoryOfTheServiceIsBounded()
    {
        constexpr int kTimes = 20'000;
        constexpr int kWarm = 500;
        constexpr qint64 kBound = 256; // KiB
        const StoreFixture store;
        ServiceProcess service;
        QVERIFY(service.start(ZYN_RECENTCALLD));
        PHONE_ENG_RecentCall call(u"0301112222"_s, QDateTime::fromSecsSinceEpoch(1'700'000'000), 60);
        call.category = RC_CALL_CATEGORY_ANSWERED;
        call.inUse = 1;
        qint64 before = 0;
        for (int i = 0; i < kTimes + kWarm; ++i) {
            if (i == kWarm)
                before = privateMemory(service.id());
            QCOMPARE(PHONE_RecentCall_AddRecord(call), 0);
        }
        const qint64 more = privateMemory(service.id()) - before;
        QVERIFY2(more < kBound, qPrintable(u"%1 KiB more"_s.arg(more)));
        QCOMPARE(service.stop(), EXIT_SUCCESS);
    }
};

int main(int argc, char** argv)
{
    return role::testMain<tst_Idle>(argc, argv, {{u"idle"_s, &idleRole}});
}

#include "tst_Idle.moc"
