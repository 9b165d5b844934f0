// Calls in files, made-up calls, and completion in bash: the tool's verbs with a recent-call service of their own.
#include "recentcall/utility/PHONE_RecentCall.h"
#include "recentcall/utility/RC_Interface.h"
#include "recentcall/utility/store/StoreFile_p.h"
#include "support/ServiceProcess.h"
#include "support/StoreFixture.h"
#include "support/Tool.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

#include <limits>
#include <optional>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

using tool::run;
using Call = PHONE_ENG_RecentCall;

constexpr RC_CALL_TYPE_T kTypes[] = {RC_CALL_TYPE_VOICE, RC_CALL_TYPE_PTT1, RC_CALL_TYPE_PTT2};

/// Calls whose fields hold what a text alone would not keep.
std::vector<Call> oddCalls()
{
    std::vector<Call> calls(6);
    for (size_t place = 0; place < calls.size(); ++place) {
        auto* const bytes = reinterpret_cast<uint8_t*>(&calls[place]);
        for (size_t i = 0; i < sizeof(Call) && place > 1; ++i)
            bytes[i] = place == 2 ? 0xFF : static_cast<uint8_t>(i * 37 + place * 101);
        calls[place].category = zyn::kRecordLists[place % 3];
        calls[place].callType = kTypes[place / 2];
    }
    calls[0].setPhoneNumber(u"hex:31"_s);
    calls[0].setDisplayName(u" a,\"b\"\u00FC "_s);
    calls[0].startTime = std::numeric_limits<int32_t>::min();
    calls[0].readFlags = 3;
    calls[1].setPhoneNumber(u"1\r\n2"_s);
    calls[1].displayName[5] = 'x'; // behind the NUL
    calls[1].startTime = std::numeric_limits<int32_t>::max();
    calls[1].setPttSessionID(u"a"_s + u"\u00FC"_s.repeated(60)); // cut inside a character
    calls[4].setPttSessionID(u"\u00FC\U0001F600"_s);
    return calls;
}

/// The calls that the service has, without what it gives them.
QByteArray keptCalls()
{
    QByteArray kept;
    for (const RC_CALL_TYPE_T type : kTypes) {
        QPtrList<RC_RecordInterface> records;
        RC_Interface().getRecordList(records, RC_CALL_CATEGORY_ALL, type);
        for (const RC_RecordInterface* record : records) {
            Call call = *static_cast<const RC_RecordInterfaceImpl*>(record)->getData();
            call.uid = call.slot = 0;
            kept += zyn::bytesOf(call).toByteArray().toHex() + '\n';
        }
    }
    return kept;
}

} // namespace

class ZynphoneInterchangeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void keepsEveryByte_data();
    void keepsEveryByte();
    void readsWhatOthersWrite();
    void tellsWhatItLeaves_data();
    void tellsWhatItLeaves();
    void leavesFilesWhole();
    void seedsCalls();
    void completes_data();
    void completes();

private:
    QString path(const QString& name) const { return m_store->path() + u'/' + name; }
    QString write(const QString& name, const QByteArray& contents) const
    {
        QFile file(path(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(contents) != contents.size())
            qFatal("cannot write %s", qPrintable(path(name)));
        return path(name);
    }
    QByteArray read(const QString& name) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
    }
    static QJsonArray list(const char* words)
    {
        const QString output = run(words);
        return QJsonDocument::fromJson(output.section(u'\n', 0, 0).toUtf8()).array();
    }

    std::optional<StoreFixture> m_store;
    std::optional<ServiceProcess> m_service;
};

void ZynphoneInterchangeTest::init()
{
    m_store.emplace();
    m_service.emplace();
    QVERIFY(m_service->start(ZYN_RECENTCALLD));
}

void ZynphoneInterchangeTest::cleanup()
{
    QCOMPARE(m_service->stop(), 0);
    m_store.reset();
}

void ZynphoneInterchangeTest::keepsEveryByte_data()
{
    QTest::addColumn<QString>("options");
    QTest::newRow("csv") << u"--list all"_s;
    QTest::newRow("json") << u"--list all"_s;
    QTest::newRow("CSV") << u"--all"_s;
}

void ZynphoneInterchangeTest::keepsEveryByte()
{
    QFETCH(QString, options);
    const QString file = path(u"a."_s + QString::fromUtf8(QTest::currentDataTag()));
    for (Call& call : oddCalls())
        QCOMPARE(PHONE_RecentCall_AddRecord(call), 0);
    const QByteArray kept = keptCalls();
    QCOMPARE(kept.count('\n'), 6);

    QCOMPARE(run(QStringList{u"calls"_s, u"export"_s, file} + options.split(u' ')), u"wrote 6 calls\nexit 0"_s);
    QFile::copy(file, path(u"before"_s));
    QVERIFY(!read(u"before"_s).contains('\r')); // nothing that steers a terminal
    run("calls clear all");
    QCOMPARE(keptCalls(), QByteArray());
    QCOMPARE(run({u"calls"_s, u"import"_s, file, u"--strict"_s}), u"sent 6 calls\nexit 0"_s);
    QCOMPARE(keptCalls(), kept);

    // The store gives uids anew, so that only without them the file is the same.
    run(QStringList{u"calls"_s, u"export"_s, file} + options.split(u' '));
    QCOMPARE(read(QFileInfo(file).fileName()) == read(u"before"_s), options != "--all"_L1);
}

void ZynphoneInterchangeTest::readsWhatOthersWrite()
{
    const QString file = write(u"a.csv"_s, "\xEF\xBB\xBF\"read\",start,number,list,name,type,duration\r\n"
                                           "3,2024-02-03T10:00:00-01:30,\"1\",missed,\"a \"\"b\"\",\",77,\r\n\r\n"
                                           "true,2024-02-29T10:00Z,2,dialed,\xC3\xBC,ptt2,-5");
    QCOMPARE(run({u"calls"_s, u"import"_s, file}), u"sent 2 calls\nexit 0"_s);
    QCOMPARE(run("calls list --json"),
             QString::fromUtf8(R"([{"completed":false,"duration":-5,"list":"dialed","name":"ü","number":"2",)"
                               R"("read":true,"session":"","start":"2024-02-29T10:00:00Z","type":"ptt2","uid":0}])"
                               "\nexit 0"));
    QCOMPARE(run("calls export --type 77"),
             u"list,number,name,start,duration,type,session,read,completed,pttIdType,pttPartyType,pttExtra1,"
             "pttExtra2,reservedA,reservedB,reserved42,reserved53,reserved65,reserved89,reserved205\n"
             "missed,1,\"a \"\"b\"\",\",2024-02-03T11:30:00Z,0,77,,3,false,0,0,0,0,0,0,,,,,\nexit 0"_s);

    write(u"b.json"_s, run("calls list --json").section(u'\n', 0, 0).toUtf8());
    run("calls clear all");
    QCOMPARE(run({u"calls"_s, u"import"_s, path(u"b.json"_s)}), u"sent 1 call\nexit 0"_s);
    QCOMPARE(list("calls list --json")[0][u"name"], u"\u00FC"_s);
}

void ZynphoneInterchangeTest::tellsWhatItLeaves_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("problems"); // @ is the file
    QTest::addColumn<bool>("isRead");         // all but the calls with problems, which are 1 and 2

    const auto csv = [](const char* name, const QByteArray& text, const QByteArray& problems, bool isRead = false) {
        QTest::addRow("%s.csv", name) << text << problems << isRead;
    };
    csv("none", "", "@:1: no line names the fields\n");
    csv("field-unknown", "\nlist,numbr,start\n", "@:2: unknown field 'numbr'; did you mean 'number'?\n");
    csv("field-twice", "list,number,start,number\n", "@:1: the field 'number' is there twice\n");
    csv("field-missing", "list,number\n", "@:1: the field 'start' is missing\n");
    csv("header-not-utf8", "list,number,start,\xFF\n", "@:1: the line is not UTF-8\n");

    const auto rows = [&csv](const char* name, const QByteArray& lines, const QByteArray& problems) {
        csv(name,
            "list,number,name,start,duration,type,session,read,reserved53\n"
            "missed,1,,2024-02-03T10:00:00Z,0,voice,,true,\n"
                + lines + "\nmissed,2,,2024-02-03T10:00:00Z,0,voice,,true,\n",
            problems, true);
    };
    rows("width", "missed,1", "@:3: the line has 2 fields, not 9\n");
    rows("not-utf8", "missed,\xE9,,2024-02-03T10:00:00Z,0,voice,,true,", "@:3: the line is not UTF-8\n");
    rows("stray-quote", "missed,1\"2,,2024-02-03T10:00:00Z,0,voice,,true,\nmissed,\"1\"2,,,,,,,",
         "@:3: a quotation mark stands where no quoted cell begins or ends\n"
         "@:4: a quotation mark stands where no quoted cell begins or ends\n");
    rows("open-quote", "missed,\"3,,2024-02-03T10:00:00Z,0,voice,,true,", "@:3: a quotation mark is not closed\n");
    rows("line-feed-in-cell", "missed,\"1\n2\",,,,,,,\nmissed,\"1\n2\n3\",,,,,,,",
         "@:3: start '' is no date and time like 2024-05-31T18:30:00Z or 2024-05-31T20:30:00+02:00\n"
         "@:5: start '' is no date and time like 2024-05-31T18:30:00Z or 2024-05-31T20:30:00+02:00\n");
    QByteArray lines;
    QByteArray told;
    int line = 2;
    for (const auto& [text, problem] : std::initializer_list<std::pair<const char*, const char*>>{
             {"all,1,,2024-02-03T10:00:00Z,0,,,,", "unknown list 'all'; known are answered, missed, dialed"},
             {"missed,123456789012345678901234567890123456789012,,2024-02-03T10:00:00Z,,,,,",
              "the number has 42 characters; at most 41 fit"},
             {"missed,hex:3100,,2024-02-03T10:00:00Z,,,,,", "the number has 2 bytes, not 42"},
             {"missed,hex:3,,2024-02-03T10:00:00Z,,,,,", "'3' is no even number of hexadecimal digits"},
             {"missed,1,\xC5\x81,2024-02-03T10:00:00Z,,,,,", "the name holds characters that are not Latin-1"},
             {"missed,1,,2038-01-19T03:14:08Z,,,,,",
              "'2038-01-19T03:14:08Z' is not within 1901-12-13T20:45:52Z and 2038-01-19T03:14:07Z"},
             {"missed,1,,2024-02-03T10:00:00Z,2147483648,,,,",
              "duration '2147483648' is no whole number from -2147483648 to 2147483647"},
             {"missed,1,,2024-02-03T10:00:00Z,,fax,,,", "unknown type 'fax'; known are voice, ptt1, ptt2"},
             {"missed,1,,2024-02-03T10:00:00Z,,,,256,",
              "read '256' is neither true nor false nor a whole number from 0 to 255"},
             {"missed,1,,2024-02-03T10:00:00Z,,,,,abcd", "the reserved53 has 4 characters; at most 3 fit"}}) {
        lines += (line == 2 ? "" : "\n") + QByteArray(text);
        told += "@:" + QByteArray::number(++line) + ": " + problem + '\n';
    }
    for (const QByteArray start : {"2024-02-30T10:00:00Z", "2024-02-03T10:00:00", "2024-02-03T10:00:00.5Z",
                                   "2024-02-03", "2024-02-03T25:00:00Z"}) {
        lines += "\nmissed,1,," + start + ",,,,,";
        told += "@:" + QByteArray::number(++line) + ": start '" + start
                + "' is no date and time like 2024-05-31T18:30:00Z or 2024-05-31T20:30:00+02:00\n";
    }
    lines += "\nmissed,1,,2024-02-03T10:00:00Z,,," + QByteArray("\xC3\xBC").repeated(51) + ",,";
    rows("values", lines, told + "@:" + QByteArray::number(++line) + ": the session has 102 bytes; at most 100 fit\n");

    const auto json = [](const char* name, const QByteArray& text, const QByteArray& problems, bool isRead = false) {
        QTest::addRow("%s.json", name) << text << problems << isRead;
    };
    json("none", "", "@:1: no JSON: illegal value\n");
    json("cut-short", "[\n{\"list\":\"missed\"},\n{\"list\"", "@:3: no JSON: unterminated string\n");
    json("no-array", "\n{}", "@:2: no array of objects\n");
    json(
        "values",
        R"([{"list":"missed","number":"1","start":"2024-02-03T10:00:00Z","name":"\"},{"}, 7, {"list":"missed","number":"1"},
             {"list":"missed","number":null,"start":"2024-02-03T10:00:00Z"},
             {"list":"missed","number":"1\u0000","start":"2024-02-03T10:00:00Z"},
             {"list":"missed","number":"1","start":"2024-02-03T10:00:00Z","session":"\ud800"},
             {"list":"missed","number":"1","start":"2024-02-03T10:00:00Z","uid":1.5}, [[],
             {}],
             {"list":"missed","number":1e20,"start":"2024-02-03T10:00:00Z"},
             {"list":"missed","number":"1","start":"2024-02-03T10:00:00Z","duration":"5"},
             {"list":"missed","number":"1","start":"2024-02-03T10:00:00Z","read":"true"},
             {"list":"missed","number":"2","start":"2024-02-03T10:00:00Z"}])",
        "@:1: record 2: it is no object\n@:1: record 3: the field 'start' is missing\n"
        "@:2: record 4: the field 'number' is no text\n@:3: record 5: the number holds a NUL\n"
        "@:4: record 6: the session holds what UTF-8 does not keep\n"
        "@:5: record 7: uid '1.5' is no whole number from -2147483648 to 2147483647\n"
        "@:5: record 8: it is no object\n@:7: record 9: the field 'number' is no text\n"
        "@:8: record 10: the field 'duration' is no number\n"
        "@:9: record 11: the field 'read' is neither true nor false nor a number\n",
        true);
}

void ZynphoneInterchangeTest::tellsWhatItLeaves()
{
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, problems);
    QFETCH(bool, isRead);
    const QString file = write(QString::fromUtf8(QTest::currentDataTag()), text);
    const qsizetype left = problems.count('\n');
    const QString shown = QString::fromUtf8(QByteArray(problems).replace("@", "zynphone: " + file.toUtf8()));

    if (!isRead) {
        QCOMPARE(run({u"calls"_s, u"import"_s, file}), shown + u"exit 1"_s);
        QCOMPARE(keptCalls(), QByteArray());
        return;
    }
    const QString calls = left == 1 ? u"1 call"_s : u"%1 calls"_s.arg(left);
    QCOMPARE(run({u"calls"_s, u"import"_s, file, u"--strict"_s}),
             shown + u"zynphone: %1 cannot be read; none was taken\nexit 1"_s.arg(calls));
    QCOMPARE(keptCalls(), QByteArray());
    QCOMPARE(run({u"calls"_s, u"import"_s, file}), u"sent 2 calls, left %1\n"_s.arg(left) + shown + u"exit 1"_s);
    const QJsonArray sent = list("calls list --json");
    QCOMPARE(sent.size(), 2);
    QCOMPARE(sent[0][u"number"], u"1"_s); // the first of the file is the newest
}

void ZynphoneInterchangeTest::leavesFilesWhole()
{
    const QString file = write(u"a.csv"_s, "before");
    QCOMPARE(run({u"calls"_s, u"export"_s, u"/none/a.csv"_s}),
             u"zynphone: cannot write /none/a.csv: No such file or directory\nexit 1"_s);
    QCOMPARE(run("calls import /none/a.csv"),
             u"zynphone: cannot read /none/a.csv: No such file or directory\nexit 1"_s);
    ::mkfifo(path(u"pipe.csv"_s).toLocal8Bit().constData(), 0600);
    QProcess reader;
    reader.start(u"cat"_s, {path(u"pipe.csv"_s)});
    QCOMPARE(run({u"calls"_s, u"export"_s, path(u"pipe.csv"_s)}), u"wrote 0 calls\nexit 0"_s);
    QCOMPARE(role::finish(reader), 0);
    QVERIFY(reader.readAll().startsWith("list,number,"));
    QCOMPARE(run("calls export a.txt"), u"zynphone: unknown file ending 'txt'; known are csv, json\n"
                                        "Try 'zynphone calls export --help'.\nexit 2"_s);
    m_service->stop();
    const QString noService = u"no recent-call service at /tmp/zynrecentcallcom/recentcall_interface"_s;
    QCOMPARE(run({u"calls"_s, u"export"_s, file}), u"zynphone: %1\nexit 1"_s.arg(noService));
    QCOMPARE(read(u"a.csv"_s), QByteArray("before"));
    QCOMPARE(run("calls seed 3"), u"zynphone: %1; 0 of 3 calls sent\nexit 1"_s.arg(noService));
}

void ZynphoneInterchangeTest::seedsCalls()
{
    QCOMPARE(run("calls seed 3 --random 5"), u"sent 3 calls (--random 5)\nexit 0"_s);
    const QJsonArray few = list("calls list --json");
    QCOMPARE(run("calls seed 153 --random 5"), u"sent 153 calls (--random 5)\nexit 0"_s);
    const QJsonArray calls = list("calls list --json");
    QCOMPARE(calls.size(), 150);

    QMap<QString, int> lists;
    QMap<QString, int> names;
    QString unread;
    QString later = QDateTime::currentDateTimeUtc().toString(Qt::ISODate);
    for (const QJsonValue call : calls) {
        const QString start = call[u"start"].toString();
        QVERIFY2(start < later, qPrintable(start));
        later = start;
        ++lists[call[u"list"].toString()];
        ++names[call[u"name"].toString()];
        if (call[u"list"] == u"missed"_s)
            unread += call[u"read"].toBool() ? u'-' : u'u';
    }
    QCOMPARE(lists, (QMap<QString, int>{{u"answered"_s, 50}, {u"missed"_s, 50}, {u"dialed"_s, 50}}));
    QVERIFY(names.size() > 3 && names.size() < 12);
    QVERIFY(unread.startsWith(u'u') && unread.contains(u'-'));
    for (int place = 0; place < few.size(); ++place)
        QCOMPARE(few[place][u"number"], calls[place][u"number"]);
}

void ZynphoneInterchangeTest::completes_data()
{
    QTest::addColumn<QString>("completions");
    QTest::newRow("set") << u"settings"_s;
    QTest::newRow("calls l") << u"list last-dialed"_s;
    QTest::newRow("calls ''") << u"list add delete clear last-dialed seed export import"_s;
    QTest::newRow("calls list --trace mi") << u"missed"_s;
    QTest::newRow("calls add missed ''") << u""_s;
    QTest::newRow("calls export ''") << u""_s;
    QTest::newRow("calls export --list answered --f") << u"--format"_s;
    QTest::newRow("calls import --format = c") << u"csv"_s;
    QTest::newRow("calls clear --type =") << u"voice ptt1 ptt2 all"_s;
    QTest::newRow("monitor /ZYN/phone /ZYN/r") << u"/ZYN/recentcall"_s;
    QTest::newRow("status call-t --network") << u"--network-id --network"_s;
    QTest::newRow("none ''") << u""_s;
}

void ZynphoneInterchangeTest::completes()
{
    QFETCH(QString, completions);
    QProcess bash;
    // The first time it is the file that is installed, from then on what the tool has told it.
    bash.start(u"bash"_s, {u"-c"_s, u"source '%3'; COMP_WORDS=(zynphone %2); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); "
                                    "for time in first second; do set -- $(complete -p zynphone); COMPREPLY=(); "
                                    "${*: -2:1} '%1'; echo \"${#COMPREPLY[@]} ${COMPREPLY[*]}\"; done"_s.arg(
                                        QStringLiteral(ZYN_TOOL), QString::fromUtf8(QTest::currentDataTag()),
                                        QStringLiteral(ZYN_COMPLETION))});
    QCOMPARE(role::finish(bash), 0);
    const qsizetype count = completions.isEmpty() ? 0 : completions.count(u' ') + 1;
    QCOMPARE(QString::fromUtf8(bash.readAll()), u"%1 %2\n"_s.arg(count).arg(completions).repeated(2));
}

QTEST_GUILESS_MAIN(ZynphoneInterchangeTest)
#include "tst_zynphone_interchange.moc"
