// zynphone calls seed: made-up calls for the log.
#include "tools/commands/Commands.h"

#include "tools/commands/CallSending.h"
#include "tools/commands/SeededCalls.h"
#include "tools/zynphone/Console.h"
#include "tools/zynphone/Counted.h"

#include <QtCore/QRandomGenerator>

#include <limits>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

constexpr int kMostCalls = 10'000;

ExitCode seedCalls(const Invocation& invocation, Console& console)
{
    const int count = wholeNumber(invocation.argument(0), u"N"_s, 1, kMostCalls);
    const int seed = invocation.isSet(u"random"_s)
                         ? wholeNumber(invocation.value(u"random"_s), u"--random"_s, 0)
                         : QRandomGenerator::global()->bounded(std::numeric_limits<int>::max());
    sendCalls(seededCalls(count, static_cast<quint32>(seed), QDateTime::currentDateTime()));
    console.write(u"sent %1 (--random %2)\n"_s.arg(counted(count, "call")).arg(seed));
    return Done;
}

} // namespace

Command seedRow()
{
    return {.name = u"seed"_s,
            .summary = u"Send the recent-call service calls that somebody might have made until now"_s,
            .details =
                u"\nThe numbers are of ranges kept free for fiction. Of more calls than the lists hold, the newest\n"
                "stay.\n"_s,
            .arguments = {{u"N"_s, u"how many voice calls, 1 to %1, over the three lists"_s.arg(kMostCalls)}},
            .options = {valueOption(u"random"_s, u"SEED"_s, u"a whole number: the same calls for the same one"_s)},
            .run = seedCalls};
}

} // namespace zyn::tool
