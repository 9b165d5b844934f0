// The activity log of the favourites, for applications that do not own it.
#include "recentcall/utility/RC_TopPals_AL_Interface.h"

#include "recentcall/utility/ActivityLog_ENG_RecordStore.h"
#include "recentcall/utility/RecentCall_Messages_p.h"
#include "recentcall/utility/store/ActivityLogFile_p.h"
#include "utility/message/Payload_p.h"

#include <cstdio>
#include <utility>

namespace {

RC_TopPals_AL_Interface* s_topPals = nullptr;

void printText(const char* name, const QString& text)
{
    std::printf("TP5_AVL: RC_TopPals_AL_Interface:modifyTopPalsContactDetails: %s = %s\n", name,
                text.toLatin1().constData());
}

void count(TopPals_Missed_Details& details, const PHONE_ENG_ActivityLog& record)
{
    if (record.readFlags & PHONE_ENG_RecentCall::kRead)
        return;
    details.missedCallCount += record.category == RC_CALL_CATEGORY_MISSED;
    details.unreadMsgCount += record.msgType != 0;
}

} // namespace

RC_TopPals_AL_Interface* RC_TopPals_AL_Interface::instance()
{
    if (!s_topPals)
        s_topPals = new RC_TopPals_AL_Interface;
    return s_topPals;
}

void RC_TopPals_AL_Interface::destruction()
{
    delete std::exchange(s_topPals, nullptr);
}

bool RC_TopPals_AL_Interface::modifyTopPalsContactDetails(QString oldNumber, TopPals_Details_T details)
{
    std::printf("\nTP5_AVL: ENTER: RC_TopPals_AL_Interface::modifyTopPalsContactDetails\n");
    printText("oldnum", oldNumber);
    printText("num", details.number);
    printText("nam", details.name);
    printText("imageloc", details.imageLocation);
    std::printf("TP5_AVL: RC_TopPals_AL_Interface:modifyTopPalsContactDetails: contactId = %d\n", details.contactId);
    const bool isSent = zyn::sendMessage(
        zyn::kModifyFavourite, {oldNumber, details.number, details.name, details.imageLocation, details.contactId});
    std::printf("TP5_AVL:EXIT: RC_TopPals_AL_Interface::modifyTopPalsContactDetails: returns = %d\n", isSent);
    return isSent;
}

int RC_TopPals_AL_Interface::getUnreadCount(TopPals_Missed_Details& details)
{
    std::printf("\nEntering RC_TopPals_AL_Interface::getUnreadCount()");
    details.missedCallCount = 0;
    details.unreadMsgCount = 0;
    QSortedList<PHONE_ENG_ActivityLog> list;
    list.setAutoDelete(true);
    ActivityLog_ENG_RecordStore* const store = ActivityLog_ENG_RecordStore::instance();
    const int result = store->readTopPalsAvlContactRecordList(list, zyn::favouriteKey(details.number));
    if (result != 1)
        list.clear(); // what was read before the failure
    for (const PHONE_ENG_ActivityLog* record : std::as_const(list))
        count(details, *record);
    std::printf("\nExiting RC_TopPals_AL_Interface::getUnreadCount()");
    return result;
}
