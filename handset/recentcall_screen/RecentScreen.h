// The recent-call screens.
#pragma once

#include "handset/recent_calls/RecentCalls.h"
#include "handset/recentcall_screen/NumberPicker.h"
#include "handset/recentcall_screen/ScreenPage.h"
#include "recentcall/utility/PHONE_ENG_RecentCall.h"
#include "recentcall/utility/RecentCall_MsgClient.h"

#include <QtCore/QObject>

#include <optional>
#include <vector>

namespace zyn::handset {

class Output;

/**
 * Shows what the messages of the recent-call channel ask for, and lets the missed calls that it has shown count as
 * read.
 *
 * A list on the screen follows the missed calls; the numbers of an open picker stay as they are, since the user goes by
 * their rows. What cannot be had is told in the log and leaves the screen as it is. What could not be written counts as
 * unread still.
 */
class RecentScreen : public QObject
{
    Q_OBJECT

public:
    RecentScreen(Output& output, NumberPicker& picker);

    /// Obeys what @p client receives from now on.
    void obey(RecentCall_MsgClient& client);

private:
    using Calls = std::vector<PHONE_ENG_RecentCall>;

    void showCategory(RC_CALL_CATEGORY_T category, OTHER_COMPONENT_SHOW_UI component);
    void showPage(RC_PAGE_ID_T number);
    void showDetail(RC_CALL_CATEGORY_T category, int index);
    void hide();
    void refresh();

    void openPage(const ScreenPage& page);
    void draw(const ScreenPage& page, Calls calls);

    Output& m_output;
    NumberPicker& m_picker;
    Debouncer m_missedUpdate;
    const ScreenPage* m_page = nullptr; ///< the list on the screen; null for a detail, a picker or nothing
    Calls m_calls;                      ///< what that list shows
};

} // namespace zyn::handset
