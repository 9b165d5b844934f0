// The verdicts on numbers and typed texts, and what becomes of the list's file in every condition.
#include "platform/HandsetState_p.h"
#include "platform/SETUP_SET_Manager.h"
#include "support/Scenario.h"
#include "support/StdoutCapture.h"
#include "utility/PHONE_EmergencyCall.h"
#include "utility/PHONE_EmergencyList_p.h"

#include <QtCore/QTemporaryDir>

using namespace Qt::StringLiterals;
using zyn::emergency::kListFile;

namespace {

using Words = QStringList;

QByteArray record(QByteArray text)
{
    return text.leftJustified(42, '\0');
}

/// How many times this process has asked the kernel to read; 0 where the kernel does not count.
qint64 readCalls()
{
    QFile counters(u"/proc/self/io"_s);
    if (!counters.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return 0;
    for (const QByteArray& line : counters.readAll().split('\n')) {
        if (line.startsWith("syscr: "))
            return line.mid(7).toLongLong();
    }
    return 0;
}

void setState(const zyn::handset::State& state, int value)
{
    const auto group = QLatin1String(zyn::handset::kGroup);
    SETUP_SET_Manager(zyn::handset::stateFile(), true).setSettingInfo(group, QLatin1String(state.key), value);
}

/// The first text that is not accepted just when the first word says: always, or without the keypad lock, or with a SIM
/// card.
QString wrongly(const Words& words)
{
    const StdoutCapture output;
    for (int state = 0; state < 24; ++state) {
        const int keypad = std::array{-1, 0, 1, 3}.at(size_t(state) % 4);
        const int sim = state / 4 - 1;
        setState(zyn::handset::kKeypadLock, keypad);
        setState(zyn::handset::kSimCard, sim);
        const bool expected = words[0] == u"always"_s || (words[0].contains(u"unlocked"_s) && keypad == 0)
                              || (words[0].contains(u"sim"_s) && (sim == 0 || sim == 3));
        for (const QString& text : words.mid(1)) {
            const QString input = QString::fromUtf8(QByteArray::fromPercentEncoding(text.toUtf8()));
            if (PHONE_IsEmergencyCallInput(input) != expected || PHONE_IsInputtingEmergencyCall(input) != expected)
                return u"%1 at keypad %2, SIM %3"_s.arg(input).arg(keypad).arg(sim);
        }
    }
    return {};
}

/// Writes records, each of a text; behind "=" bytes as they are, and "*9" makes nine of all so far.
void writeRecords(const Words& words)
{
    QByteArray file;
    for (const QString& word : words) {
        if (word.startsWith(u'*'))
            file = file.repeated(word.mid(1).toInt());
        else
            file += word.startsWith(u'=') ? scenario::bytes(word.mid(1)) : record(scenario::bytes(word));
    }
    QFile target(QString::fromLatin1(kListFile));
    if (!target.open(QIODevice::WriteOnly) || target.write(file) != file.size())
        qFatal("cannot write the list");
}

/// The numbers of the list, each of which is an emergency number, and others are not.
QString numbers()
{
    QStringList all = zyn::emergency::readList();
    for (QByteArray number : {"112", "911", "999999", "1\xe9", "1120", "11", "", "777"}) {
        const bool isListed = all.contains(QString::fromLatin1(number));
        if (PHONE_IsEmergencyCall(number.data()) != isListed || PHONE_IsEmergencyCallNumber(number.data()) != isListed)
            all += u"wrongly judged: "_s + QString::fromLatin1(number);
    }
    return all.join(u',');
}

} // namespace

class tst_PHONE_EmergencyCall : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { qputenv("ZYN_APP_WRITE_PATH", QFile::encodeName(m_settings.path())); }
    void cleanup() { QFile::remove(QString::fromLatin1(kListFile)); }

    void judges_data() { scenario::addRows(QFINDTESTDATA("data/emergency_calls.txt")); }
    void judges();
    void readsTheListAtOnce();
    void writesWhatItReads();

private:
    QTemporaryDir m_settings;
};

void tst_PHONE_EmergencyCall::judges()
{
    const QString list = QString::fromLatin1(kListFile);
    scenario::play({
        {u"list"_s, writeRecords},
        {u"make"_s, [&](const Words& command) { return scenario::shell({}, command + Words{list}); }},
        {u"numbers"_s, numbers},
        {u"accepted"_s, wrongly},
    });
    QVERIFY(!PHONE_IsEmergencyCall(nullptr));
}

void tst_PHONE_EmergencyCall::readsTheListAtOnce()
{
    if (qEnvironmentVariableIsSet("ZYN_TEST_TOOL"))
        QSKIP("a tool reads, too");
    writeRecords({u"911"_s, u"*30000"_s});
    const qint64 before = readCalls();
    if (before == 0)
        QSKIP("this kernel does not count");
    const qint64 counted = readCalls();
    QVERIFY(!PHONE_IsEmergencyCall(QByteArray("112").data()));
    QCOMPARE(readCalls() - counted, counted - before + 1);
}

void tst_PHONE_EmergencyCall::writesWhatItReads()
{
    const QString longest(41, u'5');
    QVERIFY(zyn::emergency::writeList({u"112"_s, longest}));
    for (const QString& number : {QString(), longest + u'5', u"\u20ac"_s, u"1\0002"_s})
        QVERIFY(!zyn::emergency::writeList({u"911"_s, number}));
    QVERIFY(!zyn::emergency::writeList(QStringList(zyn::emergency::kRecordLimit + 1, u"911"_s)));
    QFile file(QString::fromLatin1(kListFile));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), record("112") + record(longest.toLatin1()));
}

QTEST_GUILESS_MAIN(tst_PHONE_EmergencyCall)
#include "tst_PHONE_EmergencyCall.moc"
