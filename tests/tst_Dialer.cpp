// The dialer, run as the process that it is: what becomes of each key, and of the call.
#include "handset/dialer/KeyDecoder.h"
#include "platform/HandsetState_p.h"
#include "tests/support/Scenario.h"
#include "tests/support/StoreFixture.h"
#include "tests/support/Terminal.h"
#include "tests/support/Timeout.h"
#include "utility/PHONE_EmergencyList_p.h"
#include "utility/PHONE_VoiceCallReceiver.h"

using namespace Qt::StringLiterals;

namespace {

using Words = QStringList;

bool setState(const zyn::handset::State& state, const QString& value)
{
    return SETUP_SET_Manager(zyn::handset::stateFile(), false)
        .setSettingInfo(QLatin1String(zyn::handset::kGroup), QLatin1String(state.key), value);
}

/// What the dialer shows of keys; '|' ends a line.
QString type(const Words& words)
{
    QProcess dialer;
    dialer.start(QStringLiteral(ZYN_DIALER), {u"--type"_s, QString::fromLatin1(scenario::bytes(words[0]))});
    if (!timeout::waitUntil([&] { return dialer.state() == QProcess::NotRunning; }) || role::finish(dialer) != 0)
        return u"failed"_s;
    return QString::fromUtf8(dialer.readAllStandardOutput()).replace(u'\n', u'|');
}

/// The keys that bytes are put together to. '^' is Escape, and '|' a pause.
QString keysOf(bool isTerminal, const Words& words)
{
    zyn::handset::KeyDecoder decoder(isTerminal);
    QByteArrayList keys;
    for (const char byte : scenario::bytes(words[0]) + '|') {
        if (byte != '|')
            keys += decoder.decode(byte == '^' ? '\033' : byte);
        else if (decoder.timeout())
            keys += decoder.finish();
    }
    if (!decoder.finish().isEmpty())
        return u"something is left"_s;
    return scenario::textOf(keys.join(' ').replace('\033', '^'));
}

} // namespace

class tst_Dialer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void takesKeys_data() { scenario::addRows(QFINDTESTDATA("data/dialer.txt")); }
    void takesKeys()
    {
        const StoreFixture files;
        QVERIFY(zyn::emergency::writeList({u"112"_s, u"*#12"_s}));
        const PHONE_VoiceCallReceiver phone;
        QString calls;
        connect(&phone, &PHONE_VoiceCallReceiver::signalMakeCall, this,
                [&](const QString& number) { calls += number; });
        scenario::play({
            {u"keypad-lock"_s, [](const Words& words) { return setState(zyn::handset::kKeypadLock, words[0]); }},
            {u"sim-card"_s, [](const Words& words) { return setState(zyn::handset::kSimCard, words[0]); }},
            {u"type"_s, type},
            {u"called"_s, [&] { return calls; }},
            {u"keys"_s, [](const Words& words) { return keysOf(true, words); }},
            {u"typed-keys"_s, [](const Words& words) { return keysOf(false, words); }},
        });
    }

    void tellsEscapeFromASequenceByTime()
    {
        const StoreFixture files;
        Terminal terminal(2000, 1);
        terminal.start(QStringLiteral(ZYN_DIALER), {});
        QVERIFY(terminal.find(u"listening on"_s) >= 0);
        const std::pair<const char*, QString> keys[] = {{"\0335", u"'\\x1b5' is not a key"_s},
                                                        {"\033", u"'\\x1b' is not a key"_s},
                                                        {"1\033[1", u"'\\x1b[1' is not a key"_s},
                                                        {"2\n", u"call  a call is asked for             12"_s}};
        for (const auto& [typed, shown] : keys) {
            terminal.type(typed);
            QVERIFY2(terminal.find(shown) >= 0, qPrintable(shown));
        }
    }
};

QTEST_GUILESS_MAIN(tst_Dialer)
#include "tst_Dialer.moc"
