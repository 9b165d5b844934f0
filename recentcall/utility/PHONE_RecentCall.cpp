// Requests to the recent-call service.
#include "recentcall/utility/PHONE_RecentCall.h"

#include "recentcall/utility/RecentCall_Client_p.h"
#include "utility/PHONE_SocketDirectory_p.h"

namespace rc = zyn::recentcall;

QString RecentCall_dataDir()
{
    return zyn::socketDirectory(rc::kSocketDirectory);
}

int PHONE_RecentCall_AddRecord(PHONE_ENG_RecentCall& record)
{
    return rc::post(rc::AddRecord, std::as_bytes(std::span(&record, 1))) ? rc::Success : rc::Failure;
}

int PHONE_RecentCall_DeleteRecord(PHONE_ENG_RecentCall& record)
{
    return rc::ask(rc::DeleteRecord, std::as_bytes(std::span(&record, 1)));
}

int PHONE_RecentCall_DeleteAll(RC_CALL_CATEGORY_T category, RC_CALL_TYPE_T callType)
{
    const rc::Selection selection{category, callType};
    return rc::ask(rc::DeleteAll, std::as_bytes(std::span(&selection, 1)));
}
