// Reads the log of recent calls.
#include "handset/favourites/CallLogReader.h"

#include "recentcall/utility/RC_Interface.h"

#include <algorithm>

std::optional<std::vector<PHONE_ENG_RecentCall>> readCallLog()
{
    std::vector<PHONE_ENG_RecentCall> calls;
    for (const RC_CALL_TYPE_T type : {RC_CALL_TYPE_VOICE, RC_CALL_TYPE_PTT1, RC_CALL_TYPE_PTT2}) {
        QPtrList<RC_RecordInterface> records;
        if (RC_Interface().getRecordList(records, RC_CALL_CATEGORY_ALL, type) != 0)
            return std::nullopt;
        for (const RC_RecordInterface* record : records)
            calls.push_back(*static_cast<const RC_RecordInterfaceImpl*>(record)->getData());
    }
    // A record with a greater uid is the newer, and the lesser.
    std::ranges::sort(calls, [](const auto& left, const auto& right) { return right < left; });
    return calls;
}
