// The recent-call screens, and their number picker.
#pragma once

#include "handset/common/LineInput.h"
#include "handset/recent_calls/RecentCalls.h"
#include "handset/recentcall_screen/ScreenPage.h"
#include "recentcall/utility/RecentCall_MsgClient.h"

#include <QtCore/QStringList>

#include <optional>
#include <vector>

namespace zyn::handset {

class Output;

/**
 * Lets the user pick one of the numbers on the screen, and reports to the channel which one, or that it is none.
 *
 * It reports once each time that it is opened: when the user has answered, or when it is closed before. When it is
 * opened again meanwhile it stays open and reports once for both, as the report reaches all who wait.
 */
class NumberPicker : public QObject
{
public:
    /// @param answer  what counts as typed whenever the picker opens, instead of asking the user
    NumberPicker(Output& output, std::optional<QString> answer);

    /// Asks for one of @p numbers by its row; closes at once when there is none.
    void open(const QStringList& numbers);
    /// Closes it without a number, if it is open.
    void close();

private:
    void ask();
    void pick(const QString& line);
    void report(const QString& number);

    Output& m_output;
    const std::optional<QString> m_answer;
    LineInput m_input;
    QStringList m_numbers;
    bool m_isOpen = false;
};

/**
 * Shows what the messages of the recent-call channel ask for, and marks the missed calls that it has shown as read.
 *
 * A list on the screen follows the missed calls; the numbers of an open picker stay as they are, since the user goes by
 * their rows. A request that fails is logged and leaves the screen as it is. Calls that could not be written stay
 * unread.
 */
class RecentScreen : public QObject
{
public:
    RecentScreen(Output& output, NumberPicker& picker);

    /// Carries out what @p client receives from now on.
    void follow(RecentCall_MsgClient& client);

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
