// zynphone replay: sends the messages of a recording again.
#include "tools/commands/Commands.h"

#include "handset/common/TerminationSignals.h"
#include "tools/commands/MessageSending.h"
#include "tools/recording/Replay.h"
#include "tools/recording/Requests.h"
#include "tools/zynphone/Console.h"
#include "tools/zynphone/Text.h"

#include <QtCore/QMap>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

constexpr char kMaxSpeed[] = "max";
constexpr double kSlowest = 0.001;
constexpr double kFastest = 1'000'000;

double speedFrom(const Invocation& invocation)
{
    if (!invocation.isSet(u"speed"_s))
        return 1;
    const QString text = invocation.value(u"speed"_s);
    if (text == QLatin1String(kMaxSpeed))
        return Replay::kNoPauses;
    bool ok = false;
    const double speed = text.toDouble(&ok);
    if (!ok || !(speed == Replay::kNoPauses || (speed >= kSlowest && speed <= kFastest)))
        throw usageError(u"--speed '%1' is not a number from %2 to %3, 0 or max"_s.arg(
            text, QString::number(kSlowest), QString::number(kFastest, 'f', 0)));
    return speed;
}

/// "1 of 15 messages was sent".
QString sentOf(const Replay& replay)
{
    return u"%1 of %2 %3 sent"_s.arg(QString::number(replay.sent()), counted(replay.count(), "message"),
                                     replay.sent() == 1 ? u"was"_s : u"were"_s);
}

/// The channels of @p recording on which nobody listens now, as text.
QStringList channelsWithoutListener(const Recording& recording)
{
    QStringList names;
    for (const QCString& channel : recording.channels()) {
        if (!isHeard(channel))
            names += nameText(channel);
    }
    names.sort();
    return names;
}

/// Tells which messages would make the phone act, by what they would do.
void tellRequests(const std::vector<ReceivedMessage>& requests, Console& console)
{
    QMap<QString, qsizetype> counts;
    for (const ReceivedMessage& request : requests)
        ++counts[requestedAction(request.channel, request.name)];
    QStringList actions;
    for (auto action = counts.begin(); action != counts.end(); ++action)
        actions += action.key() + (action.value() == 1 ? QString() : u" (%1 times)"_s.arg(action.value()));
    console.writeError(u"left out: %1 that would have the phone act; --requests sends %2 too: %3"_s.arg(
        counted(qsizetype(requests.size()), "message"), requests.size() == 1 ? u"it"_s : u"them"_s,
        actions.join(u", "_s)));
}

QString progressText(const Replay& replay)
{
    const qint64 seconds = (replay.remaining() + 999) / 1000;
    return sentOf(replay) + u", %1:%2 left"_s.arg(seconds / 60).arg(seconds % 60, 2, 10, '0'_L1);
}

ExitCode replay(const Invocation& invocation, Console& console)
{
    const double speed = speedFrom(invocation);
    Recording recording(invocation.argument(0));
    recording.keepOnly(invocation.values(u"channel"_s));
    if (!invocation.isSet(u"requests"_s)) {
        if (const std::vector<ReceivedMessage> requests = recording.takeRequests(); !requests.empty())
            tellRequests(requests, console);
    }
    const handset::TerminationSignals signalsThatEnd;
    // Whoever has heard enough may go before the end.
    const QStringList unheard = channelsWithoutListener(recording);
    Replay replay(recording, speed);
    {
        const Progress progress([&replay] { return progressText(replay); });
        replay.run();
    }
    if (replay.isBroken())
        throw failure(u"cannot send on %1; %2"_s.arg(nameText(recording.messages()[size_t(replay.sent())].channel),
                                                     sentOf(replay)));
    if (!replay.isDone())
        throw CommandError(Interrupted, u"interrupted; "_s + sentOf(replay));
    console.write(u"sent %1\n"_s.arg(counted(replay.count(), "message")));
    if (unheard.isEmpty())
        return Done;
    console.writeError(u"zynphone: nobody listens on %1"_s.arg(unheard.join(u", "_s)));
    return unheard.size() == recording.channels().size() ? NobodyListens : Done;
}

} // namespace

Command replayCommand()
{
    return {.name = u"replay"_s,
            .summary = u"Send the messages of a recording again, with the pauses that they came with"_s,
            .details =
                u"\nThe whole recording is checked before anything is sent. SIGINT and SIGTERM end the replay "
                "with\nexit code %1. Messages that ask the phone for something, as to place a call, are named "
                "and left\nout, unless --requests is given. The exit code is %2 when nobody listens on any of its "
                "channels.\n"_s.arg(int{Interrupted})
                    .arg(int{NobodyListens}),
            .arguments = {{u"FILE"_s, u"as 'monitor --record' writes it"_s}},
            .options = {flagOption(u"requests"_s, u"send also what makes the phone act"_s),
                        valueOption(u"speed"_s, u"N"_s, u"N times as fast; 0 or max: without pauses"_s),
                        valueOption(u"channel"_s, u"CHANNEL"_s,
                                    u"only the messages of that channel, and of each other one so given"_s)},
            .run = replay};
}

} // namespace zyn::tool
