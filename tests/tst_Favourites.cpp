// The favourites: their owner, run as the process that it is, and the tool's verbs around it.
#include "platform/QCopChannel.h"
#include "recentcall/utility/ActivityLog_ENG_RecordStore.h"
#include "recentcall/utility/PHONE_RecentCall.h"
#include "recentcall/utility/RC_TopPals_AL_Interface.h"
#include "recentcall/utility/RecentCall_Client_p.h"
#include "recentcall/utility/RecentCall_Messages_p.h"
#include "recentcall/utility/store/ActivityLogFile_p.h"
#include "recentcall/utility/store/StoreFile_p.h"
#include "tests/support/ActivityLogFixture.h"
#include "tests/support/Process.h"
#include "tests/support/Scenario.h"
#include "tests/support/StdoutCapture.h"
#include "tests/support/Timeout.h"
#include "tests/support/Tool.h"
#include "utility/message/Payload_p.h"

#include <QtCore/QDir>

#include <algorithm>
#include <optional>

#include <fcntl.h>

using namespace Qt::StringLiterals;
using tool::run;
using Words = QStringList;

namespace {

constexpr qint64 kNoon = 1'700'000'000;

/// Hands the recent-call service calls that began so many minutes after noon, or "later" than now.
bool add(RC_CALL_CATEGORY_T list, const Words& numberAndMinutes)
{
    return std::all_of(numberAndMinutes.begin() + 1, numberAndMinutes.end(), [&](const QString& minute) {
        const QDateTime start = minute == u"later" ? QDateTime::currentDateTime().addSecs(60)
                                                   : QDateTime::fromSecsSinceEpoch(kNoon + qint64{minute.toInt()} * 60);
        PHONE_ENG_RecentCall record(numberAndMinutes.first(), start, 5);
        record.category = list;
        return PHONE_RecentCall_AddRecord(record) == 0;
    });
}

void announce(const QByteArray& payload)
{
    QCopChannel::send("ACTIVITY_LOG_CHANNEL", "MODIFY_TOPPAL_DETAILS", payload);
}

QByteArray announcement(const QString& oldNumber, const QString& newNumber)
{
    return zyn::encode(zyn::kModifyFavourite, {oldNumber, newNumber, {}, {}, {}});
}

/// What @p show makes of each entry of the favourite, newest first; "none" when they cannot be read.
template<typename Show>
Words entries(const Words& favourite, Show show)
{
    const StdoutCapture quiet;
    ActivityLog_ENG_RecordStore::destroy();
    QSortedList<PHONE_ENG_ActivityLog> list;
    list.setAutoDelete(true);
    if (ActivityLog_ENG_RecordStore::instance()->readTopPalsAvlContactRecordList(list, favourite.first()) != 1)
        return {u"none"_s};
    Words shown;
    for (const PHONE_ENG_ActivityLog* entry : list)
        shown += show(*entry);
    return shown;
}

/// When an entry began, in the words of add().
QString minuteOf(const PHONE_ENG_ActivityLog& entry)
{
    return entry.startTime > QDateTime::currentSecsSinceEpoch() ? u"later"_s
                                                                : QString::number((entry.startTime - kNoon) / 60);
}

QString sorted(Words words)
{
    words.sort();
    return words.join(u' ');
}

/// Adds entries to the favourite 555, each by a process of its own: when, in seconds after a noon or in full, and the
/// text.
bool logMessages(const Words& messages)
{
    return std::ranges::all_of(messages, [](const QString& message) {
        QString time = message.section(u'/', 0, 0);
        if (!time.contains(u'T'))
            time = time == u"future" ? u"2037-12-31T12:00:00Z"_s : u"2026-01-01T12:00:0%1Z"_s.arg(time);
        return run({u"favourites"_s, u"log"_s, u"555"_s, u"--at"_s, time, u"--message"_s, message.section(u'/', 1)})
            .startsWith(u"logged in place ");
    });
}

} // namespace

class tst_Favourites : public QObject
{
    Q_OBJECT

private:
    std::optional<ActivityLogFixture> m_store;
    std::optional<ServiceProcess> m_service;
    std::optional<ServiceProcess> m_owner;

    QString path(const QString& name) const { return m_store->file(name); }
    void startOwner() { QVERIFY(m_owner.emplace().start(ZYN_FAVOURITES)); }
    QString slots(const QString& name) const
    {
        const QFile file(path(name));
        return file.exists() ? QString::number((file.size() - zyn::ContactFile::size(0))
                                               / (zyn::ContactFile::size(1) - zyn::ContactFile::size(0)))
                             : u"none"_s;
    }
    QString zynphone(const Words& words) const
    {
        Words arguments = words;
        return run(arguments.replaceInStrings(u"@"_s, m_store->path())).simplified();
    }
    scenario::Verbs verbs();

private Q_SLOTS:
    void init()
    {
        qputenv("TZ", "UTC");
        m_store.emplace();
        zyn::makeStoreDirectory();
    }
    void cleanup()
    {
        for (auto* process : {&m_owner, &m_service}) {
            if (*process)
                (*process)->stop();
            process->reset();
        }
        m_store.reset();
    }

    void ownsTheFavourites_data() { scenario::addRows(QFINDTESTDATA("data/favourites.txt")); }
    void ownsTheFavourites() { scenario::play(verbs()); }

    void ignoresWhatIsNoAnnouncement()
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
        QTRY_VERIFY(entries({u"7"_s}, minuteOf).isEmpty());
        const QByteArray log = m_owner->log();
        QCOMPARE(log.count("ignored\n"), whole.size() + 6);
        QCOMPARE(log.count("cannot be made a favourite"), 1);
    }

    void allowsOneOwner_data()
    {
        QTest::addColumn<QByteArray>("leftover");
        QTest::newRow("no lock") << QByteArray();
        QTest::newRow("one of a process killed too early") << QByteArray("");
        QTest::newRow("one of a process whose number another one has")
            << QByteArray::number(QCoreApplication::applicationPid()) + "\ntst_Favourites\n";
        QTest::newRow("one of another host") << QByteArray("1\nzyn-favourites\nelsewhere\n\n\n");
    }
    void allowsOneOwner()
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
    QString inspected(const char* name) const
    {
        const QString text = run({u"inspect"_s, path(QLatin1String(name))});
        return text.section(u": "_s, 1).section(u"PLACE "_s, 0, 0);
    }
    void inspects()
    {
        m_store->setSlots(u"38"_s); // as large as a record file
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
            QVERIFY(
                run(line).endsWith(u"topPalsDetails is damaged or cannot be read; see 'zynphone inspect'\nexit 1"_s));
        QCOMPARE(inspected("topPalsDetails"), u"favourites, 0 in use, not sound\n  the version is 4, not 5\n"
                                              "  the size is 127 bytes, not 128\nexit 1"_s);
    }
};

/// The words of the scenarios.
scenario::Verbs tst_Favourites::verbs()
{
    const auto file = [this](const Words& words) { return path(words.value(0)); };
    const auto exchange = [this](const Words& words) {
        return ::renameat2(AT_FDCWD, QFile::encodeName(path(words.at(0))).constData(), AT_FDCWD,
                           QFile::encodeName(path(words.at(1))).constData(), RENAME_EXCHANGE)
               == 0;
    };
    return {
        {u"start-service"_s, [this] { QVERIFY(m_service.emplace().start(ZYN_RECENTCALLD)); }},
        {u"stop-service"_s, [this] { return m_service->stop(); }},
        {u"start-owner"_s, [this] { startOwner(); }},
        {u"stop-owner"_s, [this] { return m_owner->stop(); }},
        {u"kill-owner"_s, [this] { return m_owner->stop(SIGKILL); }},
        {u"log"_s,
         [this] {
             const QByteArray log = m_owner->logged();
             return QString::fromUtf8(log.mid(log.indexOf('\n') + 1))
                 .remove(u"zyn-favourites: "_s)
                 .trimmed()
                 .replace(u'\n', u"; "_s);
         }},
        {u"add"_s, [](const Words& words) { return add(RC_CALL_CATEGORY_MISSED, words); }},
        {u"add-dialed"_s, [](const Words& words) { return add(RC_CALL_CATEGORY_DIALED, words); }},
        {u"mark"_s,
         [](const Words& words) {
             PHONE_ENG_RecentCall seen = StoreFixture::call(RC_CALL_CATEGORY_MISSED, "");
             seen.uid = words.first().toInt();
             return int{zyn::recentcall::markRead(seen)};
         }},
        // What the phone server sends when a call comes or ends.
        {u"call-change"_s, [] { QCopChannel::send("/ZYN/phone", "PHONE_MSG_44"); }},
        {u"announce"_s, [](const Words& words) { announce(announcement(words.at(0), words.at(1))); }},
        {u"zynphone"_s, [this](const Words& words) { return zynphone(words); }},
        {u"message"_s, logMessages},
        {u"messages"_s,
         [] { return sorted(entries({u"555"_s}, [](const auto& entry) { return entry.getMsgString(); })); }},
        {u"entries"_s, [](const Words& words) { return entries(words, minuteOf).join(u' '); }},
        {u"uids"_s,
         [](const Words& words) {
             return sorted(entries(words, [](const auto& entry) { return QString::number(entry.uid); }));
         }},
        {u"unread"_s,
         [](const Words& words) {
             const StdoutCapture quiet;
             TopPals_Missed_Details details{words.first()};
             RC_TopPals_AL_Interface::instance()->getUnreadCount(details);
             return details.missedCallCount;
         }},
        {u"favourites"_s,
         [] {
             const StdoutCapture quiet;
             ActivityLog_ENG_RecordStore::destroy();
             QString names[ActivityLog_ENG_RecordStore::kFavourites];
             ActivityLog_ENG_RecordStore::instance()->getCurrentTopPalsFileNames(names);
             return Words(std::begin(names), std::end(names)).join(u',');
         }},
        // The files, and what others do to them.
        {u"limit"_s, [this](const Words& words) { m_store->setSlots(words.first()); }},
        {u"slots"_s, [this](const Words& words) { return slots(words.first()); }},
        {u"seen"_s, [this] { return (QFile(path(u"topPalsCalls"_s)).size() - 8) / 8; }},
        {u"poke"_s,
         [this](const Words& words) {
             m_store->patch(words[0], words[1].toInt(), QByteArray::fromHex(words[2].toLatin1()));
         }},
        {u"copy"_s, [this](const Words& words) { return QFile::copy(path(words.at(0)), path(words.at(1))); }},
        {u"equal"_s, [this](const Words& words) { return m_store->read(words.at(0)) == m_store->read(words.at(1)); }},
        {u"remove"_s, [=](const Words& words) { return QFile::remove(file(words)); }},
        {u"mkdir"_s, [=](const Words& words) { return QDir().mkdir(file(words)); }},
        {u"rmdir"_s, [=](const Words& words) { return QDir().rmdir(file(words)); }},
        {u"exchange"_s, exchange},
    };
}

QTEST_GUILESS_MAIN(tst_Favourites)
#include "tst_Favourites.moc"
