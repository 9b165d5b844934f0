// The verdicts on numbers and typed texts, and what becomes of the list's file in every condition.
#include "platform/HandsetState_p.h"
#include "platform/SETUP_SET_Manager.h"
#include "support/StdoutCapture.h"
#include "utility/PHONE_EmergencyCall.h"
#include "utility/PHONE_EmergencyList_p.h"

#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using zyn::emergency::kListFile;

namespace {

/// When a typed text is accepted.
enum When { Never = 0, KeypadAllows = 1, SimAllows = 2, Always = 4 };

// clang-format off
constexpr std::pair<const char*, int> kInputs[] = {
    {"", Never}, {"*", KeypadAllows | SimAllows}, {"#", Never},
    {"*#", KeypadAllows}, {"*#0", KeypadAllows}, {"*#06", KeypadAllows}, {"*#06#", KeypadAllows}, {"*#06#1", Never},
    {"**", SimAllows}, {"**0", SimAllows}, {"**1", Never},
    {"**04", SimAllows}, {"**04*", SimAllows}, {"**04*1", Never}, {"**042", SimAllows}, {"**042*", SimAllows},
    {"**042*1", Never},
    {"**05", SimAllows}, {"**05*", SimAllows}, {"**05*1", Never}, {"**052", SimAllows}, {"**052*", SimAllows},
    {"**052*1", Never},
    {"1", Always}, {"11", Always}, {"112", Always}, {"1120", Never}, {" 112", Never}, {"2", Never},
    {"9", Always}, {"91", Always}, {"911", Always}, {"9112", Never}, {"xY", Always}, {"xy", Never},
};
// clang-format on

QByteArray record(QByteArray text)
{
    return text.leftJustified(42, '\0');
}

void writeFile(const QByteArray& bytes)
{
    QFile file(QString::fromLatin1(kListFile));
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("cannot write the list");
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

} // namespace

class tst_PHONE_EmergencyCall : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { qputenv("ZYN_APP_WRITE_PATH", QFile::encodeName(m_settings.path())); }
    void cleanup() { QFile::remove(QString::fromLatin1(kListFile)); }

    void judgesEveryPrefixInEveryState();
    void readsTheListAsFarAsItGoes_data();
    void readsTheListAsFarAsItGoes();
    void findsNothingInWhatIsNoFile();
    void readsTheListAtOnce();
    void readsOnBehindAHole();
    void writesWhatItReads();

private:
    QTemporaryDir m_settings;
};

void tst_PHONE_EmergencyCall::judgesEveryPrefixInEveryState()
{
    StdoutCapture output;
    writeFile(record("112") + record("911") + record("xY"));
    for (const int keypad : {-1, 0, 1, 3}) {
        setState(zyn::handset::kKeypadLock, keypad);
        for (const int sim : {-1, 0, 1, 2, 3, 4}) {
            setState(zyn::handset::kSimCard, sim);
            const int allowed = Always | (keypad == 0 ? KeypadAllows : 0) | (sim == 0 || sim == 3 ? SimAllows : 0);
            for (const auto& [text, when] : kInputs) {
                const QString input = QLatin1String(text);
                const bool expected = (when & allowed) != 0;
                if (PHONE_IsEmergencyCallInput(input) != expected || PHONE_IsInputtingEmergencyCall(input) != expected)
                    QFAIL(qPrintable(u"%1 at keypad %2, SIM %3"_s.arg(input).arg(keypad).arg(sim)));
            }
        }
    }
}

void tst_PHONE_EmergencyCall::readsTheListAsFarAsItGoes_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QByteArray>("numbers"); // separated by commas

    const QByteArray wide(42, '7');
    const auto add = [](const char* title, const QByteArray& file, const QByteArray& numbers) {
        QTest::newRow(title) << file << numbers;
    };
    add("nothing in it", "", "");
    add("in order, with a double", record("911") + record("112") + record("911"), "911,112,911");
    add("an empty record between", record("112") + record("") + record("911"), "112,911");
    add("leftovers behind the NUL", record(QByteArray("112\0999", 7)), "112");
    add("no NUL", wide + record("112") + wide, wide + ",112," + wide);
    add("a short last one with its NUL", record("999999") + QByteArray("112", 4), "999999,112");
    add("a short last one without", record("999999") + "112", "999999");
    add("a last one short of a byte", record("112") + wide.chopped(1), "112");
    add("Latin-1", record("1\xe9"), "1\xe9");
    add("a long one", record("").repeated(200'000) + record("112") + record("911"), "112,911");
    add("one of several reads", record("").repeated(400'000) + record("112") + QByteArray("911", 4), "112,911");
}

void tst_PHONE_EmergencyCall::readsTheListAsFarAsItGoes()
{
    QFETCH(const QByteArray, file);
    QFETCH(const QByteArray, numbers);
    writeFile(file);
    QCOMPARE(zyn::emergency::readList().join(u',').toLatin1(), numbers);
    for (QByteArray number : {"112", "911", "999999", "1\xe9", "1120", "11", "", "777"}) {
        const bool listed = !number.isEmpty() && numbers.split(',').contains(number);
        QCOMPARE(PHONE_IsEmergencyCall(number.data()), listed);
        QCOMPARE(PHONE_IsEmergencyCallNumber(number.data()), listed);
    }
    QVERIFY(!PHONE_IsEmergencyCall(nullptr));
}

void tst_PHONE_EmergencyCall::findsNothingInWhatIsNoFile()
{
    QCOMPARE(zyn::emergency::readList(), QStringList());
    QCOMPARE(::mkdir(kListFile, 0700), 0);
    QCOMPARE(zyn::emergency::readList(), QStringList());
    QCOMPARE(::rmdir(kListFile), 0);
    QCOMPARE(::mkfifo(kListFile, 0600), 0); // which has no writer to wait for
    QCOMPARE(zyn::emergency::readList(), QStringList());
    QCOMPARE(::unlink(kListFile), 0);
    QCOMPARE(::symlink("/dev/zero", kListFile), 0); // which has no end
    QCOMPARE(zyn::emergency::readList(), QStringList());
}

void tst_PHONE_EmergencyCall::readsTheListAtOnce()
{
    writeFile(record("911").repeated(30'000));
    const qint64 before = readCalls();
    if (before == 0)
        QSKIP("this kernel does not count");
    const qint64 counted = readCalls();
    QVERIFY(!PHONE_IsEmergencyCall(QByteArray("112").data()));
    QCOMPARE(readCalls() - counted, counted - before + 1);
}

void tst_PHONE_EmergencyCall::readsOnBehindAHole()
{
    writeFile(record("911"));
    QFile file(QString::fromLatin1(kListFile));
    QVERIFY(file.open(QIODevice::ReadWrite) && file.seek(record("112").size() * (qint64{1} << 34)));
    QCOMPARE(file.write(record("112")), record("112").size());
    file.close();
    QVERIFY(PHONE_IsEmergencyCall(QByteArray("112").data()));
    QVERIFY(!PHONE_IsEmergencyCall(QByteArray("113").data()));
}

void tst_PHONE_EmergencyCall::writesWhatItReads()
{
    const QString longest(41, u'5');
    QVERIFY(zyn::emergency::writeList({u"112"_s, longest}));
    for (const QString& number : {QString(), longest + u'5', u"\u20ac"_s, u"1\0002"_s})
        QVERIFY(!zyn::emergency::writeList({u"911"_s, number}));
    QFile file(QString::fromLatin1(kListFile));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), record("112") + record(longest.toLatin1()));
}

QTEST_APPLESS_MAIN(tst_PHONE_EmergencyCall)
#include "tst_PHONE_EmergencyCall.moc"
