// The tool's recordings: made, sent again and drawn, by real processes.
#include "platform/QCopChannel.h"
#include "support/MonitorProcess.h"
#include "support/ScopedFileSizeLimit.h"
#include "support/Timeout.h"

#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QTemporaryDir>
#include <QtCore/QXmlStreamReader>

#include <algorithm>
#include <array>
#include <optional>

using namespace Qt::StringLiterals;

namespace {

using tool::run;

const QByteArray kHeader = "# zynphone recording, version 1\n";
const QByteArray kLine = "2026-03-01T08:15:00.000Z /a b 00\n";

QByteArray read(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no such file");
}

/// A recording without its times, channel by channel: only the messages of one channel have an order.
QByteArrayList timeless(const QByteArray& recording)
{
    QByteArrayList lines = recording.split('\n');
    for (QByteArray& line : lines)
        line = line.startsWith('#') ? line : line.mid(25);
    std::ranges::stable_sort(lines, {}, [](const QByteArray& line) { return line.left(line.indexOf(' ')); });
    return lines;
}

/// Every text element of a chart, and an error if it is no XML.
QStringList textsOf(const QByteArray& svg)
{
    QStringList texts;
    QXmlStreamReader xml(svg);
    while (!xml.atEnd()) {
        if (xml.readNext() == QXmlStreamReader::StartElement && xml.name() == "text"_L1)
            texts += xml.readElementText(QXmlStreamReader::IncludeChildElements).trimmed();
    }
    return xml.hasError() ? QStringList(xml.errorString()) : texts;
}

/// 500 changes of the signal's quality, a second apart; after each 25th a message of another channel.
QByteArray longRecording()
{
    QByteArray lines;
    const QDateTime start = QDateTime::fromString(u"2026-03-01T08:15:00Z"_s, Qt::ISODate);
    for (int i = 0; i < 500; ++i) {
        lines += start.addSecs(i).toString(Qt::ISODateWithMs).toLatin1();
        lines += i % 25 == 24 ? " ACTIVITY_LOG_CHANNEL M" + QByteArray::number(i) + " -\n"
                              : " /ZYN/phone PHONE_MSG_10 0000000" + QByteArray::number(i % 7) + '\n';
    }
    return lines;
}

} // namespace

class ZynphoneRecordingsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void recordsAgainWhatIsReplayed();
    void keepsWhatExists();
    void endsAtFullDisk();
    void refusesRecordings_data();
    void refusesRecordings();
    void keepsPauses_data();
    void keepsPauses();
    void endsReplayWhenAsked();
    void selectsChannels();
    void drawsCharts();
    void foldsRepeats();
    void escapesTexts();
    void putsChartInPlace();

private:
    QString write(const QByteArray& lines, const QByteArray& header = kHeader)
    {
        QFile file(m_directory->filePath(u"given"_s));
        if (!file.open(QIODevice::WriteOnly) || file.write(header + lines) < 0)
            qFatal("cannot write a recording");
        return file.fileName();
    }

    std::optional<QTemporaryDir> m_directory;
};

void ZynphoneRecordingsTest::init()
{
    m_directory.emplace();
    QDir::setCurrent(m_directory->path());
}

void ZynphoneRecordingsTest::recordsAgainWhatIsReplayed()
{
    QByteArray allBytes;
    for (int byte = 0; byte < 256; ++byte)
        allBytes += static_cast<char>(byte);
    const QByteArray name = allBytes.mid(1);
    {
        MonitorProcess monitor(u"--record first --count 3 /ZYN/phone %09%C3%A9%20%23%25"_s);
        QVERIFY(QCopChannel::send("\t\u00E9 #%", name, allBytes));
        QVERIFY(QCopChannel::send("\t\u00E9 #%", "-"));
        QVERIFY(QCopChannel::send("/ZYN/phone", "PHONE_MSG_14", "\0\0\0\x04\x20\x28\0#z"_ba.left(9)));
        QCOMPARE(role::finish(monitor), 0);
        QCOMPARE(monitor.readAllStandardOutput().count('\n'), 3);
    }
    const QByteArray first = read(u"first"_s);
    QVERIFY(first.startsWith(kHeader));
    QVERIFY(first.contains(" %09%C3%A9%20%23%25   " + name.toPercentEncoding("!\"$&'()*+,/:;<=>?@[\\]^`{|}") + ' '
                           + allBytes.toHex() + '\n'));
    QVERIFY(first.contains("Z /ZYN/phone           PHONE_MSG_14     00000004202800237a  # PHONE_MSG_SERVICE_NAME_S "
                           "name=\"\\u2028#\" rest=7a\n"));

    MonitorProcess monitor(u"--record second --count 3 /ZYN/phone %09%C3%A9%20%23%25"_s);
    QCOMPARE(run("replay first"), u"sent 3 messages\nexit 0"_s);
    QCOMPARE(role::finish(monitor), 0);
    QCOMPARE(timeless(read(u"second"_s)), timeless(first));
}

void ZynphoneRecordingsTest::keepsWhatExists()
{
    const QString path = write(kLine);
    QCOMPARE(run("monitor --record given /a"),
             u"zynphone: given exists; --force replaces it, --append adds to it\nexit 1"_s);
    QCOMPARE(run("monitor --force /a").section(u'\n', 0, 0), u"zynphone: --force is for --record"_s);
    QCOMPARE(read(path), kHeader + kLine);

    // A time to come: what is added must not be before it.
    const QByteArray later = "2999-01-01T00:00:00.000Z /a b -\n";
    write(later);
    MonitorProcess adding(u"--record given --append --count 1 /a"_s);
    QCopChannel::send("/a", "c");
    QCOMPARE(role::finish(adding), 0);
    QVERIFY(read(path).startsWith(kHeader + later + "2999-01-01T00:00:0"));
    QCOMPARE(run("replay given --speed max"), u"sent 2 messages\nexit 0"_s);

    write("damaged\n");
    QVERIFY(run("monitor --record given --append /a").contains("given:2: missing channel"_L1));
    MonitorProcess replacing(u"--record given --force /a"_s);
    QCOMPARE(replacing.end(SIGKILL), -1);
    QCOMPARE(read(path), kHeader);
}

void ZynphoneRecordingsTest::endsAtFullDisk()
{
    std::optional<ScopedFileSizeLimit> limit(kHeader.size() - 1);
    QCOMPARE(run("monitor --record none /a"), u"zynphone: cannot write none: File too large\nexit 1"_s);
    QVERIFY(!QFile::exists(u"none"_s));
    limit.emplace(kHeader.size() + 500);
    MonitorProcess monitor(u"--record full /a"_s);
    limit.reset();
    for (int i = 0; i < 2; ++i)
        QCopChannel::send("/a", "b", QByteArray(150, 'x'));
    QCOMPARE(role::finish(monitor), 1);
    QCOMPARE(monitor.readAllStandardError(), "zynphone: cannot write full: File too large\n");
    QCOMPARE(monitor.readAllStandardOutput().count('\n'), 1);
    QCOMPARE(run("replay full"), u"sent 1 message\nexit 0"_s);
}

void ZynphoneRecordingsTest::refusesRecordings_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("error");

    const auto row = [](const char* name, const QByteArray& text, const QByteArray& error) {
        QTest::newRow(name) << text << error;
    };
    const auto line = [row](const char* name, const QByteArray& text, const QByteArray& error) {
        row(name, kHeader + kLine + "\n# a comment\n" + text + kLine, "5: " + error);
    };
    const QByteArray noHeader = "1: no recording: it does not begin with '# zynphone recording, version 1'";
    const QByteArray newer = "a recording of version 2; this program reads version 1";
    row("empty", "", noHeader);
    row("no header", kLine, noHeader);
    row("newer", "# zynphone recording, version 2\nx\n", "1: " + newer);
    row("header cut short", kHeader.chopped(1), "1: the line is cut short");
    row("UTF-16", "\xFF\xFE#\0\n"_ba, "1: the line is not UTF-8");
    row("cut short", kHeader + kLine.chopped(1), "2: the line is cut short");
    row("over-long", kHeader + QByteArray(qsizetype{65} * 1024 * 1024, 'a'),
        "2: the line is longer than 67108864 bytes");
    row("large", kHeader + kLine.chopped(1) + QByteArray(qsizetype{32} * 1024 * 1024, '0') + '\n',
        "2: the message's name and payload have more than 16777216 bytes");
    line("merged with a newer one", "# zynphone recording, version 2\n", newer);
    line("Latin-1", "2026-03-01T08:15:00.000Z /a b 00 # \xE9\n", "the line is not UTF-8");
    line("no payload", "2026-03-01T08:15:00.000Z /a b # 00\n", "missing payload");
    line("no name", "2026-03-01T08:15:00.000Z /a\n", "missing message");
    line("superfluous", kLine.chopped(1) + " 0\n", "superfluous '0'");
    line("no time", "08:15:00.000 /a b 00\n", "'08:15:00.000' is no time such as 2026-03-01T08:15:00.000Z");
    line("time that is none", "2026-02-30T08:15:00.000Z /a b 00\n",
         "'2026-02-30T08:15:00.000Z' is no time such as 2026-03-01T08:15:00.000Z");
    line("earlier", "2026-03-01T08:14:59.999Z /a b 00\n", "the time is before that of the message before it");
    line("odd digits", "2026-03-01T08:15:00.000Z /a b 000\n",
         "the payload '000' is no even number of hexadecimal digits");
    line("no digits", "2026-03-01T08:15:00.000Z /a b 0x\n", "the payload '0x' is no even number of hexadecimal digits");
    line("half an escape", "2026-03-01T08:15:00.000Z /a%4 b 00\n", "'/a%4' is no name of a channel");
    line("escape that is none", "2026-03-01T08:15:00.000Z /a b%zz 00\n", "'b%zz' is no name of a message");
    line("NUL", "2026-03-01T08:15:00.000Z /a b%00 00\n", "'b%00' is no name of a message");
    line("tab", "2026-03-01T08:15:00.000Z /a\tb c 00\n", "'/a\\x09b' is no name of a channel");
}

void ZynphoneRecordingsTest::refusesRecordings()
{
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, error);
    write(text, QByteArray());
    QCopChannel listener("/a");
    bool wasSent = false;
    connect(&listener, &QCopChannel::received, this, [&wasSent] { wasSent = true; });

    const QString told = u"zynphone: given:%1\nexit 1"_s.arg(QString::fromUtf8(error));
    QCOMPARE(run("replay given --speed max"), told);
    QCOMPARE(run("chart given"), told);
    QVERIFY(!wasSent);
}

void ZynphoneRecordingsTest::keepsPauses_data()
{
    QTest::addColumn<QString>("speed");
    QTest::addColumn<int>("milliseconds");

    QTest::newRow("as it was") << u"1"_s << 300;
    QTest::newRow("faster") << u"1.5"_s << 200;
    QTest::newRow("at once") << u"0"_s << 0;
}

void ZynphoneRecordingsTest::keepsPauses()
{
    QFETCH(QString, speed);
    QFETCH(int, milliseconds);
    // Years lie behind what may not be waited for.
    const QByteArray last = milliseconds > 0 ? "2026-03-01T08:15:00.300Z" : "2999-03-01T08:15:00.000Z";
    write(kLine + "2026-03-01T08:15:00.250Z /a b 01\n" + last + " /a b 02\n");
    QCopChannel listener("/a");
    QByteArray payloads;
    connect(&listener, &QCopChannel::received, this,
            [&payloads](const QCString& /*name*/, const QByteArray& payload) { payloads += payload; });
    QElapsedTimer sinceStart;
    sinceStart.start();

    QCOMPARE(run({u"replay"_s, u"given"_s, u"--speed"_s, speed}), u"sent 3 messages\nexit 0"_s);
    QTRY_COMPARE(payloads, "\0\1\2"_ba);
    // However slow the machine, it cannot be done before the pauses are over.
    QVERIFY(sinceStart.elapsed() >= milliseconds);
}

void ZynphoneRecordingsTest::endsReplayWhenAsked()
{
    write(kLine + "2026-03-01T09:15:00.000Z /a b 01\n");
    QCopChannel listener("/a");
    QProcess replay;
    connect(&listener, &QCopChannel::received, &replay,
            [&replay] { ::kill(static_cast<pid_t>(replay.processId()), SIGINT); });
    replay.start(QStringLiteral(ZYN_TOOL), {u"replay"_s, u"given"_s});
    QTRY_COMPARE(replay.state(), QProcess::NotRunning);
    QCOMPARE(replay.exitCode(), 130);
    QCOMPARE(replay.readAllStandardError(), "zynphone: interrupted; sent are 1 of 2 messages\n");
    QVERIFY(run("replay given --speed -1").contains("'-1' is no number from 0.001 to 1000000, nor 0 or max"_L1));
}

void ZynphoneRecordingsTest::selectsChannels()
{
    write(kLine + "2026-03-01T08:15:00.000Z /a%20b c -\r\n2026-03-01T08:15:00.000Z /d e -\n");
    MonitorProcess monitor(u"--count 2 /a /a%20b /d"_s);
    QCOMPARE(run("replay given --channel /d --channel /a%20b"), u"sent 2 messages\nexit 0"_s);
    QStringList shown{monitor.nextMessage(), monitor.nextMessage()};
    shown.sort();
    QCOMPARE(shown, (QStringList{u"TIME  \"/a b\"                c                 unknown"_s,
                                 u"TIME  /d                    e                 unknown"_s}));
    QCOMPARE(run("replay given --channel /d --channel /x"),
             u"zynphone: given holds no message of the channel '/x'\nexit 1"_s);
    QVERIFY(run("chart given --channel /d").contains("1 message on 1 channel in 0.0 s"_L1));
}

void ZynphoneRecordingsTest::drawsCharts()
{
    const QString svg = run({u"chart"_s, QFINDTESTDATA("data/call.recording")});
    QCOMPARE(svg, QString::fromUtf8(read(QFINDTESTDATA("data/call.svg"))) + u"exit 0"_s);
}

void ZynphoneRecordingsTest::foldsRepeats()
{
    write(longRecording());
    run("chart given -o folded.svg");
    const QStringList texts = textsOf(read(u"folded.svg"_s));
    QCOMPARE(texts.count(u"PHONE_MSG_SIGNAL_QUALITY_S"_s), 1);
    QVERIFY(texts.contains(u"\u00D7 480"_s));
    QVERIFY(texts.contains(u"0:00.000 \u2013 8:18.000"_s));
    QVERIFY(texts.contains(u"quality=0\u21921"_s));
    QCOMPARE(texts.filter(QRegularExpression(u"^M[0-9]+$"_s)).size(), 20);

    QByteArray lines = kLine;
    for (int i = 0; i < 600; ++i)
        lines += std::array{"2026-03-01T08:15:00.000Z /a c -\n", "2026-03-01T08:15:00.000Z /d e -\n",
                            "2026-03-01T08:15:00.000Z /a f -\n"}[size_t(i % 3)];
    write(lines);
    run("chart given -o folded.svg");
    const QStringList turns = textsOf(read(u"folded.svg"_s));
    QCOMPARE(turns.count(u"\u00D7 200"_s), 2); // e, and c and f in turn
    QCOMPARE(turns.filter(QRegularExpression(u"^(b|c|e|f|then f)$"_s)),
             (QStringList{u"b"_s, u"c"_s, u"then f"_s, u"e"_s}));
}

void ZynphoneRecordingsTest::escapesTexts()
{
    // A text of the service's name that is markup, and half of a pair.
    write("2026-03-01T08:15:00.000Z /ZYN/phone PHONE_MSG_14 00000008003c00260022d800\n"
          "2026-03-01T08:15:00.000Z /%FF%01<b> &amp; "
          + QByteArray(2000, '0')
          + "\n"
            "2026-03-01T09:15:00.000Z /ZYN/phone "
          + QByteArray(3000, 'x') + " -\n");
    run("chart given -o odd.svg");
    const QStringList texts = textsOf(read(u"odd.svg"_s));
    QVERIFY2(texts.contains(u"name=\"<&\\\"\\ud800\""_s), qPrintable(texts.join(u'\n')));
    QVERIFY(texts.contains(u"\"/\uFFFD\\u0001<b>\""_s));
    QVERIFY(texts.contains(u"&amp;"_s));
    QVERIFY(texts.contains(u"1 h 0 min"_s));
    for (const QString& text : texts)
        QVERIFY2(text.size() < 90, qPrintable(text));
}

void ZynphoneRecordingsTest::putsChartInPlace()
{
    const QString path = write({});
    QVERIFY(textsOf(run("chart given").section(u"exit"_s, 0, 0).toUtf8()).contains(u"no messages"_s));
    QVERIFY(run("chart given -o ./given").startsWith("zynphone: the chart would replace the recording\n"_L1));
    QCOMPARE(read(path), kHeader);
    QByteArray lines;
    for (int i = 0; i < 65; ++i)
        lines += QByteArray(kLine).replace("/a", "/a" + QByteArray::number(i));
    write(lines);
    QCOMPARE(run("chart given"),
             u"zynphone: a chart has at most 64 channels, not 65; --channel chooses some\nexit 1"_s);
    write(kLine);
    QCOMPARE(run("chart missing"), u"zynphone: cannot read missing: No such file or directory\nexit 1"_s);
    QCOMPARE(run("chart given -o /nowhere/x"),
             u"zynphone: cannot write /nowhere/x: No such file or directory\nexit 1"_s);
}

QTEST_GUILESS_MAIN(ZynphoneRecordingsTest)
#include "tst_zynphone_recordings.moc"
