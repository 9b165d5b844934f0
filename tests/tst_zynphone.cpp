// The command-line tool, run as its users run it: exit codes and everything it writes.
#include "support/Role.h"
#include "support/StoreFixture.h"
#include "support/Timeout.h"

#include <QtCore/QRegularExpression>
#include <QtCore/QScopeGuard>

#include <optional>

using namespace Qt::StringLiterals;

namespace {

struct Result
{
    int exitCode;
    QByteArray output;
    QByteArray error;
};

/// The words of a command line; '' stands for an empty one.
QStringList words(const char* line)
{
    QStringList result = QString::fromUtf8(line).split(u' ', Qt::SkipEmptyParts);
    result.replaceInStrings(QRegularExpression(u"^''$"_s), QString());
    return result;
}

} // namespace

class ZynphoneTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void refuses_data();
    void refuses();
    void helpsAtEveryLevel();
    void keepsTraceOffItsOutput();
    void tellsWhatCannotBeWritten();
    void showsSettings();
    void setsHandsetStates();
    void inspectShowsSoundFile();
    void inspectTellsDamage();
    void managesTheServicesCalls();

private:
    Result run(const QStringList& arguments, const QString& outputFile = {});
    QByteArray outputOf(const char* line) { return run(words(line)).output; }
    QString path(const QString& name) const { return m_store->path() + u'/' + name; }
    QString write(const QString& name, const QByteArray& contents);
    QByteArray missedCalls();

    std::optional<StoreFixture> m_store;
};

void ZynphoneTest::init()
{
    qputenv("TZ", "EET-2");
    m_store.reset();
    m_store.emplace();
}

Result ZynphoneTest::run(const QStringList& arguments, const QString& outputFile)
{
    QProcess tool;
    tool.setStandardOutputFile(outputFile);
    tool.start(QStringLiteral(ZYN_TOOL), arguments);
    const int exitCode = role::finish(tool);
    return {exitCode, tool.readAllStandardOutput(), tool.readAllStandardError()};
}

QString ZynphoneTest::write(const QString& name, const QByteArray& contents)
{
    QDir().mkpath(QFileInfo(path(name)).path());
    QFile file(path(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(contents) != contents.size())
        qFatal("cannot write %s", qPrintable(path(name)));
    return path(name);
}

/// A file of missed calls in which the slots 0 and 1 are in use.
QByteArray ZynphoneTest::missedCalls()
{
    StoreFixture::startAfresh();
    for (const auto& [number, name] : {std::pair("+49301", u"J\u00FCrg\u001B"_s), std::pair("*#06#", QString())}) {
        PHONE_ENG_RecentCall record = StoreFixture::call(RC_CALL_CATEGORY_MISSED, number);
        record.setDisplayName(name);
        record.duration = 3723;
        StoreFixture::store().addItem(record);
    }
    return m_store->read(RC_CALL_CATEGORY_MISSED);
}

void ZynphoneTest::refuses_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("message");

    int exitCode = 2;
    const auto row = [&exitCode](const char* name, const char* path, const char* arguments, const char* message) {
        QTest::newRow(name) << QString::fromUtf8(path) << words(arguments) << exitCode << QString::fromUtf8(message);
    };
    row("no verb", "zynphone", "", "missing verb");
    row("unknown verb", "zynphone", "frob", "unknown verb 'frob'");
    row("control character", "zynphone", "a\nb\u009B", "unknown verb 'a\\x0ab\\x9b'");
    row("verb's option before the verb", "zynphone calls", "--json list", "unknown option '--json'");
    row("option without its value", "zynphone calls list", "--type", "missing value after '--type'");
    row("missing argument", "zynphone inspect", "", "missing argument FILE");
    row("empty type", "zynphone calls list", "--type ''", "unknown type ''; known are voice, ptt1, ptt2");
    row("uid that is no number", "zynphone calls delete", "%1.5",
        "UID '%1.5' is no whole number from -2147483648 to 2147483647");
    row("unknown state", "zynphone handset set", "battery 3",
        "unknown state 'battery'; 'zynphone handset show' lists them");
    row("state without its value", "zynphone handset set", "sim-card 1 keypad-lock", "missing value of 'keypad-lock'");

    const auto add = [&row](const char* name, const char* arguments, const char* message) {
        row(name, "zynphone calls add", arguments, message);
    };
    add("list that keeps no calls", "all 112", "unknown list 'all'; known are answered, missed, dialed");
    add("number of 42 characters", "missed 123456789012345678901234567890123456789012",
        "the number has 42 characters; at most 41 fit");
    add("name of 16 characters", "missed 112 --name 1234567890123456", "the name has 16 characters; at most 15 fit");
    add("30th of February", "missed 112 --at 2024-02-30T10:00",
        "'2024-02-30T10:00' is no date and time like 2024-05-31T18:30:00");
    add("a second after the last that fits", "missed 112 --at 2038-01-19T03:14:08Z",
        "'2038-01-19T03:14:08Z' is not within 1901-12-13T20:45:52Z and 2038-01-19T03:14:07Z");
    add("negative duration", "missed 112 --duration -1", "duration '-1' is no whole number from 0 to 2147483647");
    add("session of a voice call", "missed 112 --session a", "--session is for the types ptt1 and ptt2");
    add("session of 101 bytes",
        ("missed 112 --type ptt1 --session " + QByteArray("\u00E9").repeated(50) + "a").constData(),
        "the session id has 101 bytes; at most 100 fit");
    add("both completed and not", "missed 112 --completed --not-completed",
        "--completed and --not-completed exclude each other");

    exitCode = 1;
    const char* const noService = "no recent-call service at /tmp/zynrecentcallcom/recentcall_interface";
    row("list without a service", "zynphone calls list", "", noService);
    row("last number of an empty list", "zynphone calls last-dialed", "", "no dialed call");
    row("file that is not there", "zynphone inspect", "/none/rc_m", "/none/rc_m: no such file");
    row("directory as a file", "zynphone inspect", "/dev", "/dev: not a regular file");
    row("file of another kind", "zynphone inspect", "/etc/passwd",
        "/etc/passwd: neither its name nor its header and size are those of a file of the store");
}

void ZynphoneTest::refuses()
{
    QFETCH(QString, path);
    QFETCH(QStringList, arguments);
    QFETCH(int, exitCode);
    QFETCH(QString, message);
    const QString hint = exitCode == 2 ? u"Try '%1 --help'.\n"_s.arg(path) : QString();

    const Result result = run(path.split(u' ').mid(1) + arguments);
    QCOMPARE(QString::fromUtf8(result.error), u"zynphone: "_s + message + u'\n' + hint);
    QCOMPARE(result.output, QByteArray());
    QCOMPARE(result.exitCode, exitCode);
}

void ZynphoneTest::helpsAtEveryLevel()
{
    for (const char* usage : {"zynphone VERB", "zynphone calls VERB", "zynphone calls list [LIST]"}) {
        QStringList verbs = words(usage).mid(1);
        verbs.removeIf([](const QString& word) { return word != word.toLower(); });
        const Result result = run(verbs + QStringList{u"--help"_s});
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(result.error, QByteArray());
        QCOMPARE(result.output.left(result.output.indexOf('\n')), QByteArray("Usage: ") + usage + " [OPTION...]");
    }
}

void ZynphoneTest::keepsTraceOffItsOutput()
{
    const QByteArray file = path(u"setup/zyn_fixeddial.cfg"_s).toUtf8();
    const QByteArray trace = "RC settings: 50, 50,50,5,3******** fixed dial flex: " + file
                             + " ********\n******** fixed dial flex: " + file + " ********\n";

    const Result quiet = run(words("settings show"));
    const Result traced = run(words("--trace settings show"));
    QCOMPARE(quiet.error, QByteArray());
    QCOMPARE(traced.error, trace);
    QCOMPARE(traced.output, quiet.output);
}

void ZynphoneTest::tellsWhatCannotBeWritten()
{
    const Result output = run(words("handset show"), u"/dev/full"_s);
    QCOMPARE(output.error, QByteArray("zynphone: cannot write to standard output: No space left on device\n"));
    QCOMPARE(output.exitCode, 1);

    qputenv("ZYN_APP_WRITE_PATH", "/dev/null");
    const Result state = run(words("handset set sim-card 3"));
    QCOMPARE(state.error, QByteArray("zynphone: cannot write /dev/null/setup/zyn_handset.cfg\n"));
    QCOMPARE(state.exitCode, 1);
}

void ZynphoneTest::showsSettings()
{
    write(u"setup/zyn_app4.cfg"_s, "[RECENTCALL_SET]\nmaxAnsweredCall=20\nmaxMissedCall=51\n"
                                   "maxFrequentCall=7\nviewFromIdleSend=3\ntwoLineView=true\n");
    write(u"setup/zyn_toppals.cfg"_s, "[TopPals-UI]\nMaxItemsToLog=4294967295\n");
    run(words("handset set fixed-dialing 1"));

    QCOMPARE(outputOf("settings show"), QByteArray("answered calls kept              20\n"
                                                   "missed calls kept                50\n"
                                                   "dialed calls kept                50\n"
                                                   "frequent calls shown             7\n"
                                                   "view from idle Send              extra\n"
                                                   "two-line view                    yes\n"
                                                   "activities kept for a favourite  4294967295\n"
                                                   "fixed dialing switched on        yes\n"
                                                   "fixed dialing available          yes\n"));
    QCOMPARE(outputOf("settings show --json"),
             QByteArray(R"({"fixedDialingAvailable":true,"fixedDialingSwitch":true,"idleSendView":"extra",)"
                        R"("maxAnswered":20,"maxDialed":50,"maxFavouriteItems":4294967295,"maxFrequent":7,)"
                        R"("maxMissed":50,"twoLineView":true})"
                        "\n"));
}

void ZynphoneTest::setsHandsetStates()
{
    const QByteArray shown =
        "NAME                 VALUE  MEANING\n"
        "sim-card             3      state of the SIM card; 0 and 3 allow the PIN control codes\n"
        "keypad-lock          0      state of the keypad lock; 0 allows the code that shows the IMEI\n"
        "phone-system         0      state of the phone system; 0 lets the telephony API be asked\n"
        "fixed-dialing        0      what the telephony API tells of fixed dialing; 1 is enabled\n"
        "fixed-dialing-error  -1     error of that question; 0 is success\n";

    const Result set = run(words("handset set sim-card 3 fixed-dialing-error -1"));
    QCOMPARE(set.error, QByteArray());
    QCOMPARE(set.exitCode, 0);
    QCOMPARE(run(words("handset set sim-card 5 keypad-lock on")).exitCode, 2);

    QCOMPARE(outputOf("handset show"), shown);
    QVERIFY(outputOf("handset show --json").endsWith(",\"name\":\"fixed-dialing-error\",\"value\":-1}]\n"));
}

void ZynphoneTest::inspectShowsSoundFile()
{
    const QString file = write(u"rc_m"_s, missedCalls());
    const QByteArray name = file.toUtf8();

    const Result text = run({u"inspect"_s, file});
    QCOMPARE(text.exitCode, 0);
    QCOMPARE(QString::fromUtf8(text.output),
             file
                 + QString::fromUtf8(
                     ": missed calls, 2 in use, sound\n"
                     "SLOT  UID  LIST    NUMBER  NAME      START                DURATION  TYPE   READ  COMPLETED\n"
                     "0     0    missed  +49301  J\u00FCrg\\x1b  2023-11-15T00:13:20  1:02:03   voice  no    no\n"
                     "1     1    missed  *#06#             2023-11-15T00:13:20  1:02:03   voice  no    no\n"));
    QCOMPARE(run({u"inspect"_s, file, u"--json"_s}).output,
             R"({"file":")" + name
                 + R"(","kind":"missed calls","problems":[],"size":11408,"slots":[)"
                   R"({"completed":false,"duration":3723,"list":"missed","name":"J)"
                   "\u00FC"
                   R"(rg\u001b","number":"+49301","read":false,"session":"","slot":0,"start":"2023-11-14T22:13:20Z",)"
                   R"("type":"voice","uid":0},{"completed":false,"duration":3723,"list":"missed","name":"",)"
                   R"("number":"*#06#","read":false,"session":"","slot":1,"start":"2023-11-14T22:13:20Z",)"
                   R"("type":"voice","uid":1}],"sound":true})"
                   "\n");

    // The name decides what a file is to hold.
    const QByteArray answered = write(u"rc_a"_s, missedCalls()).toUtf8();
    const QByteArray saved = write(u"saved"_s, missedCalls()).toUtf8();
    const Result disagreeing = run({u"inspect"_s, path(u"rc_a"_s)});
    QVERIFY(disagreeing.output.startsWith(answered
                                          + ": answered calls, 2 in use, not sound\n"
                                            "  slot 0: the category is missed\n  slot 1: the category is missed\n"));
    QCOMPARE(disagreeing.exitCode, 1);
    QVERIFY(run({u"inspect"_s, path(u"saved"_s)}).output.startsWith(saved + ": calls, 2 in use, sound\n"));
}

void ZynphoneTest::inspectTellsDamage()
{
    const QByteArray sound = missedCalls();
    const auto told = [this](const QByteArray& bytes) {
        const QString file = write(u"rc_m"_s, bytes);
        const Result result = run({u"inspect"_s, file});
        if (result.exitCode != 1 || !result.error.isEmpty())
            return result.error + QByteArray::number(result.exitCode);
        return QByteArray(result.output).replace(file.toUtf8() + ": missed calls, ", "");
    };
    QCOMPARE(told({}), "0 in use, not sound\n  the header is cut short\n  the size is 0 bytes, not 11408\n");
    QCOMPARE(told(QByteArray(sound).replace(0, 5, "\xD1\xC0\xB0\xA0\x04")),
             "0 in use, not sound\n  the magic is 0xa0b0c0d1, not 0xa0b0c0d0\n  the version is 4, not 5\n");
    const QByteArray small = told(sound.chopped(1));
    QVERIFY(small.startsWith("2 in use, not sound\n  the size is 11407 bytes, not 11408\nSLOT"));
    QCOMPARE(small.count('\n'), 5);

    PHONE_ENG_RecentCall record;
    std::memset(static_cast<void*>(&record), '1', sizeof record);
    record.uid = 0;
    record.slot = 3;
    record.category = RC_CALL_CATEGORY_T(9);
    QByteArray damaged = sound + QByteArray(228, '\1'); // one slot more, which no list has
    damaged.replace(qsizetype(zyn::RecordFile::offset(1)), 228, zyn::bytesOf(record).toByteArray());
    damaged[qsizetype(zyn::RecordFile::offset(2))] = '1';
    const QByteArray all = told(damaged);
    QCOMPARE(
        all.left(all.indexOf("SLOT")),
        "2 in use, not sound\n  the size is 11636 bytes, not 11408\n  slot 1: the record names slot 3\n"
        "  slot 1: the category is 9\n  slot 1: the read flags are 0x31\n  slot 1: the flag of its use is 49\n"
        "  slot 1: the flag of its completion is 49\n  slot 1: the number has no NUL\n  slot 1: the name has no NUL\n"
        "  slot 1: the session id has no NUL\n  slot 1: uid 0 is that of slot 0 too\n"
        "  slot 2: it is free but not blank\n");
}

void ZynphoneTest::managesTheServicesCalls()
{
    QProcess service;
    service.start(QStringLiteral(ZYN_RECENTCALLD), QStringList());
    const auto endService = qScopeGuard([&service] {
        service.terminate();
        role::finish(service);
    });
    const QByteArray titles = "UID  LIST      NUMBER  NAME    START                DURATION  TYPE   READ  COMPLETED\n";
    const QByteArray missed = "0    missed    +49301  J\u00FCrgen  2024-03-01T14:00:00  0:00:00   voice  no    no\n";
    const QByteArray dialed = "1    dialed    *#06#           2024-03-01T13:00:00  1:02:03   voice  yes   yes\n";
    const QByteArray answered = "2    answered  112             2024-03-01T12:00:00  0:00:00   ptt1   no    no\n";
    QTRY_COMPARE(run(words("calls list")).exitCode, 0);
    QCOMPARE(run(words("calls last-dialed")).error, QByteArray("zynphone: no dialed call\n"));

    // An add is not acknowledged: each is waited for, so that the next gets the next uid.
    QCOMPARE(outputOf("calls add missed +49301 --name J\u00FCrgen --at 2024-03-01T12:00:00Z"), QByteArray("sent\n"));
    QTRY_VERIFY(outputOf("calls list").contains("+49301"));
    run(words("calls add dialed *#06# --at 2024-03-01T13:00:00 --duration 3723 --read"));
    QTRY_VERIFY(outputOf("calls list").contains("*#06#"));
    run(words("calls add answered 112 --at 2024-03-01T14:00:00+04:00 --type ptt1 --session \u00E9 "
              "--not-completed"));
    QTRY_COMPARE(outputOf("calls list"), titles + answered + dialed + missed);

    const QByteArray json = R"([{"completed":false,"duration":0,"list":"answered","name":"","number":"112",)"
                            R"("read":false,"session":"&","start":"2024-03-01T10:00:00Z","type":"ptt1","uid":2}])";
    QCOMPARE(outputOf("calls list --type ptt1 --json"), QByteArray(json).replace("&", "\u00E9") + '\n');
    QCOMPARE(outputOf("calls last-dialed"), QByteArray("*#06#\n"));

    QCOMPARE(run(words("calls delete 1 --list missed")).error, QByteArray("zynphone: no such call: 1\n"));
    QCOMPARE(outputOf("calls delete 1"), QByteArray("deleted\n"));
    QCOMPARE(outputOf("calls list"), titles + answered + missed);
    QCOMPARE(outputOf("calls clear all --type voice"), QByteArray("cleared\n"));
    QCOMPARE(outputOf("calls list missed --json"), QByteArray("[]\n"));
    QCOMPARE(outputOf("calls clear answered"), QByteArray("cleared\n"));
    QCOMPARE(outputOf("calls list --json"), QByteArray("[]\n"));
}

QTEST_GUILESS_MAIN(ZynphoneTest)
#include "tst_zynphone.moc"
