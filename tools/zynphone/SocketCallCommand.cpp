// zynphone java and stk: calls placed over a connection to the phone server.
#include "tools/zynphone/SocketCallCommand.h"

#include "handset/common/TerminationSignals.h"
#include "tools/zynphone/BlockText.h"
#include "tools/zynphone/CallInput.h"
#include "tools/zynphone/ConnectionWatch.h"
#include "tools/zynphone/Console.h"
#include "tools/zynphone/ServiceError.h"
#include "tools/zynphone/TimeLimit.h"
#include "tools/zynphone/Words.h"
#include "utility/PHONE_VoiceCallCommand_p.h"
#include "utility/PHONE_VoiceJava.h"
#include "utility/PHONE_VoiceSTK.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QScopeGuard>

#include <algorithm>
#include <array>
#include <cstdint>

using namespace Qt::StringLiterals;

namespace {

using namespace zyn::tool;

constexpr int kEnded = 5;
constexpr std::array<Word<int>, 4> kReplies{{
    {"dialing", 2},
    {"alerting", 3},
    {"connected", 4},
    {"ended", kEnded},
}};

/// Shows the server's replies until the call has ended.
class Replies
{
public:
    explicit Replies(Console& console)
        : m_console(console)
    {}

    void show(int code)
    {
        // More may come in the turn of the event loop that ends it.
        if (m_ended)
            return;
        m_console.write(wordFor(kReplies, code) + u'\n');
        m_ended = code == kEnded;
        if (m_ended || !m_console.isSound())
            QCoreApplication::quit();
    }

    bool haveEnded() const { return m_ended; }

private:
    Console& m_console;
    bool m_ended = false;
};

CommandError serverError()
{
    return serviceError(u"phone server"_s, zyn::voicecall::socketPath());
}

/// Lets the replies come in until the call, the connection or the time ends, or a signal does.
void follow(const Replies& replies, const TimeLimit& limit)
{
    const zyn::handset::TerminationSignals signalsThatEnd;
    const ConnectionWatch watch(zyn::voicecall::kSocketName);
    limit.start();
    QCoreApplication::exec();
    if (watch.isLost() && !replies.haveEnded())
        throw failure(u"the phone server closed the connection"_s);
}

/// Where the replies of the Java connection go, of which a process has one and whose callback takes nothing
/// else.
Replies* javaReplies = nullptr;

ExitCode callFromJava(const Invocation& call, Console& console)
{
    const QByteArray number = callNumber(call.argument(0)).toLatin1();
    const int value = call.isSet(u"value"_s) ? wholeNumber(call.value(u"value"_s), u"--value"_s) : 0;
    const TimeLimit limit(call);
    Replies replies(console);
    javaReplies = &replies;
    const int handle =
        PHONE_VoiceCall_Java_Init([](char code) { javaReplies->show(static_cast<uint8_t>(code)); });
    const auto disconnect = qScopeGuard([handle] { PHONE_VoiceCall_Java_DeInit(handle); });
    if (PHONE_VoiceCall_Java_MakeCall(handle, number.constData(), value) != 0)
        throw serverError();
    follow(replies, limit);
    if (!replies.haveEnded())
        PHONE_VoiceCall_Java_EndCall(handle);
    return Done;
}

PHONE_VoiceSTK_PARAMETER parameterFrom(const QString& text)
{
    PHONE_VoiceSTK_PARAMETER parameter = {};
    const QByteArray bytes = text.startsWith("hex:"_L1)
                                 ? blockFrom(text, u"parameter"_s, sizeof parameter.bytes)
                                 : callNumber(text).toLatin1();
    std::ranges::copy(bytes, parameter.bytes);
    return parameter;
}

ExitCode callFromSimToolkit(const Invocation& call, Console& console)
{
    PHONE_VoiceSTK_PARAMETER parameter = parameterFrom(call.argument(0));
    const TimeLimit limit(call);
    Replies replies(console);
    PHONE_VoiceSTK* const client = PHONE_VoiceSTK_Init();
    const auto disconnect = qScopeGuard([client] { PHONE_VoiceSTK_DeInit(client); });
    if (PHONE_VOICESTK_MakeCall(client, &parameter) != 0)
        throw serverError();
    QObject::connect(client, &PHONE_VoiceSTK::MessageReceived, client,
                     [&replies](int code, char* /*data*/) { replies.show(code); });
    follow(replies, limit);
    return Done;
}

QString details()
{
    return u"\nThe server's replies are shown as they come: dialing, alerting, connected, ended, or their "
           u"numbers. "
           "The verb\nends with the call, or with the connection, which is a failure, or on SIGINT or SIGTERM.\n"_s;
}

} // namespace

namespace zyn::tool {

Command javaCommand()
{
    Command call{
        .name = u"call"_s,
        .summary = u"Place a call as the Java runtime does, and end it when the time is over"_s,
        .details = details(),
        .arguments = {{u"NUMBER"_s, callNumberMeaning()}},
        .options = {valueOption(u"value"_s, u"N"_s, u"the number in front of the call's; 0 by default"_s),
                    TimeLimit::option()},
        .run = callFromJava};
    return {.name = u"java"_s, .summary = u"Calls of the Java runtime"_s, .verbs = {std::move(call)}};
}

Command stkCommand()
{
    Command call{.name = u"call"_s,
                 .summary = u"Place a call as the SIM-toolkit application does"_s,
                 .details = details(),
                 .arguments = {{u"PARAMETER"_s,
                                u"hex: and the block's %1 bytes, or the number that it begins with, %2"_s
                                    .arg(sizeof(PHONE_VoiceSTK_PARAMETER))
                                    .arg(callNumberMeaning())}},
                 .options = {TimeLimit::option()},
                 .run = callFromSimToolkit};
    return {.name = u"stk"_s, .summary = u"Calls that the SIM card sets up"_s, .verbs = {std::move(call)}};
}

} // namespace zyn::tool
