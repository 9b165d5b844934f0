// zynphone replay: sends the messages of a recording again.
#include "tools/commands/Commands.h"

#include "handset/common/TerminationSignals.h"
#include "tools/recording/Replay.h"
#include "tools/zynphone/Console.h"
#include "tools/zynphone/Text.h"

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

QString sentOf(const Replay& replay)
{
    return u"%1 of %2"_s.arg(QString::number(replay.sent()), counted(replay.count(), "message"));
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
    const handset::TerminationSignals signalsThatEnd;
    Replay replay(recording, speed);
    {
        const Progress progress([&replay] { return progressText(replay); });
        replay.run();
    }
    if (replay.isBroken())
        throw failure(u"cannot send on %1; sent are %2"_s.arg(
            nameText(recording.messages()[size_t(replay.sent())].channel), sentOf(replay)));
    if (!replay.isDone())
        throw CommandError(Interrupted, u"interrupted; sent are "_s + sentOf(replay));
    console.write(u"sent %1\n"_s.arg(counted(replay.count(), "message")));
    return Done;
}

} // namespace

Command replayCommand()
{
    return {.name = u"replay"_s,
            .summary = u"Send the messages of a recording again, with the pauses that they came with"_s,
            .details = u"\nThe whole recording is checked before anything is sent. SIGINT and SIGTERM end the replay "
                       u"with exit code %1.\n"_s.arg(int{Interrupted}),
            .arguments = {{u"FILE"_s, u"as 'monitor --record' writes it"_s}},
            .options = {valueOption(u"speed"_s, u"N"_s, u"N times as fast; 0 or max: without pauses"_s),
                        valueOption(u"channel"_s, u"CHANNEL"_s,
                                    u"only the messages of that channel, and of each other one so given"_s)},
            .run = replay};
}

} // namespace zyn::tool
