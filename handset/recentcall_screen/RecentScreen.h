// Plays the recent-call screens and their number picker as text.
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
 * Asks the user to pick one of the numbers on the screen, and sends the choice, which may be empty, to the channel.
 *
 * It reports once each time it is opened: when the user answers, or when it is closed before that. If it is opened
 * again while open, it stays open and reports once for both, as the report reaches everyone who waits.
 */
class NumberPicker : public QObject
{
public:
    /// @param answer  used as the user's answer each time the picker opens, if set
    NumberPicker(Output& output, std::optional<QString> answer);

    /// Asks for the row of one of @p numbers; reports and closes at once if the list is empty.
    void open(const QStringList& numbers);
    /// Closes the picker without a number, if it is open.
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
 * Shows the screens that messages on the recent-call channel ask for, and marks the missed calls on them as read.
 *
 * A list on the screen is redrawn when the missed calls change. An open picker keeps its numbers, so that the rows that
 * the user sees stay right. A failed request is logged and changes nothing. Calls that could not be printed stay
 * unread.
 */
class RecentScreen : public QObject
{
public:
    RecentScreen(Output& output, NumberPicker& picker);

    /// Carries out the messages that @p client receives from now on.
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
    Calls m_calls;                      ///< the calls on that list
};

} // namespace zyn::handset
