// Calls, and entries of the favourites, as text.
#pragma once

#include "recentcall/utility/PHONE_ENG_ActivityLog.h"
#include "recentcall/utility/PHONE_ENG_RecentCall.h"
#include "tools/zynphone/Table.h"
#include "tools/zynphone/Text.h"

#include <array>
#include <span>

namespace zyn::tool {

using ListWord = Word<RC_CALL_CATEGORY_T>;
using TypeWord = Word<RC_CALL_TYPE_T>;
using CallColumn = Column<PHONE_ENG_RecentCall>;

inline constexpr std::array<ListWord, 6> kCategories{{
    {"answered", RC_CALL_CATEGORY_ANSWERED},
    {"missed", RC_CALL_CATEGORY_MISSED},
    {"dialed", RC_CALL_CATEGORY_DIALED},
    {"all", RC_CALL_CATEGORY_ALL},
    {"extra", RC_CALL_CATEGORY_EXTRA},
    {"none", RC_CALL_CATEGORY_NONE},
}};
/// The lists that keep calls.
inline constexpr auto kLists = std::span(kCategories).first<3>();
/// The same, and all of them together.
inline constexpr auto kListsOrAll = std::span(kCategories).first<4>();

inline constexpr std::array<TypeWord, 3> kTypes{{
    {"voice", RC_CALL_TYPE_VOICE},
    {"ptt1", RC_CALL_TYPE_PTT1},
    {"ptt2", RC_CALL_TYPE_PTT2},
}};

QString categoryWord(RC_CALL_CATEGORY_T category);

/// @{ The start, ISO 8601.
QString utcStart(const PHONE_ENG_RecentCall& call);
QString localStart(const PHONE_ENG_RecentCall& call);
/// @}
/// The call type that @p text names by its word or number. A usage error, which names @p what, if there is none.
RC_CALL_TYPE_T callTypeNamed(const QString& text, const QString& what);

/// The columns of a list of calls. Field names: uid, list, number, name, start (UTC, ISO 8601), duration (seconds),
/// type, session (of a push-to-talk call, else empty), read, completed.
std::span<const CallColumn> callColumns();
/// The place of the call in its file, from 0, then the columns of a list.
std::span<const CallColumn> slotColumns();

using ActivityColumn = Column<PHONE_ENG_ActivityLog>;

/// The columns of a list of entries. Field names: place (in the contact's file, from 0), index, uid, list, number,
/// name, start (UTC, ISO 8601), duration (seconds), type, messageType (0 for a call), messageInfo, message, read.
std::span<const ActivityColumn> activityColumns();

} // namespace zyn::tool
