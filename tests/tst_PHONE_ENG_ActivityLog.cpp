// The record of an activity: its bytes, its text and what making one prints.
#include "support/ActivityLogFixture.h"
#include "support/StdoutCapture.h"

#include <QtTest/QTest>

#include <new>

using namespace activity;

namespace {

/// A record made from @p arguments where other bytes were before, as its bytes.
template<typename... Arguments>
QByteArray made(const Arguments&... arguments)
{
    alignas(PHONE_ENG_ActivityLog) std::byte place[sizeof(PHONE_ENG_ActivityLog)];
    std::fill(std::begin(place), std::end(place), std::byte{0xA5});
    const auto* record = new (place) PHONE_ENG_ActivityLog(arguments...);
    return bytes(*record);
}

} // namespace

class tst_PHONE_ENG_ActivityLog : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void laysOutTheRecordAsTheFilesHoldIt();
    void keepsItsMessageWithinTheField();
};

void tst_PHONE_ENG_ActivityLog::laysOutTheRecordAsTheFilesHoldIt()
{
    QCOMPARE(made().toHex(), blankSlot().toHex());
    PHONE_ENG_ActivityLog record;
    record.topPalsAvlIndex = 0x01020304;
    record.topPalsAvlPos = 5;
    record.msgType = 6;
    record.msgInfo = 7;
    record.setMsgString(QStringLiteral("\u00e9b"));
    record.flagA = 8;
    record.flagB = 9;
    QByteArray expected = blankSlot();
    expected.replace(228, 18, QByteArray::fromHex("04030201050000000600000007000000e962"));
    expected.replace(296, 2, QByteArray::fromHex("0809"));
    QCOMPARE(bytes(record).toHex(), expected.toHex());

    const PHONE_ENG_RecentCall call(QStringLiteral("112"), QDateTime::fromSecsSinceEpoch(1), 2);
    StdoutCapture output;
    QCOMPARE(made(record), bytes(record));
    QCOMPARE(made(call), zyn::bytesOf(call).toByteArray() + blankSlot().sliced(228));
    QCOMPARE(output.take(),
             "Enter PHONE_ENG_ActivityLog(const PHONE_ENG_ActivityLog & value)\n"
             "Exit PHONE_ENG_ActivityLog(const PHONE_ENG_ActivityLog & value)\n"
             "Enter PHONE_ENG_ActivityLog(const PHONE_ENG_RecentCall & value):PHONE_ENG_RecentCall(value)\n"
             "Exit PHONE_ENG_ActivityLog(const PHONE_ENG_RecentCall & value):PHONE_ENG_RecentCall(value)\n");

    record.init();
    expected.replace(236, 9, QByteArray(9, '\0')).replace(296, 2, QByteArray(2, '\0'));
    QCOMPARE(bytes(record).toHex(), expected.toHex());
}

void tst_PHONE_ENG_ActivityLog::keepsItsMessageWithinTheField()
{
    PHONE_ENG_ActivityLog record;
    record.setMsgString(QString(50, u'x'));
    record.setMsgString(QString());
    QCOMPARE(record.getMsgString(), QString(40, u'x'));
    record.setMsgString(QStringLiteral("short"));
    QCOMPARE(bytes(record).sliced(244), "short" + QByteArray(51, '\0'));
    memset(record.msgString, 'y', sizeof record.msgString); // as a file may have it
    QCOMPARE(record.getMsgString(), QString(41, u'y'));
}

QTEST_APPLESS_MAIN(tst_PHONE_ENG_ActivityLog)
#include "tst_PHONE_ENG_ActivityLog.moc"
