// The dialer, run as the process that it is: what becomes of each key, and of the call.
#include "handset/dialer/KeyDecoder.h"
#include "platform/HandsetState_p.h"
#include "tests/support/Role.h"
#include "tests/support/StoreFixture.h"
#include "tests/support/Terminal.h"
#include "tests/support/Timeout.h"
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
        row("control codes, and a number like them", 0, 0, "*#06#c",
            "*     may be an emergency call       *\n"
            "#     may be an emergency call       *#\n"
            "0     may be a control code          *#0\n"
            "6     may be a control code          *#06\n"
            "#     may be a control code          *#06#\n"
            "call  a call is asked for            *#06#\n",
            "*#06#");
        row("Delete, F5 and arrows", 1, 0, "1\033[3~1\033[15~\033[A\033OB\033[1;5C\033[2;2~2\033[\nc",
            "1     may be an emergency call       1\n"
            "1     may be an emergency call       11\n"
            "2     may be an emergency call       112\n"
            "call  an emergency call is asked for 112\n"
            "call  refused: there is no number\n",
            "112");
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
        QVERIFY(zyn::emergency::writeList({u"112"_s, u"*#12"_s}));
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

    void putsTogetherWhatIsSentForAKey_data()
    {
        QTest::addColumn<bool>("isTerminal");
        QTest::addColumn<QByteArray>("bytes"); // ^ for Escape, | for a pause
        QTest::addColumn<QByteArray>("keys");  // with blanks between them
        const auto row = [](const char* name, bool isTerminal, const char* bytes, const char* keys) {
            QTest::newRow(name) << isTerminal << QByteArray(bytes) << QByteArray(keys);
        };
        row("keys by themselves", true, "1*c\n", "1 * c \n");
        row("function keys and arrows", true, "^[15~^[A^OB^[1;5C^[3$|1", "^[15~ ^[A ^OB ^[1;5C ^[3$ 1");
        row("those of a console", true, "^[[E1", "^[[E 1");
        row("with Alt", true, "^5^\n^c^^[A1", "^5 ^\n ^c ^^[A 1");
        row("Escape alone", true, "^|1^|^|2", "^ 1 ^ ^ 2");
        row("Escape alone, and nobody can press Alt", false, "^112^\n", "^ 1 1 2 ^ \n");
        row("an answer of the terminal", true, "^]11;rgb:1c/2d\a1^P1$r0m^\\2^(03",
            "^]11;rgb:1c/2d\a 1 ^P1$r0m ^\\ 2 ^(0 3");
        row("a sequence on a slow line", true, "^|[3~1", "^ ^[3~ 1");
        row("one that breaks off", true, "^[1|12", "^[1 1 2");
        row("one that another breaks off", true, "^[1^[2~3", "^[1 ^[2~ 3");
        row("one that Enter breaks off", false, "^[1\n2", "^[1 \n 2");
        row("one that is longer than any", false, "^[1111111111111111111111111111111111111111c2",
            "^[111111111111111111111111111111 2");
    }
    void putsTogetherWhatIsSentForAKey()
    {
        QFETCH(bool, isTerminal);
        QFETCH(QByteArray, bytes);
        zyn::handset::KeyDecoder decoder(isTerminal);
        QByteArrayList keys;
        for (const char byte : bytes + '|') {
            if (byte != '|')
                keys += decoder.decode(byte == '^' ? '\033' : byte);
            else if (decoder.timeout())
                keys += decoder.finish();
        }
        QTEST(keys.join(' ').replace('\033', '^'), "keys");
        QVERIFY(decoder.finish().isEmpty());
    }

    void tellsEscapeFromASequenceByTime()
    {
        const StoreFixture files;
        Terminal terminal(2000, 1);
        terminal.start(QStringLiteral(ZYN_DIALER), {});
        QVERIFY(terminal.find(u"listening on"_s) >= 0);
        terminal.type("\0335");
        QVERIFY(terminal.find(u"'\\x1b5' is no key"_s) >= 0);
        terminal.type("\033");
        QVERIFY(terminal.find(u"'\\x1b' is no key"_s) >= 0);
        terminal.type("1\033[1");
        QVERIFY(terminal.find(u"'\\x1b[1' is no key"_s) >= 0);
        terminal.type("2\n");
        QVERIFY(terminal.find(u"call  a call is asked for            12"_s) >= 0);
    }
};

QTEST_GUILESS_MAIN(tst_Dialer)
#include "tst_Dialer.moc"
