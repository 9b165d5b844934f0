// zynphone calls seed: made-up calls for the log.
#include "tools/commands/Commands.h"

#include "recentcall/utility/PHONE_ENG_RecentCall.h"
#include "recentcall/utility/store/RecordFile_p.h"
#include "tools/commands/CallOptions.h"
#include "tools/zynphone/Console.h"
#include "tools/zynphone/Text.h"

#include <QtCore/QDateTime>
#include <QtCore/QRandomGenerator>
#include <QtCore/QtGlobal>

#include <algorithm>
#include <iterator>
#include <limits>
#include <vector>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

using Call = PHONE_ENG_RecentCall;

struct Party
{
    const char* number;
    const char* name;
};

/// Frequently called parties come first.
constexpr Party kParties[] = {{"+493023125014", "Anna"},         {"+447700900461", "Mum"},
                              {"+12025550137", "Ben"},           {"+493023125277", "J\xF6rg"},
                              {"+442079460823", "Work"},         {"03023125540", "Dr. Novak"},
                              {"+447700900118", "Zo\xEB Adams"}, {"12025550164", "Pizzeria"}};
/// The numbers of unnamed callers; the last three digits vary.
constexpr const char* kUnknownRanges[] = {"+442079460", "+447700900", "+493023125"};

constexpr int kLastingMinutes = 50; // factor in the gap between calls, multiplied by itself
constexpr int kNightEnds = 7;       // hour of the day
constexpr int kLateEvening = 22;

class Caller
{
public:
    Caller(quint32 seed, const QDateTime& now)
        : m_random(seed)
        , m_time(now)
    {}

    Call next()
    {
        Call call;
        call.category = nextList();
        if (!isLikely(30)) // otherwise draw again, which favours the first parties
            choose();
        call.setPhoneNumber(m_number);
        call.setDisplayName(m_name);
        call.completed =
            call.category == RC_CALL_CATEGORY_ANSWERED || (call.category == RC_CALL_CATEGORY_DIALED && isLikely(75));
        if (call.completed != 0)
            call.duration = 8 + skewed(45);
        goBack(call.duration);
        call.setStartDateTime(m_time);
        const bool isMissed = call.category == RC_CALL_CATEGORY_MISSED;
        call.readFlags = !isMissed || (m_hasMissed && isLikely(75)) ? Call::kRead : 0;
        m_hasMissed |= isMissed;
        return call;
    }

private:
    bool isLikely(int percent) { return m_random.bounded(100) < percent; }
    /// Favours small numbers.
    int skewed(int root) { return m_random.bounded(root) * m_random.bounded(root); }

    RC_CALL_CATEGORY_T nextList()
    {
        if (m_listsLeft == 0)
            m_listsLeft = static_cast<int>(std::size(m_lists));
        std::swap(m_lists[m_random.bounded(m_listsLeft)], m_lists[m_listsLeft - 1]);
        return m_lists[--m_listsLeft];
    }

    void choose()
    {
        if (isLikely(20)) {
            m_name.clear();
            m_number = QLatin1String(kUnknownRanges[m_random.bounded(static_cast<int>(std::size(kUnknownRanges)))])
                       + u"%1"_s.arg(m_random.bounded(1000), 3, 10, '0'_L1);
            return;
        }
        const int parties = static_cast<int>(std::size(kParties));
        const Party& party = kParties[std::min(m_random.bounded(parties), m_random.bounded(parties))];
        m_number = QLatin1String(party.number);
        m_name = QLatin1String(party.name);
    }

    /// Moves to the start of a call of @p duration seconds that ended before the next one, and not at night.
    void goBack(int duration)
    {
        m_time = m_time.addSecs(-duration - 60 - 60 * skewed(kLastingMinutes) / 6 - m_random.bounded(60));
        if (m_time.time().hour() < kNightEnds)
            m_time = QDateTime(m_time.date().addDays(-1), QTime(kLateEvening, m_random.bounded(60)));
    }

    QRandomGenerator m_random;
    QDateTime m_time;
    RC_CALL_CATEGORY_T m_lists[std::size(kRecordLists)] = {RC_CALL_CATEGORY_ANSWERED, RC_CALL_CATEGORY_MISSED,
                                                           RC_CALL_CATEGORY_DIALED};
    int m_listsLeft = 0;
    QString m_number;
    QString m_name;
    bool m_hasMissed = false;
};

/**
 * @p count voice calls before @p now, newest first. The same @p seed gives the same calls, relative to @p now.
 *
 * One third each are answered, missed and dialed, so that three lists of one size fill up together. The newest missed
 * call is unread. The numbers are from ranges reserved for fiction.
 */
std::vector<Call> seededCalls(int count, quint32 seed, const QDateTime& now)
{
    Caller caller(seed, now);
    std::vector<Call> calls;
    calls.reserve(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i)
        calls.push_back(caller.next());
    return calls;
}

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
