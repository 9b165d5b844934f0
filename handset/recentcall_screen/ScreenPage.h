// The pages of the recent-call screens, and their text.
#pragma once

#include "recentcall/utility/PHONE_ENG_RecentCall.h"
#include "recentcall/utility/RecentCall_Msg.h"

#include <QtCore/QString>

#include <algorithm>
#include <iterator>
#include <vector>

namespace zyn::handset {

/// A page and the calls that it shows, newest first. Rows are counted from 0.
struct ScreenPage
{
    RC_PAGE_ID_T page;
    const char* name;
    RC_CALL_CATEGORY_T category;
    bool asksForNumber = false; ///< opens the number picker
};

inline constexpr RC_PAGE_ID_T kPickerPage{5};

/// All pages. The page of a list has the number of its category, and is shown if that category is asked for.
inline constexpr ScreenPage kScreenPages[] = {
    {RC_PAGE_ID_T{int{RC_CALL_CATEGORY_ANSWERED}}, "answered", RC_CALL_CATEGORY_ANSWERED},
    {RC_PAGE_ID_T{int{RC_CALL_CATEGORY_MISSED}}, "missed", RC_CALL_CATEGORY_MISSED},
    {RC_PAGE_ID_T{int{RC_CALL_CATEGORY_DIALED}}, "dialed", RC_CALL_CATEGORY_DIALED},
    {RC_PAGE_ID_T{int{RC_CALL_CATEGORY_ALL}}, "all", RC_CALL_CATEGORY_ALL},
    {kPickerPage, "picker", RC_CALL_CATEGORY_ALL, true},
};

/// The page with that number, or null.
inline const ScreenPage* pageNumbered(int page)
{
    const auto* found = std::ranges::find(kScreenPages, page, [](const ScreenPage& row) { return int{row.page}; });
    return found == std::end(kScreenPages) ? nullptr : found;
}

/// The page that lists the calls of @p category, or null.
inline const ScreenPage* pageListing(int category)
{
    const ScreenPage* const page = pageNumbered(category);
    return page && page->category == category ? page : nullptr;
}

/// The rows of a page below a line of titles; unread calls are marked. Contains printable characters only.
QString pageText(const ScreenPage& page, const std::vector<PHONE_ENG_RecentCall>& calls);

/// All fields of @p call, which is in row @p index of @p page.
QString detailText(const ScreenPage& page, int index, const PHONE_ENG_RecentCall& call);

} // namespace zyn::handset
