// Reads the log of recent calls.
#pragma once

#include "recentcall/utility/PHONE_ENG_RecentCall.h"

#include <optional>
#include <vector>

/// Every call of the recent-call service, oldest first; nothing when it does not answer, which takes seconds when it
/// hangs.
std::optional<std::vector<PHONE_ENG_RecentCall>> readCallLog();
