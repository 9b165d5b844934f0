// Names and requests on the channel of the recent-call screens.
#include "recentcall/utility/RecentCall_Msg.h"
#include "support/StdoutCapture.h"
#include "support/Timeout.h"

#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

namespace {

using Msg = RecentCall_Msg;

constexpr Msg::RECENTCALL_MSG_TYPE_T type(int value)
{
    return static_cast<Msg::RECENTCALL_MSG_TYPE_T>(value);
}

struct Row
{
    const char* title;
    bool (*request)();
    QByteArray name;
    QByteArray payload; // in hexadecimal
    QByteArray log;
};

// clang-format off
const Row kRows[] = {
    {"power off", [] { return Msg::send(Msg::RECENTCALL_MSG_POWEROFF_S); }, "RECENTCALL_MSG_0", "", ""},
    {"another SIM card", [] { return Msg::send(Msg::RECENTCALL_MSG_SIMCARD_DIFFED_S); }, "RECENTCALL_MSG_1", "", ""},
    {"missed calls", [] { return Msg::send(Msg::RECENTCALL_MSG_MISSEDCALL_UPDATE_S); }, "RECENTCALL_MSG_2", "", ""},
    {"a category", [] { return Msg::requestShowUI(RC_CALL_CATEGORY_ALL); }, "RECENTCALL_MSG_3", "00000004", ""},
    {"a page", [] { return Msg::requestShowPage(RC_PAGE_ID_T{3}); }, "RECENTCALL_MSG_4", "00000003",
     "about to send msg:RECENTCALL_MSG_4,para:3"},
    {"a detail", [] { return Msg::showRecordDetail(12, RC_CALL_CATEGORY_MISSED); }, "RECENTCALL_MSG_5",
     "000000020000000c", "about to send msg:RECENTCALL_MSG_5,para:2,12"},
    {"a payload as it is", [] { return Msg::send(Msg::RECENTCALL_MSG_EXIT_PICKER_S, "\1x"); }, "RECENTCALL_MSG_6", "0178", ""},
    {"hide", [] { return Msg::requestHideUI(); }, "RECENTCALL_MSG_7", "", "about to send msg:RECENTCALL_MSG_7"},
    {"type 8", [] { return Msg::send(type(8)); }, "", "", ""},
    {"type -1 with a payload", [] { return Msg::send(type(-1), "x"); }, "", "", "Error in getting message"},
};
// clang-format on

} // namespace

class tst_RecentCall_Msg : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sendsWhatIsAskedFor();
};

void tst_RecentCall_Msg::sendsWhatIsAskedFor()
{
    for (const int other : {-1, 8, INT_MIN})
        QVERIFY(Msg::getMsg(type(other)).isEmpty() && !Msg::getMsg(type(other)).isNull());
    const RecentCall_Msg listener(this, "it");
    QVERIFY(listener.parent() == this && listener.objectName() == QStringLiteral("it"));
    const QSignalSpy received(&listener, &QCopChannel::received);
    QList<QVariantList> expected;
    for (const Row& row : kRows) {
        StdoutCapture capture;
        const bool sent = row.request();
        QCOMPARE(row.title + (": " + capture.take()), row.title + (": " + row.log));
        QCOMPARE(sent, !row.name.isEmpty());
        if (sent)
            expected += {row.name, QByteArray::fromHex(row.payload)};
    }
    QTRY_COMPARE(received.size(), expected.size());
    QCOMPARE(received.toList(), expected);
}

QTEST_GUILESS_MAIN(tst_RecentCall_Msg)
#include "tst_RecentCall_Msg.moc"
