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

struct Field
{
    void (PHONE_ENG_RecentCall::*set)(const QString&);
    QString (PHONE_ENG_RecentCall::*get)() const;
    int offset;
    int width;
};

constexpr Field kFields[] = {
    {&PHONE_ENG_RecentCall::setPhoneNumber, &PHONE_ENG_RecentCall::getPhoneNumber, 0, 42},
    {&PHONE_ENG_RecentCall::setPttSessionID, &PHONE_ENG_RecentCall::getPttSessionID, 104, 101},
    {&PHONE_ENG_RecentCall::setDisplayName, &PHONE_ENG_RecentCall::getDisplayName, 212, 16},
};

} // namespace

class tst_PHONE_ENG_RecentCall : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void laysOutTheRecordAsTheFilesHoldIt();
    void storesTextWithinItsField();
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
    // A session id is stored as UTF-8 and read as Latin-1.
    QCOMPARE(record.getPttSessionID(), QStringLiteral("\u00c3\u00a9"));
    QCOMPARE(record.getDisplayName(), QStringLiteral("\u00e9"));
    QCOMPARE(record.getStartDateTime(), start);
    record.print();
    QCOMPARE(bytes(record), expected);
}

void tst_PHONE_ENG_RecentCall::storesTextWithinItsField()
{
    for (const auto& [set, get, offset, width] : kFields) {
        for (int length = 1; length < width + 20; ++length) {
            PHONE_ENG_RecentCall record;
            std::memset(static_cast<void*>(&record), '#', sizeof record);
            QCOMPARE((record.*get)(), QString(width, u'#')); // without a NUL
            const QByteArray before = bytes(record);
            (record.*set)(QString(length, u'x'));
            const int kept = std::min(length, width - 1);
            const QByteArray field = QByteArray(kept, 'x') + QByteArray(width - kept, '\0');
            QCOMPARE(bytes(record), QByteArray(before).replace(offset, width, field));
            (record.*set)(QString());
            (record.*set)(QLatin1String(""));
            QCOMPARE((record.*get)(), QString(kept, u'x'));
        }
    }
}

void tst_PHONE_ENG_RecentCall::sortsTheNewestFirst()
{
    QSortedList<PHONE_ENG_RecentCall> list;
    list.setAutoDelete(true);
    for (const int uid : {7, -1, 9, 7, 2147483647}) {
        list.append(new PHONE_ENG_RecentCall);
        list.getLast()->uid = uid;
        list.getLast()->duration = int(list.count());
    }
    list.sort();
    QList<std::pair<int, int>> order;
    for (const PHONE_ENG_RecentCall* record : list)
        order.append({record->uid, record->duration});
    QCOMPARE(order, (QList<std::pair<int, int>>{{2147483647, 5}, {9, 3}, {7, 1}, {7, 4}, {-1, 2}}));
    QVERIFY(*list.at(2) == *list.at(3) && !(*list.at(2) < *list.at(3)));
}

QTEST_GUILESS_MAIN(tst_PHONE_ENG_RecentCall)
#include "tst_PHONE_ENG_RecentCall.moc"
