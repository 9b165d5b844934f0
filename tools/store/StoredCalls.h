// The logged calls as their files hold them.
#pragma once

#include "recentcall/utility/PHONE_ENG_RecentCall.h"

#include <optional>
#include <vector>

namespace zyn::tool {

/// The calls in the file of @p list, none if it is missing; nothing if it is damaged or cannot be read. Reading them
/// never blocks, and changes nothing.
std::optional<std::vector<PHONE_ENG_RecentCall>> storedCalls(RC_CALL_CATEGORY_T list);

} // namespace zyn::tool
