// The call record: its bytes, its texts and its order.
#include "platform/QSortedList.h"
#include "recentcall/utility/PHONE_ENG_RecentCall.h"

#include <QtTest/QTest>

#include <algorithm>

namespace {

QByteArray bytes(const PHONE_ENG_RecentCall& record)
{
    return QByteArray(reinterpret_cast<const char*>(&record), sizeof record);
}

using Setter = void (PHONE_ENG_RecentCall::*)(const QString&);
using Getter = QString (PHONE_ENG_RecentCall::*)() const;

} // namespace

class tst_PHONE_ENG_RecentCall : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void laysOutTheRecordAsTheFilesHoldIt();
    void storesTextWithinItsField_data();
    void storesTextWithinItsField();
    void readsAFieldWithoutNulWithinItsWidth();
    void holdsTimesToTheRecordsBits();
    void sortsTheNewestFirst();
};

void tst_PHONE_ENG_RecentCall::laysOutTheRecordAsTheFilesHoldIt()
{
    QByteArray blank(228, '\0');
    blank[80] = 1;
    QCOMPARE(bytes(PHONE_ENG_RecentCall()), blank);

    const QDateTime start = QDateTime::fromSecsSinceEpoch(0x65432101);
    PHONE_ENG_RecentCall record(QStringLiteral("112"), start, 0x01020304, true);
    record.uid = -2;
    record.category = RC_CALL_CATEGORY_DIALED;
    record.inUse = 1;
    record.slot = 7;
    record.callType = RC_CALL_TYPE_PTT2;
    record.completed = 1;
    record.reserved205[6] = 'r';
    record.setPttSessionID(QStringLiteral("\u00e9"));
    record.setDisplayName(QStringLiteral("\u00e9"));

    QByteArray expected(228, '\0');
    expected.replace(0, 3, "112");
    expected.replace(44, 8, QByteArray::fromHex("0121436504030201"));
    expected[52] = 1;
    expected.replace(56, 9, QByteArray::fromHex("feffffff0300000001"));
    expected[68] = 7;
    expected[80] = 4;
    expected[88] = 1;
    expected.replace(104, 2, "\xC3\xA9");
    expected[211] = 'r';
    expected[212] = '\xE9';
    QCOMPARE(bytes(record), expected);
    const PHONE_ENG_RecentCall copy = record;
    QCOMPARE(bytes(copy), expected);
    // A session id is stored as UTF-8 and read as Latin-1.
    QCOMPARE(record.getPttSessionID(), QStringLiteral("\u00c3\u00a9"));
    QCOMPARE(record.getDisplayName(), QStringLiteral("\u00e9"));
    QCOMPARE(record.getStartDateTime(), start);
    record.print();
    QCOMPARE(bytes(record), expected);
}

void tst_PHONE_ENG_RecentCall::storesTextWithinItsField_data()
{
    QTest::addColumn<Setter>("set");
    QTest::addColumn<Getter>("get");
    QTest::addColumn<int>("offset");
    QTest::addColumn<int>("width");

    QTest::newRow("number") << Setter(&PHONE_ENG_RecentCall::setPhoneNumber)
                            << Getter(&PHONE_ENG_RecentCall::getPhoneNumber) << 0 << 42;
    QTest::newRow("name") << Setter(&PHONE_ENG_RecentCall::setDisplayName)
                          << Getter(&PHONE_ENG_RecentCall::getDisplayName) << 212 << 16;
    QTest::newRow("session") << Setter(&PHONE_ENG_RecentCall::setPttSessionID)
                             << Getter(&PHONE_ENG_RecentCall::getPttSessionID) << 104 << 101;
}

void tst_PHONE_ENG_RecentCall::storesTextWithinItsField()
{
    QFETCH(const Setter, set);
    QFETCH(const Getter, get);
    QFETCH(const int, offset);
    QFETCH(const int, width);

    for (int length = 1; length < width + 20; ++length) {
        PHONE_ENG_RecentCall record;
        std::memset(static_cast<void*>(&record), '#', sizeof record);
        const QByteArray before = bytes(record);
        (record.*set)(QString(length, QLatin1Char('x')));
        const int kept = std::min(length, width - 1);
        const QByteArray field = QByteArray(kept, 'x') + QByteArray(width - kept, '\0');
        QCOMPARE(bytes(record), QByteArray(before).replace(offset, width, field));
        (record.*set)(QString());
        (record.*set)(QLatin1String(""));
        QCOMPARE((record.*get)(), QString(kept, QLatin1Char('x')));
    }
}

void tst_PHONE_ENG_RecentCall::readsAFieldWithoutNulWithinItsWidth()
{
    PHONE_ENG_RecentCall record;
    std::memset(static_cast<void*>(&record), '9', sizeof record);
    QCOMPARE(record.getPhoneNumber(), QString(42, QLatin1Char('9')));
    QCOMPARE(record.getPttSessionID(), QString(101, QLatin1Char('9')));
    QCOMPARE(record.getDisplayName(), QString(16, QLatin1Char('9')));
}

void tst_PHONE_ENG_RecentCall::holdsTimesToTheRecordsBits()
{
    PHONE_ENG_RecentCall record;
    record.setStartDateTime(QDateTime(QDate(2200, 1, 1), QTime(0, 0), Qt::UTC));
    QCOMPARE(record.startTime, 2147483647);
    record.setStartDateTime(QDateTime(QDate(1800, 1, 1), QTime(0, 0), Qt::UTC));
    QCOMPARE(record.startTime, -2147483647 - 1);
    record.setStartDateTime(QDateTime());
    QCOMPARE(record.startTime, 0);
}

void tst_PHONE_ENG_RecentCall::sortsTheNewestFirst()
{
    QSortedList<PHONE_ENG_RecentCall> list;
    list.setAutoDelete(true);
    int place = 0;
    for (const int uid : {7, -1, 9, 7, 2147483647}) {
        list.append(new PHONE_ENG_RecentCall);
        list.getLast()->uid = uid;
        list.getLast()->duration = place++;
    }
    list.sort();
    QList<std::pair<int, int>> order;
    for (const PHONE_ENG_RecentCall* record : list)
        order.append({record->uid, record->duration});
    QCOMPARE(order, (QList<std::pair<int, int>>{{2147483647, 4}, {9, 2}, {7, 0}, {7, 3}, {-1, 1}}));
    QVERIFY(*list.at(2) == *list.at(3));
    QVERIFY(!(*list.at(2) < *list.at(3)));
}

QTEST_GUILESS_MAIN(tst_PHONE_ENG_RecentCall)
#include "tst_PHONE_ENG_RecentCall.moc"
