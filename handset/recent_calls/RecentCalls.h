// The recent calls, as the programs that show them read them.
#pragma once

#include "recentcall/utility/PHONE_ENG_RecentCall.h"

#include <array>
#include <optional>
#include <span>
#include <vector>

namespace zyn::handset {

/// The call types that have a name.
inline constexpr std::array kCallTypes{RC_CALL_TYPE_VOICE, RC_CALL_TYPE_PTT1, RC_CALL_TYPE_PTT2};

/// The calls of @p types in @p list, newest first, asked of the recent-call service; nothing when it does not answer.
std::optional<std::vector<PHONE_ENG_RecentCall>> fetchCalls(RC_CALL_CATEGORY_T list,
                                                            std::span<const RC_CALL_TYPE_T> types = kCallTypes);

/// Whether the user has yet to see @p call. Answered and dialed calls are known to him.
bool isUnread(const PHONE_ENG_RecentCall& call);

} // namespace zyn::handset
