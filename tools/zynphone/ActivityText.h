// Entries of the activity log as the tool writes them.
#pragma once

#include "recentcall/utility/PHONE_ENG_ActivityLog.h"
#include "tools/zynphone/Table.h"

#include <span>

namespace zyn::tool {

using ActivityColumn = Column<PHONE_ENG_ActivityLog>;

/// The columns of a list of entries. Field names: place (in the contact's file, from 0), index, uid, list, number,
/// name, start (UTC, ISO 8601), duration (seconds), type, messageType (0 for a call), messageInfo, message, read.
std::span<const ActivityColumn> activityColumns();

} // namespace zyn::tool
