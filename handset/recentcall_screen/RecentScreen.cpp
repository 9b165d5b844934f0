// Plays the recent-call screens and their number picker as text.
#include "handset/recentcall_screen/RecentScreen.h"

#include "handset/common/Log.h"
#include "handset/common/Output.h"
#include "handset/common/Text.h"
#include "recentcall/utility/RecentCall_Client_p.h"
#include "recentcall/utility/RecentCall_Messages_p.h"
#include "utility/message/Payload_p.h"

#include <algorithm>
#include <span>
#include <utility>

using namespace Qt::StringLiterals;

namespace zyn::handset {
namespace {

using Call = PHONE_ENG_RecentCall;

/// The calls of @p page; nothing, after a log line, if the service does not answer.
std::optional<std::vector<Call>> callsOf(const ScreenPage& page)
{
    auto calls = fetchCalls(page.category);
    if (!calls)
        log(u"the recent-call service does not answer"_s);
    return calls;
}

/// Whether both are the same call, read or not. The uid is not enough: in new files uids start again.
bool isSameCall(const Call& left, const Call& right)
{
    return left.category == right.category && left.uid == right.uid && left.startTime == right.startTime
           && left.getPhoneNumber() == right.getPhoneNumber();
}

/// Marks the unread ones of @p calls as read, unless writing them to @p output failed.
void markShown(std::span<const Call> calls, const Output& output)
{
    if (!output.isValid())
        return;
    for (const Call& call : calls) {
        // Every further call would wait for a service that does not answer.
        if (isUnread(call) && recentcall::markRead(call) == recentcall::Failure) {
            log(u"the recent-call service does not mark calls as read"_s);
            return;
        }
    }
}

QStringList numbersOf(const std::vector<Call>& calls)
{
    QStringList numbers;
    for (const Call& call : calls)
        numbers += call.getPhoneNumber();
    return numbers;
}

} // namespace

NumberPicker::NumberPicker(Output& output, std::optional<QString> answer)
    : m_output(output)
    , m_answer(std::move(answer))
{
    connect(&m_input, &LineInput::entered, this, &NumberPicker::pick);
}

void NumberPicker::open(const QStringList& numbers)
{
    m_numbers = numbers;
    m_isOpen = true;
    if (m_numbers.isEmpty())
        close();
    else if (m_answer)
        pick(*m_answer);
    else
        ask();
}

void NumberPicker::close()
{
    if (m_isOpen)
        report(QString());
}

void NumberPicker::ask()
{
    m_output.write(u"Row to pick, or an empty line for none:\n"_s);
    m_input.ask();
}

void NumberPicker::pick(const QString& line)
{
    const std::optional<int> row = wholeNumber(line);
    const QString number = row ? m_numbers.value(*row) : QString();
    if (!number.isEmpty() || line.isEmpty()) {
        report(number);
        return;
    }
    m_output.write(u"No number in row '%1'.\n"_s.arg(printable(line)));
    if (m_answer)
        close();
    else
        ask();
}

/// Closes the picker and reports @p number, which is empty for no choice.
void NumberPicker::report(const QString& number)
{
    m_isOpen = false;
    m_input.cancel();
    m_output.write(number.isEmpty() ? u"picked none\n"_s : u"picked %1\n"_s.arg(printable(number)));
    if (!sendMessage(recentCallMessage(RecentCall_Msg::RECENTCALL_MSG_EXIT_PICKER_S), {!number.isEmpty(), number}))
        log(u"cannot tell what was picked"_s);
}

RecentScreen::RecentScreen(Output& output, NumberPicker& picker)
    : m_output(output)
    , m_picker(picker)
    , m_missedUpdate([this] { refresh(); })
{}

void RecentScreen::follow(RecentCall_MsgClient& client)
{
    connect(&client, &RecentCall_MsgClient::signalShowRecentCall, this, &RecentScreen::showCategory);
    connect(&client, &RecentCall_MsgClient::signalShowPage, this, &RecentScreen::showPage);
    connect(&client, &RecentCall_MsgClient::signalShowDetail, this, &RecentScreen::showDetail);
    connect(&client, &RecentCall_MsgClient::signalHideUI, this, &RecentScreen::hide);
    connect(&client, &RecentCall_MsgClient::signalMissedCallUpdate, &m_missedUpdate, &Debouncer::trigger);
}

void RecentScreen::showCategory(RC_CALL_CATEGORY_T category, OTHER_COMPONENT_SHOW_UI component)
{
    const ScreenPage* const page = pageListing(category);
    if (!page) {
        log(u"no page lists calls of category %1"_s.arg(category));
        return;
    }
    if (component != OTHER_COMPONENT_NONE)
        m_output.write(component == OTHER_COMPONENT_CALLING ? u"for the calling application\n"_s
                                                            : u"for the messaging application\n"_s);
    openPage(*page);
}

void RecentScreen::showPage(RC_PAGE_ID_T number)
{
    if (const ScreenPage* const page = pageNumbered(number))
        openPage(*page);
    else
        log(u"there is no page %1"_s.arg(number));
}

void RecentScreen::openPage(const ScreenPage& page)
{
    auto calls = callsOf(page);
    if (page.asksForNumber) {
        // An empty list opens the picker too: it then reports that no number was picked.
        const QStringList numbers = numbersOf(calls.value_or(Calls()));
        if (calls)
            draw(page, std::move(*calls));
        m_picker.open(numbers);
    } else if (calls) {
        m_picker.close();
        draw(page, std::move(*calls));
    }
}

void RecentScreen::draw(const ScreenPage& page, Calls calls)
{
    m_output.write(pageText(page, calls));
    m_page = page.asksForNumber ? nullptr : &page;
    m_calls = std::move(calls);
    markShown(m_calls, m_output);
}

void RecentScreen::showDetail(RC_CALL_CATEGORY_T category, int index)
{
    const ScreenPage* const page = pageListing(category);
    const auto calls = page ? callsOf(*page) : std::nullopt;
    if (!calls || index < 0 || std::cmp_greater_equal(index, calls->size())) {
        log(u"there is no call %1 of category %2"_s.arg(index).arg(category));
        return;
    }
    const Call& call = (*calls)[static_cast<size_t>(index)];
    m_picker.close();
    m_output.write(detailText(*page, index, call));
    m_page = nullptr;
    markShown(std::span(&call, 1), m_output);
}

void RecentScreen::hide()
{
    m_picker.close();
    m_output.write(u"hidden\n"_s);
    m_page = nullptr;
}

/// Draws the list again if its calls have changed. A call that is now read does not count: drawing marks calls as read,
/// which the service announces.
void RecentScreen::refresh()
{
    if (!m_page)
        return;
    auto calls = callsOf(*m_page);
    if (calls && !std::ranges::equal(*calls, m_calls, isSameCall))
        draw(*m_page, std::move(*calls));
}

} // namespace zyn::handset
