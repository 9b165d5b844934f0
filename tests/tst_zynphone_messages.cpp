// The tool's monitor, status and send: what is sent is shown, by real processes.
#include "support/MonitorProcess.h"
#include "support/SignalRecorder.h"
#include "support/Timeout.h"
#include "support/Tool.h"
#include "utility/message/PhoneMessages_p.h"

#include <QtCore/QFile>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

using namespace Qt::StringLiterals;

namespace {

using tool::run;
using tool::words;

/// The rows of the file of messages.
QStringList listing()
{
    QFile file(QFINDTESTDATA("data/zynphone_messages.txt"));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("no list of messages");
    return QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts).mid(1);
}

const QString kSent = u"sent\nexit 0"_s;

/// Checks that an object says what a line of text says; of lists, which look different, only that they are there.
void compareWithText(const QJsonObject& object, const QString& text)
{
    QVERIFY(QDateTime::fromString(object[u"time"].toString(), Qt::ISODateWithMs).isValid());
    QVERIFY(text.contains(object[u"channel"].toString()));
    QVERIFY(text.contains(object[u"enumerator"].toString()));
    QCOMPARE(object[u"known"].toBool(), !text.contains(u"  unknown"));
    const QJsonObject fields = object[u"fields"].toObject();
    for (auto field = fields.begin(); field != fields.end(); ++field) {
        const QByteArray json = QJsonDocument(QJsonObject{{field.key(), *field}}).toJson(QJsonDocument::Compact);
        const QString value = field->isArray() ? u"["_s : QString::fromUtf8(json).section(u':', 1).chopped(1);
        QVERIFY2(text.contains(u' ' + field.key() + u'=' + value), qPrintable(field.key()));
    }
    QCOMPARE(object[u"missing"].toArray().size(), text.count(u"=missing"));
    QCOMPARE(!object[u"rest"].toString().isEmpty(), text.contains(u"rest="));
}

} // namespace

class ZynphoneMessagesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { qputenv("TZ", "EET-2"); }
    void showsWhatIsSent();
    void showsWholePayloads();
    void clientDecodesStatus_data();
    void clientDecodesStatus();
    void refuses_data();
    void refuses();
    void tellsThatChannelsCannotBeUsed();
    void endsWhenAsked();
};

void ZynphoneMessagesTest::showsWhatIsSent()
{
    MonitorProcess monitor(u""_s);
    MonitorProcess json(u"--json"_s);
    QCOMPARE(monitor.greeting, u"listening on /ZYN/phone, /ZYN/Phone/LocalPath, /KQ/calling2ptt, "
                               "/ZYN/recentcall, ACTIVITY_LOG_CHANNEL"_s);
    QString names, shown, expected;
    for (const QString& row : listing()) {
        const QString command = row.section(u" -> "_s, 0, 0);
        QCOMPARE(run(words(command)), kSent);
        if (command.startsWith("status"_L1))
            names += words(command)[1] + u' ';
        expected += u"TIME  "_s + row.section(u" -> "_s, 1) + u'\n';
        const QString line = monitor.nextMessage();
        shown += line + u'\n';
        compareWithText(QJsonDocument::fromJson(json.nextLine().toUtf8()).object(), line);
    }
    QCOMPARE(shown, expected);

    QString allNames;
    for (const zyn::PhoneMessage& message : zyn::phoneMessages()) {
        if (message.isStatus())
            allNames += QLatin1String(message.word) + u' ';
    }
    QCOMPARE(names, allNames);
}

void ZynphoneMessagesTest::showsWholePayloads()
{
    MonitorProcess text(u"--raw /any/%2541 /ZYN/phone"_s);
    MonitorProcess json(u"--raw --json /ZYN/phone"_s);
    QCOMPARE(text.greeting, u"listening on /any/%41, /ZYN/phone"_s);
    QCOMPARE(run(words(u"send /any/%2541 x byte:255"_s)), kSent);
    QCOMPARE(text.nextMessage(), u"TIME  /any/%41              x                 unknown  rest=ff payload=ff"_s);
    QCOMPARE(run(words(u"send /ZYN/phone PHONE_MSG_37 text:%C2%9B%5C%E2%80%AE null hex:00"_s)), kSent);
    QCOMPARE(text.nextMessage(), uR"(TIME  /ZYN/phone            PHONE_MSG_37      PHONE_MSG_SERVICE_ID_AND_NAME_S  )"
                                 uR"(first="\u009b\\\u202e" second=null third=missing rest=00 )"
                                 u"payload=00000006009b005c202effffffff00"_s);
    QCOMPARE(json.nextLine().section(u",\"time\":"_s, 0, 0),
             uR"({"channel":"/ZYN/phone","enumerator":"PHONE_MSG_SERVICE_ID_AND_NAME_S",)"
             uR"("fields":{"first":"\u009b\\\u202e","second":null},"known":true,"missing":["third"],)"
             uR"("name":"PHONE_MSG_37","payload":"00000006009b005c202effffffff00","rest":"00")"_s);
}

void ZynphoneMessagesTest::clientDecodesStatus_data()
{
    QTest::addColumn<QByteArray>("signalsEmitted");

    QTest::newRow("network 5 26201") << QByteArray(
        R"(signalNetid("26201") signalNetworkStatus(5) signalRegisted("26201"))");
    QTest::newRow("provider-name '' 255") << QByteArray(R"(signalSpnNameExtend(255,""))");
    QTest::newRow("imsi 262011234567890") << QByteArray("signalImsiId(32363230313132333435363738393000)");
    QTest::newRow("network-list-1 26201 Home")
        << QByteArray("signalnetworkListGotten(1,01000000323632303100000000000000)");
    QTest::newRow("snapshot --sim-card -3 --gprs-attach 2 --network-id 26201 --egprs-service 255")
        << QByteArray("signalPowerOnMode(0) signalSimCardStatus(-3) signalPinStatus(0) signalSubsidyStatus(0) "
                      "signalBatteryStatus(0) signalChargeStatus(0) signalBatteryCapacity(0) signalSignalQuality(0) "
                      "signalRoamingState(0) signalGprsAttached(true) signalGprsService(false) "
                      "signalRegisted(\"26201\") "
                      "signalNetworkStatus(0) signalImsiId(00000000000000000000000000000000) "
                      "signalEgprsService(true)");
}

void ZynphoneMessagesTest::clientDecodesStatus()
{
    QFETCH(QByteArray, signalsEmitted);
    PHONE_MsgClient client;
    SignalRecorder recorder(&client);

    QCOMPARE(run(words(u"status "_s + QString::fromUtf8(QTest::currentDataTag()))), kSent);

    QTRY_COMPARE(recorder.count(), signalsEmitted.count(" signal") + 1);
    QCOMPARE(recorder.take(), signalsEmitted);
}

void ZynphoneMessagesTest::refuses_data()
{
    QTest::addColumn<QString>("message");

    const auto row = [](const char* arguments, const char* message) {
        QTest::newRow(arguments) << QString::fromUtf8(message);
    };
    row("status batery 5", "unknown status 'batery'; did you mean 'battery-status'?");
    row("status sim-cardd 5", "unknown status 'sim-cardd'; did you mean 'sim-card'?");
    row("status frob", "unknown status 'frob'");
    row("status network 5", "missing argument ID");
    row("status power-key 5", "superfluous argument '5'");
    row("status power-key --battery 5", "--battery is for 'snapshot'");
    row("status uma-icon 256", "VALUE '256' is no whole number from 0 to 255");
    row("status snapshot --gprs-attach -1", "--gprs-attach '-1' is no whole number from 0 to 255");
    row("status snapshot --network-id 1234567890123456", "the --network-id has 16 characters; at most 15 fit");
    row("status imsi 12345678901234567", "the IMSI has 17 characters; at most 16 fit");
    row("status imsi hex:00", "the IMSI has 1 bytes, not 16");
    row("status network-list-0 26201", "missing name of network '26201'");
    row("send '' b", "the channel's name is empty");
    row("send /a b 5", "unknown type '5'; known are int, char, byte, bool, text, null, hex");
    row("send /a b char:128", "char '128' is no whole number from -128 to 127");
    row("send /a b text", "missing value after 'text:'");
    row("send /a b null:", "'null' takes no value");
    row("send /a b hex:0g", "'0g' is no even number of hexadecimal digits");
    row("monitor --count 0", "--count '0' is no whole number from 1 to 2147483647");
}

void ZynphoneMessagesTest::refuses()
{
    QFETCH(QString, message);
    const QStringList arguments = words(QString::fromUtf8(QTest::currentDataTag()));

    QCOMPARE(run(arguments), u"zynphone: %1\nTry 'zynphone %2 --help'.\nexit 2"_s.arg(message, arguments.first()));
}

void ZynphoneMessagesTest::tellsThatChannelsCannotBeUsed()
{
    qputenv("ZYN_QCOP_PATH", "/dev/null");
    const QString send = run({u"status"_s, u"power-key"_s});
    const QString listen = run({u"monitor"_s, u"/a"_s});
    qunsetenv("ZYN_QCOP_PATH");
    QCOMPARE(send, u"zynphone: cannot send on /ZYN/phone\nexit 1"_s);
    QCOMPARE(listen.section(u'\n', 1), u"zynphone: cannot listen on /a\nexit 1"_s);
}

void ZynphoneMessagesTest::endsWhenAsked()
{
    QCOMPARE(MonitorProcess(u"/a"_s).end(SIGINT), 0);
    QCOMPARE(MonitorProcess(u"/a --json"_s).end(SIGTERM), 0);
    MonitorProcess timed(u"/a --for 1"_s);
    QCOMPARE(role::finish(timed), 0);
    MonitorProcess counted(u"/a --count 2"_s);
    for (int i = 0; i < 3; ++i)
        run({u"send"_s, u"/a"_s, u"b"_s});
    QCOMPARE(role::finish(counted), 0);
    QCOMPARE(counted.readAll().count('\n'), 2);
}

QTEST_GUILESS_MAIN(ZynphoneMessagesTest)
#include "tst_zynphone_messages.moc"
