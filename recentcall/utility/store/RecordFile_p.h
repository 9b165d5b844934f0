// The record files, one for each list of calls: their names and slots, and the uids in them.
#pragma once

#include "recentcall/utility/store/SlotFile_p.h"

#include <cstdint>
#include <limits>
#include <vector>

namespace zyn {

/// How many slots a record file has, whatever the limit of its list.
inline constexpr int kRecordSlots = 50;

using RecordFile = SlotFile<PHONE_ENG_RecentCall, kRecordSlots>;
static_assert(RecordFile::offset(0) == 8 && RecordFile::offset(3) == 692 && RecordFile::size() == 11'408);

/// The name of a list's file, with its leading slash; a category without a list of its own has a name that no file has.
constexpr const char* recordFileName(RC_CALL_CATEGORY_T category)
{
    switch (category) {
    case RC_CALL_CATEGORY_ANSWERED:
        return "/rc_a";
    case RC_CALL_CATEGORY_MISSED:
        return "/rc_m";
    case RC_CALL_CATEGORY_DIALED:
        return "/rc_d";
    default:
        return "/rc_e";
    }
}

/// The categories that have a file, in the order in which they are gone through.
inline constexpr RC_CALL_CATEGORY_T kRecordLists[] = {RC_CALL_CATEGORY_ANSWERED, RC_CALL_CATEGORY_MISSED,
                                                      RC_CALL_CATEGORY_DIALED};

/// No call can be newer than one with this uid.
inline constexpr int32_t kGreatestUid = std::numeric_limits<int32_t>::max();

/// A call that has been given another uid.
struct RenumberedCall
{
    int32_t oldUid;
    PHONE_ENG_RecentCall call;
};
using RenumberedCalls = std::vector<RenumberedCall>;

/**
 * Makes room above all uids of @p calls, the calls of all lists, when fewer than @p wanted are left there.
 *
 * Calls with a uid in the upper half of all numbers get the uids that follow the others', and follow @p given, the
 * greatest ever given (-1 for none), unless that is in the upper half too. Their order is kept; of equal uids, the call
 * that began first comes first.
 *
 * @return the calls with a new uid; none when there is room
 */
RenumberedCalls lowerUids(std::vector<PHONE_ENG_RecentCall> calls, int32_t wanted, int32_t given = -1);

} // namespace zyn
