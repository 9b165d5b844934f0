// The recent-call screens: for those who ask for them, and for those who are them.
#include "qml/module/RecentScreens.h"

#include "recentcall/utility/RC_MsgInterface.h"
#include "recentcall/utility/RecentCall_Messages_p.h"
#include "utility/message/Payload_p.h"

#include <utility>

namespace zyn::qml {
namespace {

bool isPage(int page)
{
    return page >= RecentScreens::AnsweredPage && page <= RecentScreens::PickerPage;
}

bool isList(int category)
{
    return category >= RC_CALL_CATEGORY_ANSWERED && category <= RC_CALL_CATEGORY_ALL;
}

void ask(int page)
{
    RC_MsgInterface& screens = *RC_MsgInterface::instance();
    // Each request connects once more, for as long as the process lives; one connection serves all.
    QObject::disconnect(RecentCall_MsgClient::instance(), &RecentCall_MsgClient::signalExitPicker, &screens, nullptr);
    screens.requestShowUI(RC_PAGE_ID_T{page});
}

} // namespace

RecentScreens::RecentScreens(QObject* parent)
    : QObject(parent)
{
    const RecentCall_MsgClient* const client = RecentCall_MsgClient::instance();
    connect(client, &RecentCall_MsgClient::signalExitPicker, this, &RecentScreens::finish);
    connect(client, &RecentCall_MsgClient::signalShowPage, this, &RecentScreens::requestPage);
    connect(client, &RecentCall_MsgClient::signalShowRecentCall, this, &RecentScreens::requestList);
    connect(client, &RecentCall_MsgClient::signalShowDetail, this, &RecentScreens::requestDetails);
    connect(client, &RecentCall_MsgClient::signalHideUI, this, &RecentScreens::hideRequested);
}

void RecentScreens::open(int page)
{
    ask(page);
}

void RecentScreens::showDetails(int index, int category)
{
    RC_MsgInterface::instance()->showRecordDetail(index, static_cast<RC_CALL_CATEGORY_T>(category));
}

bool RecentScreens::hide()
{
    return RC_MsgInterface::instance()->hideUI();
}

void RecentScreens::pickNumber()
{
    ++m_picks;
    ask(PickerPage);
}

bool RecentScreens::reportPicked(const QString& number)
{
    return sendMessage(recentCallMessage(RecentCall_Msg::RECENTCALL_MSG_EXIT_PICKER_S), {!number.isEmpty(), number});
}

bool RecentScreens::reportDismissed()
{
    return reportPicked({});
}

void RecentScreens::finish(bool selected, const QString& number)
{
    // Who is told may open the picker again: that one has not closed.
    for (int picks = std::exchange(m_picks, 0); picks > 0; --picks)
        Q_EMIT finished(selected, number);
}

void RecentScreens::requestPage(int page)
{
    if (isPage(page))
        Q_EMIT pageRequested(page);
}

/// The page of a list has the number of the list.
void RecentScreens::requestList(RC_CALL_CATEGORY_T category)
{
    if (isList(category))
        Q_EMIT pageRequested(category);
}

void RecentScreens::requestDetails(RC_CALL_CATEGORY_T category, int index)
{
    if (isList(category) && index >= 0)
        Q_EMIT detailsRequested(index, category);
}

} // namespace zyn::qml
