// zynphone prepend, radio and language: the set-up of calls and of the phone server.
#include "tools/commands/Commands.h"

#include "platform/CommandFrame_p.h"
#include "platform/QCopChannel.h"
#include "tools/commands/MessageSending.h"
#include "tools/zynphone/Console.h"
#include "tools/zynphone/SocketProbe.h"
#include "tools/zynphone/Table.h"
#include "utility/PHONE_Msg.h"
#include "utility/PHONE_Requests.h"
#include "utility/PHONE_Setup.h"
#include "utility/PHONE_VoiceCallProtocol_p.h"
#include "utility/message/PhoneMessages_p.h"

#include <QtCore/QEventLoop>
#include <QtCore/QTimer>

#include <functional>
#include <optional>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

ExitCode showPrepend(const Invocation& invocation, Console& console)
{
    const bool isOn = PHONE_Setup().isPrepend();
    printValue(console, isOn ? u"on"_s : u"off"_s, {{u"on"_s, isOn}}, invocation.isSet(u"json"_s));
    return Done;
}

template<bool on>
ExitCode setPrepend(const Invocation& /*invocation*/, Console& /*console*/)
{
    if (!PHONE_Setup().setPrepend(on))
        throw failure(u"the settings store did not take the switch"_s);
    return Done;
}

/// A request to the phone server that is answered by a message whose payload is one number.
class Question
{
public:
    /// Listens for the answer @p type from its construction on.
    explicit Question(PHONE_Msg::PHONE_MSG_TYPE_T type)
        : m_message(phoneMessage(type))
        , m_isHeard(isHeard(kPhoneChannel))
        , m_channel(kPhoneChannel)
    {
        if (!m_channel.isListening())
            throw failure(u"cannot listen on %1"_s.arg(QLatin1String(kPhoneChannel)));
        QObject::connect(&m_channel, &QCopChannel::received, &m_channel,
                         [this](const QCString& message, const QByteArray& payload) {
                             if (message == m_message.name)
                                 handle(payload);
                         });
    }

    /// Asks, and returns the number. Throws NobodyListens at once where nobody could answer.
    int ask(const std::function<void()>& request)
    {
        request();
        if (!m_isHeard)
            throw nobodyListens(kPhoneChannel);
        QTimer::singleShot(kCommandTimeout, &m_loop, &QEventLoop::quit);
        m_loop.exec();
        if (!m_number)
            throw noAnswer();
        return *m_number;
    }

private:
    /// Other programs listen on the channel, too: it is the phone server's socket that tells what is wrong.
    static CommandError noAnswer()
    {
        const QString server = u"phone server"_s;
        const QString path = QLatin1String(voicecall::kSocketPath);
        return SocketProbe::at(voicecall::kSocketPath).state == SocketProbe::Served ? noAnswerError(server, path)
                                                                                    : serviceError(server, path);
    }

    void handle(const QByteArray& payload)
    {
        if (!m_number)
            m_number = decode(m_message, payload)[0].number;
        m_loop.quit();
    }

    const PhoneMessage& m_message;
    const bool m_isHeard; ///< by somebody else than this object
    QCopChannel m_channel;
    QEventLoop m_loop;
    std::optional<int> m_number;
};

template<bool on>
ExitCode switchRadio(const Invocation& invocation, Console& console)
{
    const int result = Question(PHONE_Msg::PHONE_MSG_RET_SET_RFMOD_S).ask([] { PHONE_SetRFMode(on); });
    const bool isDone = result != 0;
    printValue(console, u"result %1: %2"_s.arg(QString::number(result), isDone ? u"done"_s : u"not done"_s),
               {{u"result"_s, result}, {u"done"_s, isDone}}, invocation.isSet(u"json"_s));
    return isDone ? Done : Failed;
}

ExitCode setLanguage(const Invocation& invocation, Console& console)
{
    const int language = wholeNumber(invocation.argument(0), u"N"_s);
    const int result =
        Question(PHONE_Msg::PHONE_MSG_RET_SET_FEATUREDB_LANG_S).ask([&] { PHONE_SetTAPILanguage(language); });
    printValue(console, u"result %1"_s.arg(result), {{u"result"_s, result}}, invocation.isSet(u"json"_s));
    return Done;
}

} // namespace

Command prependCommand()
{
    Command on{.name = u"on"_s, .summary = u"Switch it on"_s, .run = setPrepend<true>};
    Command off{.name = u"off"_s, .summary = u"Switch it off"_s, .run = setPrepend<false>};
    Command show{.name = u"show"_s,
                 .summary = u"Show whether it is on"_s,
                 .details = u"\nThe object of --json has the field on.\n"_s,
                 .options = {jsonOption()},
                 .run = showPrepend};
    return {.name = u"prepend"_s,
            .summary = u"The switch that has a prefix put in front of dialed numbers"_s,
            .verbs = {std::move(on), std::move(off), std::move(show)}};
}

Command radioCommand()
{
    const QString details = u"\nThe object of --json has the fields result and done.\n"_s + sendingDetails();
    Command on{.name = u"on"_s,
               .summary = u"Ask the phone server to switch it on"_s,
               .details = details,
               .options = {jsonOption()},
               .run = switchRadio<true>};
    Command off{.name = u"off"_s,
                .summary = u"Ask the phone server to switch it off"_s,
                .details = details,
                .options = {jsonOption()},
                .run = switchRadio<false>};
    return {.name = u"radio"_s,
            .summary = u"The radio, whose switch answers with a result; 0 is failure"_s,
            .verbs = {std::move(on), std::move(off)}};
}

Command languageCommand()
{
    return {.name = u"language"_s,
            .summary = u"Tell the phone server the current language, and show its result"_s,
            .details = u"\nThe object of --json has the field result.\n"_s + sendingDetails(),
            .arguments = {{u"N"_s, u"the language, as the telephony platform counts them"_s}},
            .options = {jsonOption()},
            .run = setLanguage};
}

} // namespace zyn::tool
