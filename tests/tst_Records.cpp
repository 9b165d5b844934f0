// The records of a call and of an activity, and the wrapper of the first: bytes, texts, rules and traces. The order of
// the wrapper's virtual operations is in abi/classes.
#include "recentcall/utility/RC_RecordInterface.h"
#include "support/ActivityLogFixture.h"
#include "support/StdoutCapture.h"

#include <algorithm>
#include <new>

using namespace Qt::StringLiterals;
using Call = PHONE_ENG_RecentCall;
using Activity = PHONE_ENG_ActivityLog;
using Wrapper = RC_RecordInterfaceImpl;

namespace {

const QDateTime kStart = QDateTime::fromSecsSinceEpoch(0x65432101);

struct Field
{
    void (Call::*set)(const QString&);
    QString (Call::*get)() const;
    int offset;
    int width;
};

constexpr Field kFields[] = {
    {&Call::setPhoneNumber, &Call::getPhoneNumber, 0, 42},
    {&Call::setPttSessionID, &Call::getPttSessionID, 104, 101},
    {&Call::setDisplayName, &Call::getDisplayName, 212, 16},
};

QByteArray bytes(const Call& call)
{
    return zyn::bytesOf(call).toByteArray();
}

QByteArray blankCall()
{
    return freshList().sliced(8, 228);
}

/// An activity made from @p arguments where other bytes were before, as its bytes.
template<typename... Arguments>
QByteArray made(const Arguments&... arguments)
{
    alignas(Activity) std::byte place[sizeof(Activity)];
    std::fill(std::begin(place), std::end(place), std::byte{0xA5});
    return activity::bytes(*new (place) Activity(arguments...));
}

} // namespace

class tst_Records : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void laysOutACallAsTheFilesHoldIt()
    {
        QCOMPARE(bytes(Call()), blankCall());
        Call call(u"112"_s, kStart, 0x01020304, true);
        call.uid = -2;
        call.category = RC_CALL_CATEGORY_DIALED;
        call.inUse = 1;
        call.slot = 7;
        call.callType = RC_CALL_TYPE_PTT2;
        call.completed = 1;
        call.reserved205[6] = 'r';
        call.setPttSessionID(u"\u00e9"_s);
        call.setDisplayName(u"\u00e9"_s);

        QByteArray expected(228, '\0');
        const std::pair<int, QByteArray> fields[] = {{0, "112"},
                                                     {44, QByteArray::fromHex("012143650403020101")},
                                                     {56, QByteArray::fromHex("feffffff0300000001")},
                                                     {68, "\7"},
                                                     {80, "\4"},
                                                     {88, "\1"},
                                                     {104, "\xC3\xA9"},
                                                     {211, "r\xE9"}};
        for (const auto& [offset, value] : fields)
            expected.replace(offset, value.size(), value);
        QCOMPARE(bytes(call), expected);
        QCOMPARE(call.getPttSessionID(), u"\u00c3\u00a9"_s); // stored as UTF-8, read as Latin-1
        QCOMPARE(call.getDisplayName(), u"\u00e9"_s);
        QCOMPARE(call.getStartDateTime(), kStart);
        call.print();
        QCOMPARE(bytes(call), expected);
    }

    void storesTextWithinItsField()
    {
        for (const auto& [set, get, offset, width] : kFields) {
            for (int length = 1; length < width + 20; ++length) {
                Call call;
                std::memset(static_cast<void*>(&call), '#', sizeof call);
                QCOMPARE((call.*get)(), QString(width, u'#')); // without a NUL
                const QByteArray before = bytes(call);
                (call.*set)(QString(length, u'x'));
                const QByteArray field = QByteArray(std::min(length, width - 1), 'x').leftJustified(width, '\0');
                QCOMPARE(bytes(call), QByteArray(before).replace(offset, width, field));
                (call.*set)(QString());
                (call.*set)(u""_s);
                QCOMPARE((call.*get)(), QString::fromLatin1(field.constData()));
            }
        }
        Activity entry;
        entry.setMsgString(QString(50, u'x'));
        entry.setMsgString(QString());
        QCOMPARE(entry.getMsgString(), QString(40, u'x'));
        entry.setMsgString(u"short"_s);
        QCOMPARE(activity::bytes(entry).sliced(244), "short" + QByteArray(51, '\0'));
        std::memset(entry.msgString, 'y', sizeof entry.msgString); // as a file may have it
        QCOMPARE(entry.getMsgString(), QString(41, u'y'));
    }

    void comparesCallsByUid()
    {
        Call newer(u"1"_s, kStart, 1);
        newer.uid = 2147483647;
        Call older;
        older.uid = -1;
        QVERIFY(newer < older && !(older < newer) && !(newer == older));
        older.uid = newer.uid;
        QVERIFY(newer == older && !(newer < older) && !(older < newer));
    }

    void laysOutAnActivityAsTheFilesHoldIt()
    {
        QCOMPARE(made().toHex(), activity::blankSlot().toHex());
        Activity entry;
        entry.topPalsAvlIndex = 0x01020304;
        entry.topPalsAvlPos = 5;
        entry.msgType = 6;
        entry.msgInfo = 7;
        entry.setMsgString(u"\u00e9b"_s);
        entry.flagA = 8;
        entry.flagB = 9;
        QByteArray expected = activity::blankSlot();
        expected.replace(228, 18, QByteArray::fromHex("04030201050000000600000007000000e962"));
        expected.replace(296, 2, QByteArray::fromHex("0809"));
        QCOMPARE(activity::bytes(entry).toHex(), expected.toHex());

        const Call call(u"112"_s, kStart, 2);
        StdoutCapture output;
        QCOMPARE(made(entry), expected);
        QCOMPARE(made(call), bytes(call) + activity::blankSlot().sliced(228));
        QCOMPARE(output.take(),
                 "Enter PHONE_ENG_ActivityLog(const PHONE_ENG_ActivityLog & value)\n"
                 "Exit PHONE_ENG_ActivityLog(const PHONE_ENG_ActivityLog & value)\n"
                 "Enter PHONE_ENG_ActivityLog(const PHONE_ENG_RecentCall & value):PHONE_ENG_RecentCall(value)\n"
                 "Exit PHONE_ENG_ActivityLog(const PHONE_ENG_RecentCall & value):PHONE_ENG_RecentCall(value)\n");
        entry.init();
        expected.replace(236, 9, QByteArray(9, '\0')).replace(296, 2, QByteArray(2, '\0'));
        QCOMPARE(activity::bytes(entry).toHex(), expected.toHex());
    }

    void wrapsACall()
    {
        Wrapper record;
        record.setCallType(RC_CALL_TYPE_PTT1);
        record.getData()->uid = 77;
        record.getData()->readFlags = Call::kRead;
        RC_RecordInterface& call = record;
        call.setCategory(RC_CALL_CATEGORY_MISSED);
        call.setPhoneNumber(u"112"_s);
        call.setStartDateTime(kStart);
        call.setDuration(65);
        call.setCompletedStatus(true);
        Call expected(u"112"_s, kStart, 65, true);
        expected.category = RC_CALL_CATEGORY_MISSED;
        expected.completed = 1;
        expected.callType = RC_CALL_TYPE_PTT1;
        expected.uid = 77;
        QCOMPARE(bytes(*record.getData()), bytes(expected));
        QCOMPARE(call.getCategory(), RC_CALL_CATEGORY_MISSED);
        QCOMPARE(call.getPhoneNumber(), u"112"_s);
        QCOMPARE(call.getStartDateTime(), kStart);
        QCOMPARE(call.getDuration(), 65);
        QCOMPARE(call.getUID(), 77);
        QCOMPARE(call.getCallType(), RC_CALL_TYPE_PTT1);
        QVERIFY(call.getCompletedStatus() && call.isRead() && !record.getIsStrictRead());
        record.getData()->readFlags = Call::kStrictRead;
        QVERIFY(!call.isRead() && record.getIsStrictRead());

        auto* data = new Call;
        QCOMPARE(Wrapper(data).getData(), data); // which it deletes
        QCOMPARE(Wrapper(nullptr).getCallType(), RC_CALL_TYPE_VOICE);
        QCOMPARE(bytes(*Wrapper(u"5"_s, kStart, 7).getData()), bytes(Call(u"5"_s, kStart, 7)));
    }

    void guardsThePushToTalkFields()
    {
        for (const int type : {1, 2, 3, 4, 5}) {
            const bool isPtt = type == 3 || type == 4;
            Wrapper record;
            record.setCallType(RC_CALL_TYPE_T(type));
            record.getData()->pttPartyType = RC_PTT_PARTY_TYPE_T{5};
            record.getData()->pttIdType = RC_PTT_ID_T{6};
            QCOMPARE(record.getPttPartyType(), RC_PTT_PARTY_TYPE_T(isPtt ? 5 : -1));
            QCOMPARE(record.getPttIDType(), RC_PTT_ID_T(isPtt ? 6 : 0));
            record.setPttSessionID(u"s"_s);
            record.setPttPartyType(RC_PTT_PARTY_TYPE_T{7});
            record.setPttIDType(RC_PTT_ID_T{8});
            QCOMPARE(record.getData()->pttSessionId[0] == 's', isPtt);
            QCOMPARE(record.getPttSessionID(), isPtt ? u"s"_s : QString());
            QCOMPARE(record.getPttSessionID().isNull(), !isPtt);
            QCOMPARE(record.getData()->pttPartyType == 7, isPtt);
            QCOMPARE(record.getData()->pttIdType == 8, isPtt);

            const Call before = *record.getData();
            record.setPttAttribute({0,
                                    2,
                                    {},
                                    RC_CALL_CATEGORY_DIALED,
                                    true,
                                    RC_PTT_ID_T{6},
                                    7,
                                    RC_PTT_PARTY_TYPE_T{9},
                                    QString(120, u's')});
            Call expected = before;
            if (isPtt) {
                expected.category = RC_CALL_CATEGORY_DIALED;
                expected.pttExtra1 = 7;
                expected.completed = 1;
                expected.pttIdType = RC_PTT_ID_T{6};
                expected.pttExtra2 = 2;
                expected.pttPartyType = RC_PTT_PARTY_TYPE_T{9};
                expected.setPttSessionID(QString(100, u's'));
            }
            QCOMPARE(bytes(*record.getData()), bytes(expected));
        }
    }
};

QTEST_GUILESS_MAIN(tst_Records)
#include "tst_Records.moc"
