// The decoding of the phone channel's messages.
#include "support/SignalRecorder.h"
#include "support/StdoutCapture.h"
#include "utility/PHONE_MsgClient.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QMap>
#include <QtCore/QRegularExpression>
#include <QtTest/QTest>

#include <memory>

namespace {

struct Row
{
    const char* title;
    int type;
    QByteArray payload; // in hexadecimal
    QByteArray log;
    QByteArray emitted;
};

/// The raw record of a snapshot with 2 bytes of GPRS states, 16 of the network id and 1 of the EGPRS state.
QByteArray snapshot(const char* gprs, const char* id, const char* egprs)
{
    return QByteArray("01000000 02000000 03000000 04000000 05000000 ffffffffffffffff feffffff c8ffffff "
                      "07000000 08000000")
           + gprs + "ffff" + id + "05000000 ff 000102030405060708090a0b0c0d0e0f ffffffffffff" + egprs;
}

constexpr char kId[] = "32363230310041414141414141414141";
constexpr char kNoId[] = "00414141414141414141414141414141";
constexpr char kLongId[] = "31323334353637383930414243444546";

QByteArray snapshotSignals(const char* gprs, const char* registered, const char* egprs)
{
    return QByteArray("signalPowerOnMode(-2) signalSimCardStatus(2) signalPinStatus(3) signalSubsidyStatus(4) "
                      "signalBatteryStatus(1) signalChargeStatus(5) signalBatteryCapacity(200) "
                      "signalSignalQuality(7) "
                      "signalRoamingState(8) ")
           + gprs + registered + "signalNetworkStatus(5) signalImsiId(000102030405060708090a0b0c0d0e0f) " + egprs;
}

QByteArray banner(const char* line)
{
    return QByteArray("********Client****************") + line + "********Client****************";
}

// clang-format off
const Row kRows[] = {
    {"attached, available, registered", 0, snapshot("0201", kId, "01"), "PHONE_MSG_ALL_STATUS_S",
     snapshotSignals("signalGprsAttached(true) signalGprsService(true) ", "signalRegisted(\"26201\") ",
                     "signalEgprsService(true)")},
    {"neither attached nor with an id", 0, snapshot("0302", kNoId, "00"), "PHONE_MSG_ALL_STATUS_S",
     snapshotSignals("signalGprsAttached(false) signalGprsService(false) ", "", "signalEgprsService(false)")},
    {"an id that fills its field", 0, snapshot("0100", kLongId, "ff"), "PHONE_MSG_ALL_STATUS_S",
     snapshotSignals("signalGprsAttached(true) signalGprsService(false) ", "signalRegisted(\"1234567890ABCDEF\") ",
                     "signalEgprsService(true)")},
    {"power-on mode", 1, "01020304",
     "PHONE_MSG_POWER_ON_MODE_S*********Client***************MsgClient: Power on Mode 16909060 *********Client***************",
     "signalPowerOnMode(16909060)"},
    {"a payload is ignored", 2, "ff", banner("PHONE_MSG_POWER_KEY_PRESSED_S Message"), "signalPowerDown()"},
    {"battery status", 3, "ffffffff", "PHONE_MSG_BATTERY_STATUS_S" + banner("MsgClient: Battery Status = -1"),
     "signalBatteryStatus(-1)"},
    {"above 127", 4, "c8", "PHONE_MSG_BATTERY_VALUE_CHANGE_S" + banner("MsgClient: Battery Value = 200"),
     "signalBatteryCapacity(200)"},
    {"charger", 5, "00000002", "PHONE_MSG_CHARGE_STATUS_S" + banner("MsgClient: Charge Status = 2"), "signalChargeStatus(2)"},
    {"SIM card", 6, "00000003", "PHONE_MSG_SIM_CARD_STATUS_S" + banner("MsgClient: Sim card status = 3"),
     "signalSimCardStatus(3)"},
    {"PIN1", 8, "00000004", "PHONE_MSG_PIN1_STATUS_S" + banner("MsgClient: Pin1 Status = 4"), "signalPinStatus(4)"},
    {"subsidy", 9, "00000005", "PHONE_MSG_SUBSIDY_LOCK_STATUS_S" + banner("MsgClient: Subsidy lock status = 5"),
     "signalSubsidyStatus(5)"},
    {"signal quality", 10, "00000006", "MsgClient: Signal Value = 6", "signalSignalQuality(6)"},
    {"a last byte above 127", 11, "000001ff", "MsgClient: Service = 255", "signalServiceAvailability(255)"},
    {"roaming", 12, "00000007", "MsgClient: roam = 7", "signalRoamingState(7)"},
    {"registered", 13, "00000005 00000004 00320036", "******Network status = 5Network id = 26 ",
     "signalNetid(\"26\") signalNetworkStatus(5) signalRegisted(\"26\")"},
    {"not registered", 13, "00000001 00000004 00320036", "******Network status = 1",
     "signalNetworkStatus(1) signalRegisted(\"\") signalServiceName(\"\") signalSpnNameExtend(0,\"\")"},
    {"Latin-1 in the log only", 14, "00000006 004100e920ac", "Service name = A\xe9?",
     "signalServiceName(\"A\xc3\xa9\xe2\x82\xac\")"},
    {"a null text", 14, "ffffffff", "Service name = ", "signalServiceName(null)"},
    {"an empty text", 14, "00000000", "Service name = ", "signalServiceName(\"\")"},
    {"a length beyond the payload", 14, "fffffffe 0041", "Service name = ", "signalServiceName(null)"},
    {"provider name", 15, "00000002 0041 81", "SPN = A", "signalSpnNameExtend(129,\"A\")"},
    {"a text of an odd length", 15, "00000003 004142 81", "SPN = A", "signalSpnNameExtend(129,\"A\")"},
    {"home zone", 16, "00000002 0041", "", "signalHomeZoneName(\"A\")"},
    {"set", 17, "00000100", "PHONE_MSG_RET_SET_RFMOD_S" + banner("MsgClient: RF Mode Return = 256"),
     "signalSetRFModResult(true)"},
    {"GPRS activated", 18, "00000002", "", "signalGprsActivated(true)"},
    {"GPRS attached", 19, "80000000", "", "signalGprsAttached(true)"},
    {"GPRS service", 20, "00000002", "", "signalGprsService(true)"},
    {"GPRS opened", 21, "00000008", "Phone Client: Ret of open gprs = 8", "signalOpenGprsResult(8)"},
    {"GPRS closed", 22, "00000009", "Phone Client: Ret of close gprs = 9", "signalCloseGprsResult(9)"},
    {"low battery", 23, "", "Phone Client: Low battery", "signalLowBattery()"},
    {"language told", 26, "0000000a",
     "PHONE_MSG_RET_SET_FEATUREDB_LANG_S" + banner("MsgClient: Notify BP current language  Return = 10"), ""},
    {"IMSI", 27, "00112233445566778899aabbccddeeff ff", "", "signalImsiId(00112233445566778899aabbccddeeff)"},
    {"EGPRS service", 28, "00000002", "Phone Client: EGPRS Service status = 1", "signalEgprsService(true)"},
    {"EGPRS transmission", 29, "00000002", "Phone Client: EGPRS Transmission status = 1", "signalEgprsTrans(true)"},
    {"TTY feature", 30, "", "", "signalTTYFeatureChanged()"},
    {"connected", 31, "00000001 00000010 00000020 ffffffff",
     "phone client gprs connected =  1phone client gprs total sentbytes = 32"
     "phone client gprs total recvedbytes = -1phone client gprs total bytes = 16",
     "signalTotalDataBytes(true,16,32,4294967295)"},
    {"connected is 1 alone", 31, "00000002 00000010 00000020 00000030",
     "phone client gprs connected =  0phone client gprs total sentbytes = 32"
     "phone client gprs total recvedbytes = 48phone client gprs total bytes = 16", "signalTotalDataBytes(false,16,32,48)"},
    {"session", 32, "00000001 81 00000010 00000020 00000030",
     "phone client gprs connected =  1phone client gprs current sentbytes = 32phone client gprs current recvedbytes = 48"
     "phone client gprs session id =  129phone client gprs session bytes = 16phone client gprs sesion sentbytes = 32"
     "phone client gprs session recvedbytes = 48", "signalSessionDataBytes(129,true,16,32,48)"},
    {"total duration", 33, "00000001 0000003c", "phone client csd connected =  1phone client csd total secs = 60",
     "signalTotalConnectedDuration(true,60)"},
    {"current duration", 34, "00000003 ffffffff", "phone client csd connected =  0phone client csd current secs = -1",
     "signalCurrentConnectedDuration(false,4294967295)"},
    {"kind 0 reset", 36, "00000000 00000000", "type =  0retcode =  0", "signalResetTotalDurationRet(true,true)"},
    {"kind 1 not reset", 36, "00000001 00000005", "type =  1retcode =  5", "signalResetTotalDurationRet(false,false)"},
    {"the last text first", 37, "00000002 0041 00000002 0042 00000002 0043", "", "signalServiceIdAndName(\"C\",\"A\",\"B\")"},
    {"list", 38, "01000000 323632", "<receive><receive>", "signalnetworkListGotten(0,01000000323632000000000000000000)"},
    {"list", 39, "", "<receive>", "signalnetworkListGotten(1,00000000000000000000000000000000)"},
    {"logo hidden", 40, "80", "logo hide = 128", "signalOperatorLogo(true)"},
    {"CSD call", 41, "", "", "signalCSDCallStatChanged()"},
    {"call forward", 42, "", "", "signalCallForwardStatChanged()"},
    {"line number", 43, "", "", "signalLineNumberStatChanged()"},
    {"voice call", 44, "", "", "signalVoiceCallStatChanged()"},
    {"charge completed", 45, "", "", "signalChargeComleted()"},
    {"low battery changed", 46, "", "", "signalLowBatteryStatusChanged()"},
    {"call barring", 47, "", "", "signalCallbarringStatusChanged()"},
    {"Wi-Fi camp", 48, "", "", "signalWifiCampStatus()"}, {"Wi-Fi signal", 49, "", "", "signalWifiSignalBar()"},
    {"Wi-Fi connecting", 50, "", "", "signalWifiConnectionInProgress()"},
    {"Wi-Fi profile", 51, "00000002 0041", "", "signalWifiProfileName(\"A\")"},
    {"UMA icon", 52, "ff", "UMA:value =  255\n", "signalDisplayUMAIcon(255)"},
    {"SIM card changed", 53, "", "get message: PHONE_MSG_SIM_CARD_CHANGED_S\n", "signalSimCardChanged()"},
};
// clang-format on

/// What a client logs while it receives one message; the line that marks the entry reads "<receive>".
QByteArray receive(PHONE_MsgClient& client, const QByteArray& name, const QByteArray& payload)
{
    StdoutCapture capture;
    client.receive(name, payload);
    static const QRegularExpression entry(QStringLiteral("utility/PHONE_MsgClient,receive,\\d+ \n"));
    return QString::fromLatin1(capture.take()).replace(entry, QStringLiteral("<receive>")).toLatin1();
}

QByteArray messageName(int type)
{
    return "PHONE_MSG_" + QByteArray::number(type);
}

} // namespace

class tst_PHONE_MsgClient : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void declaresItsSignals();
    void decodes();
    void ignoresForeignNames();
    void readsWhatIsCutAsMissing_data();
    void readsWhatIsCutAsMissing();
    void keepsTheWholeFieldsOfACutSnapshot();
    void handsOutTheNetworkList();
    void endsAMessageWithTheClient();
    void queuesByName();
};

void tst_PHONE_MsgClient::declaresItsSignals()
{
    const QByteArray expected =
        "signalPowerOnMode(TAPI_POWER_ON_MODE_E) signalPowerDown() signalSimCardStatus(TAPI_SIM_STATUS_E) "
        "signalPinStatus(TAPI_SECURITY_PIN_STATUS_E) signalChargeStatus(TAPI_CHARGER_STATUS_E) "
        "signalBatteryStatus(TAPI_BATTERY_STATUS_E) signalBatteryCapacity(UINT8) "
        "signalSubsidyStatus(TAPI_SECURITY_SUBSIDY_STATUS_E) signalSetRFModResult(bool) "
        "signalSignalQuality(TAPI_NETWORK_SIGNAL_E) signalServiceAvailability(TAPI_BOOL_STATUS_E) "
        "signalRoamingState(TAPI_NETWORK_ROAM_E) signalDisplayUMAIcon(UINT8) signalNetid(QString) "
        "signalNetworkStatus(TAPI_NETWORK_STATUS_E) signalRegisted(QString) signalServiceName(QString) "
        "signalSpnNameExtend(SERVICE_PROVIDER_DATA_S) signalServiceIdAndName(QString,QString,QString) "
        "signalnetworkListGotten(PHONE_UI_NETWORKLIST_TYPE_T,TAPI_NETWORK_NOTIFY_PREFERED_LIST_MSG_S*) "
        "signalGprsActivated(bool) signalGprsAttached(bool) signalGprsService(bool) signalEgprsService(bool) "
        "signalEgprsTrans(bool) signalOpenGprsResult(TAPI_RESULT_E) signalCloseGprsResult(TAPI_RESULT_E) "
        "signalLowBattery() signalImsiId(UINT8[TAPI_IMSI_LENGTH+1]) signalTTYFeatureChanged() "
        "signalTotalDataBytes(bool,UINT32,UINT32,UINT32) "
        "signalSessionDataBytes(UINT8,bool,UINT32,UINT32,UINT32) "
        "signalTotalConnectedDuration(bool,UINT32) signalCurrentConnectedDuration(bool,UINT32) "
        "signalResetTotalDurationRet(bool,bool) signalOperatorLogo(bool) signalCSDCallStatChanged() "
        "signalCallForwardStatChanged() signalLineNumberStatChanged() signalVoiceCallStatChanged() "
        "signalChargeComleted() signalLowBatteryStatusChanged() signalCallbarringStatusChanged() "
        "signalWifiCampStatus() signalWifiSignalBar() signalWifiConnectionInProgress() "
        "signalWifiProfileName(QString) signalSimCardChanged() signalHomeZoneName(QString)";
    QCOMPARE(signalsOf(PHONE_MsgClient::staticMetaObject), expected.split(' '));
    QCOMPARE(PHONE_MsgClient::staticMetaObject.className(), "PHONE_MsgClient");
}

void tst_PHONE_MsgClient::decodes()
{
    for (const Row& row : kRows) {
        PHONE_MsgClient client;
        SignalRecorder recorder(&client);
        const QByteArray log = receive(client, messageName(row.type), QByteArray::fromHex(row.payload));
        QCOMPARE(row.title + (": " + log), row.title + (": <receive>" + row.log));
        QCOMPARE(recorder.take(), row.emitted);
    }
}

void tst_PHONE_MsgClient::ignoresForeignNames()
{
    PHONE_MsgClient client;
    SignalRecorder recorder(&client);
    const QByteArray names =
        "PHONE_MSG_7|PHONE_MSG_24|PHONE_MSG_25|PHONE_MSG_35|PHONE_MSG_54|PHONE_MSG_55|PHONE_MSG_04|"
        "PHONE_MSG_00|PHONE_MSG_4 |PHONE_MSG_ 4| PHONE_MSG_4|PHONE_MSG_+4|PHONE_MSG_-1|PHONE_MSG_|"
        "PHONE_MSG_4294967300|PHONE_MSG_0x4|PHONE_MSG_4a|phone_msg_4|PHONE_MSG|RECENTCALL_MSG_4|";
    for (const QByteArray& name : names.split('|') + QByteArrayList{QByteArray(), QByteArray("PHONE_MSG_4", 12)})
        QCOMPARE(receive(client, name, QByteArray(100, '\1')), "<receive>");
    QCOMPARE(recorder.take(), "");
}

using Steps = QMap<qsizetype, QByteArray>;

void tst_PHONE_MsgClient::readsWhatIsCutAsMissing_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<Steps>("steps"); // what is emitted from each length on

    // clang-format off
    QTest::newRow("numbers") << 32 << QByteArray("00000001 81 00000010 00000020 00000030") << Steps{
        {0, "signalSessionDataBytes(0,false,0,0,0)"}, {4, "signalSessionDataBytes(0,true,0,0,0)"},
        {5, "signalSessionDataBytes(129,true,0,0,0)"}, {9, "signalSessionDataBytes(129,true,16,0,0)"},
        {13, "signalSessionDataBytes(129,true,16,32,0)"}, {17, "signalSessionDataBytes(129,true,16,32,48)"}};
    QTest::newRow("a text, then a byte") << 15 << QByteArray("00000004 00410042 07") << Steps{
        {0, "signalSpnNameExtend(0,null)"}, {8, "signalSpnNameExtend(0,\"AB\")"}, {9, "signalSpnNameExtend(7,\"AB\")"}};
    QTest::newRow("a block") << 27 << QByteArray("00112233445566778899aabbccddeeff") << Steps{
        {0, "signalImsiId(00000000000000000000000000000000)"}, {16, "signalImsiId(00112233445566778899aabbccddeeff)"}};
    QTest::newRow("a network id") << 13 << QByteArray("00000005 00000002 0041") << Steps{
        {0, "signalNetworkStatus(0) signalRegisted(\"\") signalServiceName(\"\") signalSpnNameExtend(0,\"\")"},
        {4, "signalNetid(null) signalNetworkStatus(5) signalRegisted(null)"},
        {10, "signalNetid(\"A\") signalNetworkStatus(5) signalRegisted(\"A\")"}};
    // clang-format on
}

void tst_PHONE_MsgClient::readsWhatIsCutAsMissing()
{
    QFETCH(const int, type);
    QFETCH(QByteArray, payload);
    QFETCH(const Steps, steps);

    PHONE_MsgClient client;
    SignalRecorder recorder(&client);
    payload = QByteArray::fromHex(payload);
    for (qsizetype length = 0; length <= payload.size(); ++length) {
        receive(client, messageName(type), payload.first(length));
        QCOMPARE(recorder.take(), *std::prev(steps.upperBound(length)));
    }
}

void tst_PHONE_MsgClient::keepsTheWholeFieldsOfACutSnapshot()
{
    PHONE_MsgClient client;
    SignalRecorder recorder(&client);
    const auto emitted = [&](const QByteArray& payload) {
        receive(client, messageName(0), payload);
        return recorder.take().split(' ');
    };
    const QByteArray whole = QByteArray::fromHex(snapshot("0201", kId, "01"));
    const QByteArrayList all = emitted(whole);
    const QByteArrayList none = emitted({});
    QCOMPARE(none.size(), 14);
    const int ends[] = {4, 8, 12, 16, 20, 32, 33, 40, 44, 45, 46, 64, 68, 85, 92}; // of the fields
    for (qsizetype length = 0; length < whole.size(); ++length) {
        const QByteArrayList some = emitted(whole.first(length));
        const auto isWhole = [&](const QByteArray& text) { return all.contains(text) && !none.contains(text); };
        QCOMPARE(std::count_if(some.begin(), some.end(), isWhole),
                 std::count_if(std::begin(ends), std::end(ends), [&](int end) { return end <= length; }));
        for (const QByteArray& text : some)
            QVERIFY2(all.contains(text) || none.contains(text), text.constData());
    }
}

void tst_PHONE_MsgClient::handsOutTheNetworkList()
{
    using List = TAPI_NETWORK_NOTIFY_PREFERED_LIST_MSG_S;
    PHONE_MsgClient client;
    const void* place = nullptr;
    QByteArray record;
    connect(&client, &PHONE_MsgClient::signalnetworkListGotten, this, [&](PHONE_UI_NETWORKLIST_TYPE_T, List* list) {
        place = list;
        record = QByteArray(reinterpret_cast<const char*>(list), sizeof(List));
    });

    const QByteArray whole(sizeof(List) + 1, 'x');
    receive(client, messageName(38), whole);
    QCOMPARE(place, static_cast<const void*>(whole.constData()));
    receive(client, messageName(39), whole.first(sizeof(List) - 1));
    QCOMPARE(record, whole.first(sizeof(List) - 1) + '\0');
    receive(client, messageName(38), QByteArray::fromRawData(whole.constData() + 1, sizeof(List)));
    QCOMPARE(reinterpret_cast<quintptr>(place) % alignof(List), size_t{0});
    QCOMPARE(record, whole.first(sizeof(List)));
}

void tst_PHONE_MsgClient::endsAMessageWithTheClient()
{
    for (const Row& row : kRows) {
        for (qsizetype last = 1; last <= row.emitted.count("signal"); ++last) {
            auto client = std::make_unique<PHONE_MsgClient>();
            SignalRecorder recorder(client.get());
            recorder.onSignal = [&] {
                if (recorder.count() == last)
                    client.reset();
            };
            QCOMPARE(receive(*client, messageName(row.type), QByteArray::fromHex(row.payload)), "<receive>" + row.log);
            QCOMPARE(recorder.count(), last);
        }
    }
}

void tst_PHONE_MsgClient::queuesByName()
{
    PHONE_MsgClient client;
    PHONE_MsgClient other;
    SignalRecorder direct(&client);
    SignalRecorder queued(&other);
    for (const QByteArray& signature : signalsOf(PHONE_MsgClient::staticMetaObject)) {
        const QByteArray signal = "2" + signature;
        if (signature.contains('['))
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("Cannot queue arguments of type")));
        QCOMPARE(bool(connect(&client, signal, &other, signal, Qt::QueuedConnection)), !signature.contains('['));
    }
    for (const Row& row : kRows) {
        if (row.emitted.contains("Imsi") || row.emitted.contains("List"))
            continue; // a pointer is not for queued connections
        receive(client, messageName(row.type), QByteArray::fromHex(row.payload));
        QCoreApplication::sendPostedEvents(&other);
        QCOMPARE(queued.take(), direct.take());
    }
}

QTEST_GUILESS_MAIN(tst_PHONE_MsgClient)
#include "tst_PHONE_MsgClient.moc"
