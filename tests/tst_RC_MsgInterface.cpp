// What applications have of the recent-call screens: pages, the number picker, and the missed calls.
#include "recentcall/utility/RC_MissedCallInterface.h"
#include "recentcall/utility/RC_MsgInterface.h"
#include "recentcall/utility/RecentCall_Messages_p.h"
#include "recentcall/utility/RecentCall_MsgClient.h"
#include "support/Role.h"
#include "support/StdoutCapture.h"
#include "support/Timeout.h"
#include "utility/message/Payload_p.h"

#include <QtCore/QEventLoop>
#include <QtCore/QRegularExpression>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

using namespace Qt::StringLiterals;

namespace {

constexpr RC_PAGE_ID_T kPage{1};

static_assert(!std::has_virtual_destructor_v<RC_EngineStub>); // it would be in the list's place

struct Engine final : RC_EngineStub
{
    RC_MissedCallList getUnreadMissedCallList() override { return RC_MissedCallList(3); }
};

QByteArray picked(const QString& number)
{
    return zyn::encode(zyn::recentCallMessage(RecentCall_Msg::RECENTCALL_MSG_EXIT_PICKER_S), {1, number});
}

/// Closes the number picker for the client of this process, and gives what that writes.
QByteArray closePicker()
{
    StdoutCapture capture;
    RecentCall_MsgClient::instance()->receive("RECENTCALL_MSG_6", picked(u"5551234"_s));
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

    void reportsThePickerOnceForEachRequest()
    {
        RC_MsgInterface* const screens = RC_MsgInterface::instance();
        QVERIFY(RC_CreateMsgInterface() == screens);
        const QSignalSpy finished(screens, &RC_MsgInterface::rcFinished);
        StdoutCapture capture;
        const bool asked = screens->requestShowUI(kPage) && screens->dlopenrequestShowUI(kPage);
        const QByteArray log = capture.take();
        QVERIFY(asked);
        QVERIFY(log.startsWith("go to page:1about to send msg:RECENTCALL_MSG_4,para:1"));
        QVERIFY(log.endsWith("1about to send msg:RECENTCALL_MSG_4,para:1") && !log.contains('\n'));
        QCOMPARE(closePicker(), "get message: RECENTCALL_MSG_6selected:1,number:5551234"
                                    + QByteArray("emit singal  rcFinished:1,5551234").repeated(2));
        QCOMPARE(finished.toList(), QList<QVariantList>(2, {true, u"5551234"_s}));
    }

    void countsFromZeroWithANewClient()
    {
        RC_MsgInterface* const screens = RC_MsgInterface::instance();
        const QSignalSpy finished(screens, &RC_MsgInterface::rcFinished);
        for (qsizetype count = 1; count <= 3; ++count) {
            screens->requestShowUI(kPage);
            closePicker();
            QCOMPARE(finished.size(), count);
            RecentCall_MsgClient::destruction();
        }
        QCOMPARE(RC_MsgInterface::instance(), screens);
        closePicker();
        QCOMPARE(finished.size(), 3);

        screens->requestShowUI(kPage);
        screens->requestShowUI(kPage);
        connect(screens, &RC_MsgInterface::rcFinished, this, [this] { cleanup(); });
        closePicker(); // the first report ends all
        QCOMPARE(finished.size(), 4);
    }

    void passesOnlyTheResultOfHiding()
    {
        RC_MsgInterface* const screens = RC_MsgInterface::instance();
        StdoutCapture capture;
        const bool asked = screens->showRecordDetail(3, RC_CALL_CATEGORY_DIALED);
        QCOMPARE(capture.take(), "go to detail 3about to send msg:RECENTCALL_MSG_5,para:3,3");
        QVERIFY(asked && screens->hideUI() && screens->dlopenHideUI());

        qputenv("ZYN_QCOP_PATH", "/dev/null");
        const bool hidden = screens->hideUI() || screens->dlopenHideUI();
        const bool all = screens->requestShowUI(kPage) && screens->dlopenrequestShowUI(kPage)
                         && screens->showRecordDetail(3, RC_CALL_CATEGORY_DIALED);
        qunsetenv("ZYN_QCOP_PATH");
        QVERIFY(all && !hidden);
    }

    void getsANumberFromAnotherProcess()
    {
        RC_MsgInterface* const screens = RC_MsgInterface::instance();
        const QSignalSpy finished(screens, &RC_MsgInterface::rcFinished);
        const auto process = role::start(u"screens"_s);
        QVERIFY(role::waitReady(*process));
        screens->requestShowUI(RC_PAGE_ID_T{42});
        QTRY_COMPARE(finished.size(), 1);
        QCOMPARE(finished[0], (QVariantList{true, u"42"_s}));
        QVERIFY(screens->hideUI());
        QCOMPARE(role::finish(*process), EXIT_SUCCESS);
    }

    void announcesMissedCallsToEachObject()
    {
        const auto announce = [] { RecentCall_MsgClient::instance()->receive("RECENTCALL_MSG_2", {}); };
        RC_MissedCallInterface own;
        const QSignalSpy updates(&own, &RC_MissedCallInterface::dataUpdate);
        const QSignalSpy shared(RC_MissedCallInterface::instance(), &RC_MissedCallInterface::dataUpdate);
        announce();
        QVERIFY(updates.size() == 1 && shared.size() == 1);

        RecentCall_MsgClient::destruction();
        RC_MissedCallInterface::instance();
        announce();
        QVERIFY(updates.size() == 1 && shared.size() == 2);
        own.getUnreadMissedCalls();
        own.getUnreadMissedCalls();
        announce();
        QVERIFY(updates.size() == 2 && shared.size() == 3);
        RC_MissedCallInterface::destruction(); // not the client
        announce();
        QCOMPARE(updates.size(), 3);
    }

    void givesTheEnginesList()
    {
        RC_MissedCallInterface calls;
        StderrCapture capture;
        const bool none = calls.getUnreadMissedCalls().isEmpty();
        const QString log = QString::fromLatin1(capture.take());
        QVERIFY(none);
        const QRegularExpression line(u"\\A\\{1\\} RC_MissedCallInterface\\.cpp:\\d+\tooooooooooo\n\\z"_s);
        QVERIFY2(line.match(log).hasMatch(), qPrintable(log));

        Engine engine;
        g_rcEngineStub = &engine;
        const qsizetype count = calls.getUnreadMissedCalls().size();
        g_rcEngineStub = nullptr;
        QCOMPARE(count, 3);
    }
};

int main(int argc, char** argv)
{
    return role::testMain<tst_RC_MsgInterface>(argc, argv, {{u"screens"_s, &screensRole}});
}

#include "tst_RC_MsgInterface.moc"
