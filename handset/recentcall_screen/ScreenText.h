// What the recent-call screens show, as text.
#pragma once

#include "handset/recentcall_screen/ScreenPage.h"
#include "recentcall/utility/PHONE_ENG_RecentCall.h"

#include <QtCore/QString>

#include <vector>

namespace zyn::handset {

/// The rows of a page under a line of titles; of unread calls the row is marked. Only printable characters come out.
QString pageText(const ScreenPage& page, const std::vector<PHONE_ENG_RecentCall>& calls);

/// All of one call, which is the one in row @p index of @p page.
QString detailText(const ScreenPage& page, int index, const PHONE_ENG_RecentCall& call);

} // namespace zyn::handset
