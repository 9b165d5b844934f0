// The favourites: their owner, run as the process that it is, and the tool's verbs around it.
#include "platform/QCopChannel.h"
#include "recentcall/utility/ActivityLog_ENG_RecordStore.h"
#include "recentcall/utility/PHONE_RecentCall.h"
#include "recentcall/utility/RC_TopPals_AL_Interface.h"
#include "recentcall/utility/RecentCall_Client_p.h"
#include "recentcall/utility/store/ActivityLogFile_p.h"
#include "recentcall/utility/store/StoreFile_p.h"
#include "tests/support/ActivityLogFixture.h"
#include "tests/support/Patience.h"
#include "tests/support/ServiceProcess.h"
#include "tests/support/StdoutCapture.h"
#include "tests/support/Tool.h"
#include "utility/message/Payload_p.h"

#include <QtCore/QDir>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <optional>

#include <fcntl.h>

using namespace Qt::StringLiterals;
using tool::run;
using zyn::PayloadWriter;

namespace {

constexpr auto kMissed = RC_CALL_CATEGORY_MISSED;
constexpr int kNoon = 1'700'000'000;

/// Hands the recent-call service a call that began @p minute minutes after noon.
bool add(const char* number, int minute, RC_CALL_CATEGORY_T category = kMissed)
{
    PHONE_ENG_RecentCall record(QLatin1String(number), QDateTime::fromSecsSinceEpoch(kNoon + minute * 60), 5);
    record.category = category;
    return PHONE_RecentCall_AddRecord(record) == 0;
}

/// What the phone server sends when a call comes or ends.
void reportCallChange()
{
    QCopChannel::send("/ZYN/phone", "PHONE_MSG_44");
}

void announce(const QByteArray& payload)
{
    QCopChannel::send("ACTIVITY_LOG_CHANNEL", "MODIFY_TOPPAL_DETAILS", payload);
}

QByteArray announcement(const QString& oldNumber, const QString& newNumber)
{
    return PayloadWriter().writeText(oldNumber).writeText(newNumber).writeText({}).writeText({}).writeInt(0).payload();
}

/// Minutes after noon at which a favourite's entries began, newest first; -1 alone for none that can be read.
QList<int> entries(const char* key)
{
    const StdoutCapture quiet;
    ActivityLog_ENG_RecordStore::destroy();
    QSortedList<PHONE_ENG_ActivityLog> list;
    list.setAutoDelete(true);
    if (ActivityLog_ENG_RecordStore::instance()->readTopPalsAvlContactRecordList(list, QLatin1String(key)) != 1)
        return {-1};
    QList<int> minutes;
    for (const PHONE_ENG_ActivityLog* entry : list)
        minutes += (entry->startTime - kNoon) / 60;
    return minutes;
}

/// The uids of a favourite's entries, the greatest first.
QList<int> uids(const char* key)
{
    const StdoutCapture quiet;
    ActivityLog_ENG_RecordStore::destroy();
    QSortedList<PHONE_ENG_ActivityLog> list;
    list.setAutoDelete(true);
    ActivityLog_ENG_RecordStore::instance()->readTopPalsAvlContactRecordList(list, QLatin1String(key));
    QList<int> found;
    for (const PHONE_ENG_ActivityLog* entry : list)
        found += entry->uid;
    std::ranges::sort(found, std::greater());
    return found;
}

/// What the messages of the favourite 555 say, in the order of the alphabet.
QString messages()
{
    const StdoutCapture quiet;
    QSortedList<PHONE_ENG_ActivityLog> list;
    list.setAutoDelete(true);
    ActivityLog_ENG_RecordStore::instance()->readTopPalsAvlContactRecordList(list, u"555"_s);
    QStringList texts;
    for (const PHONE_ENG_ActivityLog* entry : list)
        texts += entry->getMsgString();
    texts.sort();
    return texts.join(u' ');
}

int unread(const char* number)
{
    const StdoutCapture quiet;
    TopPals_Missed_Details details{QLatin1String(number)};
    RC_TopPals_AL_Interface::instance()->getUnreadCount(details);
    return details.missedCallCount;
}

} // namespace

class FavouritesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void countsAMissedCallOfAFavourite();
    void takesNothingTwiceAndLosesNothing();
    void takesNoCallFromBeforeAFavourite();
    void keepsTheNewestEntries();
    void knowsWhatIsNewest_data();
    void knowsWhatIsNewest();
    void takesCallsForAWrongClocksEntries();
    void tellsWhatOfAFavouriteCouldNotBeMade();
    void losesNothingWhileTheFavouritesCannotBeRead();
    void renewsAFileOfAnotherSize();
    void followsAnnouncements();
    void ignoresWhatIsNoAnnouncement();
    void allowsOneOwner_data();
    void allowsOneOwner();
    void answers_data() { tool::addTranscripts(QFINDTESTDATA("data/zynphone_favourites.txt")); }
    void answers() { tool::followTranscript(); }
    void inspects();

private:
    void startService();
    void startOwner();
    QString path(const char* name) const { return m_store->path() + u"/phone/"_s + QLatin1String(name); }
    void setSlots(int count) const { m_store->setSlots(QString::number(count)); }
    QString inspected(const char* name) const;

    std::optional<ActivityLogFixture> m_store;
    std::optional<ServiceProcess> m_service;
    std::optional<ServiceProcess> m_owner;
};

void FavouritesTest::init()
{
    qputenv("TZ", "UTC");
    m_store.emplace();
    zyn::makeStoreDirectory();
}

void FavouritesTest::cleanup()
{
    for (auto* process : {&m_owner, &m_service}) {
        if (*process)
            (*process)->stop();
        process->reset();
    }
    m_store.reset();
}

void FavouritesTest::startService()
{
    m_service.emplace();
    QVERIFY(m_service->start(ZYN_RECENTCALLD));
}

void FavouritesTest::startOwner()
{
    m_owner.emplace();
    QVERIFY(m_owner->start(ZYN_FAVOURITES));
}

void FavouritesTest::countsAMissedCallOfAFavourite()
{
    startService();
    QVERIFY(add("1234567", 0)); // before it is a favourite's
    startOwner();
    QCOMPARE(run("favourites announce '' 0301234567 --name Anna"), u"sent\nexit 0"_s);
    QTRY_VERIFY(entries("1234567").isEmpty());

    QVERIFY(add("+49301234567", 1) && add("0309999999", 2) && add("1234567", 3));
    QTRY_COMPARE(entries("1234567"), QList<int>({3, 1}));
    QCOMPARE(unread("0301234567"), 2);

    QVERIFY(add("0301234567", 4, RC_CALL_CATEGORY_DIALED));
    reportCallChange();
    QTRY_COMPARE(entries("1234567"), QList<int>({4, 3, 1}));
    QCOMPARE(unread("0301234567"), 2);

    PHONE_ENG_RecentCall seen = StoreFixture::call(kMissed, "");
    seen.uid = 1;
    QCOMPARE(zyn::recentcall::markRead(seen), zyn::recentcall::Success);
    QTRY_COMPARE(unread("0301234567"), 1);
    QCOMPARE(m_owner->log(), "zyn-favourites: 1234567 is a favourite now\n"
                             "zyn-favourites: the call 1 of 1234567 is logged\n"
                             "zyn-favourites: the call 3 of 1234567 is logged\n"
                             "zyn-favourites: the call 4 of 1234567 is logged\n"
                             "zyn-favourites: the call 1 of 1234567 has been read\n");
}

void FavouritesTest::takesNothingTwiceAndLosesNothing()
{
    setSlots(3);
    startService();
    QCOMPARE(run("favourites replace '' 555"), u"555 is a favourite now\nexit 0"_s);
    QVERIFY(add("555", 1) && add("556", 2) && add("555", 3));
    startOwner();
    QTRY_COMPARE(entries("555"), QList<int>({3, 1}));

    // Killed, while more calls come; what it knew may be lost as well.
    m_owner->stop(SIGKILL);
    QVERIFY(add("555", 4));
    startOwner();
    QTRY_COMPARE(entries("555"), QList<int>({4, 3, 1}));
    QTRY_VERIFY(QFile(path("topPalsCalls")).size() == 8 + 4 * 8);
    m_owner->stop(SIGKILL);
    QVERIFY(QFile::remove(path("topPalsCalls")));
    startOwner();
    QTRY_VERIFY(QFile(path("topPalsCalls")).size() == 8 + 4 * 8);
    QCOMPARE(entries("555"), QList<int>({4, 3, 1}));

    // An entry that the user has removed does not come back.
    m_owner->stop();
    QCOMPARE(run("favourites remove 555 1"), u"removed\nexit 0"_s);
    startOwner();

    // While the service is down, changes are reported in vain.
    m_service->stop();
    reportCallChange();
    QVERIFY(m_owner->waitLogged("does not answer"));
    startService();
    // The service gives the uid of a deleted call again once it has been started anew.
    QCOMPARE(run("calls delete 3"), u"deleted\nexit 0"_s);
    m_service->stop();
    startService();
    QVERIFY(add("555", 5));
    QTRY_COMPARE(entries("555"), QList<int>({5, 4, 1}));
    QVERIFY(m_owner->log().contains("the recent-call service does not answer: its calls are taken later\n"
                                    "zyn-favourites: the recent-call service answers again\n"));
}

void FavouritesTest::takesNoCallFromBeforeAFavourite()
{
    startService();
    QVERIFY(add("555", 1));
    m_service->stop();
    startOwner();
    announce(announcement({}, u"555"_s));
    QTRY_VERIFY(entries("555").isEmpty());
    startService();
    const int later = static_cast<int>((QDateTime::currentSecsSinceEpoch() - kNoon) / 60) + 1;
    QVERIFY(add("555", 2) && add("555", later));
    QTRY_COMPARE(entries("555"), QList<int>({later}));
}

void FavouritesTest::keepsTheNewestEntries()
{
    setSlots(2);
    startService();
    run("favourites replace '' 555");
    startOwner();
    for (const int minute : {3, 1, 5, 4, 2})
        QVERIFY(add("555", minute));
    QTRY_COMPARE(entries("555"), QList<int>({5, 4}));
    QVERIFY(add("555", 0));
    QTRY_VERIFY(QFile(path("topPalsCalls")).size() == 8 + 6 * 8);
    QCOMPARE(entries("555"), QList<int>({5, 4}));
    // Entries that say of themselves what is not true lead to no other slot and no other file.
    m_owner->stop();
    run("favourites replace '' 556");
    run("favourites log 556");
    const QByteArray other = m_store->read(u"556"_s);
    QByteArray damaged = m_store->read(u"555"_s);
    damaged.replace(qsizetype(zyn::getTopPalsAvlFilePos(0)), 4, "556", 4);
    damaged.replace(qsizetype(zyn::getTopPalsAvlFilePos(1)) + 232, 4, "\0\0\0", 4);
    m_store->write(u"555"_s, damaged);
    QCOMPARE(run("favourites log 555 --at 2030-01-01T00:00:00Z"), u"logged in place 0\nexit 0"_s);
    QCOMPARE(run("favourites remove 555 1"), u"removed\nexit 0"_s);
    QCOMPARE(entries("555").size(), 1);
    QVERIFY(run("favourites show 555").contains(u"2030-01-01T00:00:00"_s));
    QCOMPARE(m_store->read(u"556"_s), other);
}

void FavouritesTest::knowsWhatIsNewest_data()
{
    QTest::addColumn<QStringList>("logged"); // when, and the text: by a process each
    QTest::addColumn<QString>("kept");       // of 3
    QTest::addColumn<QString>("left");       // of 2
    const QString noon = u"2026-01-01T12:00:00Z "_s;
    const QString future = u"2037-12-31T12:00:00Z "_s;
    QTest::newRow("in order of time") << QStringList{u"2026-01-01T12:00:02Z a"_s, noon + u'b',
                                                     u"2026-01-01T12:00:01Z c"_s, u"2026-01-01T12:00:03Z d"_s}
                                      << u"a c d"_s << u"a d"_s;
    QTest::newRow("all at the same time")
        << QStringList{noon + u'a', noon + u'b', noon + u'c', noon + u'd'} << u"b c d"_s << u"c d"_s;
    QTest::newRow("twice as many at the same time as there is room")
        << QStringList{noon + u'a', noon + u'b', noon + u'c', noon + u'd', noon + u'e', noon + u'f', noon + u'g'}
        << u"e f g"_s << u"f g"_s;
    QTest::newRow("all from the future") << QStringList{future + u'a', future + u'b', future + u'c', future + u'd'}
                                         << u"b c d"_s << u"c d"_s;
    QTest::newRow("some from the future")
        << QStringList{future + u'a', future + u'b', noon + u'c', noon + u'd'} << u"b c d"_s << u"c d"_s;
    QTest::newRow("the last of them from the future")
        << QStringList{noon + u'a', noon + u'b', future + u'c', noon + u'd', noon + u'e'} << u"b d e"_s << u"d e"_s;
    QTest::newRow("at the end of time and before its beginning")
        << QStringList{u"2038-01-19T03:14:07Z a"_s, u"1901-12-13T20:45:52Z b"_s, u"1969-12-31T23:59:59Z c"_s,
                       u"1970-01-01T00:00:00Z d"_s}
        << u"b c d"_s << u"c d"_s;
}

void FavouritesTest::knowsWhatIsNewest()
{
    QFETCH(QStringList, logged);
    setSlots(3);
    run("favourites replace '' 555");
    const auto log = [](const QString& line) {
        return run({u"favourites"_s, u"log"_s, u"555"_s, u"--at"_s, line.section(u' ', 0, 0), u"--message"_s,
                    line.section(u' ', 1)});
    };
    for (const QString& line : logged)
        QVERIFY(log(line).startsWith(u"logged in place "));
    QTEST(messages(), "kept");
    const QString file = m_store->path() + u"/favourites.csv"_s;
    QVERIFY(run({u"favourites"_s, u"export"_s, file}).endsWith(u"exit 0"));
    // A smaller file keeps the newest, and goes on in their order.
    setSlots(2);
    startOwner();
    startService();
    QTRY_COMPARE(QFile(path("555")).size(), zyn::ContactFile::size(2));
    QTEST(messages(), "left");
    m_owner->stop();
    for (const char* next : {"x", "y"})
        log(u"2026-01-01T12:00:09Z "_s + QLatin1String(next));
    QCOMPARE(messages(), u"x y"_s);
    // An import puts nothing older in their place.
    QVERIFY(run({u"favourites"_s, u"import"_s, file}).endsWith(u"logged 0 entries of 1 favourite\nexit 0"));
    QCOMPARE(messages(), u"x y"_s);
}

void FavouritesTest::takesCallsForAWrongClocksEntries()
{
    setSlots(2);
    run("favourites replace '' 555");
    for (const char* time : {"2037-01-01T00:00:00Z", "2037-01-02T00:00:00Z"})
        run({u"favourites"_s, u"log"_s, u"555"_s, u"--at"_s, QLatin1String(time)});
    startService();
    startOwner();
    QVERIFY(add("555", 1));
    QTRY_COMPARE(entries("555").value(1), 1);
    // Of calls that began in the same second, the last stay, whatever order they are found in.
    for (int i = 0; i < 5; ++i)
        QVERIFY(add("555", 2));
    QTRY_COMPARE(uids("555"), QList<int>({5, 4}));
    QCOMPARE(entries("555"), QList<int>({2, 2}));
    m_owner->stop();
    QVERIFY(QFile::remove(path("topPalsCalls")));
    startOwner();
    QTRY_COMPARE(QFile(path("topPalsCalls")).size(), 8 + 6 * 8);
    QCOMPARE(uids("555"), QList<int>({5, 4}));
}

void FavouritesTest::tellsWhatOfAFavouriteCouldNotBeMade()
{
    QVERIFY(QDir().mkdir(path("555")) && QDir().mkdir(path("556")));
    const QString halfMade = u"555 is a favourite now, but its file cannot be made"_s;
    QCOMPARE(run("favourites replace '' 555"), u"zynphone: "_s + halfMade + u"\nexit 1"_s);
    QVERIFY(run("favourites list").contains(u"\n0      555     -  "));
    QVERIFY(QDir().rmdir(path("555")));
    QCOMPARE(run("favourites log 555"), u"logged in place 0\nexit 0"_s);
    startService();
    startOwner();
    announce(announcement(u"555"_s, u"556"_s));
    announce(announcement({}, u"7"_s));
    QTRY_VERIFY(entries("7").isEmpty());
    QVERIFY(m_owner->log().startsWith(
        "zyn-favourites: 556 is a favourite now, in place of 555, but its file cannot be made\n"));
}

void FavouritesTest::losesNothingWhileTheFavouritesCannotBeRead()
{
    run("favourites replace '' 555");
    run("favourites log 555 --at 2023-11-14T22:13:20Z");
    const auto exchange = [this] {
        return ::renameat2(AT_FDCWD, QFile::encodeName(path("away")).constData(), AT_FDCWD,
                           QFile::encodeName(path("topPalsDetails")).constData(), RENAME_EXCHANGE)
               == 0;
    };
    QVERIFY(QDir().mkdir(path("away")) && exchange());
    startService();
    startOwner();
    QVERIFY(m_owner->waitLogged("the favourites cannot be read: their calls are taken later\n"));
    QVERIFY(add("555", 1));
    announce(announcement({}, u"555"_s));
    QVERIFY(m_owner->waitLogged("555 cannot be made a favourite"));
    for (const char* line : {"favourites list", "favourites export"})
        QVERIFY(run(line).endsWith(u"topPalsDetails is damaged or cannot be read; see 'zynphone inspect'\nexit 1"_s));
    QVERIFY(exchange());
    reportCallChange();
    QTRY_COMPARE(entries("555"), QList<int>({1, 0}));
    QVERIFY(m_owner->log().contains("zyn-favourites: the favourites can be read again\n"));
}

void FavouritesTest::renewsAFileOfAnotherSize()
{
    startService();
    run("favourites replace '' 555");
    startOwner();
    for (const int minute : {1, 2, 3, 4, 5})
        QVERIFY(add("555", minute));
    QTRY_COMPARE(entries("555").size(), 5);
    for (const int count : {20, 3}) {
        setSlots(count);
        reportCallChange();
        QTRY_COMPARE(QFile(path("555")).size(), zyn::ContactFile::size(count));
        QCOMPARE(entries("555"), QList<int>({5, 4, 3, 2, 1}).first(std::min(count, 5)));
        QCOMPARE(QFile::exists(path("555.old.1")), count == 3);
    }
    QCOMPARE(QFile(path("555.old.1")).size(), zyn::ContactFile::size(20));
    QVERIFY(run({u"inspect"_s, u"--verify"_s, m_store->path() + u"/phone"_s})
                .contains(u"555.old.1: the copy of a file whose entries did not all fit\n"_s));
    // A wrong header costs no entry.
    QByteArray damaged = m_store->read(u"555"_s);
    m_store->write(u"555"_s, damaged.replace(0, 1, "x"));
    reportCallChange();
    QTRY_COMPARE(entries("555"), QList<int>({5, 4, 3}));
    QVERIFY(!QFile::exists(path("555.old.2")));
    // Where a file has no slots, what it holds waits for them, and so do the calls that come.
    setSlots(0);
    QVERIFY(add("555", 6) && add("9", 6));
    QTRY_COMPARE(QFile(path("topPalsCalls")).size(), 8 + 6 * 8);
    QCOMPARE(QFile(path("555")).size(), zyn::ContactFile::size(3));
    setSlots(3);
    reportCallChange();
    QTRY_COMPARE(entries("555"), QList<int>({6, 5, 4}));
    // A call that cannot be written is not lost.
    QVERIFY(QFile::rename(path("555"), path("away")) && QDir().mkdir(path("555")));
    QVERIFY(add("555", 7) && add("9", 8));
    QTRY_COMPARE(QFile(path("topPalsCalls")).size(), 8 + 8 * 8);
    QVERIFY(QDir().rmdir(path("555")) && QFile::rename(path("away"), path("555")));
    reportCallChange();
    QTRY_COMPARE(entries("555"), QList<int>({7, 6, 5}));
}

void FavouritesTest::followsAnnouncements()
{
    startOwner();
    const auto favourites = [] {
        const StdoutCapture quiet;
        ActivityLog_ENG_RecordStore::destroy();
        QString names[5];
        ActivityLog_ENG_RecordStore::instance()->getCurrentTopPalsFileNames(names);
        return QStringList(std::begin(names), std::end(names)).join(u' ');
    };
    announce(announcement({}, u"0301234567"_s));
    announce(announcement(u"unknown"_s, u"555"_s));
    QTRY_COMPARE(favourites(), u"1234567 555   "_s);
    // The new number is a favourite already: the old one leaves.
    announce(announcement(u"555"_s, u"+49301234567"_s));
    QTRY_COMPARE(favourites(), u"1234567    "_s);
    // Only the name has changed: the log stays.
    m_owner->stop();
    run("favourites log 1234567");
    startOwner();
    announce(announcement(u"0301234567"_s, u"+49301234567"_s));
    announce(announcement({}, u"7"_s));
    QTRY_COMPARE(favourites(), u"1234567 7   "_s);
    QCOMPARE(unread("1234567"), 1);
    // What a favourite left behind does not keep it from coming back.
    m_owner->stop();
    QFile::remove(path("topPalsDetails"));
    startOwner();
    announce(announcement({}, u"1234567"_s));
    QTRY_COMPARE(favourites(), u"1234567    "_s);
    QCOMPARE(unread("1234567"), 0);
}

void FavouritesTest::ignoresWhatIsNoAnnouncement()
{
    startOwner();
    const QByteArray whole = announcement(u"1"_s, u"555"_s);
    for (qsizetype size = 0; size < whole.size(); ++size)
        announce(whole.first(size));
    announce(whole + '\0');
    announce(QByteArray(1'000'000, '\xFF'));
    announce(announcement({}, QString(500'000, u'1')));
    announce(announcement({}, u"12\n3"_s));
    announce(announcement({}, u"\u0664"_s));
    announce(announcement({}, {}));
    announce(announcement({}, u"a/b"_s));
    announce(announcement({}, u"7"_s));
    QTRY_VERIFY(entries("7").isEmpty());
    const QByteArray log = m_owner->log();
    QCOMPARE(log.count("ignored\n"), whole.size() + 6);
    QCOMPARE(log.count("cannot be made a favourite"), 1);
}

void FavouritesTest::allowsOneOwner_data()
{
    QTest::addColumn<QByteArray>("leftover");
    QTest::newRow("no lock") << QByteArray();
    QTest::newRow("one of a process killed too early") << QByteArray("");
    QTest::newRow("one of a process whose number another one has")
        << QByteArray::number(QCoreApplication::applicationPid()) + "\ntst_Favourites\n";
    QTest::newRow("one of another host") << QByteArray("1\nzyn-favourites\nelsewhere\n\n\n");
}

void FavouritesTest::allowsOneOwner()
{
    QFETCH(QByteArray, leftover);
    if (!leftover.isNull())
        m_store->write(u"topPalsLock"_s, leftover);
    startOwner();

    ServiceProcess second;
    QVERIFY(!second.start(ZYN_FAVOURITES));
    QCOMPARE(second.finish(), 1);
    const QString refused = run("favourites replace '' 1");
    QVERIFY2(refused.contains(u" (zyn-favourites) owns the favourites\nexit 1"_s), qPrintable(refused));
    for (const char* line : {"favourites log 1", "favourites remove 1", "favourites remove 1 0"})
        QCOMPARE(run(line), refused);
    m_owner->stop(SIGKILL);
    QCOMPARE(run("favourites replace '' 1"), u"1 is a favourite now\nexit 0"_s);
}

/// What inspect says of a file, without the path and the table.
QString FavouritesTest::inspected(const char* name) const
{
    const QString text = run({u"inspect"_s, path(name)});
    return text.section(u": "_s, 1).section(u"PLACE "_s, 0, 0);
}

void FavouritesTest::inspects()
{
    setSlots(38); // as large as a record file
    run("favourites replace '' 555");
    run("favourites log 555");
    run("favourites log 555");
    QCOMPARE(inspected("topPalsDetails"), u"favourites, 1 in use, sound\n"_s);
    const QByteArray sound = m_store->read(u"555"_s);
    QCOMPARE(sound.size(), zyn::RecordFile::size());
    for (const char* name : {"555", "copy"}) {
        m_store->write(QLatin1String(name), sound);
        QCOMPARE(inspected(name), u"activities of a favourite, 2 in use, sound\n"_s);
    }

    QByteArray damaged = sound;
    PHONE_ENG_ActivityLog entry;
    std::memset(static_cast<void*>(&entry), '5', sizeof entry);
    entry.topPalsAvlPos = 3;
    entry.topPalsAvlIndex = -2;
    const QByteArray bytes(reinterpret_cast<const char*>(&entry), sizeof entry);
    damaged.replace(qsizetype(zyn::getTopPalsAvlFilePos(1)), bytes.size(), bytes);
    damaged[qsizetype(zyn::getTopPalsAvlFilePos(2))] = '5';
    m_store->write(u"555"_s, damaged + '5');
    QCOMPARE(inspected("555"),
             QStringLiteral("activities of a favourite, 2 in use, not sound\n"
                            "  the size is 11409 bytes, not 11408\n"
                            "  slot 1: the entry names slot 3\n  slot 1: the index is -2\n"
                            "  slot 1: the number is '%1'\n  slot 1: the read flags are 0x35\n"
                            "  slot 1: the flag of its use is 53\n  slot 1: the flag of its completion is 53\n"
                            "  slot 1: the number has no NUL\n"
                            "  slot 1: the name has no NUL\n  slot 1: the session id has no NUL\n"
                            "  slot 1: the message has no NUL\n  slot 2: it is free but not blank\n")
                 .arg(QString(42, u'5')));

    m_store->write(u"555"_s, "");
    QVERIFY(run("favourites list")
                .endsWith(u"0      555     -        -                    -\n"
                          "zynphone: the file of 555 cannot be read\nexit 1"_s));
    QByteArray details = zyn::bytesOf(zyn::StoreFileHeader{}).toByteArray();
    TopPalNumberDetail places[5];
    places[0].nthFileItem = 0;
    places[1] = {2, "555"};
    places[2] = {2, "555"};
    places[3].phoneNumber[0] = '5';
    places[4].nthFileItem = 4;
    std::memset(places[4].phoneNumber, '5', sizeof places[4].phoneNumber);
    for (const TopPalNumberDetail& place : places)
        details += zyn::bytesOf(place);
    m_store->write(u"topPalsDetails"_s, details);
    QCOMPARE(inspected("topPalsDetails"),
             u"favourites, 4 in use, not sound\n  place 0: it is taken but has no number\n"
             "  place 1: it names place 2\n  place 2: its number is that of place 1 too\n"
             "  place 3: it is free but has a number\n  place 4: the number has no NUL\n"_s);
    m_store->write(u"topPalsDetails"_s, details.replace(4, 1, "\4").chopped(1));
    for (const char* line : {"favourites list", "favourites show 555", "favourites unread 555"})
        QVERIFY(run(line).endsWith(u"topPalsDetails is damaged or cannot be read; see 'zynphone inspect'\nexit 1"_s));
    QCOMPARE(inspected("topPalsDetails"), u"favourites, 0 in use, not sound\n  the version is 4, not 5\n"
                                          "  the size is 127 bytes, not 128\nexit 1"_s);
}

QTEST_GUILESS_MAIN(FavouritesTest)
#include "tst_Favourites.moc"
