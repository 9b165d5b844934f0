// The decoding of the messages of the recent-call screens.
#include "recentcall/utility/RecentCall_MsgClient.h"
#include "support/SignalRecorder.h"
#include "support/StdoutCapture.h"

#include <QtTest/QTest>

namespace {

struct Row
{
    const char* title;
    QByteArray name;
    QByteArray payload; // in hexadecimal
    QByteArray log;     // behind the line that each message writes
    QByteArray emitted;
};

// clang-format off
const Row kRows[] = {
    {"a payload is ignored", "RECENTCALL_MSG_0", "ff", "", "signalPowerOff()"},
    {"another SIM card", "RECENTCALL_MSG_1", "", "", "signalSimCardDiffed()"},
    {"missed calls", "RECENTCALL_MSG_2", "", "get message: RECENTCALL_MSG_MISSEDCALL_UPDATE_S\n", "signalMissedCallUpdate()"},
    {"a category", "RECENTCALL_MSG_3", "00000003", "", "signalShowRecentCall(3,0)"},
    {"a category cut short", "RECENTCALL_MSG_3", "000003", "", "signalShowRecentCall(0,0)"},
    {"a page", "RECENTCALL_MSG_4", "80000001", "get msg to goto page -2147483647", "signalShowPage(-2147483647)"},
    {"no page", "RECENTCALL_MSG_4", "", "get msg to goto page 0", "signalShowPage(0)"},
    {"a detail", "RECENTCALL_MSG_5", "00000001 00000007", "get msg to goto RC detail detail 1:7", "signalShowDetail(1,7)"},
    {"a detail cut in the index", "RECENTCALL_MSG_5", "00000001 ffffff", "get msg to goto RC detail detail 1:0",
     "signalShowDetail(1,0)"},
    {"a number", "RECENTCALL_MSG_6", "00000001 00000006 003500350031", "selected:1,number:551",
     "signalExitPicker(true,\"551\")"},
    {"selected is not 0", "RECENTCALL_MSG_6", "ffffffff 00000004 00e920ac", "selected:1,number:\xe9?",
     "signalExitPicker(true,\"\xc3\xa9\xe2\x82\xac\")"},
    {"an empty number", "RECENTCALL_MSG_6", "00000001 00000000", "selected:1,number:", "signalExitPicker(true,\"\")"},
    {"nothing selected, yet a number", "RECENTCALL_MSG_6", "00000000 00000002 0035", "selected:0,number:",
     "signalExitPicker(false,null)"},
    {"a number that is missing", "RECENTCALL_MSG_6", "00000001", "selected:1,number:", "signalExitPicker(true,null)"},
    {"a number cut short", "RECENTCALL_MSG_6", "00000001 00000006 00350035", "selected:1,number:",
     "signalExitPicker(true,null)"},
    {"a selection cut short", "RECENTCALL_MSG_6", "010101", "selected:0,number:", "signalExitPicker(false,null)"},
    {"hide", "RECENTCALL_MSG_7", "", "about to hide UI", "signalHideUI()"},
    {"from messaging", "/KQ/MMS/RECENTCALL", "00000001", "get message:RECENTCALL_MESSAGE_MSG\n", "signalShowRecentCall(4,3)"},
    {"from calling", "/KQ/CALLING/RECENTCALL", "", "get message:RECENTCALL_CALLING_MSG\n", "signalShowRecentCall(4,2)"},
};
// clang-format on

QByteArray receive(const QByteArray& name, const QByteArray& payload)
{
    StdoutCapture capture;
    RecentCall_MsgClient::instance()->receive(name, payload);
    return capture.take();
}

} // namespace

class tst_RecentCall_MsgClient : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { RecentCall_MsgClient::destruction(); }

    void hasSignalsThatCanBeQueuedByName(); // before anything else makes their types known
    void decodesAndMayBeDestroyedByAReceiver();
    void ignoresForeignNames();
};

void tst_RecentCall_MsgClient::hasSignalsThatCanBeQueuedByName()
{
    RecentCall_MsgClient* const client = RecentCall_MsgClient::instance();
    for (const QByteArray& signature : signalsOf(RecentCall_MsgClient::staticMetaObject))
        QVERIFY(connect(client, "2" + signature, client, "2" + signature, Qt::QueuedConnection));
}

void tst_RecentCall_MsgClient::decodesAndMayBeDestroyedByAReceiver()
{
    for (const Row& row : kRows) {
        SignalRecorder recorder(RecentCall_MsgClient::instance());
        recorder.onSignal = &RecentCall_MsgClient::destruction;
        const QByteArray log = receive(row.name, QByteArray::fromHex(row.payload));
        QCOMPARE(row.title + (": " + log), row.title + (": get message: " + row.name + row.log));
        receive(row.name, QByteArray::fromHex(row.payload)); // by another client
        QCOMPARE(recorder.take(), row.emitted);
    }
}

void tst_RecentCall_MsgClient::ignoresForeignNames()
{
    SignalRecorder recorder(RecentCall_MsgClient::instance());
    const QByteArray names =
        "|RECENTCALL_MSG_8|RECENTCALL_MSG_10|RECENTCALL_MSG_-1|RECENTCALL_MSG_04|RECENTCALL_MSG_4 |"
        "RECENTCALL_MSG_|recentcall_msg_4|PHONE_MSG_4|/KQ/MMS/RECENTCALLS|/KQ/CALLING/RECENTCAL|%s%n";
    for (const QByteArray& name : names.split('|') + QByteArrayList{QByteArray()})
        QCOMPARE(receive(name, QByteArray(100, '\1')), "get message: " + name);
    QCOMPARE(receive(QByteArray("RECENTCALL_MSG_4", 17), {}), "get message: RECENTCALL_MSG_4"); // with its NUL
    QCOMPARE(recorder.take(), "");
}

QTEST_GUILESS_MAIN(tst_RecentCall_MsgClient)
#include "tst_RecentCall_MsgClient.moc"
