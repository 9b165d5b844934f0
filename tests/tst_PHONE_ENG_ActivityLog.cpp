// The record of an activity: its bytes, its text and what making one prints.
#include "recentcall/utility/PHONE_ENG_ActivityLog.h"
#include "support/StdoutCapture.h"

#include <QtTest/QTest>

#include <memory>
#include <new>

namespace {

QByteArray bytes(const PHONE_ENG_ActivityLog& record)
{
    return QByteArray(reinterpret_cast<const char*>(&record), sizeof record);
}

QByteArray blankSlot()
{
    QByteArray slot(300, '\0');
    slot[80] = 1;
    return slot.replace(228, 8, QByteArray(8, '\xFF'));
}

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
    void copiesAndTellsIt();
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
    record.setMsgString(QStringLiteral("\u00e9"));
    record.flagA = 8;
    record.flagB = 9;
    QByteArray expected = blankSlot();
    expected.replace(228, 17,
                     QByteArray::fromHex("0403020105000000"
                                         "0600000007000000e9"));
    expected.replace(296, 2, QByteArray::fromHex("0809"));
    QCOMPARE(bytes(record).toHex(), expected.toHex());

    record.setPhoneNumber(QStringLiteral("112"));
    record.setMsgString(QStringLiteral("ab"));
    record.init();
    expected = blankSlot().replace(0, 3, "112").replace(228, 8, QByteArray::fromHex("0403020105000000"));
    expected[245] = 'b'; // behind the end of the text
    QCOMPARE(bytes(record).toHex(), expected.toHex());
}

void tst_PHONE_ENG_ActivityLog::copiesAndTellsIt()
{
    PHONE_ENG_ActivityLog whole;
    memset(static_cast<void*>(&whole), 0x5A, sizeof whole);
    const PHONE_ENG_RecentCall call(QStringLiteral("112"), QDateTime::fromSecsSinceEpoch(1), 2);
    QByteArray logged = blankSlot();
    logged.replace(0, 228, QByteArray(reinterpret_cast<const char*>(&call), sizeof call));
    StdoutCapture output;
    QCOMPARE(made(call).toHex(), logged.toHex());
    QCOMPARE(made(whole), bytes(whole));
    QCOMPARE(output.take(),
             "Enter PHONE_ENG_ActivityLog(const PHONE_ENG_RecentCall & value):PHONE_ENG_RecentCall(value)\n"
             "Exit PHONE_ENG_ActivityLog(const PHONE_ENG_RecentCall & value):PHONE_ENG_RecentCall(value)\n"
             "Enter PHONE_ENG_ActivityLog(const PHONE_ENG_ActivityLog & value)\n"
             "Exit PHONE_ENG_ActivityLog(const PHONE_ENG_ActivityLog & value)\n");
}

void tst_PHONE_ENG_ActivityLog::keepsItsMessageWithinTheField()
{
    PHONE_ENG_ActivityLog record;
    record.flagA = 8;
    record.setMsgString(QString(50, u'x'));
    QCOMPARE(record.getMsgString(), QString(40, u'x'));
    record.setMsgString(QString());
    QCOMPARE(record.getMsgString(), QString(40, u'x'));
    record.setMsgString(QStringLiteral("short"));
    QCOMPARE(bytes(record).mid(244), "short" + QByteArray(47, '\0') + QByteArray::fromHex("08000000"));
    memset(record.msgString, 'y', sizeof record.msgString); // as a file may have it
    QCOMPARE(record.getMsgString(), QString(41, u'y'));
}

QTEST_APPLESS_MAIN(tst_PHONE_ENG_ActivityLog)
#include "tst_PHONE_ENG_ActivityLog.moc"
