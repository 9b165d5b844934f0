// What applications have of the recent-call screens: pages, the number picker, and the missed calls.
#include "recentcall/utility/RC_MissedCallInterface.h"
#include "recentcall/utility/RC_MsgInterface.h"
#include "recentcall/utility/RecentCall_MsgClient.h"
#include "support/Role.h"
#include "support/StdoutCapture.h"
#include "utility/PHONE_Payload_p.h"

#include <QtCore/QEventLoop>
#include <QtCore/QRegularExpression>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

namespace {

constexpr RC_PAGE_ID_T kPage{1};
constexpr char kUpdate[] = "RECENTCALL_MSG_2";

static_assert(!std::has_virtual_destructor_v<RC_EngineStub>); // it would be in the list's place

struct Engine final : RC_EngineStub
{
    RC_MissedCallList getUnreadMissedCallList() override
    {
        return {{QDate(2026, 3, 1), 7, QStringLiteral("112"), QString(), 8, 9}};
    }
};

QByteArray picked(const QString& number)
{
    return zyn::PayloadWriter().writeInt(1).writeText(number).payload();
}

/// Closes the number picker for the client of this process, and gives what that writes.
QByteArray closePicker()
{
    StdoutCapture capture;
    RecentCall_MsgClient::instance()->receive("RECENTCALL_MSG_6", picked(QStringLiteral("5551234")));
    return capture.take();
}

/// Screens whose picker gives the number of each page that is asked for, until they are to hide.
int screensRole(const QStringList&)
{
    RecentCall_MsgClient* const client = RecentCall_MsgClient::instance();
    QEventLoop loop;
    QObject::connect(client, &RecentCall_MsgClient::signalShowPage, client, [](RC_PAGE_ID_T page) {
        RecentCall_Msg::send(RecentCall_Msg::RECENTCALL_MSG_EXIT_PICKER_S, picked(QString::number(page)));
    });
    QObject::connect(client, &RecentCall_MsgClient::signalHideUI, &loop, &QEventLoop::quit);
    role::sayReady();
    return loop.exec();
}

} // namespace

class tst_RC_MsgInterface : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        RC_MsgInterface::destruction();
        RC_MissedCallInterface::destruction();
        RecentCall_MsgClient::destruction();
    }

    void reportsThePickerOnceForEachRequest();
    void countsFromZeroWithANewClient();
    void mayBeDestroyedByItsReport();
    void passesOnlyTheResultOfHiding();
    void getsANumberFromAnotherProcess();
    void announcesMissedCallsToEachObject();
    void givesTheEnginesList();
};

void tst_RC_MsgInterface::reportsThePickerOnceForEachRequest()
{
    RC_MsgInterface* const screens = RC_MsgInterface::instance();
    QVERIFY(RC_CreateMsgInterface() == screens && RC_CreateMsgInterface() == screens);
    const QSignalSpy finished(screens, &RC_MsgInterface::rcFinished);
    closePicker();
    QCOMPARE(finished.size(), 0);
    StdoutCapture capture;
    const bool asked[] = {screens->requestShowUI(kPage), screens->dlopenrequestShowUI(kPage)};
    const QByteArray log = capture.take();
    QVERIFY(asked[0] && asked[1]);
    QVERIFY(log.startsWith("go to page:1about to send msg:RECENTCALL_MSG_4,para:1"));
    QVERIFY(log.endsWith("1about to send msg:RECENTCALL_MSG_4,para:1") && !log.contains('\n'));
    QCOMPARE(closePicker(), "get message: RECENTCALL_MSG_6selected:1,number:5551234"
                                + QByteArray("emit singal  rcFinished:1,5551234").repeated(2));
    QCOMPARE(finished.toList(), QList<QVariantList>(2, {true, QStringLiteral("5551234")}));
    StdoutCapture second;
    RecentCall_MsgClient::instance()->receive("RECENTCALL_MSG_6", {});
    QVERIFY(second.take().endsWith("emit singal  rcFinished:0,"));
    QVERIFY(finished.last()[1].toString().isNull());
}

void tst_RC_MsgInterface::countsFromZeroWithANewClient()
{
    RC_MsgInterface* const screens = RC_MsgInterface::instance();
    const QSignalSpy finished(screens, &RC_MsgInterface::rcFinished);
    screens->requestShowUI(kPage);
    RecentCall_MsgClient::destruction();
    screens->requestShowUI(kPage);
    closePicker();
    QCOMPARE(finished.size(), 1);
    RecentCall_MsgClient::destruction();
    QCOMPARE(RC_MsgInterface::instance(), screens);
    closePicker();
    QCOMPARE(finished.size(), 1);
    screens->dlopenrequestShowUI(kPage);
    closePicker();
    QCOMPARE(finished.size(), 2);
}

void tst_RC_MsgInterface::mayBeDestroyedByItsReport()
{
    RC_MsgInterface* const screens = RC_MsgInterface::instance();
    QSignalSpy finished(screens, &RC_MsgInterface::rcFinished);
    screens->requestShowUI(kPage);
    screens->requestShowUI(kPage);
    connect(screens, &RC_MsgInterface::rcFinished, this, [this] { cleanup(); });
    closePicker();
    QCOMPARE(finished.size(), 1);
}

void tst_RC_MsgInterface::passesOnlyTheResultOfHiding()
{
    RC_MsgInterface* const screens = RC_MsgInterface::instance();
    const RecentCall_Msg listener;
    const QSignalSpy received(&listener, &QCopChannel::received);
    StdoutCapture capture;
    const bool asked = screens->showRecordDetail(3, RC_CALL_CATEGORY_DIALED);
    QCOMPARE(capture.take(), "go to detail 3about to send msg:RECENTCALL_MSG_5,para:3,3");
    QVERIFY(asked && screens->hideUI() && screens->dlopenHideUI());
    QTRY_COMPARE(received.size(), 3);
    QCOMPARE(received[0], (QVariantList{QByteArray("RECENTCALL_MSG_5"), QByteArray::fromHex("0000000300000003")}));

    qputenv("ZYN_QCOP_PATH", "/dev/null");
    const bool hidden = screens->hideUI() || screens->dlopenHideUI();
    const bool all = screens->requestShowUI(kPage) && screens->dlopenrequestShowUI(kPage)
                     && screens->showRecordDetail(3, RC_CALL_CATEGORY_DIALED);
    qunsetenv("ZYN_QCOP_PATH");
    QVERIFY(all && !hidden);
}

void tst_RC_MsgInterface::getsANumberFromAnotherProcess()
{
    RC_MsgInterface* const screens = RC_MsgInterface::instance();
    const QSignalSpy finished(screens, &RC_MsgInterface::rcFinished);
    const auto process = role::start(QStringLiteral("screens"));
    QVERIFY(role::waitReady(*process));
    screens->requestShowUI(RC_PAGE_ID_T{42});
    QTRY_COMPARE_WITH_TIMEOUT(finished.size(), 1, role::kPatience);
    QCOMPARE(finished[0], (QVariantList{true, QStringLiteral("42")}));
    QVERIFY(screens->hideUI());
    QCOMPARE(role::finish(*process), EXIT_SUCCESS);
}

void tst_RC_MsgInterface::announcesMissedCallsToEachObject()
{
    RC_MissedCallInterface own;
    QSignalSpy updates(&own, &RC_MissedCallInterface::dataUpdate);
    QSignalSpy shared(RC_MissedCallInterface::instance(), &RC_MissedCallInterface::dataUpdate);
    RecentCall_Msg::send(RecentCall_Msg::RECENTCALL_MSG_MISSEDCALL_UPDATE_S);
    QTRY_COMPARE(updates.size(), 1);
    QCOMPARE(shared.size(), 1);

    RecentCall_MsgClient::destruction();
    RecentCall_MsgClient::instance()->receive(kUpdate, {});
    QCOMPARE(updates.size() + shared.size(), 2);
    RC_MissedCallInterface::instance();
    RecentCall_MsgClient::instance()->receive(kUpdate, {});
    QVERIFY(updates.size() == 1 && shared.size() == 2);
    own.getUnreadMissedCalls();
    own.getUnreadMissedCalls();
    RecentCall_MsgClient::instance()->receive(kUpdate, {});
    QVERIFY(updates.size() == 2 && shared.size() == 3);

    RC_MissedCallInterface::destruction(); // not the client
    RecentCall_MsgClient::instance()->receive(kUpdate, {});
    QCOMPARE(updates.size(), 3);
}

void tst_RC_MsgInterface::givesTheEnginesList()
{
    RC_MissedCallInterface calls;
    QVERIFY(!g_rcEngineStub);
    StderrCapture capture;
    const bool none = calls.getUnreadMissedCalls().isEmpty();
    const QString log = QString::fromLatin1(capture.take());
    QVERIFY(none);
    const QRegularExpression line(QStringLiteral("\\A\\{1\\} RC_MissedCallInterface\\.cpp:\\d+\tooooooooooo\n\\z"));
    QVERIFY2(line.match(log).hasMatch(), qPrintable(log));

    Engine engine;
    g_rcEngineStub = &engine;
    const RC_MissedCallList list = calls.getUnreadMissedCalls();
    g_rcEngineStub = nullptr;
    QCOMPARE(list.size(), 1);
    QVERIFY(list[0].date == QDate(2026, 3, 1) && list[0].value == 7 && list[0].first == QStringLiteral("112"));
    QVERIFY(list[0].second.isNull() && list[0].word1 == 8 && list[0].word2 == 9);
}

int main(int argc, char** argv)
{
    return role::testMain<tst_RC_MsgInterface>(argc, argv, {{QStringLiteral("screens"), &screensRole}});
}

#include "tst_RC_MsgInterface.moc"
