// The relay of phone status.
#include "support/SignalRecorder.h"
#include "support/Timeout.h"
#include "utility/PHONE_AsyncMsgReceiver.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QPointer>
#include <QtCore/QSet>
#include <QtTest/QTest>

namespace {

const QByteArray kNotRegistered = QByteArray::fromHex("00000001");

PHONE_MsgClient* clientOf(const PHONE_AsyncMsgReceiver* relay)
{
    return relay->findChild<PHONE_MsgClient*>();
}

} // namespace

/// Takes the service provider under both names of its type.
class ProviderReceiver : public QObject
{
    Q_OBJECT

public:
    QByteArrayList names;

public Q_SLOTS:
    void take(SERVICE_PROVIDER_DATA_S provider) { names += "a " + provider.name.toLatin1(); }
    void takeRelayed(PHONE_SERVICE_PROVIDER_DATA_S provider) { names += "b " + provider.name.toLatin1(); }
};

class tst_PHONE_AsyncMsgReceiver : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { PHONE_AsyncMsgReceiver::destruction(); }

    void declaresTheClientsSignals();
    void relaysEachSignal();
    void listensOnTheChannel();
    void deliversTheProviderUnderEitherName();
    void endsInTheMiddleOfAMessage();
    void startsAgain();
};

void tst_PHONE_AsyncMsgReceiver::declaresTheClientsSignals()
{
    QByteArrayList all = signalsOf(PHONE_MsgClient::staticMetaObject);
    all.replace(all.indexOf("signalSpnNameExtend(SERVICE_PROVIDER_DATA_S)"),
                "signalSpnNameExtend(PHONE_SERVICE_PROVIDER_DATA_S)");
    const QByteArrayList relayed = signalsOf(PHONE_AsyncMsgReceiver::staticMetaObject);
    QCOMPARE(relayed.size(), 36);
    QVERIFY(std::all_of(relayed.begin(), relayed.end(), [&](const QByteArray& one) { return all.contains(one); }));
    for (const char* name : {"PowerOnMode", "PowerDown", "SubsidyStatus", "Netid", "ServiceIdAndName", "ImsiId",
                             "TTYFeatureChanged", "etworkListGotten", "Bytes", "Duration"})
        QVERIFY2(!relayed.join().contains(name), name);
    QCOMPARE(PHONE_AsyncMsgReceiver::staticMetaObject.className(), "PHONE_AsyncMsgReceiver");
}

void tst_PHONE_AsyncMsgReceiver::relaysEachSignal()
{
    const PHONE_AsyncMsgReceiver* relay = PHONE_AsyncMsgReceiver::instance();
    const auto nameOf = [](const QByteArray& text) { return text.left(text.indexOf('(')); };
    QSet<QByteArray> missing;
    for (const QByteArray& signature : signalsOf(*relay->metaObject()))
        missing += nameOf(signature);
    const QSet<QByteArray> relayed = missing;
    SignalRecorder source(clientOf(relay));
    SignalRecorder recorder(relay);
    for (int type = 0; type < 55; ++type) {
        clientOf(relay)->receive("PHONE_MSG_" + QByteArray::number(type), QByteArray(24, '\0').append(76, '\1'));
        QByteArrayList expected = source.take().split(' ');
        expected.removeIf([&](const QByteArray& emitted) { return !relayed.contains(nameOf(emitted)); });
        QCOMPARE(recorder.take(), expected.join(' '));
        for (const QByteArray& emitted : expected)
            missing -= nameOf(emitted);
    }
    QVERIFY(missing.isEmpty());
}

void tst_PHONE_AsyncMsgReceiver::listensOnTheChannel()
{
    SignalRecorder recorder(PHONE_AsyncMsgReceiver::instance());
    PHONE_Msg server;
    QVERIFY(server.send(PHONE_Msg::PHONE_MSG_POWER_ON_MODE_S, kNotRegistered));
    QVERIFY(server.send(PHONE_Msg::PHONE_MSG_NETWORK_STATUS_S, kNotRegistered));
    QTRY_COMPARE(recorder.count(), 4);
    QCOMPARE(recorder.take(), "signalNetworkStatus(1) signalRegisted(\"\") signalServiceName(\"\") "
                              "signalSpnNameExtend(0,\"\")");
}

void tst_PHONE_AsyncMsgReceiver::deliversTheProviderUnderEitherName()
{
    const PHONE_AsyncMsgReceiver* relay = PHONE_AsyncMsgReceiver::instance();
    const char* const signalNames[] = {SIGNAL(signalSpnNameExtend(SERVICE_PROVIDER_DATA_S)),
                                       SIGNAL(signalSpnNameExtend(PHONE_SERVICE_PROVIDER_DATA_S))};
    ProviderReceiver receiver;
    for (const char* signal : signalNames) {
        for (const Qt::ConnectionType type : {Qt::DirectConnection, Qt::QueuedConnection}) {
            QVERIFY(connect(relay, signal, &receiver, SLOT(take(SERVICE_PROVIDER_DATA_S)), type));
            QVERIFY(connect(relay, signal, &receiver, SLOT(takeRelayed(PHONE_SERVICE_PROVIDER_DATA_S)), type));
            QVERIFY(connect(clientOf(relay), signal, &receiver, SLOT(take(SERVICE_PROVIDER_DATA_S)), type));
        }
    }
    connect(relay, &PHONE_AsyncMsgReceiver::signalSpnNameExtend, &receiver, &ProviderReceiver::takeRelayed);
    clientOf(relay)->receive("PHONE_MSG_15", QByteArray::fromHex("00000002 0041 07"));
    QCOMPARE(receiver.names.size(), 7);
    QCoreApplication::sendPostedEvents(&receiver);
    QCOMPARE(receiver.names.count("a A"), 8);
    QCOMPARE(receiver.names.count("b A"), 5);
}

void tst_PHONE_AsyncMsgReceiver::endsInTheMiddleOfAMessage()
{
    SignalRecorder recorder(PHONE_AsyncMsgReceiver::instance());
    const QPointer<PHONE_MsgClient> client = clientOf(PHONE_AsyncMsgReceiver::instance());
    recorder.onSignal = [&] {
        if (recorder.count() == 2)
            PHONE_AsyncMsgReceiver::destruction();
    };
    client->receive("PHONE_MSG_13", kNotRegistered);
    QCOMPARE(recorder.take(), "signalNetworkStatus(1) signalRegisted(\"\")");
    QVERIFY(!client);
}

void tst_PHONE_AsyncMsgReceiver::startsAgain()
{
    const QPointer<PHONE_AsyncMsgReceiver> first = PHONE_AsyncMsgReceiver::instance();
    QCOMPARE(PHONE_AsyncMsgReceiver::instance(), first);
    PHONE_AsyncMsgReceiver::destruction();
    PHONE_AsyncMsgReceiver::destruction();
    QVERIFY(!first);
    SignalRecorder recorder(PHONE_AsyncMsgReceiver::instance());
    clientOf(PHONE_AsyncMsgReceiver::instance())->receive("PHONE_MSG_23", {});
    QCOMPARE(recorder.take(), "signalLowBattery()");
}

QTEST_GUILESS_MAIN(tst_PHONE_AsyncMsgReceiver)
#include "tst_PHONE_AsyncMsgReceiver.moc"
