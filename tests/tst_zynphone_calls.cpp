// The tool's verbs for placing calls: what they send, and what they show of what comes back.
#include "platform/QCopChannel.h"
#include "support/ScriptedService.h"
#include "support/Timeout.h"
#include "support/Tool.h"

#include <QtCore/QDir>
#include <QtCore/QTemporaryDir>

#include <optional>

using namespace Qt::StringLiterals;

namespace {

using tool::run;

/// @{ Fields of a message's payload.
QByteArray number(int32_t value)
{
    QByteArray bytes(4, '\0');
    qToBigEndian(value, bytes.data());
    return bytes;
}

const QByteArray kNull = number(-1);

QByteArray text(const char* latin1)
{
    QByteArray bytes;
    for (const char* character = latin1; *character; ++character)
        bytes += '\0' + QByteArray(1, *character);
    return number(static_cast<int32_t>(bytes.size())) + bytes;
}
/// @}

/// @{ Data of a command to the phone server.
QByteArray word(int32_t value)
{
    QByteArray bytes(4, '\0');
    qToLittleEndian(value, bytes.data());
    return bytes;
}

QByteArray padded(const char* latin1, qsizetype size)
{
    return QByteArray(latin1).leftJustified(size, '\0');
}
/// @}

QByteArray commands(std::initializer_list<std::pair<int32_t, QByteArray>> commands)
{
    QByteArray bytes;
    for (const auto& [code, data] : commands)
        bytes += ScriptedService::frame(code, data);
    return bytes;
}

} // namespace

class ZynphoneCallsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void sendsRequests_data();
    void sendsRequests();
    void answers_data();
    void answers();
    void writesEmergencyRecords();
    void tellsWhatCannotBeWritten();
    void showsThePhoneServersAnswer();
    void followsSocketCalls_data();
    void followsSocketCalls();

private:
    std::optional<QTemporaryDir> m_settings;
};

void ZynphoneCallsTest::init()
{
    m_settings.emplace();
    qputenv("ZYN_APP_WRITE_PATH", QFile::encodeName(m_settings->path()));
    QFile::remove(u"/tmp/emergency_call"_s);
    QDir().rmdir(u"/tmp/emergency_call"_s);
}

void ZynphoneCallsTest::sendsRequests_data()
{
    QTest::addColumn<QByteArray>("message");
    QTest::addColumn<QByteArray>("payload");

    const auto row = [](const char* line, const char* message, const QByteArray& payload) {
        QTest::newRow(line) << QByteArray(message) << payload;
    };
    const QByteArray line2(1, 2);
    row("dial 555 --name Ann --flag --clir 1 --line 0", "MakeCall",
        text("555") + text("Ann") + number(1) + number(1) + number(0) + '\0');
    row("dial +4930", "MakeCall", text("+4930") + kNull + number(0) + number(0) + number(0) + line2);
    row("dial 123 --direct", "MakeCall", text("123") + kNull + number(0) + number(0) + number(1) + line2);
    row("dial 123 --prepend", "MakeCall", text("123") + kNull + number(0) + number(0) + number(2) + line2);
    row("dial %C3%A9 --mode -7 --name '' --flag --clir -2 --line -128", "MakeCall",
        text("\xE9") + text("") + number(1) + number(-2) + number(-7) + '\x80');
    row("hangup", "DropCall", "");
    row("ptt call 1=Ann=Eve 2 3= --value1 -1 --value2 7", "makePttCall",
        number(3) + text("1") + text("2") + text("3") + text("Ann=Eve") + kNull + text("") + number(-1) + number(7));
    row("ptt drop", "dropPttCall", "");
    row("recents show missed", "RECENTCALL_MSG_3", number(2));
    row("recents page picker", "RECENTCALL_MSG_4", number(5));
    row("recents page -7", "RECENTCALL_MSG_4", number(-7));
    row("recents detail dialed 12", "RECENTCALL_MSG_5", number(3) + number(12));
    row("recents hide", "RECENTCALL_MSG_7", "");
}

void ZynphoneCallsTest::sendsRequests()
{
    QFETCH(QByteArray, message);
    QFETCH(QByteArray, payload);
    QList<std::pair<QByteArray, QByteArray>> messages;
    const QCopChannel voice("/ZYN/Phone/LocalPath"), ptt("/KQ/calling2ptt"), recents("/ZYN/recentcall");
    for (const QCopChannel* channel : {&voice, &ptt, &recents}) {
        connect(channel, &QCopChannel::received, channel, [&](const QCString& name, const QByteArray& data) {
            messages.append({name, data});
        });
    }

    QCOMPARE(run(QTest::currentDataTag()), u"sent\nexit 0"_s);

    QTRY_COMPARE(messages.size(), 1);
    QCOMPARE(messages[0].first, message);
    QCOMPARE(messages[0].second.toHex(), payload.toHex());
}

void ZynphoneCallsTest::answers_data()
{
    tool::addTranscripts(QFINDTESTDATA("data/zynphone_calls.txt"));
}

void ZynphoneCallsTest::answers()
{
    tool::followTranscript();
}

void ZynphoneCallsTest::writesEmergencyRecords()
{
    run("emergency write 999");
    QCOMPARE(run("emergency write 911 *1%C3%A9"), u"exit 0"_s);

    QFile file(u"/tmp/emergency_call"_s);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), padded("911", 42) + padded("*1\xE9", 42));
    QVERIFY(file.permissions() & QFile::ReadOther);
}

void ZynphoneCallsTest::tellsWhatCannotBeWritten()
{
    qputenv("ZYN_APP_WRITE_PATH", "/dev/null");
    QCOMPARE(run("speed-dial set 1 1"), u"zynphone: the settings store did not take the number\nexit 1"_s);
    QCOMPARE(run("prepend on"), u"zynphone: the settings store did not take the switch\nexit 1"_s);
    QDir().mkdir(u"/tmp/emergency_call"_s);
    QCOMPARE(run("emergency write 1"), u"zynphone: cannot write /tmp/emergency_call\nexit 1"_s);
}

void ZynphoneCallsTest::showsThePhoneServersAnswer()
{
    QCOMPARE(run("radio on"), u"zynphone: no answer within 2 seconds\nexit 1"_s);

    QByteArray requests;
    const QCopChannel server("/ZYN/phone");
    connect(&server, &QCopChannel::received, &server, [&](const QCString& name, const QByteArray& data) {
        const bool isRadio = name == "PHONE_MSG_24";
        if (!isRadio && name != "PHONE_MSG_25")
            return;
        requests += name + ' ' + data.toHex() + '\n';
        QCopChannel::send("/ZYN/phone", isRadio ? "PHONE_MSG_26" : "PHONE_MSG_17", number(99));
        QCopChannel::send("/ZYN/phone", isRadio ? "PHONE_MSG_17" : "PHONE_MSG_26", data);
    });
    QCOMPARE(run("radio on"), u"result 1: done\nexit 0"_s);
    QCOMPARE(run("radio off"), u"result 0: not done\nexit 1"_s);
    QCOMPARE(run("language -5"), u"result -5\nexit 0"_s);
    QCOMPARE(requests, QByteArray("PHONE_MSG_24 00000001\nPHONE_MSG_24 00000000\nPHONE_MSG_25 fffffffb\n"));
}

void ZynphoneCallsTest::followsSocketCalls_data()
{
    QTest::addColumn<QByteArray>("sent");
    QTest::addColumn<QByteArray>("replies");
    QTest::addColumn<QString>("shown");

    const auto row = [](const char* line, const QByteArray& sent, const QByteArray& replies, const char* shown) {
        QTest::newRow(line) << sent << replies << QString::fromUtf8(shown);
    };
    const std::pair<int32_t, QByteArray> java{0, word(1)}, stk{0, word(0)}, end{3, {}}, goodbye{1, {}};
    const QByteArray course = commands({{1, {}}, {2, {}}, {3, "x"}, {77, {}}, {4, {}}, {5, {}}, {2, {}}});
    const char* const shownCourse = "dialing\nalerting\n77\nconnected\nended\nexit 0";
    const char* const lost = "alerting\nzynphone: the phone server closed the connection\nexit 1";

    row("java call 0123456789012345678901234567890123456789%C3%A9 --value -2",
        commands({java, {2, word(-2) + padded("0123456789012345678901234567890123456789\xE9", 44)}}), course,
        shownCourse);
    row("java call 112", commands({java, {2, word(0) + padded("112", 44)}}), commands({{3, {}}}), lost);
    row("java call 112 --for 1", commands({java, {2, word(0) + padded("112", 44)}, end, goodbye}), {}, "exit 0");
    row("stk call 112", commands({stk, {2, padded("112", 108)}}), commands({{6, {}}}), "failed\nexit 1");
    row("stk call 113", commands({stk, {2, padded("113", 108)}}), commands({{3, {}}}) + "garbage!", lost);
    row("stk call 114 --for 1", commands({stk, {2, padded("114", 108)}, goodbye}), {}, "exit 0");
    static const QByteArray block = "stk call hex:" + QByteArray("00ff").repeated(54);
    row(block.constData(), commands({stk, {2, QByteArray("\0\xff", 2).repeated(54)}}), course, shownCourse);
}

void ZynphoneCallsTest::followsSocketCalls()
{
    QFETCH(QByteArray, sent);
    QFETCH(QByteArray, replies);
    QFETCH(QString, shown);
    int frames = 0;
    for (qsizetype at = 0; at < sent.size(); at += 8 + qFromLittleEndian<int32_t>(sent.data() + at + 4))
        ++frames;
    const QByteArray directory = "/tmp/zynphonecom";
    QDir().mkpath(QFile::decodeName(directory));
    ScriptedService server(directory + "/voicecall_interface", replies, frames);

    QCOMPARE(run(QTest::currentDataTag()), shown);

    QCOMPARE(server.received().toHex(), sent.toHex());
}

QTEST_GUILESS_MAIN(ZynphoneCallsTest)
#include "tst_zynphone_calls.moc"
