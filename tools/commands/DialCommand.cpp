// zynphone dial and hangup: requests to place and end voice calls.
#include "tools/commands/Commands.h"

#include "tools/commands/CallOptions.h"
#include "tools/commands/Candidates.h"
#include "tools/commands/MessageSending.h"
#include "tools/zynphone/Console.h"
#include "utility/PHONE_VoiceCall.h"
#include "utility/PHONE_VoiceCallSender.h"
#include "utility/message/Message_p.h"

#include <limits>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

struct Request
{
    QByteArray number;
    QString name; ///< null if not given
    bool flag;
    int clir;
    signed char line;
};

Request requestFrom(const Invocation& invocation)
{
    using Line = std::numeric_limits<signed char>;
    return {.number = callNumber(invocation.argument(0)).toLatin1(),
            .name = invocation.isSet(u"name"_s) ? callName(invocation.value(u"name"_s)) : QString(),
            .flag = invocation.isSet(u"flag"_s),
            .clir = numberFrom(invocation, u"clir"_s, 0),
            .line =
                static_cast<signed char>(numberFrom(invocation, u"line"_s, kDefaultLine, Line::min(), Line::max()))};
}

/// The one of --direct, --prepend and --mode that is set, or null.
QString wayFrom(const Invocation& invocation)
{
    QString way;
    for (const QString& option : {u"direct"_s, u"prepend"_s, u"mode"_s}) {
        if (!invocation.isSet(option))
            continue;
        if (!way.isNull())
            throw usageError(u"--%1 and --%2 exclude each other"_s.arg(way, option));
        way = option;
    }
    return way;
}

/// Rejects arguments that the entry point of @p way would silently ignore.
void refuseOptionsBesides(const QString& way, const Invocation& invocation)
{
    for (const QString& option : {u"name"_s, u"flag"_s, u"clir"_s, u"line"_s}) {
        if (invocation.isSet(option))
            throw usageError(u"--%1 takes no --%2"_s.arg(way, option));
    }
}

/// Places a call with a dial mode that has no entry point of its own.
void makeCall(const Request& request, int mode)
{
    if (!PHONE_VoiceCallSender().makeCall(request.number.constData(), request.name, request.flag, request.clir, mode,
                                          request.line))
        throw failure(u"cannot send on %1"_s.arg(QLatin1String(kVoiceCallChannel)));
}

ExitCode dial(const Invocation& invocation, Console& console)
{
    const QString way = wayFrom(invocation);
    if (way == "direct"_L1 || way == "prepend"_L1)
        refuseOptionsBesides(way, invocation);
    Request request = requestFrom(invocation);
    const int mode = numberFrom(invocation, u"mode"_s, 0);
    requireChannel(kVoiceCallChannel);
    return sendOn(kVoiceCallChannel, console, [&] {
        if (way == "direct"_L1)
            PHONE_MakeVoiceCallDirectly(request.number.constData());
        else if (way == "prepend"_L1)
            PHONE_MakeVoiceCallPrependly(request.number.constData());
        else if (way == "mode"_L1)
            makeCall(request, mode);
        else
            PHONE_MakeVoiceCall(request.number.data(), request.name, request.flag,
                                static_cast<PHONE_MAKE_CALL_CLIR_T>(request.clir), request.line);
    });
}

ExitCode hangUp(const Invocation& /*invocation*/, Console& console)
{
    requireChannel(kVoiceCallChannel);
    return sendOn(kVoiceCallChannel, console, [] { PHONE_EndVoiceCall(); });
}

} // namespace

Command dialCommand()
{
    return {.name = u"dial"_s,
            .summary = u"Ask the phone application for a voice call, which does not say what becomes of it"_s,
            .details =
                u"\n--direct, --prepend and --mode exclude each other; the first two go with no other option.\n"_s
                + sendingDetails(),
            .arguments = {{u"NUMBER"_s, callNumberMeaning()}},
            .options = {valueOption(u"name"_s, u"NAME"_s, callNameMeaning()),
                        valueOption(u"clir"_s, u"N"_s, u"restriction of the own number; 0 by default"_s),
                        valueOption(u"line"_s, u"N"_s, u"-128 to 127; %1 by default"_s.arg(kDefaultLine)),
                        flagOption(u"flag"_s, u"set the flag that the phone application gives its meaning"_s),
                        flagOption(u"direct"_s, u"dial the number unchanged (dial mode 1)"_s),
                        flagOption(u"prepend"_s, u"put the prefix in front (dial mode 2)"_s),
                        valueOption(u"mode"_s, u"N"_s, u"any dial mode; 0 by default"_s)},
            .sources = {{u"NUMBER"_s, callNumbers}},
            .run = dial};
}

Command hangupCommand()
{
    return {.name = u"hangup"_s,
            .summary = u"Ask the phone application to end the voice call"_s,
            .details = sendingDetails(),
            .run = hangUp};
}

} // namespace zyn::tool
