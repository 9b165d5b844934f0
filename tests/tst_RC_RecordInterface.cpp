// The record wrapper: its accessors, its push-to-talk rules and the order of its virtual operations.
#include "recentcall/utility/RC_RecordInterface.h"

#include <QtTest/QTest>

#include <cstring>

namespace {

constexpr RC_CALL_TYPE_T kPtt1 = RC_CALL_TYPE_PTT1;

/// The interface as an application built against its published order declares it; nothing is shared with the
/// library's own declaration.
class Foreign
{
public:
    virtual void s1(RC_CALL_CATEGORY_T) = 0;
    virtual RC_CALL_CATEGORY_T s2() const = 0;
    virtual void s3(const QString&) = 0;
    virtual QString s4() const = 0;
    virtual void s5(const QDateTime&) = 0;
    virtual QDateTime s6() const = 0;
    virtual void s7(int) = 0;
    virtual int s8() const = 0;
    virtual void s9(bool) = 0;
    virtual bool s10() const = 0;
    virtual bool s11() const = 0;
    virtual int s12() const = 0;
    virtual RC_CALL_TYPE_T s13() const = 0;
    virtual ~Foreign() = default; // 14
    virtual bool s15() const = 0;
    virtual void s16(RC_PTT_PARTY_TYPE_T) = 0;
    virtual RC_PTT_PARTY_TYPE_T s17() const = 0;
    virtual void s18(RC_PTT_ID_T) = 0;
    virtual RC_PTT_ID_T s19() const = 0;
    virtual void s20(const QString&) = 0;
    virtual QString s21() const = 0;
};

} // namespace

class tst_RC_RecordInterface : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keepsTheOrderOfItsVirtualOperations();
    void ownsTheRecordThatItIsGiven();
    void guardsThePushToTalkFields();
    void takesPushToTalkAttributes();
};

// The foreign class is another one than the object's, which is the point and which the sanitizer would object
// to.
__attribute__((no_sanitize("vptr", "undefined"))) void tst_RC_RecordInterface::keepsTheOrderOfItsVirtualOperations()
{
    auto* record = new RC_RecordInterfaceImpl;
    record->setCallType(kPtt1);
    record->getData()->uid = 77;
    record->getData()->readFlags = PHONE_ENG_RecentCall::kRead;
    auto* foreign = reinterpret_cast<Foreign*>(static_cast<RC_RecordInterface*>(record));

    const QDateTime start = QDateTime::fromSecsSinceEpoch(1'700'000'000);
    foreign->s1(RC_CALL_CATEGORY_MISSED);
    foreign->s3(QStringLiteral("112"));
    foreign->s5(start);
    foreign->s7(65);
    foreign->s9(true);
    foreign->s16(RC_PTT_PARTY_TYPE_T{3});
    foreign->s18(RC_PTT_ID_T{4});
    foreign->s20(QStringLiteral("session"));

    PHONE_ENG_RecentCall expected(QStringLiteral("112"), start, 65, true);
    expected.category = RC_CALL_CATEGORY_MISSED;
    expected.completed = 1;
    expected.callType = kPtt1;
    expected.uid = 77;
    expected.pttPartyType = RC_PTT_PARTY_TYPE_T{3};
    expected.pttIdType = RC_PTT_ID_T{4};
    expected.setPttSessionID(QStringLiteral("session"));
    QCOMPARE(std::memcmp(record->getData(), &expected, sizeof expected), 0);

    QCOMPARE(foreign->s2(), RC_CALL_CATEGORY_MISSED);
    QCOMPARE(foreign->s4(), QStringLiteral("112"));
    QCOMPARE(foreign->s6(), start);
    QCOMPARE(foreign->s8(), 65);
    QVERIFY(foreign->s10() && foreign->s11() && !foreign->s15());
    record->getData()->readFlags = PHONE_ENG_RecentCall::kStrictRead;
    QVERIFY(!foreign->s11() && foreign->s15());
    QCOMPARE(foreign->s12(), 77);
    QCOMPARE(foreign->s13(), kPtt1);
    QCOMPARE(foreign->s17(), RC_PTT_PARTY_TYPE_T{3});
    QCOMPARE(foreign->s19(), RC_PTT_ID_T{4});
    QCOMPARE(foreign->s21(), QStringLiteral("session"));
    delete foreign; // the slot of the destructor, which frees the owned record
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
