// The tool with a phone server that the test plays; what it does by itself and with services stands in transcripts.
#include "platform/QCopChannel.h"
#include "support/ScriptedService.h"
#include "support/Tool.h"

#include <QtCore/QDir>
#include <QtCore/QRegularExpression>
#include <QtCore/QScopeGuard>
#include <QtCore/QStringList>

using namespace Qt::StringLiterals;

using tool::run;

class ZynphoneTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fitsHelpOntoATerminal();
    void showsThePhoneServersAnswer();
    void followsSocketCalls_data();
    void followsSocketCalls();
    void saysThatAServiceHangs();
};

void ZynphoneTest::fitsHelpOntoATerminal()
{
    static const QRegularExpression name(u"^  ([a-z-]+)  "_s, QRegularExpression::MultilineOption);
    QStringList paths{QString()};
    for (qsizetype i = 0; i < paths.size(); ++i) {
        const QString path = paths[i];
        const QString help = run((path + u"--help"_s).toLatin1().constData());
        for (const QString& line : help.split(u'\n'))
            QVERIFY2(line.size() <= 80, qPrintable(path + u": "_s + line));
        // The tool's own verbs stand in groups.
        const QString heading = path.isEmpty() ? u"(?!Options)[A-Z][a-z ]+"_s : u"Verbs"_s;
        const QRegularExpression section(u"^%1:\n((?:  .*\n)+)"_s.arg(heading), QRegularExpression::MultilineOption);
        for (const QRegularExpressionMatch& verbs : section.globalMatch(help)) {
            for (const QRegularExpressionMatch& verb : name.globalMatch(verbs.captured(1)))
                paths += path + verb.captured(1) + u' ';
        }
    }
    QCOMPARE_GE(paths.size(), 60);
}

void ZynphoneTest::showsThePhoneServersAnswer()
{
    QByteArray requests;
    const QCopChannel server("/ZYN/phone");
    connect(&server, &QCopChannel::received, &server, [&](const QCString& name, const QByteArray& data) {
        const bool isRadio = name == "PHONE_MSG_24";
        if (!isRadio && name != "PHONE_MSG_25")
            return;
        requests += name + ' ' + data.toHex() + '\n';
        QCopChannel::send("/ZYN/phone", isRadio ? "PHONE_MSG_26" : "PHONE_MSG_17", "\0\0\0\x63"_ba);
        QCopChannel::send("/ZYN/phone", isRadio ? "PHONE_MSG_17" : "PHONE_MSG_26", data);
    });
    QCOMPARE(run("radio on"), u"result 1: done\nexit 0"_s);
    QCOMPARE(run("radio off"), u"result 0: not done\nexit 1"_s);
    QCOMPARE(run("language -5"), u"result -5\nexit 0"_s);
    QCOMPARE(requests, QByteArray("PHONE_MSG_24 00000001\nPHONE_MSG_24 00000000\nPHONE_MSG_25 fffffffb\n"));
}

void ZynphoneTest::followsSocketCalls_data()
{
    QTest::addColumn<QByteArray>("call"); // the command for the call, behind which the tool ends it where it may
    QTest::addColumn<QByteArray>("replies");
    QTest::addColumn<QString>("shown");

    const auto row = [](const char* line, const QByteArray& call, const QByteArray& replies, const char* shown) {
        QTest::newRow(line) << call << replies << QString::fromLatin1(shown);
    };
    const auto frames = [](std::initializer_list<int> codes) {
        QByteArray bytes;
        for (const int code : codes)
            bytes += ScriptedService::frame(code, code == 3 ? "x" : "");
        return bytes;
    };
    const auto padded = [](const char* number, qsizetype size) { return QByteArray(number).leftJustified(size, '\0'); };
    const QByteArray course = frames({1, 2, 3, 77, 4, 5, 2});
    const char* const shownCourse = "dialing\nalerting\n77\nconnected\nended\nexit 0";
    const char* const lost = "alerting\nzynphone: the phone server closed the connection\nexit 1";
    const QByteArray zero(4, '\0');

    row("java call 0123456789012345678901234567890123456789%C3%A9 --value -2",
        "\xFE\xFF\xFF\xFF" + padded("0123456789012345678901234567890123456789\xE9", 44), course, shownCourse);
    row("java call 112", zero + padded("112", 44), frames({3}), lost);
    row("java call 112 --for 1", zero + padded("112", 44), {}, "exit 0");
    row("stk call 112", padded("112", 108), frames({6}), "failed\nexit 1");
    row("stk call 113", padded("113", 108), frames({3}) + "garbage!", lost);
    row("stk call 114 --for 1", padded("114", 108), {}, "exit 0");
    static const QByteArray block = "stk call hex:" + QByteArray("00ff").repeated(54);
    row(block.constData(), QByteArray("\0\xff", 2).repeated(54), course, shownCourse);
}

void ZynphoneTest::followsSocketCalls()
{
    QFETCH(QByteArray, call);
    QFETCH(QByteArray, replies);
    QFETCH(QString, shown);
    const QByteArray line = QTest::currentDataTag();
    const bool isJava = line.startsWith("java");
    const bool isEnded = line.endsWith("--for 1");
    QByteArray sent = ScriptedService::frame(0, QByteArray(isJava ? "\1\0\0\0" : "\0\0\0\0", 4));
    sent += ScriptedService::frame(2, call);
    if (isEnded)
        sent += (isJava ? ScriptedService::frame(3) : QByteArray()) + ScriptedService::frame(1);
    QDir().mkpath(u"/tmp/zynphonecom"_s);
    ScriptedService server("/tmp/zynphonecom/voicecall_interface", replies, isEnded ? (isJava ? 4 : 3) : 2);

    QCOMPARE(run(line.constData()), shown);

    QCOMPARE(server.received().toHex(), sent.toHex());
}

/// Not one that is stopped, which shows in the process's state: it runs, but reads nothing.
void ZynphoneTest::saysThatAServiceHangs()
{
    QDir().mkpath(u"/tmp/zynrecentcallcom"_s);
    const QString path = u"/tmp/zynrecentcallcom/recentcall_interface"_s;
    const zyn::posix::UniqueFd service = zyn::posix::listenUnix(path.toLatin1(), 0600);
    const auto remove = qScopeGuard([&path] { QFile::remove(path); });
    QVERIFY(service.isValid());

    QCOMPARE(run("missed"),
             u"zynphone: the recent-call service at %1 did not answer within 5 seconds\nexit 1"_s.arg(path));
}

QTEST_GUILESS_MAIN(ZynphoneTest)
#include "tst_zynphone.moc"
