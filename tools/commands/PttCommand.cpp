// zynphone ptt: requests to start and end push-to-talk calls.
#include "tools/commands/Commands.h"

#include "tools/commands/CallOptions.h"
#include "tools/commands/Candidates.h"
#include "tools/commands/MessageSending.h"
#include "tools/zynphone/Console.h"
#include "utility/PHONE_Ptt.h"
#include "utility/message/Message_p.h"

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

PTT_CALL_INFO_T pttCallFrom(const Invocation& invocation)
{
    const QStringList parties = invocation.arguments();
    if (parties.size() > kMaxPttParties)
        throw usageError(u"%1 parties; at most %2 fit"_s.arg(parties.size()).arg(int{kMaxPttParties}));
    PTT_CALL_INFO_T info;
    for (const QString& party : parties) {
        const qsizetype equals = party.indexOf(u'=');
        info.firstList[info.count] = callNumber(party.left(equals));
        if (equals >= 0)
            info.secondList[info.count] = party.mid(equals + 1);
        ++info.count;
    }
    info.firstValue = numberFrom(invocation, u"value1"_s, 0);
    info.secondValue = numberFrom(invocation, u"value2"_s, 0);
    return info;
}

ExitCode startCall(const Invocation& invocation, Console& console)
{
    const PTT_CALL_INFO_T info = pttCallFrom(invocation);
    requireChannel(kPttChannel);
    return sendOn(kPttChannel, console, [&] {
        if (PHONE_MakePttCall(info) == 0)
            throw failure(u"the library refuses the call"_s);
    });
}

ExitCode dropCall(const Invocation& /*invocation*/, Console& console)
{
    requireChannel(kPttChannel);
    return sendOn(kPttChannel, console, [] { PHONE_DropPttCall(); });
}

} // namespace

Command pttCommand()
{
    Command call{
        .name = u"call"_s,
        .summary = u"Ask the push-to-talk application for a call"_s,
        .details = u"\nWhat follows a number's '=' is its entry in the request's second list.\n"_s + sendingDetails(),
        .arguments = {{u"NUMBER[=TEXT]"_s,
                       u"a party, at most %1 of them; the number is %2"_s.arg(kMaxPttParties).arg(callNumberMeaning()),
                       Argument::Many}},
        .options = {valueOption(u"value1"_s, u"N"_s, u"the request's first value; 0 by default"_s),
                    valueOption(u"value2"_s, u"N"_s, u"the request's second value; 0 by default"_s)},
        .sources = {{u"NUMBER[=TEXT]"_s, callNumbers}},
        .run = startCall};
    Command drop{.name = u"drop"_s,
                 .summary = u"Ask the push-to-talk application to end the call"_s,
                 .details = sendingDetails(),
                 .run = dropCall};
    return {.name = u"ptt"_s, .summary = u"Push-to-talk calls"_s, .verbs = {std::move(call), std::move(drop)}};
}

} // namespace zyn::tool
