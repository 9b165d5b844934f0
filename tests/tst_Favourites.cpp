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
};

/// The words of the scenarios.
scenario::Verbs tst_Favourites::verbs()
{
    qputenv("FAVOURITES", ZYN_FAVOURITES);
    return {
        {u"start-service"_s, [this] { return m_service.emplace().start(ZYN_RECENTCALLD); }},
        {u"stop-service"_s, [this] { return m_service->stop(); }},
        {u"start-owner"_s, [this] { startOwner(); }},
        {u"stop-owner"_s, [this] { return m_owner->stop(); }},
        {u"kill-owner"_s, [this] { return m_owner->stop(SIGKILL); }},
        {u"log"_s,
         [this] {
             const QString log = QString::fromUtf8(m_owner->logged()).section(u'\n', 1);
             return QString(log).remove(u"zyn-favourites: "_s).trimmed().replace(u'\n', u"; "_s);
         }},
        {u"add"_s, [](const Words& w) { return add(RC_CALL_CATEGORY_MISSED, w); }},
        {u"add-dialed"_s, [](const Words& w) { return add(RC_CALL_CATEGORY_DIALED, w); }},
        {u"mark"_s,
         [](const Words& w) {
             PHONE_ENG_RecentCall seen = StoreFixture::call(RC_CALL_CATEGORY_MISSED, "");
             seen.uid = w[0].toInt();
             return int{zyn::recentcall::markRead(seen)};
         }},
        // What the phone server sends when a call comes or ends.
        {u"call-change"_s, [] { QCopChannel::send("/ZYN/phone", "PHONE_MSG_44"); }},
        {u"announce"_s, [](const Words& w) { announce(announcement(w[0], w[1])); }},
        {u"zynphone"_s, [this](const Words& w) { return zynphone(w); }},
        {u"message"_s, logMessages},
        {u"messages"_s,
         [] { return sorted(entries({u"555"_s}, [](const auto& entry) { return entry.getMsgString(); })); }},
        {u"entries"_s, [](const Words& w) { return entries(w, minuteOf).join(u' '); }},
        {u"uids"_s,
         [](const Words& w) {
             return sorted(entries(w, [](const auto& entry) { return QString::number(entry.uid); }));
         }},
        {u"unread"_s,
         [](const Words& w) {
             const StdoutCapture quiet;
             TopPals_Missed_Details details{w[0]};
             auto* const interface = RC_TopPals_AL_Interface::instance();
             return interface && interface->getUnreadCount(details) >= 0 ? details.missedCallCount : -1;
         }},
        {u"favourites"_s,
         [] {
             const StdoutCapture quiet;
             ActivityLog_ENG_RecordStore::destroy();
             Words names(ActivityLog_ENG_RecordStore::kFavourites);
             ActivityLog_ENG_RecordStore::instance()->getCurrentTopPalsFileNames(names.data());
             return names.join(u',');
         }},
        // The files, and what others do to them.
        {u"limit"_s, [this](const Words& w) { m_store->setSlots(w[0]); }},
        {u"slots"_s, [this](const Words& w) { return (QFile(path(w[0])).size() - 8) / 300; }},
        {u"seen"_s, [this] { return (QFile(path(u"topPalsCalls"_s)).size() - 8) / 8; }},
        {u"poke"_s, [this](const Words& w) { m_store->patch(w[0], w[1].toInt(), scenario::bytes(w[2])); }},
        {u"sh"_s, [this](const Words& w) { return scenario::shell(path({}), w); }},
        {u"exchange"_s,
         [this](const Words& w) {
             const QByteArray names[] = {QFile::encodeName(path(w[0])), QFile::encodeName(path(w[1]))};
             return ::renameat2(AT_FDCWD, names[0], AT_FDCWD, names[1], RENAME_EXCHANGE) == 0;
         }},
    };
}

QTEST_GUILESS_MAIN(tst_Favourites)
#include "tst_Favourites.moc"
