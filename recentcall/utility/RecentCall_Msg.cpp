// Names and sends the messages of the recent-call screens.
#include "recentcall/utility/RecentCall_Msg.h"

#include "recentcall/utility/RecentCall_Messages_p.h"
#include "utility/message/Payload_p.h"

#include <cstdio>

RecentCall_Msg::RecentCall_Msg(QObject* parent, const char* name)
    : QCopChannel(zyn::kRecentCallChannel, parent, name)
{}

RecentCall_Msg::~RecentCall_Msg() = default;

QCString RecentCall_Msg::getMsg(RECENTCALL_MSG_TYPE_T type)
{
    return type >= RECENTCALL_MSG_POWEROFF_S && type <= RECENTCALL_MSG_HIDE_UI_S ? zyn::recentCallMessage(type).name
                                                                                 : "";
}

bool RecentCall_Msg::send(RECENTCALL_MSG_TYPE_T type)
{
    const QCString name = getMsg(type);
    return !name.isEmpty() && QCopChannel::send(zyn::kRecentCallChannel, name);
}

bool RecentCall_Msg::send(RECENTCALL_MSG_TYPE_T type, const QByteArray& data)
{
    const QCString name = getMsg(type);
    if (name.isEmpty()) {
        std::printf("Error in getting message");
        return false;
    }
    return QCopChannel::send(zyn::kRecentCallChannel, name, data);
}

bool RecentCall_Msg::requestShowUI(RC_CALL_CATEGORY_T category)
{
    return zyn::sendMessage(zyn::recentCallMessage(RECENTCALL_MSG_SHOW_UI_S), {category});
}

bool RecentCall_Msg::requestShowPage(RC_PAGE_ID_T page)
{
    std::printf("about to send msg:%s,para:%d", getMsg(RECENTCALL_MSG_SHOW_PAGE_S).constData(), page);
    return zyn::sendMessage(zyn::recentCallMessage(RECENTCALL_MSG_SHOW_PAGE_S), {page});
}

bool RecentCall_Msg::showRecordDetail(int index, RC_CALL_CATEGORY_T category)
{
    std::printf("about to send msg:%s,para:%d,%d", getMsg(RECENTCALL_MSG_SHOW_DETAIL_S).constData(), category, index);
    return zyn::sendMessage(zyn::recentCallMessage(RECENTCALL_MSG_SHOW_DETAIL_S), {category, index});
}

bool RecentCall_Msg::requestHideUI()
{
    std::printf("about to send msg:%s", getMsg(RECENTCALL_MSG_HIDE_UI_S).constData());
    return send(RECENTCALL_MSG_HIDE_UI_S);
}
