// Reads and follows the recent calls, for the programs that show them.
#include "handset/recent_calls/RecentCalls.h"

#include "recentcall/utility/RC_Interface.h"

#include <QtCore/QTimeZone>

#include <algorithm>

namespace zyn::handset {

namespace {

using Call = PHONE_ENG_RecentCall;

constexpr int kMillisecondsPerSecond = 1000;

RC_MissedCallItem itemOf(const PHONE_ENG_RecentCall& call)
{
    const QDateTime start = call.getStartDateTime().toUTC();
    return {.date = start.date(),
            .value = start.time().msecsSinceStartOfDay() / kMillisecondsPerSecond,
            .first = call.getPhoneNumber(),
            .second = call.getDisplayName(),
            .word1 = static_cast<uint32_t>(call.uid),
            .word2 = static_cast<uint32_t>(call.callType)};
}

} // namespace

std::optional<std::vector<Call>> fetchCalls(RC_CALL_CATEGORY_T list, std::span<const RC_CALL_TYPE_T> types)
{
    std::vector<Call> calls;
    for (const RC_CALL_TYPE_T type : types) {
        QPtrList<RC_RecordInterface> records;
        if (RC_Interface().getRecordList(records, list, type) != 0)
            return std::nullopt;
        for (const RC_RecordInterface* record : records)
            calls.push_back(*static_cast<const RC_RecordInterfaceImpl*>(record)->getData());
    }
    std::ranges::stable_sort(calls, [](const Call& left, const Call& right) { return left < right; });
    return calls;
}

bool isUnread(const Call& call)
{
    return call.category == RC_CALL_CATEGORY_MISSED && (call.readFlags & Call::kRead) == 0;
}

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

QDateTime MissedCallEngine::start(const RC_MissedCallItem& item)
{
    const QTime time = QTime::fromMSecsSinceStartOfDay(item.value * kMillisecondsPerSecond);
    return QDateTime(item.date, time, QTimeZone::utc()).toLocalTime();
}

} // namespace zyn::handset
