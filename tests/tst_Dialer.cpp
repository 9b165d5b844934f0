// The dialer, run as the process that it is: what becomes of each key, and of the call.
#include "platform/HandsetState_p.h"
#include "tests/support/Patience.h"
#include "tests/support/Role.h"
#include "tests/support/StoreFixture.h"
#include "utility/PHONE_EmergencyList_p.h"
#include "utility/PHONE_VoiceCallReceiver.h"

using namespace Qt::StringLiterals;

class tst_Dialer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void judgesEachKey_data()
    {
        QTest::addColumn<int>("keypadLock");
        QTest::addColumn<int>("simCard");
        QTest::addColumn<QString>("keys");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<QString>("called");
        const auto row = [](const char* name, int keypadLock, int simCard, const char* keys, const char* shown,
                            const char* called) {
            QTest::newRow(name) << keypadLock << simCard << QString::fromLatin1(keys) << QString::fromLatin1(shown)
                                << QString::fromLatin1(called);
        };
        row("an ordinary number", 0, 0, "13c",
            "1     may be an emergency call       1\n"
            "3     no emergency call              13\n"
            "call  a call is asked for            13\n",
            "13");
        row("a key taken back", 0, 0, "1\b\bc",
            "1     may be an emergency call       1\n"
            "clear no emergency call\n"
            "clear no emergency call\n"
            "call  refused: there is no number\n",
            "");
        row("under the keypad lock", 1, 0, "31 12x\nc",
            "3     refused: the keypad is locked\n"
            "1     may be an emergency call       1\n"
            "1     may be an emergency call       11\n"
            "2     may be an emergency call       112\n"
            "call  an emergency call is asked for 112\n"
            "call  refused: there is no number\n",
            "112");
        row("a number that is not whole", 1, 0, "11c",
            "1     may be an emergency call       1\n"
            "1     may be an emergency call       11\n"
            "call  refused: the keypad is locked  11\n",
            "");
        row("without a SIM card", 0, 1, "*0",
            "*     may be an emergency call       *\n"
            "0     refused: no SIM card is ready  *\n",
            "");
    }
    void judgesEachKey()
    {
        QFETCH(int, keypadLock);
        QFETCH(int, simCard);
        QFETCH(QString, keys);
        const StoreFixture files;
        QVERIFY(zyn::emergency::writeList({u"112"_s}));
        SETUP_SET_Manager states(zyn::handset::stateFile(), false);
        const QLatin1String group(zyn::handset::kGroup);
        states.setSettingInfo(group, QLatin1String(zyn::handset::kKeypadLock.key), keypadLock);
        states.setSettingInfo(group, QLatin1String(zyn::handset::kSimCard.key), simCard);
        PHONE_VoiceCallReceiver phone;
        QFETCH(QString, called);
        QString calls;
        connect(&phone, &PHONE_VoiceCallReceiver::signalMakeCall, this,
                [&](const QString& number) { calls += number; });
        QProcess dialer;
        dialer.start(QStringLiteral(ZYN_DIALER), {u"--type"_s, keys});
        QTRY_COMPARE(dialer.state(), QProcess::NotRunning);
        QCOMPARE(role::finish(dialer), 0);
        QTEST(QString::fromUtf8(dialer.readAllStandardOutput()), "shown");
        QTRY_COMPARE(calls, called);
    }
};

QTEST_GUILESS_MAIN(tst_Dialer)
#include "tst_Dialer.moc"
