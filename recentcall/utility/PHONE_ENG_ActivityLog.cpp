// The record of one activity of a favourite contact: a call or a message.
#include "recentcall/utility/PHONE_ENG_ActivityLog.h"

#include "utility/FixedText_p.h"

#include <cstdio>

PHONE_ENG_ActivityLog::PHONE_ENG_ActivityLog()
    : topPalsAvlIndex(-1)
    , topPalsAvlPos(-1)
    , msgString{}
    , reserved285{}
    , padding298{}
{
    init();
}

PHONE_ENG_ActivityLog::PHONE_ENG_ActivityLog(const PHONE_ENG_RecentCall& value)
    : PHONE_ENG_RecentCall(value)
    , topPalsAvlIndex(-1)
    , topPalsAvlPos(-1)
    , msgString{}
    , reserved285{}
    , padding298{}
{
    std::printf("Enter PHONE_ENG_ActivityLog(const PHONE_ENG_RecentCall & value):PHONE_ENG_RecentCall(value)\n");
    init();
    std::printf("Exit PHONE_ENG_ActivityLog(const PHONE_ENG_RecentCall & value):PHONE_ENG_RecentCall(value)\n");
}

PHONE_ENG_ActivityLog::PHONE_ENG_ActivityLog(const PHONE_ENG_ActivityLog& value)
    : PHONE_ENG_RecentCall(value)
{
    std::printf("Enter PHONE_ENG_ActivityLog(const PHONE_ENG_ActivityLog & value)\n");
    *this = value;
    std::printf("Exit PHONE_ENG_ActivityLog(const PHONE_ENG_ActivityLog & value)\n");
}

void PHONE_ENG_ActivityLog::init()
{
    msgType = 0;
    msgInfo = 0;
    msgString[0] = '\0';
    flagA = 0;
    flagB = 0;
}

QString PHONE_ENG_ActivityLog::getMsgString() const
{
    return zyn::latin1Text(msgString);
}

void PHONE_ENG_ActivityLog::setMsgString(const QString& message)
{
    if (!message.isEmpty())
        zyn::storeText(msgString, message.toLatin1());
}
