// The recent-call engine of a process that shows the unread missed calls.
#include "handset/recent_calls/MissedCallEngine.h"

#include "handset/recent_calls/RecentCalls.h"

#include <QtCore/QTimeZone>

namespace zyn::handset {
namespace {

constexpr int kMillisecondsPerSecond = 1000;

} // namespace

RC_MissedCallList MissedCallEngine::getUnreadMissedCallList()
{
    const auto calls = fetchCalls(RC_CALL_CATEGORY_MISSED);
    m_isAnswered = calls.has_value();
    RC_MissedCallList unread;
    if (!calls)
        return unread;
    for (const PHONE_ENG_RecentCall& call : *calls) {
        if (isUnread(call))
            unread.append(itemOf(call));
    }
    return unread;
}

RC_MissedCallItem MissedCallEngine::itemOf(const PHONE_ENG_RecentCall& call)
{
    const QDateTime start = call.getStartDateTime().toUTC();
    return {.date = start.date(),
            .value = start.time().msecsSinceStartOfDay() / kMillisecondsPerSecond,
            .first = call.getPhoneNumber(),
            .second = call.getDisplayName(),
            .word1 = static_cast<uint32_t>(call.uid),
            .word2 = static_cast<uint32_t>(call.callType)};
}

QDateTime MissedCallEngine::start(const RC_MissedCallItem& item)
{
    const QTime time = QTime::fromMSecsSinceStartOfDay(item.value * kMillisecondsPerSecond);
    return QDateTime(item.date, time, QTimeZone::utc()).toLocalTime();
}

} // namespace zyn::handset
