// Calls that somebody might have made.
#pragma once

#include "recentcall/utility/PHONE_ENG_RecentCall.h"

#include <QtCore/QDateTime>
#include <QtCore/QtGlobal>

#include <vector>

namespace zyn::tool {

/**
 * @p count voice calls before @p now, newest first: the same for the same @p seed, but for @p now.
 *
 * Of each three one is answered, one missed and one dialed, so that three lists of one size fill up together. The
 * newest missed call is unread. The numbers are of ranges that are kept free for fiction.
 */
std::vector<PHONE_ENG_RecentCall> seededCalls(int count, quint32 seed, const QDateTime& now);

} // namespace zyn::tool
