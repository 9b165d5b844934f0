// Uids of calls that leave room for those to come.
#pragma once

#include "recentcall/utility/PHONE_ENG_RecentCall.h"

#include <cstdint>
#include <limits>
#include <vector>

namespace zyn {

/// After a call with this uid there can be none that is newer.
inline constexpr int32_t kGreatestUid = std::numeric_limits<int32_t>::max();

/// A call that has got another uid.
struct RenumberedCall
{
    int32_t oldUid;
    PHONE_ENG_RecentCall call;
};
using RenumberedCalls = std::vector<RenumberedCall>;

/**
 * Makes room above all uids of @p calls, the calls of all lists, when fewer than @p wanted are left there.
 *
 * Those in the upper half of all numbers get the uids that follow on the others', and on @p given, the greatest that
 * was ever given (-1 for none), unless that lies in the upper half too. Their order stays; of equal ones, the one that
 * began first goes first. The result is these, and is empty when there is room.
 */
RenumberedCalls lowerUids(std::vector<PHONE_ENG_RecentCall> calls, int32_t wanted, int32_t given = -1);

} // namespace zyn
