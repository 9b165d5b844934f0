// What the recent-call service tells everybody.
#include "handset/recentcall_service/Announcement.h"

#include "handset/common/Log.h"
#include "recentcall/utility/RecentCall_Msg.h"

namespace zyn::handset {

void announceMissedCalls()
{
    if (!RecentCall_Msg::send(RecentCall_Msg::RECENTCALL_MSG_MISSEDCALL_UPDATE_S))
        log(QStringLiteral("a change of the missed calls could not be announced"));
}

} // namespace zyn::handset
