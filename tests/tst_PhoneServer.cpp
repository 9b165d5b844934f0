// The phone server, run as the process that it is beside a real recent-call service.
#include "handset/phone_server/Call.h"
#include "platform/posix/FileLock_p.h"
#include "platform/posix/File_p.h"
#include "recentcall/utility/RC_Interface.h"
#include "recentcall/utility/RC_RecordInterface.h"
#include "recentcall/utility/RecentCall_Client_p.h"
#include "tests/support/ServiceProcess.h"
#include "tests/support/SocketClient.h"
#include "tests/support/StoreFixture.h"
#include "tests/support/Timeout.h"
#include "utility/PHONE_EmergencyList_p.h"
#include "utility/PHONE_MsgClient.h"
#include "utility/PHONE_Ptt.h"
#include "utility/PHONE_VoiceCall.h"
#include "utility/PHONE_VoiceCallProtocol_p.h"
#include "utility/message/PhoneMessages_p.h"

#include <QtCore/QDir>

#include <functional>

#include <sys/stat.h>
#include <unistd.h>

using namespace zyn::voicecall;
using zyn::handset::CallEvent;
using zyn::handset::CallStateMachine;
using zyn::posix::Clock;
using zyn::posix::UniqueFd;

namespace {

constexpr uid_t kSomebody = 12345;
constexpr uid_t kNobody = 65534;

const QString kForLong = QStringLiteral("--step 20 --talk 3600000 --prefix 0049");
const QByteArray kRegisterSim = frame(PHONE_VOICECALL_CMD_REGISTER, words({SimToolkit}));
const QByteArray kRegisterJava = frame(PHONE_VOICECALL_CMD_REGISTER, words({Java}));
const QByteArray kSimCall = frame(PHONE_VOICECALL_CMD_MAKE_CALL, QByteArray("0301").leftJustified(108, '\0'));

QByteArray javaCall(const QByteArray& number)
{
    return frame(PHONE_VOICECALL_CMD_MAKE_CALL, words({7}) + number.leftJustified(44, '\0'));
}

UniqueFd client(const QByteArray& bytes)
{
    return connectAndSend(socketPath(), bytes);
}

/// The codes of the next @p count replies; -1 for one that does not come.
QList<int> replies(const UniqueFd& fd, int count)
{
    QList<int> codes;
    while (codes.size() < count) {
        zyn::CommandFrameHeader::Bytes bytes = {};
        const auto deadline = Clock::now() + std::chrono::milliseconds(role::kTimeout);
        const bool came = zyn::posix::receiveAll(fd.get(), bytes, deadline);
        codes += came ? zyn::CommandFrameHeader::decode(bytes).value().code : -1;
    }
    return codes;
}

/// The calls that the recent-call service has, oldest first, voice calls last.
QByteArrayList calls()
{
    QByteArrayList texts;
    for (const auto type : {RC_CALL_TYPE_VOICE, RC_CALL_TYPE_PTT1}) {
        QPtrList<RC_RecordInterface> list;
        if (RC_Interface().getRecordList(list, RC_CALL_CATEGORY_ALL, type) != 0)
            return {"no answer"};
        for (const RC_RecordInterface* call : list) {
            const auto* data = static_cast<const RC_RecordInterfaceImpl*>(call)->getData();
            texts.prepend(QByteArray::number(data->category) + ' ' + data->getPhoneNumber().toLatin1() + ' '
                          + data->getDisplayName().toLatin1() + (call->getDuration() > 0 ? " talked" : " none"));
        }
    }
    return texts;
}

/// Listens at the recent-call service's socket without ever taking a connection, and has room for none.
class FullService
{
public:
    FullService()
        : m_listener(zyn::posix::unixSocket())
    {
        const QByteArray path = zyn::recentcall::kSocketPath;
        const zyn::posix::UnixAddress address = zyn::posix::unixAddress(path);
        if (::bind(m_listener.get(), address.get(), address.length) != 0 || ::listen(m_listener.get(), 0) != 0)
            qFatal("cannot listen on %s", path.constData());
        m_waiting = zyn::posix::connectUnixAtOnce(path);
    }
    FullService(const FullService&) = delete;
    FullService& operator=(const FullService&) = delete;
    ~FullService() { ::unlink(zyn::recentcall::kSocketPath); }

private:
    UniqueFd m_listener;
    UniqueFd m_waiting;
};

/// Records the status messages, and what calls were stored when the end of a call was reported.
class Statuses : public QCopChannel
{
public:
    Statuses()
        : QCopChannel(zyn::kPhoneChannel)
    {}
    void receive(const QCString& message, const QByteArray& data) override
    {
        const int type = message.mid(10).toInt();
        if (type == 24 || type == 25 || type == 35 || type == 54)
            return;
        m_all += type == 44 ? QByteArray("44") : message.mid(10) + ':' + data.toHex();
        if (type == 44 && looksAtCalls)
            storedCalls = calls();
    }
    qsizetype count(const QByteArray& status) const { return m_all.count(status); }
    QByteArray all() const { return m_all.join(' '); }

    bool looksAtCalls = false;
    QByteArrayList storedCalls;

private:
    QByteArrayList m_all;
};

} // namespace

class tst_PhoneServer : public QObject
{
    Q_OBJECT

private:
    std::optional<StoreFixture> m_files;
    std::optional<Statuses> m_statuses;
    ServiceProcess m_recentCalls;
    ServiceProcess m_server;
    UniqueFd m_foreign; ///< what another user holds
    zyn::posix::FileLock m_foreignLock;

    void restart(const QString& options)
    {
        QCOMPARE(m_server.log(), QByteArray());
        QVERIFY(m_server.start(ZYN_PHONED, options));
    }
    QString scriptFile(const QByteArray& text) const
    {
        QFile file(m_files->path() + QStringLiteral("/script"));
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
            qFatal("cannot write the script");
        return file.fileName();
    }

private Q_SLOTS:
    void init()
    {
        m_files.emplace();
        QVERIFY(m_recentCalls.start(ZYN_RECENTCALLD));
        QVERIFY(m_server.start(ZYN_PHONED, QStringLiteral("--step 5")));
        m_statuses.emplace();
    }
    void cleanup()
    {
        m_recentCalls.tell(SIGCONT);
        for (ServiceProcess* process : {&m_server, &m_recentCalls})
            QVERIFY(!process->isRunning() || process->stop() == 0);
        QVERIFY(!QFile::exists(socketPath()) && !QFile::exists(socketPath() + QStringLiteral(".lock")));
    }

    void courseOfACall_data()
    {
        QTest::addColumn<bool>("isPlaced");
        QTest::addColumn<QByteArray>("events"); // Proceed, Answer, Hang up, Miss
        QTest::addColumn<QByteArray>("course");
        QTest::newRow("placed, to its natural end")
            << true << QByteArray("PPPP") << QByteArray("alerting connected ended - 3 1");
        QTest::newRow("placed, hung up while it alerts")
            << true << QByteArray("AMPMHA") << QByteArray("- - alerting - ended - 3 0");
        QTest::newRow("incoming, answered")
            << false << QByteArray("PAAMHM") << QByteArray("- connected - - ended - 1 1");
        QTest::newRow("incoming, turned down") << false << QByteArray("HA") << QByteArray("ended - 1 0");
        QTest::newRow("incoming, missed") << false << QByteArray("MHA") << QByteArray("missed - - 2 0");
    }
    void courseOfACall()
    {
        QFETCH(bool, isPlaced);
        QFETCH(QByteArray, events);
        using enum CallEvent;
        const std::map<char, CallEvent> names = {{'P', Proceed}, {'A', Answer}, {'H', HangUp}, {'M', Miss}};
        CallStateMachine machine = isPlaced ? CallStateMachine::placed() : CallStateMachine::incoming();
        QByteArray text;
        for (const char event : events)
            text += (machine.apply(names.at(event)) ? nameOf(machine.state()) : "-") + QByteArray(" ");
        QVERIFY(machine.isOver());
        text += QByteArray::number(machine.category()) + (machine.wasConnected() ? " 1" : " 0");
        QTEST(text, "course");
    }

    void reportsEachStateAndStoresTheCallFirst()
    {
        m_statuses->looksAtCalls = true;
        char number[] = "0301234";
        PHONE_MakeVoiceCall(number, QStringLiteral("Anna"), false, PHONE_MAKE_CALL_CLIR_T(0), 0);
        QTRY_COMPARE(m_statuses->count("44"), 4);
        static const QRegularExpression order(
            QStringLiteral("^44 44 34:0{7}10{8} 44 34:0{8}(?<seconds>\\w{8}) 33:0{8}\\k<seconds> 44$"));
        QVERIFY2(order.match(QString::fromLatin1(m_statuses->all())).hasMatch(), m_statuses->all());
        QCOMPARE(m_statuses->storedCalls, QByteArrayList({"3 0301234 Anna talked"}));
    }

    void carriesOutEveryRequestForACall()
    {
        restart(kForLong);
        PHONE_MakeVoiceCallPrependly("301234");
        QTRY_COMPARE(m_statuses->count("44"), 3);
        PHONE_MakeVoiceCallDirectly("112"); // the line is busy
        PHONE_DropPttCall();                // that is another call's
        PHONE_EndVoiceCall();
        QTRY_COMPARE(m_statuses->count("44"), 4);
        QCOMPARE(calls(), QByteArrayList({"3 0049301234  talked"}));

        PTT_CALL_INFO_T group;
        group.firstList[0] = QStringLiteral("4711");
        group.secondList[0] = QStringLiteral("Team");
        group.count = 2;
        PHONE_MakePttCall(group);
        QTRY_COMPARE(m_statuses->count("44"), 7);
        QCopChannel::send(zyn::kPttChannel, zyn::kMakePttCall.name, QByteArray(7, '\1'));
        PHONE_DropPttCall();
        QTRY_COMPARE(m_statuses->count("44"), 8);
        QCOMPARE(calls(), QByteArrayList({"3 4711 Team talked", "3 0049301234  talked"}));
        const QByteArray log = m_server.log();
        QVERIFY2(log.contains("not placed: the line is busy") && log.contains("not whole: ignored"), log);
    }

    void putsThePrefixBeforeNoEmergencyNumber()
    {
        QVERIFY(zyn::emergency::writeList({QStringLiteral("112")}));
        restart(QStringLiteral("--step 5 --prefix 0"));
        for (const char* number : {"112", "1120", "12"}) {
            const qsizetype before = m_statuses->count("44");
            PHONE_MakeVoiceCallPrependly(number);
            QTRY_COMPARE(m_statuses->count("44"), before + 4);
        }
        QCOMPARE(calls(), QByteArrayList({"3 112  talked", "3 01120  talked", "3 012  talked"}));
        QVERIFY(QFile::remove(QLatin1String(zyn::emergency::kListFile)));
    }

    void answersRequests()
    {
        PHONE_MsgClient requests;
        QCopChannel::send(zyn::kPhoneChannel, "PHONE_MSG_24", QByteArray(3, '\0')); // cut short: not answered
        requests.setFearureDBCurrLang(7);
        requests.resetTotalDuration(true);
        requests.resetTotalDuration(false);
        zyn::sendMessage(zyn::phoneMessage(PHONE_Msg::PHONE_MSG_RESET_TOTAL_DURATION_S), {9});
        requests.getTotalByteAndConnectedDuration();
        requests.setRFMode(false);
        QTRY_COMPARE(m_statuses->count("17:00000001"), 1);
        const UniqueFd fd = client(kRegisterJava + javaCall("0301"));
        QCOMPARE(replies(fd, 1), QList<int>({CallFailed}));
        requests.setRFMode(true);
        QTRY_COMPARE(m_statuses->count("17:00000001"), 2);
        QCOMPARE(m_statuses->all(), "26:00000001 36:0000000000000000 36:0000000100000000 36:0000000900000001 "
                                    "31:00000000000000000000000000000000 33:0000000000000000 "
                                    "17:00000001 17:00000001");
    }

    void repliesToItsClients_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("SIM toolkit") << kRegisterSim + kSimCall;
        QTest::newRow("Java") << kRegisterJava + javaCall("0301");
    }
    void repliesToItsClients()
    {
        QFETCH(QByteArray, bytes);
        const UniqueFd other = client(kRegisterJava);
        const UniqueFd fd = client(bytes);
        QCOMPARE(replies(fd, 4), QList<int>({CallDialing, CallAlerting, CallConnected, CallEnded}));
        QCOMPARE(calls(), QByteArrayList({"3 0301  talked"}));
        send(fd, frame(PHONE_VOICECALL_CMD_UNREGISTER));
        QVERIFY(isClosed(fd));
        send(other, javaCall("no number"));
        QCOMPARE(replies(other, 1), QList<int>({CallFailed}));
    }

    void onlyTheOwnerEndsItsCall()
    {
        restart(kForLong);
        const UniqueFd owner = client(kRegisterJava + javaCall("0301"));
        QCOMPARE(replies(owner, 3), QList<int>({CallDialing, CallAlerting, CallConnected}));
        const UniqueFd other = client(kRegisterJava + frame(PHONE_VOICECALL_CMD_END_CALL) + javaCall("0302"));
        QCOMPARE(replies(other, 1), QList<int>({CallFailed}));
        send(owner, frame(PHONE_VOICECALL_CMD_DIAL_EXTENSION, "5") + frame(PHONE_VOICECALL_CMD_END_CALL));
        QCOMPARE(replies(owner, 1), QList<int>({CallEnded}));
        QVERIFY(m_server.log().contains("call 1: extension 5\n"));
    }

    void closesTheConnectionThatSends_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("a call before it registers") << javaCall("0301");
        QTest::newRow("a kind unknown") << frame(PHONE_VOICECALL_CMD_REGISTER, words({2}));
        QTest::newRow("a registration twice") << kRegisterJava + kRegisterJava;
        QTest::newRow("the call of another kind") << kRegisterSim + javaCall("0301");
        QTest::newRow("a call one byte short") << kRegisterSim + frame(2, QByteArray(107, '1'));
        QTest::newRow("an extension of two bytes") << kRegisterJava + frame(4, "12");
        QTest::newRow("an unknown code") << kRegisterJava + frame(5);
        QTest::newRow("a negative length") << kRegisterJava + words({2, -1});
        QTest::newRow("noise") << QByteArray(50'000, '\xFF');
    }
    void closesTheConnectionThatSends()
    {
        QFETCH(QByteArray, bytes);
        QVERIFY(isClosed(client(bytes)));
        const QByteArray log = m_server.log();
        QVERIFY2(log.endsWith(": connection closed\n") && log.count('\n') == 1, log);
    }

    void dropsClientsThatKeepItWaiting()
    {
        restart(QStringLiteral("--patience 2000 --step 5"));
        const UniqueFd registered = client(kRegisterJava);
        const UniqueFd silent = client({});
        const UniqueFd stalled = client(kRegisterJava + javaCall("0301").chopped(1));
        QVERIFY(isClosed(silent) && isClosed(stalled));
        send(registered, javaCall("0301"));
        QCOMPARE(replies(registered, 1), QList<int>({CallDialing}));
    }

    void playsAScript()
    {
        const QString script = scriptFile("# a day\n\n+20 network 5 26201\nbattery-capacity 200\r\n"
                                          "service-name \"\"\n imsi 0aFF\nanswer\nincoming #31#30 \"A B\"\n"
                                          "incoming 0302\n +1 answer\nhangup\n+100 incoming 0303\nhangup\n"
                                          "+100 incoming +49304\n+1 missed\n+100 charger -1\n");
        restart(QStringLiteral("--script '%1'").arg(script));
        QTRY_COMPARE(m_statuses->count("5:ffffffff"), 1);
        QVERIFY2(m_statuses->all().startsWith("13:000000050000000a00320036003200300031 4:c8 14:00000000 27:0aff"
                                              + QByteArray(28, '0') + " 44 44 34:0000000100000000 44 34:"),
                 m_statuses->all());
        QCOMPARE(calls(), QByteArrayList({"2 0302  none", "1 #31#30 A B talked", "1 0303  none", "2 +49304  none"}));
        QVERIFY(m_server.log().contains("line 7 of the script means nothing now\n"));
    }

    void refusesAScriptThatIsWrong_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QByteArray>("error");
        const auto row = [](const char* text, const char* error) {
            QTest::newRow(text) << QByteArray(text) << QByteArray(error);
        };
        row("\n# fine\nbattery 80", "3: 'battery' is nothing that can happen");
        row("set-radio-mode 1", "1: 'set-radio-mode' is nothing that can happen");
        row("network 5", "1: it is 'network status id'");
        row("answer now", "1: it is 'answer'");
        row("incoming", "1: it is 'incoming number [name]'");
        row("incoming nobody", "1: 'nobody' is no number to call from");
        row("battery-capacity 256", "1: '256' is no whole number from 0 to 255");
        row("+%2 answer", "1: '%2' is no whole number from 0 to 2147483647");
        row("+5", "1: nothing happens after the delay");
        row("service-name \"Desk", "1: a quote is not closed");
        row("battery-capacity \x1B[31m", "1: '\\x1b[31m' is no whole number from 0 to 255");
        row("battery-capacity 5@", "1: '5\\x00' is no whole number from 0 to 255");
        row("imsi 123", "1: '123' is no pairs of hexadecimal digits, at most 16 of them");
    }
    void refusesAScriptThatIsWrong()
    {
        QFETCH(QByteArray, text);
        QFETCH(QByteArray, error);
        text.replace('@', '\0');
        const QString script = scriptFile(text);
        QProcess process;
        process.start(QStringLiteral(ZYN_PHONED), {QStringLiteral("--script"), script});
        QCOMPARE(role::finish(process), 2);
        QCOMPARE(process.readAllStandardError(), "zyn-phoned: " + script.toUtf8() + ':' + error + '\n');
    }

    void understandsTheExample()
    {
        restart(QStringLiteral("--script '" ZYN_DAY "/desk-day.script'"));
        QTRY_COMPARE(m_statuses->count("4:50"), 1);
    }

    void keepsTheLineFreeAndTheCallsInOrderWhenTheirServiceIs_data()
    {
        QTest::addColumn<int>("signal"); // 0 for none, and a service that has no room
        QTest::addColumn<bool>("isBackAsItWas");
        QTest::newRow("ended") << SIGTERM << false;
        QTest::newRow("hanging, and goes on") << SIGSTOP << true;
        QTest::newRow("hanging, and killed") << SIGSTOP << false;
        QTest::newRow("too busy for a connection") << 0 << false;
    }
    void keepsTheLineFreeAndTheCallsInOrderWhenTheirServiceIs()
    {
        QFETCH(int, signal);
        QFETCH(bool, isBackAsItWas);
        restart(kForLong);
        if (signal == SIGSTOP)
            m_recentCalls.tell(SIGSTOP);
        else
            QCOMPARE(m_recentCalls.stop(), 0);
        auto full = signal == 0 ? std::make_unique<FullService>() : nullptr;
        QByteArrayList expected;
        for (const char* number : {"0301", "112", "0303", "112"}) {
            const qsizetype before = m_statuses->count("44");
            PHONE_MakeVoiceCallDirectly(number);
            QTRY_COMPARE(m_statuses->count("44"), before + 3);
            PHONE_EndVoiceCall();
            QTRY_COMPARE(m_statuses->count("44"), before + 4);
            expected += QByteArray("3 ") + number + "  talked";
        }
        full.reset();
        if (isBackAsItWas) {
            m_recentCalls.tell(SIGCONT);
        } else {
            QVERIFY(!m_recentCalls.isRunning() || m_recentCalls.stop(SIGKILL) == -1);
            QVERIFY(m_recentCalls.start(ZYN_RECENTCALLD));
        }
        QTRY_COMPARE(calls(), expected);
    }

    void tellsOfEachCallThatNobodyTakes_data()
    {
        QTest::addColumn<int>("signal");
        QTest::addColumn<QByteArray>("told");
        QTest::newRow("of a service that has ended") << SIGTERM << QByteArray("never took ");
        QTest::newRow("of one that hangs") << SIGSTOP << QByteArray("was sent ");
    }
    void tellsOfEachCallThatNobodyTakes()
    {
        QFETCH(int, signal);
        QFETCH(QByteArray, told);
        m_recentCalls.tell(signal);
        QVERIFY(signal == SIGSTOP || m_recentCalls.finish() == 0);
        QByteArray script;
        QByteArrayList waiting;
        QByteArrayList expected;
        for (int number = 10; number < 30; ++number) {
            const QByteArray text = QByteArray::number(number);
            script += "incoming " + text + "\nmissed\n";
            waiting += "has not taken the call of list 2, type 1, number " + text;
            expected += told + "the call of list 2, type 1, number " + text;
        }
        restart(QStringLiteral("--script '%1'").arg(scriptFile(script + "incoming 30\nanswer\n")));
        expected += told + "the call of list 1, type 1, number 30";
        QVERIFY(m_server.waitLogged(waiting.last()));
        const QByteArray log = m_server.log();
        qsizetype position = 0;
        for (const QByteArray& text : waiting + expected) {
            position = log.indexOf(text, position);
            QVERIFY2(position >= 0, text + " in its place of " + log);
        }
        QCOMPARE(log.count("the call of list"), waiting.size() + expected.size());
        if (signal != SIGSTOP)
            return;
        // It finds them when it goes on.
        m_recentCalls.tell(SIGCONT);
        QTRY_COMPARE(calls().size(), expected.size());
    }

    void handsOverWhatWaitedWhenTheServiceIsBack()
    {
        QCOMPARE(m_recentCalls.stop(), 0);
        restart(QStringLiteral("--script '%1'").arg(scriptFile("incoming 1\nmissed\nincoming 2\nmissed\n")));
        QVERIFY(m_server.waitLogged("has not taken the call of list 2, type 1, number 2"));
        QVERIFY(m_recentCalls.start(ZYN_RECENTCALLD));
        QVERIFY(m_server.waitLogged("is back, and has taken the 2 calls that waited\n"));
        QCOMPARE(calls(), QByteArrayList({"2 1  none", "2 2  none"}));
    }

    void handsOverTheCallThatItsEndCuts()
    {
        restart(kForLong);
        PHONE_MakeVoiceCallDirectly("0301");
        QTRY_COMPARE(m_statuses->count("44"), 3);
        QCOMPARE(m_server.stop(SIGINT), 0);
        QCOMPARE(calls(), QByteArrayList({"3 0301  talked"}));
        QTRY_COMPARE(m_statuses->count("44"), 4);
    }

    void replacesWhatAnotherUserHasPutInItsPlace_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<std::function<void(const QByteArray&)>>("put");
        const auto row = [](const char* title, const char* name, const std::function<void(const QByteArray&)>& put) {
            QTest::newRow(title) << QByteArray(zyn::voicecall::kSocketPath) + name << put;
        };
        const auto directory = [](const QByteArray& path) { ::mkdir(path.constData(), 0777); };
        const auto fullDirectory = [](const QByteArray& path) {
            ::mkdir(path.constData(), 0777);
            ::mkdir((path + "/x").constData(), 0777);
        };
        const auto danglingLink = [](const QByteArray& path) { ::symlink("/tmp/nowhere", path.constData()); };
        row("a socket that is served", "",
            [this](const QByteArray& path) { m_foreign = zyn::posix::listenUnix(path, 0666); });
        row("a link to another service", "",
            [](const QByteArray& path) { ::symlink(zyn::recentcall::kSocketPath, path.constData()); });
        row("a link to nothing", "", danglingLink);
        row("a directory", "", directory);
        row("a directory with something in it", "", fullDirectory);
        row("a lock that is held", ".lock", [this](const QByteArray& path) { m_foreignLock.lock(path); });
        row("a link as the lock", ".lock", danglingLink);
        row("a directory as the lock", ".lock", directory);
        row("a pipe as the lock", ".lock", [](const QByteArray& path) { ::mkfifo(path.constData(), 0666); });
    }
    void replacesWhatAnotherUserHasPutInItsPlace()
    {
        QFETCH(QByteArray, name);
        QFETCH(std::function<void(const QByteArray&)>, put);
        QCOMPARE(m_server.log(), QByteArray());
        if (::seteuid(kSomebody) != 0)
            QSKIP("only root can play another user");
        put(name);
        QCOMPARE(::seteuid(0), 0);
        QCOMPARE(zyn::posix::ownerOf(name), std::optional(kSomebody));
        QVERIFY(m_server.start(ZYN_PHONED));
        QCOMPARE(replies(client(kRegisterSim + kSimCall), 1), QList<int>({CallDialing}));
        m_foreign.reset();
        m_foreignLock.unlock();
        QDir(QLatin1String(zyn::voicecall::kSocketDirectory)).removeRecursively();
        m_server.stop();
    }

    void tellsWhoDoesNotMakeWay_data()
    {
        QTest::addColumn<int>("mode"); // of the directory that somebody has made
        QTest::addColumn<bool>("hasLock");
        QTest::addColumn<QByteArray>("reason");
        const QByteArray directory = zyn::voicecall::kSocketDirectory;
        QTest::newRow("with the directory") << 0755 << false << "Permission denied: " + directory;
        QTest::newRow("with the lock") << 01777 << true
                                       << "Permission denied: " + directory + "/voicecall_interface.lock";
    }
    void tellsWhoDoesNotMakeWay()
    {
        QFETCH(int, mode);
        QFETCH(bool, hasLock);
        QFETCH(QByteArray, reason);
        QCOMPARE(m_server.log(), QByteArray());
        if (::geteuid() != 0)
            QSKIP("only root can play another user");
        const QByteArray directory = zyn::voicecall::kSocketDirectory;
        const QByteArray lock = zyn::voicecall::kSocketPath + QByteArray(".lock");
        if (hasLock)
            QVERIFY(QFile(QFile::decodeName(lock)).open(QIODevice::WriteOnly));
        QCOMPARE(::chmod(directory.constData(), mode_t(mode)), 0);
        // Who is root in name only may not, where nobody else is known.
        const bool isGivenAway = (!hasLock || ::chown(lock.constData(), kSomebody, kSomebody) == 0)
                                 && ::chown(directory.constData(), kSomebody, kSomebody) == 0;
        if (!isGivenAway) {
            QDir(QLatin1String(directory)).removeRecursively();
            QSKIP("only root can give a directory away");
        }
        QProcess server;
        server.setChildProcessModifier([] {
            if (::setuid(kNobody) != 0)
                ::_exit(EXIT_FAILURE);
        });
        server.start(QStringLiteral(ZYN_PHONED), QStringList());
        const int exitCode = role::finish(server);
        const QByteArray log = server.readAllStandardError();
        QDir(QLatin1String(directory)).removeRecursively();
        if (exitCode == -1)
            QSKIP("this user cannot start what is built here");
        QCOMPARE(exitCode, 1);
        QCOMPARE(log, "zyn-phoned: cannot listen on /tmp/zynphonecom/voicecall_interface: " + reason
                          + " is user 12345's, let that user or root remove it\n");
    }

    void stepsInForOneThatDiedButNotForALiveOne()
    {
        QProcess second;
        second.start(QStringLiteral(ZYN_PHONED), QStringList());
        QCOMPARE(role::finish(second), 1);
        QCOMPARE(m_server.stop(SIGKILL), -1);
        QVERIFY(m_server.start(ZYN_PHONED));
        QCOMPARE(replies(client(kRegisterSim + kSimCall), 1), QList<int>({CallDialing}));
    }
};

QTEST_GUILESS_MAIN(tst_PhoneServer)
#include "tst_PhoneServer.moc"
