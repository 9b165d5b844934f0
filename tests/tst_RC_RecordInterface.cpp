// The record wrapper: its accessors and its push-to-talk rules. The order of its virtual operations is in abi/classes.
#include "recentcall/utility/RC_RecordInterface.h"

#include <QtTest/QTest>

#include <cstring>

namespace {

constexpr RC_CALL_TYPE_T kPtt1 = RC_CALL_TYPE_PTT1;

} // namespace

class tst_RC_RecordInterface : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keepsWhatItIsGivenInItsRecord();
    void ownsTheRecordThatItIsGiven();
    void guardsThePushToTalkFields();
    void takesPushToTalkAttributes();
};

void tst_RC_RecordInterface::keepsWhatItIsGivenInItsRecord()
{
    RC_RecordInterfaceImpl record;
    record.setCallType(kPtt1);
    record.getData()->uid = 77;
    record.getData()->readFlags = PHONE_ENG_RecentCall::kRead;
    RC_RecordInterface& call = record;

    const QDateTime start = QDateTime::fromSecsSinceEpoch(1'700'000'000);
    call.setCategory(RC_CALL_CATEGORY_MISSED);
    call.setPhoneNumber(QStringLiteral("112"));
    call.setStartDateTime(start);
    call.setDuration(65);
    call.setCompletedStatus(true);
    record.setPttPartyType(RC_PTT_PARTY_TYPE_T{3});
    record.setPttIDType(RC_PTT_ID_T{4});
    record.setPttSessionID(QStringLiteral("session"));

    PHONE_ENG_RecentCall expected(QStringLiteral("112"), start, 65, true);
    expected.category = RC_CALL_CATEGORY_MISSED;
    expected.completed = 1;
    expected.callType = kPtt1;
    expected.uid = 77;
    expected.pttPartyType = RC_PTT_PARTY_TYPE_T{3};
    expected.pttIdType = RC_PTT_ID_T{4};
    expected.setPttSessionID(QStringLiteral("session"));
    QCOMPARE(std::memcmp(record.getData(), &expected, sizeof expected), 0);

    QCOMPARE(call.getCategory(), RC_CALL_CATEGORY_MISSED);
    QCOMPARE(call.getPhoneNumber(), QStringLiteral("112"));
    QCOMPARE(call.getStartDateTime(), start);
    QCOMPARE(call.getDuration(), 65);
    QVERIFY(call.getCompletedStatus() && call.isRead() && !record.getIsStrictRead());
    record.getData()->readFlags = PHONE_ENG_RecentCall::kStrictRead;
    QVERIFY(!call.isRead() && record.getIsStrictRead());
    QCOMPARE(call.getUID(), 77);
    QCOMPARE(call.getCallType(), kPtt1);
    QCOMPARE(record.getPttPartyType(), RC_PTT_PARTY_TYPE_T{3});
    QCOMPARE(record.getPttIDType(), RC_PTT_ID_T{4});
    QCOMPARE(record.getPttSessionID(), QStringLiteral("session"));
}

void tst_RC_RecordInterface::ownsTheRecordThatItIsGiven()
{
    auto* data = new PHONE_ENG_RecentCall;
    QCOMPARE(RC_RecordInterfaceImpl(data).getData(), data);
    QCOMPARE(RC_RecordInterfaceImpl(nullptr).getCallType(), RC_CALL_TYPE_VOICE);
    const RC_RecordInterfaceImpl made(QStringLiteral("5"), QDateTime::fromSecsSinceEpoch(9), 7);
    const PHONE_ENG_RecentCall expected(QStringLiteral("5"), QDateTime::fromSecsSinceEpoch(9), 7);
    QCOMPARE(std::memcmp(made.getData(), &expected, sizeof expected), 0);
}

void tst_RC_RecordInterface::guardsThePushToTalkFields()
{
    for (const int type : {1, 2, 3, 4, 5}) {
        const bool ptt = type == 3 || type == 4;
        RC_RecordInterfaceImpl record;
        record.setCallType(RC_CALL_TYPE_T(type));
        record.getData()->pttPartyType = RC_PTT_PARTY_TYPE_T{5};
        record.getData()->pttIdType = RC_PTT_ID_T{6};
        QCOMPARE(record.getPttPartyType(), RC_PTT_PARTY_TYPE_T(ptt ? 5 : -1));
        QCOMPARE(record.getPttIDType(), RC_PTT_ID_T(ptt ? 6 : 0));
        record.setPttSessionID(QStringLiteral("s"));
        record.setPttPartyType(RC_PTT_PARTY_TYPE_T{7});
        record.setPttIDType(RC_PTT_ID_T{8});
        QCOMPARE(record.getData()->pttSessionId[0] == 's', ptt);
        QCOMPARE(record.getPttSessionID().isNull(), !ptt);
        QCOMPARE(record.getData()->pttPartyType == 7, ptt);
        QCOMPARE(record.getData()->pttIdType == 8, ptt);
    }
}

void tst_RC_RecordInterface::takesPushToTalkAttributes()
{
    RC_PttInfo_T info;
    info.extra2 = 2;
    info.category = RC_CALL_CATEGORY_DIALED;
    info.completed = true;
    info.idType = RC_PTT_ID_T{6};
    info.extra1 = 7;
    info.partyType = RC_PTT_PARTY_TYPE_T{8};
    info.sessionID = QString(120, QLatin1Char('s'));

    RC_RecordInterfaceImpl voice;
    voice.setPttAttribute(info);
    QCOMPARE(voice.getCategory(), RC_CALL_CATEGORY_NONE);
    QVERIFY(!voice.getCompletedStatus());

    RC_RecordInterfaceImpl record;
    record.setCallType(kPtt1);
    record.setPttAttribute(info);
    PHONE_ENG_RecentCall expected;
    expected.callType = kPtt1;
    expected.category = RC_CALL_CATEGORY_DIALED;
    expected.pttExtra1 = 7;
    expected.completed = 1;
    expected.pttIdType = RC_PTT_ID_T{6};
    expected.pttExtra2 = 2;
    expected.pttPartyType = RC_PTT_PARTY_TYPE_T{8};
    expected.setPttSessionID(QString(100, QLatin1Char('s')));
    QCOMPARE(std::memcmp(record.getData(), &expected, sizeof expected), 0);
}

QTEST_GUILESS_MAIN(tst_RC_RecordInterface)
#include "tst_RC_RecordInterface.moc"
