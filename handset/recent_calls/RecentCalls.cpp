// The recent calls, as the programs that show them read them.
#include "handset/recent_calls/RecentCalls.h"

#include "recentcall/utility/RC_Interface.h"

#include <algorithm>

namespace zyn::handset {

using Call = PHONE_ENG_RecentCall;

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

} // namespace zyn::handset
