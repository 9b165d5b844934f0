// Requests to the recent-call service.
#pragma once

#include "platform/ZynExport.h"
#include "recentcall/utility/PHONE_ENG_RecentCall.h"

#include <QtCore/QString>

/// Creates the directory of the recent-call service's socket, open to all users, and gives its path with a final slash.
ZYN_EXPORT QString RecentCall_dataDir();

/**
 * @name Requests
 * Each opens a connection of its own to the recent-call service, which must run as this user or as root, and closes it
 * before it returns. A service that accepts or sends nothing for 5 seconds counts as gone. Nothing is retried.
 *
 * The result is 0 on success, 1 for the service's code 1 (no such record), and 2 for every failure.
 * @{
 */

/// Hands the service a call to store. No answer is read: 0 says that the record was sent, not that it was stored.
ZYN_EXPORT int PHONE_RecentCall_AddRecord(PHONE_ENG_RecentCall& record);

/// Deletes the call with the record's uid from the list of the record's category.
ZYN_EXPORT int PHONE_RecentCall_DeleteRecord(PHONE_ENG_RecentCall& record);

/// Deletes all calls of one @p callType from the list of @p category, or from all three for RC_CALL_CATEGORY_ALL.
ZYN_EXPORT int PHONE_RecentCall_DeleteAll(RC_CALL_CATEGORY_T category, RC_CALL_TYPE_T callType);

/// @}
