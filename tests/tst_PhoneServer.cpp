// The phone server, run as the process that it is beside a real recent-call service.
#include "handset/phone_server/Call.h"
#include "handset/phone_server/PhoneControl.h"
#include "platform/Socket_Command.h"
#include "platform/posix/FileLock_p.h"
#include "platform/posix/File_p.h"
#include "tests/support/PhoneClients.h"
#include "tests/support/Process.h"
#include "tests/support/Scenario.h"
#include "tests/support/SocketClient.h"
#include "tests/support/StoreFixture.h"
#include "tests/support/Timeout.h"
#include "utility/PHONE_EmergencyList_p.h"
#include "utility/PHONE_MsgClient.h"
#include "utility/PHONE_Ptt.h"
#include "utility/PHONE_VoiceCall.h"
#include "utility/message/PhoneMessages_p.h"

#include <QtCore/QDir>

#include <algorithm>

#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace zyn::voicecall;
using zyn::handset::CallEnd;
using zyn::handset::CallEvent;
using zyn::handset::CallState;
using zyn::handset::CallStateMachine;
using zyn::posix::Clock;
using zyn::posix::UniqueFd;

namespace {

constexpr uid_t kSomebody = 12345;

/// The next @p count answers of the control socket: code, and data but for the time.
QString answers(const UniqueFd& fd, int count)
{
    QStringList texts;
    while (texts.size() < count) {
        const std::unique_ptr<UTIL_CommandBody> answer(Socket_ReadCommand(fd.get()));
        const std::span<std::byte> data = answer ? zyn::commandData(*answer) : std::span<std::byte>();
        const QString text = QString::fromUtf8(QByteArrayView(data.data(), std::ssize(data)));
        static const QRegularExpression time(u",\"since\":\"[^\"]*\""_s);
        texts += QString::number(answer ? answer->commandId : -1) + QString(text).remove(time);
    }
    return texts.join(u' ');
}

/// What a call does at each of @p events: Proceed, Answer, Hang up, Miss, Fail; h: it is held, as a modem says.
QString courseOf(CallStateMachine machine, const QString& events)
{
    using enum CallEvent;
    const std::map<QChar, CallEvent> names = {
        {u'P', Proceed}, {u'A', Answer}, {u'H', HangUp}, {u'M', Miss}, {u'F', Fail}};
    QString text;
    for (const QChar event : events)
        text += (event == u'h' ? machine.reach(CallState::Held) : machine.apply(names.at(event)))
                    ? QLatin1String(nameOf(machine.state())) + u' '
                    : u"- "_s;
    const QString end = machine.isOver() ? machine.wasConnected() ? u" talked"_s : u" none"_s : u" goes on"_s;
    return text + QString::number(machine.category()) + end;
}

/// What becomes of a call that a modem tells of, first in a state, then in others, and how it is ended: by a letter
/// each.
QString courseTold(const QString& letters)
{
    using enum CallState;
    const std::map<QChar, CallState> states = {{u'D', Dialing}, {u'A', Alerting},  {u'R', Ringing},
                                               {u'W', Waiting}, {u'C', Connected}, {u'H', Held}};
    const std::map<QChar, CallEnd> ends = {{u'h', CallEnd::Here}, {u't', CallEnd::There}, {u'n', CallEnd::Network}};
    auto machine = CallStateMachine::foundIn(states.at(letters[0]));
    QString text;
    for (const QChar letter : letters.mid(1)) {
        const bool isEnd = ends.contains(letter);
        const bool isTaken = machine.reach(isEnd ? machine.stateAfter(ends.at(letter)) : states.at(letter));
        text += isTaken ? QLatin1String(nameOf(machine.state())) + u' ' : u"- "_s;
    }
    return text + QString::number(machine.category()) + (machine.wasConnected() ? u" talked"_s : u" none"_s);
}

void callGroup(const QString& number, const QString& name)
{
    PTT_CALL_INFO_T group;
    group.firstList[0] = number;
    group.secondList[0] = name;
    group.count = 2;
    PHONE_MakePttCall(group);
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
    PhoneClients m_clients;
    std::unique_ptr<FullService> m_full;
    UniqueFd m_foreign; ///< what another user holds
    zyn::posix::FileLock m_foreignLock;

    bool restart(const QString& options) { return m_server.log().isEmpty() && m_server.start(ZYN_PHONED, options); }
    /// The file of a script, of which "|" ends a line.
    QString scriptFile(const QString& text) const
    {
        QFile file(m_files->path() + u"/script"_s);
        const QByteArray lines = scenario::bytes(text).replace('|', '\n');
        if (!file.open(QIODevice::WriteOnly) || file.write(lines) != lines.size())
            qFatal("cannot write the script");
        return file.fileName();
    }
    bool play(const QString& script) { return restart(u"--script '%1'"_s.arg(scriptFile(script))); }
    /// What it says of a script that is wrong.
    QString refuse(const QString& text) const
    {
        const QString script = scriptFile(text);
        QProcess process;
        process.start(QStringLiteral(ZYN_PHONED), {u"--script"_s, script});
        const int code = role::finish(process);
        QString said = QString::fromUtf8(process.readAllStandardError()).trimmed();
        return code == 2 ? said.remove(u"zyn-phoned: "_s + script + u':') : u"exit code %1: "_s.arg(code) + said;
    }
    /// Calls each number, and hangs up when it is connected.
    bool talk(const QStringList& numbers)
    {
        const auto comes = [this](qsizetype count) {
            return QTest::qWaitFor([&] { return m_statuses->count("44") >= count; }, role::kTimeout);
        };
        return std::ranges::all_of(numbers, [&](const QString& number) {
            const qsizetype before = m_statuses->count("44");
            PHONE_MakeVoiceCallDirectly(qPrintable(number));
            const bool isConnected = comes(before + 3);
            PHONE_EndVoiceCall();
            return isConnected && comes(before + 4);
        });
    }
    /// Whether a new server takes a call, where another user has put something in its place.
    bool replaces(const QString& name)
    {
        const QByteArray path = zyn::voicecall::kSocketPath + name.toLatin1();
        const bool isForeign = zyn::posix::ownerOf(path) == std::optional(kSomebody);
        const bool isServed = m_server.start(ZYN_PHONED);
        const UniqueFd fd = connectAndSend(socketPath(), frame(PHONE_VOICECALL_CMD_REGISTER, words({SimToolkit}))
                                                             + frame(PHONE_VOICECALL_CMD_MAKE_CALL, simCall("0301")));
        const bool isTaken = replies(fd, 1) == u"dialing";
        m_foreign.reset();
        m_foreignLock.unlock();
        clearDirectory();
        m_server.stop();
        return isForeign && isServed && isTaken;
    }
    static bool clearDirectory() { return QDir(QLatin1String(zyn::voicecall::kSocketDirectory)).removeRecursively(); }
    scenario::Verbs verbs();

private Q_SLOTS:
    void init()
    {
        m_files.emplace();
        QVERIFY(m_recentCalls.start(ZYN_RECENTCALLD));
        QVERIFY(m_server.start(ZYN_PHONED, u"--step 5"_s));
        m_statuses.emplace();
    }
    void cleanup()
    {
        m_clients.clear();
        m_recentCalls.tell(SIGCONT);
        for (ServiceProcess* process : {&m_server, &m_recentCalls})
            QVERIFY(!process->isRunning() || process->stop() == 0);
        for (const QString& path : {socketPath(), zyn::phonecontrol::socketPath()})
            QVERIFY(!QFile::exists(path) && !QFile::exists(path + u".lock"_s));
    }

    void carriesCalls_data() { scenario::addRows(QFINDTESTDATA("data/phone_server.txt")); }
    void carriesCalls()
    {
        QFETCH(QStringList, steps);
        // Who is root in name only may not give a file away where nobody else is known, and others may not start what
        // is built in a home of one's own.
        qputenv("DAY", ZYN_DAY);
        qputenv("PHONED", ZYN_PHONED);
        const QString folder = m_files->path();
        if (steps.contains(u"as root"_s)
            && !scenario::shell(folder, {u"touch x && chown 12345 x && setpriv --reuid 65534 test -x $PHONED"_s,
                                         u"||"_s, u"echo no"_s})
                    .isEmpty())
            QSKIP("only root can play another user");
        scenario::play(verbs());
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
        requests.setRFMode(true);
        QTRY_COMPARE(m_statuses->count("17:00000001"), 2);
        QCOMPARE(m_statuses->all(), "26:00000001 36:0000000000000000 36:0000000100000000 36:0000000900000001 "
                                    "31:00000000000000000000000000000000 33:0000000000000000 "
                                    "17:00000001 17:00000001");
    }

    void takesTurnsWithClientsThatFlood_data()
    {
        QTest::addColumn<bool>("isOpen");
        QTest::newRow("beside a client that is connected") << true;
        QTest::newRow("beside one that comes meanwhile") << false;
    }
    void takesTurnsWithClientsThatFlood()
    {
        QFETCH(bool, isOpen);
        constexpr int kFlood = 200; // so many answers wait in a socket
        const QByteArray list = frame(zyn::phonecontrol::ListCalls);
        const auto connectedClient = [&] {
            UniqueFd fd = connectAndSend(zyn::phonecontrol::socketPath(), list);
            return answers(fd, 1) == u"3[]" ? std::move(fd) : UniqueFd();
        };
        std::vector<UniqueFd> flooders(20);
        std::ranges::generate(flooders, connectedClient);
        UniqueFd honest = isOpen ? connectedClient() : UniqueFd();

        m_server.tell(SIGSTOP);
        for (const UniqueFd& flooder : flooders)
            QVERIFY(send(flooder, list.repeated(kFlood)));
        if (!isOpen)
            honest = connectAndSend(zyn::phonecontrol::socketPath(), {});
        QVERIFY(send(honest, frame(zyn::phonecontrol::Say, QByteArray("incoming\0000301", 14))));
        m_server.tell(SIGCONT);

        QCOMPARE(answers(honest, 1), u"1");
        for (const UniqueFd& flooder : flooders) {
            // Its commands that were executed before the call came in list no call.
            const auto before = answers(flooder, kFlood).count(u"[]");
            QVERIFY2(before < kFlood / 10, qPrintable(QString::number(before)));
        }
    }

    void tellsOfEachCallThatNobodyTakes_data()
    {
        QTest::addColumn<int>("signal");
        QTest::addColumn<QByteArray>("told");
        QTest::newRow("of a service that has ended") << SIGTERM << QByteArray("never accepted ");
        QTest::newRow("of one that hangs") << SIGSTOP << QByteArray("has not read ");
    }
    void tellsOfEachCallThatNobodyTakes()
    {
        QFETCH(int, signal);
        QFETCH(QByteArray, told);
        m_recentCalls.tell(signal);
        QVERIFY(signal == SIGSTOP || m_recentCalls.finish() == 0);
        QString script;
        QByteArrayList waiting;
        QByteArrayList expected;
        for (int number = 10; number < 30; ++number) {
            const QByteArray text = "the call of list 2, type 1, number " + QByteArray::number(number);
            script += u"incoming %1|missed|"_s.arg(number);
            waiting += "has not accepted " + text;
            expected += told + text;
        }
        QVERIFY(play(script + u"incoming 30|answer|"_s));
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
};

/// The words of the scenarios.
scenario::Verbs tst_PhoneServer::verbs()
{
    using Words = const QStringList&;
    const auto text = [](Words w) { return w.join(u' '); };
    scenario::Verbs all{
        {u"as"_s, [] {}},
        {u"placed"_s, [](Words w) { return courseOf(CallStateMachine::placed(), w[0]); }},
        {u"incoming"_s, [](Words w) { return courseOf(CallStateMachine::incoming(), w[0]); }},
        {u"told"_s, [](Words w) { return courseTold(w[0]); }},
        // The server, and the recent-call service.
        {u"start"_s, [this](Words w) { return m_server.start(ZYN_PHONED, w.join(u' ')); }},
        {u"restart"_s, [=, this](Words w) { return restart(text(w)); }},
        {u"play"_s, [=, this](Words w) { return play(text(w)); }},
        {u"refuse"_s, [=, this](Words w) { return refuse(text(w)); }},
        {u"stop"_s, [this] { return m_server.stop(); }},
        {u"interrupt"_s, [this] { return m_server.stop(SIGINT); }},
        {u"kill"_s, [this] { return m_server.stop(SIGKILL); }},
        {u"logged"_s, [=, this](Words w) { return m_server.logged().count(scenario::bytes(text(w))); }},
        {u"recents-start"_s, [this] { return m_recentCalls.start(ZYN_RECENTCALLD); }},
        {u"recents-stop"_s, [this] { return m_recentCalls.stop(); }},
        {u"recents-kill"_s, [this] { return m_recentCalls.stop(SIGKILL); }},
        {u"recents-hang"_s, [this] { m_recentCalls.tell(SIGSTOP); }},
        {u"recents-go-on"_s, [this] { m_recentCalls.tell(SIGCONT); }},
        {u"recents-fill"_s, [this] { m_full = std::make_unique<FullService>(); }},
        {u"recents-empty"_s, [this] { m_full.reset(); }},
        // Requests, and what comes of them.
        {u"dial"_s, [](Words w) { PHONE_MakeVoiceCallDirectly(qPrintable(w[0])); }},
        {u"dial-prefixed"_s, [](Words w) { PHONE_MakeVoiceCallPrependly(qPrintable(w[0])); }},
        {u"hang-up"_s, [] { PHONE_EndVoiceCall(); }},
        {u"talk"_s, [this](Words w) { return talk(w); }},
        {u"ptt"_s, [](Words w) { return callGroup(w[0], w[1]); }},
        {u"ptt-end"_s, [] { PHONE_DropPttCall(); }},
        {u"ptt-broken"_s,
         [] { return QCopChannel::send(zyn::kPttChannel, zyn::kMakePttCall.name, QByteArray(7, '\1')); }},
        {u"radio"_s, [](Words w) { PHONE_MsgClient().setRFMode(w[0] == u"on"); }},
        {u"changes"_s, [this] { return m_statuses->count("44"); }},
        {u"status"_s, [this](Words w) { return m_statuses->count(w[0].toLatin1()); }},
        {u"statuses"_s, [this] { return QString::fromLatin1(m_statuses->all()); }},
        {u"emergency"_s, [](Words w) { return zyn::emergency::writeList(w); }},
        {u"sh"_s, [](Words w) { return scenario::shell(QLatin1String(zyn::voicecall::kSocketDirectory), w); }},
        {u"foreign-socket"_s, [this] { m_foreign = zyn::posix::listenUnix(zyn::voicecall::kSocketPath, 0666); }},
        {u"foreign-lock"_s, [this] { m_foreignLock.lock(QByteArray(zyn::voicecall::kSocketPath) + ".lock"); }},
        {u"replaces"_s, [this](Words w) { return replaces(w.value(0)); }},
        {u"clear"_s, [] { return clearDirectory(); }},
        // Clients of its sockets.
        {u"control"_s, [this](Words w) { m_clients[w[0]] = connectAndSend(zyn::phonecontrol::socketPath(), {}); }},
        {u"answers"_s, [this](Words w) { return answers(m_clients.at(w[0]), w[1].toInt()); }},
        {u"raw"_s, [this](Words w) { send(m_clients.at(w[0]), scenario::bytes(w[1])); }},
    };
    all.merge(clientVerbs(m_clients));
    return all;
}

QTEST_GUILESS_MAIN(tst_PhoneServer)
#include "tst_PhoneServer.moc"
