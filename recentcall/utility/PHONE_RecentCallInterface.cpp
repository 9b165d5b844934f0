// The older interfaces to the log of recent calls.
#include "recentcall/utility/PHONE_RecentCallInterface.h"

#include "recentcall/utility/PHONE_RecentCall.h"
#include "recentcall/utility/RC_Interface.h"
#include "recentcall/utility/RecentCall_Client_p.h"

using zyn::recentcall::interfaceResult;

PHONE_RecentCall_Interface::PHONE_RecentCall_Interface() = default;

PHONE_RecentCall_Interface::~PHONE_RecentCall_Interface() = default;

int PHONE_RecentCall_Interface::rc_add(PHONE_ENG_RecentCall record)
{
    return interfaceResult(PHONE_RecentCall_AddRecord(record));
}

int PHONE_RecentCall_Interface::rc_delete(const PHONE_ENG_RecentCall& record)
{
    PHONE_ENG_RecentCall copy = record;
    return interfaceResult(PHONE_RecentCall_DeleteRecord(copy));
}

int PHONE_RecentCall_Interface::rc_deleteAll(CALL_CATEGORY_T category)
{
    return interfaceResult(PHONE_RecentCall_DeleteAll(category, RC_CALL_TYPE_VOICE));
}

bool PHONE_RecentCall_Interface::getLastDialedNumber(QString& number)
{
    return RC_Interface().getLastDialedNumber(number);
}

PHONE_RecentCallInterface::PHONE_RecentCallInterface() = default;

PHONE_RecentCallInterface::~PHONE_RecentCallInterface() = default;

bool PHONE_RecentCallInterface::getLastDialedNumber(QString& number)
{
    return RC_Interface().getLastDialedNumber(number);
}
