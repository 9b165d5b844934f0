// The pages of the recent-call screens.
#pragma once

#include "recentcall/utility/RecentCall_Msg.h"

#include <algorithm>
#include <iterator>

namespace zyn::handset {

/// One page: the calls that it shows, newest first, in rows that are counted from 0.
struct ScreenPage
{
    RC_PAGE_ID_T page;
    const char* name;
    RC_CALL_CATEGORY_T category;
    bool asksForNumber = false; ///< closes as soon as the user has picked the number of a row, or none
};

inline constexpr RC_PAGE_ID_T kPickerPage{5};

/// What a page number of the screens' messages stands for. The pages of the lists have the numbers of their categories,
/// and are what is shown when a category is asked for; the screens have no other categories and no other pages.
inline constexpr ScreenPage kScreenPages[] = {
    {RC_PAGE_ID_T{int{RC_CALL_CATEGORY_ANSWERED}}, "answered", RC_CALL_CATEGORY_ANSWERED},
    {RC_PAGE_ID_T{int{RC_CALL_CATEGORY_MISSED}}, "missed", RC_CALL_CATEGORY_MISSED},
    {RC_PAGE_ID_T{int{RC_CALL_CATEGORY_DIALED}}, "dialed", RC_CALL_CATEGORY_DIALED},
    {RC_PAGE_ID_T{int{RC_CALL_CATEGORY_ALL}}, "all", RC_CALL_CATEGORY_ALL},
    {kPickerPage, "picker", RC_CALL_CATEGORY_ALL, true},
};

/// The page of that number, or null.
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

} // namespace zyn::handset
