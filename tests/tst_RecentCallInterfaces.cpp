// What applications have of recent calls but the lists: the screens, the missed calls, and the favourites' log.
#include "recentcall/utility/RC_MissedCallInterface.h"
#include "recentcall/utility/RC_MsgInterface.h"
#include "recentcall/utility/RC_TopPals_AL_Interface.h"
#include "recentcall/utility/RecentCall_MsgClient.h"
#include "support/ActivityLogFixture.h"
#include "support/Scenario.h"

#include <QtCore/QPointer>

using namespace Qt::StringLiterals;

namespace {

using Words = QStringList;
using Missed = RC_MissedCallInterface;
using Screens = RC_MsgInterface;

static_assert(!std::has_virtual_destructor_v<RC_EngineStub>); // it would be in the list's place

struct Engine final : RC_EngineStub
{
    RC_MissedCallList getUnreadMissedCallList() override { return RC_MissedCallList(3); }
};

RC_PAGE_ID_T pageOf(const Words& words)
{
    return RC_PAGE_ID_T{words[0].toInt()};
}

/// The client of this process gets a message.
void receive(const Words& words)
{
    RecentCall_MsgClient::instance()->receive(words[0].toLatin1(), QByteArray::fromHex(words.value(1).toLatin1()));
}

bool tellOfFavourite(const Words& words)
{
    const auto text = [&](int index) { return QString::fromUtf8(scenario::bytes(words[index])); };
    const TopPals_Details_T details = {text(1), text(2), {}, words[3].toInt()};
    return RC_TopPals_AL_Interface::instance()->modifyTopPalsContactDetails(text(0), details);
}

/// The result and the counts: of missed calls, and of messages.
QString unread(const Words& words)
{
    TopPals_Missed_Details details = {words[0], 77, 77};
    StdoutCapture output;
    const int result = RC_TopPals_AL_Interface::instance()->getUnreadCount(details);
    const QByteArray told = output.take();
    if (!told.startsWith("\nEntering RC_TopPals_AL_Interface::getUnreadCount()TP5_AVL:RC Store:")
        || !told.endsWith(" returns = " + QByteArray::number(result)
                          + "\n\nExiting RC_TopPals_AL_Interface::getUnreadCount()"))
        return scenario::lineOf(told);
    return u"%1 %2 %3"_s.arg(result).arg(details.missedCallCount).arg(details.unreadMsgCount);
}

/// Logs an entry: its category, type of message and flags.
bool logEntry(const Words& words)
{
    StdoutCapture output;
    PHONE_ENG_ActivityLog record = activity::entry(u"1234567"_s);
    record.category = RC_CALL_CATEGORY_T(words[0].toInt());
    record.msgType = words[1].toInt();
    record.readFlags = static_cast<uint8_t>(words[2].toUInt());
    return activity::log().addTopPalsAvlItem(record) == 1;
}

} // namespace

class tst_RecentCallInterfaces : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_fixture.emplace(); }
    void cleanup()
    {
        qunsetenv("ZYN_QCOP_PATH");
        Screens::destruction();
        Missed::destruction();
        RecentCall_MsgClient::destruction();
        RC_TopPals_AL_Interface::destruction();
        m_fixture.reset();
    }

    void serve_data() { scenario::addRows(QFINDTESTDATA("data/recent_call_interfaces.txt")); }
    void serve();
    void giveTheEnginesList();

private:
    std::optional<ActivityLogFixture> m_fixture;
};

void tst_RecentCallInterfaces::serve()
{
    QStringList told;
    const QCopChannel listener("ACTIVITY_LOG_CHANNEL");
    connect(&listener, &QCopChannel::received, this, [&](const QCString& message, const QByteArray& data) {
        told += QString::fromLatin1(message + ' ' + data.toHex());
    });
    std::optional<Missed> own;
    scenario::Verbs verbs = scenario::withOutput({
        {u"watch"_s,
         [&] {
             connect(Screens::instance(), &Screens::rcFinished, this,
                     [&](bool isPicked, const QString& number) { told += isPicked ? number : u"none"_s; });
         }},
        {u"end-when-told"_s, [&] { connect(Screens::instance(), &Screens::rcFinished, this, [this] { cleanup(); }); }},
        {u"told"_s, [&] { return told.join(u' '); }},
        {u"is-one"_s, [] { return RC_CreateMsgInterface() == Screens::instance(); }},
        {u"show"_s, [](const Words& words) { return Screens::instance()->requestShowUI(pageOf(words)); }},
        {u"dl-show"_s, [](const Words& words) { return Screens::instance()->dlopenrequestShowUI(pageOf(words)); }},
        {u"detail"_s, [] { return Screens::instance()->showRecordDetail(3, RC_CALL_CATEGORY_DIALED); }},
        {u"hide"_s, [] { return Screens::instance()->hideUI(); }},
        {u"dl-hide"_s, [] { return Screens::instance()->dlopenHideUI(); }},
        {u"receive"_s, receive},
        {u"end-client"_s, [] { RecentCall_MsgClient::destruction(); }},
        {u"channels-at"_s, [](const Words& words) { return qputenv("ZYN_QCOP_PATH", words[0].toUtf8()); }},

        {u"follow-missed"_s,
         [&] { connect(Missed::instance(), &Missed::dataUpdate, this, [&] { told += u"shared"_s; }); }},
        {u"own-missed"_s, [&] { connect(&own.emplace(), &Missed::dataUpdate, this, [&] { told += u"own"_s; }); }},
        {u"get-missed"_s, [&] { own->getUnreadMissedCalls(); }},
        {u"missed"_s, [] { Missed::instance(); }},
        {u"end-missed"_s, [] { Missed::destruction(); }},

        {u"favourite"_s, tellOfFavourite},
        {u"end-favourites"_s, [] { RC_TopPals_AL_Interface::destruction(); }},
        {u"make-log"_s,
         [] {
             StdoutCapture output;
             activity::revamp({}, u"1234567"_s);
         }},
        {u"log"_s, logEntry},
        {u"log-elsewhere"_s, [](const Words& words) { return inAnotherProcess([&] { return logEntry(words); }); }},
        {u"cut-log"_s, [this] { m_fixture->write(u"1234567"_s, m_fixture->read(u"1234567"_s).chopped(1)); }},
        {u"unread"_s, unread},
    });
    scenario::play(verbs);
}

void tst_RecentCallInterfaces::giveTheEnginesList()
{
    Missed calls;
    StdoutCapture capture(stderr);
    QVERIFY(calls.getUnreadMissedCalls().isEmpty());
    const QString log = QString::fromLatin1(capture.take());
    const QRegularExpression line(u"\\A\\{1\\} RC_MissedCallInterface\\.cpp:\\d+\tooooooooooo\n\\z"_s);
    QVERIFY2(line.match(log).hasMatch(), qPrintable(log));

    Engine engine;
    g_rcEngineStub = &engine;
    const qsizetype count = calls.getUnreadMissedCalls().size();
    g_rcEngineStub = nullptr;
    QCOMPARE(count, 3);
}

QTEST_GUILESS_MAIN(tst_RecentCallInterfaces)
#include "tst_RecentCallInterfaces.moc"
