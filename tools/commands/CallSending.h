// Many calls for the recent-call service.
#pragma once

#include "recentcall/utility/PHONE_ENG_RecentCall.h"

#include <vector>

namespace zyn::tool {

/// Sends the service @p calls, which stand newest first: the oldest at first, so that the newest are those that stay
/// when a list is full. Shows how far it has come when it takes its time.
void sendCalls(const std::vector<PHONE_ENG_RecentCall>& calls);

} // namespace zyn::tool
