// The recent-call screens, the idle screen's counter and the tool's verbs for both, run as the processes that they are.
#include "recentcall/utility/PHONE_RecentCall.h"
#include "recentcall/utility/RC_MsgInterface.h"
#include "recentcall/utility/RecentCall_MsgClient.h"
#include "tests/support/Process.h"
#include "tests/support/Scenario.h"
#include "tests/support/StoreFixture.h"
#include "tests/support/Timeout.h"
#include "tests/support/Tool.h"

#include <QtCore/QDir>

#include <sys/resource.h>

using namespace Qt::StringLiterals;

namespace {

using Message = RecentCall_Msg;
using Words = QStringList;

constexpr qint64 kStart = 1'792'888'200; // 00:30 UTC, in the hour that comes twice in the time zone of the tests

RC_CALL_CATEGORY_T listOf(const QString& word)
{
    const auto number = Words{u"answered"_s, u"missed"_s, u"dialed"_s, u"all"_s}.indexOf(word);
    return RC_CALL_CATEGORY_T(number < 0 ? word.toInt() : int(number) + 1);
}

QByteArray decoded(const QString& word)
{
    return QByteArray::fromPercentEncoding(word.toLatin1());
}

/// Adds a call: its list, number, name and duration.
bool add(const Words& words)
{
    PHONE_ENG_RecentCall call(QString::fromLatin1(decoded(words.at(1))), QDateTime::fromSecsSinceEpoch(kStart),
                              words.value(3).toInt());
    call.category = listOf(words.at(0));
    call.setDisplayName(QString::fromLatin1(decoded(words.value(2))));
    return PHONE_RecentCall_AddRecord(call) == 0;
}

/// A program whose lines are read one by one; it listens once it is started. Its log stands among what it shows, unless
/// that goes to the file @p output.
class Screen : public QProcess
{
public:
    explicit Screen(const char* program, const QStringList& options = {}, const QString& output = {})
    {
        setProcessChannelMode(output.isEmpty() ? MergedChannels : SeparateChannels);
        setStandardOutputFile(output);
        setReadChannel(output.isEmpty() ? StandardOutput : StandardError);
        start(QLatin1String(program), options);
    }
    ~Screen() override { end(SIGTERM); }

    /// The next line, without its end; empty when none comes.
    QString nextLine()
    {
        while (!canReadLine() && waitForReadyRead(role::kTimeout)) {
        }
        return QString::fromUtf8(readLine()).remove(u'\n');
    }
    /// The lines before the next one that is @p last.
    QString until(const QString& last)
    {
        QString lines;
        for (QString line = nextLine(); line != last && state() == Running; line = nextLine())
            lines += line + u'|';
        return lines;
    }
    /// Sends the signal, and gives the exit code; -1 when the process was killed.
    int end(int signal)
    {
        if (processId() != 0)
            ::kill(static_cast<pid_t>(processId()), signal);
        return role::finish(*this);
    }

    /// Reads until a line contains the text: who looks late may find the next change made already.
    bool comesTo(const Words& text)
    {
        QString line = nextLine();
        while (!line.isEmpty() && !line.contains(text.join(u' ')))
            line = nextLine();
        return !line.isEmpty();
    }
};

/// Lets a process open no more files, or as many as it may.
void limitDescriptors(qint64 process, bool isLimited)
{
    rlimit limits = {};
    ::prlimit(static_cast<pid_t>(process), RLIMIT_NOFILE, nullptr, &limits);
    const QDir open(u"/proc/%1/fd"_s.arg(process));
    for (limits.rlim_cur = 0; isLimited && open.exists(QString::number(limits.rlim_cur));)
        ++limits.rlim_cur;
    if (!isLimited)
        limits.rlim_cur = limits.rlim_max;
    ::prlimit(static_cast<pid_t>(process), RLIMIT_NOFILE, &limits, nullptr);
}

} // namespace

class tst_RecentScreens : public QObject
{
    Q_OBJECT

private:
    std::optional<StoreFixture> m_files;
    std::optional<Screen> m_recents, m_idle, m_follower;
    ServiceProcess m_service;
    QStringList m_answers; ///< of the number picker

    QString startRecents(const Words& options, const QString& output = {})
    {
        return m_recents.emplace(ZYN_RECENTS, options, output).until(u"zyn-recents: listening on /ZYN/recentcall"_s);
    }
    QString startIdle(const QString& output = {})
    {
        return m_idle.emplace(ZYN_IDLE, Words(), output).until(u"zyn-idle: listening on /ZYN/recentcall"_s);
    }
    /// What the screens show until they are told to hide: all of it, or the lines that contain a text.
    QString shown(const Words& text)
    {
        Message::requestHideUI();
        const QStringList lines = m_recents->until(u"hidden"_s).split(u'|', Qt::SkipEmptyParts);
        return lines.filter(text.join(u' ')).join(u'|');
    }
    QString read(RC_CALL_CATEGORY_T list) const
    {
        QStringList slotNumbers;
        for (int slot = 0; slot < zyn::kRecordSlots; ++slot) {
            if (m_files->recordIn(list, slot).readFlags == PHONE_ENG_RecentCall::kRead)
                slotNumbers += QString::number(slot);
        }
        return slotNumbers.join(u' ');
    }
    scenario::Verbs verbs();

private Q_SLOTS:
    void init()
    {
        qputenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3");
        m_files.emplace();
        m_answers.clear();
        connect(RC_MsgInterface::instance(), &RC_MsgInterface::rcFinished, this,
                [this](bool isPicked, const QString& number) { m_answers += isPicked ? number : u"none"_s; });
        QVERIFY(m_service.start(ZYN_RECENTCALLD));
    }
    void cleanup()
    {
        for (auto* screen : {&m_recents, &m_idle, &m_follower})
            screen->reset();
        RC_MsgInterface::destruction();
        RecentCall_MsgClient::destruction();
        m_service.stop();
    }

    void showsTheCalls_data() { scenario::addRows(QFINDTESTDATA("data/recent_screens.txt")); }
    void showsTheCalls() { scenario::play(verbs()); }
};

/// The words of the scenarios.
scenario::Verbs tst_RecentScreens::verbs()
{
    return {
        {u"start-service"_s, [this] { return m_service.start(ZYN_RECENTCALLD); }},
        {u"stop-service"_s, [this] { return m_service.stop(); }},
        {u"pause-service"_s, [this] { m_service.tell(SIGSTOP); }},
        {u"resume-service"_s, [this] { m_service.tell(SIGCONT); }},
        {u"add"_s, add},
        {u"read"_s, [this](const Words& words) { return read(listOf(words.first())); }},
        // What is asked of the screens.
        {u"list"_s, [](const Words& words) { Message::requestShowUI(listOf(words.first())); }},
        {u"page"_s, [](const Words& words) { Message::requestShowPage(RC_PAGE_ID_T(words.first().toInt())); }},
        {u"nothing"_s, [] { Message::send(Message::RECENTCALL_MSG_SHOW_PAGE_S); }},
        {u"detail"_s,
         [](const Words& words) { Message::showRecordDetail(words.at(1).toInt(), listOf(words.first())); }},
        {u"hide"_s, [] { Message::requestHideUI(); }},
        {u"switch-off"_s, [] { Message::send(Message::RECENTCALL_MSG_POWEROFF_S); }},
        {u"announce"_s, [] { Message::send(Message::RECENTCALL_MSG_MISSEDCALL_UPDATE_S); }},
        {u"pick"_s,
         [](const Words& words) { RC_MsgInterface::instance()->requestShowUI(RC_PAGE_ID_T(words.first().toInt())); }},
        {u"answers"_s, [this] { return m_answers.join(u' '); }},
        // The programs, and what they show.
        {u"recents"_s, [this](const Words& options) { return startRecents(options); }},
        {u"recents-to"_s, [this](const Words& output) { return startRecents({}, output.first()); }},
        {u"type"_s, [this](const Words& words) { return m_recents->write(decoded(words.first())) > 0; }},
        {u"type-no-more"_s, [this] { m_recents->closeWriteChannel(); }},
        {u"shown"_s, [this](const Words& text) { return shown(text); }},
        {u"recents-until"_s, [this](const Words& text) { return m_recents->comesTo(text); }},
        {u"end-recents"_s, [this] { return m_recents->end(SIGTERM); }},
        {u"idle"_s, [this] { return startIdle(); }},
        {u"idle-to"_s, [this](const Words& output) { return startIdle(output.first()); }},
        {u"idle-shows"_s, [this] { return m_idle->nextLine(); }},
        {u"idle-until"_s, [this](const Words& text) { return m_idle->comesTo(text); }},
        {u"end-idle"_s, [this] { return m_idle->end(SIGINT); }},
        {u"follow"_s, [this](const Words& words) { m_follower.emplace(ZYN_TOOL, words); }},
        {u"follow-until"_s, [this](const Words& text) { return m_follower->comesTo(text); }},
        {u"end-follow"_s, [this] { return m_follower->end(SIGTERM); }},
        {u"zynphone"_s, [](const Words& words) { return tool::run(words).replace(u'\n', u'|'); }},
        // The files, and what happens to them.
        {u"sh"_s, [this](const Words& words) { return scenario::shell(m_files->path(), words); }},
        {u"limit-descriptors"_s, [this] { limitDescriptors(m_idle->processId(), true); }},
        {u"unlimit-descriptors"_s, [this] { limitDescriptors(m_idle->processId(), false); }},
    };
}

QTEST_GUILESS_MAIN(tst_RecentScreens)

#include "tst_RecentScreens.moc"
