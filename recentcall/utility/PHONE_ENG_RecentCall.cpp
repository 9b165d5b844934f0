// The record of one call.
#include "recentcall/utility/PHONE_ENG_RecentCall.h"

#include "platform/UTIL_TimeConversion.h"
#include "utility/FixedText_p.h"

#include <QtCore/QByteArray>

PHONE_ENG_RecentCall::PHONE_ENG_RecentCall()
{
    init();
}

PHONE_ENG_RecentCall::PHONE_ENG_RecentCall(const QString& number, const QDateTime& start, int callDuration)
{
    init();
    setPhoneNumber(number);
    setStartDateTime(start);
    duration = callDuration;
}

PHONE_ENG_RecentCall::PHONE_ENG_RecentCall(const QString& number, const QDateTime& start, int callDuration, bool read)
    : PHONE_ENG_RecentCall(number, start, callDuration)
{
    readFlags = read ? kRead : 0;
}

void PHONE_ENG_RecentCall::init()
{
    // Not through the constructor, which calls this; as void, for the class has constructors and is all plain bytes.
    std::memset(static_cast<void*>(this), 0, sizeof(PHONE_ENG_RecentCall));
    callType = RC_CALL_TYPE_VOICE;
}

void PHONE_ENG_RecentCall::setPhoneNumber(const QString& number)
{
    if (!number.isEmpty())
        zyn::storeText(phoneNumber, number.toLatin1());
}

QString PHONE_ENG_RecentCall::getPhoneNumber() const
{
    return zyn::latin1Text(phoneNumber);
}

void PHONE_ENG_RecentCall::setDisplayName(const QString& name)
{
    if (!name.isEmpty())
        zyn::storeText(displayName, name.toLatin1());
}

QString PHONE_ENG_RecentCall::getDisplayName() const
{
    return zyn::latin1Text(displayName);
}

void PHONE_ENG_RecentCall::setPttSessionID(const QString& session)
{
    if (!session.isEmpty())
        zyn::storeText(pttSessionId, session.toUtf8());
}

QString PHONE_ENG_RecentCall::getPttSessionID() const
{
    return zyn::latin1Text(pttSessionId);
}

void PHONE_ENG_RecentCall::setStartDateTime(const QDateTime& start)
{
    startTime = static_cast<int32_t>(UTIL_TimeConversion::toUTC(start));
}

QDateTime PHONE_ENG_RecentCall::getStartDateTime() const
{
    return UTIL_TimeConversion::fromUTC(startTime);
}

void PHONE_ENG_RecentCall::print() const
{}
