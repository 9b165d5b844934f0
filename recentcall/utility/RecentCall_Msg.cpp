// Names and sends the messages of the recent-call screens.
#include "recentcall/utility/RecentCall_Msg.h"

#include "utility/message/Message_p.h"
#include "utility/message/Payload_p.h"

#include <cstdio>

RecentCall_Msg::RecentCall_Msg(QObject* parent, const char* name)
    : QCopChannel(zyn::kRecentCallChannel, parent, name)
{}

RecentCall_Msg::~RecentCall_Msg() = default;

QCString RecentCall_Msg::getMsg(RECENTCALL_MSG_TYPE_T type)
{
    return zyn::messageName(zyn::kRecentCallPrefix, static_cast<unsigned>(type), zyn::kRecentCallTypes);
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
    return send(RECENTCALL_MSG_SHOW_UI_S, zyn::PayloadWriter().writeInt(category).payload());
}

bool RecentCall_Msg::requestShowPage(RC_PAGE_ID_T page)
{
    std::printf("about to send msg:%s,para:%d", getMsg(RECENTCALL_MSG_SHOW_PAGE_S).constData(), page);
    return send(RECENTCALL_MSG_SHOW_PAGE_S, zyn::PayloadWriter().writeInt(page).payload());
}

bool RecentCall_Msg::showRecordDetail(int index, RC_CALL_CATEGORY_T category)
{
    std::printf("about to send msg:%s,para:%d,%d", getMsg(RECENTCALL_MSG_SHOW_DETAIL_S).constData(), category, index);
    return send(RECENTCALL_MSG_SHOW_DETAIL_S, zyn::PayloadWriter().writeInt(category).writeInt(index).payload());
}

bool RecentCall_Msg::requestHideUI()
{
    std::printf("about to send msg:%s", getMsg(RECENTCALL_MSG_HIDE_UI_S).constData());
    return send(RECENTCALL_MSG_HIDE_UI_S);
}
