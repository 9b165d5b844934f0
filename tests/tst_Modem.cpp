// The phone server on a real telephony stack: scripts/with-modem runs this beside the stack, with a modem that is
// steered.
#include "handset/phone_server/PhoneControl.h"
#include "platform/HandsetState_p.h"
#include "platform/Socket_Command.h"
#include "tests/support/PhoneClients.h"
#include "tests/support/Process.h"
#include "tests/support/Scenario.h"
#include "tests/support/SocketClient.h"
#include "tests/support/StoreFixture.h"
#include "utility/PHONE_EmergencyList_p.h"
#include "utility/PHONE_Ptt.h"
#include "utility/PHONE_VoiceCall.h"
#include "utility/message/Payload_p.h"
#include "utility/message/PhoneMessages_p.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

#include <algorithm>
#include <array>
#include <set>

#include <sys/socket.h>

using namespace Qt::StringLiterals;
using zyn::posix::UniqueFd;

namespace {

using Messages = PHONE_Msg::PHONE_MSG_TYPE_T;

/// Steers the modem and what is around it, one line at a time.
class ModemControl
{
public:
    ModemControl()
        : m_fd(zyn::posix::connectUnix(qgetenv("ZYN_MODEM_CONTROL"), std::chrono::milliseconds(role::kTimeout)))
    {}

    /// The lines of the answer; its last one, if it is an error. Events go on meanwhile: a message that this process
    /// does not take might hold up the phone server.
    QStringList say(const QString& line)
    {
        send(m_fd, line.toUtf8() + '\n');
        QByteArray answer;
        const auto isWhole = [&] {
            std::array<char, 4096> part = {};
            const ssize_t length = ::recv(m_fd.get(), part.data(), part.size(), MSG_DONTWAIT);
            answer.append(part.data(), std::max<ssize_t>(length, 0));
            return length == 0 || answer.endsWith("\nok\n") || answer == "ok\n"
                   || (answer.endsWith('\n') && answer.contains("error "));
        };
        QStringList lines{u"error no answer"_s};
        if (QTest::qWaitFor(isWhole, 2 * role::kTimeout))
            lines = QString::fromUtf8(answer).split(u'\n', Qt::SkipEmptyParts);
        if (!lines.isEmpty() && lines.last() == u"ok")
            lines.removeLast();
        return lines;
    }

private:
    UniqueFd m_fd;
};

/// Records the status messages, by their words: the last values, and how many there were.
class Statuses : public QCopChannel
{
public:
    Statuses()
        : QCopChannel(zyn::kPhoneChannel)
    {}
    void receive(const QCString& message, const QByteArray& data) override
    {
        const zyn::PhoneMessage* const type = zyn::phoneMessage(message);
        if (!type || !type->isStatus())
            return;
        Told& told = m_told[QString::fromLatin1(type->word)];
        const QString values = valuesIn(*type, data);
        if (isState(*type) && told.count > 0 && told.values == values)
            m_repeated += QString::fromLatin1(type->word) + u' ' + values;
        told = {values, told.count + 1};
    }
    /// The last values; of an event, which has none, how often it has come.
    QString values(const QString& word) const
    {
        const Told told = m_told.value(word);
        if (told.count == 0)
            return u"never told"_s;
        return told.values.isEmpty() ? QString::number(told.count) : told.values;
    }
    /// States that were told although nothing had changed.
    QStringList repeated() const { return m_repeated; }
    /// Who tells them has ended, and tells all again when it is back.
    void forget() { m_told.clear(); }

private:
    struct Told
    {
        QString values;
        int count = 0;
    };

    /// Whether it tells a state, and no event, answer or sum.
    static bool isState(const zyn::PhoneMessage& type)
    {
        const QByteArrayView word(type.word);
        return type.fields.size() > 0 && !word.endsWith("-result") && !word.endsWith("-duration");
    }
    static QString valuesIn(const zyn::PhoneMessage& type, const QByteArray& data)
    {
        const zyn::FieldValues values = zyn::decode(type, data);
        QStringList texts;
        for (qsizetype index = 0; index < values.list.size(); ++index) {
            const auto kind = type.fields.begin()[index].kind;
            const zyn::FieldValue& value = values.list[index];
            if (kind == zyn::FieldKind::Text)
                texts += u'"' + value.text + u'"';
            else if (kind == zyn::FieldKind::Raw)
                texts += u'"' + QString::fromLatin1(value.bytes).remove(QChar()) + u'"';
            else
                texts += QString::number(value.number);
        }
        return texts.join(u' ');
    }

    QMap<QString, Told> m_told;
    QStringList m_repeated;
};

/// What the phone server answers to @p command on its control socket.
struct Answer
{
    int code = -1;
    QByteArray data;
};

Answer ask(zyn::phonecontrol::Command command, const QStringList& words = {})
{
    QByteArray data;
    for (const QString& word : words)
        data += word.toUtf8() + '\0';
    const UniqueFd fd = connectAndSend(zyn::phonecontrol::socketPath(), frame(command, data));
    const std::unique_ptr<UTIL_CommandBody> answer(Socket_ReadCommand(fd.get()));
    if (!answer)
        return {};
    const std::span<std::byte> bytes = zyn::commandData(*answer);
    return {answer->commandId, QByteArray(reinterpret_cast<const char*>(bytes.data()), std::ssize(bytes))};
}

/// Why @p command was refused, or nothing.
QString refusal(zyn::phonecontrol::Command command, const QStringList& words)
{
    const Answer answer = ask(command, words);
    return answer.code == zyn::phonecontrol::Done ? QString() : QString::fromUtf8(answer.data);
}

/// The calls on the line: direction, state and number of each.
QString line()
{
    QStringList texts;
    for (const QJsonValue call : QJsonDocument::fromJson(ask(zyn::phonecontrol::ListCalls).data).array())
        texts += QStringList{call[u"direction"].toString(), call[u"state"].toString(), call[u"number"].toString()}
                     .join(u' ')
                     .trimmed();
    return texts.join(u", ");
}

/// What is known of the modem.
QString modemIs(const QString& field)
{
    const QJsonObject known = QJsonDocument::fromJson(ask(zyn::phonecontrol::AskModem).data).object();
    return known.value(field).toVariant().toString();
}

/// What the library is told of the platform: sim-card, phone-system, fixed-dialing.
QString stateOf(const QString& name)
{
    const auto* const state = std::ranges::find_if(
        zyn::handset::kStates, [&](const auto& known) { return name == QLatin1String(known.name); });
    return QString::number(zyn::handset::readState(*state));
}

/// What ends what a scenario has begun, where no daemon needs to be started anew.
constexpr const char* kCalm[] = {"no-faults", "remote-hangup", "register home", "strength 64", "battery 80", "forget"};
/// The first words of lines after which they are.
const QStringList kBreaking{u"bus"_s, u"card"_s, u"daemon"_s, u"fault"_s,  u"operator"_s,
                            u"pin"_s, u"puk"_s,  u"sim"_s,    u"unplug"_s, u"vanish"_s};

} // namespace

class tst_Modem : public QObject
{
    Q_OBJECT

private:
    const QString m_stack = qEnvironmentVariable("ZYN_MODEM_STACK");
    std::optional<ModemControl> m_modem;
    std::optional<StoreFixture> m_files;
    std::optional<Statuses> m_statuses;
    ServiceProcess m_recentCalls;
    ServiceProcess m_server;
    PhoneClients m_clients;
    bool m_isBroken = false;

    QString steer(const QStringList& words)
    {
        m_isBroken = m_isBroken || kBreaking.contains(words.first());
        return m_modem->say(words.join(u' ')).join(u'|');
    }
    bool startServer(const QString& stack)
    {
        QCoreApplication::processEvents(); // the last words of the former one
        m_statuses->forget();
        return m_server.start(ZYN_PHONED, u"--modem "_s + stack);
    }
    /// ModemManager is given the modem anew, where no signal tells what has become of it.
    QString notice() { return m_stack == u"ofono" ? QString() : steer({u"daemon"_s, u"ready"_s}); }
    QString calm()
    {
        if (std::exchange(m_isBroken, false))
            return m_modem->say(u"reset"_s).join(u'|');
        for (const char* line : kCalm)
            m_modem->say(QLatin1String(line));
        return {};
    }
    scenario::Verbs verbs();

private Q_SLOTS:
    void initTestCase()
    {
        if (m_stack.isEmpty())
            QSKIP("this runs beside a telephony stack: scripts/with-modem ofono -- tst_Modem");
        m_modem.emplace();
    }
    void init()
    {
        m_files.emplace();
        QVERIFY(m_recentCalls.start(ZYN_RECENTCALLD));
        m_statuses.emplace();
        QVERIFY(startServer(m_stack));
        QTRY_COMPARE_WITH_TIMEOUT(modemIs(u"obstacle"_s), QString(), role::kTimeout);
    }
    void cleanup()
    {
        m_clients.clear();
        const bool hasEnded = !m_server.isRunning() || m_server.stop() == 0;
        if (QTest::currentTestFailed() || !hasEnded)
            qInfo("%s", m_server.logged().constData());
        QCOMPARE(calm(), QString());
        QVERIFY(hasEnded);
        QVERIFY(m_recentCalls.stop() == 0);
        QCOMPARE(m_statuses->repeated().join(u", "), QString());
    }

    void carriesCalls_data() { scenario::addRows(QFINDTESTDATA("data/modem.txt")); }
    void carriesCalls() { scenario::play(verbs()); }

    void doesWhatOnlyThisStackDoes_data() { scenario::addRows(QFINDTESTDATA(u"data/modem_%1.txt"_s.arg(m_stack))); }
    void doesWhatOnlyThisStackDoes() { scenario::play(verbs()); }
};

/// The words of the scenarios.
scenario::Verbs tst_Modem::verbs()
{
    using Words = const QStringList&;
    using namespace zyn::phonecontrol;
    const auto text = [](Words w) { return w.join(u' '); };
    scenario::Verbs all{
        // The modem, and the stack.
        {u"modem"_s, [this](Words w) { return steer(w); }},
        {u"strength"_s, [this](Words w) { m_modem->say(u"strength "_s + w[0]); }},
        {u"sees"_s, [=, this](Words w) { return m_modem->say(u"await '%1' 20000"_s.arg(text(w))).join(u'|'); }},
        {u"notice"_s, [this] { return notice(); }},
        // The phone server.
        {u"restart"_s, [this](Words w) { return m_server.stop() == 0 && startServer(w.value(0, m_stack)); }},
        {u"stop"_s, [this] { return m_server.stop(); }},
        {u"logged"_s, [=, this](Words w) { return m_server.logged().count(scenario::bytes(text(w))); }},
        {u"line"_s, [] { return line(); }},
        {u"is"_s, [](Words w) { return modemIs(w[0]); }},
        {u"phone"_s, [](Words w) { return refusal(Say, w); }},
        {u"unlock"_s, [](Words w) { return refusal(Unlock, w); }},
        // Requests, and what is told.
        {u"dial"_s,
         [](Words w) {
             QByteArray number = w[0].toLatin1();
             PHONE_MakeVoiceCall(number.data(), {}, false, PHONE_MAKE_CALL_CLIR_T(w.value(1).toInt()), 0);
         }},
        {u"hang-up"_s, [] { PHONE_EndVoiceCall(); }},
        {u"ptt"_s,
         [](Words w) {
             PTT_CALL_INFO_T group;
             group.firstList[0] = w[0];
             group.count = 2;
             PHONE_MakePttCall(group);
         }},
        {u"radio"_s,
         [](Words w) {
             zyn::sendMessage(zyn::phoneMessage(Messages::PHONE_MSG_SET_RFMOD_S), {w[0] == u"on" ? 1 : 0});
         }},
        {u"language"_s,
         [](Words w) {
             zyn::sendMessage(zyn::phoneMessage(Messages::PHONE_MSG_SET_FEATUREDB_LANG_S), {w[0].toInt()});
         }},
        {u"status"_s, [this](Words w) { return m_statuses->values(w[0]); }},
        {u"state"_s, [](Words w) { return stateOf(w[0]); }},
        {u"emergency-numbers"_s, [] { return zyn::emergency::readList().join(u' '); }},
    };
    all.merge(clientVerbs(m_clients));
    return all;
}

QTEST_GUILESS_MAIN(tst_Modem)
#include "tst_Modem.moc"
