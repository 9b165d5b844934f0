// The recent-call screens, the idle screen's counter and the tool's verbs for both, run as the processes that they are.
#include "recentcall/utility/PHONE_RecentCall.h"
#include "recentcall/utility/RC_MsgInterface.h"
#include "recentcall/utility/RecentCall_MsgClient.h"
#include "tests/support/LineProcess.h"
#include "tests/support/Patience.h"
#include "tests/support/ServiceProcess.h"
#include "tests/support/StoreFixture.h"
#include "tests/support/Tool.h"

#include <QtCore/QDir>

#include <functional>
#include <limits>

#include <sys/resource.h>

using namespace Qt::StringLiterals;

namespace {

using tool::run;
using Message = RecentCall_Msg;

constexpr auto kMissed = RC_CALL_CATEGORY_MISSED;
constexpr auto kDialed = RC_CALL_CATEGORY_DIALED;
constexpr auto kAll = RC_CALL_CATEGORY_ALL;
constexpr RC_PAGE_ID_T kPicker{5};
constexpr qint64 kStart = 1'792'888'200; // 00:30 UTC, in the hour that comes twice in the time zone of the tests

void add(RC_CALL_CATEGORY_T category, const char* number, const char* name = "", int duration = 0)
{
    PHONE_ENG_RecentCall call(QLatin1String(number), QDateTime::fromSecsSinceEpoch(kStart), duration);
    call.category = category;
    call.setDisplayName(QString::fromLatin1(name));
    PHONE_RecentCall_AddRecord(call);
}

/// Reads until a line contains @p part: who looks late may find the next change made already.
bool comesTo(LineProcess& process, const QString& part)
{
    QString line = process.nextLine();
    while (!line.isEmpty() && !line.contains(part))
        line = process.nextLine();
    return !line.isEmpty();
}

/// A program of the handset that shows something, listening once it is constructed. Its log stands among what it shows,
/// unless that goes to the file @p output.
class Screen : public LineProcess
{
public:
    explicit Screen(const char* program, const QStringList& options = {}, const QString& output = {})
    {
        setProcessChannelMode(output.isEmpty() ? MergedChannels : SeparateChannels);
        setStandardOutputFile(output);
        setReadChannel(output.isEmpty() ? StandardOutput : StandardError);
        start(QLatin1String(program), options);
        shownAtStart =
            linesBefore(u"%1: listening on /ZYN/recentcall"_s.arg(QFileInfo(QLatin1String(program)).fileName()));
    }

    /// What it shows until it is told to hide.
    QString shown()
    {
        Message::requestHideUI();
        return linesBefore(u"hidden"_s);
    }

    QString shownAtStart;
};

class RecentsScreen : public Screen
{
public:
    explicit RecentsScreen(const QStringList& options = {})
        : Screen(ZYN_RECENTS, options)
    {}
};

} // namespace

class tst_RecentScreens : public QObject
{
    Q_OBJECT

private:
    std::optional<StoreFixture> m_files;
    ServiceProcess m_service;

private Q_SLOTS:
    void init()
    {
        qputenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3");
        m_files.emplace();
        QVERIFY(m_service.start(ZYN_RECENTCALLD));
    }
    void cleanup()
    {
        RC_MsgInterface::destruction();
        RecentCall_MsgClient::destruction();
        m_service.stop();
    }

    void showsWhatIsAskedFor_data()
    {
        QTest::addColumn<std::function<void()>>("ask");
        QTest::addColumn<QString>("shown");

        const auto row = [](const char* name, const std::function<void()>& ask, const char* shown) {
            QTest::newRow(name) << ask << QString::fromUtf8(shown);
        };
        const auto list = [](int category) {
            return [category] { Message::requestShowUI(RC_CALL_CATEGORY_T(category)); };
        };
        const auto page = [](int number) { return [number] { Message::requestShowPage(RC_PAGE_ID_T(number)); }; };
        const auto detail = [](int category, int index) {
            return [category, index] { Message::showRecordDetail(index, RC_CALL_CATEGORY_T(category)); };
        };
        row("all calls", list(kAll),
            "all: 3 calls, 2 unread\n"
            "ROW  NEW  LIST    NUMBER   NAME           TIME                 DURATION\n"
            "0         dialed  0301     Anna           2026-10-25 02:30:00  1:01:05\n"
            "1    *    missed  \\x1b[2J  Eve\\x9b1m\\x0a  2026-10-25 02:30:00  0:00:00\n"
            "2    *    missed  445566                  2026-10-25 02:30:00  -0:00:02\n");
        row("an empty list", page(1), "answered: 0 calls, 0 unread\n");
        row("one call", detail(kDialed, 0),
            "dialed, row 0\nNEW\nLIST      dialed\nNUMBER    0301\nNAME      Anna\n"
            "TIME      2026-10-25 02:30:00\nDURATION  1:01:05\n");
        row("a row behind the last", detail(kMissed, 2), "zyn-recents: there is no call 2 of category 2\n");
        row("a row before the first", detail(kMissed, -1), "zyn-recents: there is no call -1 of category 2\n");
        row("a row of no list", detail(5, std::numeric_limits<int>::max()),
            "zyn-recents: there is no call 2147483647 of category 5\n");
        row("a category without a page", list(5), "zyn-recents: no page lists calls of category 5\n");
        row(
            "an empty payload", [] { Message::send(Message::RECENTCALL_MSG_SHOW_PAGE_S); },
            "zyn-recents: there is no page 0\n");
    }
    void showsWhatIsAskedFor()
    {
        QFETCH(std::function<void()>, ask);
        QFETCH(QString, shown);
        add(kMissed, "445566", "", -2);
        add(kMissed, "\x1b[2J",
            "Eve\x9b"
            "1m\n");
        add(kDialed, "0301", "Anna", 3665);
        RecentsScreen screen;
        ask();
        QCOMPARE(screen.shown(), shown);
        // What was shown counts as read, and nothing else.
        const qsizetype unread = 2 - shown.count(u" * "_s);
        QVERIFY2(run("missed").startsWith(u"%1 unread\n"_s.arg(unread)), qPrintable(run("missed")));
    }

    void answersThePicker_data()
    {
        QTest::addColumn<QString>("options");
        QTest::addColumn<QByteArray>("input");
        QTest::addColumn<QStringList>("answers");
        QTest::newRow("a row") << u""_s << QByteArray("1\n") << QStringList{u"111"_s};
        QTest::newRow("one line for each time")
            << u""_s << QByteArray("0\n\n1\n") << QStringList{u"222"_s, {}, u"111"_s};
        QTest::newRow("a row after lines that are none")
            << u""_s << QByteArray("2\n-1\nx\x1b\n0 0\n") + QByteArray(500, '0') + "\n99999999999\n1\n"
            << QStringList{u"111"_s};
        QTest::newRow("a line that ends with the input") << u""_s << QByteArray("1") << QStringList{u"111"_s, {}};
        QTest::newRow("the same row always") << u"--pick 1"_s << QByteArray() << QStringList{u"111"_s, u"111"_s};
        QTest::newRow("none always") << u"--pick none"_s << QByteArray("1\n") << QStringList{{}, {}};
        QTest::newRow("a row that is none always") << u"--pick 2"_s << QByteArray("1\n") << QStringList{{}, {}};
    }
    void answersThePicker()
    {
        QFETCH(QString, options);
        QFETCH(QByteArray, input);
        QFETCH(QStringList, answers);
        add(kMissed, "111");
        add(kDialed, "222");
        RecentsScreen screen(tool::words(options));
        screen.write(input);
        screen.closeWriteChannel();
        for (const QString& answer : answers) {
            const QString number =
                answer.isNull() ? u"zynphone: no number was picked\nexit 3"_s : answer + u"\nexit 0"_s;
            QCOMPARE(run("recents pick --timeout 20"), number);
        }
        const QString shown = screen.shown();
        QVERIFY(shown.startsWith(u"picker: 2 calls, 1 unread\n"));
        QCOMPARE(shown.count(u"picked"_s), answers.size());
        QVERIFY(!shown.contains(u'\x1b'));
    }

    void closesThePickerWithoutAnAnswer_data()
    {
        QTest::addColumn<std::function<void(Screen&)>>("close");
        using Close = std::function<void(Screen&)>;
        QTest::newRow("hidden") << Close([](Screen&) { Message::requestHideUI(); });
        QTest::newRow("another page") << Close([](Screen&) { Message::requestShowUI(kAll); });
        QTest::newRow("a detail") << Close([](Screen&) { Message::showRecordDetail(0, kAll); });
        QTest::newRow("switched off") << Close([](Screen&) { Message::send(Message::RECENTCALL_MSG_POWEROFF_S); });
        QTest::newRow("told to end") << Close([](Screen& screen) { QCOMPARE(screen.end(SIGTERM), 0); });
        QTest::newRow("no service") << Close([](Screen&) {});
    }
    void closesThePickerWithoutAnAnswer()
    {
        QFETCH(std::function<void(Screen&)>, close);
        add(kMissed, "111");
        RecentsScreen screen;
        if (QTest::currentDataTag() == QByteArray("no service"))
            m_service.stop();
        QStringList answers;
        connect(RC_MsgInterface::instance(), &RC_MsgInterface::rcFinished, this,
                [&](bool selected, const QString& number) { answers += selected ? number : u"none"_s; });
        RC_MsgInterface::instance()->requestShowUI(kPicker);
        // Asked for again it stays open, and what it tells is for both.
        RC_MsgInterface::instance()->requestShowUI(RC_PAGE_ID_T(0));
        screen.linesBefore(u"zyn-recents: there is no page 0"_s);
        close(screen);
        QTRY_COMPARE(answers, QStringList({u"none"_s, u"none"_s}));
    }

    void countsMissedCallsLive()
    {
        LineProcess follower;
        follower.start(QStringLiteral(ZYN_TOOL), tool::words(u"missed --follow --json"_s));
        Screen idle(ZYN_IDLE);
        RecentsScreen screen;
        QVERIFY(comesTo(follower, u"\"unread\":0}"_s));
        QCOMPARE(idle.shownAtStart, u"missed 0 unread\n"_s);
        add(kMissed, "445566",
            "\x1b"
            "C");
        QCOMPARE(idle.nextLine(), u"missed 1 unread, last 445566 at 2026-10-25 02:30:00"_s);
        add(kDialed, "0301");
        add(kMissed, "\n77");
        QCOMPARE(idle.nextLine(), u"missed 2 unread, last \\x0a77 at 2026-10-25 02:30:00"_s);
        QVERIFY(comesTo(follower, uR"("start":"2026-10-25T00:30:00Z","type":"voice","uid":0}],"unread":2})"_s));
        QCOMPARE(run("missed --follow --count 1"), u"2 unread\n"
                                                   "UID  NUMBER  NAME   START                TYPE\n"
                                                   "2    \\x0a77         2026-10-25T02:30:00  voice\n"
                                                   "0    445566  \\x1bC  2026-10-25T02:30:00  voice\nexit 0"_s);
        Message::requestShowUI(kMissed);
        QVERIFY(comesTo(follower, u"\"unread\":0}"_s));
        // The list on the screen follows, and what it shows anew is read at once.
        add(kMissed, "999");
        QTRY_VERIFY(m_files->recordIn(kMissed, 2).readFlags == PHONE_ENG_RecentCall::kRead);
        const QString shown = screen.shown();
        QCOMPARE(shown.count(u"missed: "_s), 2);
        QVERIFY(shown.contains(u"missed: 3 calls, 1 unread\n"));
        QCOMPARE(run("missed"), u"0 unread\nexit 0"_s);
        QCOMPARE(follower.end(SIGTERM), 0);
        idle.linesBefore(u"missed 0 unread"_s);
        QCOMPARE(idle.state(), QProcess::Running);
        QCOMPARE(idle.end(SIGINT), 0);
    }

    void followsAServiceThatEndsAndStartsAgain()
    {
        add(kMissed, "111");
        RecentsScreen screen;
        Message::requestShowUI(kMissed);
        QVERIFY(comesTo(screen, u"111"_s));
        QTRY_COMPARE(m_files->recordIn(kMissed, 0).readFlags, PHONE_ENG_RecentCall::kRead);
        m_service.stop();
        QCOMPARE(run("missed"), u"zynphone: no recent-call service at "
                                "/tmp/zynrecentcallcom/recentcall_interface\nexit 1"_s);
        Screen idle(ZYN_IDLE);
        QCOMPARE(idle.shownAtStart, u"missed unknown: the recent-call service does not answer\n"_s);
        Message::requestShowUI(kAll);
        QVERIFY(comesTo(screen, u"zyn-recents: the recent-call service does not answer"_s));
        // Another call, with the uid of the one that is shown.
        m_files->write(kMissed, m_files->read(kMissed).replace("111", "222"));
        QVERIFY(m_service.start(ZYN_RECENTCALLD));
        QCOMPARE(idle.nextLine(), u"missed 0 unread"_s);
        QVERIFY(comesTo(screen, u"222"_s));
        QCOMPARE(screen.end(SIGTERM), 0);
        QCOMPARE(run("recents pick --timeout 1"), u"zynphone: the screens did not answer\nexit 1"_s);
    }

    void asksAServiceAgainThatDidNotAnswer()
    {
        add(kMissed, "111");
        Screen idle(ZYN_IDLE);
        QCOMPARE(idle.shownAtStart, u"missed 1 unread, last 111 at 2026-10-25 02:30:00\n"_s);
        m_service.tell(SIGSTOP);
        Message::send(Message::RECENTCALL_MSG_MISSEDCALL_UPDATE_S);
        QCOMPARE(idle.nextLine(), u"missed unknown: the recent-call service does not answer"_s);
        // It goes on where it was, and announces nothing.
        m_service.tell(SIGCONT);
        QCOMPARE(idle.nextLine(), u"missed 1 unread, last 111 at 2026-10-25 02:30:00"_s);
    }

    void tellsWhichFavouritesCannotBeRead_data()
    {
        using Change = std::function<void(const StoreFixture& files, qint64 idle)>;
        QTest::addColumn<Change>("harm");
        QTest::addColumn<Change>("mend");
        QTest::addColumn<QString>("told");
        static const QString one = u"favourite %1%L2 unknown: its file cannot be read"_s;
        static const QString all = u"favourites unknown: topPalsDetails is damaged or cannot be read"_s;
        static const QString name = u"%1%L2"_s;
        static QByteArray kept;
        static QByteArray details;
        const auto overwrite = [](const QString& file, const QByteArray& contents) {
            return [=](const StoreFixture& files, qint64) {
                kept = files.read(file);
                files.write(file, contents);
            };
        };
        const auto restore = [](const QString& file) {
            return [=](const StoreFixture& files, qint64) { files.write(file, kept); };
        };
        const auto limitDescriptors = [](qint64 process, bool isLimited) {
            rlimit limits = {};
            ::prlimit(static_cast<pid_t>(process), RLIMIT_NOFILE, nullptr, &limits);
            const QDir open(u"/proc/%1/fd"_s.arg(process));
            for (limits.rlim_cur = 0; isLimited && open.exists(QString::number(limits.rlim_cur));)
                ++limits.rlim_cur;
            if (!isLimited)
                limits.rlim_cur = limits.rlim_max;
            ::prlimit(static_cast<pid_t>(process), RLIMIT_NOFILE, &limits, nullptr);
        };
        QTest::newRow("a directory in the place of one's file") << Change([](const StoreFixture& files, qint64) {
            QVERIFY(QFile::rename(files.file(name), files.file(u"away"_s)));
            QVERIFY(QDir().mkdir(files.file(name)));
        }) << Change([](const StoreFixture& files, qint64) {
            QVERIFY(QDir().rmdir(files.file(name)));
            QVERIFY(QFile::rename(files.file(u"away"_s), files.file(name)));
        }) << one;
        QTest::newRow("one's file ends early") << Change(overwrite(name, "short")) << Change(restore(name)) << one;
        QTest::newRow("the file that names them is damaged")
            << Change(overwrite(u"topPalsDetails"_s, "x")) << Change(restore(u"topPalsDetails"_s)) << all;
        QTest::newRow("the store directory is removed") << Change([](const StoreFixture& files, qint64) {
            kept = files.read(name);
            details = files.read(u"topPalsDetails"_s);
            QVERIFY(QFile::remove(files.file(u"topPalsDetails"_s)));
            QVERIFY(QDir(files.file(QString())).removeRecursively());
        }) << Change([](const StoreFixture& files, qint64) {
            QVERIFY(QDir().mkpath(files.file(QString())));
            files.write(name, kept);
            files.write(u"topPalsDetails"_s, details);
        }) << u"favourite %1%L2 is none any more"_s;
        QTest::newRow("no more files may be opened")
            << Change([=](const StoreFixture& files, qint64 idle) {
                   limitDescriptors(idle, true);
                   files.write(name, files.read(name));
               })
            // What could be read all the time changes in no way.
            << Change([=](const StoreFixture&, qint64 idle) { limitDescriptors(idle, false); }) << all;
    }
    void tellsWhichFavouritesCannotBeRead()
    {
        using Change = std::function<void(const StoreFixture& files, qint64 idle)>;
        QFETCH(Change, harm);
        QFETCH(Change, mend);
        QFETCH(QString, told);
        const QString counters = u"favourite %1%L2: 1 missed, 0 messages unread"_s;
        QCOMPARE(run("favourites replace '' %251%25L2"), u"%1%L2 is a favourite now\nexit 0"_s);
        QCOMPARE(run("favourites log %251%25L2"), u"logged in place 0\nexit 0"_s);
        Screen idle(ZYN_IDLE);
        QCOMPARE(idle.shownAtStart, u"missed 0 unread\n"_s + counters + u'\n');
        harm(*m_files, idle.processId());
        QCOMPARE(idle.nextLine(), told);
        mend(*m_files, idle.processId());
        QCOMPARE(idle.nextLine(), counters);
    }

    void marksNothingThatCouldNotBeShown()
    {
        add(kMissed, "111");
        Screen screen(ZYN_RECENTS, {}, u"/dev/full"_s);
        Message::requestShowUI(kMissed);
        Message::requestShowPage(RC_PAGE_ID_T(0));
        QVERIFY(comesTo(screen, u"there is no page 0"_s));
        QCOMPARE(screen.end(SIGTERM), EXIT_FAILURE);
        QCOMPARE(Screen(ZYN_IDLE, {}, u"/dev/full"_s).end(SIGTERM), EXIT_FAILURE);
        QVERIFY(run("missed").startsWith(u"1 unread\n"));
    }
};

QTEST_GUILESS_MAIN(tst_RecentScreens)

#include "tst_RecentScreens.moc"
